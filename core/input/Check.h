#pragma once

#include "core/host/Host.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace fieldcore {

/// Checks what was typed before a dialog uses it: numbers, names of points, and angles typed as
/// degrees, minutes and seconds. A check answers 1 if the text is valid and 0 if it is not. Asked
/// to, it tells the user what is wrong and puts the focus back into the control.
///
/// Characters are compared by their codes: full-width digits, the many dashes that look like a
/// minus and the ideographic space, as Japanese input methods make them, are refused.
///
/// The control is named by its number in the window that is active when the check begins, or given
/// itself; it is of use only with @p showMessage, which is not 0 to tell the user. The thread that
/// uses the library.
class CCheck
{
public:
    /// Numbers from -1.0e24 to 1.0e24, angles from -359 to 359 whole degrees.
    /// @param host  shows the messages; must outlive the object
    explicit CCheck(Host& host = DefaultHost());
    /// Numbers from @p minimum to @p maximum, both accepted; angles as above.
    CCheck(double minimum, double maximum, Host& host = DefaultHost());
    virtual ~CCheck() = default;

    /// A number: digits with one point at most and a sign in front, within the limits. An empty
    /// text, a lone sign and a lone point read as 0.
    /// @param integerOnly  not 0: digits alone, no sign either
    int CheckNum(const std::wstring& text, int controlId, int integerOnly, int showMessage);
    int CheckNum(const std::wstring& text, FocusTarget* control, int integerOnly, int showMessage);

    /// The name of a point: ASCII digits, letters, "+" and "-", as many or as few as there are.
    /// Half-width kana are refused, although the message speaks of kana.
    int CheckPointName(const std::wstring& text, int controlId, int showMessage);
    int CheckPointName(const std::wstring& text, FocusTarget* control, int showMessage);

    /// An angle: degrees, minutes and seconds with minus signs between, such as 135-07-04.5;
    /// minutes and seconds may be left out. Blanks are no fault, but what follows one within a
    /// number does not count: 1 35 is 1 degree. Degrees within the limits, minutes to 59, seconds
    /// to 59.9999999999.
    int CheckDeg(const std::wstring& text, int controlId, int showMessage);
    int CheckDeg(const std::wstring& text, FocusTarget* control, int showMessage);

    /// An angle in radians, whether CheckDeg() would accept it or not. A minus in front is lost:
    /// -10-30-00 is 10 degrees and a half, and the sign is the caller's business.
    [[nodiscard]] double GetRad(const std::wstring& text);

    /// The limits of CheckNum(); both are accepted.
    void SetNumMinMax(double minimum, double maximum);
    /// @param minimum  whole degrees, in spite of the name
    void SetRadMinMax(int minimum, int maximum);

protected:
    /// The checks, with the control that gets the focus after a message; may be null.
    int stCheckNum(const std::wstring& text, FocusTarget* control, int integerOnly,
                   int showMessage);
    int stCheckPointName(const std::wstring& text, FocusTarget* control, int showMessage);
    int stCheckDeg(const std::wstring& text, FocusTarget* control, int showMessage);

    // The form alone.
    [[nodiscard]] static int stCheckNumKernel(const std::wstring& text, int integerOnly);
    [[nodiscard]] static int stCheckPointNameKernel(const std::wstring& text);
    [[nodiscard]] static int stCheckDegKernel(const std::wstring& text);

    /// The range of an angle; keeps it as the last one either way.
    int stCheckDegRange(const std::wstring& text);

private:
    [[nodiscard]] std::unique_ptr<FocusTarget> Control(int id, int showMessage) const;
    /// Says why, if the user is to be told. @return 0
    int Refuse(const std::wstring& text, int caption, FocusTarget* control, int showMessage) const;

    double m_minimum = -1.0e24;
    double m_maximum = 1.0e24;
    std::int32_t m_minimumDeg = -359;
    std::int32_t m_maximumDeg = 359;
    double m_lastAngle = 0.0; // seconds of arc
    Host& m_host;
};

/// A number as people type it, at a screen or in a terminal: what CheckNum() takes, with a digit in
/// it at least.
[[nodiscard]] std::optional<double> TypedNumber(const std::wstring& text);

} // namespace fieldcore

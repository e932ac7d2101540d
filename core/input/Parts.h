#pragma once

#include <cstdint>
#include <string>

namespace fieldcore {

/// Number text, the rounding that all screens share, and the names of the sections under which
/// each survey type keeps its settings. It has no state; any thread.
class CParts
{
public:
    /// The number at the start of the text, by ParseReal(); 0.0 if there is none.
    [[nodiscard]] static double atof(const std::wstring& text);
    [[nodiscard]] static double atof(const wchar_t* text);

    /// Rounds half away from zero. The result is the double nearest to the decimal that a person
    /// would write: it goes through decimal text, and a rounded binary product would not do.
    ///
    /// @param decimals  digits behind the point
    /// @return magnitudes that scaled by 10^decimals reach 2^32 become (2^32 - 1) / 10^decimals;
    /// a negative value that rounds to zero is -0.0; NaN stays NaN
    [[nodiscard]] static double round(double value, std::uint8_t decimals);

    /// Text with @p decimals digits behind the point. The value is rounded to 3 decimals first,
    /// whatever number is asked for: 1.23456 with 5 is "1.23500".
    [[nodiscard]] static std::wstring Round(double value, std::uint8_t decimals);

    /// a - b, both rounded before and their difference after.
    [[nodiscard]] static double RoundNega(double a, double b, std::uint8_t decimals);

    /// The mean of a and b, both rounded before and the mean after.
    [[nodiscard]] static double RoundAve(double a, double b, std::uint8_t decimals);

    /// Section of a real-time survey type.
    /// @param surveyType  one flag: 1, 2, 4, 8, 32, 256, 512 or 4096; any other counts as 1
    /// @param rover  0: the reference station's section, whatever the type
    /// @return a constant of the library
    [[nodiscard]] static const wchar_t* GetRtkSec(std::uint32_t surveyType, int rover);

    /// Section of a post-processing survey type.
    /// @param surveyType  one flag: 1, 2, 4 or 8; any other counts as 1
    /// @return a constant of the library
    [[nodiscard]] static const wchar_t* GetPostSec(std::uint32_t surveyType);
};

} // namespace fieldcore

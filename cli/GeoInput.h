#pragma once

#include "cli/Failure.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace fieldcore::cli {

/// How an angle is typed that has no separators between degrees, minutes and seconds.
enum class AngleForm
{
    Decimal, ///< 35.68956 is degrees
    Packed,  ///< 35.412240 is 35 degrees, 41 minutes and 22.40 seconds
};

/// An angle, or in plain English why the text is none.
struct AngleResult
{
    std::optional<double> degrees;
    std::string fault;
};

/// Reads an angle of at most 360 degrees either way. Whatever the form, degrees, minutes and
/// seconds may be separated: 35:41:22.4 or 35-41-22.4, or with the signs behind them, which may
/// also be the half-width ones of the controller. Only the last part has decimals.
[[nodiscard]] AngleResult ParseAngle(std::string_view utf8, AngleForm form);

/// 35 degrees, 41 minutes and 22.4 seconds with the signs behind them, rounded to @p decimals of
/// the seconds. Other than the controller's text it keeps the sign of an angle below one degree.
/// @param isPacked  the same as 35.412240, see AngleForm::Packed
[[nodiscard]] std::string SexagesimalText(double degrees, int decimals, bool isPacked = false);

/// A number that the user typed, with a name for it and the bounds it must keep: degrees or metres.
struct Typed
{
    Wording what;
    const std::string& text;
    double lowest;
    double highest;
};

/// @param unit  of the bounds
[[nodiscard]] Failure OutOfRange(const Typed& typed, const char* unit);

/// @param rad  the angle in radians
/// @return what is wrong with it
[[nodiscard]] std::optional<Failure> ReadAngle(const Typed& typed, AngleForm form, double& rad);

/// A number as it is typed at the screens: see TypedNumber().
/// @return what is wrong with it
[[nodiscard]] std::optional<Failure> ReadMetres(const Typed& typed, double& metres);

/// @return the first that is one
[[nodiscard]] std::optional<Failure>
FirstOf(std::initializer_list<std::optional<Failure>> failures);

} // namespace fieldcore::cli

#include "cli/GeoInput.h"

#include "cli/Options.h"

#include "core/input/Check.h"
#include "core/platform/Degrees.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace fieldcore::cli {

namespace {

constexpr double kMostDegrees = 360.0;
constexpr std::string_view kDigits = "0123456789";

bool TakeOneOf(std::string_view& text, std::initializer_list<std::string_view> signs)
{
    for (const std::string_view sign : signs) {
        if (text.starts_with(sign)) {
            text.remove_prefix(sign.size());
            return true;
        }
    }
    return false;
}

/// Takes what separates a part from the next one, or ends it.
/// @param part  0 degrees, 1 minutes, 2 seconds
bool TakeSeparator(std::string_view& text, std::size_t part)
{
    switch (part) {
    case 0:
        return TakeOneOf(text, {":", "-", "\u00B0", "\uFF9F"});
    case 1:
        return TakeOneOf(text, {":", "-", "'", "\u2032"});
    default:
        return TakeOneOf(text, {"\"", "\u2033"});
    }
}

AngleResult Fault(std::string_view text, int why)
{
    return {std::nullopt, Worded(text::kSayNoAngle, {std::string(text), Worded(why)})};
}

/// "412240" as minutes and seconds: two digits each, then decimals. Missing ones are zeros.
std::array<double, 3> Unpacked(std::string_view degrees, std::string_view decimals)
{
    std::string digits(decimals);
    digits.resize(std::max<std::size_t>(digits.size(), 4), '0');
    const std::string seconds = digits.substr(2, 2) + "." + digits.substr(4) + "0";
    return {ParseReal(degrees).value_or(0.0), ParseReal(digits.substr(0, 2)).value_or(0.0),
            ParseReal(seconds).value_or(0.0)};
}

std::string Padded(std::uint64_t number, std::size_t digits)
{
    std::string text = std::to_string(number);
    text.insert(0, digits - std::min(digits, text.size()), '0');
    return text;
}

} // namespace

AngleResult ParseAngle(std::string_view utf8, AngleForm form)
{
    std::string_view rest = utf8;
    const bool isNegative = rest.starts_with('-');
    static_cast<void>(TakeOneOf(rest, {"-", "+"}));
    std::array<double, 3> parts{};
    std::size_t count = 0;
    for (bool isLast = false; !rest.empty(); ++count) {
        const std::size_t whole = std::min(rest.find_first_not_of(kDigits), rest.size());
        std::size_t length = whole;
        if (rest.substr(whole).starts_with('.')) {
            length = std::min(rest.find_first_not_of(kDigits, whole + 1), rest.size());
        }
        const std::optional<double> number = ParseReal(rest.substr(0, length));
        if (count == parts.size() || isLast || whole == 0 || !number) {
            return Fault(utf8, text::kSayAngleForms);
        }
        parts[count] = *number;
        isLast = length > whole;
        const bool isAlone = count == 0 && length == rest.size();
        if (isAlone && form == AngleForm::Packed) {
            parts = Unpacked(rest.substr(0, whole),
                             length > whole ? rest.substr(whole + 1) : std::string_view());
        }
        rest.remove_prefix(length);
        if (!rest.empty() && !TakeSeparator(rest, count)) {
            return Fault(utf8, text::kSayAngleForms);
        }
    }
    if (count == 0) {
        return Fault(utf8, text::kSayAngleDigits);
    }
    if (parts[1] >= 60.0 || parts[2] >= 60.0) {
        return Fault(utf8, text::kSayAngleSixty);
    }
    const double degrees = parts[0] + (parts[1] * 60.0 + parts[2]) / 3600.0;
    if (degrees > kMostDegrees) {
        return Fault(utf8, text::kSayAngleTurn);
    }
    return {isNegative ? -degrees : degrees, ""};
}

std::string SexagesimalText(double degrees, int decimals, bool isPacked)
{
    std::uint64_t perSecond = 1;
    for (int at = 0; at < decimals; ++at) {
        perSecond *= 10;
    }
    const double units = std::abs(degrees) * 3600.0 * static_cast<double>(perSecond);
    const auto count = static_cast<std::uint64_t>(std::llround(units)); // of the last decimal
    const std::uint64_t seconds = count / perSecond;
    return (degrees < 0.0 && count > 0 ? "-" : "") + std::to_string(seconds / 3600) +
           (isPacked ? "." : "\u00B0") + Padded(seconds / 60 % 60, 2) + (isPacked ? "" : "'") +
           Padded(seconds % 60, 2) + (isPacked || decimals == 0 ? "" : ".") +
           (decimals > 0 ? Padded(count % perSecond, static_cast<std::size_t>(decimals)) : "") +
           (isPacked ? "" : "\"");
}

Failure OutOfRange(const Typed& typed, const char* unit)
{
    return UsageFailure({text::kSayOutOfRange, {typed.what, typed.text}},
                        LimitWords({typed.lowest, typed.highest, unit}));
}

std::optional<Failure> ReadAngle(const Typed& typed, AngleForm form, double& rad)
{
    const AngleResult angle = ParseAngle(typed.text, form);
    if (!angle.degrees) {
        return UsageFailure(angle.fault);
    }
    if (*angle.degrees < typed.lowest || *angle.degrees > typed.highest) {
        return OutOfRange(typed, "deg");
    }
    rad = RadiansOf(*angle.degrees);
    return std::nullopt;
}

std::optional<Failure> ReadMetres(const Typed& typed, double& metres)
{
    const std::optional<double> number = TypedNumber(FromUtf8(typed.text));
    if (!number) {
        return UsageFailure({text::kSayNoMetres, {typed.text}}, text::kSayNoMetresHint);
    }
    if (*number < typed.lowest || *number > typed.highest) {
        return OutOfRange(typed, "m");
    }
    metres = *number;
    return std::nullopt;
}

std::optional<Failure> FirstOf(std::initializer_list<std::optional<Failure>> failures)
{
    const auto* const first = std::find_if(failures.begin(), failures.end(),
                                           [](const auto& failure) { return failure.has_value(); });
    return first != failures.end() ? *first : std::nullopt;
}

} // namespace fieldcore::cli

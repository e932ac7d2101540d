#include "cli/GeoInput.h"

#include "cli/Report.h"

#include "core/planning/Degrees.h"

namespace fieldcore::cli {

namespace {

Failure OutOfRange(const Typed& typed, const char* unit)
{
    const auto bound = [](double value) { return Value::Real(value, 0).Words(); };
    return UsageFailure(std::string(typed.what) + " " + typed.text + " is out of range.",
                        bound(typed.lowest) + " to " + bound(typed.highest) + " " + unit);
}

} // namespace

std::optional<Failure> ReadAngle(const Typed& typed, AngleForm form, double& rad)
{
    const AngleResult angle = ParseAngle(typed.text, form);
    if (!angle.degrees) {
        return UsageFailure(angle.fault);
    }
    if (*angle.degrees < typed.lowest || *angle.degrees > typed.highest) {
        return OutOfRange(typed, "degrees");
    }
    rad = RadiansOf(*angle.degrees);
    return std::nullopt;
}

std::optional<Failure> ReadMetres(const Typed& typed, double& metres)
{
    const std::optional<double> number = ParseMetres(typed.text);
    if (!number) {
        return UsageFailure("\"" + typed.text + "\" is no number of metres.",
                            "digits with a decimal point, such as -12.5");
    }
    if (*number < typed.lowest || *number > typed.highest) {
        return OutOfRange(typed, "m");
    }
    metres = *number;
    return std::nullopt;
}

} // namespace fieldcore::cli

#include "cli/GeoInput.h"

#include "cli/Options.h"
#include "cli/Report.h"
#include "cli/Wording.h"

#include "core/planning/Degrees.h"
#include "core/resources/StringTable.h"

namespace fieldcore::cli {

namespace {

Failure OutOfRange(const Typed& typed, const char* unit)
{
    return UsageFailure(Worded(text::kSayOutOfRange, {typed.what, typed.text}),
                        LimitWords({typed.lowest, typed.highest, unit}));
}

} // namespace

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
    const std::optional<double> number = ParseMetres(typed.text);
    if (!number) {
        return UsageFailure(Worded(text::kSayNoMetres, {typed.text}),
                            Worded(text::kSayNoMetresHint));
    }
    if (*number < typed.lowest || *number > typed.highest) {
        return OutOfRange(typed, "m");
    }
    metres = *number;
    return std::nullopt;
}

} // namespace fieldcore::cli

#pragma once

#include "cli/AngleText.h"
#include "cli/Failure.h"

#include <optional>
#include <string>

namespace fieldcore::cli {

/// A number that the user typed, with a name for it and the bounds it must keep: degrees or metres.
struct Typed
{
    std::string what;
    const std::string& text;
    double lowest;
    double highest;
};

/// @param rad  the angle in radians
/// @return what is wrong with it
[[nodiscard]] std::optional<Failure> ReadAngle(const Typed& typed, AngleForm form, double& rad);

/// @return what is wrong with it
[[nodiscard]] std::optional<Failure> ReadMetres(const Typed& typed, double& metres);

} // namespace fieldcore::cli

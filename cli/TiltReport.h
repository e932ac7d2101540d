#pragma once

#include "cli/Report.h"

#include "core/tilt/TiltSettings.h"

#include <string>

namespace fieldcore::cli {

/// The sensor's last reading and its calibration, a value a line.
void AddTilt(Report& report, const TiltSettings& tilt);

/// One line of the watch, and the line that heads its columns.
[[nodiscard]] std::string TiltLine(const TiltSettings& tilt);
[[nodiscard]] std::string TiltHeader();

} // namespace fieldcore::cli

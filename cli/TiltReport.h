#pragma once

#include "cli/Report.h"

#include "core/link/Receiver.h"

#include <string>

namespace fieldcore::cli {

/// The sensor's last reading and its calibration, a value a line.
void AddTilt(Report& report, const Receiver& receiver);

/// One line of the watch, and the line that heads its columns.
[[nodiscard]] std::string TiltLine(const Receiver& receiver);
[[nodiscard]] std::string TiltHeader();

} // namespace fieldcore::cli

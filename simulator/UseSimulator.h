#pragma once

namespace fieldcore {

/// From now on CCommand::OpenPort("sim:"), or "sim:SCENARIO" with one of the shipped scenarios or a
/// file, starts a receiver in software behind a port of its own and opens that. It ends when the
/// port is closed. Call it once, before the first such port is opened; any thread.
void UseSimulator();

} // namespace fieldcore

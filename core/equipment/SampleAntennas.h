#pragma once

#include <cstdint>
#include <span>

namespace fieldcore {

/// The bytes of the antenna catalogue that comes with the program, core/equipment/GAntenna.ini.
[[nodiscard]] std::span<const std::uint8_t> SampleAntennas();

} // namespace fieldcore

#pragma once

#include "core/link/FrameReader.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace fieldcore {

/// What a receiver tells of itself after a BREAK, packet 0x6E.
struct IdentificationRecord
{
    std::uint8_t port = 0; ///< from 1
    std::uint32_t baudRate = 0;
    std::uint8_t byteSize = 0;
    std::uint8_t parity = 0;   ///< 0 none, 1 odd, 2 even
    std::uint8_t stopBits = 0; ///< 0 one stop bit, 2 two stop bits
    bool flowControl = false;
    std::uint32_t typeNumber = 0;
    double version = 0.0;
};

/// Reads the packet's text, as "ID,3017;PORT,0,38400,L,8,1,N,F;VER,4.43,". Empty fields do not
/// count as fields.
/// @return nothing for a packet of another type, or with fewer than twelve fields
[[nodiscard]] std::optional<IdentificationRecord> ParseIdentification(FrameReader frame);

/// Type number of a model text: four leading digits are the number itself; otherwise "VX2",
/// "VX1" and "VX1-GNSS" are known, and any other text is type 3010.
[[nodiscard]] std::uint32_t TypeNumberOfModel(std::wstring_view model);

} // namespace fieldcore

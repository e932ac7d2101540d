#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace fieldcore {

/// A block of an application file or of logged data; the layouts stand in docs/antenna.md.
struct ApplicationFileDataBlock
{
    std::uint8_t type = 0;
    std::span<const std::uint8_t> data; ///< must outlive the block
};

/// The antenna as such a block has it.
struct AntennaRecord
{
    static constexpr std::uint8_t kBlockType = 0x08;

    std::wstring charCode; ///< without blanks at its end
    std::wstring serial;   ///< as above
    int way = 0;           ///< 0: the height is vertical; else the method's number and 1
    double heightM = 0.0;  ///< as measured
};

/// @return nothing if it is a block of another type, too short, or says what cannot be
[[nodiscard]] std::optional<AntennaRecord> ParseAntennaBlock(const ApplicationFileDataBlock& block);

/// The last antenna in a row of blocks: it holds until the end. What follows a block that is cut
/// off is not looked at.
/// @return a view of @p blocks; nothing if no block has what ParseAntennaBlock() takes
[[nodiscard]] std::optional<ApplicationFileDataBlock>
FindAntennaBlock(std::span<const std::uint8_t> blocks);

} // namespace fieldcore

#pragma once

#include "core/link/FrameLog.h"
#include "core/platform/Value.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace fieldcore {

/// One field of a frame, read.
struct DescribedField
{
    std::size_t offset = 0; ///< from the first data byte
    std::string name;
    Value value = Value::Unknown();
    std::string meaning; ///< of the value, in words; empty where it speaks for itself
};

/// What some bytes of an exchange are.
struct DescribedBytes
{
    enum class Kind
    {
        Frame,
        Ack,
        Nak,
        Break,
        Line,  ///< of text
        Piece, ///< the start of a frame whose end is missing
        Stray  ///< bytes that are none of these
    };

    Kind kind = Kind::Stray;
    std::size_t length = 0; ///< bytes
    // Of a frame, or of a piece that has it:
    std::optional<std::uint8_t> type;
    std::string name;  ///< of the frame; "unknown type" if it has none
    std::string title; ///< the same for the screens, Japanese; empty if it has none
    // Of a frame:
    bool checksumGood = true;
    std::uint8_t checksum = 0;         ///< as it stands there
    std::uint8_t expectedChecksum = 0; ///< as it should be
    std::vector<DescribedField> fields;
    std::string fault; ///< what is wrong with it; empty if nothing is

    /// Whether it is damaged or no frame at all.
    [[nodiscard]] bool IsFault() const
    {
        return kind == Kind::Stray || !checksumGood || !fault.empty();
    }
};

/// Takes apart what went over the line in one piece: mostly one frame, or a lone byte.
[[nodiscard]] std::vector<DescribedBytes> DescribeBytes(Direction direction,
                                                        std::span<const std::uint8_t> bytes);

} // namespace fieldcore

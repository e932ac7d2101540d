#pragma once

#include "core/link/FrameLog.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace fieldcore {

/// How the bytes of a field are read.
enum class FieldKind : std::uint8_t
{
    Unsigned,   ///< most significant byte first, 1 to 4 bytes
    Real,       ///< IEEE 754, 4 or 8 bytes
    Angle,      ///< the same, radians
    Digit,      ///< one ASCII digit; any character below '0' is 0
    Digits,     ///< a decimal number in ASCII; 0 where there is none
    Hundredths, ///< the same without its point: "00443" is 4.43
    Text,       ///< code page 932, filled with blanks
    Pattern,    ///< bytes that mean nothing as a number
    Mask,       ///< one bit for each satellite, 1 to 4 bytes
    Spare,      ///< not shown
};

/// What a value means, or what some bits of it mean.
struct Meaning
{
    std::uint32_t bits;  ///< that are looked at
    std::uint32_t value; ///< that they have
    std::string_view words;
};

struct FieldLayout
{
    std::size_t width; ///< bytes; 0: all that is left
    FieldKind kind;
    std::string_view name;
    std::string_view unit = {};
    std::span<const Meaning> meanings = {};
};

/// Instead of a number of bytes: no field may be missing.
inline constexpr std::size_t kWhole = ~std::size_t{0};

/// The data of one kind of frame, with every field that a frame of it may have.
struct FrameLayout
{
    std::uint8_t type;
    Direction direction;
    std::string_view prefix; ///< how the data begin; tells frames of one type apart
    std::string_view name;
    std::string_view title; ///< the same for the screens, Japanese, UTF-8
    /// The first stands for the prefix, where it is a spare one.
    std::span<const FieldLayout> fields = {};
    std::size_t endsFrom = kWhole; ///< data bytes from which on a field may be missing
    /// Of each of the records that follow, as many as the byte before says.
    std::span<const FieldLayout> record = {};

    /// Data bytes that are there at least.
    [[nodiscard]] std::size_t ShortestLength() const;
};

// The layouts of docs/protocol.md, in its order: what the parsers read by, what a trace shows, and
// what the tables of that page are compared with. The simulator writes its own bytes.

[[nodiscard]] std::span<const FrameLayout> FrameLayouts();

/// The type of the frames with a list of satellites.
inline constexpr std::uint8_t kSatelliteList = 0x17;

// The two kinds of records in a list of satellites. Which of the fields a record has depends on the
// satellite and on the format of the list.
[[nodiscard]] std::span<const FieldLayout> TextSatelliteLayout();
[[nodiscard]] std::span<const FieldLayout> BinarySatelliteLayout();

/// @return null for a frame that no receiver or controller is known to send
[[nodiscard]] const FrameLayout* FindFrameLayout(Direction direction, std::uint8_t type,
                                                 std::string_view data);

} // namespace fieldcore

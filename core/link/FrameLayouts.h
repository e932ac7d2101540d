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
    Digits,     ///< a decimal number in ASCII
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

/// What follows the fields that each frame of a type has.
enum class Records : std::uint8_t
{
    None,
    Fixed,            ///< of the layout's record fields, as many as the last byte before says
    Satellites,       ///< counted by the two digits at the start, form in the third byte
    SatellitesOfFrame ///< counted by the fifth byte, form in the fourth
};

/// The data of one kind of frame.
struct FrameLayout
{
    std::uint8_t type;
    Direction direction;
    std::string_view prefix; ///< how the data begin; tells frames of one type apart
    std::string_view name;
    std::string_view title; ///< the same for the screens, Japanese, UTF-8
    std::size_t shortest;   ///< data bytes that are there at least
    std::span<const FieldLayout> fields;
    Records records = Records::None;
    std::span<const FieldLayout> record = {};
};

/// @return null for a frame that no receiver or controller is known to send
[[nodiscard]] const FrameLayout* FindFrameLayout(Direction direction, std::uint8_t type,
                                                 std::string_view data);

} // namespace fieldcore

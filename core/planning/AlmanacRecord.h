#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace fieldcore {

inline constexpr int kMaxPrn = 32;
inline constexpr std::size_t kAlmanacRecordSize = 80;

/// A record as it stands in the almanac file: 80 bytes, little-endian.
using AlmanacBytes = std::array<std::uint8_t, kAlmanacRecordSize>;

/// Almanac of one satellite. Angles are semicircles, as broadcast; AlmanacOrbit turns them into
/// radians. The values are those of the record, in range or not.
struct AlmanacRecord
{
    std::uint8_t prn = 0;        ///< 1 to 32; 193 to 202 in texts of QZSS
    std::uint32_t timeStamp = 0; ///< as the receiver sent it; no computation uses it
    std::int16_t week = 0;       ///< GPS week of toa as broadcast, may be 10-bit
    std::uint32_t toaS = 0;      ///< reference time, seconds of its week
    double sqrtA = 0.0;          ///< square root of the semi-major axis, m^0.5
    double eccentricity = 0.0;
    double inclination = 0.0; ///< semicircles
    double omegaDot = 0.0;    ///< rate of right ascension, semicircles/s
    double omega0 = 0.0;      ///< longitude of ascending node at the week's start, semicircles
    double omega = 0.0;       ///< argument of perigee, semicircles
    double m0 = 0.0;          ///< mean anomaly at toa, semicircles
    std::uint8_t health = 0;  ///< 0: healthy
};

/// The padding of the record is zero.
[[nodiscard]] AlmanacBytes EncodeAlmanac(const AlmanacRecord& record) noexcept;

/// Any bytes make a record: ranges are not checked, and the padding is not looked at.
[[nodiscard]] AlmanacRecord
DecodeAlmanac(std::span<const std::uint8_t, kAlmanacRecordSize> bytes) noexcept;

} // namespace fieldcore

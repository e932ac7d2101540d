#include "core/planning/AlmanacRecord.h"

#include <bit>
#include <cstddef>

namespace fieldcore {

namespace {

/// Where a field starts in the record.
enum Offset : std::size_t
{
    Prn = 0,
    TimeStamp = 4,
    Week = 8,
    Toa = 12,
    SqrtA = 16,
    Eccentricity = 24,
    Inclination = 32,
    OmegaDot = 40,
    Omega0 = 48,
    Omega = 56,
    M0 = 64,
    Health = 72,
};

// Byte by byte, so that it comes out alike whatever the order of the machine.
template <typename Unsigned>
void Put(AlmanacBytes& bytes, Offset at, Unsigned value)
{
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        bytes[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
}

void Put(AlmanacBytes& bytes, Offset at, double value)
{
    Put(bytes, at, std::bit_cast<std::uint64_t>(value));
}

template <typename Unsigned>
Unsigned Get(std::span<const std::uint8_t, kAlmanacRecordSize> bytes, Offset at)
{
    std::uint64_t value = 0;
    for (std::size_t i = sizeof(Unsigned); i-- > 0;) {
        value = value << 8 | bytes[at + i];
    }
    return static_cast<Unsigned>(value);
}

double GetDouble(std::span<const std::uint8_t, kAlmanacRecordSize> bytes, Offset at)
{
    return std::bit_cast<double>(Get<std::uint64_t>(bytes, at));
}

} // namespace

AlmanacBytes EncodeAlmanac(const AlmanacRecord& record) noexcept
{
    AlmanacBytes bytes{};
    bytes[Prn] = record.prn;
    Put(bytes, TimeStamp, record.timeStamp);
    Put(bytes, Week, static_cast<std::uint16_t>(record.week));
    Put(bytes, Toa, record.toaS);
    Put(bytes, SqrtA, record.sqrtA);
    Put(bytes, Eccentricity, record.eccentricity);
    Put(bytes, Inclination, record.inclination);
    Put(bytes, OmegaDot, record.omegaDot);
    Put(bytes, Omega0, record.omega0);
    Put(bytes, Omega, record.omega);
    Put(bytes, M0, record.m0);
    bytes[Health] = record.health;
    return bytes;
}

AlmanacRecord DecodeAlmanac(std::span<const std::uint8_t, kAlmanacRecordSize> bytes) noexcept
{
    AlmanacRecord record;
    record.prn = bytes[Prn];
    record.timeStamp = Get<std::uint32_t>(bytes, TimeStamp);
    record.week = static_cast<std::int16_t>(Get<std::uint16_t>(bytes, Week));
    record.toaS = Get<std::uint32_t>(bytes, Toa);
    record.sqrtA = GetDouble(bytes, SqrtA);
    record.eccentricity = GetDouble(bytes, Eccentricity);
    record.inclination = GetDouble(bytes, Inclination);
    record.omegaDot = GetDouble(bytes, OmegaDot);
    record.omega0 = GetDouble(bytes, Omega0);
    record.omega = GetDouble(bytes, Omega);
    record.m0 = GetDouble(bytes, M0);
    record.health = bytes[Health];
    return record;
}

} // namespace fieldcore

#include "simulator/Replies.h"

#include <algorithm>
#include <cmath>

namespace fieldcore::simulator {

namespace {

constexpr std::uint8_t kList = 0x17;
constexpr std::uint8_t kData = 0x55;
constexpr std::size_t kMaxData = 255;

/// The number of a satellite on the wire, where the systems share one row of numbers.
unsigned WireNumber(const Satellite& satellite)
{
    const auto number = static_cast<unsigned>(satellite.number);
    switch (satellite.system) {
    case SatelliteSystem::Gps:
        return number;
    case SatelliteSystem::Sbas:
        return number - 87;
    case SatelliteSystem::Glonass:
        return number + 51;
    case SatelliteSystem::Other:
        break;
    }
    return number + 76;
}

void PutBinary(DataWriter& out, const Satellite& satellite, std::uint8_t mask)
{
    out.U8(WireNumber(satellite));
    if (satellite.system == SatelliteSystem::Glonass) {
        out.U8(0); // frequency channel: the middle one
    }
    const auto azimuth = static_cast<unsigned>(satellite.azimuthDeg);
    out.U8(azimuth & 0xFFU);
    out.U8(static_cast<unsigned>(satellite.elevationDeg) | (azimuth > 0xFFU ? 0x80U : 0U));
    constexpr std::size_t kWireOrder[] = {0, 1, 3, 2}; // bit 2 stands for the fourth signal
    for (unsigned bit = 0; bit < 4; ++bit) {
        if ((mask >> bit & 1U) != 0) {
            const double signal = satellite.signals[kWireOrder[bit]].value_or(0.0);
            out.U8(static_cast<unsigned>(std::lround(signal * 4.0)));
        }
    }
}

void PutText(DataWriter& out, const Satellite& satellite, bool withSecond)
{
    out.Digits(static_cast<long>(WireNumber(satellite)), 2);
    out.Digits(satellite.azimuthDeg, 3).Digits(satellite.elevationDeg, 2);
    out.Digits(std::lround(satellite.signals[0].value_or(0.0) * 10.0), 3);
    if (withSecond) {
        out.Digits(std::lround(satellite.signals[1].value_or(0.0) * 100.0), 5);
    }
}

Bytes TextList(const Scenario& scenario, const Sky& sky)
{
    const bool withSecond = scenario.listForm == ListForm::Text2;
    const std::size_t room = (kMaxData - 3) / (withSecond ? 15 : 10);
    std::vector<Satellite> listed = Listed(sky, false);
    std::erase_if(listed, [](const Satellite& satellite) {
        return satellite.system != SatelliteSystem::Gps &&
               satellite.system != SatelliteSystem::Sbas;
    });
    listed.resize(std::min(listed.size(), room));
    DataWriter out;
    out.Digits(static_cast<long>(listed.size()), 2).U8(withSecond ? '2' : '1');
    for (const Satellite& satellite : listed) {
        PutText(out, satellite, withSecond);
    }
    return out.Frame(kList);
}

Bytes BinaryList(const Scenario& scenario, const Sky& sky)
{
    constexpr std::size_t kRoom = (kMaxData - 3) / 8; // the longest record has eight bytes
    std::vector<Satellite> listed = Listed(sky, false);
    listed.resize(std::min(listed.size(), kRoom));
    DataWriter out;
    out.Digits(static_cast<long>(listed.size()), 2).U8(scenario.signalMask);
    for (const Satellite& satellite : listed) {
        PutBinary(out, satellite, scenario.signalMask);
    }
    return out.Frame(kList);
}

/// One bit for each satellite of a system that @p counts, number 1 at bit 0.
template <typename Predicate>
unsigned Mask(const std::vector<Satellite>& satellites, SatelliteSystem system, Predicate counts)
{
    unsigned mask = 0;
    for (const Satellite& satellite : satellites) {
        const int bit = satellite.number - 1;
        if (satellite.system == system && bit < 32 && counts(satellite)) {
            mask |= 1U << static_cast<unsigned>(bit);
        }
    }
    return mask;
}

bool Always(const Satellite& /*satellite*/)
{
    return true;
}

bool HasSecondSignal(const Satellite& satellite)
{
    return satellite.signals[1].has_value();
}

} // namespace

Bytes SatelliteList(const Scenario& scenario, const Sky& sky)
{
    return scenario.listForm == ListForm::Binary ? BinaryList(scenario, sky)
                                                 : TextList(scenario, sky);
}

std::vector<Bytes> SatelliteFrames(const Scenario& scenario, const Sky& sky, std::uint8_t form)
{
    const std::vector<Satellite> listed = Listed(sky, form == 2);
    const std::size_t frames =
        std::max<std::size_t>((listed.size() + kRecordsPerFrame - 1) / kRecordsPerFrame, 1);
    std::vector<Bytes> all;
    for (std::size_t frame = 0; frame < frames; ++frame) {
        const std::size_t begin = frame * kRecordsPerFrame;
        const std::size_t end = std::min(begin + kRecordsPerFrame, listed.size());
        DataWriter out;
        out.U8(form).U8(frame).U8(frame + 1 == frames ? 1 : 0);
        out.U8(scenario.signalMask).U8(end - begin);
        for (std::size_t i = begin; i < end; ++i) {
            PutBinary(out, listed[i], scenario.signalMask);
        }
        all.push_back(out.Frame(kList));
    }
    return all;
}

Bytes AlmanacReply(const Almanac& almanac)
{
    DataWriter out;
    out.U8(2).U8(static_cast<unsigned>(almanac.prn));
    out.U32(almanac.stamp).U16(static_cast<unsigned>(almanac.week)).U32(almanac.toaS);
    out.F64(almanac.sqrtA).F64(almanac.eccentricity).F64(almanac.inclination);
    out.F64(almanac.omegaDot).F64(almanac.omega0).F64(almanac.omega).F64(almanac.m0);
    out.U8(almanac.health);
    return out.Frame(kData);
}

Bytes SatelliteStateReply(const Scenario& scenario, const Sky& sky,
                          const std::vector<Almanac>& almanacs, bool withGlonass)
{
    unsigned held = 0;
    unsigned healthy = 0;
    Almanac newest;
    for (const Almanac& almanac : almanacs) {
        const unsigned bit = 1U << static_cast<unsigned>(almanac.prn - 1);
        held |= bit;
        healthy |= almanac.health == 0 ? bit : 0U;
        newest = almanac.week > newest.week ? almanac : newest;
    }
    const auto gps = [&](auto counts) {
        return Mask(sky.satellites, SatelliteSystem::Gps, counts);
    };
    DataWriter out;
    out.U8(0).U8(0);
    out.U32(held).U32(gps(IsTracked)).U32(healthy).U32(0xFFFFFFFFU);
    out.U32(gps(IsTracked)).U32(gps(HasSecondSignal)).U32(gps(IsTracked)).U32(gps(Always));
    out.U32(0);
    out.U16(static_cast<unsigned>(newest.week)).U16(static_cast<unsigned>(scenario.utcOffsetS));
    out.U32(newest.toaS).U32(newest.stamp);
    if (withGlonass) {
        const auto glonass = [&](auto counts) {
            return Mask(sky.satellites, SatelliteSystem::Glonass, counts);
        };
        out.U24(0).U24(glonass(IsTracked)).U24(glonass(Always)).U24(0xFFFFFF);
        out.U24(glonass(IsTracked)).U24(glonass(HasSecondSignal)).U24(glonass(IsTracked));
    }
    return out.Frame(kData);
}

Bytes OtherSatelliteReply(const Sky& sky, std::uint8_t first)
{
    const auto other = [&](auto counts) {
        return Mask(sky.satellites, SatelliteSystem::Other, counts) & 0xFFFFU;
    };
    DataWriter out;
    out.U8(0x14).U8(first).U8(4).U8(0).U8(2);
    out.U16(0).U16(other(IsTracked)).U16(other(Always));
    out.U16(other(IsTracked)).U16(other(HasSecondSignal));
    return out.Frame(kData);
}

} // namespace fieldcore::simulator

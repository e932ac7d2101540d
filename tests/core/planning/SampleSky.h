#pragma once

#include "core/planning/AlmanacRecord.h"

#include <cstdint>
#include <vector>

namespace fieldcore::testing {

inline constexpr int kSampleWeek = 2200;

/// A satellite of a made-up constellation: six planes of five, slightly eccentric, like the real
/// one in size and inclination.
/// @param prn  1 to 30
[[nodiscard]] inline AlmanacRecord SampleSatellite(int prn)
{
    const int plane = prn % 6;
    const int place = prn / 6; // in the plane
    AlmanacRecord record;
    record.prn = static_cast<std::uint8_t>(prn);
    record.timeStamp = 1'330'000'000;
    record.week = kSampleWeek;
    record.toaS = 405504;
    record.sqrtA = 5153.5 + 0.01 * prn;
    record.eccentricity = 0.0007 * prn;
    record.inclination = 0.305 + 0.0005 * (prn % 7);
    record.omegaDot = -2.6e-9;
    record.omega0 = plane / 3.0 - 0.95;
    record.omega = 0.13 * prn - 2.0;
    record.m0 = place * 0.4 + plane * 0.07 - record.omega;
    return record;
}

/// Its first @p count satellites.
[[nodiscard]] inline std::vector<AlmanacRecord> SampleSatellites(int count)
{
    std::vector<AlmanacRecord> records;
    for (int prn = 1; prn <= count; ++prn) {
        records.push_back(SampleSatellite(prn));
    }
    return records;
}

/// An almanac file.
[[nodiscard]] inline std::vector<std::uint8_t> FileOf(const std::vector<AlmanacRecord>& records)
{
    std::vector<std::uint8_t> content;
    for (const AlmanacRecord& record : records) {
        const AlmanacBytes bytes = EncodeAlmanac(record);
        content.insert(content.end(), bytes.begin(), bytes.end());
    }
    return content;
}

[[nodiscard]] inline std::vector<std::uint8_t> SampleFile(int count = 30)
{
    return FileOf(SampleSatellites(count));
}

} // namespace fieldcore::testing

#include "core/link/SatelliteReplies.h"

#include "core/link/SatelliteRecords.h"

#include <algorithm>

namespace fieldcore {

namespace {

using namespace std::string_view_literals;

/// @return false if the data end in a record
bool AddAll(SatelliteRecords& records, SatelliteList& list)
{
    while (const std::optional<ListedSatellite> satellite = records.Next()) {
        if (!satellite->HasDirection()) {
            ++list.dropped;
            continue;
        }
        list.gpsCount += satellite->system == ListedSatellite::Gps ? 1 : 0;
        list.glonassCount += satellite->system == ListedSatellite::Glonass ? 1 : 0;
        list.satellites.push_back(*satellite);
    }
    return records.IsComplete();
}

} // namespace

std::optional<SatelliteList> ParseSatelliteList(FrameReader frame)
{
    SatelliteRecords records(frame, "");
    SatelliteList list;
    if (!records.Fits() || !AddAll(records, list)) {
        return std::nullopt;
    }
    return list;
}

std::optional<bool> ParseSatelliteListFrame(FrameReader frame, SatelliteListForm form, int number,
                                            SatelliteList& list)
{
    const char prefix = static_cast<char>(form);
    SatelliteRecords records(frame, {&prefix, 1});
    if (!records.Fits() || records.FrameNumber() != number || !AddAll(records, list)) {
        return std::nullopt;
    }
    return records.IsLast();
}

std::optional<AlmanacReply> ParseAlmanac(FrameReader frame, int prn)
{
    return ReadReply<AlmanacReply>(frame, 0x55, "\2", [prn](auto& in, auto& reply) {
        in.Read(reply.prn, reply.timeStamp, reply.week, reply.toaS, reply.sqrtA, reply.eccentricity,
                reply.inclination, reply.omegaDot, reply.omega0, reply.omega, reply.m0,
                reply.health);
        return reply.prn == prn;
    });
}

std::optional<SatelliteDataReply> ParseSatelliteData(FrameReader frame, bool withTriples)
{
    return ReadReply<SatelliteDataReply>(frame, 0x55, "\0"sv, [withTriples](auto& in, auto& reply) {
        const auto readAll = [&in](auto& words) {
            for (auto& word : words) {
                in.Read(word);
            }
        };
        readAll(reply.words);
        readAll(reply.shortWords);
        readAll(reply.moreWords);
        if (!withTriples) {
            in.Leave(reply.triples.size());
            return true;
        }
        readAll(reply.triples);
        return in.IsComplete();
    });
}

std::optional<SatelliteDataExtra> ParseSatelliteDataExtra(FrameReader frame)
{
    return ReadReply<SatelliteDataExtra>(frame, 0x55, "\x14", [](auto& in, auto& extra) {
        std::uint8_t first = 0;
        std::span<const std::uint8_t> form;
        in.Read(first, form);
        if (!std::ranges::equal(form, "\4\0\2"sv)) {
            in.Leave(extra.size());
            return true;
        }
        for (std::uint16_t& word : extra) {
            in.Read(word);
        }
        return in.IsComplete();
    });
}

} // namespace fieldcore

#include "core/link/SatelliteReplies.h"

#include "core/link/SatelliteRecords.h"

#include <algorithm>

namespace fieldcore {

namespace {

using namespace std::string_view_literals;

constexpr std::uint8_t kTextFormat = 0x30; // any of these bits: the format byte is a digit
constexpr int kSbasOffset = 87;            // raw SBAS numbers start at 33 for PRN 120
constexpr int kMaxPrn = 32;
constexpr int kHighAzimuthDeg = 256;

/// What the raw number of a binary record tells.
struct NumberRange
{
    int first;
    int last;
    ListedSatellite::System system;
    int shift; ///< to the numbering of the system
};
constexpr NumberRange kRanges[] = {{1, kMaxPrn, ListedSatellite::Gps, 0},
                                   {33, 51, ListedSatellite::Sbas, kSbasOffset},
                                   {52, 75, ListedSatellite::Glonass, -51},
                                   {76, 109, ListedSatellite::System6, -76}};

void Classify(ListedSatellite& satellite)
{
    satellite.number = satellite.rawNumber;
    for (const NumberRange& range : kRanges) {
        if (satellite.rawNumber >= range.first && satellite.rawNumber <= range.last) {
            satellite.system = range.system;
            satellite.number += range.shift;
        }
    }
}

/// Reads the next field if it is there, and leaves it otherwise.
/// @return what it counts, of which @p unit make a whole one
double ReadPart(LayoutReader& in, bool isThere, double unit)
{
    int value = 0;
    if (!isThere) {
        in.Leave();
        return kNoSignal;
    }
    in.Read(value);
    return value / unit;
}

ListedSatellite ReadText(LayoutReader& in, std::uint8_t format)
{
    ListedSatellite satellite;
    in.GoOnWith(TextSatelliteLayout());
    in.Read(satellite.rawNumber, satellite.azimuthDeg, satellite.elevationDeg);
    satellite.signals[0] = ReadPart(in, true, 10.0);
    satellite.signals[1] = ReadPart(in, format == '2', 100.0);
    const bool isGps = satellite.rawNumber <= kMaxPrn;
    satellite.system = isGps ? ListedSatellite::Gps : ListedSatellite::Sbas;
    satellite.number = satellite.rawNumber + (isGps ? 0 : kSbasOffset);
    return satellite;
}

ListedSatellite ReadBinary(LayoutReader& in, std::uint8_t format)
{
    ListedSatellite satellite;
    in.GoOnWith(BinarySatelliteLayout());
    in.Read(satellite.rawNumber);
    Classify(satellite);
    if (satellite.system == ListedSatellite::Glonass) {
        std::int8_t channel = 0;
        in.Read(channel);
        satellite.channel = channel; // NOLINT(bugprone-signed-char-misuse): below 0, too
    } else {
        in.Leave();
    }
    std::uint8_t elevation = 0;
    in.Read(satellite.azimuthDeg, elevation);
    satellite.azimuthDeg += (elevation & 0x80) != 0 ? kHighAzimuthDeg : 0;
    satellite.elevationDeg = elevation & 0x7F;
    unsigned bit = 0;
    for (const std::size_t signal : {0U, 1U, 3U, 2U}) { // the fourth comes before the third
        satellite.signals[signal] = ReadPart(in, (format >> bit++ & 1) != 0, 4.0);
    }
    return satellite;
}

/// @return false if the data end in a record
bool AddAll(LayoutReader& in, const SatelliteHead& head, SatelliteList& list)
{
    for (int i = 0; i < head.count; ++i) {
        const ListedSatellite satellite = ReadSatellite(in, head);
        if (!in.IsComplete()) {
            return false;
        }
        if (!satellite.HasDirection()) {
            ++list.dropped;
            continue;
        }
        list.gpsCount += satellite.system == ListedSatellite::Gps ? 1 : 0;
        list.glonassCount += satellite.system == ListedSatellite::Glonass ? 1 : 0;
        list.satellites.push_back(satellite);
    }
    return true;
}

} // namespace

SatelliteHead ReadSatelliteHead(LayoutReader& in, bool isOneFrame)
{
    SatelliteHead head;
    if (isOneFrame) {
        in.Read(head.count, head.format);
        head.isText = (head.format & kTextFormat) != 0;
    } else {
        std::uint8_t form = 0;
        in.Read(form, head.frameNumber, head.last, head.format, head.count);
    }
    return head;
}

ListedSatellite ReadSatellite(LayoutReader& in, const SatelliteHead& head)
{
    return head.isText ? ReadText(in, head.format) : ReadBinary(in, head.format);
}

std::optional<SatelliteList> ParseSatelliteList(FrameReader frame)
{
    return ReadReply<SatelliteList>(frame, kSatelliteList, "", [](auto& in, auto& list) {
        return AddAll(in, ReadSatelliteHead(in, true), list);
    });
}

std::optional<bool> ParseSatelliteListFrame(FrameReader frame, SatelliteListForm form, int number,
                                            SatelliteList& list)
{
    const char prefix = static_cast<char>(form);
    return ReadReply<bool>(frame, kSatelliteList, {&prefix, 1}, [&](auto& in, bool& isLast) {
        const SatelliteHead head = ReadSatelliteHead(in, false);
        isLast = head.last == 1;
        return head.frameNumber == number && AddAll(in, head, list);
    });
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
        in.Read(reply.words, reply.shortWords, reply.moreWords);
        if (withTriples) {
            in.Read(reply.triples);
        }
        return in.IsComplete();
    });
}

std::optional<SatelliteDataExtra> ParseSatelliteDataExtra(FrameReader frame)
{
    return ReadReply<SatelliteDataExtra>(frame, 0x55, "\x14", [](auto& in, auto& extra) {
        std::uint8_t first = 0;
        std::span<const std::uint8_t> form;
        in.Read(first, form);
        if (std::ranges::equal(form, "\4\0\2"sv)) {
            in.Read(extra);
        }
        return in.IsComplete();
    });
}

} // namespace fieldcore

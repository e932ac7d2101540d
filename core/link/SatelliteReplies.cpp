#include "core/link/SatelliteReplies.h"

#include "core/link/NumberFields.h"

#include <bit>

namespace fieldcore {

namespace {

constexpr std::uint8_t kListType = 0x17;
constexpr std::uint8_t kDataType = 0x55;
constexpr std::uint8_t kAlmanacSubType = 0x02;
constexpr std::uint8_t kGeneralSubType = 0x00;
constexpr std::uint8_t kExtraSubType = 0x14;

// Data lengths.
constexpr std::size_t kListHeader = 3;
constexpr std::size_t kListFrameHeader = 5;
constexpr std::size_t kTextRecord = 10;
constexpr std::size_t kTextSecondSignal = 5;
constexpr std::size_t kBinaryRecord = 3; // without the extra byte and the signals
constexpr std::size_t kAlmanacLength = 69;
constexpr std::size_t kGeneralLength = 50;
constexpr std::size_t kTriplesLength = 21;
constexpr std::size_t kExtraLength = 5;
constexpr std::size_t kExtraWordsLength = 10;

constexpr std::uint8_t kTextFormat = 0x30; // any of these bits: the format byte is a digit
constexpr int kSbasOffset = 87;            // raw SBAS numbers start at 33 for PRN 120
constexpr int kMaxPrn = 32;

bool IsDirection(const ListedSatellite& satellite)
{
    return satellite.azimuthDeg >= 0 && satellite.azimuthDeg <= 360 &&
           satellite.elevationDeg >= -90 && satellite.elevationDeg <= 90;
}

/// Counts what is left of the data of a frame while records of changing length are read.
class Remaining
{
public:
    explicit Remaining(std::size_t length) : m_left(length) {}
    bool Spend(std::size_t count)
    {
        if (count > m_left) {
            return false;
        }
        m_left -= count;
        return true;
    }

private:
    std::size_t m_left;
};

bool ReadTextRecord(FrameReader& frame, bool secondSignal, Remaining& left,
                    ListedSatellite& satellite)
{
    if (!left.Spend(kTextRecord + (secondSignal ? kTextSecondSignal : 0))) {
        return false;
    }
    satellite.rawNumber = IntegerField(frame, 2);
    satellite.azimuthDeg = IntegerField(frame, 3);
    satellite.elevationDeg = IntegerField(frame, 2);
    satellite.signals[0] = IntegerField(frame, 3) / 10.0;
    if (secondSignal) {
        satellite.signals[1] = IntegerField(frame, 5) / 100.0;
    }
    const bool gps = satellite.rawNumber <= kMaxPrn;
    satellite.system = gps ? ListedSatellite::Gps : ListedSatellite::Sbas;
    satellite.number = satellite.rawNumber + (gps ? 0 : kSbasOffset);
    return IsDirection(satellite);
}

/// Tells system and number from the raw number of a binary record.
void Classify(ListedSatellite& satellite)
{
    const int raw = satellite.rawNumber;
    satellite.number = raw;
    if (raw >= 1 && raw <= kMaxPrn) {
        satellite.system = ListedSatellite::Gps;
    } else if (raw >= 33 && raw <= 51) {
        satellite.system = ListedSatellite::Sbas;
        satellite.number = raw + kSbasOffset;
    } else if (raw >= 52 && raw <= 75) {
        satellite.system = ListedSatellite::Glonass;
        satellite.number = raw - 51;
    } else if (raw >= 76 && raw <= 109) {
        satellite.system = ListedSatellite::System6;
        satellite.number = raw - 76;
    } else {
        satellite.system = ListedSatellite::Unknown;
    }
}

bool ReadBinaryRecord(FrameReader& frame, std::uint8_t format, Remaining& left,
                      ListedSatellite& satellite)
{
    const auto signalCount = static_cast<std::size_t>(std::popcount(format & 0x0FU));
    if (!left.Spend(kBinaryRecord + signalCount)) {
        return false;
    }
    satellite.rawNumber = frame.Byte();
    Classify(satellite);
    if (satellite.system == ListedSatellite::Glonass) {
        if (!left.Spend(1)) {
            return false;
        }
        frame.Skip(1);
    }
    const std::uint8_t a = frame.Byte();
    const std::uint8_t b = frame.Byte();
    satellite.azimuthDeg = a + ((b & 0x80) != 0 ? 256 : 0);
    satellite.elevationDeg = b & 0x7F;
    constexpr std::array<std::size_t, 4> kWireOrder{0, 1, 3, 2}; // bit 2 stands for the fourth
    for (std::size_t bit = 0; bit < kWireOrder.size(); ++bit) {
        if ((format >> bit & 1) != 0) {
            satellite.signals[kWireOrder[bit]] = frame.Byte() / 4.0;
        }
    }
    return IsDirection(satellite);
}

void Add(SatelliteList& list, const ListedSatellite& satellite)
{
    list.gpsCount += satellite.system == ListedSatellite::Gps ? 1 : 0;
    list.glonassCount += satellite.system == ListedSatellite::Glonass ? 1 : 0;
    list.satellites.push_back(satellite);
}

bool ReadBinaryRecords(FrameReader& frame, std::uint8_t format, int count, Remaining& left,
                       SatelliteList& list)
{
    for (int i = 0; i < count; ++i) {
        ListedSatellite satellite;
        if (!ReadBinaryRecord(frame, format, left, satellite)) {
            return false;
        }
        Add(list, satellite);
    }
    return true;
}

/// Starts reading satellite data of a sub-type; false if the frame is none or too short.
bool BeginData(FrameReader& frame, std::uint8_t subType, std::size_t length)
{
    if (frame.Type() != kDataType || frame.DataLength() < length) {
        return false;
    }
    return frame.Byte() == subType;
}

} // namespace

std::optional<SatelliteList> ParseSatelliteList(FrameReader frame)
{
    if (frame.Type() != kListType || frame.DataLength() < kListHeader) {
        return std::nullopt;
    }
    const int count = IntegerField(frame, 2);
    const std::uint8_t format = frame.Byte();
    Remaining left(frame.DataLength() - kListHeader);
    SatelliteList list;
    if ((format & kTextFormat) == 0) {
        if (!ReadBinaryRecords(frame, format, count, left, list)) {
            return std::nullopt;
        }
        return list;
    }
    for (int i = 0; i < count; ++i) {
        ListedSatellite satellite;
        if (!ReadTextRecord(frame, format == '2', left, satellite)) {
            return std::nullopt;
        }
        Add(list, satellite);
    }
    return list;
}

std::optional<bool> ParseSatelliteListFrame(FrameReader frame, SatelliteListForm form, int number,
                                            SatelliteList& list)
{
    if (frame.Type() != kListType || frame.DataLength() < kListFrameHeader) {
        return std::nullopt;
    }
    const std::uint8_t echo = frame.Byte();
    const std::uint8_t frameNumber = frame.Byte();
    const bool last = frame.Byte() == 1;
    const std::uint8_t format = frame.Byte();
    const std::uint8_t count = frame.Byte();
    Remaining left(frame.DataLength() - kListFrameHeader);
    if (echo != static_cast<std::uint8_t>(form) || frameNumber != number ||
        !ReadBinaryRecords(frame, format, count, left, list)) {
        return std::nullopt;
    }
    return last;
}

std::optional<AlmanacReply> ParseAlmanac(FrameReader frame, int prn)
{
    if (!BeginData(frame, kAlmanacSubType, kAlmanacLength)) {
        return std::nullopt;
    }
    AlmanacReply reply;
    reply.prn = frame.Byte();
    reply.timeStamp = frame.Long();
    reply.week = frame.Word();
    reply.toaS = frame.Long();
    reply.sqrtA = frame.Double();
    reply.eccentricity = frame.Double();
    reply.inclination = frame.Double();
    reply.omegaDot = frame.Double();
    reply.omega0 = frame.Double();
    reply.omega = frame.Double();
    reply.m0 = frame.Double();
    reply.health = frame.Byte();
    if (reply.prn != prn) {
        return std::nullopt;
    }
    return reply;
}

std::optional<SatelliteDataReply> ParseSatelliteData(FrameReader frame, bool withTriples)
{
    if (!BeginData(frame, kGeneralSubType, kGeneralLength + (withTriples ? kTriplesLength : 0))) {
        return std::nullopt;
    }
    frame.Skip(1);
    SatelliteDataReply reply;
    for (std::uint32_t& word : reply.words) {
        word = frame.Long();
    }
    frame.Skip(4);
    for (std::uint16_t& word : reply.shortWords) {
        word = frame.Word();
    }
    for (std::uint32_t& word : reply.moreWords) {
        word = frame.Long();
    }
    if (withTriples) {
        for (std::uint32_t& triple : reply.triples) {
            triple = frame.Triple();
        }
    }
    return reply;
}

std::optional<SatelliteDataExtra> ParseSatelliteDataExtra(FrameReader frame)
{
    if (!BeginData(frame, kExtraSubType, kExtraLength)) {
        return std::nullopt;
    }
    frame.Skip(1);
    const std::uint8_t p = frame.Byte();
    const std::uint8_t q = frame.Byte();
    const std::uint8_t r = frame.Byte();
    SatelliteDataExtra extra{};
    if (p != 4 || q != 0 || r != 2) {
        return extra;
    }
    if (frame.DataLength() < kExtraLength + kExtraWordsLength) {
        return std::nullopt;
    }
    for (std::uint16_t& word : extra) {
        word = frame.Word();
    }
    return extra;
}

} // namespace fieldcore

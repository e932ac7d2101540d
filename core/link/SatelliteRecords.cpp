#include "core/link/SatelliteRecords.h"

namespace fieldcore {

namespace {

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

} // namespace

SatelliteRecords::SatelliteRecords(FrameReader frame, std::string_view prefix)
    : m_in(frame, 0x17, prefix)
{
    if (!m_in.Fits()) {
        return;
    }
    if (prefix.empty()) {
        m_in.Read(m_left, m_format);
        m_isText = (m_format & kTextFormat) != 0;
    } else {
        std::uint8_t form = 0;
        m_in.Read(form, m_frameNumber, m_last, m_format, m_left);
    }
}

std::optional<ListedSatellite> SatelliteRecords::Next()
{
    if (m_left <= 0 || !m_in.IsComplete()) {
        return std::nullopt;
    }
    --m_left;
    ListedSatellite satellite;
    m_isText ? ReadText(satellite) : ReadBinary(satellite);
    return m_in.IsComplete() ? std::optional(satellite) : std::nullopt;
}

void SatelliteRecords::ReadText(ListedSatellite& satellite)
{
    int tenths = 0;
    m_in.BeginRecord(TextSatelliteLayout());
    m_in.Read(satellite.rawNumber, satellite.azimuthDeg, satellite.elevationDeg, tenths);
    satellite.signals[0] = tenths / 10.0;
    if (m_format == '2') {
        int hundredths = 0;
        m_in.Read(hundredths);
        satellite.signals[1] = hundredths / 100.0;
    } else {
        m_in.Leave();
    }
    const bool gps = satellite.rawNumber <= kMaxPrn;
    satellite.system = gps ? ListedSatellite::Gps : ListedSatellite::Sbas;
    satellite.number = satellite.rawNumber + (gps ? 0 : kSbasOffset);
}

void SatelliteRecords::ReadBinary(ListedSatellite& satellite)
{
    m_in.BeginRecord(BinarySatelliteLayout());
    m_in.Read(satellite.rawNumber);
    Classify(satellite);
    if (satellite.system == ListedSatellite::Glonass) {
        std::uint8_t channel = 0;
        m_in.Read(channel);
        satellite.channel = static_cast<std::int8_t>(channel);
    } else {
        m_in.Leave();
    }
    std::uint8_t elevation = 0;
    m_in.Read(satellite.azimuthDeg, elevation);
    satellite.azimuthDeg += (elevation & 0x80) != 0 ? kHighAzimuthDeg : 0;
    satellite.elevationDeg = elevation & 0x7F;
    constexpr std::array<std::size_t, 4> kWireOrder{0, 1, 3, 2}; // bit 2 stands for the fourth
    for (std::size_t bit = 0; bit < kWireOrder.size(); ++bit) {
        if ((m_format >> bit & 1) != 0) {
            std::uint8_t quarters = 0;
            m_in.Read(quarters);
            satellite.signals[kWireOrder[bit]] = quarters / 4.0;
        } else {
            m_in.Leave();
        }
    }
}

} // namespace fieldcore

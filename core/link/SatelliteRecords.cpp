#include "core/link/SatelliteRecords.h"

#include <string>

namespace fieldcore {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t kTextForm = 0x30; // these bits set: the records are digits

/// Takes records apart; what lies behind the end of the data makes all that follows nothing.
class Cursor
{
public:
    Cursor(Bytes data, std::size_t offset) : m_data(data), m_offset(offset) {}

    std::uint8_t Byte()
    {
        m_complete = m_complete && m_offset < m_data.size();
        return m_complete ? m_data[m_offset++] : std::uint8_t{0};
    }
    int Digits(int count)
    {
        int number = 0;
        for (int digit = 0; digit < count; ++digit) {
            const std::uint8_t byte = Byte();
            m_complete = m_complete && (byte == ' ' || (byte >= '0' && byte <= '9'));
            number = number * 10 + (byte == ' ' ? 0 : byte - '0');
        }
        return number;
    }
    [[nodiscard]] bool IsComplete() const { return m_complete; }
    [[nodiscard]] std::size_t Offset() const { return m_offset; }

private:
    const Bytes m_data;
    std::size_t m_offset;
    bool m_complete = true;
};

struct Satellite
{
    std::string name;
    int azimuthDeg = 0;
    int elevationDeg = 0;
    std::string signals; // dB-Hz
};

std::string Named(char system, int number)
{
    std::string name(1, system);
    name += std::to_string(number);
    return name;
}

void AddSignal(Satellite& satellite, double decibelHertz)
{
    satellite.signals += satellite.signals.empty() ? "" : " ";
    satellite.signals += Value::Real(decibelHertz, 2).Words();
}

Satellite ReadBinary(Cursor& cursor, std::uint8_t form)
{
    constexpr int kLastGps = 32;
    constexpr int kLastSbas = 51;
    constexpr int kLastGlonass = 75;
    Satellite satellite;
    const int number = cursor.Byte();
    if (number <= kLastGps) {
        satellite.name = Named('G', number);
    } else if (number <= kLastSbas) {
        satellite.name = Named('S', number + 87);
    } else if (number <= kLastGlonass) {
        satellite.name = Named('R', number - kLastSbas);
        const int channel = cursor.Byte(); // two's complement
        satellite.name += " channel " + std::to_string(channel < 128 ? channel : channel - 256);
    } else {
        satellite.name = Named('X', number - kLastGlonass - 1);
    }
    satellite.azimuthDeg = cursor.Byte();
    const std::uint8_t elevation = cursor.Byte();
    satellite.azimuthDeg += (elevation & 0x80U) != 0 ? 256 : 0;
    satellite.elevationDeg = elevation & 0x7F;
    for (unsigned bit = 0; bit < 4; ++bit) {
        if ((form >> bit & 1U) != 0) {
            AddSignal(satellite, cursor.Byte() / 4.0);
        }
    }
    return satellite;
}

Satellite ReadText(Cursor& cursor, std::uint8_t form)
{
    Satellite satellite;
    const int number = cursor.Digits(2);
    satellite.name = number < 33 ? Named('G', number) : Named('S', number + 87);
    satellite.azimuthDeg = cursor.Digits(3);
    satellite.elevationDeg = cursor.Digits(2);
    AddSignal(satellite, cursor.Digits(3) / 10.0);
    if (form == '2') {
        AddSignal(satellite, cursor.Digits(5) / 100.0);
    }
    return satellite;
}

} // namespace

bool ReadSatellites(Bytes data, std::size_t& offset, bool severalFrames,
                    std::vector<DescribedField>& fields)
{
    Cursor header(data, 0);
    const std::uint8_t form = data[severalFrames ? 3 : 2];
    const int count = severalFrames ? data[4] : header.Digits(2);
    const bool isText = !severalFrames && (form & kTextForm) == kTextForm;
    for (int record = 0; header.IsComplete() && record < count; ++record) {
        Cursor cursor(data, offset);
        const Satellite satellite = isText ? ReadText(cursor, form) : ReadBinary(cursor, form);
        if (!cursor.IsComplete()) {
            return false;
        }
        fields.push_back({offset, "satellite", Value::Text(satellite.name),
                          "azimuth " + std::to_string(satellite.azimuthDeg) + ", elevation " +
                              std::to_string(satellite.elevationDeg) + " deg; " +
                              satellite.signals + " dB-Hz"});
        offset = cursor.Offset();
    }
    return header.IsComplete();
}

} // namespace fieldcore

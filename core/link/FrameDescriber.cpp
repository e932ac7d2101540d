#include "core/link/FrameDescriber.h"

#include "core/link/FrameLayouts.h"
#include "core/link/SatelliteRecords.h"
#include "core/platform/Cp932.h"
#include "core/platform/TextLines.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <numbers>
#include <string_view>
#include <utility>

namespace fieldcore {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kTailLength = 2; // checksum and ETX

std::string_view AsText(Bytes bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string Hex(Bytes bytes)
{
    constexpr std::size_t kMost = 16;
    std::string text;
    for (const std::uint8_t byte : bytes.first(std::min(bytes.size(), kMost))) {
        std::array<char, 4> digits{};
        std::snprintf(digits.data(), digits.size(), "%02X ", byte);
        text += digits.data();
    }
    if (bytes.size() > kMost) {
        return text + "... (" + std::to_string(bytes.size()) + " bytes)";
    }
    return std::string(Trimmed(text));
}

void ReadDigits(Bytes bytes, const FieldLayout& layout, DescribedField& field)
{
    const std::string_view text = Trimmed(AsText(bytes));
    double number = 0.0;
    const char* const end = text.data() + text.size();
    const auto [stop, failure] =
        std::from_chars(text.data(), end, number, std::chars_format::fixed);
    const bool isNumber = failure == std::errc() && stop == end &&
                          text.find_first_not_of("-0123456789.") == std::string::npos;
    if (!isNumber) {
        field.value = Value::Text(AsText(bytes) == std::string(bytes.size(), ' ')
                                      ? std::string()
                                      : ToUtf8(FromCp932(AsText(bytes))));
        field.meaning = "not a number";
    } else if (layout.kind == FieldKind::Hundredths) {
        field.value = Value::Real(number / 100.0, 2);
    } else {
        field.value = Value::Exact(number, std::string(layout.unit));
        for (const Meaning& meaning : layout.meanings) {
            field.meaning = number == meaning.value ? meaning.words : field.meaning;
        }
    }
}

std::string MeaningOf(std::uint32_t number, std::span<const Meaning> meanings)
{
    std::string words;
    for (const Meaning& meaning : meanings) {
        if ((number & meaning.bits) == meaning.value) {
            words += (words.empty() ? "" : ", ") + std::string(meaning.words);
        }
    }
    return words;
}

std::string SatellitesOf(std::uint32_t mask)
{
    std::string numbers;
    for (unsigned bit = 0; bit < 32; ++bit) {
        if ((mask >> bit & 1U) != 0) {
            numbers += (numbers.empty() ? "" : ", ") + std::to_string(bit + 1);
        }
    }
    return numbers.empty() ? "none" : numbers;
}

DescribedField ReadField(Bytes bytes, std::size_t offset, const FieldLayout& layout)
{
    DescribedField field;
    field.offset = offset;
    field.name = layout.name;
    const std::string unit(layout.unit);
    FrameReader in(bytes, 0);
    switch (layout.kind) {
    case FieldKind::Unsigned: {
        const std::uint32_t number = in.Unsigned(layout.width);
        field.value = Value::Integer(number, unit);
        field.meaning = MeaningOf(number, layout.meanings);
        break;
    }
    case FieldKind::Real:
        field.value = Value::Exact(layout.width == sizeof(float) ? in.Float() : in.Double(), unit);
        break;
    case FieldKind::Angle: {
        const double rad = in.Double();
        field.value = Value::Exact(rad, "rad");
        field.meaning = Value::Real(rad * 180.0 / std::numbers::pi, 8, "deg").Words();
        break;
    }
    case FieldKind::Digit:
    case FieldKind::Digits:
    case FieldKind::Hundredths:
        ReadDigits(bytes, layout, field);
        break;
    case FieldKind::Text:
        field.value =
            Value::Text(std::string(Trimmed(ToUtf8(FromCp932(AsText(bytes))))), "(blank)");
        break;
    case FieldKind::Mask:
        field.value = Value::Text(Hex(bytes));
        field.meaning = SatellitesOf(in.Unsigned(layout.width));
        break;
    case FieldKind::Pattern:
    case FieldKind::Spare:
        field.value = Value::Text(Hex(bytes), "(none)");
        break;
    }
    return field;
}

/// Reads the fields of a layout from the data behind @p offset, which it moves on.
/// @return false if the data end in a field
bool ReadFields(Bytes data, std::size_t& offset, std::span<const FieldLayout> layouts,
                const std::string& prefix, std::vector<DescribedField>& fields)
{
    for (const FieldLayout& layout : layouts) {
        const std::size_t left = data.size() - offset;
        const bool isCutText = layout.kind == FieldKind::Text && left > 0 && left < layout.width;
        const std::size_t width = layout.width == 0 || isCutText ? left : layout.width;
        if (width > left) {
            return false;
        }
        if (layout.kind != FieldKind::Spare) {
            fields.push_back(ReadField(data.subspan(offset, width), offset, layout));
            fields.back().name.insert(0, prefix);
        }
        offset += width;
    }
    return true;
}

std::string NameOf(const ListedSatellite& satellite)
{
    const std::string number = std::to_string(satellite.number);
    switch (satellite.system) {
    case ListedSatellite::Gps:
        return "G" + number;
    case ListedSatellite::Sbas:
        return "S" + number;
    case ListedSatellite::Glonass:
        return "R" + number + " channel " + std::to_string(satellite.channel);
    case ListedSatellite::System6:
        return "X" + number;
    default:
        return "unknown " + number;
    }
}

DescribedField DescribeSatellite(std::size_t offset, const ListedSatellite& satellite)
{
    std::string signals;
    for (const double signal : satellite.signals) {
        signals += signal == kNoSignal ? "" : Value::Real(signal, 2).Words() + " ";
    }
    return {offset, "satellite", Value::Text(NameOf(satellite)),
            "azimuth " + std::to_string(satellite.azimuthDeg) + ", elevation " +
                std::to_string(satellite.elevationDeg) + " deg; " + signals + "dB-Hz" +
                (satellite.HasDirection() ? "" : "; dropped, that is no direction")};
}

/// Reads the records of a satellite list behind @p offset, which it moves on.
/// @return false if the data end in one
bool ReadSatellites(SatelliteRecords& records, std::size_t& offset,
                    std::vector<DescribedField>& fields)
{
    std::int64_t dropped = 0;
    for (; const std::optional<ListedSatellite> satellite = records.Next();
         offset = records.Offset()) {
        fields.push_back(DescribeSatellite(offset, *satellite));
        dropped += satellite->HasDirection() ? 0 : 1;
    }
    if (dropped > 0) {
        fields.push_back({offset, "dropped satellites", Value::Integer(dropped), ""});
    }
    return records.IsComplete();
}

/// @param whole  the frame
void ReadRecords(Bytes whole, Bytes data, std::size_t& offset, const FrameLayout& layout,
                 DescribedBytes& frame)
{
    bool complete = true;
    if (layout.records == Records::Fixed) {
        const unsigned count = data[offset - 1];
        for (unsigned record = 1; complete && record <= count; ++record) {
            complete = ReadFields(data, offset, layout.record, std::to_string(record) + ". ",
                                  frame.fields);
        }
    } else if (layout.records == Records::Satellites) {
        SatelliteRecords records(FrameReader(whole), layout.prefix);
        complete = ReadSatellites(records, offset, frame.fields);
    }
    if (!complete) {
        frame.fault = "it ends in the middle of its records";
    }
}

/// @param whole  the frame that has these data
void ReadData(Bytes whole, Bytes data, const FrameLayout& layout, DescribedBytes& frame)
{
    const std::size_t shortest = layout.ShortestLength();
    if (data.size() < shortest) {
        frame.fault = std::to_string(data.size()) + " data bytes where there should be " +
                      std::to_string(shortest);
    }
    std::size_t offset = layout.fields.empty() ? layout.prefix.size() : 0;
    const bool complete = ReadFields(data, offset, layout.fields, "", frame.fields);
    if (complete) {
        ReadRecords(whole, data, offset, layout, frame);
    }
    if (offset < data.size()) {
        frame.fields.push_back(
            ReadField(data.subspan(offset), offset, {0, FieldKind::Pattern, "more"}));
    }
}

DescribedBytes DescribeFrame(Direction direction, Bytes bytes)
{
    DescribedBytes frame;
    frame.kind = DescribedBytes::Kind::Piece;
    frame.length = bytes.size();
    if (bytes.size() > 2) {
        frame.type = bytes[2];
    }
    const std::size_t start = FrameReader(bytes).DataStart();
    if (bytes.size() < start) {
        frame.fault = "only " + std::to_string(bytes.size()) + " bytes of it are there";
        return frame;
    }
    // The length stands right before the data.
    const std::size_t dataLength = FrameReader(bytes, 3).Unsigned(start - 3);
    const std::size_t length = start + dataLength + kTailLength;
    const std::string_view content = AsText(bytes.subspan(start));
    const FrameLayout* const layout = FindFrameLayout(direction, bytes[2], content);
    frame.name = layout != nullptr ? layout->name : "unknown type";
    frame.title = layout != nullptr ? layout->title : std::string_view();
    if (bytes.size() < length) {
        frame.fault = "only " + std::to_string(bytes.size()) + " of " + std::to_string(length) +
                      " bytes of it are there";
        return frame;
    }
    frame.kind = DescribedBytes::Kind::Frame;
    frame.length = length;
    frame.checksum = bytes[length - 2];
    frame.expectedChecksum = FrameChecksum(bytes, length - kTailLength);
    frame.checksumGood = frame.checksum == frame.expectedChecksum;
    const Bytes data = bytes.subspan(start, dataLength);
    if (layout != nullptr) {
        ReadData(bytes.first(length), data, *layout, frame);
    } else if (!data.empty()) {
        frame.fields.push_back(ReadField(data, 0, {0, FieldKind::Pattern, "data"}));
    }
    if (bytes[length - 1] != kEtx) {
        frame.fault += (frame.fault.empty() ? "" : "; ") + std::string("no ETX at its end");
    }
    return frame;
}

/// A line of text at the start of @p bytes, with its line end; 0 if there is none. What is sent is
/// sent whole: its line may lack the end.
std::size_t LineLength(Direction direction, Bytes bytes)
{
    std::size_t length = 0;
    while (length < bytes.size() && (bytes[length] >= 0x20 || bytes[length] == '\r')) {
        ++length;
    }
    if (length == bytes.size()) {
        const bool isAscii =
            std::all_of(bytes.begin(), bytes.end(), [](auto b) { return b < 0x7F; });
        return direction == Direction::Sent && isAscii ? length : 0;
    }
    return length > 0 && bytes[length] == '\n' ? length + 1 : 0;
}

DescribedBytes Describe(Direction direction, Bytes bytes)
{
    using Kind = DescribedBytes::Kind;
    const bool fromReceiver = direction == Direction::Received;
    DescribedBytes described;
    described.length = 1;
    if (bytes[0] == kStx) {
        return DescribeFrame(direction, bytes);
    }
    if (fromReceiver && (bytes[0] == kAck || bytes[0] == kNak)) {
        described.kind = bytes[0] == kAck ? Kind::Ack : Kind::Nak;
        return described;
    }
    if (!fromReceiver && bytes[0] == 0 && bytes.size() == 1) {
        described.kind = Kind::Break;
        return described;
    }
    if (const std::size_t length = LineLength(direction, bytes); length > 0) {
        described.kind = Kind::Line;
        described.length = length;
        const std::size_t shown = AsText(bytes.first(length)).find_last_not_of("\r\n") + 1;
        described.fields.push_back(
            ReadField(bytes.first(shown), 0, {shown, FieldKind::Text, "text"}));
        return described;
    }
    const auto next = std::find(bytes.begin(), bytes.end(), kStx);
    described.length = static_cast<std::size_t>(next - bytes.begin());
    described.fields.push_back(ReadField(bytes.first(described.length), 0,
                                         {described.length, FieldKind::Pattern, "bytes"}));
    return described;
}

} // namespace

std::vector<DescribedBytes> DescribeBytes(Direction direction, Bytes bytes)
{
    std::vector<DescribedBytes> all;
    while (!bytes.empty()) {
        all.push_back(Describe(direction, bytes));
        bytes = bytes.subspan(all.back().length);
    }
    return all;
}

} // namespace fieldcore

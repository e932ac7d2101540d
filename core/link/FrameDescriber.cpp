#include "core/link/FrameDescriber.h"

#include "core/link/FrameLayouts.h"
#include "core/link/SatelliteRecords.h"
#include "core/platform/Cp932.h"
#include "core/platform/Degrees.h"
#include "core/platform/NumberText.h"
#include "core/platform/TextLines.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace fieldcore {

namespace {

using Bytes = std::span<const std::uint8_t>;

std::string_view AsText(Bytes bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Of many bytes only the first.
std::string ShortHexOf(Bytes bytes)
{
    constexpr std::size_t kMost = 16;
    if (bytes.size() > kMost) {
        return HexOf(bytes.first(kMost)) + "... (" + std::to_string(bytes.size()) + " bytes)";
    }
    return std::string(Trimmed(HexOf(bytes)));
}

std::string MeaningOf(const ReceivedField& field)
{
    const auto number = static_cast<std::uint32_t>(field.Whole());
    std::string words;
    for (const Meaning& meaning : field.layout.meanings) {
        if ((number & meaning.bits) == meaning.value) {
            words += (words.empty() ? "" : ", ") + std::string(meaning.words);
        }
    }
    return words;
}

void DescribeDigits(const ReceivedField& field, DescribedField& described)
{
    const std::string_view whole = AsText(field.bytes);
    const std::string_view text = Trimmed(whole);
    const bool isPlain = text.find_first_not_of("-0123456789.") == std::string::npos;
    const std::optional<double> number = isPlain ? NumberOf<double>(text) : std::nullopt;
    if (!number) {
        const bool isBlank = whole.find_first_not_of(' ') == std::string::npos;
        described.value = Value::Text(isBlank ? std::string() : ToUtf8(FromCp932(whole)));
        described.meaning = "not a number";
    } else if (field.layout.kind == FieldKind::Hundredths) {
        described.value = Value::Real(*number / 100.0, 2);
    } else {
        described.value = Value::Exact(*number, std::string(field.layout.unit));
        described.meaning = MeaningOf(field);
    }
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

DescribedField DescribeField(std::size_t offset, const ReceivedField& field)
{
    const FieldLayout& layout = field.layout;
    DescribedField described;
    described.offset = offset;
    described.name = layout.name;
    const std::string unit(layout.unit);
    switch (layout.kind) {
    case FieldKind::Unsigned:
        described.value = Value::Integer(field.Whole(), unit);
        described.meaning = MeaningOf(field);
        break;
    case FieldKind::Real:
        described.value = Value::Exact(field.Real(), unit);
        break;
    case FieldKind::Angle:
        described.value = Value::Exact(field.Real(), "rad");
        described.meaning = Value::Real(DegreesOf(field.Real()), 8, "deg").Words();
        break;
    case FieldKind::Digit:
    case FieldKind::Digits:
    case FieldKind::Hundredths:
        DescribeDigits(field, described);
        break;
    case FieldKind::Text:
        described.value =
            Value::Text(std::string(Trimmed(ToUtf8(FromCp932(AsText(field.bytes))))), "(blank)");
        break;
    case FieldKind::Mask:
        described.value = Value::Text(ShortHexOf(field.bytes));
        described.meaning = SatellitesOf(static_cast<std::uint32_t>(field.Whole()));
        break;
    case FieldKind::Pattern:
    case FieldKind::Spare:
        described.value = Value::Text(ShortHexOf(field.bytes), "(none)");
        break;
    }
    return described;
}

/// Bytes that no layout has a field for.
DescribedField DescribeRest(std::size_t offset, Bytes bytes, std::string_view name,
                            FieldKind kind = FieldKind::Pattern)
{
    return DescribeField(offset, {{bytes.size(), kind, name}, bytes});
}

/// Reads the fields of a layout as far as they are there.
/// @return whether all are
bool ReadFields(LayoutReader& in, const std::string& prefix, std::vector<DescribedField>& fields)
{
    while (in.HasNext()) {
        const std::size_t offset = in.Offset();
        fields.push_back(DescribeField(offset, in.Take()));
        fields.back().name.insert(0, prefix);
    }
    return in.IsDone();
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

/// @return false if the data end in a record
bool ReadSatellites(LayoutReader& in, const SatelliteHead& head,
                    std::vector<DescribedField>& fields)
{
    std::int64_t dropped = 0;
    bool isComplete = true;
    for (int left = head.count; isComplete && left > 0; --left) {
        LayoutReader next = in;
        const ListedSatellite satellite = ReadSatellite(next, head);
        isComplete = next.IsComplete();
        if (isComplete) {
            fields.push_back(DescribeSatellite(in.Offset(), satellite));
            dropped += satellite.HasDirection() ? 0 : 1;
            in = next;
        }
    }
    if (dropped > 0) {
        fields.push_back({in.Offset(), "dropped satellites", Value::Integer(dropped), ""});
    }
    return isComplete;
}

/// Reads the records behind the fields that @p in has read.
/// @return false if the data end in one
bool ReadRecords(LayoutReader& in, Bytes data, const FrameLayout& layout,
                 std::vector<DescribedField>& fields)
{
    if (layout.type == kSatelliteList) {
        LayoutReader anew(layout, data);
        return ReadSatellites(in, ReadSatelliteHead(anew, layout.prefix.empty()), fields);
    }
    const unsigned count = layout.record.empty() ? 0 : data[in.Offset() - 1];
    bool isComplete = true;
    for (unsigned record = 1; isComplete && record <= count; ++record) {
        in.BeginRecord();
        isComplete = ReadFields(in, std::to_string(record) + ". ", fields);
    }
    return isComplete;
}

void ReadData(Bytes data, const FrameLayout& layout, DescribedBytes& frame)
{
    LayoutReader in(layout, data);
    if (!in.Fits()) {
        frame.fault = std::to_string(data.size()) + " data bytes where there should be " +
                      std::to_string(layout.ShortestLength());
    }
    if (ReadFields(in, "", frame.fields) && !ReadRecords(in, data, layout, frame.fields)) {
        frame.fault = "it ends in the middle of its records";
    }
    const std::size_t end = std::max(in.Offset(), layout.fields.empty() ? layout.prefix.size() : 0);
    if (end < data.size()) {
        frame.fields.push_back(DescribeRest(end, data.subspan(end), "more"));
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
    const FrameReader in(bytes);
    if (bytes.size() < in.DataStart()) {
        frame.fault = "only " + std::to_string(bytes.size()) + " bytes of it are there";
        return frame;
    }
    const std::size_t length = in.Length();
    const std::string_view content = AsText(bytes.subspan(in.DataStart()));
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
    frame.expectedChecksum = FrameChecksum(bytes, length - 2);
    frame.checksumGood = frame.checksum == frame.expectedChecksum;
    if (layout != nullptr) {
        ReadData(in.Data(), *layout, frame);
    } else if (!in.Data().empty()) {
        frame.fields.push_back(DescribeRest(0, in.Data(), "data"));
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
        described.fields.push_back(DescribeRest(0, bytes.first(shown), "text", FieldKind::Text));
        return described;
    }
    const auto next = std::find(bytes.begin(), bytes.end(), kStx);
    described.length = static_cast<std::size_t>(next - bytes.begin());
    described.fields.push_back(DescribeRest(0, bytes.first(described.length), "bytes"));
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

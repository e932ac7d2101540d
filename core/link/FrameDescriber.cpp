#include "core/link/FrameDescriber.h"

#include "core/link/FrameLayouts.h"
#include "core/link/SatelliteRecords.h"
#include "core/platform/Cp932.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdio>
#include <numbers>
#include <string_view>
#include <utility>

namespace fieldcore {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t kStx = 0x02;
constexpr std::uint8_t kEtx = 0x03;
constexpr std::uint8_t kAck = 0x06;
constexpr std::uint8_t kNak = 0x15;
constexpr std::uint8_t kLongType = 0x95;
constexpr std::size_t kTailLength = 2; // checksum and ETX

std::string_view AsText(Bytes bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::uint64_t BigEndian(Bytes bytes)
{
    std::uint64_t number = 0;
    for (const std::uint8_t byte : bytes) {
        number = (number << 8U) | byte;
    }
    return number;
}

double RealNumber(Bytes bytes)
{
    const std::uint64_t bits = BigEndian(bytes);
    return bytes.size() == sizeof(float) ? std::bit_cast<float>(static_cast<std::uint32_t>(bits))
                                         : std::bit_cast<double>(bits);
}

std::string Trimmed(std::string_view text)
{
    const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
    const std::size_t last = text.find_last_not_of(' ');
    return std::string(text.substr(first, last == std::string_view::npos ? 0 : last + 1 - first));
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
    return Trimmed(text);
}

void ReadDigits(Bytes bytes, const FieldLayout& layout, DescribedField& field)
{
    const std::string text = Trimmed(AsText(bytes));
    double number = 0.0;
    const char* const end = text.data() + text.size();
    const auto [stop, failure] =
        std::from_chars(text.data(), end, number, std::chars_format::fixed);
    const bool isNumber = failure == std::errc() && stop == end &&
                          text.find_first_not_of("0123456789.") == std::string::npos;
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
    switch (layout.kind) {
    case FieldKind::Unsigned: {
        const auto number = static_cast<std::uint32_t>(BigEndian(bytes));
        field.value = Value::Integer(number, unit);
        field.meaning = MeaningOf(number, layout.meanings);
        break;
    }
    case FieldKind::Real:
        field.value = Value::Exact(RealNumber(bytes), unit);
        break;
    case FieldKind::Angle: {
        const double rad = RealNumber(bytes);
        field.value = Value::Exact(rad, "rad");
        field.meaning = Value::Real(rad * 180.0 / std::numbers::pi, 8, "deg").Words();
        break;
    }
    case FieldKind::Digits:
    case FieldKind::Hundredths:
        ReadDigits(bytes, layout, field);
        break;
    case FieldKind::Text:
        field.value = Value::Text(Trimmed(ToUtf8(FromCp932(AsText(bytes)))), "(blank)");
        break;
    case FieldKind::Mask: {
        const auto mask = static_cast<std::uint32_t>(BigEndian(bytes));
        field.value = Value::Text(Hex(bytes));
        field.meaning = SatellitesOf(mask);
        break;
    }
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
        const std::size_t width = layout.width == 0 ? left : layout.width;
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

void ReadRecords(Bytes data, std::size_t& offset, const FrameLayout& layout, DescribedBytes& frame)
{
    bool complete = true;
    if (layout.records == Records::Fixed) {
        const unsigned count = data[offset - 1];
        for (unsigned record = 1; complete && record <= count; ++record) {
            complete = ReadFields(data, offset, layout.record, std::to_string(record) + ". ",
                                  frame.fields);
        }
    } else if (layout.records != Records::None) {
        complete = ReadSatellites(data, offset, layout.records == Records::SatellitesOfFrame,
                                  frame.fields);
    }
    if (!complete) {
        frame.fault = "it ends in the middle of its records";
    }
}

void ReadData(Bytes data, const FrameLayout& layout, DescribedBytes& frame)
{
    if (data.size() < layout.shortest) {
        frame.fault = std::to_string(data.size()) + " data bytes where there should be " +
                      std::to_string(layout.shortest);
    }
    std::size_t offset = layout.fields.empty() ? layout.prefix.size() : 0;
    const bool complete = ReadFields(data, offset, layout.fields, "", frame.fields);
    if (complete) {
        ReadRecords(data, offset, layout, frame);
    }
    if (offset < data.size()) {
        frame.fields.push_back(
            ReadField(data.subspan(offset), offset, {0, FieldKind::Pattern, "more"}));
    }
}

/// How long the frame at the start of @p bytes is; nothing if too little of it is there to know.
std::optional<std::size_t> DataStart(Bytes bytes)
{
    if (bytes.size() < 4) {
        return std::nullopt;
    }
    const std::size_t start = bytes[2] == kLongType ? 5 : 4;
    return bytes.size() >= start ? std::optional(start) : std::nullopt;
}

DescribedBytes DescribeFrame(Direction direction, Bytes bytes)
{
    DescribedBytes frame;
    frame.kind = DescribedBytes::Kind::Piece;
    frame.length = bytes.size();
    if (bytes.size() > 2) {
        frame.type = bytes[2];
    }
    const std::optional<std::size_t> start = DataStart(bytes);
    if (!start) {
        frame.fault = "only " + std::to_string(bytes.size()) + " bytes of it are there";
        return frame;
    }
    const std::size_t dataLength =
        *start == 5 ? static_cast<std::size_t>(BigEndian(bytes.subspan(3, 2))) : bytes[3];
    const std::size_t length = *start + dataLength + kTailLength;
    const std::string_view content = AsText(bytes.subspan(*start));
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
    for (const std::uint8_t byte : bytes.subspan(1, length - kTailLength - 1)) {
        frame.expectedChecksum = static_cast<std::uint8_t>(frame.expectedChecksum + byte);
    }
    frame.checksumGood = frame.checksum == frame.expectedChecksum;
    const Bytes data = bytes.subspan(*start, dataLength);
    if (layout != nullptr) {
        ReadData(data, *layout, frame);
    } else if (!data.empty()) {
        frame.fields.push_back(ReadField(data, 0, {0, FieldKind::Pattern, "data"}));
    }
    if (bytes[length - 1] != kEtx) {
        frame.fault += (frame.fault.empty() ? "" : "; ") + std::string("no ETX at its end");
    }
    return frame;
}

/// A line of text at the start of @p bytes, with its line end; 0 if there is none.
std::size_t LineLength(Bytes bytes)
{
    std::size_t length = 0;
    while (length < bytes.size() && (bytes[length] >= 0x20 || bytes[length] == '\r')) {
        ++length;
    }
    return length > 0 && length < bytes.size() && bytes[length] == '\n' ? length + 1 : 0;
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
    if (const std::size_t length = LineLength(bytes); length > 0) {
        described.kind = Kind::Line;
        described.length = length;
        described.fields.push_back(
            ReadField(bytes.first(length), 0, {length, FieldKind::Text, "text"}));
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

#include "core/link/LayoutReader.h"

#include "core/platform/NumberText.h"

#include <algorithm>
#include <array>

namespace fieldcore {

namespace {

constexpr std::size_t kWidest = 16; // bytes; no layout has a wider number

using NumberText = std::array<wchar_t, kWidest + 1>;

NumberText TextOf(std::span<const std::uint8_t> field)
{
    NumberText text{};
    // No character beyond ASCII belongs to a number, and none is a blank.
    std::ranges::transform(field.first(std::min(field.size(), kWidest)), text.begin(),
                           [](std::uint8_t byte) { return byte < 0x80 ? wchar_t{byte} : L'?'; });
    return text;
}

std::span<const std::uint8_t> DataOf(FrameReader frame)
{
    frame.Skip(frame.DataStart() - kFrameDataStart);
    return frame.Bytes(frame.DataLength());
}

} // namespace

int IntegerField(std::span<const std::uint8_t> field)
{
    return ParseWhole(TextOf(field).data());
}

double RealField(std::span<const std::uint8_t> field)
{
    return ParseReal(TextOf(field).data());
}

LayoutReader::LayoutReader(FrameReader frame, std::uint8_t type, std::string_view prefix)
    : m_layout(FindFrameLayout(Direction::Received, type, prefix)), m_in({}, 0)
{
    assert(m_layout != nullptr && m_layout->prefix == prefix);
    const std::span<const std::uint8_t> data = DataOf(frame);
    m_in = FrameReader(data, 0);
    m_length = data.size();
    m_fits = frame.Type() == type && m_length >= m_layout->ShortestLength() &&
             FrameReader(data, 0).Chars(std::min(prefix.size(), m_length)) == prefix;
    if (m_fits) {
        BeginRecord(m_layout->fields);
    }
}

bool LayoutReader::HasNext() const
{
    if (m_fields.empty()) {
        return false;
    }
    const FieldLayout& field = m_fields.front();
    const bool isPart = field.kind == FieldKind::Text || field.width == 0;
    return Left() >= (isPart ? 1 : field.width);
}

void LayoutReader::Leave(std::size_t count)
{
    m_fields = m_fields.subspan(std::min(count, m_fields.size()));
}

void LayoutReader::BeginRecord(std::span<const FieldLayout> fields)
{
    assert(!m_isComplete || !HasNext());
    m_fields = fields;
    SkipSpare();
}

void LayoutReader::SkipSpare()
{
    for (; !m_fields.empty() && m_fields.front().kind == FieldKind::Spare; Leave()) {
        m_isComplete = m_isComplete && Left() >= m_fields.front().width;
        m_in.Skip(m_fields.front().width);
    }
}

FieldLayout LayoutReader::Take()
{
    assert(!m_fields.empty());
    const FieldLayout field = m_fields.front();
    Leave();
    m_isComplete = m_isComplete && Left() >= field.width;
    return field;
}

std::int64_t LayoutReader::WholeNumber([[maybe_unused]] std::size_t widest)
{
    const FieldLayout field = Take();
    std::int64_t number = 0;
    if (field.kind == FieldKind::Digit) {
        number = m_in.Byte(ByteForm::Digit);
    } else if (field.kind == FieldKind::Digits) {
        number = IntegerField(m_in.Bytes(field.width));
    } else {
        assert(field.kind == FieldKind::Unsigned || field.kind == FieldKind::Mask);
        assert(field.width <= widest);
        number = m_in.Unsigned(field.width);
    }
    SkipSpare();
    return number;
}

double LayoutReader::RealNumber()
{
    const FieldLayout field = Take();
    double number = 0.0;
    if (field.kind == FieldKind::Digits) {
        number = RealField(m_in.Bytes(field.width));
    } else {
        assert(field.kind == FieldKind::Real || field.kind == FieldKind::Angle);
        number = field.width == sizeof(float) ? m_in.Float() : m_in.Double();
    }
    SkipSpare();
    return number;
}

void LayoutReader::ReadOne(std::wstring& value)
{
    const FieldLayout field = Take();
    assert(field.kind == FieldKind::Text || field.kind == FieldKind::Hundredths);
    value = m_in.Text(field.width == 0 ? Left() : std::min(field.width, Left()));
    SkipSpare();
}

void LayoutReader::ReadOne(std::span<const std::uint8_t>& value)
{
    const FieldLayout field = Take();
    assert(field.kind == FieldKind::Pattern);
    value = m_in.Bytes(field.width == 0 ? Left() : field.width);
    SkipSpare();
}

} // namespace fieldcore

#include "core/link/LayoutReader.h"

#include "core/platform/NumberText.h"

#include <algorithm>
#include <bit>
#include <cassert>

namespace fieldcore {

namespace {

constexpr std::size_t kWidest = 16; // bytes; no layout has a wider number

/// The characters of a decimal number, ended by a zero.
std::array<wchar_t, kWidest + 1> DigitsOf(std::span<const std::uint8_t> field)
{
    std::array<wchar_t, kWidest + 1> text{};
    // No character beyond ASCII belongs to a number, and none is a blank.
    std::ranges::transform(field.first(std::min(field.size(), kWidest)), text.begin(),
                           [](std::uint8_t byte) { return byte < 0x80 ? wchar_t{byte} : L'?'; });
    return text;
}

} // namespace

std::int64_t ReceivedField::Whole() const
{
    FrameReader in(bytes, 0);
    switch (layout.kind) {
    case FieldKind::Digit:
        return in.Byte(ByteForm::Digit);
    case FieldKind::Digits:
        return ParseWhole(DigitsOf(bytes).data());
    default:
        assert(layout.kind == FieldKind::Unsigned || layout.kind == FieldKind::Mask);
        return in.Unsigned(layout.width);
    }
}

double ReceivedField::Real() const
{
    if (layout.kind == FieldKind::Digits) {
        return ParseReal(DigitsOf(bytes).data());
    }
    assert(layout.kind == FieldKind::Real || layout.kind == FieldKind::Angle);
    FrameReader in(bytes, 0);
    return layout.width == sizeof(float) ? std::bit_cast<float>(in.Unsigned(sizeof(float)))
                                         : in.Double();
}

std::wstring ReceivedField::Text() const
{
    return FrameReader(bytes, 0).Text(bytes.size());
}

LayoutReader::LayoutReader(const FrameLayout& layout, std::span<const std::uint8_t> data)
    : m_layout(&layout), m_data(data),
      m_fits(data.size() >= layout.ShortestLength() &&
             FrameReader(data, 0).Chars(layout.prefix.size()) == layout.prefix)
{
    GoOnWith(layout.fields);
}

bool LayoutReader::HasNext() const
{
    if (m_fields.empty()) {
        return false;
    }
    const FieldLayout& field = m_fields.front();
    return Left() >=
           (field.kind == FieldKind::Text ? std::min<std::size_t>(field.width, 1) : field.width);
}

ReceivedField LayoutReader::Take()
{
    assert(!m_fields.empty());
    const FieldLayout& layout = m_fields.front();
    const std::size_t width = layout.width == 0 ? Left() : std::min(layout.width, Left());
    const ReceivedField field{layout, m_data.subspan(m_offset, HasNext() ? width : 0)};
    m_isComplete = m_isComplete && HasNext();
    m_offset += field.bytes.size();
    Leave();
    return field;
}

void LayoutReader::Leave()
{
    GoOnWith(m_fields.subspan(1));
}

void LayoutReader::GoOnWith(std::span<const FieldLayout> fields)
{
    m_fields = fields;
    for (; !m_fields.empty() && m_fields.front().kind == FieldKind::Spare;
         m_fields = m_fields.subspan(1)) {
        if (!HasNext()) {
            m_isComplete = false;
            return;
        }
        m_offset += m_fields.front().width;
    }
}

} // namespace fieldcore

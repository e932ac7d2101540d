#pragma once

#include "core/link/FrameLayouts.h"
#include "core/link/FrameReader.h"

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace fieldcore {

/// A field as it stands in a frame. A view, as FrameReader is.
struct ReceivedField
{
    FieldLayout layout;
    std::span<const std::uint8_t> bytes; ///< empty if it is not there as a whole

    /// A number of bytes or of digits; all ones, or 0 of digits, if it is not there. Decimal digits
    /// stand at the start, behind blanks; what follows them is ignored, and a field that holds none
    /// is 0. Values beyond the range of int are cut to it.
    [[nodiscard]] std::int64_t Whole() const;
    /// The same with decimals; NaN, or 0 of digits, if it is not there. What the C library reads as
    /// a number counts as one: "inf" and "nan" do too.
    [[nodiscard]] double Real() const;
    /// As it is, of digits too.
    [[nodiscard]] std::wstring Text() const;
};

/// Takes the data of a frame apart in the order of its layout: widths and kinds come from the
/// table, and spare bytes are passed over. What lies behind the data is never read. Nothing is
/// allocated but for texts. A view, as FrameReader is.
class LayoutReader
{
public:
    /// Of data that should be such a frame's.
    LayoutReader(const FrameLayout& layout, std::span<const std::uint8_t> data);

    /// Whether they begin as its data do and are no shorter. A parser reads nothing else.
    [[nodiscard]] bool Fits() const { return m_fits; }
    /// Whether all that was taken or passed over was there.
    [[nodiscard]] bool IsComplete() const { return m_isComplete; }
    /// Whether the next field is there: of a text its first byte, of anything else all of it.
    [[nodiscard]] bool HasNext() const;
    /// Whether no field is left.
    [[nodiscard]] bool IsDone() const { return m_fields.empty(); }
    /// From the first data byte to the next field.
    [[nodiscard]] std::size_t Offset() const { return m_offset; }

    /// Takes the next field off the layout; there must be one.
    ReceivedField Take();
    /// Takes a field for each of @p values: whole numbers, real numbers, texts (one at the end may
    /// be cut off), the bytes as they are, or arrays of these.
    template <typename... Values>
    void Read(Values&... values)
    {
        (ReadOne(values), ...);
    }
    /// The next field is not in this frame, or means nothing in it: nothing is read of it.
    void Leave();
    /// Goes on with these fields, as a record has them.
    void GoOnWith(std::span<const FieldLayout> fields);
    /// Goes on with the next of the records that the layout has.
    void BeginRecord() { GoOnWith(m_layout->record); }

private:
    template <std::integral Number>
    void ReadOne(Number& value)
    {
        value = static_cast<Number>(Take().Whole());
    }
    template <std::floating_point Number>
    void ReadOne(Number& value)
    {
        value = static_cast<Number>(Take().Real());
    }
    void ReadOne(std::wstring& value) { value = Take().Text(); }
    void ReadOne(std::span<const std::uint8_t>& value) { value = Take().bytes; }
    template <typename Item, std::size_t Count>
    void ReadOne(std::array<Item, Count>& values)
    {
        for (Item& value : values) {
            ReadOne(value);
        }
    }

    [[nodiscard]] std::size_t Left() const { return m_data.size() - m_offset; }

    const FrameLayout* m_layout; // of those that stay
    std::span<const std::uint8_t> m_data;
    std::size_t m_offset = 0;
    std::span<const FieldLayout> m_fields; // still to be taken; the first is no spare one
    bool m_fits;
    bool m_isComplete = true;
};

/// Reads a reply of one frame: @p read, of a LayoutReader& and a Reply&, puts the fields into a
/// fresh one. The frame expected is told by its type and by how its data begin.
/// @param prefix  as FrameLayouts() has it
/// @return nothing if it is not that frame, or if @p read finds a value that no receiver can mean
template <typename Reply, typename Read>
[[nodiscard]] std::optional<Reply> ReadReply(FrameReader frame, std::uint8_t type,
                                             std::string_view prefix, Read read)
{
    LayoutReader in(*FindFrameLayout(Direction::Received, type, prefix), frame.Data());
    Reply reply{};
    const bool isRead = frame.Type() == type && in.Fits() && read(in, reply);
    return isRead ? std::optional<Reply>(std::move(reply)) : std::nullopt;
}

} // namespace fieldcore

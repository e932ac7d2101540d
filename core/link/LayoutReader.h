#pragma once

#include "core/link/FrameLayouts.h"
#include "core/link/FrameReader.h"

#include <cassert>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace fieldcore {

// Numeric text fields: decimal digits of fixed width. A number stands at the start, behind blanks;
// what follows it is ignored, and a field that holds none is 0. Nothing is allocated.

/// Values beyond the range of int are cut to it.
[[nodiscard]] int IntegerField(std::span<const std::uint8_t> field);
/// What the C library reads as a number counts as one: "inf" and "nan" do too.
[[nodiscard]] double RealField(std::span<const std::uint8_t> field);

/// Reads the data of a received frame in the order of its layout: widths and kinds come from the
/// table, and spare bytes are passed over. What lies behind the data is never read: of a field that
/// is not there as a whole a number reads as all ones, a real number as NaN, and IsComplete() says
/// so.
///
/// A parser reads or leaves every field that the frame has. Whoever forgets one is stopped by an
/// assertion when the reader goes. A view, as FrameReader is.
class LayoutReader
{
public:
    /// The frame expected is told by its type and by how its data begin.
    /// @param prefix  as FrameLayouts() has it
    LayoutReader(FrameReader frame, std::uint8_t type, std::string_view prefix = {});
    ~LayoutReader()
    {
        assert(!m_fits || !m_isComplete || !HasNext() || std::uncaught_exceptions() > 0);
    }
    LayoutReader(const LayoutReader&) = delete;
    LayoutReader& operator=(const LayoutReader&) = delete;

    /// Whether it is that frame and no shorter than its layout. If not, nothing can be read.
    [[nodiscard]] bool Fits() const { return m_fits; }
    /// Whether all that was read was there.
    [[nodiscard]] bool IsComplete() const { return m_isComplete; }
    /// Whether the next field is there: of a text its first byte, of anything else all of it.
    [[nodiscard]] bool HasNext() const;
    /// From the first data byte to the next field.
    [[nodiscard]] std::size_t Offset() const { return m_in.Cursor(); }

    /// Reads a field into each of @p values: whole numbers, real numbers, texts (of digits too, as
    /// they are; one at the end may be cut off), or the bytes as they are.
    template <typename... Values>
    void Read(Values&... values)
    {
        (ReadOne(values), ...);
    }
    /// The next fields are not in this frame, or mean nothing in it: nothing is read of them.
    void Leave(std::size_t count = 1);
    /// A record with these fields follows.
    void BeginRecord(std::span<const FieldLayout> fields);
    /// The next of the records that the layout has.
    void BeginRecord() { BeginRecord(m_layout->record); }

private:
    void ReadOne(std::integral auto& value)
    {
        using Number = std::remove_reference_t<decltype(value)>;
        value = static_cast<Number>(WholeNumber(sizeof(Number)));
    }
    void ReadOne(std::floating_point auto& value)
    {
        value = static_cast<std::remove_reference_t<decltype(value)>>(RealNumber());
    }
    void ReadOne(std::wstring& value);
    void ReadOne(std::span<const std::uint8_t>& value);

    /// Takes the next field off the layout.
    FieldLayout Take();
    void SkipSpare();
    std::int64_t WholeNumber(std::size_t widest);
    double RealNumber();
    [[nodiscard]] std::size_t Left() const { return m_length - m_in.Cursor(); }

    const FrameLayout* m_layout;           // of those that stay
    FrameReader m_in;                      // of the data alone
    std::size_t m_length = 0;              // of the data, bytes
    std::span<const FieldLayout> m_fields; // still to be read; the first is no spare one
    bool m_fits = false;
    bool m_isComplete = true;
};

/// Reads a reply of one frame: @p read, of a LayoutReader& and a Reply&, puts the fields into a
/// fresh one.
/// @return nothing if it is not that frame, or if @p read finds a value that no receiver can mean
template <typename Reply, typename Read>
[[nodiscard]] std::optional<Reply> ReadReply(FrameReader frame, std::uint8_t type,
                                             std::string_view prefix, Read read)
{
    LayoutReader in(frame, type, prefix);
    std::optional<Reply> reply;
    if (in.Fits() && !read(in, reply.emplace())) {
        reply.reset();
    }
    return reply;
}

} // namespace fieldcore

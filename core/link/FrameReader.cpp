#include "core/link/FrameReader.h"

#include "core/platform/Cp932.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace fieldcore {

namespace {

constexpr std::size_t kLongestText = 255;

} // namespace

std::uint8_t FrameChecksum(std::span<const std::uint8_t> frame, std::size_t end)
{
    unsigned sum = 0;
    for (std::size_t i = 1; i < end; ++i) {
        sum += frame[i];
    }
    return static_cast<std::uint8_t>(sum);
}

std::uint32_t FrameReader::DataLength() const
{
    constexpr std::size_t kAt = 3;
    const std::size_t start = DataStart(); // right behind the length
    return m_bytes.size() < start ? 0 : FrameReader(m_bytes, kAt).Unsigned(start - kAt);
}

std::span<const std::uint8_t> FrameReader::Data() const
{
    return FrameReader(m_bytes, DataStart()).Bytes(DataLength());
}

bool FrameReader::IsIntact() const
{
    const std::size_t end = DataStart() + DataLength();
    return end < m_bytes.size() && m_bytes[0] == kStx &&
           FrameChecksum(m_bytes, end) == m_bytes[end];
}

void FrameReader::Skip(std::size_t count)
{
    m_cursor += std::min(count, m_bytes.size() - std::min(m_cursor, m_bytes.size()));
}

std::uint8_t FrameReader::Byte(ByteForm form)
{
    const auto value = static_cast<std::uint8_t>(Unsigned(1));
    if (form == ByteForm::Number) {
        return value;
    }
    // The top bit makes a negative character, which is below '0' like a blank.
    const bool belowZero = value < '0' || value >= 0x80;
    return belowZero ? std::uint8_t{0} : static_cast<std::uint8_t>(value - '0');
}

double FrameReader::Double()
{
    const auto bytes = Bytes(sizeof(double));
    if (bytes.empty()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    std::uint64_t bits = 0;
    for (const std::uint8_t byte : bytes) {
        bits = bits << 8 | byte;
    }
    return std::bit_cast<double>(bits);
}

std::span<const std::uint8_t> FrameReader::Bytes(std::size_t count)
{
    const std::size_t start = std::min(m_cursor, m_bytes.size());
    Skip(count);
    return count > m_bytes.size() - start ? std::span<const std::uint8_t>()
                                          : m_bytes.subspan(start, count);
}

std::string FrameReader::Chars(std::size_t count)
{
    const auto bytes = Bytes(count);
    return {bytes.begin(), bytes.end()};
}

std::wstring FrameReader::Text(std::size_t count)
{
    const std::string bytes = Chars(count).substr(0, kLongestText);
    return FromCp932(bytes.c_str()); // up to the zero byte
}

std::uint32_t FrameReader::Unsigned(std::size_t width)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
        const std::size_t index = m_cursor + i;
        value = value << 8 | (index < m_bytes.size() ? m_bytes[index] : 0xFFU);
    }
    Skip(width);
    return value;
}

} // namespace fieldcore

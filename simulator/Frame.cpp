#include "simulator/Frame.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <numeric>
#include <string>

#include <fmt/format.h>

namespace fieldcore::simulator {

std::uint8_t CheckSum(std::span<const std::uint8_t> bytes)
{
    return static_cast<std::uint8_t>(std::accumulate(bytes.begin(), bytes.end(), 0U) & 0xFFU);
}

Bytes MakeFrame(std::uint8_t type, std::span<const std::uint8_t> data)
{
    const bool isLong = type == kLongFrame;
    assert(data.size() <= (isLong ? 65535U : 255U));
    Bytes frame{kStx, 0x00, type};
    frame.reserve(data.size() + kFrameOverhead + 1);
    if (isLong) {
        frame.push_back(static_cast<std::uint8_t>(data.size() >> 8U));
    }
    frame.push_back(static_cast<std::uint8_t>(data.size() & 0xFFU));
    frame.insert(frame.end(), data.begin(), data.end());
    frame.push_back(CheckSum(std::span(frame).subspan(1)));
    frame.push_back(kEtx);
    return frame;
}

Bytes MakeFrame(std::uint8_t type, std::string_view text)
{
    const Bytes data(text.begin(), text.end());
    return MakeFrame(type, data);
}

DataWriter& DataWriter::Integer(std::uint64_t value, unsigned width)
{
    for (unsigned left = width; left > 0; --left) {
        m_data.push_back(static_cast<std::uint8_t>(value >> ((left - 1) * 8U)));
    }
    return *this;
}

DataWriter& DataWriter::F32(double value)
{
    return Integer(std::bit_cast<std::uint32_t>(static_cast<float>(value)), 4);
}

DataWriter& DataWriter::F64(double value)
{
    return Integer(std::bit_cast<std::uint64_t>(value), 8);
}

DataWriter& DataWriter::Text(std::string_view text, std::size_t width)
{
    const std::string_view kept = text.substr(0, width);
    m_data.insert(m_data.end(), kept.begin(), kept.end());
    m_data.insert(m_data.end(), width - kept.size(), ' ');
    return *this;
}

std::span<std::uint8_t> DataWriter::Room(std::size_t count)
{
    m_data.resize(m_data.size() + count);
    return std::span(m_data).last(count);
}

DataWriter& DataWriter::Digits(long value, std::size_t width)
{
    std::string digits = std::to_string(std::max(value, 0L));
    digits = digits.size() > width ? std::string(width, '9')
                                   : std::string(width - digits.size(), '0') + digits;
    return Text(digits, width);
}

DataWriter& DataWriter::Tenths(double value, std::size_t width)
{
    const std::string text = fmt::format("{:{}.1f}", value, width);
    if (text.size() != width) {
        return Text(std::string(width - 2, '9') + ".9", width);
    }
    return Text(text, width);
}

} // namespace fieldcore::simulator

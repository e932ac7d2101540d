#include "simulator/RequestParser.h"

#include <utility>

namespace fieldcore::simulator {

namespace {

constexpr std::uint8_t kBreak = 0x00;
constexpr std::uint8_t kCr = 0x0D;
constexpr std::uint8_t kLf = 0x0A;

bool IsGoodFrame(std::span<const std::uint8_t> frame)
{
    const std::size_t check = frame.size() - 2;
    return CheckSum(frame.subspan(1, check - 1)) == frame[check] && frame.back() == kEtx;
}

} // namespace

std::optional<Request> RequestParser::Feed(std::uint8_t byte)
{
    const bool inFrame = !m_begun.empty() && m_begun.front() == kStx;
    if (inFrame) {
        m_begun.push_back(byte);
        return FeedFrame();
    }
    if (byte == kStx) {
        // Text that is not ended by CR LF is sent without expecting an answer.
        std::optional<Request> text = GiveUp();
        m_begun.push_back(byte);
        return text;
    }
    if (byte == kBreak && m_begun.empty()) {
        m_begun.push_back(byte);
        return Take(Request::Kind::Break);
    }
    return FeedText(byte);
}

std::optional<Request> RequestParser::FeedFrame()
{
    if (m_begun.size() < 4 || m_begun.size() < m_begun[3] + kFrameOverhead) {
        return std::nullopt;
    }
    return Take(IsGoodFrame(m_begun) ? Request::Kind::Frame : Request::Kind::Damaged);
}

std::optional<Request> RequestParser::FeedText(std::uint8_t byte)
{
    const bool isLine = byte == kLf && !m_begun.empty() && m_begun.back() == kCr;
    m_begun.push_back(byte);
    if (isLine) {
        return Take(Request::Kind::Line);
    }
    if (m_begun.size() == kMaxText) {
        return Take(Request::Kind::Damaged);
    }
    return std::nullopt;
}

std::optional<Request> RequestParser::GiveUp()
{
    if (m_begun.empty()) {
        return std::nullopt;
    }
    return Take(Request::Kind::Damaged);
}

Request RequestParser::Take(Request::Kind kind)
{
    return Request{kind, std::exchange(m_begun, {})};
}

} // namespace fieldcore::simulator

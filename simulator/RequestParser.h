#pragma once

#include "simulator/Frame.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace fieldcore::simulator {

/// Something that the controller said.
struct Request
{
    enum class Kind : std::uint8_t
    {
        Frame,  ///< a whole frame with the right check byte and ETX
        Break,  ///< a lone 0x00 between frames
        Line,   ///< text up to and including CR LF
        Damaged ///< bytes that are none of these; nothing answers them
    };

    Kind kind = Kind::Damaged;
    Bytes bytes; ///< as they came

    /// Frame type; frames only.
    [[nodiscard]] std::uint8_t Type() const { return bytes[2]; }
    /// Data part; frames only. A view of this request's bytes.
    [[nodiscard]] std::span<const std::uint8_t> Data() const
    {
        return std::span(bytes).subspan(4, bytes.size() - kFrameOverhead);
    }
};

/// Cuts the stream of bytes from the controller into requests, one byte at a time. Whatever
/// comes, it keeps at most kMaxText bytes, and the next good frame behind damaged bytes is found
/// unless it starts inside a damaged one.
class RequestParser
{
public:
    /// The longest line that a controller sends: 256 bytes and CR LF.
    static constexpr std::size_t kMaxText = 258;

    /// @return the request that @p byte completes, if it completes one
    [[nodiscard]] std::optional<Request> Feed(std::uint8_t byte);

    /// Gives up on what has begun: the controller fell silent in the middle.
    /// @return what had come, as damaged bytes; nothing if nothing had
    [[nodiscard]] std::optional<Request> GiveUp();

    /// The bytes of the request that has begun.
    [[nodiscard]] std::span<const std::uint8_t> Begun() const { return m_begun; }

private:
    [[nodiscard]] std::optional<Request> FeedFrame();
    [[nodiscard]] std::optional<Request> FeedText(std::uint8_t byte);
    [[nodiscard]] Request Take(Request::Kind kind);

    Bytes m_begun;
};

} // namespace fieldcore::simulator

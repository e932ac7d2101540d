#pragma once

#include "tests/support/VirtualLine.h"

#include <chrono>
#include <concepts>
#include <functional>
#include <initializer_list>
#include <utility>
#include <vector>

namespace fieldcore::testing {

/// The far end of a line that answers by a script: the n-th frame (or BREAK, a lone zero byte) that
/// comes gets the n-th answer. An empty answer is silence.
class ScriptedEnd
{
public:
    /// What is sent in one go, so long after the request or the piece before it.
    struct Piece
    {
        Piece(Bytes sent, Clock::Duration after = std::chrono::milliseconds(1))
            : bytes(std::move(sent)), wait(after)
        {}
        Piece(std::initializer_list<std::uint8_t> sent) : Piece(Bytes(sent)) {}

        Bytes bytes;
        Clock::Duration wait;
    };
    using Answer = std::vector<Piece>;

    /// @param line  must outlive this object; what is in it is taken out
    ScriptedEnd(VirtualLine& line, std::vector<Answer> answers);
    /// Each request gets the answer that @p answer has for it, called on the thread that asks.
    template <std::invocable<const Bytes&> AnswerTo>
    ScriptedEnd(VirtualLine& line, AnswerTo answer) : m_line(line), m_answer(std::move(answer))
    {
        Listen();
    }
    ~ScriptedEnd() { m_line.SetListener(nullptr); }
    ScriptedEnd(const ScriptedEnd&) = delete;
    ScriptedEnd& operator=(const ScriptedEnd&) = delete;

    /// The requests that came, whole; while nobody asks.
    [[nodiscard]] const std::vector<Bytes>& Requests() const { return m_requests; }

private:
    void Listen();
    void Hear(std::span<const std::uint8_t> bytes, Clock::Duration arrives);

    VirtualLine& m_line;
    const std::function<Answer(const Bytes&)> m_answer;
    Bytes m_pending;
    std::vector<Bytes> m_requests;
};

} // namespace fieldcore::testing

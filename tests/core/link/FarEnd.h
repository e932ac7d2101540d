#pragma once

#include <chrono>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace fieldcore::testing {

using Bytes = std::vector<std::uint8_t>;

/// A frame as the receiver would send it, with the right checksum.
[[nodiscard]] Bytes Frame(std::uint8_t type, const Bytes& data = {});
/// A long frame of type 0x95.
[[nodiscard]] Bytes LongFrame(const Bytes& data);
[[nodiscard]] Bytes Joined(std::initializer_list<Bytes> pieces);
[[nodiscard]] Bytes Ascii(const std::string& text);

/// The other end of a pseudo-terminal, moved by hand: a test sends what it likes and sees the
/// raw bytes that came.
class FarEnd
{
public:
    FarEnd();
    ~FarEnd();
    FarEnd(const FarEnd&) = delete;
    FarEnd& operator=(const FarEnd&) = delete;

    [[nodiscard]] const std::string& Path() const { return m_path; }
    void Send(std::span<const std::uint8_t> bytes) const;
    /// Waits for @p count bytes, at most five seconds.
    [[nodiscard]] Bytes Receive(std::size_t count) const;
    /// What has come so far, without waiting.
    [[nodiscard]] Bytes ReceiveAll() const { return Receive(0); }
    /// Pulls the cable.
    void HangUp();

private:
    int m_master = -1;
    int m_slave = -1; // kept open, so that the port does not hang up while nobody uses it
    std::string m_path;
};

/// A far end that answers requests from a thread of its own: the n-th frame (or BREAK, a lone
/// zero byte) that comes gets the n-th answer, sent in pieces; an empty answer is silence.
class ScriptedReceiver
{
public:
    using Answer = std::vector<Bytes>; ///< pieces, each written by itself
    explicit ScriptedReceiver(std::vector<Answer> answers);
    /// Each request gets the answer that @p answer has for it, called on the thread.
    template <std::invocable<const Bytes&> AnswerTo>
    explicit ScriptedReceiver(AnswerTo answer) : ScriptedReceiver(std::move(answer), Each{})
    {}
    ~ScriptedReceiver();
    ScriptedReceiver(const ScriptedReceiver&) = delete;
    ScriptedReceiver& operator=(const ScriptedReceiver&) = delete;

    [[nodiscard]] const std::string& Path() const { return m_farEnd.Path(); }
    FarEnd& End() { return m_farEnd; }
    /// Ends the thread. @return the requests that came, whole
    std::vector<Bytes> Stop();

private:
    struct Each
    {};
    ScriptedReceiver(std::function<Answer(const Bytes&)> answer, Each);
    void Run(const std::stop_token& stop);

    FarEnd m_farEnd;
    const std::function<Answer(const Bytes&)> m_answer;
    std::vector<Bytes> m_requests; // the thread's until Stop()
    std::jthread m_thread;
};

} // namespace fieldcore::testing

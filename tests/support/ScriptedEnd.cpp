#include "tests/support/ScriptedEnd.h"

namespace fieldcore::testing {

ScriptedEnd::ScriptedEnd(VirtualLine& line, std::vector<Answer> answers)
    : ScriptedEnd(line,
                  [answers = std::move(answers), next = std::size_t{0}](const Bytes&) mutable {
                      return next < answers.size() ? answers[next++] : Answer();
                  })
{}

void ScriptedEnd::Listen()
{
    m_line.HangUp(); // of the far end before this one nothing stays
    m_line.Plug();
    m_line.SetListener([this](std::span<const std::uint8_t> bytes, Clock::Duration arrives) {
        Hear(bytes, arrives);
    });
}

void ScriptedEnd::Hear(std::span<const std::uint8_t> bytes, Clock::Duration arrives)
{
    m_pending.insert(m_pending.end(), bytes.begin(), bytes.end());
    for (;;) {
        const std::size_t length = m_pending.empty()      ? 0
                                   : m_pending[0] == 0x00 ? 1
                                   : m_pending.size() < 4 ? 0
                                                          : std::size_t{m_pending[3]} + 6;
        if (length == 0 || m_pending.size() < length) {
            return;
        }
        const auto end = m_pending.begin() + static_cast<std::ptrdiff_t>(length);
        m_requests.emplace_back(m_pending.begin(), end);
        m_pending.erase(m_pending.begin(), end);
        for (const Piece& piece : m_answer(m_requests.back())) {
            arrives = m_line.Send(piece.bytes, arrives + piece.wait);
        }
    }
}

} // namespace fieldcore::testing

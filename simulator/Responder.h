#pragma once

#include "core/platform/Clock.h"
#include "simulator/ExchangeRecord.h"
#include "simulator/FaultInjector.h"
#include "simulator/Outgoing.h"
#include "simulator/Receiver.h"
#include "simulator/Replay.h"
#include "simulator/Simulator.h"

#include <atomic>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <span>

namespace fieldcore::simulator {

/// Decides what is said to a request: asks the script, the replayed log or the receiver, in this
/// order, lets the fault rules at the answer, and keeps the record. Answer() and CutRequest()
/// belong to one thread; the rest may be called from any.
class Responder
{
public:
    /// @param clock  must outlive the responder
    Responder(const Scenario& scenario, const Clock& clock);

    /// Opens the files of @p options.
    [[nodiscard]] bool Prepare(const SimulatorOptions& options, std::string& error);

    /// Records the request and answers it.
    [[nodiscard]] Pieces Answer(const Request& request);
    /// Whether the answer to the last request goes on behind what Answer() gave.
    [[nodiscard]] bool GoesOn() const { return m_goesOn; }
    void StopAnswer() { m_goesOn = false; }
    /// What comes next of it; perhaps nothing, if the next frame was lost.
    [[nodiscard]] Pieces Next();
    /// See FaultInjector::CutRequest().
    [[nodiscard]] std::optional<Piece> CutRequest(std::span<const std::uint8_t> begun);
    /// Records bytes that go out now.
    void RecordSent(std::span<const std::uint8_t> bytes);
    /// The receiver's rate, as commands have set it.
    [[nodiscard]] std::uint32_t BaudRate() const;

    void AddFault(const FaultRule& rule);
    void ClearFaults();
    void SetScript(Simulator::Script script);
    [[nodiscard]] std::vector<RecordedBytes> Record() const { return m_record.Pieces(); }
    [[nodiscard]] std::vector<Bytes> Requests() const;
    [[nodiscard]] std::vector<ReceiverFile> Files() const;
    [[nodiscard]] Bytes Kept(std::uint8_t type) const;
    [[nodiscard]] std::size_t RequestCount() const { return m_requests; }

private:
    [[nodiscard]] Pieces Decide(const Request& request);
    void Take(const FaultInjector::Outcome& outcome);
    [[nodiscard]] std::vector<Bytes> PlainAnswer(const Request& request);
    [[nodiscard]] Clock::Duration Elapsed() const { return m_clock.Steady() - m_start; }

    const Clock& m_clock;
    const Clock::Duration m_start;
    const bool m_answers;
    const Clock::Duration m_latency;
    std::optional<Replay> m_replay;
    Clock::Duration m_silentUntil{}; // since m_start
    ExchangeRecord m_record;
    std::atomic<std::size_t> m_requests = 0;
    bool m_goesOn = false;

    mutable std::mutex m_receiverMutex;
    Receiver m_receiver;              // guarded by m_receiverMutex
    std::deque<Bytes> m_requestBytes; // guarded by m_receiverMutex

    std::mutex m_mutex;
    FaultInjector m_faults;     // guarded by m_mutex
    Simulator::Script m_script; // guarded by m_mutex
};

} // namespace fieldcore::simulator

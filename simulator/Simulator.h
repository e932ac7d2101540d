#pragma once

#include "core/platform/Clock.h"
#include "simulator/ExchangeRecord.h"
#include "simulator/FaultRule.h"
#include "simulator/ReceiverFile.h"
#include "simulator/Scenario.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace fieldcore::simulator {

class LineWorker;
class Port;
class Responder;

/// How a simulated receiver is run.
struct SimulatorOptions
{
    /// Where the port appears: a symbolic link, which must not exist yet unless an earlier
    /// simulator left it. Empty: in a fresh folder of its own among the temporary files.
    std::filesystem::path link;
    /// Every exchange is added to this file as log lines while it runs. Empty: none.
    std::filesystem::path recordFile;
    /// Answers come from this exchange log and not from the scenario's receiver. Empty: not.
    std::filesystem::path replayFile;
    /// The receiver answers on this port in place of a pseudo-terminal; it must outlive the
    /// simulator. Null: not.
    Port* port = nullptr;
};

/// A receiver in software behind a pseudo-terminal, which a controller opens like any port.
///
///     Simulator simulator(*LoadScenario("lark", error));
///     if (simulator.Start(error)) {
///         Open(simulator.PortPath());
///     }
///
/// It answers from a thread of its own, which sleeps while nothing comes. Every method may be
/// called from any thread, also while it runs. No exceptions but those of memory running out.
class Simulator
{
public:
    /// Answers the raw bytes of one request with raw bytes; none: says nothing.
    using Script = std::function<std::vector<std::uint8_t>(std::span<const std::uint8_t> request)>;

    /// How many exchanged pieces Record() keeps; older ones are forgotten first.
    static constexpr std::size_t kRecordLimit = 65536;
    static constexpr std::size_t kRecordBytes = 16U << 20U; ///< and how many bytes of them

    /// @param clock  counts delays, pacing and the receiver's date; must outlive the simulator
    explicit Simulator(const Scenario& scenario, const Clock& clock = SystemClock::Instance(),
                       SimulatorOptions options = {});
    ~Simulator(); ///< stops its thread, closes the port and removes the link
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    /// Opens the port and starts answering. Once started, further calls do nothing.
    /// @param error  what went wrong, in words for the user
    /// @return false if the port could not be made or a file could not be opened
    [[nodiscard]] bool Start(std::string& error);

    /// The path to open; the same before and after HangUp() and Plug(). Empty before Start().
    [[nodiscard]] std::string PortPath() const;

    /// Adds a rule behind those of the scenario; it holds from the next request on.
    void AddFault(const FaultRule& rule);
    void ClearFaults(); ///< removes every rule, those of the scenario too

    /// Sends bytes that nobody asked for, behind what is being sent.
    void Send(std::span<const std::uint8_t> bytes);

    /// Pulls the cable: who has the port open sees a hang-up, and the path is gone. Returns when
    /// it is done.
    void HangUp();
    /// Plugs it in again: a new port behind the same path. Nothing happens while it is plugged in.
    /// @return false if no new port could be made
    bool Plug();

    /// From now on @p script answers in place of the receiver, on the simulator's thread; fault
    /// rules apply as ever. Null: the receiver again. A call that is running is not waited for.
    void SetScripted(Script script);

    /// What went over the line, oldest first. A request stands in it before its answer is sent.
    [[nodiscard]] std::vector<RecordedBytes> Record() const;
    /// What was asked, oldest first: the last kRecordLimit whole frames, BREAKs and lines of text,
    /// as they came. A long download does not push them out.
    [[nodiscard]] std::vector<std::vector<std::uint8_t>> Requests() const;
    /// The receiver's files as they are now, those of the recycle bin included.
    [[nodiscard]] std::vector<ReceiverFile> Files() const;
    /// Data of the last accepted command of that type, such as the signals of 0x53; empty if there
    /// was none.
    [[nodiscard]] std::vector<std::uint8_t> LastCommand(std::uint8_t type) const;
    /// Requests so far: whole frames, BREAKs and lines of text; damaged bytes do not count.
    [[nodiscard]] std::size_t RequestCount() const;

private:
    const SimulatorOptions m_options;
    const std::unique_ptr<Responder> m_responder;
    const std::unique_ptr<Port> m_terminal; // null where another port was given
    Port& m_port;
    const std::unique_ptr<LineWorker> m_worker; // behind the responder, which it asks
    std::mutex m_startMutex;
    std::atomic<bool> m_started = false;
};

} // namespace fieldcore::simulator

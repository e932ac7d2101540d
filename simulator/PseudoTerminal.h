#pragma once

#include "simulator/Port.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace fieldcore::simulator {

/// A port without hardware: a pseudo-terminal whose far end a controller opens by a path that
/// stays the same, however often the pair behind it is closed and made anew.
class PseudoTerminal final : public Port
{
public:
    /// @param link  where it appears; empty: a link in a fresh private folder among the temporary
    ///              files, where those that killed simulators left are removed
    explicit PseudoTerminal(std::filesystem::path link) : m_wanted(std::move(link)) {}
    ~PseudoTerminal() override; ///< closes it, and removes the link and its folder
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    /// Makes a new pair and lets the link point to it. A file at its place that is not the link
    /// of a pair which is gone is left alone, and the call fails.
    [[nodiscard]] bool Open(std::string& error) override;
    void Close() override; ///< the link is gone, too
    [[nodiscard]] bool IsOpen() const override { return m_master >= 0; }
    [[nodiscard]] std::string Path() const override { return m_link.string(); }

    [[nodiscard]] std::size_t Read(std::span<std::uint8_t> buffer) override;
    [[nodiscard]] std::size_t Write(std::span<const std::uint8_t> bytes) override;
    bool Wait(std::optional<Clock::Duration> limit, bool forRoom) override;
    void Wake() override;
    void WaitUntilRead(std::chrono::milliseconds limit) override;
    [[nodiscard]] std::uint32_t ControllerRate() const override;

private:
    [[nodiscard]] bool SetLink(std::string& error);
    [[nodiscard]] bool MakePair(std::string& error);
    [[nodiscard]] bool Publish(std::string& error);

    const std::filesystem::path m_wanted;
    std::filesystem::path m_link;   // from the first Open() on
    std::filesystem::path m_folder; // made by us; empty: none
    int m_wakeUp = -1;              // eventfd
    int m_master = -1;              // our end; non-blocking
    // The far end, held open so that the pair does not hang up while no controller is there.
    int m_slave = -1;
    std::string m_slaveName;
};

} // namespace fieldcore::simulator

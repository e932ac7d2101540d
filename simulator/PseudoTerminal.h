#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

namespace fieldcore::simulator {

/// A port without hardware: a pseudo-terminal whose far end a controller opens by a path that
/// stays the same, however often the pair behind it is closed and made anew. One thread at a
/// time.
class PseudoTerminal
{
public:
    PseudoTerminal() = default;
    ~PseudoTerminal(); ///< closes it, and removes the link and its folder
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    /// Decides the path, once; the port is there only after Open().
    /// @param link  empty: a link in a fresh private folder among the temporary files
    [[nodiscard]] bool SetLink(const std::filesystem::path& link, std::string& error);

    /// Makes a new pair and lets the link point to it. A file at its place that is not the link
    /// of a pair which is gone is left alone, and the call fails.
    [[nodiscard]] bool Open(std::string& error);

    /// Hangs up: who has the port open reads its end from now on, and the link is gone.
    void Close();

    /// Waits until the controller has read everything that was sent, at most @p limit.
    void WaitUntilRead(std::chrono::milliseconds limit) const;

    /// The rate that the controller has set its end to, bit/s; 0 if it is none of the usual ones.
    [[nodiscard]] std::uint32_t ControllerRate() const;

    [[nodiscard]] bool IsOpen() const { return m_master >= 0; }
    [[nodiscard]] const std::filesystem::path& Link() const { return m_link; }
    /// Our end; non-blocking. -1 while closed.
    [[nodiscard]] int Master() const { return m_master; }

private:
    [[nodiscard]] bool MakePair(std::string& error);
    [[nodiscard]] bool Publish(std::string& error);

    std::filesystem::path m_link;
    std::filesystem::path m_folder; // made by us; empty: none
    int m_master = -1;
    // The far end, held open so that the pair does not hang up while no controller is there.
    int m_slave = -1;
    std::string m_slaveName;
};

} // namespace fieldcore::simulator

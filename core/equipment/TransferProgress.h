#pragma once

#include "core/link/ReceivedFile.h"
#include "core/platform/Clock.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace fieldcore {

/// How far a download of several files is.
struct TransferProgress
{
    int file = 0; ///< the one under way, from 1
    int files = 0;
    std::wstring name;
    std::uint64_t fileBytes = 0; ///< there of it
    std::uint64_t fileSize = 0;
    TransferStart start;          ///< of the file, once its first bytes have arrived
    std::uint64_t totalBytes = 0; ///< there of all
    std::uint64_t totalSize = 0;
    double bytesPerSecond = 0.0; ///< smoothed; 0 until it is known
    /// For the rest of all files at that rate; nothing until it is known.
    std::optional<std::chrono::seconds> timeLeft;
};

/// Measures the rate of a transfer and works out what is left. Holds no history. One thread.
class TransferMeter
{
public:
    /// @param clock  must outlive the meter
    TransferMeter(const Clock& clock, int files, std::uint64_t totalSize);

    void StartFile(std::wstring name, std::uint64_t size);
    /// @param bytes  of the current file, all that are there
    /// @param start  how its transfer began; what was there before does not count for the rate
    void Advance(std::uint64_t bytes, const TransferStart& start = {});
    [[nodiscard]] const TransferProgress& Get() const { return m_progress; }

private:
    void Measure();

    const Clock& m_clock;
    TransferProgress m_progress;
    std::uint64_t m_finishedBytes = 0; // of the files before
    Clock::Duration m_measured{};      // when, and at how many bytes
    std::uint64_t m_measuredBytes = 0;
    Clock::Duration m_advanced{}; // when bytes or a file came last
};

/// That a transfer went on or began anew, for the user; empty if it just began.
[[nodiscard]] std::wstring TransferStartText(const TransferStart& start);

} // namespace fieldcore

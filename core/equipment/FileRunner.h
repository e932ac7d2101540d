#pragma once

#include "core/equipment/FilePlan.h"
#include "core/equipment/ReceiverFiles.h"
#include "core/platform/Clock.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <system_error>

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

    /// The next file. @param size  as it was listed, bytes
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

/// Does what a plan says, file by file, and notes in it what became of each. Says and asks nothing
/// but what it is given for that. Made for one plan. The thread that uses the library.
class FileRunner
{
public:
    /// What is around it; whatever is empty is not asked or told.
    struct Surroundings
    {
        /// Called when a file begins and for every block, about 1000 bytes: paint at most ten times
        /// a second. @return false to cancel
        std::function<bool(const TransferProgress&)> watch{};
        /// Asked before the first file that would replace another. @return false to end there
        std::function<bool(const std::filesystem::path&)> mayReplace{};
        /// Told of each file as soon as its outcome is known.
        std::function<void(const PlannedFile&)> ended{};
        /// Bytes that can be written to a folder. Empty: the system is asked
        std::function<std::optional<std::uint64_t>(const std::filesystem::path&)> freeBytes{};
    };

    /// @param files  the plan's; must outlive the object, as must the plan
    FileRunner(ReceiverFiles& files, FilePlan& plan, Surroundings surroundings);

    /// The files that are planned, in their order. Fetching ends with the first that fails;
    /// deleting and recovering when the user cancels, when the link is gone, and when two in a row
    /// get no answer. Those behind are NotReached.
    void Run();

    /// Whether there is more than 1.2 times @p size. Free space counts one byte less for each 4
    /// GiB.
    [[nodiscard]] static bool IsEnough(std::uint32_t size, std::uint64_t freeBytes);

private:
    void Fetch(PlannedFile& file, TransferMeter& meter);
    void Transfer(PlannedFile& file, TransferMeter& meter);
    [[nodiscard]] bool MayReplace(const std::filesystem::path& file);
    void Change(PlannedFile& file);
    int stDelRecover(PlannedFile& file);
    int stDeleteFileKernel(const PlannedFile& file);
    int stFileRecoverKernel(const PlannedFile& file);
    [[nodiscard]] bool GoesOn(const PlannedFile& file);

    ReceiverFiles& m_files;
    CCommand& m_command;
    FilePlan& m_plan;
    const Surroundings m_around;
    std::error_code m_folderError;
    DirectoryListingData m_record; // of the row, or of the one before it that had one
    bool m_replaces = false;
    int m_unanswered = 0; // in a row
};

} // namespace fieldcore

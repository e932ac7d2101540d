#pragma once

#include "core/equipment/FilePlan.h"
#include "core/equipment/ReceiverFiles.h"
#include "core/equipment/TransferProgress.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

namespace fieldcore {

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
    int ChangeListed(const PlannedFile& file);
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

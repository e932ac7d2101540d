#include "core/equipment/FileRunner.h"

#include "core/equipment/FileDestination.h"
#include "core/equipment/FileTexts.h"
#include "core/link/Command.h"
#include "core/platform/Folders.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <utility>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

constexpr double kSpaceFactor = 1.2;
constexpr double kBytesPerHighWord = 4294967295.0; // one less than there are
constexpr int kMostUnanswered = 2;

bool IsFull(std::error_code error)
{
    return error == std::errc::no_space_on_device || error == std::errc::file_too_large ||
           error == std::error_code(EDQUOT, std::generic_category());
}

FileOutcome OutcomeOf(DownloadFault fault, std::error_code error)
{
    using enum FileOutcome;
    // In the order of the faults; without one the bytes were counted.
    constexpr std::array kOutcomes{WrongSize,  NameRefused,   FolderRefused,
                                   NotWritten, NoSuchFile,    BeingLogged,
                                   WrongSize,  RequestFailed, RequestFailed};
    const FileOutcome outcome = kOutcomes.at(static_cast<std::size_t>(fault));
    const bool isWritten = outcome == FolderRefused || outcome == NotWritten;
    return isWritten && IsFull(error) ? DiskFull : outcome;
}

/// Whether a look for a file that ended so has told that there is none: it was listed without it,
/// its name is too long for any file, or the receiver refused to list it.
bool IsKnownToBeGone(CommandFault fault)
{
    return fault == CommandFault::None || fault == CommandFault::TooLong ||
           fault == CommandFault::Refused;
}

using Seconds = std::chrono::duration<double>;

constexpr Seconds kMeasureEvery{0.25};
constexpr Seconds kSmoothing{3.0};   // how long a change of the rate takes to show
constexpr double kLongestLeft = 1e9; // seconds

} // namespace

TransferMeter::TransferMeter(const Clock& clock, int files, std::uint64_t totalSize)
    : m_clock(clock), m_measured(clock.Steady()), m_advanced(m_measured)
{
    m_progress.files = files;
    m_progress.totalSize = totalSize;
}

void TransferMeter::StartFile(std::wstring name, std::uint64_t size)
{
    m_finishedBytes = m_progress.totalBytes;
    ++m_progress.file;
    m_progress.name = std::move(name);
    m_progress.fileBytes = 0;
    m_progress.fileSize = size;
    m_progress.start = {};
    // What passes between two files (questions, options, a rename) is not the line's rate. What
    // was counted before counts on: a file may be over sooner than a rate can be measured.
    const Clock::Duration now = m_clock.Steady();
    m_measured += now - m_advanced;
    m_advanced = now;
}

void TransferMeter::Advance(std::uint64_t bytes, const TransferStart& start)
{
    m_measuredBytes += start.continuedAt - m_progress.start.continuedAt;
    m_progress.start = start;
    m_progress.fileBytes = bytes;
    m_progress.totalBytes = m_finishedBytes + bytes;
    Measure();
    const std::uint64_t left =
        m_progress.totalSize - std::min(m_progress.totalSize, m_progress.totalBytes);
    if (m_progress.bytesPerSecond > 0.0) {
        const double seconds = static_cast<double>(left) / m_progress.bytesPerSecond;
        m_progress.timeLeft =
            std::chrono::seconds(std::llround(std::ceil(std::min(seconds, kLongestLeft))));
    }
}

void TransferMeter::Measure()
{
    const Clock::Duration now = m_clock.Steady();
    m_advanced = now;
    const Seconds passed = now - m_measured;
    if (passed < kMeasureEvery) {
        return;
    }
    const double rate =
        static_cast<double>(m_progress.totalBytes - m_measuredBytes) / passed.count();
    // An exponential mean over unequal intervals.
    const double weight =
        m_progress.bytesPerSecond > 0.0 ? 1.0 - std::exp(-passed / kSmoothing) : 1.0;
    m_progress.bytesPerSecond += weight * (rate - m_progress.bytesPerSecond);
    m_measured = now;
    m_measuredBytes = m_progress.totalBytes;
}

std::wstring TransferStartText(const TransferStart& start)
{
    if (start.continuedAt > 0) {
        return FormatText(text::kTransferContinued, ByteCountText(start.continuedAt).c_str());
    }
    return start.reason != AnewReason::None
               ? FormatText(text::kTransferAnew, Text(MeaningOf(start.reason).textId))
               : std::wstring();
}

FileRunner::FileRunner(ReceiverFiles& files, FilePlan& plan, Surroundings surroundings)
    : m_files(files), m_command(files.GetCommand()), m_plan(plan), m_around(std::move(surroundings))
{}

void FileRunner::Run()
{
    if (m_plan.action == FileAction::Fetch && m_plan.makesFolder) {
        m_folderError = Folders::Create(m_plan.folder);
    }
    TransferMeter meter(m_command.GetClock(), m_plan.Count(FileOutcome::Planned),
                        m_plan.Bytes(FileOutcome::Planned));
    bool goesOn = true;
    for (PlannedFile& file : m_plan.files) {
        if (file.outcome != FileOutcome::Planned) {
            continue;
        }
        if (!goesOn) {
            file.outcome = FileOutcome::NotReached;
            continue;
        }
        if (m_plan.action == FileAction::Fetch) {
            Fetch(file, meter);
        } else {
            Change(file);
        }
        if (m_around.ended) {
            m_around.ended(file);
        }
        goesOn = GoesOn(file);
    }
}

bool FileRunner::GoesOn(const PlannedFile& file)
{
    if (m_plan.action == FileAction::Fetch) {
        return file.outcome == FileOutcome::Done;
    }
    if (file.outcome != FileOutcome::RequestFailed) {
        return true;
    }
    m_unanswered = file.WasAnswered() ? 0 : m_unanswered + 1;
    const FaultClass said = ClassOf(file.fault);
    return said != FaultClass::Gone && said != FaultClass::Cancelled &&
           m_unanswered < kMostUnanswered;
}

// Fetching.

void FileRunner::Fetch(PlannedFile& file, TransferMeter& meter)
{
    if (m_plan.isByRow) {
        file.name = FileRowName(file.record.Name());
        m_files.stAddExtension(1, file.name);
        if (m_files.WasCancelled()) {
            file.outcome = FileOutcome::RequestFailed;
            file.fault = CommandFault::Cancelled;
            return;
        }
        if (const DirectoryListingData* const record = m_files.FindRecord(file.name)) {
            m_record = *record;
        }
    } else {
        m_record = file.record;
    }
    file.path = m_plan.FolderOf(file) / ToUtf8(file.name);
    file.nameFault = CheckReceivedName(file.name, file.path.parent_path());
    const auto free = m_around.freeBytes ? m_around.freeBytes(m_plan.folder)
                                         : FileDestination::FreeBytesOf(m_plan.folder);
    if (!free || !IsEnough(m_record.size, *free)) {
        file.outcome = FileOutcome::NoSpace;
        if (!free) {
            file.error = m_folderError ? m_folderError
                                       : std::make_error_code(std::errc::no_such_file_or_directory);
        }
    } else if (m_folderError) {
        file.outcome = FileOutcome::FolderRefused;
        file.error = m_folderError;
    } else if (file.nameFault != NameFault::None) {
        file.outcome = FileOutcome::NameRefused;
    } else if (!MayReplace(file.path)) {
        file.outcome = FileOutcome::Kept;
    } else {
        Transfer(file, meter);
    }
}

/// The one place at which a file is fetched.
void FileRunner::Transfer(PlannedFile& file, TransferMeter& meter)
{
    const auto watch = [&] { return !m_around.watch || m_around.watch(meter.Get()); };
    meter.StartFile(file.name, m_record.size);
    watch();
    const std::int64_t bytes = m_command.DownloadFile(
        file.path.parent_path(), file.name, m_record.size,
        [&](std::uint32_t arrived) {
            meter.Advance(arrived, m_command.GetTransferStart());
            return watch();
        },
        m_record.time);
    file.start = m_command.GetTransferStart();
    const DownloadFault fault = m_command.GetDownloadFault();
    if (bytes == m_record.size && fault == DownloadFault::None) {
        file.outcome = FileOutcome::Done;
        return;
    }
    file.error = m_command.GetFileError();
    file.nameFault = m_command.GetNameFault();
    file.outcome = OutcomeOf(fault, file.error);
    if (file.outcome == FileOutcome::RequestFailed) {
        file.fault = m_command.Fault();
    }
}

bool FileRunner::IsEnough(std::uint32_t size, std::uint64_t freeBytes)
{
    const double free = static_cast<double>(freeBytes >> 32) * kBytesPerHighWord +
                        static_cast<double>(freeBytes & 0xFFFFFFFFU);
    return size * kSpaceFactor < free;
}

bool FileRunner::MayReplace(const fs::path& file)
{
    std::error_code ignored; // what cannot be looked at is not replaced either: writing fails
    if (!m_replaces && m_around.mayReplace && fs::exists(file, ignored)) {
        m_replaces = m_around.mayReplace(file);
        return m_replaces;
    }
    return true;
}

// Deleting and recovering.

void FileRunner::Change(PlannedFile& file)
{
    const int result = stDelRecover(file);
    if (file.outcome != FileOutcome::Planned) {
        return;
    }
    file.fault = m_files.WasCancelled() ? CommandFault::Cancelled : m_command.Fault();
    file.outcome = result == 1                           ? FileOutcome::Done
                   : file.fault == CommandFault::TooLong ? FileOutcome::NameRefused
                                                         : FileOutcome::RequestFailed;
}

/// In the steps that the window demands, with the name of a row; else exactly this file, by its
/// whole name or number.
int FileRunner::stDelRecover(PlannedFile& file)
{
    const bool deletes = m_plan.action == FileAction::Delete;
    if (m_plan.isByRow && m_files.AttributeOf(file.name) != 0) {
        file.outcome = FileOutcome::BeingLogged;
        return 0;
    }
    if (m_plan.isByRow && m_files.WasCancelled()) {
        return 0;
    }
    if (m_files.Family() == ReceiverFamily::Pica) {
        const std::uint16_t number =
            m_plan.isByRow ? m_files.GetFileIndex_Pica(file.name) : file.record.fileIndex;
        return deletes ? m_command.DeleteFile_Pica(number) : m_command.RecoverFile_Pica(number);
    }
    if (m_plan.isByRow) {
        return deletes ? stDeleteFileKernel(file) : stFileRecoverKernel(file);
    }
    return deletes ? m_command.DeleteFile_Lark(file.name) : m_command.RecoverFile_Lark(file.name);
}

/// Deletes one file of a Lark. If there is a deleted one of the same base name, that one is deleted
/// first; on the page of live files nothing else happens then.
int FileRunner::stDeleteFileKernel(const PlannedFile& file)
{
    std::wstring live;
    std::wstring deleted;
    m_files.stAddExtension(file.name, live, deleted);
    if (m_files.WasCancelled()) {
        return 0;
    }
    if (m_command.FileExists(deleted) == 1) {
        if (m_command.DeleteFile_Lark(deleted) == 0) {
            return 0;
        }
        if (m_files.GetMode() == ReceiverFiles::Live) {
            return 1; // the live file is not touched then
        }
    } else if (!IsKnownToBeGone(m_command.Fault())) {
        return 0; // without an answer nothing is known, and nothing more is deleted
    }
    return m_command.DeleteFile_Lark(live);
}

int FileRunner::stFileRecoverKernel(const PlannedFile& file)
{
    std::wstring deleted = file.name;
    m_files.stAddExtension(0, deleted);
    return m_files.WasCancelled() ? 0 : m_command.RecoverFile_Lark(deleted);
}

} // namespace fieldcore

#include "core/equipment/FileManager.h"

#include "core/equipment/FileTexts.h"
#include "core/host/Host.h"
#include "core/host/MesBox.h"
#include "core/link/Command.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <utility>

namespace fieldcore {

namespace {

constexpr std::size_t kNamesShown = 3;

} // namespace

FileManager::FileManager(ReceiverFiles& files, Surroundings surroundings)
    : m_files(files), m_host(files.GetCommand().GetHost()), m_around(std::move(surroundings))
{}

void FileManager::MakePlan(FileAction action)
{
    m_files.ForgetCancel();
    m_plan = {action, true};
    const FileRows& rows = *m_files.GetRows();
    for (int row = 0; row < rows.Count(); ++row) {
        if (rows.IsSelected(row)) {
            m_files.AddTo(m_plan, rows.At(row).record);
        }
    }
}

void FileManager::Say(const std::wstring& text, int captionId, BoxIcon icon)
{
    CMesBox(m_host).Show(text, captionId, {BoxButtons::Ok, icon});
}

// Fetching.

void FileManager::FileDownload()
{
    MakePlan(FileAction::Fetch);
    if (stCheckDownloadSelect() == 1 && stStartDownload() == 1) {
        Say(Text(text::kDownloadDone), text::kDownloadDoneCaption, BoxIcon::Information);
    }
    m_files.GetRows()->Focus();
}

int FileManager::stCheckDownloadSelect()
{
    if (m_plan.files.empty()) {
        CMesBox(m_host).Warn(text::kDownloadNothing, text::kFileSelectCaption);
        return 0;
    }
    for (PlannedFile& file : m_plan.files) {
        std::wstring name = file.name;
        m_files.stAddExtension(1, name);
        if (m_files.WasCancelled()) {
            return 0;
        }
        const DirectoryListingData* const record = m_files.FindRecord(name);
        if (record == nullptr) {
            file.record.size = 0; // it is fetched with the size of the one before it
        } else if (record->attributes != 0) {
            CMesBox(m_host).Warn(text::kDownloadLogging, text::kFileSelectCaption);
            return 0;
        } else if (const NameFault fault = CheckReceivedName(name); fault != NameFault::None) {
            file.name = name;
            file.outcome = FileOutcome::NameRefused;
            file.nameFault = fault;
            TellFailure();
            return 0;
        }
    }
    return 1;
}

bool FileManager::AskDestination()
{
    CCommand& command = m_files.GetCommand();
    FileDestination destination(
        m_plan.Bytes(FileOutcome::Planned), command.GetPortNumber(), command.GetBaudRate(),
        command.GetEnvironment().GetFolders(),
        [this](const auto& folder) { return m_plan.BytesAlreadyIn(folder); });
    if (!m_around.askDestination || !m_around.askDestination(destination)) {
        return false;
    }
    m_plan.folder = destination.Folder();
    m_plan.makesFolder = destination.kind == FileDestination::MainMemory;
    m_plan.dateFolders = destination.dateFolders != 0;
    if (destination.onlyNew) {
        m_plan.LeaveOutFetched();
    }
    return true;
}

int FileManager::stStartDownload()
{
    if (!AskDestination()) {
        return 0;
    }
    if (m_plan.Count(FileOutcome::Planned) == 0) {
        Say(Text(text::kDownloadNothingNew), text::kDownloadDoneCaption, BoxIcon::Information);
        return 0;
    }
    const WaitCursor wait(m_host);
    FileRunner::Surroundings around = m_around.running;
    around.mayReplace = [this](const auto&) {
        return CMesBox(m_host).Confirm(text::kOverwrite, text::kOverwriteCaption);
    };
    around.ended = [this](const PlannedFile& file) {
        const int row = m_files.GetRows()->Find(file.index);
        if (file.outcome == FileOutcome::Done && row >= 0) {
            m_files.GetRows()->SetMark(row, FileRow::Mark::Fetched);
        }
    };
    FileRunner(m_files, m_plan, around).Run();
    if (m_plan.Failed() == nullptr) {
        return 1;
    }
    TellFailure();
    return 0;
}

/// The required words first, and behind them which file it was, why, and what to do.
void FileManager::TellFailure()
{
    const PlannedFile& file = *m_plan.Failed();
    if (file.outcome == FileOutcome::Kept) {
        return; // the user has said so
    }
    if (file.fault == CommandFault::Cancelled) {
        Say(Text(text::kDownloadCancelled), text::kDownloadCancelledCaption, BoxIcon::Information);
        return;
    }
    const bool noSpace = file.outcome == FileOutcome::NoSpace;
    Say(FormatText(text::kFileFailure, Text(noSpace ? text::kNoSpace : text::kDownloadFailed),
                   file.name.c_str(), file.CauseText().c_str()),
        noSpace ? text::kNoSpaceCaption : text::kDownloadFailedCaption, BoxIcon::Stop);
}

// Deleting and recovering.

void FileManager::FileDelete()
{
    MakePlan(FileAction::Delete);
    if (stCheckDeleteSelect() == 1 && stCheckLogging() == 1) {
        stDeleteRecover();
    }
    m_files.GetRows()->Focus();
}

void FileManager::FileRecover()
{
    MakePlan(FileAction::Recover);
    if (m_plan.files.empty()) {
        CMesBox(m_host).Warn(text::kRecoverNothing, text::kFileSelectCaption);
    } else {
        stDeleteRecover();
    }
    m_files.GetRows()->Focus();
}

int FileManager::stCheckDeleteSelect()
{
    const CMesBox box(m_host);
    if (m_plan.files.empty()) {
        box.Warn(text::kDeleteNothing, text::kFileSelectCaption);
        return 0;
    }
    const bool isRecycled = m_files.GetMode() == ReceiverFiles::Recycled;
    if (m_files.HasRecyclePage() && !isRecycled) {
        return 1; // the receiver keeps them in its recycle bin
    }
    const int question = m_files.HasRecyclePage() ? text::kDeleteRecycled : text::kDeleteForGood;
    return box.Confirm(Text(question) + DeleteDetails(), text::kDeleteCaption) ? 1 : 0;
}

/// How many they are, the names of the first ones, their size, and how many exist nowhere else.
std::wstring FileManager::DeleteDetails() const
{
    std::wstring names;
    for (std::size_t i = 0; i < std::min(m_plan.files.size(), kNamesShown); ++i) {
        names += (i > 0 ? L"、" : L"") + m_plan.files[i].name;
    }
    const auto count = static_cast<int>(m_plan.files.size());
    if (m_plan.files.size() > kNamesShown) {
        names += FormatText(text::kDeleteMore, count - static_cast<int>(kNamesShown));
    }
    std::wstring details =
        L"\n\n" + FormatText(text::kDeleteDetails, count,
                             TotalSizeText(m_plan.Bytes(FileOutcome::Planned)).c_str(),
                             names.c_str());
    if (m_files.CanDownload()) {
        const auto missing = static_cast<int>(
            std::count_if(m_plan.files.begin(), m_plan.files.end(),
                          [](const PlannedFile& file) { return !file.isFetched; }));
        details += L"\n" + (missing > 0 ? FormatText(text::kDeleteNotFetched, missing)
                                        : std::wstring(Text(text::kDeleteAllFetched)));
    }
    return details;
}

int FileManager::stCheckLogging()
{
    const CMesBox box(m_host);
    for (const PlannedFile& file : m_plan.files) {
        const bool isLogging = m_files.AttributeOf(file.name) != 0;
        if (m_files.WasCancelled()) {
            return 0;
        }
        if (isLogging && m_plan.files.size() == 1) {
            box.Warn(text::kDeleteLogging, text::kFileSelectCaption);
            return 0;
        }
        if (isLogging) {
            box.Warn(text::kDeleteSomeLogging, text::kFileSelectCaption);
            return 1; // it is left out when its turn comes
        }
    }
    return 1;
}

void FileManager::stDeleteRecover()
{
    const WaitCursor wait(m_host);
    std::reverse(m_plan.files.begin(), m_plan.files.end()); // from the last row to the first
    FileRunner::Surroundings around;
    around.ended = [this](const PlannedFile& file) { Take(file); };
    FileRunner(m_files, m_plan, around).Run();
}

/// The row of a file leaves the list whatever the receiver has answered; one that is being logged,
/// or that it said nothing to, stays.
void FileManager::Take(const PlannedFile& file)
{
    FileRows& rows = *m_files.GetRows();
    const int row = rows.Find(file.index);
    if (row < 0) {
        return;
    }
    if (file.WasAnswered()) {
        rows.Remove(row);
    } else if (file.outcome == FileOutcome::RequestFailed &&
               file.fault != CommandFault::Cancelled) {
        rows.SetMark(row, FileRow::Mark::Unanswered);
    }
}

std::vector<std::wstring> FileManager::Unanswered() const
{
    std::vector<std::wstring> names;
    for (const PlannedFile& file : m_plan.files) {
        const FaultClass said = ClassOf(file.fault);
        if (m_plan.action != FileAction::Fetch && file.outcome == FileOutcome::RequestFailed &&
            (said == FaultClass::Silent || said == FaultClass::Damaged)) {
            names.emplace_back(file.record.Name());
        }
    }
    return names;
}

std::wstring FileManager::Notice() const
{
    const PlannedFile* const failed = m_plan.Failed();
    if (m_plan.action == FileAction::Fetch || failed == nullptr) {
        return {};
    }
    const auto count = static_cast<int>(
        std::count_if(m_plan.files.begin(), m_plan.files.end(), [](const PlannedFile& file) {
            return file.HasFailed() || file.outcome == FileOutcome::NotReached;
        }));
    return FormatText(m_plan.action == FileAction::Delete ? text::kDeleteNotDone
                                                          : text::kRecoverNotDone,
                      count, failed->name.c_str(), failed->CauseText().c_str());
}

} // namespace fieldcore

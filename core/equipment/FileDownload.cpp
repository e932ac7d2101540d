#include "core/equipment/FileDownload.h"

#include "core/equipment/FileTexts.h"
#include "core/host/MesBox.h"
#include "core/host/WaitCursor.h"
#include "core/link/Command.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

constexpr double kSpaceFactor = 1.2;
constexpr double kBytesPerHighWord = 4294967295.0; // one less than there are

} // namespace

FileDownload::FileDownload(ReceiverFiles& files, Surroundings surroundings)
    : m_files(files), m_surroundings(std::move(surroundings))
{
    if (!m_surroundings.freeBytes) {
        m_surroundings.freeBytes = FileDestination::FreeBytesOf;
    }
}

FileDownload::End FileDownload::Run()
{
    m_files.ForgetCancel();
    std::uint64_t total = 0;
    const End end = stCheckDownloadSelect(total) == 1 ? stStartDownload(total) : End::NotStarted;
    if (end == End::Done) {
        Say(text::kDownloadDone, text::kDownloadDoneCaption, BoxIcon::Information);
    } else if (end == End::Cancelled) {
        Say(text::kDownloadCancelled, text::kDownloadCancelledCaption, BoxIcon::Information);
    }
    m_files.GetRows()->Focus();
    return end;
}

int FileDownload::stCheckDownloadSelect(std::uint64_t& total)
{
    const FileRows& rows = *m_files.GetRows();
    if (SelectedCount(rows) == 0) {
        Say(text::kDownloadNothing, text::kFileSelectCaption, BoxIcon::Exclamation);
        return 0;
    }
    for (int row = 0; row < rows.Count(); ++row) {
        if (!rows.IsSelected(row)) {
            continue;
        }
        const DirectoryListingData* const record = m_files.stGetFileData(row);
        if (m_files.WasCancelled()) {
            return 0;
        }
        if (record == nullptr) {
            continue;
        }
        if (record->attributes != 0) {
            Say(text::kDownloadLogging, text::kFileSelectCaption, BoxIcon::Exclamation);
            return 0;
        }
        if (const NameFault fault = CheckReceivedName(record->Name()); fault != NameFault::None) {
            Say(MeaningOf(fault).textId, text::kDownloadFailedCaption, BoxIcon::Stop);
            return 0;
        }
        total += record->size;
    }
    return 1;
}

FileDownload::End FileDownload::stStartDownload(std::uint64_t total)
{
    CCommand& command = m_files.GetCommand();
    FileDestination destination(total, command.GetPortNumber(), command.GetBaudRate(),
                                m_surroundings.folders);
    if (!m_surroundings.askDestination || !m_surroundings.askDestination(destination)) {
        return End::NotStarted;
    }
    if (destination.kind == FileDestination::MainMemory) {
        // What cannot be made has no space left, either.
        static_cast<void>(Folders::Create(destination.Folder()));
    }
    const WaitCursor wait(command.GetHost());
    const std::vector<int> selected = Selected(destination, total);
    if (m_files.WasCancelled()) {
        return End::Cancelled;
    }
    if (selected.empty()) {
        Say(text::kDownloadNothingNew, text::kDownloadDoneCaption, BoxIcon::Information);
        return End::NotStarted;
    }
    TransferMeter meter(command.GetClock(), static_cast<int>(selected.size()), total);
    for (const int row : selected) {
        const End end = FetchRow(row, destination, meter);
        if (end != End::Done) {
            return end;
        }
    }
    return End::Done;
}

/// The rows to fetch, from the first to the last.
/// @param total  becomes the bytes of just these, where some are left out
std::vector<int> FileDownload::Selected(const FileDestination& destination, std::uint64_t& total)
{
    const FileRows& rows = *m_files.GetRows();
    std::vector<int> selected;
    for (int row = 0; row < rows.Count(); ++row) {
        if (!rows.IsSelected(row)) {
            continue;
        }
        const DirectoryListingData* const record =
            destination.onlyNew ? m_files.stGetFileData(row) : nullptr;
        if (record != nullptr &&
            IsFetchedFile(destination.Folder(), rows.Date(row), record->Name(), record->size)) {
            total -= std::min<std::uint64_t>(total, record->size);
        } else {
            selected.push_back(row);
        }
    }
    return selected;
}

FileDownload::End FileDownload::FetchRow(int row, const FileDestination& destination,
                                         TransferMeter& meter)
{
    FileRows& rows = *m_files.GetRows();
    std::wstring name = rows.Name(row);
    m_files.stAddExtension(1, name);
    if (m_files.WasCancelled()) {
        return End::Cancelled;
    }
    if (const DirectoryListingData* const record = m_files.FindRecord(name)) {
        m_record = *record;
    }
    const fs::path folder = destination.dateFolders != 0
                                ? stAppendDateFolderPath(destination.Folder(), row)
                                : destination.Folder();
    if (stIsEnoughMemoryLeft(destination.Folder(), m_record.size) == 0) {
        return Fail(text::kNoSpace, text::kNoSpaceCaption);
    }
    if (const NameFault fault = CheckReceivedName(name, folder); fault != NameFault::None) {
        return Fail(MeaningOf(fault).textId, text::kDownloadFailedCaption);
    }
    if (stIsExistingFile(folder / ToUtf8(name)) == 0) {
        return End::Failed;
    }
    const End end = Fetch(folder, name, meter);
    if (end == End::Done) {
        rows.SetFetched(row);
    }
    return end;
}

FileDownload::End FileDownload::Fetch(const fs::path& folder, const std::wstring& name,
                                      TransferMeter& meter)
{
    CCommand& command = m_files.GetCommand();
    meter.StartFile(name, m_record.size);
    const std::int64_t bytes = command.DownloadFile(
        folder, name, m_record.size,
        [&](std::uint32_t arrived) {
            meter.Advance(arrived, command.GetTransferStart());
            return !m_surroundings.watch || m_surroundings.watch(meter.Get());
        },
        m_record.time);
    if (bytes == m_record.size) {
        return End::Done;
    }
    if (command.GetDownloadFault() == DownloadFault::Cancelled) {
        return End::Cancelled;
    }
    return Fail(text::kDownloadFailed, text::kDownloadFailedCaption);
}

fs::path FileDownload::stAppendDateFolderPath(const fs::path& folder, int row) const
{
    const std::wstring day = DateFolderName(m_files.GetRows()->Date(row));
    return day.empty() ? folder : folder / ToUtf8(day);
}

int FileDownload::stIsEnoughMemoryLeft(const fs::path& folder, std::uint32_t size) const
{
    const auto free = m_surroundings.freeBytes(folder);
    return free && IsEnough(size, *free) ? 1 : 0;
}

bool FileDownload::IsEnough(std::uint32_t size, std::uint64_t freeBytes)
{
    const double free = static_cast<double>(freeBytes >> 32) * kBytesPerHighWord +
                        static_cast<double>(freeBytes & 0xFFFFFFFFU);
    return size * kSpaceFactor < free;
}

int FileDownload::stIsExistingFile(const fs::path& file)
{
    std::error_code ignored; // what cannot be looked at is not overwritten either: writing fails
    if (m_overwrite || !fs::exists(file, ignored)) {
        return 1;
    }
    const CMesBox box(m_files.GetCommand().GetHost());
    m_overwrite = box.Confirm(text::kOverwrite, text::kOverwriteCaption);
    return m_overwrite ? 1 : 0;
}

FileDownload::End FileDownload::Fail(int textId, int captionId)
{
    Say(textId, captionId, BoxIcon::Stop);
    return End::Failed;
}

void FileDownload::Say(int textId, int captionId, BoxIcon icon)
{
    CMesBox(m_files.GetCommand().GetHost()).Show(textId, captionId, {BoxButtons::Ok, icon});
}

} // namespace fieldcore

#include "core/equipment/ReceiverFiles.h"

#include "core/equipment/FileDestination.h"
#include "core/link/Command.h"
#include "core/link/ReceivedFile.h"
#include "core/link/RecvInfo.h"

#include <algorithm>
#include <utility>

namespace fieldcore {

namespace {

constexpr double kFirstWithoutRecycleBin = 3.7; // firmware version
constexpr std::uint16_t kNoFileIndex = 255;

} // namespace

ReceiverFiles::ReceiverFiles(CCommand& command, int loadWay)
    : m_command(command), m_loadWay(loadWay)
{}

ReceiverFiles::~ReceiverFiles()
{
    ShowWaitCursor(false);
}

// Opening and closing.

int ReceiverFiles::Open(CConnect& connect)
{
    if (connect.DoModal() != CConnect::Connected) {
        m_command.ClosePort();
        return NotOpened;
    }
    for (const ReceiverType& type : AllReceiverTypes()) {
        connect.SetRecvTypeFlag(type.number, type.family != ReceiverFamily::Oldest ? 1 : 0);
    }
    if (connect.CheckRecvType() == 0) {
        m_command.ClosePort();
        return NotOpened;
    }
    OpenConnected(); // its type has been accepted
    return Opened;
}

int ReceiverFiles::OpenConnected()
{
    m_typeNumber = fieldcore::GetRecvTypeNum(m_command);
    SetRecvVer();
    const ReceiverType* const type = FindReceiverType(m_typeNumber);
    return type != nullptr && type->family != ReceiverFamily::Oldest ? 1 : 0;
}

int ReceiverFiles::CheckIDCANCEL(int answer)
{
    if (answer == StayOpen) {
        return 0;
    }
    if (answer != EndProgram) {
        m_command.PowerOff();
    }
    m_command.ClosePort();
    return 1;
}

int ReceiverFiles::SetRecvVer()
{
    CRecvInfo info;
    m_version = info.GetOptionData(m_command) == 1 ? info.GetNavVer() : 0.0;
    return 1;
}

ReceiverFamily ReceiverFiles::Family() const
{
    const ReceiverType* const type = FindReceiverType(m_typeNumber);
    return type != nullptr ? type->family : ReceiverFamily::Lark;
}

bool ReceiverFiles::HasRecyclePage() const
{
    return m_version < kFirstWithoutRecycleBin;
}

void ReceiverFiles::ShowWaitCursor(bool on)
{
    if (on != m_waitCursor) {
        m_waitCursor = on;
        m_command.GetHost().ShowWaitCursor(on);
    }
}

// Listing.

int ReceiverFiles::GetFileData(MessageTarget& window)
{
    ClearRows();
    m_unanswered.clear();
    return List(window);
}

int ReceiverFiles::ListAgain(MessageTarget& window, std::vector<std::wstring> unanswered)
{
    m_unanswered = std::move(unanswered);
    m_replacesRows = true;
    const int result = List(window);
    if (result == 1 && m_replacesRows) {
        ClearRows(); // nothing is left
    }
    return result;
}

void ReceiverFiles::ClearRows()
{
    if (m_rows != nullptr) {
        m_rows->Clear();
    }
    m_nextRow = 0;
    m_replacesRows = false;
}

int ReceiverFiles::List(MessageTarget& window)
{
    m_logging = 0;
    m_listFault = CommandFault::None;
    m_hasMore = false;
    ++m_openListings;
    ShowWaitCursor(true);
    const int result = Ask(window);
    m_listFault = result == 1 ? CommandFault::None : m_command.Fault();
    m_hasMore = m_listFault != CommandFault::Cancelled && m_command.HasMoreFiles();
    return result;
}

int ReceiverFiles::Ask(MessageTarget& window)
{
    if (Family() == ReceiverFamily::Pica) {
        return m_command.RequestFiles_Pica(m_mode, m_typeNumber, m_table, &window);
    }
    ForgetCancel();
    const std::wstring pattern = stGetSearchName();
    if (m_cancelled) {
        // Under a guessed extension the receiver might seem to have no files.
        window.Post(kFileListMessage, 1, 0);
        return 0;
    }
    return m_command.RequestFiles_Lark(pattern, m_table, &window);
}

int ReceiverFiles::OnRecvFileList(std::intptr_t wParam, std::intptr_t lParam)
{
    if (wParam != 0) {
        m_openListings = std::max(m_openListings - 1, 0);
        if (m_openListings == 0) {
            if (m_rows != nullptr) {
                m_rows->Redraw();
            }
            ShowWaitCursor(false);
        }
        return 0;
    }
    const bool ofLastListing = m_openListings <= 1;
    if (ofLastListing && lParam >= 0 && lParam < static_cast<std::intptr_t>(kMostFiles)) {
        InsertRow(static_cast<std::size_t>(lParam));
    }
    return 0;
}

void ReceiverFiles::InsertRow(std::size_t index)
{
    const DirectoryListingData& record = m_table[index];
    const bool logging = GetFileAttr(static_cast<int>(index), 1) != 0;
    if (m_replacesRows) {
        ClearRows();
    }
    if (m_rows != nullptr) {
        FileRow row;
        row.record = index;
        row.name = stCreateName(record.Name());
        row.date = stCreateTime(record.time);
        row.time = FileTimeText(record.time);
        row.size = stCreateSize(record.size);
        row.icon = m_mode == Recycled ? FileRow::Recycled
                   : logging          ? FileRow::Logging
                                      : FileRow::Live;
        const bool isUnanswered = std::find(m_unanswered.begin(), m_unanswered.end(),
                                            record.Name()) != m_unanswered.end();
        row.mark = isUnanswered                          ? FileRow::Mark::Unanswered
                   : m_mode == Live && IsFetched(record) ? FileRow::Mark::Fetched
                                                         : FileRow::Mark::None;
        // Somebody may have taken rows away since the listing began.
        m_nextRow = std::min(m_nextRow, m_rows->Count());
        m_rows->Insert(m_nextRow, row);
        ++m_nextRow;
    }
    if (index == 0) {
        m_logging = 0;
    }
    if (logging) {
        m_logging = 1;
    }
}

bool ReceiverFiles::IsFetched(const DirectoryListingData& record) const
{
    const std::wstring name =
        m_mode == Live ? std::wstring(record.Name())
                       : FileRowName(record.Name()) + FileExtension(m_q02Format, m_version, true);
    return std::any_of(m_fetchedFolders.begin(), m_fetchedFolders.end(),
                       [&](const auto& folder) { return IsFetchedFile(folder, record, name); });
}

int ReceiverFiles::GetFileAttr(int index, int byRecord)
{
    if (byRecord == 0) {
        if (m_rows == nullptr || index < 0 || index >= m_rows->Count()) {
            return 0;
        }
        return AttributeOf(m_rows->At(index).name);
    }
    if (index < 0 || index >= static_cast<int>(kMostFiles)) {
        return 0;
    }
    return Attribute(m_table[static_cast<std::size_t>(index)]);
}

int ReceiverFiles::Attribute(const DirectoryListingData& record) const
{
    const bool isBeingLogged = (record.attributes & DirectoryListingData::BeingLogged) != 0;
    return Family() != ReceiverFamily::Pica ? record.attributes : isBeingLogged ? 1 : 0;
}

int ReceiverFiles::AttributeOf(std::wstring_view rowName)
{
    std::wstring name(rowName);
    if (Family() != ReceiverFamily::Pica) {
        stAddExtension(m_mode, name);
    }
    const DirectoryListingData* const record = FindRecord(name);
    return record != nullptr ? Attribute(*record) : 0;
}

void ReceiverFiles::AddTo(FilePlan& plan, std::size_t index) const
{
    const DirectoryListingData& record = m_table.at(index);
    PlannedFile file{record, index, std::wstring(record.Name()), IsFetched(record)};
    const bool goesByName = Family() != ReceiverFamily::Pica;
    if (plan.isByRow) {
        file.name = FileRowName(record.Name());
    } else if (Attribute(record) != 0) {
        file.outcome = FileOutcome::BeingLogged;
    } else if (plan.action == FileAction::Fetch) {
        file.nameFault = plan.names.Add(record.Name(), plan.FolderOf(file));
        file.outcome =
            file.nameFault == NameFault::None ? FileOutcome::Planned : FileOutcome::NameRefused;
    } else if (goesByName && !IsReceiverFileName(record.Name())) {
        file.outcome = FileOutcome::NameRefused;
    }
    plan.files.push_back(std::move(file));
}

// Names.

void ReceiverFiles::stAddExtension(int which, std::wstring& name)
{
    CRecvInfo info;
    const bool wasRead = info.GetOptionData(m_command) == 1;
    if (!wasRead && m_command.Fault() == CommandFault::Cancelled) {
        m_cancelled = true;
    }
    m_q02Format = wasRead && info.GetQ02Format() != 0;
    name += FileExtension(m_q02Format, m_version, which != 0);
}

void ReceiverFiles::stAddExtension(std::wstring_view base, std::wstring& live,
                                   std::wstring& deleted)
{
    live = base;
    stAddExtension(1, live);
    deleted = std::wstring(base) + FileExtension(m_q02Format, m_version, false);
}

std::wstring ReceiverFiles::stGetSearchName()
{
    std::wstring pattern = L"*";
    stAddExtension(m_mode, pattern);
    return pattern;
}

const DirectoryListingData* ReceiverFiles::FindRecord(std::wstring_view name) const
{
    const auto found = std::find_if(m_table.begin(), m_table.end(),
                                    [name](const auto& record) { return record.Name() == name; });
    return found != m_table.end() ? &*found : nullptr;
}

std::uint16_t ReceiverFiles::GetFileIndex_Pica(std::wstring_view rowName) const
{
    const DirectoryListingData* const record = FindRecord(rowName);
    return record != nullptr ? record->fileIndex : kNoFileIndex;
}

} // namespace fieldcore

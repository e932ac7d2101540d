#pragma once

#include "core/equipment/FilePlan.h"
#include "core/equipment/FileRows.h"
#include "core/equipment/FileTexts.h"
#include "core/host/Host.h"
#include "core/link/Connect.h"
#include "core/link/DirectoryListing.h"
#include "core/link/ReceiverTypes.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fieldcore {

class CCommand;

/// The receiver's files and what may be done with them, without a screen: the state of the file
/// manager, its listing, and the answers that its window's steps (FileManager) and what is done to
/// files (FileRunner) build on. A screen, a terminal or a test gives it rows and forwards the
/// posted messages to OnRecvFileList(). The thread that uses the library.
class ReceiverFiles
{
public:
    /// Which files are listed.
    enum Mode : int
    {
        Recycled = 0, ///< the recycle bin's page is active
        Live = 1,
    };
    enum Result : int
    {
        Opened = 1,
        NotOpened = 2,
    };
    /// How the user answered the end-of-program question.
    enum EndAnswer : int
    {
        EndProgram = 1,
        StayOpen = 2,
        EndAndPowerOff = 3, ///< and anything else
    };

    /// @param command  not owned; must outlive the object, as must its host
    /// @param loadWay  not 0 where the screen is the program: closing then asks
    explicit ReceiverFiles(CCommand& command, int loadWay = 0);
    ~ReceiverFiles();
    ReceiverFiles(const ReceiverFiles&) = delete;
    ReceiverFiles& operator=(const ReceiverFiles&) = delete;

    // Opening and closing.

    /// What comes before the screen: connects, accepts every Pica and Lark and no receiver of
    /// the oldest family, and reads type and firmware version.
    /// @return Opened; or NotOpened with the link closed
    int Open(CConnect& connect);
    /// For a link that somebody else made: only reads type and version. @return 1; 0 if the type
    /// is not known or of the oldest family
    int OpenConnected();
    /// The link is closed, after switching the receiver off where that was asked for, unless
    /// @p answer is to stay.
    /// @return 1 if the screen may close
    int CheckIDCANCEL(int answer);

    /// Reads the firmware version; 0.0 when that fails. @return 1
    int SetRecvVer();
    [[nodiscard]] double GetRecvVer() const { return m_version; }
    [[nodiscard]] std::uint32_t GetRecvTypeNum() const { return m_typeNumber; }
    [[nodiscard]] ReceiverFamily Family() const;

    // What the pages show, once it is open.

    /// Firmware from 3.7 on deletes for good: no recycle page, but a note that says so.
    [[nodiscard]] bool HasRecyclePage() const;
    [[nodiscard]] bool CanDownload() const { return Family() != ReceiverFamily::Pica; }
    /// Whether the recycle page's delete button is on.
    [[nodiscard]] bool CanDeleteRecycled() const { return Family() != ReceiverFamily::Pica; }

    // State.

    void SetMode(int mode) { m_mode = mode; }
    [[nodiscard]] int GetMode() const { return m_mode; }
    void SetLoadWay(int loadWay) { m_loadWay = loadWay; }
    [[nodiscard]] int GetLoadWay() const { return m_loadWay; }
    void SetLogging(int logging) { m_logging = logging; }
    [[nodiscard]] int GetLogging() const { return m_logging; }
    /// The rows of the page that is active now. @param rows  must outlive their use; null: none
    void SetRows(FileRows* rows) { m_rows = rows; }
    [[nodiscard]] FileRows* GetRows() const { return m_rows; }
    /// Folders in which a listed file counts as fetched, directly or in its date folder.
    void SetFetchedFolders(std::vector<std::filesystem::path> folders)
    {
        m_fetchedFolders = std::move(folders);
    }
    [[nodiscard]] CCommand& GetCommand() const { return m_command; }
    [[nodiscard]] const DirectoryTable& GetTable() const { return m_table; }

    // Listing.

    /// Empties the rows, shows the wait cursor and asks for the files of the current mode.
    /// @param window  hands kFileListMessage on to OnRecvFileList(), at once or later
    /// @return 1; 0 if the listing failed. Its end has been posted in either case
    int GetFileData(MessageTarget& window);
    /// The same, when something was not answered: the rows stay until something comes in their
    /// place, and of the files of these names those that are still there are marked.
    int ListAgain(MessageTarget& window, std::vector<std::wstring> unanswered);
    /// Why the last listing is not whole, or there is none; None for a whole one.
    [[nodiscard]] CommandFault ListFault() const { return m_listFault; }
    /// Whether nothing came in the place of the rows that were to be listed again.
    [[nodiscard]] bool IsOldList() const { return m_replacesRows; }
    /// Whether the receiver has more files than a listing can hold.
    [[nodiscard]] bool HasMore() const { return m_hasMore; }
    /// Takes one record (wParam 0, lParam its index) into the rows, or the end of the listing.
    /// What is left of a listing before the last one is ignored. @return 0
    int OnRecvFileList(std::intptr_t wParam, std::intptr_t lParam);
    [[nodiscard]] bool IsListing() const { return m_openListings > 0; }

    /// Not 0 when the file is being logged; 0 also for an index that there is not.
    /// @param index  of a record, or a row
    /// @param byRecord  0: @p index is a row
    int GetFileAttr(int index, int byRecord);
    /// The same of a row's name; of a Lark each asks the receiver for its options.
    int AttributeOf(std::wstring_view rowName);
    /// Adds a file to a plan. One that is not for each row is left out at once where it cannot be.
    void AddTo(FilePlan& plan, std::size_t index) const;
    /// Whether a file is in one of the folders of fetched ones; of a deleted one, under the name
    /// that it had.
    [[nodiscard]] bool IsFetched(const DirectoryListingData& record) const;

    /// Whether the user has cancelled a look at the extension since ForgetCancel(): what follows
    /// it would go on with a guess.
    [[nodiscard]] bool WasCancelled() const { return m_cancelled; }
    void ForgetCancel() { m_cancelled = false; }

    // Names. Each look at the extension asks the receiver for its options.

    /// Appends the extension. @param which  1 live file, 0 deleted file
    void stAddExtension(int which, std::wstring& name);
    /// Both names of a file.
    void stAddExtension(std::wstring_view base, std::wstring& live, std::wstring& deleted);
    /// The pattern of a Lark listing in the current mode: "*.Q01".
    [[nodiscard]] std::wstring stGetSearchName();
    [[nodiscard]] static std::wstring stCreateName(std::wstring_view name)
    {
        return FileRowName(name);
    }
    [[nodiscard]] static std::wstring stCreateTime(std::uint32_t seconds)
    {
        return FileDateText(seconds);
    }
    [[nodiscard]] static std::wstring stCreateSize(double bytes) { return FileSizeText(bytes); }
    /// The first of all records with exactly this name. @return null if there is none
    [[nodiscard]] const DirectoryListingData* FindRecord(std::wstring_view name) const;
    /// A Pica's number of the file of a row's name; 255 when it is not found.
    [[nodiscard]] std::uint16_t GetFileIndex_Pica(std::wstring_view rowName) const;

private:
    int List(MessageTarget& window);
    int Ask(MessageTarget& window);
    [[nodiscard]] int Attribute(const DirectoryListingData& record) const;
    void ClearRows();
    void InsertRow(std::size_t index);
    void ShowWaitCursor(bool on);

    CCommand& m_command;
    int m_mode = Live;
    int m_loadWay;
    int m_logging = 0;
    std::uint32_t m_typeNumber = 0;
    double m_version = 0.0;
    DirectoryTable m_table{};
    FileRows* m_rows = nullptr;
    int m_nextRow = 0;
    int m_openListings = 0; // asked for, end not yet seen
    bool m_waitCursor = false;
    bool m_cancelled = false;
    bool m_q02Format = false; // as it was read last
    CommandFault m_listFault = CommandFault::None;
    bool m_hasMore = false;
    bool m_replacesRows = false;            // by the first record that comes
    std::vector<std::wstring> m_unanswered; // names in the receiver
    std::vector<std::filesystem::path> m_fetchedFolders;
};

} // namespace fieldcore

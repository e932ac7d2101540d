#pragma once

#include "core/equipment/ReceiverFiles.h"
#include "core/link/Connect.h"
#include "ui/controls/PropertySheet.h"
#include "ui/controls/QtMessageTarget.h"
#include "ui/equipment/FileList.h"

#include <functional>
#include <memory>
#include <optional>

namespace fieldcore {

class FileManager;
class RecvFilePage;
class TransferPanel;

/// The files in the receiver's memory, on a sheet of two pages: those that are live, and those in
/// the recycle bin. They are fetched to this machine, deleted and brought back; the rules are those
/// of ReceiverFiles and FileManager. User-interface thread only.
///
/// While the receiver is listened to, nothing on the sheet can be pressed but a Cancel button.
class CRecvFileMan : public PropertySheet, public ReceiverFiles
{
    Q_OBJECT

public:
    /// What the sheet uses of the world around it. What is left out is this machine's own.
    struct Surroundings
    {
        /// Makes the screen that connects to the receiver; without one, it is a ConnectDlg to
        /// where the settings say.
        std::function<std::unique_ptr<CConnect>(CCommand& command)> makeConnect;
        /// Bytes that can be written to a folder.
        std::function<std::optional<std::uint64_t>(const std::filesystem::path&)> freeBytes{};
    };

    /// @param command    channel to the receiver, not owned
    /// @param loadWay    not 0: the sheet is the host's program by itself, and closing it asks how
    ///                   to end the program
    /// @param caption    of the window; null: the usual one
    /// @param startPage  to be seen first; 0 live files, 1 recycle bin
    CRecvFileMan(CCommand* command, int loadWay, const wchar_t* caption = nullptr,
                 QWidget* parent = nullptr, unsigned startPage = 0);
    CRecvFileMan(CCommand* command, int loadWay, const wchar_t* caption, Surroundings surroundings,
                 QWidget* parent = nullptr, unsigned startPage = 0);
    ~CRecvFileMan() override;

    /// Connects where that is needed, checks the receiver, shows the sheet and waits.
    /// @return kOk or kCancelled; kCancelled with the link closed if there is no receiver that this
    ///         is for
    int DoModal();
    /// What comes before the sheet can be shown. @return as ReceiverFiles::Open()
    int Open();

    // The controls of the active page.

    /// The list that shows the files, and its pictures. Not owned.
    void SetListCtrl(FileList* list);
    void SetImageList(FileImageList* images) { m_images = images; }
    /// The columns, and that whole rows are selected.
    void InitListCtrl(FileList* list);
    /// @param images  filled, and given to @p list
    void InitIcon(FileList* list, FileImageList* images);

    // What the user can do. Nothing happens while something else is being done.

    /// Lists the files of the mode. Rows appear while it runs; it returns when the receiver has
    /// nothing more to say.
    void GetFileData();
    void ChoiceAll();
    void FileDownload();
    void FileDelete();
    void FileRecover();
    /// Asks how to end the program, and does it but for closing the sheet.
    /// @return 1 if the sheet may close
    int CheckIDCANCEL();

    /// One record of the listing, or its end. @return 0
    int OnRecvFileList(std::intptr_t wParam, std::intptr_t lParam);

    // And beyond these:

    /// Lists as soon as the sheet has been painted.
    void ListSoon();
    /// Whether the last listing came to its end.
    [[nodiscard]] bool WasListed() const { return ListFault() == CommandFault::None; }
    /// What went wrong with the last deletion or recovery; empty if nothing did.
    [[nodiscard]] const std::wstring& Notice() const { return m_notice; }
    /// Whether something is being done, or a listing is about to begin.
    [[nodiscard]] bool IsWorking() const;
    [[nodiscard]] const TransferPanel& Progress() const { return *m_progress; }

protected:
    bool OnInitDialog() override;
    bool OnClose(int result) override;
    void OnTimer(int id) override;

private:
    class Work;
    [[nodiscard]] RecvFilePage* Page() const;
    [[nodiscard]] bool CanWork() const;
    void LookForFetched();
    void Change(void (FileManager::*action)());

    const Surroundings m_surroundings;
    QtMessageTarget m_target;
    FileImageList* m_images = nullptr;
    bool m_isWorking = false;
    std::wstring m_notice;
    bool m_hasMenu = false;
    TransferPanel* m_progress; // owned by the sheet
};

} // namespace fieldcore

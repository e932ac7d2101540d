#pragma once

#include "ui/controls/PropertyPage.h"
#include "ui/equipment/FileList.h"

class QBoxLayout;
class QLabel;
class QPushButton;

namespace fieldcore {

class CRecvFileMan;

/// What both pages of the receiver's files have: the list, a line that counts it, and a row of
/// buttons. User-interface thread only.
class RecvFilePage : public PropertyPage
{
    Q_OBJECT

public:
    // Numbers of the controls.
    static constexpr int kList = 1;
    static constexpr int kState = 2;
    static constexpr int kReload = 3;
    static constexpr int kDelete = 4;
    static constexpr int kSelectAll = 5;
    static constexpr int kFetch = 6;   ///< of the receiver's page
    static constexpr int kRecover = 7; ///< of the recycle bin's page
    static constexpr int kNote = 8;    ///< of the receiver's page
    static constexpr int kTrouble = 9;

    [[nodiscard]] FileList& List() const { return *m_list; }

    /// Shows how many files there are and how many of them are selected; and what went wrong with
    /// the list or with the last operation, if anything did.
    void ShowState();
    /// Lets the buttons be pressed, or not while something is being done.
    void EnableButtons(bool enabled);
    /// Makes room for what is shown while something is being done.
    void HideButtons();

protected:
    /// @param sheet  that the page is added to
    /// @param mode   of ReceiverFiles: which files are listed
    RecvFilePage(CRecvFileMan& sheet, int mode);

    void OnInitDialog() override;
    void OnSetActive() override;
    bool OnCancel() override;

    /// Adds a button to the row, at its right end.
    /// @param icon    name of one of the drawn icons
    /// @param action  what a click does
    QPushButton* AddButton(int control, int textId, const char* icon,
                           void (CRecvFileMan::*action)());
    /// Adds a line of text above the buttons.
    void AddNote(QLabel* note);

    CRecvFileMan& m_man;

private:
    const int m_mode;
    FileImageList m_images;
    FileList* m_list; // owned by the page, as is all that follows
    QLabel* m_state;
    QLabel* m_trouble;
    QWidget* m_buttons;
    QBoxLayout* m_row;
};

/// The page of the receiver's live files: to fetch and to delete. User-interface thread only.
class CRecvFile : public RecvFilePage
{
    Q_OBJECT

public:
    /// @param sheet  whose page it is
    explicit CRecvFile(CRecvFileMan& sheet);

protected:
    void OnInitDialog() override;

private:
    QPushButton* m_fetch; // owned by the page, as is the note
    QLabel* m_note;
};

/// The page of the files that the receiver keeps as deleted: to bring back, or to delete for good.
/// User-interface thread only.
class CRecvGomi : public RecvFilePage
{
    Q_OBJECT

public:
    /// @param sheet  whose page it is
    explicit CRecvGomi(CRecvFileMan& sheet);

protected:
    void OnInitDialog() override;

private:
    QPushButton* m_delete; // owned by the page
};

} // namespace fieldcore

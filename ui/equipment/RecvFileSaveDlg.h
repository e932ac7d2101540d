#pragma once

#include "core/equipment/FileDestination.h"
#include "ui/controls/Dialog.h"

class QCheckBox;
class QLabel;
class QRadioButton;

namespace fieldcore {

class RoleLabel;

/// Asks where fetched files go: to the memory card or into the documents folder, and whether each
/// day gets a folder of its own. User-interface thread only.
class CRecvFileSaveDlg : public Dialog
{
    Q_OBJECT

public:
    // Numbers of the controls.
    static constexpr int kSummary = 1;
    static constexpr int kFreeSpace = 2;

    /// @param destination  shown, and changed by what the user chooses once he presses the start
    ///                     button; must outlive the dialog
    explicit CRecvFileSaveDlg(FileDestination& destination, QWidget* parent = nullptr);

protected:
    bool OnInitDialog() override;
    bool OnClose(int result) override;

private:
    void BuildControls();
    [[nodiscard]] FileDestination Chosen() const;
    void ShowAmounts();

    FileDestination& m_destination;
    QLabel* m_summary; // owned by the dialog, as is all that follows
    QRadioButton* m_card;
    QRadioButton* m_memory;
    QLabel* m_cardFolder;
    QLabel* m_memoryFolder;
    RoleLabel* m_free;
    QCheckBox* m_dateFolders;
    QCheckBox* m_onlyNew;
};

} // namespace fieldcore

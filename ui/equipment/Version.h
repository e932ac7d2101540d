#pragma once

#include "core/equipment/StatusRows.h"
#include "ui/controls/Dialog.h"

#include <vector>

class QLabel;
class QPushButton;
class QTableWidget;

namespace fieldcore {

class CCommand;

/// The version display: who the receiver is, its firmware, and which options are installed. What is
/// not known of that is read when it is opened; cancelling that tells the receiver to stop.
/// User-interface thread only.
class CVersion : public Dialog
{
    Q_OBJECT

public:
    /// @param command  not owned, must outlive the dialog; may be null
    /// @param known    of the receiver that is connected
    explicit CVersion(CCommand* command, QWidget* parent = nullptr, ReceiverIdentity known = {});

    /// Shows the receiver, after reading what is not known of it.
    /// @return 1, or 0 with the reason on the screen
    int Update();

protected:
    bool OnInitDialog() override;
    void changeEvent(QEvent* event) override;

private:
    void Show(std::vector<VersionRow> rows);
    void Copy() const;

    CCommand* const m_command;
    ReceiverIdentity m_known;
    std::vector<VersionRow> m_rows;
    QLabel* m_notice; // owned by the dialog, as are the next
    QTableWidget* m_list;
    QPushButton* m_copy;
};

} // namespace fieldcore

#pragma once

#include "ui/equipment/RecvFilePage.h"

namespace fieldcore {

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

} // namespace fieldcore

#pragma once

#include "ui/equipment/RecvFilePage.h"

namespace fieldcore {

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

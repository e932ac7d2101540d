#pragma once

#include "core/link/Connect.h"
#include "ui/link/ConnectProgressDlg.h"

#include <QPointer>
#include <QWidget>

#include <memory>

namespace fieldcore {

/// Connecting, with its screen: the questions and warnings come through the channel's host, which
/// should be a QtHost, and a dialog shows the steps. User-interface thread only.
class ConnectDlg : public CConnect
{
public:
    /// As CConnect.
    /// @param parent  the window under the dialog, which must outlive DoModal(); nullptr for none
    ConnectDlg(CCommand& command, int reconnect, ConnectTarget target, QWidget* parent = nullptr);

protected:
    int RunSequence(ConnectSequence& sequence) override;
    void ShowFailure(const ConnectSequence& sequence) override;

private:
    CCommand& m_command;
    const ConnectTarget m_target;
    const QPointer<QWidget> m_parent;
    std::unique_ptr<ConnectProgressDlg> m_progress; // while the sequence runs and is told about
};

} // namespace fieldcore

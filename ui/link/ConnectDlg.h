#pragma once

#include "core/link/Connect.h"
#include "ui/link/ConnectProgressDlg.h"

#include <QPointer>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace fieldcore {

/// Connecting, with its screen: the questions and warnings come through the channel's host, which
/// should be a QtHost, and a dialog shows the steps. User-interface thread only.
class ConnectDlg : public CConnect
{
public:
    /// As CConnect: to where the settings say, or to a given port.
    /// @param parent  the window under the dialog, which must outlive DoModal(); nullptr for none
    explicit ConnectDlg(CCommand& command, int reconnect = 0, QWidget* parent = nullptr);
    ConnectDlg(CCommand& command, int reconnect, FoundTarget found, QWidget* parent = nullptr);
    ConnectDlg(CCommand& command, int reconnect, ConnectTarget target, QWidget* parent = nullptr);

    /// Lets the user look for the receiver's rate where the failure may come from another one. With
    /// the target of the settings that is offered anyway, and the rate is stored there.
    /// @param keep  stores the rate for the next connection; answers 1, or 0 if it cannot
    void OfferSearch(std::function<int(std::uint32_t rate)> keep) { m_keepRate = std::move(keep); }

protected:
    int RunSequence(ConnectSequence& sequence) override;
    void ShowFailure(const ConnectSequence& sequence) override;

private:
    /// @return how it ended, in words
    [[nodiscard]] std::wstring Search();

    CCommand& m_command;
    const QPointer<QWidget> m_parent;
    std::function<int(std::uint32_t)> m_keepRate;
    std::unique_ptr<ConnectProgressDlg> m_progress; // while the sequence runs and is told about
};

} // namespace fieldcore

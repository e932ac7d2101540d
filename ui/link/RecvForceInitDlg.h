#pragma once

#include "core/link/RecvForceInit.h"
#include "ui/link/ConnectDlg.h"

namespace fieldcore {

/// Returning the receiver to its factory settings, with its screens: connecting, two questions
/// whose default button changes nothing, and the result. User-interface thread only.
class RecvForceInitDlg
{
public:
    /// As ConnectDlg and CRecvForceInit: to where the settings say, or to a given port.
    explicit RecvForceInitDlg(CCommand& command, QWidget* parent = nullptr)
        : m_connect(command, 0, parent), m_forceInit(command)
    {}
    RecvForceInitDlg(CCommand& command, const ConnectTarget& target, QWidget* parent = nullptr)
        : m_connect(command, 0, target, parent), m_forceInit(command)
    {}

    /// Connects unless the port is open, asks, sends the reset and closes the port.
    /// @return CRecvForceInit::Done or NotDone
    int DoModal() { return m_forceInit.DoModal(m_connect); }

private:
    ConnectDlg m_connect;
    CRecvForceInit m_forceInit;
};

} // namespace fieldcore

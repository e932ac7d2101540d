#pragma once

#include "core/link/ConnectChoice.h"

namespace fieldcore {

class CConnect;

/// Returns the receiver to its factory settings, after asking twice.
class CRecvForceInit
{
public:
    /// What DoModal() answers.
    enum Result : int
    {
        Done = 1,
        NotDone = 2,
    };

    /// @param command  not owned; must outlive this object
    explicit CRecvForceInit(CCommand& command) : m_command(command) {}

    /// Connects, asks, sends the reset and closes the port whatever came of it.
    /// @return Done or NotDone
    int DoModal();
    /// @param connect  how the receiver is reached, in place of as the settings say; used only if
    ///                 the port is not open yet
    int DoModal(CConnect& connect);

    /// Asks twice and sends the reset. Whether the receiver acknowledges it is not examined: one
    /// that resets at once may not get round to it.
    /// @return 1 if the reset was sent, 0 if the user refused
    int stRecvForceInit();

private:
    CCommand& m_command;
};

} // namespace fieldcore

#pragma once

#include "core/link/Command.h"
#include "core/link/Connect.h"

namespace fieldcore::testing {

/// Connects without the pauses that a clock would have to be moved for.
class QuickConnect final : public CConnect
{
public:
    QuickConnect(CCommand& command, const ConnectTarget& target, int reconnect = 0)
        : CConnect(command, reconnect, target), m_command(command), m_target(target)
    {
        SupportAllTypes();
    }

protected:
    int RunSequence(ConnectSequence&) override { return OpenTarget(m_command, m_target); }

private:
    CCommand& m_command;
    const ConnectTarget m_target;
};

} // namespace fieldcore::testing

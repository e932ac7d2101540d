#pragma once

#include "core/link/Command.h"
#include "core/link/Connect.h"

#include <string>

namespace fieldcore::testing {

/// Connects without the pauses that a clock would have to be moved for.
class QuickConnect final : public CConnect
{
public:
    QuickConnect(CCommand& command, const ConnectTarget& target)
        : CConnect(command, 0, target), m_command(command), m_path(target.devicePath)
    {
        SupportAllTypes();
    }

protected:
    int RunSequence(ConnectSequence&) override { return m_command.OpenPort(m_path); }

private:
    CCommand& m_command;
    const std::string m_path;
};

} // namespace fieldcore::testing

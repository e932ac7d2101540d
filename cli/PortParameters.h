#pragma once

#include "cli/Command.h"
#include "cli/PortOptions.h"

#include <string>

namespace fieldcore::cli {

/// Which port is to be set, and how.
struct PortParameterOptions
{
    PortOptions port;
    int number = 0;         ///< 0 the controller's own line, 1 to 3 a port of the receiver
    std::string parameters; ///< as CComPrmSet::SetPrmString() reads them
};

/// Shows the stored parameters of all ports.
ExitCode ShowPortParameters(const Context& context);

/// Tells the receiver, and stores what it has taken. When its port in use changes the line follows.
ExitCode SetPortParameters(const Context& context, const PortParameterOptions& options);

} // namespace fieldcore::cli

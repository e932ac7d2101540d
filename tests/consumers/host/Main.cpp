#include "core/link/Command.h"

#include <fieldcore/core/link/Command.h>
#include <fieldcore/core/platform/Version.h>
#include <fieldcore/simulator/UseSimulator.h>

#include <cstdio>
#include <string>

int main()
{
    Command own;
    fieldcore::CCommand receiver;
    fieldcore::StatusReply status;
    if (receiver.OpenPort("sim:") == 1 ||
        receiver.LastError().find("UseSimulator()") == std::string::npos) {
        std::printf("without a simulator: %s\n", receiver.LastError().c_str());
        own.exitCode = 1;
    }
    fieldcore::UseSimulator();
    if (receiver.OpenPort("sim:lark") == 0 || receiver.RequestStatus(status) == 0) {
        std::printf("%s\n", receiver.LastError().c_str());
        own.exitCode = 1;
    }
    if (std::string(fieldcore::Version()) != FIELDCORE_VERSION) {
        std::printf("headers of %s, library of %s\n", FIELDCORE_VERSION, fieldcore::Version());
        own.exitCode = 1;
    }
    std::printf("battery %d %%\n", status.batteryPercent);
    return own.exitCode;
}

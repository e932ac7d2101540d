// Who is the receiver? The least that a program of your own needs.

#include "core/link/Command.h"
#include "core/link/RecvInfo.h"

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: first-steps PORT, for example /dev/ttyUSB0\n");
        return 2;
    }
    fieldcore::CCommand* receiver = fieldcore::GetCCommand();
    fieldcore::CRecvInfo info;
    if (receiver->OpenPort(argv[1]) == 0 || info.GetOptionData(*receiver) == 0) {
        std::fprintf(stderr, "%s\n", receiver->LastError().c_str());
        return 1;
    }
    std::printf("type %u, firmware %.2f, serial number %ls\n", info.GetRecvTypeNum(),
                info.GetNavVer(), info.GetRecvSN());
    receiver->ClosePort();
    return 0;
}

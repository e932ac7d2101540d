// Who is the receiver, and how is it? Behind a cable: ./example-Connect /dev/ttyUSB0

#include <fieldcore/core/link/Command.h>
#include <fieldcore/core/link/RecvInfo.h>
#include <fieldcore/simulator/UseSimulator.h>

#include <cstdio>

int main(int argc, char** argv)
{
    fieldcore::UseSimulator(); // "sim:" is a receiver in software
    fieldcore::CCommand* receiver = fieldcore::GetCCommand();
    fieldcore::CRecvInfo info;
    fieldcore::StatusReply status;
    if (receiver->OpenPort(argc > 1 ? argv[1] : "sim:") == 0 ||
        info.GetOptionData(*receiver) == 0 || receiver->RequestStatus(status) == 0) {
        std::fprintf(stderr, "%s\n", receiver->LastError().c_str());
        return 1;
    }
    std::printf("type %u, firmware %.2f, %d satellites, PDOP %.1f\n", info.GetRecvTypeNum(),
                info.GetNavVer(), status.satellitesTracked, status.pdop);
}

// How is the receiver asked again and again while the program does something else?
// The library's own thread asks. The program's loop never waits for an answer: it looks at a copy
// of what was last heard, whenever it likes.

#include <fieldcore/core/link/Command.h>
#include <fieldcore/core/link/Questions.h>
#include <fieldcore/simulator/UseSimulator.h>

#include <chrono>
#include <cstdio>
#include <thread>

using namespace std::chrono_literals;

int main(int argc, char** argv)
{
    fieldcore::UseSimulator();
    fieldcore::CCommand receiver;
    if (receiver.OpenPort(argc > 1 ? argv[1] : "sim:") == 0) {
        std::fprintf(stderr, "%s\n", receiver.LastError().c_str());
        return 1;
    }
    const fieldcore::Rhythm rhythm{300ms, 8s}; // after silence the pause grows
    receiver.Background().Add(rhythm, [](fieldcore::CCommand& asking) {
        fieldcore::StatusReply status;
        if (asking.RequestStatus(status) == 0) {
            return asking.Fault() == fieldcore::CommandFault::Refused; // which is an answer, too
        }
        const auto now = asking.GetClock().Steady();
        asking.Hear([&](fieldcore::Receiver& known) { known.status = {status, now}; });
        return true;
    });

    fieldcore::Clock::Duration last{};
    const char* const names[] = {"first", "second", "third"};
    for (int seen = 0; seen < 3;) {
        std::this_thread::sleep_for(10ms); // stands for the events of the program
        const fieldcore::Receiver heard = receiver.Heard();
        if (heard.status && heard.status->at != last) {
            last = heard.status->at;
            std::printf("%s status: %d satellites, battery %d %%\n", names[seen++],
                        heard.status->value.satellitesTracked, heard.status->value.batteryPercent);
        }
    }
}

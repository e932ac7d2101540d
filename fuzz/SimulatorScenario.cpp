// Scenario files and exchange logs that somebody wrote or broke: an error or a good result, and a
// receiver of a scenario that was accepted answers.

#include "fuzz/Target.h"
#include "simulator/Receiver.h"
#include "simulator/Replay.h"
#include "simulator/Scenario.h"

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace fieldcore;
    using namespace fieldcore::simulator;

    const std::string text(data, data + size);
    std::string error;
    Replay replay;
    Check(replay.Parse(text, error) || !error.empty());
    error.clear();
    const std::optional<Scenario> scenario = ParseScenario(text, error);
    Check(scenario.has_value() == error.empty());
    if (scenario) {
        Receiver receiver(*scenario, SystemClock::Instance());
        for (const std::uint8_t type : Bytes{0x06, 0x08, 0x14, 0x16, 0x34, 0x4A}) {
            const Request request{Request::Kind::Frame, MakeFrame(type, Bytes())};
            Check(!receiver.Answer(request).empty());
        }
        for (const Bytes& data3 : {Bytes{2, 7, 0}, Bytes{0, 0, 1}}) {
            static_cast<void>(receiver.Answer({Request::Kind::Frame, MakeFrame(0x54, data3)}));
        }
    }
    return 0;
}

// What a controller sends, in pieces as they may arrive: nothing may crash or hang the receiver,
// and whatever it takes for a frame must be one.

#include "simulator/FaultInjector.h"
#include "simulator/Receiver.h"
#include "simulator/RequestParser.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

namespace {

using namespace fieldcore;
using namespace fieldcore::simulator;

const Scenario& Tilted()
{
    static const Scenario scenario = [] {
        std::string error;
        return LoadScenario("tilted", error).value_or(Scenario());
    }();
    return scenario;
}

void Check(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

void Handle(Receiver& receiver, FaultInjector& faults, const Request& request)
{
    if (request.kind == Request::Kind::Frame) {
        Check(request.bytes.size() == request.Data().size() + kFrameOverhead);
    }
    const std::vector<Bytes> answer = receiver.Answer(request);
    for (const Bytes& frame : answer) {
        Check(!frame.empty());
        Check(frame[0] != kStx || frame.size() == frame[3] + kFrameOverhead);
    }
    Clock::Duration silence{};
    static_cast<void>(faults.Apply(request, answer, silence));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Receiver receiver(Tilted(), SystemClock::Instance());
    FaultInjector faults(1);
    FaultRule rule;
    if (size > 0) {
        rule.kind = static_cast<FaultKind>(data[0] % (static_cast<int>(FaultKind::Reboot) + 1));
        rule.amount = data[size - 1];
    }
    faults.Add(rule);
    RequestParser parser;
    for (std::size_t i = 0; i < size; ++i) {
        const std::optional<Request> request = parser.Feed(data[i]);
        Check(parser.Begun().size() <= 261); // the longest frame
        if (request) {
            Handle(receiver, faults, *request);
        }
        if (!parser.Begun().empty()) {
            static_cast<void>(faults.CutRequest(parser.Begun()));
        }
    }
    if (const std::optional<Request> rest = parser.GiveUp()) {
        Handle(receiver, faults, *rest);
    }
    return 0;
}

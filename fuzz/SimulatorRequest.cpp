// What a controller sends, in pieces as they may arrive: nothing may crash or hang the receiver,
// and whatever it takes for a frame must be one.

#include "fuzz/Target.h"
#include "simulator/FaultInjector.h"
#include "simulator/Receiver.h"
#include "simulator/RequestParser.h"

#include <optional>
#include <string>
#include <utility>

namespace {

using namespace fieldcore;
using namespace fieldcore::simulator;

constexpr int kMostFrames = 8; // of an answer that goes on, which may be megabytes

const Scenario& Tilted()
{
    static const Scenario scenario = [] {
        std::string error;
        return LoadScenario("tilted", error).value_or(Scenario());
    }();
    return scenario;
}

void CheckFrame(const Bytes& frame)
{
    Check(!frame.empty());
    if (frame[0] != kStx) {
        return;
    }
    const bool isLong = frame.size() > 4 && frame[2] == kLongFrame;
    const std::size_t length =
        isLong ? static_cast<std::size_t>(frame[3] << 8 | frame[4]) + 1 : frame[3];
    Check(frame.size() == length + kFrameOverhead);
}

void Handle(Receiver& receiver, FaultInjector& faults, const Request& request)
{
    if (request.kind == Request::Kind::Frame) {
        Check(request.bytes.size() == request.Data().size() + kFrameOverhead);
    }
    const std::vector<Bytes> answer = receiver.Answer(request);
    for (const Bytes& frame : answer) {
        CheckFrame(frame);
    }
    static_cast<void>(faults.Apply(request, answer, receiver.GoesOn()));
    for (int more = 0; receiver.GoesOn() && more < kMostFrames; ++more) {
        std::optional<Bytes> frame = receiver.NextFrame();
        if (frame) {
            CheckFrame(*frame);
        }
        static_cast<void>(faults.ApplyToNext(std::move(frame)));
    }
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

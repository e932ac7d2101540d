#pragma once

// What the tests of this folder share. What is included here they do not include again.

#include "simulator/Frame.h"
#include "simulator/Receiver.h"
#include "simulator/RequestParser.h"
#include "tests/support/HandClock.h"
#include "tests/support/Hex.h"
#include "tests/support/StartReceiver.h"
#include "tests/support/VirtualReceiver.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore::simulator::test {

using namespace std::chrono_literals;
using fieldcore::testing::HandClock;
using fieldcore::testing::Hex;
using fieldcore::testing::ParsedRule;
using fieldcore::testing::StartReceiver;

inline const HandClock kStill; ///< for whom no time passes
inline const std::vector<Bytes> kAccepted{Bytes{kAck}};
inline const std::vector<Bytes> kRefused{Bytes{kNak}};
inline const Bytes kSerialRequest = Hex("02 00 06 00 06 03");
inline constexpr std::size_t kSerialSize = 61;
inline const Bytes kAbortRequest = Hex("02 00 5A 09 00 00 00 00 00 00 00 00 00 63 03");

inline Request FrameRequest(const Bytes& frame)
{
    return {Request::Kind::Frame, frame};
}

/// The receiver starts at 2026-03-19 00:00:00 GPS time, second 345600 of week 2410.
inline Scenario WithStart(Scenario scenario)
{
    using namespace std::chrono;
    scenario.start = sys_days(year(2026) / March / 18) + 23h + 59min + 42s;
    return scenario;
}

inline Scenario Shipped(const std::string& name)
{
    return WithStart(fieldcore::testing::ShippedScenario(name));
}

inline Scenario Parsed(std::string_view text)
{
    return WithStart(fieldcore::testing::ParsedScenario(text));
}

/// All frames that answer.
inline std::vector<Bytes> Ask(Receiver& receiver, const Request& request)
{
    std::vector<Bytes> answer = receiver.Answer(request);
    while (std::optional<Bytes> more = receiver.NextFrame()) {
        answer.push_back(*std::move(more));
    }
    return answer;
}

inline std::vector<Bytes> Ask(Receiver& receiver, std::uint8_t type, const Bytes& data)
{
    return Ask(receiver, FrameRequest(MakeFrame(type, data)));
}

inline std::vector<Bytes> Ask(Receiver& receiver, std::uint8_t type, std::string_view data = "")
{
    return Ask(receiver, type, Hex(data));
}

/// Data of the one frame that answers.
inline Bytes Data(Receiver& receiver, std::uint8_t type, std::string_view data = "")
{
    const std::vector<Bytes> answer = Ask(receiver, type, data);
    if (answer.size() != 1 || answer[0].size() < 6) {
        ADD_FAILURE() << "no frame for type " << int(type);
        return Bytes(255);
    }
    return Bytes(answer[0].begin() + 4, answer[0].end() - 2);
}

} // namespace fieldcore::simulator::test

#include "tests/core/link/FailingDevice.h"

#include "core/link/Command.h"
#include "core/platform/FastClock.h"
#include "tests/core/link/FarEnd.h"
#include "tests/core/link/ProcessCounts.h"

#include <algorithm>
#include <map>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::Ascii;
using testing::FailingDevice;
using testing::Frame;
using testing::ScriptedReceiver;

const std::map<std::string, LinkError> kOpenCodes{
    {"Open", LinkError::Open},
    {"SetQueueSizes", LinkError::None}, // closes the port; no code is assigned to it
    {"ReadSettings", LinkError::LineSettings},
    {"ApplySettings", LinkError::LineSettings},
    {"ApplyTimeouts", LinkError::Timeouts},
    {"SetEventMask", LinkError::EventMask},
    {"WaitEvent", LinkError::WaitEvent}, // when the reader is quick
};

/// Fails the n-th call of the device for every n, over opening, a status request, a BREAK and
/// closing.
TEST(FailingDevice, EveryCallMayFail)
{
    const FastClock clock(100.0);
    const auto reply = Frame(0x09, Ascii("1008000080 1.85    10"));
    const auto identity = Frame(0x6E, Ascii("ID,3017;PORT,0,38400,L,8,1,N,F;VER,4.43,"));
    const auto before = testing::CountProcess();
    std::map<std::string, int> failedCalls{
        {"Open", 0},          {"SetQueueSizes", 0}, {"ReadSettings", 0}, {"ApplySettings", 0},
        {"ApplyTimeouts", 0}, {"SetEventMask", 0},  {"WaitEvent", 0},    {"Read", 0},
        {"Write", 0},         {"Purge", 0},         {"SetBreak", 0},     {"ClearBreak", 0},
        {"Close", 0}};
    const auto missing = [&failedCalls] {
        const auto found = std::find_if(failedCalls.begin(), failedCalls.end(),
                                        [](const auto& call) { return call.second == 0; });
        return found == failedCalls.end() ? std::string() : found->first;
    };
    // How the calls of both threads fall changes from run to run: a call that a round has left out
    // comes in another.
    constexpr int kMostRounds = 20;
    int round = 0;
    for (int n = 1;; ++n) {
        std::atomic<int> calls = 0;
        std::atomic<const char*> failed = nullptr;
        ScriptedReceiver receiver({{reply}, {reply}, {reply}, {identity}, {identity}});
        CCommand command({nullptr, &clock, nullptr,
                          [&] { return std::make_unique<FailingDevice>(n, calls, failed); }});
        PortSettings settings;
        settings.replyTimeout = 5s; // 50 ms on a watch
        if (command.OpenPort(receiver.Path(), settings) == 0) {
            ASSERT_NE(failed.load(), nullptr);
            const auto expected = kOpenCodes.find(failed.load());
            ASSERT_NE(expected, kOpenCodes.end()) << failed.load() << " failed the opening";
            EXPECT_EQ(command.TakeLinkError(), expected->second) << failed.load();
            EXPECT_FALSE(command.LastError().empty());
            EXPECT_EQ(command.IsPortOpen(), 0);
        } else {
            StatusReply status;
            IdentificationRecord record;
            const int asked = command.RequestStatus(status);
            const int identified = command.RequestIdentity(record);
            if (failed.load() == nullptr) {
                EXPECT_EQ(asked, 1) << command.LastError();
            }
            EXPECT_TRUE(identified == 1 || command.Fault() != CommandFault::None);
            command.ClosePort();
            EXPECT_EQ(command.IsPortOpen(), 0);
        }
        receiver.Stop();
        if (failed.load() == nullptr) { // a whole run had fewer calls than n
            if (missing().empty() || ++round == kMostRounds) {
                break;
            }
            n = 0;
            continue;
        }
        ++failedCalls[failed.load()];
        ASSERT_LT(n, 200);
    }
    EXPECT_EQ(missing(), "") << "was never made to fail";
    EXPECT_EQ(testing::CountProcessAgain(before), before) << "threads or descriptors leaked";
}

} // namespace
} // namespace fieldcore

#include "core/link/Command.h"

#include "tests/core/link/FarEnd.h"
#include "tests/core/link/ProcessCounts.h"
#include "tests/support/ScriptedEnd.h"

#include <atomic>
#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::Ascii;
using testing::Frame;
using testing::ScriptedEnd;

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
    const testing::VirtualClock clock;
    testing::VirtualLine line(clock);
    const auto reply = Frame(0x09, Ascii("1008000080 1.85    10"));
    const auto identity = Frame(0x6E, Ascii("ID,3017;PORT,0,38400,L,8,1,N,F;VER,4.43,"));
    const auto before = testing::CountProcess();
    std::set<std::string> notYet{"Open",          "SetQueueSizes", "ReadSettings", "ApplySettings",
                                 "ApplyTimeouts", "SetEventMask",  "WaitEvent",    "Read",
                                 "Write",         "Purge",         "SetBreak",     "ClearBreak",
                                 "Close"};
    for (int n = 1;; ++n) {
        std::atomic<int> calls = 0;
        std::atomic<const char*> failed = nullptr;
        const ScriptedEnd receiver(line, {{reply}, {reply}, {reply}, {identity}, {identity}});
        line.SetFailing([&](const char* call) {
            if (++calls != n) {
                return false;
            }
            failed = call;
            return true;
        });
        CCommand command({nullptr, &clock, nullptr, [&] { return line.MakeDevice(); }});
        if (command.OpenPort("in memory") == 0) {
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
        if (failed.load() == nullptr) { // a whole run had fewer calls than n
            break;
        }
        notYet.erase(failed.load());
        ASSERT_LT(n, 200);
    }
    EXPECT_EQ(notYet, std::set<std::string>()) << "were never made to fail";
    EXPECT_EQ(testing::CountProcessAgain(before), before) << "threads or descriptors leaked";
}

} // namespace
} // namespace fieldcore

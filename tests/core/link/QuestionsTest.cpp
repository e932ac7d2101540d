#include "core/link/Questions.h"

#include "tests/support/VirtualReceiver.h"

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

void WaitWhile(const std::function<bool()>& holds)
{
    while (holds()) {
        std::this_thread::yield();
    }
}

TEST(Questions, KeepTheirRhythmAndAskTheSilentLessOften)
{
    const testing::VirtualClock clock;
    CCommand command{{nullptr, &clock, nullptr, {}}};
    Questions questions(command, false);
    bool isAnswered = true;
    int asked = 0;
    const auto id = questions.Add({2s, 16s}, [&](CCommand&) {
        ++asked;
        return isAnswered;
    });
    const auto expectPause = [&](const char* fault, bool answers, Clock::Duration pause) {
        SCOPED_TRACE(fault);
        isAnswered = answers;
        const int before = asked;
        EXPECT_EQ(questions.Step(), pause);
        EXPECT_EQ(asked, before + 1);
        clock.Sleep(pause - 1ms);
        EXPECT_EQ(questions.Step(), 1ms);
        EXPECT_EQ(asked, before + 1);
        clock.Sleep(1ms);
    };
    expectPause("not at once, or not in its rhythm", true, 2s);
    expectPause("silence asked again as soon", false, 4s);
    expectPause("the pause does not grow", false, 8s);
    expectPause("nor on", false, 16s);
    expectPause("beyond its bound", false, 16s);
    expectPause("an answer does not end the patience", true, 2s);
    questions.Step();
    const int before = asked;
    questions.Hurry(id);
    questions.Step();
    EXPECT_EQ(asked, before + 1);
    questions.Remove(id);
    std::string told;
    questions.Once([&told](CCommand&) { told += 'a'; });
    questions.Once([&told](CCommand&) { told += 'b'; });
    for (int i = 0; i < 3; ++i) {
        clock.Sleep(1h);
        questions.Step();
    }
    EXPECT_EQ(asked, before + 1);
    EXPECT_EQ(told, "ab");
}

/// The window's thread gets the line behind the one exchange under way, however much is still to be
/// asked; who is in the midst of one is refused.
TEST(Questions, LetOthersHaveTheLineBehindTheExchangeUnderWay)
{
    testing::VirtualReceiver receiver("latency 100");
    receiver.Open();
    CCommand& window = receiver.command;
    AutoResetEvent begins;
    AutoResetEvent hasEnded;
    int asked = 0;
    int nested = 0;
    StatusReply status;
    receiver.clock.Expect(); // the thread of the questions
    window.Background().Add({1h, 1h}, [&](CCommand& face) {
        receiver.clock.Join(true);
        begins.Set();
        for (int i = 0; i < 10; ++i) {
            asked += face.RequestStatus(status);
        }
        hasEnded.Set();
        return true;
    });
    receiver.clock.Poke(); // the thread may have begun to wait before there was a question
    ASSERT_TRUE(receiver.clock.Wait(begins, 1s));
    receiver.clock.Sleep(50ms);
    receiver.host.inBreath = [&] {
        StatusReply other;
        EXPECT_EQ(window.RequestStatus(other), 0);
        EXPECT_EQ(window.Fault(), CommandFault::Busy);
        ++nested;
        return true;
    };
    StatusReply own;
    EXPECT_EQ(window.RequestStatus(own), 1) << window.LastError();
    EXPECT_EQ(receiver.clock.Steady(), 205ms)
        << "of an exchange under way, the gap behind it and one's own";
    EXPECT_EQ(asked, 1);
    EXPECT_GT(nested, 0);
    receiver.host.inBreath = nullptr;
    EXPECT_TRUE(receiver.clock.Wait(hasEnded, 10s));
    EXPECT_EQ(asked, 10);
}

/// Time is real here, and nothing depends on how long it takes.
TEST(Questions, AreGivenUpForWhoEndsThemOrWantsQuiet)
{
    CCommand command;
    std::atomic<int> begun = 0;
    std::atomic<int> ended = 0;
    {
        Questions& questions = command.Background();
        const auto endless = [&](CCommand& face) {
            ++begun;
            WaitWhile([&face] { return face.GetHost().Breathe(); });
            ++ended;
            return false;
        };
        const auto id = questions.Add({1ms, 1ms}, endless);
        WaitWhile([&] { return begun == 0; });
        int before = 0;
        {
            const Questions::Quiet quiet(command);
            EXPECT_EQ(begun, ended) << "still asking";
            before = begun;
            questions.Hurry(id);
            std::this_thread::sleep_for(20ms);
            EXPECT_EQ(begun, before) << "asked into the quiet";
        }
        WaitWhile([&] { return begun == before; });
        questions.Remove(id);
        EXPECT_EQ(begun, ended);
        std::atomic<int> told = 0;
        questions.Once([&told](CCommand& face) {
            ++told;
            WaitWhile([&] { return told == 1 && face.GetHost().Breathe(); });
        });
        WaitWhile([&] { return told == 0; });
        static_cast<void>(Questions::Quiet(command));
        WaitWhile([&] { return told == 1; }); // for ever, if it is not told once more
        questions.Add({1ms, 1ms}, endless);
        WaitWhile([&] { return begun == ended; });
    } // the last one is under way when its channel goes
}

} // namespace
} // namespace fieldcore

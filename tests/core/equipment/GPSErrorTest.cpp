// The receiver's time and what is made of it. Runs in several time zones: none may move a result.

#include "core/equipment/GPSError.h"

#include "core/link/Command.h"
#include "core/platform/Utf8.h"
#include "tests/core/link/FarEnd.h"
#include "tests/support/HandClock.h"
#include "tests/support/ScriptedEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <chrono>
#include <cmath>
#include <limits>
#include <optional>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;
using testing::Ascii;
using testing::Frame;
using testing::HandClock;

constexpr int kWeek = 2410; // begins 2026-03-15
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// A receiver whose answers are written down here: the wire has no room for some of them.
class Told : public CGPSError
{
public:
    explicit Told(HandClock& clock) : CGPSError(nullptr, &clock) {}
    std::optional<GpsTimeReply> time;
    int timeAsked = 0;
    int statusAsked = 0;

protected:
    int stRequestGpsTime(GpsTimeReply& reply) override
    {
        ++timeAsked;
        reply = time.value_or(reply);
        return time ? 1 : 0;
    }
    int stRequestStatus(StatusReply&) override
    {
        ++statusAsked;
        return 1;
    }
};

TEST(GPSError, AcceptsATimeWithAPossibleOffset)
{
    // The offset that is told, the flag, what both become, and how often the clock is set.
    const std::tuple<const char*, std::optional<int>, int, int, int, std::size_t> rows[] = {
        {"usual offset", 17, 1, 1, 17, 1},
        {"last accepted", 100, 1, 1, 100, 1},
        {"first refused", 101, 1, 0, 0, 0},
        {"last accepted below", -100, 1, 1, -100, 1},
        {"first refused below", -101, 1, 0, 0, 0},
        {"no absolute value", std::numeric_limits<int>::min(), 1, 0, 0, 0},
        {"no answer", std::nullopt, 1, 0, 0, 0},
        {"the flag is kept as given", 17, 0, 0, 17, 1},
    };
    for (const auto& [fault, offset, flag, synchronised, kept, set] : rows) {
        SCOPED_TRACE(fault);
        HandClock clock;
        Told error(clock);
        if (offset) {
            error.time = GpsTimeReply{1000.0, kWeek, *offset};
        }
        error.SetTimeSynchro(flag);
        EXPECT_EQ(error.GetTimeSynchro(), synchronised);
        EXPECT_EQ(error.GetSingleFlag(), synchronised != 0 ? 1 : 0);
        EXPECT_EQ(error.GetUTCOffsetTime(), kept);
        EXPECT_EQ(clock.asked.size(), set);
    }
}

TEST(GPSError, StaysSynchronisedForGood)
{
    HandClock clock;
    Told error(clock);
    error.time = GpsTimeReply{1000.0, kWeek, 17};
    error.GetRETPOS3()->fixKind = 1;
    EXPECT_EQ(error.CheckTimeSynchro(), 0);
    EXPECT_EQ(error.timeAsked + error.statusAsked, 0) << "asked without reason";
    error.GetRETPOS3()->fixKind = 2;
    EXPECT_EQ(error.CheckTimeSynchro(), 1);
    EXPECT_EQ(error.timeAsked, 1);
    error.time = GpsTimeReply{1000.0, kWeek, 101};
    error.SetTimeSynchro(0);
    EXPECT_EQ(error.CheckTimeSynchro(), 1);
    error.GetRETPOS3()->fixKind = 1;
    EXPECT_EQ(error.CheckTimeSynchro(), 1);
    EXPECT_EQ(error.statusAsked, 1) << "without a fix the status is asked for";
    EXPECT_EQ(error.timeAsked, 1);
    EXPECT_EQ(error.GetUTCOffsetTime(), 17);
    EXPECT_EQ(clock.asked.size(), 1U);
}

TEST(GPSError, TellsWhatItMadeOfTheClock)
{
    for (const bool maySet : {true, false}) {
        HandClock clock;
        clock.maySet = maySet;
        clock.utc = sys_days(2026y / 3 / 1);
        Told error(clock);
        EXPECT_FALSE(error.LastClockChange());
        error.time = GpsTimeReply{345618.0, kWeek, 18};
        error.SetTimeSynchro(1);
        ASSERT_TRUE(error.LastClockChange());
        EXPECT_EQ(error.LastClockChange()->isSet, maySet);
        EXPECT_EQ(error.LastClockChange()->was, clock.utc);
        EXPECT_EQ(error.LastClockChange()->by, sys_days(2026y / 3 / 19));
        EXPECT_EQ(error.GetTimeSynchro(), 1) << "the receiver's time counts all the same";
    }
    EXPECT_FALSE(SystemClock::Instance().SetUtc(sys_days(2026y / 3 / 1))) << "off unless allowed";
}

TEST(ControllerTime, KeepsItsOddity)
{
    const auto day = sys_days(2026y / 3 / 15);
    const std::tuple<const char*, int, double, int, std::optional<Clock::UtcTime>> rows[] = {
        {"afternoon", kWeek, 345600.0 + 54017.0, 17, day + 96h + 15h},
        {"the last second that is a day ahead", kWeek, 345617.0, 18, day + 96h + 23h + 59min + 59s},
        {"midnight by UTC", kWeek, 345618.0, 18, day + 96h},
        {"before the week's start", kWeek, 5.0, 18, day + 23h + 59min + 47s},
        {"no offset", kWeek, 5.0, 0, day + 5s},
        {"negative offset past the week's end", kWeek, 604790.0, -100, day + 144h + 90s},
        {"fraction is cut", kWeek, 345618.9, 18, day + 96h},
        {"the year 2100 is no leap year", 6269, 86400.0, 0, sys_days(2100y / 3 / 1)},
        {"no number", kWeek, kNaN, 18, std::nullopt},
        {"beyond any clock", std::numeric_limits<int>::max(), 0.0, 0, std::nullopt},
        {"before any clock", std::numeric_limits<int>::min(), 0.0, 0, std::nullopt},
    };
    for (const auto& [fault, week, seconds, offset, time] : rows) {
        SCOPED_TRACE(fault);
        EXPECT_EQ(ControllerTime(week, seconds, offset), time);
    }
}

TEST(GPSError, ShowsTheTimeInJapan)
{
    // Unsynchronised texts lack the seconds.
    const std::tuple<const char*, int, double, int, const char*> rows[] = {
        {"midnight in Japan", kWeek, 54017.0, 17, "000000-20260316"},
        {"the next week in Japan", kWeek, 604790.0, 18, "085932-20260322"},
        {"before the week's start in UTC", kWeek, 5.0, 18, "085947-20260315"},
        {"an hour that daylight saving leaves out elsewhere", 2408, 581418.0, 18,
         "023000-20260308"},
        {"an hour that comes twice elsewhere", 2442, 577818.0, 18, "013000-20261101"},
        {"a week of ten bits", 999, 18.0, 18, "090000-20181014"},
        {"beyond all calendars", std::numeric_limits<int>::max(), 0.0, 18, "235959-99991231"},
    };
    for (const auto& [fault, week, seconds, offset, text] : rows) {
        SCOPED_TRACE(fault);
        HandClock clock;
        Told error(clock);
        error.time = GpsTimeReply{seconds, week, offset};
        error.GetRETPOS3()->fixKind = 2;
        error.GetRETPOS3()->week = static_cast<std::uint32_t>(week);
        error.GetRETPOS3()->secondsOfWeek = static_cast<std::uint32_t>(seconds);
        EXPECT_EQ(ToUtf8(error.GetJSTTime(0)), text);
        EXPECT_EQ(error.timeAsked, 1) << "the stored status has the time";
    }
    HandClock clock;
    Told error(clock);
    error.time = GpsTimeReply{54017.0, kWeek, 17};
    EXPECT_EQ(ToUtf8(error.GetJSTTime(0)), "0000-20260316") << "the offset is not known yet";
    EXPECT_EQ(ToUtf8(error.GetJSTTime(1)), "00:00");
    EXPECT_EQ(error.timeAsked, 2) << "unsynchronised it is asked for";
    error.SetTimeSynchro(1);
    error.GetRETPOS3()->week = 2427;
    error.GetRETPOS3()->secondsOfWeek = 259217;
    EXPECT_EQ(ToUtf8(error.GetJSTTime(1)), "09:00:00");
    EXPECT_EQ(error.GetJSTCTime().GetHour(), 9) << "summer";
    EXPECT_EQ(error.GetJSTCTime().GetDay(), 15);
    EXPECT_EQ(ToUtf8(error.ChangeCTimetoString(CTime(2026, 7, 1, 1, 2, 3), 0)), "010203-20260701");
}

TEST(GPSError, ShowsOnlyAPdopThatIsOne)
{
    HandClock clock;
    Told error(clock);
    error.time = GpsTimeReply{1000.0, kWeek, 17};
    float& pdop = error.GetRETPOS3()->pdop;
    pdop = 1.25F;
    EXPECT_EQ(error.GetPDOP(), L"-.- ") << "not synchronised";
    error.SetTimeSynchro(1);
    EXPECT_EQ(error.GetPDOP(), L"1.2") << "rounded as all screens do";
    for (const float none : {0.0F, -1.5F, std::nanf(""), std::numeric_limits<float>::infinity()}) {
        pdop = none;
        EXPECT_EQ(error.GetPDOP(), L"-.- ") << none;
    }
}

TEST(GPSError, AsksTheReceiverOverTheLine)
{
    testing::VirtualChannel channel;
    const testing::ScriptedEnd receiver(
        channel.line,
        {{Frame(0x15, Ascii("0054017241017"))}, {Frame(0x09, Ascii("000800008501.81    09"))}});
    HandClock clock;
    channel.Open();
    CGPSError error(&channel.command, &clock);
    error.GetRETPOS3()->fixKind = 2;
    EXPECT_EQ(error.CheckTimeSynchro(), 1);
    EXPECT_EQ(error.GetUTCOffsetTime(), 17);
    error.GetRETPOS3()->fixKind = 0;
    EXPECT_EQ(error.CheckTimeSynchro(), 1);
    EXPECT_EQ(receiver.Requests(), (std::vector{Frame(0x14), Frame(0x08)}));
}

} // namespace
} // namespace fieldcore

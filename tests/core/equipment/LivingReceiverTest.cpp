// A receiver that searches, finds and loses, drains its battery and changes its power source, over
// half an hour of its own time.

#include "core/equipment/ReceiverFields.h"
#include "core/resources/StringTable.h"
#include "tests/core/equipment/PolledReceiver.h"

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

class LivingReceiverTest : public testing::PolledReceiver
{
protected:
    /// A field, as the user reads it.
    [[nodiscard]] std::wstring Shown(const char* key) const
    {
        return FieldText(FieldOf(key), link.Heard(), {clock.Steady()});
    }
    /// Rounds until the clock says @p end; the warnings that came are added up.
    void LiveUntil(Clock::Duration end)
    {
        while (clock.Steady() < end) {
            Round(10s);
            const BatteryWatch::Warning warning = poll.TakeWarning();
            if (warning != BatteryWatch::Warning::None) {
                warnings.push_back(warning);
            }
        }
    }
    std::vector<BatteryWatch::Warning> warnings;
};

TEST_F(LivingReceiverTest, IsFollowedFromTheFirstFixToTheLastCharge)
{
    ASSERT_NO_FATAL_FAILURE(Plug(testing::ShippedScenario("first-fix")));
    struct Moment
    {
        std::chrono::seconds at;
        const wchar_t* fix;
        bool hasPlace, hasPdop, isSynchronised;
        const wchar_t* source;
    };
    const Moment moments[] = {
        {10s, L"衛星探索中", false, false, false, L"電源A"},
        {30s, L"単独測位", true, true, true, L"電源A"},
        {70s, L"RTKフロート", true, true, true, L"電源A"},
        {150s, L"RTKフィックス", true, true, true, L"電源A"},
        {160s, L"RTKフィックス", true, true, true, L"電源B"}, // at the sixteenth round
        {310s, L"測位なし", false, false, true, L"電源B"},    // the time stays trusted
        {370s, L"衛星探索中", false, false, true, L"電源B"},
        {390s, L"RTKフィックス", true, true, true, L"電源B"},
    };
    const std::wstring unknown = Text(text::kStatusUnknown);
    for (const Moment& moment : moments) {
        SCOPED_TRACE(moment.at.count());
        LiveUntil(moment.at);
        EXPECT_EQ(Shown("fix"), moment.fix);
        EXPECT_EQ(Shown("latitudeDeg") != unknown, moment.hasPlace);
        EXPECT_EQ(Shown("planeXM") != unknown, moment.hasPlace);
        EXPECT_EQ(Shown("hdop") != unknown, moment.hasPdop);
        EXPECT_EQ(poll.History().Samples().back().pdop.has_value(), moment.hasPdop);
        EXPECT_EQ(poll.History().Samples().back().satellites.value_or(0) > 0, moment.hasPlace);
        EXPECT_EQ(link.Heard().isSynchronised, moment.isSynchronised);
        EXPECT_EQ(Shown("powerSourceName"), moment.source);
        EXPECT_EQ(controller.asked.size(), moment.isSynchronised ? 1U : 0U);
    }
    EXPECT_TRUE(warnings.empty());
    LiveUntil(1800s); // 34 % less one a minute
    EXPECT_EQ(warnings, (std::vector{BatteryWatch::Warning::Low, BatteryWatch::Warning::VeryLow}));
    ASSERT_TRUE(link.Heard().trend && link.Heard().trend->left);
    EXPECT_NEAR(link.Heard().trend->percentPerHour, -60.0, 3.0);
    EXPECT_LT(*link.Heard().trend->left, 10min);
}

} // namespace
} // namespace fieldcore

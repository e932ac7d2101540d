// The plan's page without a screen, and what it keeps between its runs.

#include "core/planning/PlanSession.h"

#include "core/planning/CurtainFile.h"
#include "core/planning/PlanSearch.h"
#include "core/planning/PlanSettings.h"
#include "core/planning/PlanSite.h"
#include "core/resources/StringTable.h"
#include "core/settings/HostReg.h"
#include "core/settings/Setting.h"
#include "tests/core/planning/SampleSky.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/HandClock.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using std::chrono::minutes;

class SettingsTest : public ::testing::Test
{
protected:
    TemporaryFolder m_home;
    SettingsRoots m_roots{testing::FoldersBelow(m_home.Path())};
    HostReg m_reg{m_roots};
};

TEST_F(SettingsTest, OfThePlanComeBackAsTheyWereSaved)
{
    EXPECT_EQ(LoadPlanSettings(m_reg), (PlanSettings{15, 9, 2, 0, 0, 13, L"東京都千代田区", 0}));
    PlanSettings kept{25, 7, 12, 4, 1, 27, L"自宅", 99, {7, 2.35, minutes(45)}};
    kept.switchedOff = 0x80000005;
    kept.systems = SystemSet(0b101);
    kept.clockPerSystem = true;
    kept.search = {5, 22, 9, {L"自宅", L"現場 2"}};
    EXPECT_EQ(SavePlanSettings(m_reg, kept), 1);
    SettingsRoots later(testing::FoldersBelow(m_home.Path()));
    EXPECT_EQ(LoadPlanSettings(HostReg(later)), kept);

    // Under the names that other programs of the controller know.
    std::uint32_t mask = 0;
    EXPECT_EQ(m_reg.ReadNumber(L"GPS\\SurveyPlan", L"ElMask", mask, 0), 1);
    EXPECT_EQ(mask, 25U);
}

TEST_F(SettingsTest, OfThePlanFitTheControlsWhateverIsStored)
{
    using S = PlanSettings;
    const wchar_t* const own = L"";
    const wchar_t* const limits = L"\\Conditions";
    constexpr std::uint32_t kMost = 0xFFFFFFFF;
    // The keys are those below the key of the plan.
    // Each row ends with what makes of the settings of a new user what is loaded.
    using Row =
        std::tuple<const char*, const wchar_t*, const wchar_t*, std::uint32_t, void (*)(S&)>;
    const Row rows[] = {
        {"mask above the zenith", own, L"ElMask", 91, [](S& s) { s.elMaskDeg = 90; }},
        {"mask below the horizon", own, L"ElMask", kMost - 9, [](S& s) { s.elMaskDeg = 0; }},
        {"an hour too many", own, L"StartTime", 24, [](S& s) { s.startHour = 23, s.hours = 1; }},
        {"no hours", own, L"DispTime", 0, [](S& s) { s.hours = 1; }},
        {"beyond midnight", own, L"DispTime", 16, [](S& s) { s.hours = 15; }}, // it starts at 9
        {"an unknown graph is kept", own, L"DrawType", 7, [](S& s) { s.drawType = 7; }},
        {"no fix", limits, L"MinSatellites", 3, [](S& s) { s.limits.minSatellites = 4; }},
        {"no int", limits, L"MinSatellites", kMost, [](S& s) { s.limits.minSatellites = 12; }},
        {"no dilution", limits, L"MaxPdop", 0, [](S& s) { s.limits.maxPdop = 1.0; }},
        {"any dilution", limits, L"MaxPdop", kMost, [](S& s) { s.limits.maxPdop = 10.0; }},
        {"no length", limits, L"MinMinutes", 0, [](S& s) { s.limits.minLength = minutes(5); }},
        {"days", limits, L"MinMinutes", 1U << 31, [](S& s) { s.limits.minLength = minutes(720); }},
        {"all satellites off", limits, L"SwitchedOff", kMost, [](S&) {}},
    };
    for (const auto& [fault, below, name, stored, fit] : rows) {
        SCOPED_TRACE(fault);
        ASSERT_EQ(SavePlanSettings(m_reg, {}), 1);
        const std::wstring key = std::wstring(L"GPS\\SurveyPlan") + below;
        ASSERT_EQ(m_reg.WriteNumber(key.c_str(), name, stored), 1);
        PlanSettings expected;
        fit(expected);
        EXPECT_EQ(LoadPlanSettings(m_reg), expected);
    }
    ASSERT_EQ(m_reg.WriteString(L"GPS\\SurveyPlan", L"ElMask", L"thirty"), 1);
    ASSERT_EQ(m_reg.WriteString(L"GPS\\SurveyPlan", L"Position", std::wstring(256, L'x')), 1);
    EXPECT_EQ(LoadPlanSettings(m_reg).elMaskDeg, 15) << "a text for a number";
    EXPECT_EQ(LoadPlanSettings(m_reg).position, L"東京都千代田区") << "a text too long";
}

TEST_F(SettingsTest, HaveTheRangesOfTheirControls)
{
    using L = WindowLimits;
    constexpr auto kSatellites = KnownSetting(L"GPS\\SurveyPlan\\Conditions\\MinSatellites");
    constexpr auto kPdop = KnownSetting(L"GPS\\SurveyPlan\\Conditions\\MaxPdop");
    constexpr auto kMinutes = KnownSetting(L"GPS\\SurveyPlan\\Conditions\\MinMinutes");
    EXPECT_EQ(kSatellites->number.least, L::kFewestSatellites);
    EXPECT_EQ(kSatellites->number.most, L::kMostSatellites);
    EXPECT_EQ(kPdop->number.least / 100.0, L::kLowestPdop);
    EXPECT_EQ(kPdop->number.most / 100.0, L::kHighestPdop);
    EXPECT_EQ(minutes(kMinutes->number.least), L::kShortest);
    EXPECT_EQ(minutes(kMinutes->number.most), L::kLongest);
    EXPECT_EQ(KnownSetting(L"GPS\\SurveyPlan\\Search\\Days")->number.most, SearchHours::kMostDays);
}

class PlanSessionTest : public SettingsTest
{
protected:
    PlanSessionTest()
    {
        m_clock.utc = std::chrono::sys_days(2022y / std::chrono::March / 12) + 23h;
    }
    void WriteAlmanac() const
    {
        const std::vector<std::uint8_t> almanac = testing::SampleFile();
        m_home.Write("GSurveyPlan.alm",
                     {reinterpret_cast<const char*>(almanac.data()), almanac.size()});
    }
    PlanSession::Spins Moved(int startHour, int hours, PlanSession::Spins (PlanSession::*move)(int),
                             int to)
    {
        PlanSettings settings;
        settings.startHour = startHour;
        settings.hours = hours;
        m_session.SetSettings(settings);
        return (m_session.*move)(to);
    }

    testing::HandClock m_clock;
    PlanSession m_session{{.clock = &m_clock, .roots = &m_roots}};
};

TEST_F(PlanSessionTest, BeginsWithWhatIsKept)
{
    WriteAlmanac();
    ASSERT_EQ(InstallSampleSites(m_home.Path()), 1);
    m_home.Write("CurTain.obs", std::string(360, 30));
    ASSERT_EQ(SavePlanSettings(m_reg, {20, 7, 3, 5, 0, 27, L"大阪府大阪市", 0}), 1);
    EXPECT_EQ(m_session.Begin().text, 0);
    EXPECT_EQ(m_session.Date(), 2022y / std::chrono::March / 12) << "the date of UTC";
    EXPECT_EQ(m_session.GetSpins().start, 7);
    EXPECT_EQ(m_session.GetSpins().end, 10);
    EXPECT_EQ(m_session.Graph(), PlanGraph::Gdop);
    EXPECT_NEAR(m_session.Site().latitudeRad, 34.686389 / 180.0 * 3.14159265358979, 1e-7);
    EXPECT_EQ(m_session.Plan().Division(), 12);
    EXPECT_EQ(m_session.Plan().Calc().GetCurtain()[359], 30);
    EXPECT_NEAR(m_session.Plan().Calc().GetElMask(), 0.349066, 1e-6);
}

TEST_F(PlanSessionTest, StopsAtAMissingAlmanacAndGoesOnWithItLater)
{
    m_home.Write("CurTain.obs", std::string(360, 30));
    const AlmanacMessage missing = m_session.Begin();
    EXPECT_EQ(missing.text, text::kAlmanacNotRead);
    EXPECT_EQ(missing.icon, BoxIcon::Stop);
    EXPECT_FALSE(m_session.CanPlan() || m_session.IsAlmanacTooOld());
    EXPECT_EQ(m_session.Plan().Division(), 0) << "nothing is computed";
    EXPECT_EQ(m_session.Plan().Calc().GetCurtain()[0], 0) << "the later steps were not left out";
    WriteAlmanac();
    EXPECT_EQ(m_session.ReloadAlmanac().text, 0);
    EXPECT_EQ(m_session.Plan().Calc().GetCurtain()[0], 30);
    EXPECT_EQ(m_session.Plan().Division(), 12);
}

TEST_F(PlanSessionTest, TellsOfAnOldAlmanacAndUsesIt)
{
    WriteAlmanac();
    m_clock.utc += std::chrono::days(31);
    EXPECT_EQ(m_session.Begin().text, text::kAlmanacOld);
    EXPECT_EQ(m_session.Plan().Division(), 12);
    m_session.SetDate(2022y / std::chrono::March / 12);
    EXPECT_FALSE(m_session.IsAlmanacTooOld());
}

TEST_F(PlanSessionTest, KeepsTheRulesOfItsSpins)
{
    constexpr auto kStart = &PlanSession::MoveStart;
    constexpr auto kEnd = &PlanSession::MoveEnd;
    using Row = std::tuple<const char*, int, int, PlanSession::Spins (PlanSession::*)(int), int,
                           PlanSession::Spins, int>;
    const Row rows[] = {
        {"the period moves along", 9, 2, kStart, 10, {10, 12}, 2},
        {"midnight takes an hour", 22, 2, kStart, 23, {23, 24}, 1},
        {"a whole day loses one at its end", 0, 24, kStart, 1, {1, 24}, 23},
        {"below the range", 5, 4, kStart, -1, {9, 11}, 2},
        {"above the range", 5, 4, kStart, 24, {9, 11}, 2},
        {"a longer period", 9, 2, kEnd, 24, {9, 24}, 15},
        {"the shortest", 9, 2, kEnd, 10, {9, 10}, 1},
        {"on the start: the spin goes on, the period keeps its length", 9, 3, kEnd, 9, {9, 10}, 3},
        {"before the start", 9, 3, kEnd, 1, {9, 10}, 3},
        {"no hour of a day", 5, 4, kEnd, 0, {9, 11}, 2},
        {"nor this one", 5, 4, kEnd, 25, {9, 11}, 2},
    };
    for (const auto& [rule, startHour, hours, move, to, expected, hoursThen] : rows) {
        SCOPED_TRACE(rule);
        const PlanSession::Spins spins = Moved(startHour, hours, move, to);
        EXPECT_EQ(std::tie(spins.start, spins.end), std::tie(expected.start, expected.end));
        EXPECT_EQ(m_session.Settings().hours, hoursThen);
    }
}

TEST_F(PlanSessionTest, LeavesTheSpinsAloneForAnotherGraphOrMask)
{
    Moved(9, 3, &PlanSession::MoveEnd, 9); // the spin stands on 10, the period still ends at 12
    m_session.SetGraph(5);
    m_session.SetMask(95);
    EXPECT_EQ(m_session.Graph(), PlanGraph::Gdop);
    EXPECT_EQ(m_session.Settings().elMaskDeg, 90);
    EXPECT_EQ(m_session.GetSpins().end, 10);
    EXPECT_EQ(m_session.ResetSpins().end, 12);
    EXPECT_EQ(m_session.SetSettings(m_session.Settings()), 0) << "nothing is different";
    m_session.SetGraph(7);
    EXPECT_EQ(m_session.Graph(), PlanGraph::SkyPlot);
}

TEST_F(PlanSessionTest, KeepsACurtainThatIsChanged)
{
    WriteAlmanac();
    m_session.Begin();
    const double before = m_session.Plan().CountAt(0);
    ObstructionCurtain curtain;
    curtain.fill(89);
    EXPECT_FALSE(m_session.ChangeCurtain(curtain));
    EXPECT_LT(m_session.Plan().CountAt(0), before);
    EXPECT_EQ(LoadCurtain(m_home.Path()), curtain);
    std::filesystem::remove(CurtainPath(m_home.Path()));
    std::filesystem::create_directory(CurtainPath(m_home.Path()));
    EXPECT_TRUE(m_session.ChangeCurtain({}));
    EXPECT_EQ(m_session.Plan().Calc().GetCurtain(), curtain) << "not kept, but shown";
}

} // namespace
} // namespace fieldcore

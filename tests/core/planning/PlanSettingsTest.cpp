#include "core/planning/PlanSettings.h"

#include "core/settings/HostReg.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <chrono>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using std::chrono::minutes;

class PlanSettingsTest : public ::testing::Test
{
protected:
    TemporaryFolder m_home;
    SettingsRoots m_roots{testing::FoldersBelow(m_home.Path())};
    HostReg m_reg{m_roots};
};

TEST_F(PlanSettingsTest, AreThoseOfANewUserAtFirst)
{
    const PlanSettings fresh = LoadPlanSettings(m_reg);
    EXPECT_EQ(fresh, PlanSettings());
    EXPECT_EQ(fresh, (PlanSettings{15, 9, 2, 0, 0, 13, L"東京都千代田区", 0}));
    EXPECT_EQ(fresh.systems, SystemSetOf(GnssSystem::Gps));
}

TEST_F(PlanSettingsTest, ComeBackAsTheyWereSaved)
{
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

TEST_F(PlanSettingsTest, FitTheControlsWhateverIsStored)
{
    using S = PlanSettings;
    struct Row
    {
        const char* fault;
        const wchar_t* key; ///< below that of the plan
        const wchar_t* name;
        std::uint32_t stored;
        void (*fit)(S&); ///< makes of the settings of a new user what is loaded
    };
    const wchar_t* const own = L"";
    const wchar_t* const limits = L"\\Conditions";
    constexpr std::uint32_t kMost = 0xFFFFFFFF;
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
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        ASSERT_EQ(SavePlanSettings(m_reg, {}), 1);
        const std::wstring key = std::wstring(L"GPS\\SurveyPlan") + row.key;
        ASSERT_EQ(m_reg.WriteNumber(key.c_str(), row.name, row.stored), 1);
        PlanSettings expected;
        row.fit(expected);
        EXPECT_EQ(LoadPlanSettings(m_reg), expected);
    }
    ASSERT_EQ(m_reg.WriteString(L"GPS\\SurveyPlan", L"ElMask", L"thirty"), 1);
    ASSERT_EQ(m_reg.WriteString(L"GPS\\SurveyPlan", L"Position", std::wstring(256, L'x')), 1);
    EXPECT_EQ(LoadPlanSettings(m_reg).elMaskDeg, 15) << "a text for a number";
    EXPECT_EQ(LoadPlanSettings(m_reg).position, L"東京都千代田区") << "a text too long";
}

} // namespace
} // namespace fieldcore

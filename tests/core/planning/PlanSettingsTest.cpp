#include "core/planning/PlanSettings.h"

#include "core/settings/HostReg.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

class PlanSettingsTest : public ::testing::Test
{
protected:
    TemporaryFolder m_home;
    SettingsRoots m_roots{testing::FoldersBelow(m_home.Path())};
    HostReg m_reg{m_roots};
};

TEST_F(PlanSettingsTest, AreThoseOfANewUserAtFirst)
{
    EXPECT_EQ(LoadPlanSettings(m_reg), (PlanSettings{15,
                                                     9,
                                                     2,
                                                     0,
                                                     0,
                                                     13,
                                                     L"東京都千代田区",
                                                     0,
                                                     WindowLimits{},
                                                     0,
                                                     SystemSetOf(GnssSystem::Gps),
                                                     false,
                                                     {14, 8, 10, {}}}));
}

TEST_F(PlanSettingsTest, ComeBackAsTheyWereSaved)
{
    const PlanSettings kept{25,
                            7,
                            12,
                            4,
                            1,
                            27,
                            L"自宅",
                            99,
                            {7, 2.35, std::chrono::minutes(45)},
                            0x80000005,
                            SystemSet(0b101),
                            true,
                            {5, 22, 9, {L"自宅", L"現場 2"}}};
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
    struct Row
    {
        const char* fault;
        const wchar_t* name;
        std::uint32_t stored;
        int PlanSettings::*member;
        int loaded;
    };
    const Row rows[] = {
        {"mask above the zenith", L"ElMask", 91, &PlanSettings::elMaskDeg, 90},
        {"mask below the horizon", L"ElMask", 0xFFFFFFF6, &PlanSettings::elMaskDeg, 0},
        {"an hour too many", L"StartTime", 24, &PlanSettings::startHour, 23},
        {"no hours", L"DispTime", 0, &PlanSettings::hours, 1},
        {"beyond midnight", L"DispTime", 16, &PlanSettings::hours, 15}, // it starts at 9
        {"an unknown graph is kept", L"DrawType", 7, &PlanSettings::drawType, 7},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        ASSERT_EQ(SavePlanSettings(m_reg, PlanSettings{}), 1);
        ASSERT_EQ(m_reg.WriteNumber(L"GPS\\SurveyPlan", row.name, row.stored), 1);
        EXPECT_EQ(LoadPlanSettings(m_reg).*row.member, row.loaded);
    }
    const wchar_t* const conditions = L"GPS\\SurveyPlan\\Conditions";
    using std::chrono::minutes;
    const WindowLimits fresh;
    struct Condition
    {
        const char* fault;
        const wchar_t* name;
        std::uint32_t stored;
        WindowLimits loaded;
    };
    for (const Condition& row :
         {Condition{"fewer than fix a place", L"MinSatellites", 3, {4, 4.0, minutes(30)}},
          Condition{"more than an int", L"MinSatellites", 0xFFFFFFFF, {12, 4.0, minutes(30)}},
          Condition{"no dilution", L"MaxPdop", 0, {5, 1.0, minutes(30)}},
          Condition{"any dilution", L"MaxPdop", 0xFFFFFFFF, {5, 10.0, minutes(30)}},
          Condition{"no length", L"MinMinutes", 0, {5, 4.0, minutes(5)}},
          Condition{"longer than days", L"MinMinutes", 0x80000000, {5, 4.0, minutes(720)}},
          Condition{"all satellites off", L"SwitchedOff", 0xFFFFFFFF, fresh}}) {
        SCOPED_TRACE(row.fault);
        ASSERT_EQ(SavePlanSettings(m_reg, PlanSettings{}), 1);
        ASSERT_EQ(m_reg.WriteNumber(conditions, row.name, row.stored), 1);
        EXPECT_EQ(LoadPlanSettings(m_reg).limits, row.loaded);
        EXPECT_EQ(LoadPlanSettings(m_reg).switchedOff, 0U);
    }
    ASSERT_EQ(m_reg.WriteString(L"GPS\\SurveyPlan", L"ElMask", L"thirty"), 1);
    ASSERT_EQ(m_reg.WriteString(L"GPS\\SurveyPlan", L"Position", std::wstring(256, L'x')), 1);
    EXPECT_EQ(LoadPlanSettings(m_reg).elMaskDeg, 15) << "a text for a number";
    EXPECT_EQ(LoadPlanSettings(m_reg).position, L"東京都千代田区") << "a text too long";
}

} // namespace
} // namespace fieldcore

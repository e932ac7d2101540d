// The table of the settings, and its print in docs/settings.md.

#include "core/settings/Setting.h"

#include "core/platform/Utf8.h"
#include "core/settings/HostReg.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <fstream>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

constexpr const char* kHead = "| setting | default | is |\n|---|---|---|\n";

std::string RowOf(const Setting& setting)
{
    const Setting::Number& number = setting.number;
    std::string range = setting.text != nullptr ? "text; " : "";
    if (number.most != 0) {
        range = std::to_string(number.least) + " to " + std::to_string(number.most) +
                (number.isNearest ? ", nearest; " : "; ");
    }
    const std::string byDefault =
        setting.text != nullptr ? ToUtf8(setting.text) : std::to_string(number.byDefault);
    return "| `" + ToUtf8(setting.path) + "` | " + byDefault + (byDefault.empty() ? "| " : " | ") +
           range + setting.meaning + " |\n";
}

TEST(Settings, AreTheTableOfTheDocument)
{
    std::ifstream file(FIELDCORE_SOURCE_DIR "/docs/settings.md");
    std::ostringstream page;
    page << file.rdbuf();
    std::string table = kHead;
    std::set<std::wstring_view> paths;
    for (const Setting& setting : kSettings) {
        table += RowOf(setting);
        EXPECT_TRUE(paths.insert(setting.path).second) << ToUtf8(setting.path) << " twice";
    }
    EXPECT_NE(page.str().find("\n\n" + table + "\n"), std::string::npos) << table;
}

TEST(Settings, ReadAsTheirRowSays)
{
    const TemporaryFolder home;
    SettingsRoots roots(testing::FoldersBelow(home.Path()));
    const HostReg reg(roots);
    const auto role = [&reg] { return StoredNumber(reg, L"GPS\\App\\AntennaRole"); };
    const auto hour = [&reg] { return StoredNumber(reg, L"GPS\\SurveyPlan\\StartTime"); };
    EXPECT_EQ(role(), 1U) << "missing";
    ASSERT_EQ(StoreAll(reg, {{L"GPS\\App\\AntennaRole", 3U}, {L"GPS\\SurveyPlan\\StartTime", 24U}}),
              1);
    EXPECT_EQ(role(), 1U) << "out of range: the default";
    EXPECT_EQ(hour(), 23U) << "out of range: the nearest";
    ASSERT_EQ(
        StoreAll(reg, {{L"GPS\\App\\AntennaRole", 2U}, {L"GPS\\SurveyPlan\\StartTime", L"7"}}), 1);
    EXPECT_EQ(role(), 2U) << "in its range";
    EXPECT_EQ(hour(), 9U) << "another type";

    ASSERT_EQ(Store(reg, L"GPS\\SurveyPlan\\Search\\Site*", L"x", L"3"), 1);
    ASSERT_EQ(Store(reg, L"GPS\\Signal\\*\\L5", 1U, L"3017"), 1);
    std::wstring site;
    std::uint32_t l5 = 0;
    EXPECT_EQ(reg.ReadString(L"GPS\\SurveyPlan\\Search", L"Site3", site, L""), 1);
    EXPECT_EQ(reg.ReadNumber(L"GPS\\Signal\\3017", L"L5", l5, 0), 1);
}

} // namespace
} // namespace fieldcore

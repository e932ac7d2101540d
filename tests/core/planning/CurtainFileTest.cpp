#include "core/planning/CurtainFile.h"

#include "core/planning/CurtainText.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

TEST(CurtainFile, ReadsNoMoreThanTheCircleHas)
{
    const TemporaryFolder folder;
    EXPECT_EQ(LoadCurtain(folder.Path()), ObstructionCurtain{}) << "no file";

    ObstructionCurtain expected{};
    folder.Write("CurTain.obs", std::string(360, '\x05') + std::string(1000, '\x40'));
    expected.fill(5);
    EXPECT_EQ(LoadCurtain(folder.Path()), expected) << "a long file";
}

TEST(CurtainFile, IsReplacedByWhatIsSaved)
{
    const TemporaryFolder folder;
    folder.Write("CurTain.obs", std::string(1000, '\x40'));
    ObstructionCurtain curtain{};
    curtain[359] = 89;
    EXPECT_FALSE(SaveCurtain(folder.Path(), curtain));
    EXPECT_EQ(LoadCurtain(folder.Path()), curtain);
    EXPECT_EQ(std::filesystem::file_size(CurtainPath(folder.Path())), 360U);
    // Nothing but the file is left.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);
}

TEST(CurtainFile, OfASiteIsNamedSafely)
{
    const std::pair<const wchar_t*, const char*> rows[] = {
        {L"本社 屋上", "本社 屋上.txt"}, {L"A/B", "A%2FB.txt"},
        {L"A%2FB", "A%252FB.txt"}, // not the file of the one above
        {L"..", "%2E%2E.txt"},           {L".hidden. ", "%2Ehidden.%20.txt"},
        {L"C:\\x\n", "C%3A%5Cx%0A.txt"},
    };
    for (const auto& [site, file] : rows) {
        EXPECT_EQ(SiteCurtainPath("home", site), std::filesystem::path("home/Curtains") / file);
    }
    EXPECT_FALSE(SiteCurtainPath("home", L""));
    EXPECT_FALSE(SiteCurtainPath("home", std::wstring(70, L'本'))) << "too long for a file";
}

TEST(CurtainText, HoldsAnElevationUpToTheNextLine)
{
    const CurtainText read = ParseCurtainText("\xEF\xBB\xBF# a house\r\n\r\n 10\t20 # its wall\r\n"
                                              "12 0\n359 90");
    ASSERT_FALSE(read.error) << read.error->message;
    ObstructionCurtain expected{};
    expected[10] = 20;
    expected[11] = 20;
    expected[359] = 90;
    EXPECT_EQ(read.curtain, expected);
    EXPECT_EQ(ParseCurtainText("# open sky\n").curtain, ObstructionCurtain{});
}

TEST(CurtainText, NamesTheLineAndTheFieldThatAreWrong)
{
    // The message: a part of it.
    const std::tuple<std::string_view, int, std::string_view, std::string_view> rows[] = {
        {"", 0, "", "empty"},
        {"\n \r\n", 0, "", "empty"},
        {"0 5\n360 5\n", 2, "azimuth", "0 to 359"},
        {"-1 5", 1, "azimuth", "0 to 359"},
        {"north 5", 1, "azimuth", "not a number"},
        {"1.5 5", 1, "azimuth", "whole"},
        {"0 91", 1, "elevation", "0 to 90"},
        {"0 -1", 1, "elevation", "0 to 90"},
        {"0 4.5", 1, "elevation", "whole"},
        {"0 # 5", 1, "elevation", "no number"},
        {"0, 5", 1, "azimuth", "not a number"},
        {"0 5 9", 1, "", "\"9\" is too much"},
        {"0 5\n\n20 5\n20 6\n", 4, "azimuth", "greater than in the line before, 20"},
        {"20 5\n0 6\n", 2, "azimuth", "greater"},
    };
    for (const auto& [text, line, field, message] : rows) {
        SCOPED_TRACE(text);
        const CurtainText read = ParseCurtainText(text);
        ASSERT_TRUE(read.error);
        EXPECT_EQ(std::tie(read.error->line, read.error->field), std::tie(line, field));
        EXPECT_NE(read.error->message.find(message), std::string::npos) << read.error->message;
        EXPECT_EQ(read.curtain, ObstructionCurtain{});
    }
    EXPECT_TRUE(ParseCurtainText(std::string((1 << 20) + 1, '#')).error);
}

TEST(CurtainText, WritesOnlyWhatChanges)
{
    ObstructionCurtain curtain{};
    curtain[3] = 7;
    curtain[4] = 91; // no text can say more than 90
    curtain[5] = 255;
    const std::string text = FormatCurtainText(curtain);
    EXPECT_EQ(text.substr(text.find('\n', text.rfind('#'))), "\n3 7\n4 90\n6 0\n");

    const TemporaryFolder folder;
    const auto file = folder.Write("site.txt", "old");
    EXPECT_FALSE(SaveCurtainText(file, curtain));
    EXPECT_EQ(LoadCurtainText(file).curtain, ParseCurtainText(text).curtain);
}

} // namespace
} // namespace fieldcore

#include "core/planning/CurtainFile.h"

#include "tests/core/platform/TemporaryFolder.h"

#include <string>

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
    struct Row
    {
        const wchar_t* site;
        const char* file; ///< empty: none
    };
    const Row rows[] = {
        {L"本社 屋上", "本社 屋上.txt"}, {L"A/B", "A%2FB.txt"},
        {L"A%2FB", "A%252FB.txt"}, // not the file of the one above
        {L"..", "%2E%2E.txt"},           {L".hidden. ", "%2Ehidden.%20.txt"},
        {L"C:\\x\n", "C%3A%5Cx%0A.txt"}, {L"", ""},
    };
    for (const Row& row : rows) {
        const auto path = SiteCurtainPath("home", row.site);
        ASSERT_EQ(path.has_value(), *row.file != '\0') << row.file;
        if (path) {
            EXPECT_EQ(path->filename(), row.file);
            EXPECT_EQ(path->parent_path(), std::filesystem::path("home") / "Curtains");
        }
    }
    EXPECT_FALSE(SiteCurtainPath("home", std::wstring(70, L'本'))) << "too long for a file";
}

} // namespace
} // namespace fieldcore

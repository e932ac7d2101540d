#include "core/planning/CurtainFile.h"

#include "tests/core/platform/TemporaryFolder.h"

#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

TEST(CurtainFile, ReadsWhateverLengthTheFileHas)
{
    const TemporaryFolder folder;
    EXPECT_EQ(LoadCurtain(folder.Path()), ObstructionCurtain{}) << "no file";

    folder.Write("CurTain.obs", "\x0A\xFF");
    ObstructionCurtain expected{};
    expected[0] = 10;
    expected[1] = 255;
    EXPECT_EQ(LoadCurtain(folder.Path()), expected) << "a short file";

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

TEST(CurtainFile, SaysWhenItCannotBeSaved)
{
    const TemporaryFolder folder;
    const auto file = folder.Write("not-a-folder", "");
    EXPECT_TRUE(SaveCurtain(file, {}));
    std::filesystem::create_directories(CurtainPath(folder.Path()) / "in the way");
    EXPECT_TRUE(SaveCurtain(folder.Path(), {}));
}

} // namespace
} // namespace fieldcore

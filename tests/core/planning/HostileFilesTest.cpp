// Almanac and curtain, binary and as text, where the file is not what it should be.

#include "core/planning/AlmanacFile.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/AlmanacText.h"
#include "core/planning/CurtainFile.h"
#include "core/planning/CurtainText.h"
#include "core/planning/SurveyPlanCalc.h"
#include "tests/core/planning/SampleSky.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;
using testing::SampleFile;
using testing::SampleSatellites;

constexpr std::string_view kAlmanacName = "GSurveyPlan.alm";
constexpr std::string_view kCurtainName = "CurTain.obs";
constexpr std::string_view kTextName = "curtain.txt";

ObstructionCurtain Striped()
{
    ObstructionCurtain curtain{};
    for (std::size_t k = 0; k < curtain.size(); ++k) {
        curtain[k] = static_cast<std::uint8_t>(k % 2 == 0 ? 10 : 20);
    }
    return curtain;
}

TEST(HostileFiles, CutAnywhereACurtainLosesOnlyWhatIsCutOff)
{
    const ObstructionCurtain curtain = Striped();
    const TemporaryFolder folder;
    const auto file = folder.Write(kCurtainName, std::string(curtain.begin(), curtain.end()));
    for (std::size_t length = curtain.size(); length-- > 0;) {
        fs::resize_file(file, length);
        ObstructionCurtain expected{};
        std::copy_n(curtain.begin(), length, expected.begin());
        ASSERT_EQ(LoadCurtain(folder.Path()), expected) << length;
    }
    const std::string text = FormatCurtainText(curtain); // a line for each entry
    const std::size_t header = text.find("\n0 10\n") + 1;
    for (std::size_t length = header; length < text.size(); ++length) {
        const std::string cut = text.substr(0, length);
        const auto lines =
            std::count(cut.begin() + static_cast<std::ptrdiff_t>(header), cut.end(), '\n');
        const CurtainText read = ParseCurtainText(cut);
        EXPECT_TRUE(std::equal(curtain.begin(), curtain.begin() + (read.error ? 0 : lines),
                               read.curtain.begin()))
            << length;
        EXPECT_TRUE(!read.error || read.error->field == "elevation") << length;
    }
}

TEST(HostileFiles, WhatIsNoFileIsNotReadAndNotReplaced)
{
    using Make = void (*)(const fs::path&);
    const std::pair<fs::file_type, Make> rows[] = {
        {fs::file_type::directory, [](const fs::path& p) { fs::create_directories(p / "full"); }},
        {fs::file_type::fifo, // that nobody writes to
         [](const fs::path& p) { ASSERT_EQ(mkfifo(p.c_str(), 0600), 0); }},
    };
    for (const auto& [type, make] : rows) {
        SCOPED_TRACE(static_cast<int>(type));
        const TemporaryFolder folder;
        const fs::path& path = folder.Path();
        for (const std::string_view name : {kAlmanacName, kCurtainName, kTextName}) {
            make(path / name);
        }
        CSurveyPlanCalc calc;
        EXPECT_FALSE(calc.LoadAlmanac(path / kAlmanacName));
        EXPECT_EQ(LoadCurtain(path), ObstructionCurtain{});
        for (const auto& error : {LoadAlmanacText(path / kTextName, {}).error,
                                  LoadCurtainText(path / kTextName).error}) {
            ASSERT_TRUE(error);
            EXPECT_EQ(error->line, 0);
            EXPECT_EQ(error->message, "is no file that can be read");
        }
        EXPECT_EQ(AlmanacStore(path).Import(SampleSatellites(6)), AlmanacResult::NotReplaced);
        EXPECT_TRUE(SaveCurtain(path, Striped()));
        EXPECT_TRUE(SaveCurtainText(path / kTextName, Striped()));
        for (const std::string_view name : {kAlmanacName, kCurtainName, kTextName}) {
            EXPECT_EQ(fs::status(path / name).type(), type) << name;
        }
        EXPECT_EQ(std::distance(fs::directory_iterator(path), {}), 3) << "something was left";
    }
}

TEST(HostileFiles, ADeviceWithoutAnEndIsNotRead)
{
    // Only read: nothing here may write near a device, in case the code under test is wrong.
    const fs::path device = "/dev/zero";
    if (!fs::is_character_file(device)) {
        GTEST_SKIP() << "no such device";
    }
    CSurveyPlanCalc calc;
    EXPECT_FALSE(calc.LoadAlmanac(device));
    EXPECT_TRUE(LoadAlmanacText(device, {}).error);
    EXPECT_TRUE(LoadCurtainText(device).error);
}

TEST(HostileFiles, APipeUnderTheTemporaryNameStopsNobody)
{
    const TemporaryFolder folder;
    const fs::path pipe = folder.Path() / "CurTain.obs.new";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(SaveCurtain(folder.Path(), Striped()));
    ASSERT_EQ(mkfifo(AlmanacTemporaryPath(folder.Path()).c_str(), 0600), 0);
    EXPECT_EQ(AlmanacStore(folder.Path()).Import(SampleSatellites(6)), AlmanacResult::Done);
    EXPECT_EQ(ReadAlmanacFile(folder.Path() / kAlmanacName), SampleFile(6));
}

} // namespace
} // namespace fieldcore

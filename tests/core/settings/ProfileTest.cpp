#include "core/settings/Profile.h"

#include "tests/core/platform/TemporaryFolder.h"

#include <filesystem>
#include <initializer_list>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;

constexpr const char* kTemporary = "$#TEMP.TMP";

TEST(Profile, MixesNoChangesOfTwoWriters)
{
    const TemporaryFolder folder;
    const fs::path file = folder.Path() / "p.ini";
    constexpr int kEach = 40;
    const auto write = [&file](const std::wstring& name) {
        for (int i = 0; i < kEach; ++i) {
            EXPECT_EQ(WriteProfile(L"S", name + std::to_wstring(i), L"v", file), 1);
        }
    };
    std::thread other([&write] { write(L"a"); });
    write(L"b");
    other.join();
    for (const std::wstring name : {L"a", L"b"}) {
        for (int i = 0; i < kEach; ++i) {
            std::wstring value;
            EXPECT_EQ(ReadProfile(L"S", name + std::to_wstring(i), L"", value, file), 1) << i;
        }
    }
}

TEST(Profile, KeepsWhatBelongsToTheFile)
{
    const TemporaryFolder folder;
    const fs::path file = folder.Write("real/p.ini", "");
    const fs::path link = folder.Link("link.ini", "real/p.ini");
    ASSERT_EQ(chmod(file.c_str(), 0640), 0);
    EXPECT_EQ(WriteProfile(L"S", L"K", L"v", link), 1);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(ContentOf(file), "[S]\r\nK=v\r\n");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
}

TEST(Profile, LeavesAloneWhatIsNoProfile)
{
    const TemporaryFolder folder;
    const fs::path pipe = folder.Path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const fs::path huge = folder.Write("huge.ini", "[S]\r\nK=v\r\n");
    fs::resize_file(huge, kMaxProfileBytes + 1);
    for (const fs::path& file : {pipe, folder.Path(), huge, folder.Path() / "missing" / "p.ini"}) {
        SCOPED_TRACE(file);
        std::wstring value;
        EXPECT_EQ(ReadProfile(L"S", L"K", L"default", value, file), 0);
        EXPECT_EQ(value, L"default");
        EXPECT_EQ(WriteProfile(L"S", L"K", L"v", file), 0);
    }
}

TEST(Profile, WritesToNothingThatOthersLeftUnderTheTemporaryName)
{
    const mode_t mask = umask(027);
    for (const std::string left : {"link", "second name", "pipe", "file of everybody"}) {
        SCOPED_TRACE(left);
        const TemporaryFolder folder;
        const fs::path victim = folder.Write("victim", "kept");
        const fs::path file = folder.Path() / "p.ini";
        const fs::path temporary = folder.Path() / kTemporary;
        if (left == "link") {
            fs::create_symlink(victim, temporary);
        } else if (left == "second name") {
            fs::create_hard_link(victim, temporary);
        } else if (left == "pipe") {
            ASSERT_EQ(mkfifo(temporary.c_str(), 0666), 0);
        } else {
            folder.Write(kTemporary, "theirs");
            ASSERT_EQ(chmod(temporary.c_str(), 0666), 0);
            if (geteuid() == 0) { // else it is at least its mode
                ASSERT_EQ(chown(temporary.c_str(), 65534, 65534), 0);
            }
        }
        EXPECT_EQ(WriteProfile(L"S", L"K", L"v", file), 1);
        EXPECT_EQ(ContentOf(victim), "kept");
        struct stat written = {};
        EXPECT_EQ(lstat(file.c_str(), &written), 0);
        EXPECT_EQ(written.st_mode, static_cast<mode_t>(S_IFREG | 0640));
        EXPECT_EQ(written.st_nlink, 1U);
        EXPECT_EQ(written.st_uid, geteuid());
    }
    umask(mask);
}

} // namespace
} // namespace fieldcore

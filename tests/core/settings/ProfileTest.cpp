#include "core/settings/Profile.h"

#include "tests/core/platform/TemporaryFolder.h"
#include "tests/core/settings/FileSizeLimit.h"
#include "tests/core/settings/Writer.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;
using testing::FileSizeLimit;
using testing::Writer;

constexpr const char* kTemporary = "$#TEMP.TMP";

std::string Content(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Does what the system's own does, writes down each call, and fails one of them when asked to.
class RecordedOperations final : public FileOperations
{
public:
    enum class Call
    {
        Open,
        Write,
        Sync,
        Close,
        Rename,
        SyncFolder,
        Remove,
    };
    struct Entry
    {
        Call call;
        std::string name; ///< of the file; of a rename the old name
        std::string data; ///< what was written; of a rename the new name
    };

    std::error_code Open(const fs::path& file, const fs::path& like, int& handle) override
    {
        m_open = file.filename();
        return Refused(Call::Open, "") ? kFault : m_real.Open(file, like, handle);
    }
    std::error_code OpenLeft(const fs::path& file, int& handle) override
    {
        return m_real.OpenLeft(file, handle);
    }
    std::error_code Read(int handle, std::span<char> bytes, std::size_t& count) override
    {
        return m_real.Read(handle, bytes, count);
    }
    std::error_code Cut(int handle, std::uint64_t size) override
    {
        return m_real.Cut(handle, size);
    }
    std::error_code Write(int handle, std::string_view bytes) override
    {
        return Refused(Call::Write, bytes) ? kFault : m_real.Write(handle, bytes);
    }
    std::error_code Sync(int handle) override
    {
        return Refused(Call::Sync, "") ? kFault : m_real.Sync(handle);
    }
    void Close(int handle) override
    {
        entries.push_back({Call::Close, m_open, ""});
        m_real.Close(handle);
    }
    std::error_code Rename(const fs::path& from, const fs::path& to) override
    {
        m_open = from.filename();
        return Refused(Call::Rename, to.filename().string()) ? kFault : m_real.Rename(from, to);
    }
    std::error_code SyncFolder(const fs::path& folder) override
    {
        return Refused(Call::SyncFolder, "") ? kFault : m_real.SyncFolder(folder);
    }
    void Remove(const fs::path& file) override
    {
        entries.push_back({Call::Remove, file.filename(), ""});
        m_real.Remove(file);
    }

    std::vector<Entry> entries;
    std::optional<Call> refused;

private:
    const std::error_code kFault = std::make_error_code(std::errc::io_error);

    bool Refused(Call call, std::string_view data)
    {
        if (call == refused) {
            return true;
        }
        entries.push_back({call, m_open, std::string(data)});
        return false;
    }

    PosixFileOperations m_real;
    std::string m_open;
};

using Call = RecordedOperations::Call;

/// A disk that keeps for sure only what was synced: after a power cut a file that was not is empty,
/// and of the changes to names any first part may have been kept.
class Disk
{
public:
    using Names = std::map<std::string, int>;

    explicit Disk(const std::string& name, const std::string& content)
        : m_synced{content}, m_cached{content}, m_states{Names{{name, 0}}}
    {}

    void Do(const RecordedOperations::Entry& entry)
    {
        Names names = m_states.back();
        switch (entry.call) {
        case Call::Open:
            names[entry.name] = static_cast<int>(m_cached.size());
            m_cached.emplace_back();
            m_synced.emplace_back();
            break;
        case Call::Write:
            m_cached[At(names, entry.name)] += entry.data;
            return;
        case Call::Sync:
            m_synced[At(names, entry.name)] = m_cached[At(names, entry.name)];
            return;
        case Call::Rename:
            names[entry.data] = names.at(entry.name);
            names.erase(entry.name);
            break;
        case Call::SyncFolder:
            m_states = {names};
            return;
        case Call::Remove:
            names.erase(entry.name);
            break;
        case Call::Close:
            return;
        }
        m_states.push_back(names);
    }

    /// What may be found under @p name after a power cut now.
    [[nodiscard]] std::vector<std::string> AfterPowerCut(const std::string& name) const
    {
        std::vector<std::string> found;
        for (const Names& names : m_states) {
            found.push_back(names.count(name) != 0 ? m_synced[At(names, name)] : "no file");
        }
        return found;
    }

private:
    static std::size_t At(const Names& names, const std::string& name)
    {
        return static_cast<std::size_t>(names.at(name));
    }

    std::vector<std::string> m_synced; // by file
    std::vector<std::string> m_cached; // by file
    std::vector<Names> m_states;       // since the folder was synced
};

TEST(Profile, IsOldOrNewAfterAPowerCutAtAnyCall)
{
    const TemporaryFolder folder;
    const std::string before = "[S]\r\nK=old\r\n";
    const std::string after = "[S]\r\nK=new\r\n";
    const fs::path file = folder.Write("p.ini", before);
    RecordedOperations operations;
    ASSERT_EQ(WriteProfile(L"S", L"K", L"new", file, operations), 1);
    ASSERT_EQ(Content(file), after);

    Disk disk("p.ini", before);
    for (std::size_t call = 0; call <= operations.entries.size(); ++call) {
        const bool done = call == operations.entries.size();
        for (const std::string& found : disk.AfterPowerCut("p.ini")) {
            EXPECT_TRUE(found == after || (found == before && !done)) << call << ": " << found;
        }
        if (!done) {
            disk.Do(operations.entries[call]);
        }
    }
}

TEST(Profile, KeepsTheOldFileWhenACallFails)
{
    struct Row
    {
        const char* fault;
        Call call;
    };
    const Row rows[] = {
        {"open", Call::Open},
        {"write", Call::Write},
        {"sync", Call::Sync},
        {"rename", Call::Rename},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        const TemporaryFolder folder;
        const fs::path file = folder.Write("p.ini", "[S]\r\nK=old\r\n");
        RecordedOperations operations;
        operations.refused = row.call;
        EXPECT_EQ(WriteProfile(L"S", L"K", L"new", file, operations), 0);
        EXPECT_EQ(Content(file), "[S]\r\nK=old\r\n");
        EXPECT_FALSE(fs::exists(folder.Path() / kTemporary));
        EXPECT_EQ(WriteProfile(L"S", L"K", L"new", file), 1); // nothing is left locked
    }
}

TEST(Profile, KeepsTheOldFileOnAFullDisk)
{
    const TemporaryFolder folder;
    const std::string before = "[S]\r\nA=" + std::string(200, 'x') + "\r\n";
    const fs::path file = folder.Write("p.ini", before);
    {
        const FileSizeLimit limit(before.size() + 3);
        EXPECT_EQ(WriteProfile(L"S", L"K", L"new", file), 0);
    }
    EXPECT_EQ(Content(file), before);
    EXPECT_FALSE(fs::exists(folder.Path() / kTemporary));
}

TEST(Profile, IsOldOrNewAfterAKill)
{
    std::mt19937 random(19800106);
    const TemporaryFolder folder;
    const fs::path file = folder.Path() / "p.ini";
    for (int i = 0; i < 100; ++i) {
        fs::remove(file);
        Writer writer({"profile", file.string()});
        writer.Await(1 + random() % 6);
        const std::size_t written = writer.Kill(std::chrono::microseconds(random() % 1500));
        // The last that was acknowledged, or the one that was under way.
        const auto entry = [](std::size_t number) {
            return "[S]\r\nK=" + std::to_string(number) + std::string(200, 'x') + "\r\n";
        };
        const std::string content = Content(file);
        ASSERT_TRUE(content == entry(written) || content == entry(written + 1)) << i << content;
    }
    EXPECT_EQ(WriteProfile(L"S", L"K", L"free", file), 1); // whatever temporary file was left
    EXPECT_EQ(Content(file), "[S]\r\nK=free\r\n");
}

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
    EXPECT_EQ(Content(file), "[S]\r\nK=v\r\n");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
}

TEST(Profile, LeavesAloneWhatIsNoProfile)
{
    const TemporaryFolder folder;
    const fs::path pipe = folder.Path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const fs::path huge = folder.Write("huge.ini", "[S]\r\nK=v\r\n");
    fs::resize_file(huge, kMaxProfileBytes + 1);
    struct Row
    {
        const char* fault;
        fs::path file;
    };
    const Row rows[] = {
        {"waits for a pipe", pipe},
        {"a folder", folder.Path()},
        {"a file too large", huge},
        {"no folder to write in", folder.Path() / "missing" / "p.ini"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        std::wstring value;
        EXPECT_EQ(ReadProfile(L"S", L"K", L"default", value, row.file), 0);
        EXPECT_EQ(value, L"default");
        EXPECT_EQ(WriteProfile(L"S", L"K", L"v", row.file), 0);
    }
}

TEST(Profile, WritesToNothingThatOthersLeftUnderTheTemporaryName)
{
    struct Row
    {
        const char* left;
        std::function<void(const fs::path& victim, const fs::path& temporary)> make;
    };
    const Row rows[] = {
        {"a link", [](const fs::path& victim,
                      const fs::path& temporary) { fs::create_symlink(victim, temporary); }},
        {"a second name of a file",
         [](const fs::path& victim, const fs::path& temporary) {
             fs::create_hard_link(victim, temporary);
         }},
        {"a pipe",
         [](const fs::path&, const fs::path& temporary) {
             ASSERT_EQ(mkfifo(temporary.c_str(), 0666), 0);
         }},
        {"a file that everybody may write to",
         [](const fs::path&, const fs::path& temporary) {
             std::ofstream(temporary) << "theirs";
             ASSERT_EQ(chmod(temporary.c_str(), 0666), 0);
             if (geteuid() == 0) { // else it is at least its mode
                 ASSERT_EQ(chown(temporary.c_str(), 65534, 65534), 0);
             }
         }},
    };
    const mode_t mask = umask(027);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.left);
        const TemporaryFolder folder;
        const fs::path victim = folder.Write("victim", "kept");
        const fs::path file = folder.Path() / "p.ini";
        row.make(victim, folder.Path() / kTemporary);
        EXPECT_EQ(WriteProfile(L"S", L"K", L"v", file), 1);
        EXPECT_EQ(Content(victim), "kept");
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

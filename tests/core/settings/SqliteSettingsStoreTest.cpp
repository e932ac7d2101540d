#include "core/platform/SqliteSettingsStore.h"

#include "tests/core/platform/TemporaryFolder.h"
#include "tests/core/settings/FileSizeLimit.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ProofSize.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <list>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include <grp.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;
using testing::FileSizeLimit;
using testing::Worker;

constexpr auto kCreate = KeyOpening::Create;

/// Runs SQL in a settings file from outside.
/// @return the last column that came
std::string Sql(const fs::path& file, const std::string& sql)
{
    sqlite3* database = nullptr;
    std::string answer;
    char* fault = nullptr;
    sqlite3_open(file.c_str(), &database);
    const auto keep = [](void* target, int columns, char** values, char**) {
        *static_cast<std::string*>(target) = values[columns - 1];
        return 0;
    };
    sqlite3_exec(database, sql.c_str(), keep, &answer, &fault);
    EXPECT_EQ(fault, nullptr) << fault;
    sqlite3_free(fault);
    sqlite3_close(database);
    return answer;
}

std::uint32_t NumberIn(SettingsStore& store, std::wstring_view key, std::wstring_view name)
{
    const SettingsRead read = store.Get(key, name);
    const auto* number = std::get_if<std::uint32_t>(&read.value);
    return read.state == SettingsReadState::Found && number != nullptr ? *number : 0xDEAD;
}

/// A settings file with enough in it for several pages, and without the log, from which damaged
/// pages could be made good.
fs::path FilledFile(const TemporaryFolder& folder)
{
    fs::path file = folder.Path() / "user.db";
    {
        SqliteSettingsStore store(file);
        SettingsBatch batch(store);
        const std::wstring text(100, L'x');
        for (int i = 0; i < 300; ++i) {
            EXPECT_TRUE(store.Set(L"K", L"n" + std::to_wstring(i), text, kCreate));
        }
        EXPECT_TRUE(batch.Commit());
    }
    fs::remove(file.string() + "-wal");
    return file;
}

TEST(SqliteSettingsStore, RefusesRowsThatAreNoSetting)
{
    const std::tuple<const char*, const char*, SettingsReadState> rows[] = {
        {"nothing wrong", "data = 5", SettingsReadState::Found},
        {"negative number", "data = -1", SettingsReadState::Failed},
        {"number of more than 32 bits", "data = 4294967296", SettingsReadState::Failed},
        {"number that is a text", "data = '5'", SettingsReadState::Failed},
        {"number with a fraction", "data = 5.5", SettingsReadState::Failed},
        {"text that is bytes", "type = 1, data = x'35'", SettingsReadState::Failed},
        {"bytes that are a number", "type = 3", SettingsReadState::Failed},
        {"unknown type", "type = 4", SettingsReadState::Failed},
        {"text that is no UTF-8", "type = 1, data = CAST(x'FFC0' AS TEXT)",
         SettingsReadState::Found},
    };
    const TemporaryFolder folder;
    const fs::path file = folder.Path() / "user.db";
    SqliteSettingsStore store(file);
    for (const auto& [fault, change, state] : rows) {
        SCOPED_TRACE(fault);
        ASSERT_TRUE(store.Set(L"K", L"n", std::uint32_t{5}, kCreate));
        Sql(file, std::string("UPDATE value SET ") + change + " WHERE folded_name = 'n'");
        EXPECT_EQ(store.Get(L"K", L"n").state, state);
        EXPECT_EQ(store.Values(L"K").value().size(), state == SettingsReadState::Found ? 1U : 0U);
    }
}

TEST(SqliteSettingsStore, SetsADamagedFileAside)
{
    const auto overwrite = [](std::streamoff at, std::size_t count) {
        return [at, count](const fs::path& file) {
            std::fstream out(file, std::ios::binary | std::ios::in | std::ios::out);
            out.seekp(at) << std::string(count, '\xA5');
        };
    };
    const std::tuple<const char*, std::function<void(const fs::path&)>, bool> rows[] = {
        {"a sound file not kept", [](const fs::path&) {}, false},
        {"not a database", overwrite(0, 100), true},
        {"a page in the middle", overwrite(3 * 4096L, 2000), true},
        {"cut off", [](const fs::path& file) { fs::resize_file(file, 5000); }, true},
        {"cut in its header", [](const fs::path& file) { fs::resize_file(file, 50); }, true},
    };
    for (const auto& [fault, damage, setAside] : rows) {
        SCOPED_TRACE(fault);
        const TemporaryFolder folder;
        const fs::path file = FilledFile(folder);
        damage(file);
        const std::string damaged = ContentOf(file);
        folder.Write("user.db.damaged-1", "an older one");
        SqliteSettingsStore store(file);
        const fs::path aside = folder.Path() / "user.db.damaged-2";
        const SettingsNotice notice = store.TakeNotice();
        EXPECT_EQ(notice.kind == SettingsNotice::Kind::SetAside, setAside);
        EXPECT_EQ(notice.Words().find(aside.string()) != std::string::npos, setAside);
        EXPECT_TRUE(store.TakeNotice().IsEmpty());
        EXPECT_EQ(ContentOf(aside) == damaged, setAside);
        EXPECT_EQ(ContentOf(folder.Path() / "user.db.damaged-1"), "an older one");
        EXPECT_EQ(store.Values(L"K").value().size(), setAside ? 0U : 300U);
        EXPECT_TRUE(store.Set(L"K", L"n", std::uint32_t{1}, kCreate));
        EXPECT_EQ(Sql(file, "PRAGMA integrity_check"), "ok");
    }
}

TEST(SqliteSettingsStore, LeavesASoundFileThatItCannotUse)
{
    const TemporaryFolder folder;
    for (const char* const change : {"PRAGMA application_id = 1", "DROP TABLE value"}) {
        SCOPED_TRACE(change);
        const fs::path file = folder.Path() / change / "user.db";
        fs::create_directory(file.parent_path());
        fs::copy_file(FilledFile(TemporaryFolder()), file);
        Sql(file, change);
        const std::string before = ContentOf(file);
        {
            SqliteSettingsStore store(file);
            EXPECT_EQ(store.TakeNotice().kind, SettingsNotice::Kind::NotRead);
            EXPECT_FALSE(store.IsKept());
            EXPECT_TRUE(store.Set(L"K", L"n", std::uint32_t{7}, kCreate));
        }
        EXPECT_EQ(ContentOf(file), before);
    }
}

TEST(SqliteSettingsStore, WorksInMemoryWhereNothingCanBeWritten)
{
    const TemporaryFolder folder;
    const fs::path pipe = folder.Path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const fs::path plain = folder.Write("folder/plain", "");
    for (const fs::path& file : {pipe, plain.parent_path(), plain / "below" / "user.db"}) {
        SCOPED_TRACE(file);
        SqliteSettingsStore store(file);
        const SettingsNotice notice = store.TakeNotice();
        EXPECT_EQ(notice.kind, SettingsNotice::Kind::NotKept);
        EXPECT_NE(notice.Words().find("cannot be saved"), std::string::npos);
        EXPECT_TRUE(store.TakeNotice().IsEmpty());
        EXPECT_TRUE(store.Set(L"K", L"n", std::uint32_t{7}, kCreate));
        EXPECT_EQ(NumberIn(store, L"k", L"N"), 7U);
    }
    EXPECT_TRUE(fs::is_fifo(pipe) && fs::is_regular_file(plain)) << "they are not ours";

    // What is there can still be read, also where the path has what means something in an address.
    const fs::path made = FilledFile(folder);
    const std::string before = ContentOf(made);
    const std::string later = "later-format"; // of which SQLite writes none
    for (const std::string below :
         {"plain-name", "what?mode=rw", "50%41", "a#b", "日本 語&x", later.c_str()}) {
        SCOPED_TRACE(below);
        std::string bytes = before;
        bytes[18] = below == later ? 3 : bytes[18];
        const fs::path file = folder.Write(below + "/user.db", bytes);
        if (below != later) {
            fs::create_directories(fs::path(file.string() + ".lock")); // it cannot be locked
        }
        SqliteSettingsStore readOnly(file);
        EXPECT_EQ(readOnly.TakeNotice().file, file.string());
        EXPECT_EQ(readOnly.Values(L"K").value().size(), 300U);
        EXPECT_TRUE(readOnly.Set(L"K", L"n", std::uint32_t{7}, kCreate));
        EXPECT_EQ(NumberIn(readOnly, L"K", L"n"), 7U);
        EXPECT_EQ(ContentOf(file), bytes);
    }
}

/// Runs @p check in a process that has no more rights than the modes of files give, even if this
/// one is the administrator's.
void AsAnyUser(const std::function<void()>& check)
{
    const int result = testing::ResultInAChild([&] {
        constexpr uid_t kNobody = 65534;
        if (geteuid() == 0 && (setgroups(0, nullptr) != 0 || setuid(kNobody) != 0)) {
            return 2;
        }
        check();
        return ::testing::Test::HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(result, 0);
}

TEST(SqliteSettingsStore, ReadsItsLogWithItOrSaysThatItCannot)
{
    constexpr auto kNotKept = SettingsNotice::Kind::NotKept;
    constexpr auto kNotRead = SettingsNotice::Kind::NotRead;
    // The suffixes behind "user.db" of the files that are there, and of the unreadable one.
    using Row = std::tuple<const char*, std::vector<std::string>, std::string, SettingsNotice::Kind,
                           std::uint32_t>;
    const Row rows[] = {
        {"the log is not read", {"", "-wal", "-shm"}, "none", kNotKept, 2},
        {"an old file without a log is not read", {""}, "none", kNotKept, 1},
        {"the old value without the log's index", {"", "-wal"}, "none", kNotRead, 0xDEAD},
        {"the old value without rights", {"", "-wal", "-shm"}, "-wal", kNotRead, 0xDEAD},
    };
    const TemporaryFolder made;
    SqliteSettingsStore store(made.Path() / "user.db");
    ASSERT_TRUE(store.Set(L"K", L"n", std::uint32_t{1}, kCreate));
    Sql(made.Path() / "user.db", "PRAGMA wal_checkpoint");
    ASSERT_TRUE(store.Set(L"K", L"n", std::uint32_t{2}, kCreate)); // in the log only
    for (const auto& [fault, files, unreadable, told, number] : rows) {
        SCOPED_TRACE(fault);
        const TemporaryFolder folder;
        const std::string file = folder.Path() / "user.db";
        std::vector<std::string> before;
        for (const std::string& suffix : files) {
            fs::copy_file(made.Path() / ("user.db" + suffix), file + suffix);
            before.push_back(ContentOf(file + suffix));
            chmod((file + suffix).c_str(), suffix == unreadable ? 0 : 0444);
        }
        chmod(folder.Path().c_str(), 0555);
        AsAnyUser([&, number = number, told = told] {
            SqliteSettingsStore readOnly(file);
            EXPECT_EQ(NumberIn(readOnly, L"K", L"n"), number);
            EXPECT_EQ(readOnly.TakeNotice().kind, told);
            EXPECT_FALSE(readOnly.IsKept());
        });
        chmod(folder.Path().c_str(), 0755);
        for (std::size_t i = 0; i < files.size(); ++i) {
            EXPECT_EQ(ContentOf(file + files[i]), before[i]);
        }
    }
}

TEST(SqliteSettingsStore, TellsWhereItsFileAloneCannotBeWritten)
{
    const TemporaryFolder folder;
    const fs::path file = FilledFile(folder);
    chmod(file.c_str(), 0444);
    chmod(folder.Path().c_str(), 0777);
    fs::remove(file.string() + ".lock");
    fs::remove(file.string() + "-shm");
    AsAnyUser([&] {
        SqliteSettingsStore store(file);
        EXPECT_EQ(store.TakeNotice().kind, SettingsNotice::Kind::NotKept);
        EXPECT_EQ(store.Values(L"K").value().size(), 300U);
    });
}

TEST(SqliteSettingsStore, LocksOutWhoMayNotWrite)
{
    const TemporaryFolder folder;
    const auto modes = [](const fs::path& file) {
        std::string text;
        for (const std::string suffix : {"", "-wal", "-shm", ".lock"}) {
            struct stat status = {};
            stat((file.string() + suffix).c_str(), &status);
            text += (std::ostringstream() << std::oct << (status.st_mode & 0777U) << ' ').str();
        }
        return text;
    };
    const fs::path ours = folder.Path() / "ours" / "user.db";
    static_cast<void>(SqliteSettingsStore(ours));
    EXPECT_EQ(modes(ours), "600 600 600 200 ");
    EXPECT_EQ(fs::status(ours.parent_path()).permissions(), fs::perms::owner_all);
    const fs::path shared = folder.Path() / "shared" / "machine.db";
    static_cast<void>(SqliteSettingsStore(shared, SettingsSharing::Shared));
    EXPECT_EQ(modes(shared), "644 644 644 200 ");

    // As earlier versions made them.
    chmod((shared.string() + ".lock").c_str(), 0644);
    static_cast<void>(SqliteSettingsStore(shared));
    EXPECT_EQ(modes(shared), "600 600 600 200 ");
}

TEST(SqliteSettingsStore, KeepsItsLogAtOneLength)
{
    const TemporaryFolder folder;
    const fs::path file = folder.Path() / "user.db";
    const fs::path log = file.string() + "-wal";
    std::uintmax_t grown = 0;
    for (int time = 0; time < 2; ++time) { // closing the file keeps the log
        SqliteSettingsStore store(file);
        grown = time == 0 ? fs::file_size(log) : grown;
        for (std::uint32_t i = 0; i < 250; ++i) {
            ASSERT_TRUE(store.Set(L"K", L"n", i, kCreate));
        }
        EXPECT_EQ(fs::file_size(log), grown);
    }
    EXPECT_GE(grown, 256U * 4096U);
}

TEST(SqliteSettingsStore, LosesNothingOnAFullDisk)
{
    const TemporaryFolder folder;
    const fs::path file = folder.Path() / "user.db";
    SqliteSettingsStore store(file);
    ASSERT_TRUE(store.Set(L"K", L"n", std::uint32_t{1}, kCreate));
    const SettingsValue large = std::vector<std::uint8_t>(500'000, 1);
    std::uint32_t stored = 0;
    {
        const FileSizeLimit limit(2'000'000);
        while (stored < 100 &&
               store.Set(L"K", L"large" + std::to_wstring(stored), large, kCreate)) {
            ++stored;
        }
        SettingsBatch batch(store);
        EXPECT_FALSE(store.Set(L"K", L"lost", large, kCreate) && batch.Commit());
    }
    EXPECT_GT(stored, 0U);
    EXPECT_LT(stored, 100U);
    EXPECT_EQ(store.Values(L"K").value().size(), stored + 1);
    EXPECT_TRUE(store.Set(L"K", L"n", std::uint32_t{2}, kCreate)); // room again
    EXPECT_EQ(NumberIn(store, L"K", L"n"), 2U);
    EXPECT_EQ(Sql(file, "PRAGMA integrity_check"), "ok");
}

/// Stores the numbers 0, 1, 2... under names that begin with @p name.
void StoreNumbers(const fs::path& file, const std::wstring& name, std::uint32_t count,
                  const Worker::Acknowledge& acknowledge)
{
    SqliteSettingsStore store(file);
    for (std::uint32_t number = 0; number < count; ++number) {
        if (!store.Set(L"K", name + std::to_wstring(number), number, kCreate) || !acknowledge()) {
            return;
        }
    }
}

/// How many of them are there, and what they should be.
int StoredNumbers(const fs::path& file, const std::wstring& name)
{
    SqliteSettingsStore store(file);
    std::uint32_t count = 0;
    while (NumberIn(store, L"K", name + std::to_wstring(count)) == count) {
        ++count;
    }
    EXPECT_TRUE(store.TakeNotice().IsEmpty());
    return static_cast<int>(count);
}

TEST(SqliteSettingsStore, KeepsWhatWasWrittenBeforeAKill)
{
    std::mt19937 random(testing::Seed());
    const TemporaryFolder folder;
    const int kills = testing::ProofSize("FIELDCORE_KILLS", 100);
    for (int i = 0; i < kills; ++i) {
        // Every fourth time a new file, so that some are killed while they make it.
        const fs::path file = folder.Path() / std::to_string(i / 4) / "user.db";
        const std::wstring name = L"kill" + std::to_wstring(i) + L"-";
        Worker writer([&](const Worker::Acknowledge& acknowledge) {
            StoreNumbers(file, name, 1'000'000, acknowledge);
        });
        const int wanted = static_cast<int>(random() % 8);
        ASSERT_EQ(writer.Await(wanted), wanted) << i << " cannot write any more";
        const int acknowledged =
            writer.Kill(std::chrono::microseconds(random() % (i % 2 == 0 ? 8000 : 500)));
        if (i % 3 != 0) { // else the next writer is the first to open what was left
            ASSERT_GE(StoredNumbers(file, name), acknowledged) << i;
            ASSERT_EQ(Sql(file, "PRAGMA integrity_check"), "ok") << i;
        }
    }
    testing::Measured(kills, "kills");
}

TEST(SqliteSettingsStore, ServesSeveralProcesses)
{
    const TemporaryFolder folder;
    const fs::path file = folder.Path() / "user.db";
    constexpr int kCount = 200;
    const std::wstring names[] = {L"one", L"two", L"three"};
    std::list<Worker> writers;
    for (const std::wstring& name : names) {
        writers.emplace_back([&](const Worker::Acknowledge& acknowledge) {
            StoreNumbers(file, name, kCount, acknowledge);
        });
    }
    for (Worker& writer : writers) {
        EXPECT_EQ(writer.Await(), kCount);
    }
    for (const std::wstring& name : names) {
        EXPECT_EQ(StoredNumbers(file, name), kCount);
    }
}

TEST(SqliteSettingsStore, SeesWhatAnotherOneDoes)
{
    const TemporaryFolder folder;
    SqliteSettingsStore ours(folder.Path() / "user.db");
    SqliteSettingsStore theirs(folder.Path() / "user.db");
    ASSERT_TRUE(ours.Set(L"K", L"n", std::uint32_t{1}, kCreate));
    EXPECT_EQ(NumberIn(theirs, L"K", L"n"), 1U);
    ASSERT_TRUE(theirs.DeleteKey(L"K"));
    EXPECT_EQ(ours.Get(L"K", L"n").state, SettingsReadState::Missing);
    EXPECT_FALSE(ours.Set(L"K", L"n", std::uint32_t{2}, KeyOpening::Existing));
    SettingsBatch batch(theirs);
    ASSERT_TRUE(theirs.Set(L"K", L"n", std::uint32_t{3}, kCreate));
    EXPECT_EQ(ours.Get(L"K", L"n").state, SettingsReadState::Missing);
    ASSERT_TRUE(batch.Commit());
    EXPECT_EQ(NumberIn(ours, L"K", L"n"), 3U);
}

} // namespace
} // namespace fieldcore

#include "core/platform/SqliteSettingsStore.h"

#include "core/settings/SettingsText.h"
#include "tests/core/link/ProcessCounts.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/support/FragileDisk.h"
#include "tests/support/ProofSize.h"
#include "tests/support/Refusal.h"
#include "tests/support/SqliteFileLayer.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iterator>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;
using testing::FileCall;
using testing::FragileDisk;
using testing::SqliteFileLayer;

constexpr auto kCreate = KeyOpening::Create;

std::string AsText(SettingsStore& store)
{
    const auto keys = ReadSettingsTree(store, L"");
    return keys ? FormatSettingsText(*keys) : "cannot be read";
}

/// What somebody finds who opens the store of @p folder after the fault.
std::string FoundLater(const TemporaryFolder& folder)
{
    SqliteSettingsStore store(folder.Path() / "user.db");
    const std::string found = AsText(store);
    EXPECT_EQ(store.TakeNotice().Words(), "");
    EXPECT_FALSE(fs::exists(folder.Path() / "user.db.damaged-1")) << "thrown away";
    return found;
}

/// A store whose newest values are in the log only: number "n" of key K is 1 in the file, and 2.
void Fill(const fs::path& folder)
{
    const TemporaryFolder made;
    for (const std::uint32_t value : {1U, 2U}) {
        SqliteSettingsStore store(made.Path() / "user.db");
        ASSERT_TRUE(store.Set(L"K", L"n", value, kCreate));
        ASSERT_TRUE(store.Set(L"K\\L", L"m", std::uint32_t{3}, kCreate));
        if (value == 2) { // closing would copy the log into the file
            for (const char* const name : {"user.db", "user.db-wal"}) {
                fs::copy_file(made.Path() / name, folder / name);
            }
        }
    }
}

bool ReadsWhatWasStored(SettingsStore& store)
{
    const SettingsRead read = store.Get(L"K", L"n");
    if (read.state == SettingsReadState::Found) {
        EXPECT_EQ(read.value, SettingsValue(std::uint32_t{2})) << "an old one";
    }
    EXPECT_TRUE(read.state != SettingsReadState::Missing || !store.IsKept()) << "not told";
    return read.state == SettingsReadState::Found;
}

bool ListsWhatWasStored(SettingsStore& store)
{
    const std::string text = AsText(store);
    const bool isWhole = text.find("[K\\L]\n\"m\" = number 3\n") != std::string::npos;
    EXPECT_TRUE(isWhole || text == "cannot be read" || !store.IsKept()) << text;
    return isWhole;
}

bool StoresTwoTogether(SettingsStore& store)
{
    SettingsBatch batch(store);
    return batch.IsOpen() && store.Set(L"K", L"n", std::uint32_t{7}, kCreate) &&
           store.Set(L"K\\New", L"n", std::uint32_t{7}, kCreate) && batch.Commit();
}

/// Each call of SQLite's file layer, and each time that SQLite asks for memory, fails, once and
/// from then on, in each operation: nothing that was stored is lost, an operation that is said to
/// be done is done, and of one that is not either all was stored or nothing.
TEST(SettingsFaults, EveryCallMayFail)
{
    struct Row
    {
        const char* operation;
        bool isNew; // there is no file yet
        std::function<bool(SettingsStore&)> run;
    };
    const auto setInK = [](SettingsStore& store) {
        return store.Set(L"K", L"n", std::uint32_t{7}, kCreate);
    };
    const Row rows[] = {
        {"get", false, ReadsWhatWasStored},
        {"list", false, ListsWhatWasStored},
        {"set", false, setInK},
        {"set in a new key", false,
         [](SettingsStore& store) { return store.Set(L"N\\K", L"n", std::uint32_t{7}, kCreate); }},
        {"set in a new file", true, setInK},
        {"two together", false, StoresTwoTogether},
        {"delete a value", false,
         [](SettingsStore& store) { return store.DeleteValue(L"K", L"n"); }},
        {"delete a key", false, [](SettingsStore& store) { return store.DeleteKey(L"K"); }},
    };
    const TemporaryFolder filled;
    Fill(filled.Path());
    for (std::size_t at = 0; at < 2 * std::size(rows); ++at) {
        const Row& row = rows[at / 2];
        const bool isOfMemory = at % 2 == 1;
        std::string before;
        std::string after;
        const int cases = testing::RefuseInTurn(row.operation, [&](testing::Refusal& refusal) {
            const TemporaryFolder folder;
            if (!row.isNew) {
                fs::copy(filled.Path(), folder.Path());
            }
            before = refusal.n == 0 ? FoundLater(folder) : before;
            const auto memory = sqlite3_memory_used();
            const auto process = testing::CountProcess();
            std::string failed;
            bool isDone = false;
            bool isTold = false;
            {
                const SqliteFileLayer layer([&](const FileCall& call) {
                    const bool fails = (call.name == "memory") == isOfMemory && refusal.IsNext();
                    failed = fails && failed.empty() ? call.name : failed;
                    return fails;
                });
                try {
                    SqliteSettingsStore store(folder.Path() / "user.db");
                    isTold = !store.TakeNotice().IsEmpty();
                    isDone = row.run(store);
                    EXPECT_EQ(store.IsKept(), !isTold);
                } catch (const std::bad_alloc&) {
                    EXPECT_TRUE(isOfMemory);
                }
            }
            SCOPED_TRACE(failed);
            EXPECT_EQ(sqlite3_memory_used(), memory);
            EXPECT_EQ(testing::CountProcessAgain(process), process);
            const std::string found = FoundLater(folder);
            after = refusal.n == 0 ? found : after;
            EXPECT_TRUE(found == after || (found == before && (!isDone || isTold))) << found;
            EXPECT_TRUE(refusal.n > 0 || (isDone && !isTold));
        });
        testing::Measured(cases, isOfMemory ? "allocations refused" : "failing calls");
    }
}

/// The power goes after each write, and of what was not synced any part is there: the settings are
/// those of the last operation that was done, or of the one under way, and never a mixture.
TEST(SettingsFaults, APowerCutLosesNothingThatWasDone)
{
    using Unsynced = FragileDisk::Unsynced;
    const TemporaryFolder folder;
    FragileDisk disk(folder.Path());
    std::vector<FileCall> steps;
    struct Done
    {
        std::size_t steps;
        std::string settings;
    };
    std::vector<Done> done;
    {
        const SqliteFileLayer layer([&](const FileCall& call) {
            for (const char* const change : {"write", "truncate", "sync", "delete"}) {
                if (call.name == change) {
                    steps.push_back(call);
                }
            }
            return false;
        });
        for (const std::uint32_t session : {1U, 2U}) { // its end copies the log into the file
            SqliteSettingsStore store(folder.Path() / "user.db");
            const auto isDone = [&] { done.push_back({steps.size(), AsText(store)}); };
            isDone();
            ASSERT_TRUE(store.Set(L"K", L"n", session, kCreate));
            isDone();
            ASSERT_TRUE(StoresTwoTogether(store));
            isDone();
            ASSERT_TRUE(store.DeleteKey(L"K"));
            isDone();
            ASSERT_TRUE(store.Set(L"Last", L"n", session, kCreate));
            isDone();
        }
    }
    done.front().steps = 0; // an empty store is what is there before it is made, too
    const auto stride = static_cast<std::size_t>(testing::ProofSize("FIELDCORE_STRIDE", 50));
    constexpr std::size_t kLastOnes = 80; // behind those that make the store
    int cases = 0;
    std::size_t last = 0;
    for (std::size_t step = 0; step < steps.size(); ++step) {
        disk.Do(steps[step]);
        if (step % stride != 0 && step + kLastOnes < steps.size()) {
            continue;
        }
        while (last + 1 < done.size() && done[last + 1].steps <= step + 1) {
            ++last;
        }
        constexpr std::pair<Unsynced, Unsynced> kLeft[] = {
            {Unsynced::Dropped, Unsynced::Dropped}, {Unsynced::Halved, Unsynced::Halved},
            {Unsynced::Kept, Unsynced::Kept},       {Unsynced::Dropped, Unsynced::Kept},
            {Unsynced::Kept, Unsynced::Dropped},
        };
        for (const auto& kinds : kLeft) {
            disk.Cut(kinds.first, kinds.second, [&](const TemporaryFolder& left) {
                ++cases;
                const std::string found = FoundLater(left);
                const std::string& next = done[std::min(last + 1, done.size() - 1)].settings;
                EXPECT_TRUE(found == done[last].settings || found == next)
                    << "cut behind step " << step << " of " << steps.size() << ", "
                    << steps[step].name << " of " << steps[step].file << ", log "
                    << static_cast<int>(kinds.first) << ", others "
                    << static_cast<int>(kinds.second) << ": " << found;
            });
        }
    }
    testing::Measured(cases, "power cuts");
}

} // namespace
} // namespace fieldcore

// Everything that replaces a file of the user's, where the disk, the power or the process fails.

#include "core/equipment/AntennaCatalogue.h"
#include "core/input/EntryList.h"
#include "core/input/Parts.h"
#include "core/link/FrameHistory.h"
#include "core/planning/AlmanacStore.h"
#include "core/planning/CurtainFile.h"
#include "core/planning/CurtainText.h"
#include "core/planning/PlanSite.h"
#include "core/planning/SkyRecord.h"
#include "core/platform/AtomicFile.h"
#include "core/platform/Utf8.h"
#include "core/settings/Profile.h"
#include "tests/core/link/ProcessCounts.h"
#include "tests/core/planning/SampleSky.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"
#include "tests/core/settings/FileSizeLimit.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileCalls.h"
#include "tests/support/FragileDisk.h"
#include "tests/support/ProofSize.h"
#include "tests/support/Refusal.h"
#include "tests/support/Scarcity.h"
#include "tests/support/VirtualReceiver.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fieldcore {
namespace {

namespace fs = std::filesystem;
using testing::FileCall;
using testing::FileCalls;
using testing::FragileDisk;
using testing::Refusal;
using testing::Scarcity;
using testing::Spared;

/// One that writes, each time something else, and what somebody finds who looks later.
struct Store
{
    const char* name;
    /// @param version  from 1
    /// @return whether it says that it is done
    bool (*write)(const fs::path& folder, int version);
    const char* file;                             ///< which is replaced; null: see found
    std::string (*found)(const fs::path& folder); ///< null: the file's bytes
    bool isInSettings = false;
};

bool WriteToProfile(const fs::path& folder, int version)
{
    return WriteProfile(L"S", L"K", std::to_wstring(version) + std::wstring(200, L'x'),
                        folder / "p.ini") == 1;
}

bool WriteTwoSites(const fs::path& folder, int version)
{
    Observer place;
    place.latitudeRad = 0.001 * version;
    return WriteSites(folder, std::vector<ListedSite>{{L"A", place}, {L"B", place}}) == 1;
}

bool WriteAlmanac(const fs::path& folder, int version)
{
    std::vector<AlmanacRecord> records;
    for (int prn = 1; prn <= 6; ++prn) {
        records.push_back(testing::SampleSatellite(prn));
        records.back().toaS = static_cast<std::uint32_t>(version);
    }
    return AlmanacStore(folder).Import(records) == AlmanacResult::Done;
}

ObstructionCurtain Level(int version)
{
    ObstructionCurtain curtain;
    curtain.fill(static_cast<std::uint8_t>(version % 90));
    return curtain;
}

bool NoteSky(const fs::path& folder, int version)
{
    SkyRecord record;
    record.BeginNotes(Clock::UtcTime(std::chrono::hours(version)));
    return !SaveSkyRecord(folder, record);
}

std::string FoundSky(const fs::path& folder)
{
    const SkyRecords found = LoadSkyRecords(folder);
    if (found.records.size() != 1 || !found.setAside.empty()) {
        return "not one whole record";
    }
    const std::vector<std::uint8_t> bytes = found.records[0].Bytes();
    return {bytes.begin(), bytes.end()};
}

bool SaveFrames(const fs::path& folder, int version)
{
    FrameHistory history(SystemClock::Instance());
    history.Add(Direction::Sent, LineUnit::Frame,
                std::vector<std::uint8_t>(60, static_cast<std::uint8_t>(version)));
    auto frames = history.After(0);
    frames[0].time = {};
    return !SaveFrameLog(folder / "frames.log", frames);
}

bool Export(const fs::path& folder, int version)
{
    const std::string text(static_cast<std::size_t>(150 + version % 50), 'x');
    return !ReplaceFile(folder / "plan.csv", "plan.csv.new", std::as_bytes(std::span(text)));
}

bool Download(const fs::path& folder, int version)
{
    const int size = 2500 + 100 * version;
    std::optional<testing::VirtualReceiver> receiver;
    {
        const Spared spared;
        receiver.emplace("file A.Q01 " + std::to_string(size) + " 2026-03-14 01:30\n");
    }
    CCommand& command = receiver->command;
    return command.OpenPort("in memory") == 1 &&
           command.DownloadFile(folder, L"A.Q01", static_cast<std::uint32_t>(size), {},
                                static_cast<std::uint32_t>(version)) == size &&
           command.GetDownloadFault() == DownloadFault::None;
}

bool ImportAntennas(const fs::path& folder, int version)
{
    // Of another length each time: by that a changed file is known within one second.
    const std::string name(static_cast<std::size_t>(1 + version % 30), 'a');
    std::ofstream(AntennaFilePath(folder))
        << "[ANTENNATYPE]\nDATA0=" << name << "\nDATA1=" << name << '\n';
    SettingsRoots roots(testing::FoldersBelow(folder));
    return AntennaCatalogue(roots).Update(SilentHost::Instance()) == 1;
}

std::string FoundAntennas(const fs::path& folder)
{
    SettingsRoots roots(testing::FoldersBelow(folder));
    const AntennaCatalogue catalogue(roots);
    std::wstring found;
    for (int type = 0; type < catalogue.GetMaxCount(); ++type) {
        found += catalogue.Type(type).value_or(AntennaType()).name + L'\n';
    }
    return ToUtf8(found);
}

bool RememberEntries(const fs::path& folder, int version)
{
    SettingsRoots roots(testing::FoldersBelow(folder));
    const std::wstring text = std::to_wstring(version);
    return CParts::WriteRegPointName(TextEntries({text, text + L"b", text + L"c"}), 10,
                                     HostReg(roots)) == 1;
}

std::string FoundEntries(const fs::path& folder)
{
    SettingsRoots roots(testing::FoldersBelow(folder));
    TextEntries list;
    EXPECT_EQ(CParts::ReadRegPointName(list, 10, HostReg(roots)), 1);
    std::wstring found;
    for (const std::wstring& text : list.Texts()) {
        found += text + L'\n';
    }
    return ToUtf8(found);
}

const Store kStores[] = {
    {"profile", WriteToProfile, "p.ini", nullptr},
    {"sites", WriteTwoSites, "GSurveyPlan.ini", nullptr},
    {"almanac", WriteAlmanac, "GSurveyPlan.alm", nullptr},
    {"curtain",
     [](const fs::path& folder, int version) { return !SaveCurtain(folder, Level(version)); },
     "CurTain.obs", nullptr},
    {"curtain as text",
     [](const fs::path& folder, int version) {
         return !SaveCurtainText(folder / "curtain.txt", Level(version));
     },
     "curtain.txt", nullptr},
    {"download", Download, "A.Q01", nullptr},
    {"frames of a log", SaveFrames, "frames.log", nullptr},
    {"exported plan or settings", Export, "plan.csv", nullptr},
    {"noted sky", NoteSky, nullptr, FoundSky},
    {"antennas", ImportAntennas, nullptr, FoundAntennas, true},
    {"remembered entries", RememberEntries, nullptr, FoundEntries, true},
};

std::string Found(const Store& store, const fs::path& folder)
{
    if (store.found != nullptr) {
        return store.found(folder);
    }
    const fs::path file = folder / store.file;
    return fs::exists(file) ? ContentOf(file) : "no file";
}

/// What is found where just this version was written.
std::string Expected(const Store& store, int version)
{
    const TemporaryFolder folder;
    EXPECT_TRUE(store.write(folder.Path(), version)) << store.name;
    return Found(store, folder.Path());
}

/// How a store was written while something was refused.
struct Attempt
{
    std::string failed;
    bool isUnsynced = false; ///< it was the folder that could not be synced
    bool isDone = false;     ///< as the store says
    bool hadMemory = true;   ///< false: it left with std::bad_alloc
};

/// @param scarce  what is refused; nothing: calls that use files
Attempt WriteWithout(const Store& store, const fs::path& folder, std::optional<Scarcity::Of> scarce,
                     Refusal& refusal)
{
    Attempt attempt;
    if (!scarce) {
        const FileCalls watched(folder, [&](const FileCall& call) {
            const bool fails = refusal.IsNext();
            if (fails && attempt.failed.empty()) {
                attempt.failed = call.name + " " + call.file;
                attempt.isUnsynced = fs::is_directory(call.file);
            }
            return fails;
        });
        attempt.isDone = store.write(folder, 2);
    } else {
        const Scarcity scarcity(*scarce, refusal.n, refusal.once);
        try {
            attempt.isDone = store.write(folder, 2);
        } catch (const std::bad_alloc&) {
            attempt.hadMemory = false;
        }
        refusal.asked = scarcity.Count();
    }
    return attempt;
}

void LeavesOldOrNew(std::optional<Scarcity::Of> scarce, const char* measured)
{
    int cases = 0;
    for (const Store& store : kStores) {
        if (!scarce && store.isInSettings) {
            continue; // these have tests of their own
        }
        const std::string before = Expected(store, 1);
        const std::string after = Expected(store, 2);
        cases += testing::RefuseInTurn(store.name, [&](Refusal& refusal) {
            const TemporaryFolder folder;
            EXPECT_TRUE(store.write(folder.Path(), 1));
            const auto process = testing::CountProcess();
            const long long blocks = testing::BlocksHeld();
            const Attempt attempt = WriteWithout(store, folder.Path(), scarce, refusal);
            SCOPED_TRACE(attempt.failed);
            const std::string found = Found(store, folder.Path());
            EXPECT_TRUE(found == after || (found == before && !attempt.isDone)) << found;
            EXPECT_TRUE(attempt.isDone || attempt.isUnsynced || !attempt.hadMemory ||
                        found == before)
                << "done, and told that it is not";
            EXPECT_TRUE(refusal.n > 0 || attempt.isDone);
            EXPECT_TRUE(refusal.n > 0 || refusal.asked > 4 || scarce == Scarcity::Of::Threads);
            EXPECT_EQ(testing::CountProcessAgain(process), process);
            EXPECT_LE(testing::BlocksHeld(), blocks + 8) << "of memory are not given back";
            EXPECT_TRUE(store.write(folder.Path(), 2));
            EXPECT_EQ(Found(store, folder.Path()), after);
        });
    }
    testing::Measured(cases, measured);
}

/// Each is refused, once and from then on: what is said to be done is done, and what is not has
/// left the old file, but where only the folder could not be synced. Nothing is left locked or
/// open.
TEST(Stores, EveryCallMayFail)
{
    LeavesOldOrNew(std::nullopt, "failing calls");
}

TEST(Stores, MemoryMayRunOut)
{
    LeavesOldOrNew(Scarcity::Of::Memory, "allocations refused");
}

TEST(Stores, ThreadsMayRunOut)
{
    LeavesOldOrNew(Scarcity::Of::Threads, "threads refused");
}

TEST(Stores, APowerCutLeavesTheOldFileOrTheNew)
{
    using Unsynced = FragileDisk::Unsynced;
    int cases = 0;
    for (const Store& store : kStores) {
        if (store.file == nullptr) {
            continue;
        }
        const TemporaryFolder folder;
        ASSERT_TRUE(store.write(folder.Path(), 1));
        FragileDisk disk(folder.Path());
        std::vector<FileCall> calls;
        {
            const FileCalls watched(folder.Path(), [&](const FileCall& call) {
                calls.push_back(call);
                return false;
            });
            ASSERT_TRUE(store.write(folder.Path(), 2));
        }
        const std::string before = Expected(store, 1);
        const std::string after = Found(store, folder.Path());
        ASSERT_NE(before, after);
        for (std::size_t step = 0; step < calls.size(); ++step) {
            disk.Do(calls[step]);
            const bool isDone = step + 1 == calls.size();
            SCOPED_TRACE(std::string(store.name) + " behind " + calls[step].name + " " +
                         calls[step].file);
            for (const auto unsynced : {Unsynced::Dropped, Unsynced::Halved, Unsynced::Kept}) {
                disk.Cut(unsynced, unsynced, [&](const TemporaryFolder& left) {
                    ++cases;
                    const std::string found = Found(store, left.Path());
                    EXPECT_TRUE(found == after || (found == before && !isDone)) << found;
                    EXPECT_TRUE(!isDone || store.write(left.Path(), 1)) << "the rest is in the way";
                });
            }
        }
    }
    testing::Measured(cases, "power cuts");
}

TEST(Stores, LoseNothingWhenTheyAreKilled)
{
    std::mt19937 random(testing::Seed());
    const int kills = testing::ProofSize("FIELDCORE_KILLS", 12);
    for (const Store& store : kStores) {
        const TemporaryFolder folder;
        int version = 0; // the last that was acknowledged
        for (int i = 0; i < kills; ++i) {
            testing::Worker writer([&](const testing::Worker::Acknowledge& acknowledge) {
                for (int next = version + 1; store.write(folder.Path(), next); ++next) {
                    acknowledge();
                }
            });
            const auto wait = static_cast<int>(random() % 4);
            ASSERT_EQ(writer.Await(wait), wait) << store.name << " could not write any more";
            version += writer.Kill(std::chrono::microseconds(random() % 3000));
            // The last that was acknowledged, or the one that was under way.
            const std::string found = Found(store, folder.Path());
            const bool isNext = found == Expected(store, version + 1);
            if (version > 0 || isNext) {
                ASSERT_TRUE(isNext || found == Expected(store, version))
                    << store.name << ", kill " << i << ", version " << version << ": " << found;
            }
            version += isNext ? 1 : 0;
        }
    }
    testing::Measured(kills * std::ssize(kStores), "kills");
}

/// Mounts a file system of 64 KiB that only this process and its children see.
bool MountSmall(const fs::path& folder)
{
    return unshare(CLONE_NEWNS) == 0 &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", folder.c_str(), "tmpfs", 0, "size=64k,mode=0777") == 0;
}

/// Where nothing can be written every writer says so, and the old file stays byte for byte.
TEST(Stores, StayWhereNothingCanBeWritten)
{
    constexpr int kCannot = 77;
    struct Row
    {
        const char* what;
        bool isMounted;
        bool (*spoil)(const fs::path& folder); ///< false: this machine does not let it
    };
    const Row rows[] = {
        {"a full file system of 64 KiB", true,
         [](const fs::path& folder) {
             std::ofstream filler(folder / "filler");
             while (filler << std::string(512, 'x') << std::flush) {
             }
             return errno == ENOSPC;
         }},
        {"a file system that is read-only", true,
         [](const fs::path& folder) {
             return mount("none", folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
         }},
        {"a folder without rights", false,
         [](const fs::path& folder) {
             constexpr uid_t kNobody = 65534; // root may write everywhere
             return chmod(folder.c_str(), 0555) == 0 && (geteuid() != 0 || setuid(kNobody) == 0);
         }},
        {"a limit of file sizes", false,
         [](const fs::path&) {
             static const testing::FileSizeLimit limit(100); // until the process ends
             return true;
         }},
    };
    int cases = 0;
    std::string skipped;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const TemporaryFolder folder;
        const int result = testing::ResultInAChild([&] {
            if (row.isMounted && !MountSmall(folder.Path())) {
                return kCannot;
            }
            std::vector<std::string> before;
            for (const Store& store : kStores) {
                if (!store.isInSettings) {
                    EXPECT_TRUE(store.write(folder.Path(), 1)) << store.name;
                    before.push_back(Found(store, folder.Path()));
                }
            }
            if (!row.spoil(folder.Path())) {
                return kCannot;
            }
            for (std::size_t i = 0; i < before.size(); ++i) {
                EXPECT_FALSE(kStores[i].write(folder.Path(), 2)) << kStores[i].name;
                EXPECT_EQ(Found(kStores[i], folder.Path()), before[i]) << kStores[i].name;
            }
            return HasFailure() ? 1 : 0;
        });
        if (result == kCannot) {
            skipped += std::string(skipped.empty() ? "" : ", ") + row.what;
        } else {
            EXPECT_EQ(result, 0) << "see above";
            ++cases;
        }
        chmod(folder.Path().c_str(), 0755);
    }
    testing::Measured(cases, "kinds of disk");
    if (!skipped.empty()) {
        GTEST_SKIP() << "this user may not mount: " << skipped;
    }
}

} // namespace
} // namespace fieldcore

#include "core/planning/SkyRecord.h"

#include "core/planning/Degrees.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;

SkyDirection At(double azimuthDeg, double elevationDeg)
{
    return {RadiansOf(azimuthDeg), RadiansOf(elevationDeg)};
}

SkyRecord Sample(double latitudeDeg = 35.1234567, Clock::UtcTime now = Clock::UtcTime(1'000'000s))
{
    SkyRecord record({RadiansOf(latitudeDeg), RadiansOf(-139.5), 70.0});
    record.BeginNotes(now);
    record.NoteTracked(At(359.9, 89.99));
    record.NoteMissed(At(2.0, 12.5));
    return record;
}

std::string TextOf(const Bytes& bytes)
{
    return {bytes.begin(), bytes.end()};
}

TEST(SkyRecord, TellsWhatIsOftenerAndForgetsSlowly)
{
    SkyRecord record;
    const SkyDirection here = At(91.0, 30.5);
    EXPECT_EQ(record.At(here), SkyRecord::Cell::Unknown);
    record.NoteMissed(here);
    EXPECT_EQ(record.At(45, 30), SkyRecord::Cell::Hidden);
    record.NoteTracked(here);
    EXPECT_EQ(record.At(here), SkyRecord::Cell::Hidden) << "as often";
    for (int i = 0; i < 10'000; ++i) {
        record.NoteTracked(here);
    }
    EXPECT_EQ(record.At(here), SkyRecord::Cell::Open);
    for (int i = 0; i < 255; ++i) {
        record.NoteMissed(here);
    }
    EXPECT_EQ(record.At(here), SkyRecord::Cell::Hidden) << "a wall that was built later";
    for (const SkyDirection& none :
         {At(10.0, -0.1), At(10.0, 90.1), At(NAN, 10.0), At(10.0, NAN)}) {
        record.NoteTracked(none);
        EXPECT_EQ(record.At(none), SkyRecord::Cell::Unknown);
    }
}

TEST(SkyRecord, ComesBackFromItsFile)
{
    const TemporaryFolder folder;
    EXPECT_TRUE(LoadSkyRecords(folder.Path()).records.empty());
    const SkyRecord record = Sample();
    ASSERT_FALSE(SaveSkyRecord(folder.Path(), record));
    ASSERT_FALSE(SaveSkyRecord(folder.Path(), record)) << "in place of the one before";
    const SkyRecords loaded = LoadSkyRecords(folder.Path());
    ASSERT_EQ(loaded.records.size(), 1U);
    EXPECT_EQ(loaded.records[0], record);
    EXPECT_EQ(loaded.records[0].At(179, 89), SkyRecord::Cell::Open);
    EXPECT_EQ(loaded.records[0].At(1, 12), SkyRecord::Cell::Hidden);
    EXPECT_EQ(loaded.records[0].Observed(), 30s);
    EXPECT_LT(DistanceM(loaded.records[0].Place(), {RadiansOf(35.1234567), RadiansOf(-139.5), 0.0}),
              0.02)
        << "m: a step of the file";
    EXPECT_TRUE(SaveSkyRecord(folder.Write("a file", ""), record));
}

TEST(SkyRecord, SetsADamagedFileAside)
{
    using Damage = void (*)(Bytes&);
    const std::pair<const char*, Damage> rows[] = {
        {"empty", [](Bytes& bytes) { bytes.clear(); }},
        {"cut", [](Bytes& bytes) { bytes.pop_back(); }},
        {"too long", [](Bytes& bytes) { bytes.push_back(0); }},
        {"another mark", [](Bytes& bytes) { bytes[0] = 'X'; }},
        {"a version to come", [](Bytes& bytes) { ++bytes[8]; }},
        {"a cell", [](Bytes& bytes) { ++bytes[5000]; }},
        {"the sum", [](Bytes& bytes) { ++bytes.back(); }},
    };
    for (const auto& [what, damage] : rows) {
        SCOPED_TRACE(what);
        const TemporaryFolder folder;
        ASSERT_FALSE(SaveSkyRecord(folder.Path(), Sample(40.0)));
        Bytes bytes = Sample().Bytes();
        damage(bytes);
        const auto file = folder.Write("SkyRecords/here.sky", TextOf(bytes));
        const SkyRecords loaded = LoadSkyRecords(folder.Path());
        EXPECT_EQ(loaded.records.size(), 1U) << "the others stay";
        EXPECT_EQ(loaded.setAside, std::vector<std::string>{"here.sky.damaged-1"});
        EXPECT_FALSE(std::filesystem::exists(file));
        EXPECT_TRUE(LoadSkyRecords(folder.Path()).setAside.empty()) << "told once";
    }
}

TEST(SkyRecord, KeepsSoManyPlaces)
{
    const TemporaryFolder folder;
    const auto old = std::filesystem::file_time_type::clock::now() - 24h;
    for (int i = 0; i <= static_cast<int>(kMostSkyRecords); ++i) {
        ASSERT_FALSE(SaveSkyRecord(folder.Path(), Sample(i, Clock::UtcTime(1h * i))));
        for (const auto& file :
             std::filesystem::directory_iterator(SkyRecordsPath(folder.Path()))) {
            if (file.path().string().ends_with(std::to_string(i * 10'000'000) +
                                               "_-1395000000.sky")) {
                std::filesystem::last_write_time(file, old + 1min * i);
            }
        }
    }
    const SkyRecords loaded = LoadSkyRecords(folder.Path());
    ASSERT_EQ(loaded.records.size(), kMostSkyRecords);
    EXPECT_EQ(loaded.records.front(), Sample(16, Clock::UtcTime(16h))) << "the newest first";
    EXPECT_EQ(loaded.records.back(), Sample(1, Clock::UtcTime(1h))) << "the oldest has gone";
}

} // namespace
} // namespace fieldcore

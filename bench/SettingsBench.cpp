// What settings cost, against SQLite used by hand and a bare durable append. The figures that
// count are the counters: ratios of the medians of two things measured in turn.

#include "bench/Measuring.h"
#include "core/equipment/AntennaCatalogue.h"
#include "core/settings/HostReg.h"
#include "tests/core/platform/FoldersBelow.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

namespace fieldcore::bench {
namespace {

constexpr const wchar_t* kKey = L"GPS\\Com\\Com0";

/// One value read through the accessor, and by a prepared statement on a connection that is kept.
void Read(benchmark::State& state)
{
    const TemporaryFolder folder;
    SettingsRoots roots(testing::FoldersBelow(folder.Path()));
    const HostReg reg(roots);
    {
        SettingsBatch batch(reg.Store()); // as many values as an antenna catalogue
        for (int i = 0; i < 4288; ++i) {
            reg.WriteString(L"GPS\\Antenna\\List", L"MeasMethod" + std::to_wstring(i), L"0.1,0.2");
        }
        reg.WriteString(kKey, L"Text", L"some text of 24 letters.");
        if (!batch.Commit()) {
            state.SkipWithError("cannot write");
        }
    }
    const std::filesystem::path file = folder.Path() / "bare.db";
    sqlite3* database = nullptr;
    sqlite3_open(file.c_str(), &database);
    sqlite3_exec(database,
                 "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; CREATE TABLE s (key TEXT, name "
                 "TEXT, data, PRIMARY KEY (key, name)) WITHOUT ROWID; WITH RECURSIVE n(i) AS "
                 "(SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 4287) INSERT INTO s SELECT "
                 "'software\\aldex-corvane\\olen+(gps)\\gps\\antenna\\list', 'measmethod' || i, "
                 "'0.1,0.2' FROM n; INSERT INTO s VALUES "
                 "('software\\aldex-corvane\\olen+(gps)\\gps\\com\\com0', 'text', "
                 "'some text of 24 letters.')",
                 nullptr, nullptr, nullptr);
    sqlite3_stmt* get = nullptr;
    sqlite3_prepare_v2(database, "SELECT data FROM s WHERE key = ?1 AND name = ?2", -1, &get,
                       nullptr);
    Comparison reads;
    for (auto _ : state) {
        const auto bare = [&] {
            sqlite3_bind_text(get, 1, "software\\aldex-corvane\\olen+(gps)\\gps\\com\\com0", -1,
                              SQLITE_STATIC);
            sqlite3_bind_text(get, 2, "text", -1, SQLITE_STATIC);
            sqlite3_step(get);
            const std::string text(reinterpret_cast<const char*>(sqlite3_column_text(get, 0)));
            benchmark::DoNotOptimize(text.data());
            sqlite3_reset(get);
        };
        reads.Turn(bare, [&] {
            std::wstring text;
            if (reg.ReadString(kKey, L"Text", text, L"") == 0) {
                state.SkipWithError("not found");
            }
            benchmark::DoNotOptimize(text.data());
        });
    }
    sqlite3_finalize(get);
    sqlite3_close(database);
    state.counters["bare_us"] = reads.BareS() * 1e6;
    state.counters["ours_us"] = reads.OursS() * 1e6;
    state.counters["S1_ratio"] = reads.Ratio();
}
BENCHMARK(Read)->MinTime(1.0)->UseRealTime();

/// One durable write, eight in a batch, and 64 bytes appended to a file and synced.
void Write(benchmark::State& state)
{
    const TemporaryFolder folder;
    SettingsRoots roots(testing::FoldersBelow(folder.Path()));
    const HostReg reg(roots);
    const int append =
        open((folder.Path() / "append").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    const std::array<char, 64> bytes{};
    Comparison writes; // of one value
    std::vector<double> eightS;
    std::uint32_t number = 0;
    int done = 1;
    for (auto _ : state) {
        const auto append64 = [&] {
            const bool written =
                write(append, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
            done &= written && fdatasync(append) == 0 ? 1 : 0;
        };
        writes.Turn(append64, [&] { done &= reg.WriteNumber(kKey, L"Baudlate", ++number); });
        eightS.push_back(Timed([&] {
            SettingsBatch batch(reg.Store());
            for (wchar_t name = L'a'; name < L'i'; ++name) {
                done &= reg.WriteNumber(kKey, std::wstring(1, name), ++number);
            }
            done &= batch.Commit() ? 1 : 0;
        }));
    }
    close(append);
    if (done == 0) {
        state.SkipWithError("cannot write");
    }
    state.counters["append_us"] = writes.BareS() * 1e6;
    state.counters["one_us"] = writes.OursS() * 1e6;
    state.counters["eight_us"] = Quantile(eightS) * 1e6;
    state.counters["S2_ratio"] = writes.Ratio();
    state.counters["S4_ratio"] = Quantile(eightS) / writes.OursS();
}
BENCHMARK(Write)->MinTime(2.0)->UseRealTime();

/// A catalogue file of 64 types with 64 methods each, as large as one can be.
std::string LargestCatalogue()
{
    std::string text = "[ANTENNATYPE]\r\n";
    for (int type = 0; type < AntennaCatalogue::kMaxTypes; ++type) {
        text += "DATA" + std::to_string(type) + "=Antenna " + std::to_string(type) + "\r\n";
    }
    for (int type = 0; type < AntennaCatalogue::kMaxTypes; ++type) {
        text += "[Antenna " + std::to_string(type) + "]\r\nCharCode=A" + std::to_string(type) +
                "\r\nType=" + std::to_string(type) + "\r\n";
        for (int method = 0; method < AntennaCatalogue::kMaxMethods; ++method) {
            text += "MeasMethod" + std::to_string(method) + "=0.10000,0.05000,0.00000,\"rim " +
                    std::to_string(method) + "\"\r\n";
        }
    }
    return text;
}

/// The import of that file, from its stamp to the values on the disk, against one durable write.
void Import(benchmark::State& state)
{
    const TemporaryFolder folder;
    SettingsRoots roots(testing::FoldersBelow(folder.Path()));
    const HostReg reg(roots);
    AntennaCatalogue catalogue(roots);
    const std::string text = LargestCatalogue();
    Comparison imports; // with the write of one value
    std::uint32_t number = 0;
    int done = 1;
    for (auto _ : state) {
        // Another size, so that it counts as changed.
        std::ofstream(AntennaFilePath(folder.Path())) << text << std::string(1 + number % 2, '\n');
        imports.Turn([&] { done &= reg.WriteNumber(kKey, L"Baudlate", ++number); },
                     [&] { done &= catalogue.Update(); });
        const auto last =
            catalogue.Method(AntennaCatalogue::kMaxTypes - 1, AntennaCatalogue::kMaxMethods - 1);
        done &= last && last->name == L"rim 63" ? 1 : 0;
    }
    if (done == 0) {
        state.SkipWithError("not imported");
    }
    state.counters["one_us"] = imports.BareS() * 1e6;
    state.counters["import_us"] = imports.OursS() * 1e6;
    state.counters["import_ratio"] = imports.Ratio();
}
BENCHMARK(Import)->MinTime(1.0)->UseRealTime();

} // namespace
} // namespace fieldcore::bench

#include "core/equipment/StatusRows.h"

#include "core/equipment/InstalledOptions.h"
#include "core/equipment/VersionRows.h"
#include "core/resources/StringTable.h"

#include <chrono>
#include <limits>
#include <map>
#include <numbers>
#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;

constexpr double kRad = std::numbers::pi / 180.0;
constexpr auto kUtc = std::chrono::sys_days(std::chrono::year(2026) / 3 / 19);

LiveStatus Good()
{
    LiveStatus status;
    ReturnPositionStatusInformation position;
    position.fixKind = 5;
    position.satellitesUsed = 14;
    position.hdop = 0.94F;
    position.vdop = 1.55F;
    position.position = {36.0 * kRad, (139.0 + 50.0 / 60.0) * kRad, 70.1234}; // origin of zone 9
    status.position = {position, 100s};
    status.pdop = {L"1.8", 100s};
    status.time = {ReceiverTime{std::chrono::local_days(2026y / 3 / 19) + 9h, 18, true, 1500ms},
                   100s};
    status.battery = {BatteryReading{80, L"電源A"}, 100s};
    StatusReply reply;
    reply.satellitesTracked = 16;
    reply.freeMemoryTenths = 9;
    status.status = {reply, 100s};
    return status;
}

std::map<int, StatusRow> RowsOf(const LiveStatus& status, Clock::Duration now, bool isConnected)
{
    std::map<int, StatusRow> rows;
    for (const StatusRow& row : StatusRowsOf(status, {now, kUtc + now - 100s, isConnected})) {
        rows[row.labelId] = row;
    }
    return rows;
}

TEST(StatusRows, ShowEachValueWithItsAge)
{
    const auto rows = RowsOf(Good(), 103s, true);
    const std::pair<int, const wchar_t*> shown[] = {
        {text::kStatusFix, L"RTKフィックス"},
        {text::kStatusUsed, L"14"},
        {text::kGraphPdop, L"1.8"},
        {text::kStatusHdop, L"0.9"},
        {text::kStatusLatitude, L"36ﾟ00'00\".0000"},
        {text::kStatusHeight, L"70.123 m"},
        {text::kStatusJst, L"2026-03-19 09:00:03"}, // it goes on while it is fresh
        {text::kStatusUtc, L"2026-03-19 00:00:03"},
        {text::kStatusClock, L"+1.5秒\n時計は設定しません"},
        {text::kStatusBattery, L"80 %　電源A"},
        {text::kStatusMemory, L"90 %"},
    };
    for (const auto& [id, value] : shown) {
        SCOPED_TRACE(id);
        EXPECT_EQ(rows.at(id).value, value);
        EXPECT_FALSE(rows.at(id).isStale);
        EXPECT_EQ(rows.at(id).age, AgeText(Clock::Duration(3s)));
    }
    // The origin of zone 9 has x = 0 and y = 0; rounding of the angles is below a millimetre.
    EXPECT_TRUE(rows.at(text::kStatusPlane).value.starts_with(L"9系")) << "nearest zone";
    EXPECT_NE(rows.at(text::kStatusPlane).value.find(L"0.000 m"), std::wstring::npos);
}

TEST(StatusRows, TellWhenAStaleValueCame)
{
    const auto later = RowsOf(Good(), 110s, true);
    EXPECT_TRUE(later.at(text::kStatusFix).isStale);
    EXPECT_EQ(later.at(text::kStatusFix).age, L"最終受信 09:00:00");
    EXPECT_EQ(later.at(text::kStatusJst).value, L"2026-03-19 09:00:00") << "a clock that stopped";
    EXPECT_FALSE(later.at(text::kStatusBattery).isStale) << "asked for less often";
    EXPECT_TRUE(RowsOf(Good(), 175s, true).at(text::kStatusBattery).isStale);
    EXPECT_TRUE(RowsOf(Good(), 101s, false).at(text::kStatusBattery).isStale) << "no link";
    for (const auto& [id, row] : RowsOf({}, 100s, true)) {
        EXPECT_EQ(row.value, L"--") << id;
        EXPECT_TRUE(row.isStale && row.age.empty()) << id;
    }
}

TEST(StatusRows, ShowTheUnknownAsUnknown)
{
    struct Row
    {
        const char* fault;
        void (*spoil)(LiveStatus&);
        int id;
        const wchar_t* value;
    };
    const Row rows[] = {
        {"no fix, no place", [](LiveStatus& s) { s.position->value.fixKind = 1; },
         text::kStatusLatitude, L"--"},
        {"no fix, no plane", [](LiveStatus& s) { s.position->value.fixKind = 0; },
         text::kStatusPlane, L"--"},
        {"place that is no number",
         [](LiveStatus& s) {
             s.position->value.position.heightM = std::numeric_limits<double>::quiet_NaN();
         },
         text::kStatusLatitude, L"--"},
        {"place beyond the zones",
         [](LiveStatus& s) { s.position->value.position.longitudeRad = 0; }, text::kStatusPlane,
         L"--"},
        {"kind that nobody knows", [](LiveStatus& s) { s.position->value.fixKind = 6; },
         text::kStatusFix, L"--"},
        {"no dilution", [](LiveStatus& s) { s.position->value.hdop = 99.9F; }, text::kStatusHdop,
         L"--"},
        {"infinite dilution",
         [](LiveStatus& s) { s.position->value.vdop = std::numeric_limits<float>::infinity(); },
         text::kStatusVdop, L"--"},
        {"battery that did not answer", [](LiveStatus& s) { s.battery->value.percent.reset(); },
         text::kStatusBattery, L"不明"},
        {"seconds without synchronisation",
         [](LiveStatus& s) { s.time->value.isSynchronised = false; }, text::kStatusJst,
         L"2026-03-19 09:00"},
        {"clock against a time that means nothing",
         [](LiveStatus& s) { s.time->value.isSynchronised = false; }, text::kStatusClock, L"--"},
        {"memory beyond all", [](LiveStatus& s) { s.status->value.freeMemoryTenths = 11; },
         text::kStatusMemory, L"--"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        LiveStatus status = Good();
        row.spoil(status);
        EXPECT_EQ(RowsOf(status, 101s, true).at(row.id).value, row.value);
    }
}

TEST(StatusRows, NameTheNearestZone)
{
    const std::pair<SiteReply, int> places[] = {
        {{35.69 * kRad, 139.69 * kRad, 0.0}, 9},  // Tokyo
        {{43.06 * kRad, 141.35 * kRad, 0.0}, 12}, // Sapporo
        {{26.21 * kRad, 127.68 * kRad, 0.0}, 15}, // Naha
        {{24.34 * kRad, 124.16 * kRad, 0.0}, 16}, // Ishigaki
    };
    for (const auto& [place, zone] : places) {
        EXPECT_EQ(NearestPlaneZone(place), zone);
    }
}

TEST(StatusRows, TellTheTrend)
{
    EXPECT_EQ(TrendText(std::nullopt), L"--");
    EXPECT_EQ(TrendText(BatteryTrend{3.04, std::nullopt}), L"+3.0 %/時");
    EXPECT_EQ(TrendText(BatteryTrend{-12.0, 5h + 7min}), L"-12.0 %/時\n残り約5時間07分");
    EXPECT_EQ(TrendText(BatteryTrend{-40.0, 59min}), L"-40.0 %/時\n残り約59分");
}

TEST(VersionRows, ListWhatIsThereAndWhatIsNot)
{
    const std::vector<VersionRow> rows = VersionRowsOf(CRecvInfo());
    std::size_t missing = 0;
    for (const VersionRow& row : rows) {
        EXPECT_FALSE(row.name.empty());
        missing += row.isMissing ? 1 : 0;
        EXPECT_TRUE(row.isHeading || row.isMissing || row.value == L"--") << "nothing was read";
    }
    EXPECT_EQ(missing, AllInstalledOptions().size());
    const std::wstring text = VersionText(rows);
    EXPECT_TRUE(text.starts_with(L"[受信機]\n機種\t--\n")) << "headings in brackets, then tabs";
}

} // namespace
} // namespace fieldcore

// What is told of a receiver: the user's text and the report's value of every field.

#include "core/equipment/ReceiverFields.h"

#include "core/equipment/StatusRows.h"
#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "tests/core/equipment/KnownReceiver.h"

#include <chrono>
#include <functional>
#include <limits>
#include <numbers>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using namespace std::chrono_literals;
using testing::KnownReceiver;

constexpr double kRad = std::numbers::pi / 180.0;
constexpr auto kUtc = std::chrono::sys_days(std::chrono::year(2026) / 3 / 19);

StatusView At(Clock::Duration now)
{
    return {now, kUtc + now - 100s};
}

/// Satellites at these elevations, degrees.
TimedValue<SatelliteList> Sky(std::initializer_list<int> elevations)
{
    TimedValue<SatelliteList> sky{{}, 100s};
    for (const int elevationDeg : elevations) {
        ListedSatellite satellite;
        satellite.elevationDeg = elevationDeg;
        sky.value.satellites.push_back(satellite);
    }
    return sky;
}

TEST(ReceiverFields, SayTheSameToEverybody)
{
    constexpr auto kNothing = [](Receiver&) {};
    const auto leaning = [](double rad) { // at 0.01 rad and 1.8 m it is 18 mm off
        return [=](Receiver& r) { r.tilt = {TiltReading{.tiltRad = rad, .time = {}}, 100s}; };
    };
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    constexpr auto kSky = [](Receiver& r) { r.tracked = Sky({14, 15, 80}); };
    constexpr auto kNoTrust = [](Receiver& r) { r.isSynchronised = false; };
    const auto charge = [](int percent) {
        return [=](Receiver& r) { r.status->value.batteryPercent = percent; };
    };
    const auto pdop = [](float value) {
        return [=](Receiver& r) { r.position->value.pdop = value; };
    };
    const auto fix = [](int kind) {
        return [=](Receiver& r) { r.position->value.fixKind = kind; };
    };
    const auto at = [](double latitudeDeg, double longitudeDeg) {
        return [=](Receiver& r) {
            r.position->value.position = {latitudeDeg * kRad, longitudeDeg * kRad, 0.0};
        };
    };
    using Change = std::function<void(Receiver&)>;
    // What is changed, the field, its text, and its words in a report.
    const std::tuple<const char*, Change, const char*, const wchar_t*, const char*> rows[] = {
        {"battery above all", charge(105), "batteryPercent", L"不明", "--"},
        {"full battery", charge(100), "batteryPercent", L"100 %", "100 %"},
        {"battery below nothing", charge(-1), "batteryPercent", L"不明", "--"},
        {"large PDOP", pdop(99.5F), "pdop", L"99.5", "99.5"},
        {"PDOP that says there is none", pdop(99.9F), "pdop", L"-.- ", "--"},
        {"PDOP without trust", kNoTrust, "pdop", L"-.- ", "--"},
        {"time", kNothing, "jst", L"2026-03-19 09:00:01", "2026-03-19 09:00:00 JST"},
        {"time without trust", kNoTrust, "jst", L"2026-03-19 09:00", "2026-03-19 09:00 JST"},
        {"UTC without trust", kNoTrust, "utc", L"2026-03-19 00:00", "2026-03-19 00:00 UTC"},
        {"offset", kNothing, "utcOffsetS", L"18 秒", "18 s"},
        {"offset without trust", kNoTrust, "utcOffsetS", L"--", "--"},
        {"no trust", kNoTrust, "synchronised", L"未同期", "no"},
        {"controller's clock", kNothing, "controllerAheadS", L"+1.5 秒", "1.5 s"},
        {"no fix", fix(0), "fix", L"測位なし", "no fix"},
        {"fix", kNothing, "fix", L"RTKフィックス", "RTK fixed"},
        {"kind that nobody knows", fix(6), "fix", L"--", "--"},
        {"latitude", kNothing, "latitudeDeg", L"36ﾟ00'00\".0000", "36.00000000 deg"},
        {"no fix, no place", fix(1), "latitudeDeg", L"--", "--"},
        {"place that is no number", [](Receiver& r) { r.position->value.position.heightM = kNaN; },
         "latitudeDeg", L"--", "--"},
        {"height", kNothing, "heightM", L"70.123 m", "70.123 m"},
        {"Tokyo", at(35.69, 139.69), "planeZone", L"9 系", "9"},
        {"Ishigaki", at(24.34, 124.16), "planeZone", L"16 系", "16"},
        {"Minamitorishima", at(24.28, 153.98), "planeZone", L"19 系", "19"},
        {"no fix, no plane", fix(0), "planeXM", L"--", "--"},
        {"place beyond the zones", [](Receiver& r) { r.position->value.position.longitudeRad = 0; },
         "planeZone", L"--", "--"},
        {"HDOP", kNothing, "hdop", L"0.9", "0.9"},
        {"infinite dilution",
         [](Receiver& r) { r.position->value.vdop = std::numeric_limits<float>::infinity(); },
         "vdop", L"--", "--"},
        {"power source by its family's name", [](Receiver& r) { r.powerSource->value = 2; },
         "powerSourceName", L"電源B", "Power B"},
        {"power source that was not told", [](Receiver& r) { r.powerSource.reset(); },
         "powerSourceName", L"--", "--"},
        {"trend", kNothing, "batteryTrendPercentPerHour", L"-12.0 %/時", "-12.0 %/h"},
        {"charging", [](Receiver& r) { r.trend->percentPerHour = 3.04; },
         "batteryTrendPercentPerHour", L"+3.0 %/時", "3.0 %/h"},
        {"charge that lasts", kNothing, "batteryMinutesLeft", L"約5時間07分", "307 min"},
        {"memory", kNothing, "freeMemoryPercent", L"90 %", "90 %"},
        {"memory beyond all", [](Receiver& r) { r.status->value.freeMemoryTenths = 11; },
         "freeMemoryPercent", L"--", "--"},
        {"model", kNothing, "model", L"Corvane VX1", "Corvane VX1"},
        {"firmware", kNothing, "navigationFirmware", L"4.43", "4.43"},
        {"firmware that was not told", [](Receiver& r) { r.identity.serial.reset(); },
         "navigationFirmware", L"--", "--"},
        {"memory that was not told", [](Receiver& r) { r.identity.options->memory = 0; },
         "memoryMb", L"--", "--"},
        {"tilt", leaning(0.01), "tiltDeg", L"0.57 °", "0.5730 deg"},
        {"tilt that is no number", leaning(kNaN), "tiltDeg", L"--", "--"},
        {"antenna beside the point", leaning(0.01), "tiltOffsetMm", L"18 mm", "--"},
        {"pole upside down", leaning(3.0), "tiltOffsetMm", L"--", "--"},
        {"satellites above the mask", kSky, "satellitesAboveMask", L"2", "--"},
    };
    for (const auto& [what, change, key, text, words] : rows) {
        SCOPED_TRACE(what);
        Receiver receiver = KnownReceiver();
        change(receiver);
        const ReceiverField& field = FieldOf(key);
        StatusView view = At(101s);
        view.limits = ObservingLimits{15, 5, 7.0};
        view.antennaHeightM = 1.8;
        EXPECT_EQ(FieldText(field, receiver, view), text);
        SetLanguage(Language::English);
        EXPECT_EQ(ReportField(field, receiver).Words(), words);
        SetLanguage(Language::Japanese);
    }
    for (const ReceiverField& field : AllReceiverFields()) { // of nobody nothing is known
        EXPECT_TRUE(ReportField(field, {}).IsUnknown()) << field.key;
        EXPECT_FALSE(ReadField(field, {})) << field.key;
    }
}

TEST(ReceiverFields, TellWhenAStaleValueCame)
{
    const auto rowOf = [](const char* key, Clock::Duration now, LinkState link) {
        Receiver receiver = KnownReceiver();
        receiver.link = link;
        return StatusRowOf(FieldOf(key), receiver, At(now));
    };
    EXPECT_EQ(rowOf("fix", 103s, LinkState::Connected).age, L"3秒前");
    EXPECT_FALSE(rowOf("fix", 109999ms, LinkState::Connected).isStale);
    const StatusRow old = rowOf("fix", 110s, LinkState::Connected);
    EXPECT_TRUE(old.isStale);
    EXPECT_EQ(old.age, L"最終受信 09:00:00");
    EXPECT_EQ(rowOf("jst", 103s, LinkState::Connected).value, L"2026-03-19 09:00:03");
    EXPECT_EQ(rowOf("jst", 110s, LinkState::Connected).value, L"2026-03-19 09:00:00")
        << "a clock that stopped";
    EXPECT_FALSE(rowOf("powerSourceName", 174s, LinkState::Connected).isStale) << "asked for less";
    EXPECT_TRUE(rowOf("powerSourceName", 175s, LinkState::Connected).isStale);
    EXPECT_TRUE(rowOf("powerSourceName", 101s, LinkState::Lost).isStale) << "no link";
    for (const StatusRow& row : StatusRowsOf({}, At(100s))) {
        EXPECT_TRUE(row.isStale && row.age.empty()) << row.field->key;
    }
}

TEST(ReceiverFields, WarnWhenASurveysLimitsAreBroken)
{
    const std::wstring kPdop = L"PDOP 2.1（制限 2.0）";
    const std::wstring kFew = L"高度角15度以上の衛星 2（最少 3）";
    const std::tuple<const char*, float, int, Clock::Duration, std::vector<std::wstring>> rows[] = {
        {"on the limits", 2.0F, 15, 101s, {}},
        {"PDOP that reads as its limit", 2.04F, 15, 101s, {}},
        {"PDOP above", 2.1F, 15, 101s, {kPdop}},
        {"one below the mask", 1.0F, 14, 101s, {kFew}},
        {"both", 2.1F, 14, 101s, {kPdop, kFew}},
        {"none that can be told", 99.9F, 14, 101s, {kFew}},
        {"old values", 2.1F, 14, 200s, {}},
    };
    for (const auto& [fault, pdop, lowestDeg, now, broken] : rows) {
        SCOPED_TRACE(fault);
        Receiver receiver = KnownReceiver();
        receiver.position->value.pdop = pdop;
        receiver.tracked = Sky({lowestDeg, 40, 70});
        StatusView view = At(now);
        EXPECT_TRUE(BrokenLimits(receiver, view).empty()) << "there are none";
        view.limits = ObservingLimits{15, 3, 2.0};
        EXPECT_EQ(BrokenLimits(receiver, view), broken);
    }
    EXPECT_TRUE(BrokenLimits({}, {101s, kUtc, 0, false, ObservingLimits{15, 3, 2.0}}).empty());
}

TEST(VersionRows, ListWhatIsThereAndWhatIsNot)
{
    const std::vector<VersionRow> rows = VersionRowsOf({});
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

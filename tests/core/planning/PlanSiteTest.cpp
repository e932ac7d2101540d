#include "core/planning/PlanSite.h"

#include "core/planning/Geodesy.h"
#include "core/planning/PackedDegrees.h"
#include "core/planning/PlanSettings.h"
#include "core/planning/SampleSites.h"
#include "core/planning/SiteInput.h"
#include "core/planning/SitesCsv.h"
#include "core/platform/Cp932.h"
#include "core/platform/Degrees.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <set>
#include <string>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

TEST(PackedDegrees, AreReadDigitByDigit)
{
    const std::pair<const wchar_t*, double> rows[] = {
        {L"35.4138", 35.0 + 41.0 / 60.0 + 38.0 / 3600.0},
        {L"139.45135", 139.0 + 45.0 / 60.0 + 13.5 / 3600.0},
        {L"35.4", 35.0 + 40.0 / 60.0},
        {L"35.413", 35.0 + 41.0 / 60.0 + 30.0 / 3600.0},
        {L"35", 35.0},
        {L"35.", 35.0},
        {L".3", 0.5},
        {L"-35.30", -35.5},
        {L"-0.30", -0.5},
        {L" +35.30", 35.5},
        {L"35.30x9", 35.5},
        {L"35,30", 35.0},
        {L"north", 0.0},
        {L"", 0.0},
        {L"-", 0.0},
        {L"35.7560", 35.0 + 75.0 / 60.0 + 60.0 / 3600.0},
        {L"1e5", 1.0},
    };
    for (const auto& [text, degrees] : rows) {
        EXPECT_NEAR(DegreesOf(ParsePackedDegrees(text)), degrees, 1e-12) << ToCp932(text);
    }
    EXPECT_GT(ParsePackedDegrees(std::wstring(400, L'9')), 1e300);
}

TEST(PlanSite, IsReadFromTheSiteFile)
{
    const TemporaryFolder folder;
    folder.Write("GSurveyPlan.ini",
                 ToCp932(L"[基準点]\r\nLAT=36.0000\r\nLON=140.0530\r\nHGT=72.5\r\n\r\n"
                         L"[no height]\r\nLAT=36.00\r\nLON=140.00\r\n"
                         L"[only height]\r\nHGT=-3\r\n"
                         L"[nothing]\r\n"));
    EXPECT_EQ(SiteNames(folder.Path()),
              (std::vector<std::wstring>{L"基準点", L"no height", L"only height", L"nothing"}));
    EXPECT_TRUE(ReadSite(folder.Path(), L"基準点").IsComplete());
    EXPECT_TRUE(ReadSite(folder.Path(), L"nothing").IsEmpty());

    constexpr double kKept = 99.0; // the height before
    const std::tuple<const wchar_t*, double, double, double> rows[] = {
        {L"基準点", RadiansOf(36.0), 140.0 + 5.5 / 60.0, 72.5},
        {L"no height", 50.0, 140.0, kKept},
        {L"only height", RadiansOf(35.0), 139.0, -3.0},
        {L"nothing", 50.0, 139.0, kKept},
        {L"unknown", 50.0, 139.0, kKept},
    };
    for (const auto& [name, latitudeRad, longitudeDeg, heightM] : rows) {
        SCOPED_TRACE(ToCp932(name));
        Observer observer{1.0, 1.0, kKept};
        ReadPosition(folder.Path(), name, observer);
        EXPECT_NEAR(observer.latitudeRad, latitudeRad, 1e-15);
        EXPECT_NEAR(DegreesOf(observer.longitudeRad), longitudeDeg, 1e-12);
        EXPECT_EQ(observer.heightM, heightM);
    }
}

TEST(PackedDegrees, AreWrittenAsTheyAreRead)
{
    const std::tuple<double, int, const wchar_t*> rows[] = {
        {35.0 + 41.0 / 60.0 + 38.25 / 3600.0, 2, L"35.413825"},
        {139.75, 0, L"139.4500"},
        {-0.5, 1, L"-0.30000"},
        {35.0 + 59.0 / 60.0 + 59.999999 / 3600.0, 5, L"36.000000000"},
        {0.0, 0, L"0.0000"},
        {-1e-12, 3, L"0.0000000"},
    };
    for (const auto& [degrees, decimals, text] : rows) {
        EXPECT_EQ(FormatPackedDegrees(RadiansOf(degrees), decimals), text) << degrees;
    }
}

TEST(PlanSite, IsWrittenReplacedAndRemoved)
{
    const TemporaryFolder folder;
    const std::filesystem::path program = folder.Path() / "new";
    const Observer first{RadiansOf(35.5), RadiansOf(-139.25), 12.3456};
    const Observer second{RadiansOf(-36.123456789), RadiansOf(140.0), -7.0};
    EXPECT_EQ(WriteSite(program, L"一", first), 1);
    EXPECT_EQ(WriteSite(program, L"二", first), 1);
    EXPECT_EQ(WriteSite(program, L"一", second), 1);
    EXPECT_EQ(SiteNames(program), (std::vector<std::wstring>{L"一", L"二"}));
    Observer read;
    ReadPosition(program, L"一", read);
    EXPECT_NEAR(read.latitudeRad, second.latitudeRad, 1e-10); // half a millimetre
    EXPECT_NEAR(read.longitudeRad, second.longitudeRad, 1e-10);
    EXPECT_EQ(read.heightM, second.heightM);
    EXPECT_EQ(RemoveSite(program, L"一"), 1);
    EXPECT_EQ(RemoveSite(program, L"一"), 0);
    EXPECT_EQ(SiteNames(program), (std::vector<std::wstring>{L"二"}));
    EXPECT_TRUE(ReadSite(program, L"二").IsComplete()) << "its neighbour took it along";
    for (const wchar_t* name : {L"", L"two\nlines"}) {
        EXPECT_EQ(WriteSite(program, name, first), 0);
    }
    EXPECT_EQ(InstallSampleSites(program), 1);
    EXPECT_EQ(SiteNames(program).size(), 1U) << "the user's own sites are gone";
}

TEST(PlanSite, TakesAWholeListOrNothing)
{
    const TemporaryFolder folder;
    folder.Write("GSurveyPlan.ini", ToCp932(L"[一]\r\nLAT=36.0\r\nLON=140.0\r\nHGT=1\r\n"
                                            L"[二]\r\nLAT=1")); // its last line was cut
    const Observer place{RadiansOf(35.5), RadiansOf(139.25), 5.0};
    std::vector<ListedSite> sites{{L"二", place}, {L"三", place}, {L"四\n", place}};
    EXPECT_EQ(WriteSites(folder.Path(), sites), 0);
    EXPECT_FALSE(HasSite(folder.Path(), L"三")) << "a part was taken";
    sites[2].name = L"三";
    EXPECT_EQ(WriteSites(folder.Path(), sites), 0) << "given twice";
    sites[2].name = L"四";
    EXPECT_EQ(WriteSites(folder.Path(), sites), 1);
    EXPECT_EQ(SiteNames(folder.Path()), (std::vector<std::wstring>{L"一", L"二", L"三", L"四"}));
    for (const ListedSite& site : sites) {
        EXPECT_NEAR(ReadSite(folder.Path(), site.name).latitudeRad.value_or(0.0), place.latitudeRad,
                    1e-10)
            << ToCp932(site.name);
    }
    EXPECT_EQ(ReadSite(folder.Path(), L"一").heightM, 1.0) << "a neighbour was changed";
}

TEST(PlanSite, IsRenamedWithoutPushingAnotherAside)
{
    const TemporaryFolder folder;
    const Observer place{RadiansOf(35.5), RadiansOf(139.25), 5.0};
    ASSERT_EQ(WriteSites(folder.Path(), std::vector<ListedSite>{{L"一", {}}, {L"二", {}}}), 1);
    EXPECT_EQ(ChangeSite(folder.Path(), L"一", {L"二", place}), 0);
    EXPECT_EQ(ReadSite(folder.Path(), L"二").heightM, Observer{}.heightM);
    EXPECT_EQ(ChangeSite(folder.Path(), L"一", {L"三", place}), 1);
    EXPECT_EQ(SiteNames(folder.Path()), (std::vector<std::wstring>{L"二", L"三"}));
    EXPECT_EQ(ChangeSite(folder.Path(), L"三", {L"三", {0.1, 0.2, -1.0}}), 1);
    EXPECT_EQ(ReadSite(folder.Path(), L"三").heightM, -1.0);
}

TEST(SitesCsv, AreReadOrTheLineIsNamed)
{
    const SitesCsv good = ParseSitesCsv("\xEF\xBB\xBFname,lat,lon,height\r\n"
                                        "\"A, north\", 35.5 ,139.25,12.5\r\n\r\nB,-36,-140\r\n"
                                        "\"the \"\"rock\"\"\",0,0,\n");
    ASSERT_FALSE(good.error);
    ASSERT_EQ(good.sites.size(), 3U);
    EXPECT_EQ(good.sites[0].name, L"A, north");
    EXPECT_NEAR(good.sites[0].observer.latitudeRad, RadiansOf(35.5), 1e-15);
    EXPECT_EQ(good.sites[0].observer.heightM, 12.5);
    EXPECT_NEAR(good.sites[1].observer.longitudeRad, RadiansOf(-140.0), 1e-15);
    EXPECT_EQ(good.sites[2].name, L"the \"rock\"");
    EXPECT_EQ(ParseSitesCsv(ToCp932(L"表,35,139")).sites.at(0).name, L"表");

    const std::tuple<const char*, int, const char*> rows[] = {
        {"", 0, ""},
        {"name,lat,lon\n", 0, ""},
        {"A,35,139\nB,35\n", 2, ""},
        {"A,35,139,1,2\n", 1, ""},
        {"A,35,139\n,35,139\n", 2, "name"},
        {"A,35,139\n\nA,36,139\n", 3, "name"},
        {"A,95,139\n", 1, "latitude"},
        {"A,35,east\n", 1, "longitude"},
        {"A,35,139,high\n", 1, "height"},
        {"A,nan,139\n", 1, "latitude"},
        {"lat,lon,name\n35,139,A\n", 2, "latitude"},
    };
    for (const auto& [text, line, field] : rows) {
        SCOPED_TRACE(text);
        const SitesCsv result = ParseSitesCsv(text);
        ASSERT_TRUE(result.error && result.sites.empty());
        EXPECT_EQ(std::tie(result.error->line, result.error->field), std::tie(line, field));
    }
}

TEST(SampleSites, AreFortySevenPlacesInJapan)
{
    std::set<std::wstring> names;
    for (const SampleSite& site : SampleSites()) {
        const double latitude = DegreesOf(ParsePackedDegrees(site.latitude));
        const double longitude = DegreesOf(ParsePackedDegrees(site.longitude));
        EXPECT_TRUE(latitude > 26.0 && latitude < 43.1) << ToCp932(site.name);
        EXPECT_TRUE(longitude > 127.6 && longitude < 141.4) << ToCp932(site.name);
        EXPECT_TRUE(site.heightM > 0.0 && site.heightM < 500.0) << ToCp932(site.name);
        names.insert(site.name);
    }
    EXPECT_EQ(names.size(), 47U);
    const PlanSettings settings;
    const auto number = static_cast<std::size_t>(settings.positionNo);
    EXPECT_EQ(SampleSites()[number - 1].name, settings.position);
}

TEST(SiteInput, IsReadOrTheFieldIsNamed)
{
    const SiteInput good{L" 基準点 ", L"35.4130", L"-139.30", L" 12.5 "};
    ListedSite site;
    ASSERT_FALSE(CheckSite(good, site));
    EXPECT_EQ(site.name, L"基準点");
    EXPECT_NEAR(DegreesOf(site.observer.latitudeRad), 35.0 + 41.5 / 60.0, 1e-12);
    EXPECT_NEAR(DegreesOf(site.observer.longitudeRad), -139.5, 1e-12);
    EXPECT_EQ(site.observer.heightM, 12.5);

    const std::tuple<std::wstring SiteInput::*, std::wstring, std::optional<SiteField>> rows[] = {
        {&SiteInput::name, L"\u3000", SiteField::Name},
        {&SiteInput::name, L"a]b", SiteField::Name},
        {&SiteInput::name, L"snow \u2603 man \U0001F600", SiteField::Name},
        {&SiteInput::name, std::wstring(61, L'x'), SiteField::Name},
        {&SiteInput::latitude, L"", SiteField::Latitude},
        {&SiteInput::latitude, L"35.60", SiteField::Latitude},   // 60 minutes
        {&SiteInput::latitude, L"35.0060", SiteField::Latitude}, // 60 seconds
        {&SiteInput::latitude, L"35.5959999", std::nullopt},
        {&SiteInput::latitude, L"90", std::nullopt},
        {&SiteInput::latitude, L"90.0001", SiteField::Latitude},
        {&SiteInput::latitude, L"35,41", SiteField::Latitude},
        {&SiteInput::latitude, L"3.5.1", SiteField::Latitude},
        {&SiteInput::latitude, L".3", SiteField::Latitude},
        {&SiteInput::latitude, L"-", SiteField::Latitude},
        {&SiteInput::longitude, L"-180.0000", std::nullopt},
        {&SiteInput::longitude, L"180.0001", SiteField::Longitude},
        {&SiteInput::longitude, L"1e2", SiteField::Longitude},
        {&SiteInput::height, L"high", SiteField::Height},
        {&SiteInput::height, L"nan", SiteField::Height},
        {&SiteInput::height, L"10001", SiteField::Height},
        {&SiteInput::height, L"-400", std::nullopt},
        {&SiteInput::height, L"12." + std::wstring(18, L'5'), std::nullopt}, // 21 characters
        {&SiteInput::height, L"12." + std::wstring(19, L'5'), SiteField::Height},
    };
    for (const auto& [field, typed, wrong] : rows) {
        SCOPED_TRACE(ToCp932(typed));
        SiteInput input = good;
        input.*field = typed;
        ListedSite untouched{L"before", {}};
        const std::optional<SiteFault> fault = CheckSite(input, untouched);
        ASSERT_EQ(fault.has_value(), wrong.has_value());
        if (fault) {
            EXPECT_EQ(fault->field, *wrong);
            EXPECT_EQ(untouched.name, L"before");
        }
    }
}

TEST(SiteInput, OfASiteReadsBackAsThatSite)
{
    const ListedSite site{L"点", {RadiansOf(-35.123456789), RadiansOf(0.99999999), -3.25}};
    ListedSite read;
    ASSERT_FALSE(CheckSite(InputOf(site), read));
    EXPECT_EQ(read.name, site.name);
    EXPECT_NEAR(read.observer.latitudeRad, site.observer.latitudeRad, 1e-10); // half a millimetre
    EXPECT_NEAR(read.observer.longitudeRad, site.observer.longitudeRad, 1e-10);
    EXPECT_EQ(read.observer.heightM, site.observer.heightM);
}

} // namespace
} // namespace fieldcore

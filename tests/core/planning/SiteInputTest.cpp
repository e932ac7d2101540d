#include "core/planning/SiteInput.h"

#include "core/planning/Degrees.h"
#include "core/platform/Cp932.h"

#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

TEST(SiteInput, IsReadOrTheFieldIsNamed)
{
    const SiteInput good{L" 基準点 ", L"35.4130", L"-139.30", L" 12.5 "};
    ListedSite site;
    ASSERT_FALSE(CheckSite(good, site));
    EXPECT_EQ(site.name, L"基準点");
    EXPECT_NEAR(DegreesOf(site.observer.latitudeRad), 35.0 + 41.5 / 60.0, 1e-12);
    EXPECT_NEAR(DegreesOf(site.observer.longitudeRad), -139.5, 1e-12);
    EXPECT_EQ(site.observer.heightM, 12.5);

    struct Row
    {
        std::wstring SiteInput::*field;
        std::wstring typed;
        std::optional<SiteField> fault;
    };
    const Row rows[] = {
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
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(ToCp932(row.typed));
        SiteInput input = good;
        input.*row.field = row.typed;
        ListedSite untouched{L"before", {}};
        const std::optional<SiteFault> fault = CheckSite(input, untouched);
        ASSERT_EQ(fault.has_value(), row.fault.has_value());
        if (fault) {
            EXPECT_EQ(fault->field, *row.fault);
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

// Small parsers of text that comes from files, receivers or people: any bytes can be read, and what
// was written comes back. The first byte says which one.

#include "core/input/Angles.h"
#include "core/planning/PackedDegrees.h"
#include "core/planning/SitesCsv.h"
#include "core/platform/Cp932.h"
#include "core/platform/NumberText.h"
#include "core/settings/SettingsText.h"
#include "fuzz/Target.h"
#include "simulator/ExchangeRecord.h"

#include <cmath>
#include <string>

using namespace fieldcore;

namespace {

void CodePage(std::string_view bytes)
{
    const std::wstring text = FromCp932(bytes);
    Check(text.size() <= bytes.size() && FromCp932(ToCp932(text)) == text);
    const std::size_t width = bytes.size() / 2;
    Check(ToCp932Field(text, width).size() == width);
}

void Numbers(std::string_view bytes)
{
    const std::wstring text(bytes.begin(), bytes.end());
    const double number = ParseReal(text.c_str());
    if (std::isfinite(number)) {
        Check(!FormatFixed(number, 3).empty());
        const double again = ParseReal(FormatGeneral(number).c_str());
        Check(std::abs(again - number) <= 1e-5 * std::abs(number));
    }
    static_cast<void>(ParseWhole(text.c_str()));
    static_cast<void>(ParseSettingNumber(bytes));
    static_cast<void>(ParseSettingBytes(bytes));
    Check(!RADtoDEGStr(number, 1, 5).empty());
    const double angleRad = ParsePackedDegrees(text);
    if (std::abs(angleRad) < 17.0) { // 1000 degrees and fewer
        const double again = ParsePackedDegrees(FormatPackedDegrees(angleRad, 5));
        Check(std::abs(again - angleRad) < 1e-10); // rounding in the last decimal is 2.4e-11
    }
}

void Sites(std::string_view bytes)
{
    const SitesCsv read = ParseSitesCsv(bytes);
    Check(!read.error || read.sites.empty());
    for (const ListedSite& site : read.sites) {
        Check(!site.name.empty() && std::abs(site.observer.latitudeRad) < 1.6 &&
              std::isfinite(site.observer.heightM));
    }
}

void LogLine(std::string_view bytes)
{
    simulator::RecordedBytes piece;
    std::string error;
    Check(simulator::ParseLogLine(bytes, piece, error) == error.empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 0) {
        constexpr void (*kParsers[])(std::string_view) = {CodePage, Numbers, Sites, LogLine};
        kParsers[data[0] % 4](TextOf(data, size).substr(1));
    }
    return 0;
}

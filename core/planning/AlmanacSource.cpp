#include "core/planning/AlmanacSource.h"

#include "core/planning/AlmanacRecord.h"
#include "core/planning/NominalConstellation.h"
#include "core/platform/AtomicFile.h"
#include "core/platform/ContentSum.h"
#include "core/platform/Utf8.h"
#include "core/platform/WholeFile.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

struct OriginName
{
    AlmanacOrigin origin;
    std::string_view name;
};
constexpr std::array kOrigins{OriginName{AlmanacOrigin::Receiver, "receiver"},
                              OriginName{AlmanacOrigin::File, "file"}};

fs::path SourcePath(fs::path almanac)
{
    return almanac += ".source";
}

bool IsNominal(const AlmanacRecord& record)
{
    static const AlmanacRecord kNominal = NominalConstellation(1, 0, 0).front();
    constexpr double kAxisStep = 1e-3;  // m^0.5: what the texts of almanacs round to
    constexpr double kAngleStep = 1e-6; // semicircles: the same
    return record.eccentricity == 0.0 && std::abs(record.sqrtA - kNominal.sqrtA) < kAxisStep &&
           std::abs(record.inclination - kNominal.inclination) < kAngleStep;
}

} // namespace

bool HasNominal(std::span<const std::uint8_t> content)
{
    for (; content.size() >= kAlmanacRecordSize; content = content.subspan(kAlmanacRecordSize)) {
        if (IsNominal(DecodeAlmanac(content.first<kAlmanacRecordSize>()))) {
            return true;
        }
    }
    return false;
}

std::wstring SourceText(const AlmanacSource& source)
{
    constexpr std::array kTexts{text::kAlmanacFromUnknown, text::kAlmanacFromReceiver,
                                text::kAlmanacFromFile, text::kAlmanacNominal};
    const wchar_t* const text = Text(kTexts[static_cast<std::size_t>(source.origin)]);
    return source.name.empty() ? text : std::wstring(text) + L" " + source.name;
}

AlmanacSource LoadAlmanacSource(const fs::path& almanac, std::span<const std::uint8_t> content)
{
    if (HasNominal(content)) {
        return {AlmanacOrigin::Nominal, {}};
    }
    constexpr std::size_t kLongest = 4096;
    const auto bytes = ReadWholeFile(SourcePath(almanac), kLongest);
    if (!bytes) {
        return {};
    }
    // Three lines: what content it is about, origin, name.
    std::string_view text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    const auto line = [&text] {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view first = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        return first;
    };
    if (line() != std::to_string(ContentSum(content))) {
        return {};
    }
    const std::string_view origin = line();
    for (const OriginName& known : kOrigins) {
        if (known.name == origin) {
            return {known.origin, FromUtf8(line())};
        }
    }
    return {};
}

std::error_code SaveAlmanacSource(const fs::path& almanac, std::span<const std::uint8_t> content,
                                  const AlmanacSource& source)
{
    const fs::path file = SourcePath(almanac);
    const auto known =
        std::find_if(kOrigins.begin(), kOrigins.end(),
                     [&](const OriginName& origin) { return origin.origin == source.origin; });
    if (known == kOrigins.end()) {
        std::error_code error;
        fs::remove(file, error);
        return error;
    }
    const std::string text = std::to_string(ContentSum(content)) + "\n" + std::string(known->name) +
                             "\n" + ToUtf8(source.name) + "\n";
    fs::path temporary = file.filename();
    temporary += ".new";
    return ReplaceFile(file, temporary, std::as_bytes(std::span(text)));
}

} // namespace fieldcore

#include "core/planning/AlmanacFile.h"

#include "core/planning/AlmanacRecord.h"
#include "core/platform/WholeFile.h"

#include <bitset>
#include <cstddef>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

/// Four hundred times what 32 satellites need.
constexpr std::size_t kLongest = std::size_t{1} << 20;

} // namespace

fs::path AlmanacPath(const fs::path& folder)
{
    return folder / "GSurveyPlan.alm";
}

fs::path AlmanacTemporaryPath(const fs::path& folder)
{
    return folder / "#$&Temp.Tmp";
}

std::vector<std::uint8_t> ReadAlmanacFile(const fs::path& file)
{
    return ReadWholeFile(file, kLongest).value_or(std::vector<std::uint8_t>());
}

int CountAlmanacs(std::span<const std::uint8_t> content)
{
    std::bitset<kMaxPrn> prns;
    for (; content.size() >= kAlmanacRecordSize; content = content.subspan(kAlmanacRecordSize)) {
        const unsigned index = content[0] - 1U;
        if (index < prns.size()) {
            prns.set(index);
        }
    }
    return static_cast<int>(prns.count());
}

} // namespace fieldcore

// An antenna catalogue of any bytes, and the same bytes as a row of blocks: what is read of them
// is within its limits, and every method reduces every height to a number.

#include "core/equipment/AntennaCatalogue.h"
#include "core/equipment/AntennaSettings.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

using namespace fieldcore;

namespace {

void Require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

void CheckMethod(const std::wstring& text)
{
    Require(!text.empty());
    const AntennaMethod method = ParseAntennaMethod(text);
    Require(std::isfinite(method.radiusM) && std::isfinite(method.verticalM));
    Require(method.name.size() < text.size() || method.name == text);
    for (const double heightM : {0.0, 1.5, kHighestAntennaM}) {
        const AntennaHeight height = ReduceAntennaHeight(heightM, method);
        Require(!std::isnan(height.verticalM));
        Require(height.IsReduced());
        // A slant is not shorter than what stands upright below it.
        Require(height.verticalM <= heightM + method.verticalM);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto types = ReadAntennaFile(std::string(data, data + size));
    Require(types.size() <= AntennaCatalogue::kMaxTypes);
    for (const AntennaFileType& type : types) {
        Require(type.methods.size() <= AntennaCatalogue::kMaxMethods);
        for (const std::wstring& method : type.methods) {
            CheckMethod(method);
        }
    }
    if (const auto block = FindAntennaBlock({data, size})) {
        const auto record = ParseAntennaBlock(*block);
        Require(size >= 17 && record);
        Require(record->heightM >= 0.0 && record->heightM <= kHighestAntennaM);
        Require(record->way >= 0 && record->way <= AntennaCatalogue::kMaxMethods);
        Require(AntennaSerialFault(record->serial).empty());
    }
    return 0;
}

// An antenna catalogue of any bytes, and the same bytes as a row of blocks: what is read of them
// is within its limits, and every method reduces every height to a number.

#include "core/equipment/AntennaCatalogue.h"
#include "core/equipment/AntennaSettings.h"
#include "fuzz/Target.h"

#include <cmath>
#include <string>

using namespace fieldcore;

namespace {

void CheckMethod(const std::wstring& text)
{
    Check(!text.empty());
    const AntennaMethod method = ParseAntennaMethod(text);
    Check(std::isfinite(method.radiusM) && std::isfinite(method.verticalM));
    Check(method.name.size() < text.size() || method.name == text);
    for (const double heightM : {0.0, 1.5, kHighestAntennaM}) {
        const AntennaHeight height = ReduceAntennaHeight(heightM, method);
        Check(!std::isnan(height.verticalM));
        Check(height.IsReduced());
        // A slant is not shorter than what stands upright below it.
        Check(height.verticalM <= heightM + method.verticalM);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto types = ReadAntennaFile(std::string(data, data + size));
    Check(types.size() <= AntennaCatalogue::kMaxTypes);
    for (const AntennaFileType& type : types) {
        Check(type.methods.size() <= AntennaCatalogue::kMaxMethods);
        for (const std::wstring& method : type.methods) {
            CheckMethod(method);
        }
    }
    if (const auto block = FindAntennaBlock({data, size})) {
        const auto record = ParseAntennaBlock(*block);
        Check(size >= 17 && record);
        Check(record->heightM >= 0.0 && record->heightM <= kHighestAntennaM);
        Check(record->way >= 0 && record->way <= AntennaCatalogue::kMaxMethods);
        Check(AntennaSerialFault(record->serial).empty());
    }
    return 0;
}

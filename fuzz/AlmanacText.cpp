// An almanac text of any bytes: what is taken from it are orbits that a store can keep and a plan
// can use, and what is refused is refused with a line of it.

#include "core/planning/AlmanacText.h"
#include "core/planning/AlmanacOrbit.h"

#include <algorithm>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace fieldcore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const AlmanacText read = ParseAlmanacText(text, {2200, {}});
    if (read.error) {
        const auto lines = std::count(text.begin(), text.end(), '\n') + 1;
        if (!read.records.empty() || read.error->message.empty() || read.error->line < 0 ||
            read.error->line > lines) {
            std::abort();
        }
        return 0;
    }
    std::bitset<kMaxPrn + 1> prns;
    for (const AlmanacRecord& record : read.records) {
        if (record.prn < 1 || record.prn > kMaxPrn || prns[record.prn] || record.week < 0 ||
            record.toaS > 604800 ||
            !PositionOf(OrbitOf(KeplerElements(record)),
                        AlmanacOrbit::CountOf({record.week, 1.0 * record.toaS}))) {
            std::abort();
        }
        prns.set(record.prn);
    }
    return 0;
}

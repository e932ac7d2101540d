// An almanac text of any bytes: what is taken from it are orbits that a store can keep and a plan
// can use, and what is refused is refused with a line of it.

#include "core/planning/AlmanacText.h"
#include "core/planning/AlmanacOrbit.h"
#include "fuzz/Target.h"

#include <bitset>

using namespace fieldcore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const AlmanacText read = ParseAlmanacText(TextOf(data, size), {2200, {}});
    if (read.error) {
        Check(read.records.empty());
        CheckRefusal(*read.error, TextOf(data, size));
    }
    std::bitset<kMaxPrn + 1> prns;
    for (const AlmanacRecord& record : read.records) {
        Check(record.prn >= 1 && record.prn <= kMaxPrn && !prns[record.prn]);
        Check(record.week >= 0 && record.toaS <= 604800);
        Check(PositionOf(OrbitOf(KeplerElements(record)),
                         AlmanacOrbit::CountOf({record.week, 1.0 * record.toaS}))
                  .has_value());
        prns.set(record.prn);
    }
    return 0;
}

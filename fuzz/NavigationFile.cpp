// A navigation text of any bytes: what is taken from it are orbits that can be followed and written
// down again, and what is refused is refused with a line of it.

#include "core/orbits/Constellations.h"
#include "core/orbits/NavigationText.h"
#include "fuzz/Target.h"

using namespace fieldcore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const NavigationText read = ReadNavigation(TextOf(data, size));
    if (read.error) {
        Check(read.records.empty());
        CheckRefusal(*read.error, TextOf(data, size));
        return 0;
    }
    for (const NavigationRecord& record : read.records) {
        Check(OrbitMotion(record).At(record.ReferenceS()).has_value());
        static_cast<void>(OrbitMotion(record).At(record.ReferenceS() + 86400.0));
    }
    Constellations known;
    known.Add(read.records);
    const NavigationText again = ReadNavigation(WriteNavigation(known.Records()));
    Check(!again.error && again.records.size() == known.Records().size());
    return 0;
}

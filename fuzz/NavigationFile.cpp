// A navigation text of any bytes: what is taken from it are orbits that can be followed and written
// down again, and what is refused is refused with a line of it.

#include "core/orbits/Constellations.h"
#include "core/orbits/NavigationText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace fieldcore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const NavigationText read = ReadNavigation(text);
    if (read.error) {
        const auto lines = std::count(text.begin(), text.end(), '\n') + 1;
        if (!read.records.empty() || read.error->message.empty() || read.error->line < 0 ||
            read.error->line > lines) {
            std::abort();
        }
        return 0;
    }
    for (const NavigationRecord& record : read.records) {
        if (!OrbitMotion(record).At(record.ReferenceS())) {
            std::abort();
        }
        static_cast<void>(OrbitMotion(record).At(record.ReferenceS() + 86400.0));
    }
    Constellations known;
    known.Add(read.records);
    const NavigationText again = ReadNavigation(WriteNavigation(known.Records()));
    if (again.error || again.records.size() != known.Records().size()) {
        std::abort();
    }
    return 0;
}

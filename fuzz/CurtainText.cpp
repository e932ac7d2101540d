// A curtain text of any bytes: what is taken from it can be written and comes back the same.

#include "core/planning/CurtainText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace fieldcore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const CurtainText read = ParseCurtainText(text);
    if (read.error) {
        const auto lines = std::count(text.begin(), text.end(), '\n') + 1;
        if (read.curtain != ObstructionCurtain{} || read.error->message.empty() ||
            read.error->line < 0 || read.error->line > lines) {
            std::abort();
        }
        return 0;
    }
    const CurtainText again = ParseCurtainText(FormatCurtainText(read.curtain));
    if (again.error || again.curtain != read.curtain) {
        std::abort();
    }
    return 0;
}

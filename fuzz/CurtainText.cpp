// A curtain text of any bytes: what is taken from it can be written and comes back the same.

#include "core/planning/CurtainText.h"
#include "fuzz/Target.h"

using namespace fieldcore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const CurtainText read = ParseCurtainText(TextOf(data, size));
    if (read.error) {
        Check(read.curtain == ObstructionCurtain{});
        CheckRefusal(*read.error, TextOf(data, size));
        return 0;
    }
    const CurtainText again = ParseCurtainText(FormatCurtainText(read.curtain));
    Check(!again.error && again.curtain == read.curtain);
    return 0;
}

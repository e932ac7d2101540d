// Settings as text: any bytes can be read, and what was read comes back from its own text.

#include "core/settings/SettingsText.h"
#include "fuzz/Target.h"

using namespace fieldcore;

namespace {

bool IsSame(const SettingsKey& a, const SettingsKey& b)
{
    const auto isSameValue = [](const NamedSetting& left, const NamedSetting& right) {
        return left.name == right.name && left.value == right.value;
    };
    return a.path == b.path && std::ranges::equal(a.values, b.values, isSameValue);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const SettingsTextResult read = ParseSettingsText(TextOf(data, size));
    if (read.fault) {
        Check(read.keys.empty() && read.fault->line > 0);
        return 0;
    }
    const SettingsTextResult again = ParseSettingsText(FormatSettingsText(read.keys));
    Check(!again.fault && std::ranges::equal(read.keys, again.keys, IsSame));
    return 0;
}

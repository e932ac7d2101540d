// Settings as text: any bytes can be read, and what was read comes back from its own text.

#include "core/settings/SettingsText.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace fieldcore;

namespace {

bool IsSame(const SettingsTextResult& a, const SettingsTextResult& b)
{
    if (a.fault || b.fault || a.keys.size() != b.keys.size()) {
        return false;
    }
    for (std::size_t key = 0; key < a.keys.size(); ++key) {
        const auto& left = a.keys[key].values;
        const auto& right = b.keys[key].values;
        if (a.keys[key].path != b.keys[key].path || left.size() != right.size()) {
            return false;
        }
        for (std::size_t at = 0; at < left.size(); ++at) {
            if (left[at].name != right[at].name || left[at].value != right[at].value) {
                return false;
            }
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const SettingsTextResult read =
        ParseSettingsText(std::string_view(reinterpret_cast<const char*>(data), size));
    if (read.fault) {
        if (!read.keys.empty() || read.fault->line == 0) {
            std::abort();
        }
    } else if (!IsSame(read, ParseSettingsText(FormatSettingsText(read.keys)))) {
        std::abort();
    }
    return 0;
}

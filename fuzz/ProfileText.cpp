// Profile files: any bytes can be read, and an entry that was set is found again with its value.

#include "core/settings/ProfileText.h"
#include "fuzz/Target.h"

#include <string>

using namespace fieldcore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const ProfileText profile(std::string(data, data + size));
    static_cast<void>(profile.Value(L"S", L"K"));
    profile.Visit(profile.Sections(), [](std::size_t, std::wstring_view, std::wstring_view) {});
    const auto changed = profile.WithEntry(L"S", L"K", L"value");
    Check(changed && ProfileText(*changed).Value(L"S", L"K") == L"value");
    Check(ProfileText(*changed).WithEntry(L"S", L"K", L"value") == changed);
    return 0;
}

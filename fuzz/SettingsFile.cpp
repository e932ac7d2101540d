// A settings file of any bytes: opening it never fails badly, and afterwards a setting can be
// stored and read.

#include "core/platform/SqliteSettingsStore.h"
#include "fuzz/Target.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <filesystem>
#include <string>
#include <vector>

using namespace fieldcore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    KeepFilesInMemory();
    const TemporaryFolder folder;
    const std::filesystem::path file = folder.Write("user.db", TextOf(data, size));
    SqliteSettingsStore store(file);
    const std::filesystem::path aside = file.string() + ".damaged-1";
    const bool isAside = store.TakeNotice().kind == SettingsNotice::Kind::SetAside;
    Check(std::filesystem::exists(aside) == isAside);
    Check(!isAside || std::filesystem::file_size(aside) >= size); // nothing is thrown away
    for (const std::wstring& key : store.Keys(L"").value_or(std::vector<std::wstring>())) {
        static_cast<void>(store.Values(key));
    }
    Check(store.Set(L"K", L"n", std::uint32_t{7}, KeyOpening::Create));
    Check(store.Get(L"K", L"n").state == SettingsReadState::Found);
    return 0;
}

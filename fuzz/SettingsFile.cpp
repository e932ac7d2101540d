// A settings file of any bytes: opening it never fails badly, and afterwards a setting can be
// stored and read.

#include "core/platform/SqliteSettingsStore.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using namespace fieldcore;

namespace {

/// In memory where the system has that: thousands of files are made.
std::filesystem::path Scratch()
{
    const std::filesystem::path shared = "/dev/shm";
    const std::filesystem::path base =
        std::filesystem::is_directory(shared) ? shared : std::filesystem::temp_directory_path();
    std::string name = (base / "fieldcore-fuzz-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        std::abort();
    }
    return name;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::filesystem::path folder = Scratch();
    const std::filesystem::path file = folder / "user.db";
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    {
        SqliteSettingsStore store(file);
        for (const std::wstring& key : store.Keys(L"").value_or(std::vector<std::wstring>())) {
            static_cast<void>(store.Values(key));
        }
        if (!store.Set(L"K", L"n", std::uint32_t{7}, KeyOpening::Create) ||
            store.Get(L"K", L"n").state != SettingsReadState::Found) {
            std::abort();
        }
    }
    std::filesystem::remove_all(folder);
    return 0;
}

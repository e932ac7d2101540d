// A process for tests to kill: writes settings or a profile entry over and over, and tells on
// standard output, one byte each, what is on the disk.
// settings_writer settings FOLDER NAME COUNT    numbers 0, 1, 2... as the values NAME0, NAME1...
// settings_writer profile FILE                  a long entry that starts with 1, 2, 3...

#include "core/settings/HostReg.h"
#include "core/settings/Profile.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include <unistd.h>

using namespace fieldcore;

namespace {

bool Acknowledge()
{
    return write(STDOUT_FILENO, "+", 1) == 1;
}

int WriteSettings(const std::string& name, std::uint32_t count)
{
    const HostReg settings;
    for (std::uint32_t number = 0; number < count; ++number) {
        const std::wstring value = std::wstring(name.begin(), name.end()) + std::to_wstring(number);
        if (settings.WriteNumber(L"GPS\\Kill", value, number) == 0 || !Acknowledge()) {
            return EXIT_FAILURE;
        }
    }
    return EXIT_SUCCESS;
}

int WriteProfiles(const std::string& file)
{
    for (std::uint32_t number = 1;; ++number) {
        const std::wstring value = std::to_wstring(number) + std::wstring(200, L'x');
        if (WriteProfile(L"S", L"K", value, file) == 0 || !Acknowledge()) {
            return EXIT_FAILURE;
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    const std::string_view what = argc > 1 ? argv[1] : "";
    if (what == "settings" && argc == 5) {
        // Before any thread: nobody else reads the environment yet.
        setenv("XDG_CONFIG_HOME", argv[2], 1);
        unsetenv("FIELDCORE_MACHINE_STORE");
        const auto count = static_cast<std::uint32_t>(std::strtoul(argv[4], nullptr, 10));
        return WriteSettings(argv[3], count);
    }
    if (what == "profile" && argc == 3) {
        return WriteProfiles(argv[2]);
    }
    return 2;
}

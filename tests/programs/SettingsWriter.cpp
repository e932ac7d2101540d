// A process for tests to kill: settings_writer FOLDER NAME COUNT writes the numbers 0, 1, 2... as
// the values NAME0, NAME1... and tells on standard output, one byte each, what is on the disk.

#include "core/settings/HostReg.h"

#include <cstdint>
#include <cstdlib>
#include <string>

#include <unistd.h>

using namespace fieldcore;

int main(int argc, char** argv)
{
    if (argc != 4) {
        return 2;
    }
    // Before any thread: nobody else reads the environment yet.
    setenv("XDG_CONFIG_HOME", argv[1], 1);
    unsetenv("FIELDCORE_MACHINE_STORE");
    const std::string name = argv[2];
    const unsigned long count = std::strtoul(argv[3], nullptr, 10);
    const HostReg settings;
    for (std::uint32_t number = 0; number < count; ++number) {
        const std::wstring value = std::wstring(name.begin(), name.end()) + std::to_wstring(number);
        if (settings.WriteNumber(L"GPS\\Kill", value, number) == 0 ||
            write(STDOUT_FILENO, "+", 1) != 1) {
            return EXIT_FAILURE;
        }
    }
    return EXIT_SUCCESS;
}

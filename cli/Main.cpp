#include "cli/CommandLine.h"
#include "cli/Failure.h"
#include "cli/World.h"

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    using namespace fieldcore::cli;
    try {
        return RunCommandLine(World::OfThisProcess(),
                              std::vector<std::string>(argv + 1, argv + argc));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fieldcore-cli: %s\n", error.what());
        return static_cast<int>(ExitCode::Failed);
    }
}

#include "cli/ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <initializer_list>
#include <string_view>
#include <system_error>
#include <utility>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fieldcore::cli {

namespace {

std::vector<char*> Pointers(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> EnvironmentOf(const ChildProcess& child)
{
    std::vector<std::string> environment;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view variable(*entry);
        if (!child.environment.contains(std::string(variable.substr(0, variable.find('='))))) {
            environment.emplace_back(variable);
        }
    }
    for (const auto& [name, value] : child.environment) {
        std::string variable = name;
        variable += '=';
        variable += value;
        environment.push_back(std::move(variable));
    }
    return environment;
}

} // namespace

std::optional<int> RunChild(const ChildProcess& child, const std::function<int()>& stopSignal,
                            std::string& error)
{
    std::vector<std::string> arguments = child.arguments;
    std::vector<std::string> environment = EnvironmentOf(child);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t ours; // caught or ignored by this process; the command decides for itself
    sigemptyset(&ours);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        sigaddset(&ours, number);
    }
    posix_spawnattr_setsigdefault(&attributes, &ours);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    pid_t process = 0;
    const int failure = posix_spawnp(&process, arguments.front().c_str(), nullptr, &attributes,
                                     Pointers(arguments).data(), Pointers(environment).data());
    posix_spawnattr_destroy(&attributes);
    if (failure != 0) {
        error = std::generic_category().message(failure);
        return std::nullopt;
    }
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
        if (stopSignal() != 0 && stopSignal() != SIGINT) {
            kill(process, stopSignal());
        }
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace fieldcore::cli

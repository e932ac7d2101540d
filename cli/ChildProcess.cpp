#include "cli/ChildProcess.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
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

constexpr std::array kStopSignals{SIGINT, SIGTERM, SIGHUP};

std::atomic<pid_t> childProcess{0};      // 0: it is not there yet
std::atomic<int> signalBeforeProcess{0}; // 0: none

extern "C" void PassOn(int number, siginfo_t* info, void* /*context*/)
{
    if (info->si_code > 0) {
        return; // by the system for the terminal's foreground, which the command belongs to
    }
    if (const pid_t process = childProcess.load(); process != 0) {
        kill(process, number);
    } else {
        signalBeforeProcess = number;
    }
}

} // namespace

std::optional<int> RunChild(const ChildProcess& child, std::string& error)
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
    std::array<struct sigaction, kStopSignals.size()> actions{};
    for (struct sigaction& action : actions) {
        action.sa_sigaction = PassOn;
        action.sa_flags = SA_SIGINFO;
    }
    const auto exchangeActions = [&actions] { // and back at the second call
        for (std::size_t i = 0; i < kStopSignals.size(); ++i) {
            const struct sigaction next = actions[i];
            sigaction(kStopSignals[i], &next, &actions[i]);
        }
    };
    signalBeforeProcess = 0;
    exchangeActions();
    pid_t process = 0;
    const int failure = posix_spawnp(&process, arguments.front().c_str(), nullptr, &attributes,
                                     Pointers(arguments).data(), Pointers(environment).data());
    posix_spawnattr_destroy(&attributes);
    int status = 0;
    if (failure == 0) {
        childProcess = process;
        if (const int number = signalBeforeProcess.exchange(0); number != 0) {
            kill(process, number);
        }
        // Its number stays taken until it has been waited for: no signal meets a stranger.
        siginfo_t ended = {};
        while (waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOWAIT) < 0 &&
               errno == EINTR) {
        }
        childProcess = 0;
        waitpid(process, &status, 0); // at once
    }
    exchangeActions();
    if (failure != 0) {
        error = std::generic_category().message(failure);
        return std::nullopt;
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace fieldcore::cli

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

/// Passes signals on for as long as it lives.
class SignalRelay
{
public:
    SignalRelay()
    {
        childProcess = 0;
        signalBeforeProcess = 0;
        struct sigaction action = {};
        action.sa_sigaction = PassOn;
        action.sa_flags = SA_SIGINFO;
        sigemptyset(&action.sa_mask);
        for (std::size_t i = 0; i < kStopSignals.size(); ++i) {
            sigaction(kStopSignals[i], &action, &m_before[i]);
        }
    }
    ~SignalRelay()
    {
        for (std::size_t i = 0; i < kStopSignals.size(); ++i) {
            sigaction(kStopSignals[i], &m_before[i], nullptr);
        }
    }
    SignalRelay(const SignalRelay&) = delete;
    SignalRelay& operator=(const SignalRelay&) = delete;

    static void Begin(pid_t process)
    {
        childProcess = process;
        if (const int number = signalBeforeProcess.exchange(0); number != 0) {
            kill(process, number);
        }
    }

private:
    std::array<struct sigaction, kStopSignals.size()> m_before{};
};

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
    const SignalRelay relay;
    pid_t process = 0;
    const int failure = posix_spawnp(&process, arguments.front().c_str(), nullptr, &attributes,
                                     Pointers(arguments).data(), Pointers(environment).data());
    posix_spawnattr_destroy(&attributes);
    if (failure != 0) {
        error = std::generic_category().message(failure);
        return std::nullopt;
    }
    SignalRelay::Begin(process);
    // Its number stays taken until it has been waited for: no signal meets a stranger.
    siginfo_t ended = {};
    while (waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOWAIT) < 0 &&
           errno == EINTR) {
    }
    childProcess = 0;
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace fieldcore::cli

#include "cli/World.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <iostream>
#include <memory>
#include <system_error>

#include <grp.h>
#include <poll.h>
#include <pwd.h>
#include <unistd.h>

namespace fieldcore::cli {

namespace {

volatile std::sig_atomic_t stopSignalNumber = 0;

extern "C" void NoteStop(int number)
{
    stopSignalNumber = number;
}

void CatchStopSignals()
{
    struct sigaction action = {};
    action.sa_handler = NoteStop; // no SA_RESTART: a prompt that waits for input gives up
    sigemptyset(&action.sa_mask);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(number, &action, nullptr);
    }
    // Whoever reads our output may go away first; the simulator's port must be removed all the
    // same.
    std::signal(SIGPIPE, SIG_IGN);
}

std::optional<std::string> Variable(const std::string& name)
{
    const char* const value = std::getenv(name.c_str());
    return value != nullptr && *value != '\0' ? std::optional<std::string>(value) : std::nullopt;
}

std::optional<std::string> ListJapaneseFonts()
{
    const auto close = [](FILE* pipe) { pclose(pipe); };
    const std::unique_ptr<FILE, decltype(close)> pipe(
        popen("fc-list :lang=ja family 2>/dev/null && echo listed", "re"), close);
    if (!pipe) {
        return std::nullopt;
    }
    std::string text;
    std::array<char, 512> buffer{};
    while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), pipe.get()) != nullptr) {
        text += buffer.data();
    }
    constexpr std::string_view kEnd = "listed\n"; // missing when the tool is not there
    if (!text.ends_with(kEnd)) {
        return std::nullopt;
    }
    text.resize(text.size() - kEnd.size());
    return text;
}

World::SerialGroup FindSerialGroup()
{
    World::SerialGroup found;
    const group* const entry = getgrnam("dialout");
    if (entry == nullptr) {
        return found;
    }
    found.name = entry->gr_name;
    const gid_t id = entry->gr_gid;
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(0, getgroups(0, nullptr))));
    groups.resize(static_cast<std::size_t>(
        std::max(0, getgroups(static_cast<int>(groups.size()), groups.data()))));
    found.isMember = geteuid() == 0 || getegid() == id ||
                     std::find(groups.begin(), groups.end(), id) != groups.end();
    const passwd* const user = getpwuid(geteuid());
    for (char** member = entry->gr_mem; user != nullptr && *member != nullptr; ++member) {
        found.isListed = found.isListed || std::string_view(*member) == user->pw_name;
    }
    return found;
}

/// The one place from which this program sets the clock: the user has asked for it by now.
std::string SetMachineClock(Clock::UtcTime time)
{
    SystemClock& clock = SystemClock::Instance();
    clock.AllowSetting(true);
    errno = 0;
    const bool isSet = clock.SetUtc(time);
    const int cause = errno;
    clock.AllowSetting(false);
    return isSet ? std::string() : std::generic_category().message(cause);
}

} // namespace

bool World::HasFailed(const std::istream& stream)
{
    // The standard input takes a failure for its end.
    return stream.bad() || (&stream == &std::cin && std::ferror(stdin) != 0);
}

World World::OfThisProcess()
{
    CatchStopSignals();
    World world;
    world.out = &std::cout;
    world.err = &std::cerr;
    world.in = &std::cin;
    world.outIsTerminal = isatty(STDOUT_FILENO) == 1;
    world.errIsTerminal = isatty(STDERR_FILENO) == 1;
    world.inIsTerminal = isatty(STDIN_FILENO) == 1;
    world.outIsClosed = [] {
        pollfd stream{STDOUT_FILENO, 0, 0};
        return poll(&stream, 1, 0) == 1 && (stream.revents & (POLLERR | POLLHUP)) != 0;
    };
    world.variable = Variable;
    world.stopSignal = [] { return static_cast<int>(stopSignalNumber); };
    world.setClock = SetMachineClock;
    world.folders = FolderSources::System();
    world.listJapaneseFonts = ListJapaneseFonts;
    world.fontFolders = {"/usr/share/fonts", "/usr/local/share/fonts"};
    world.serialGroup = FindSerialGroup;
    return world;
}

} // namespace fieldcore::cli

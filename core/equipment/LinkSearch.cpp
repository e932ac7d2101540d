#include "core/equipment/LinkSearch.h"

#include "core/link/Command.h"
#include "core/resources/StringTable.h"

#include <array>
#include <vector>

namespace fieldcore {

namespace {

// Factory setting, the usual ones, then the rest.
constexpr std::array<std::uint32_t, 7> kLikely{38400, 9600, 115200, 57600, 19200, 4800, 2400};

/// Long enough for a status at 2400 bit/s.
constexpr std::chrono::milliseconds kAnswer{600};

/// Opens the port anew. The channel's fault says why there is no answer.
bool Answers(CCommand& command, const ConnectTarget& target)
{
    command.ClosePort();
    StatusReply status;
    return OpenTarget(command, target) == 1 && command.RequestStatus(status) == 1;
}

} // namespace

std::optional<std::uint32_t> SearchRate(CCommand& command, ConnectTarget target,
                                        const RateWatch& watch)
{
    std::vector<std::uint32_t> rates(kLikely.begin(), kLikely.end());
    std::erase(rates, target.settings.baudRate);
    rates.insert(rates.begin(), target.settings.baudRate);
    target.settings.replyTimeout = kAnswer;
    int done = 0;
    for (const std::uint32_t rate : rates) {
        if (watch) {
            watch(rate, done, static_cast<int>(rates.size()));
        }
        target.settings.baudRate = rate;
        const bool answered = Answers(command, target);
        const bool opened = command.IsPortOpen() == 1;
        command.ClosePort();
        if (answered) {
            return rate;
        }
        if (!opened || command.Fault() == CommandFault::Cancelled ||
            command.Fault() == CommandFault::LinkLost) {
            return std::nullopt;
        }
        ++done;
    }
    return std::nullopt;
}

int RateSearchText(CommandFault fault)
{
    return fault == CommandFault::Cancelled    ? text::kComSearchCancelled
           : fault == CommandFault::OpenFailed ? text::kComSearchPort
                                               : text::kComSearchFailed;
}

LinkFollowed FollowLink(CCommand& command, const ConnectTarget& moved, const PortSettings& before)
{
    // The receiver changes 200 ms after its answer.
    constexpr std::chrono::milliseconds kUntilChanged{300};
    if (command.Rest(kUntilChanged) == 0) {
        command.ClosePort();
        return LinkFollowed::Cancelled;
    }
    ConnectTarget target = moved;
    for (const LinkFollowed found : {LinkFollowed::Moved, LinkFollowed::Stayed}) {
        target.settings = found == LinkFollowed::Moved ? moved.settings : before;
        if (Answers(command, target)) {
            return found;
        }
        if (command.Fault() == CommandFault::Cancelled) {
            command.ClosePort();
            return LinkFollowed::Cancelled;
        }
    }
    command.ClosePort();
    return LinkFollowed::Lost;
}

} // namespace fieldcore

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

} // namespace

std::optional<std::uint32_t> SearchRate(CCommand& command, ConnectTarget target,
                                        RateObserver* observer)
{
    std::vector<std::uint32_t> rates(kLikely.begin(), kLikely.end());
    std::erase(rates, target.settings.baudRate);
    rates.insert(rates.begin(), target.settings.baudRate);
    target.settings.replyTimeout = kAnswer;
    int done = 0;
    for (const std::uint32_t rate : rates) {
        if (observer != nullptr) {
            observer->OnRate(rate, done, static_cast<int>(rates.size()));
        }
        command.ClosePort();
        target.settings.baudRate = rate;
        StatusReply status;
        const bool opened = OpenTarget(command, target) == 1;
        const bool answered = opened && command.RequestStatus(status) == 1;
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
    struct Way
    {
        const PortSettings& settings;
        LinkFollowed found;
    };
    const Way ways[] = {{moved.settings, LinkFollowed::Moved}, {before, LinkFollowed::Stayed}};
    if (command.Rest(kUntilChanged) == 0) {
        command.ClosePort();
        return LinkFollowed::Cancelled;
    }
    for (const Way& way : ways) {
        command.ClosePort();
        ConnectTarget target = moved;
        target.settings = way.settings;
        StatusReply status;
        if (OpenTarget(command, target) == 1 && command.RequestStatus(status) == 1) {
            return way.found;
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

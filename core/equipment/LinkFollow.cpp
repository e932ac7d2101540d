#include "core/equipment/LinkFollow.h"

#include "core/link/Command.h"

namespace fieldcore {

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

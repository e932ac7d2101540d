#pragma once

#include "core/equipment/ReceiverFields.h"
#include "ui/controls/RoleLabel.h"
#include "ui/controls/UiText.h"

#include <string_view>

namespace fieldcore {

/// What the head of the window and the overview are made of.
struct HomeState
{
    Receiver receiver;
    StatusView view;
    QString antenna;    ///< its height and how it was measured, in one line
    QString nextWindow; ///< when the sky is good next today; empty: not known
    QString simulator;  ///< name of the scenario, connected or not; empty: a real receiver

    /// A field of the receiver.
    [[nodiscard]] QString Words(std::string_view key) const
    {
        return ToQt(FieldText(FieldOf(key), receiver, view));
    }
    /// Its colour: what has grown old is grey.
    [[nodiscard]] RoleLabel::Role RoleOf(std::string_view key) const
    {
        return IsStale(FieldOf(key), receiver, view) ? &Theme::stale : &Theme::text;
    }
};

/// Whether there is a receiver that values could come from, or is to be one again.
[[nodiscard]] inline bool HasReceiver(LinkState link)
{
    return link == LinkState::Connected || link == LinkState::Lost ||
           link == LinkState::Reconnecting;
}

/// A field that comes with each answer of the link: it is as old as the last of them.
inline constexpr std::string_view kHeartbeat = "satellitesTracked";

} // namespace fieldcore

#pragma once

#include "core/planning/LiveSkyPoll.h"

#include <QWidget>

#include <optional>

namespace fieldcore {

class RoleLabel;

/// The words above the live sky: how old it is, how many satellites there are, and what is wrong if
/// anything is. User-interface thread only.
class LiveSkyHead : public QWidget
{
    Q_OBJECT

public:
    /// Its labels have the numbers of CSkyPlot's controls.
    explicit LiveSkyHead(QWidget* parent = nullptr);

    /// Without a reading nothing is said to be wrong: the sky itself has room for those words.
    /// @param filter  what is counted; nothing: all
    /// @param now     a Clock's Steady()
    void Show(const LiveSkyPoll::Now& live, std::optional<Constellation> filter,
              Clock::Duration now);

private:
    RoleLabel* m_age; // owned by the widget, as are the others
    RoleLabel* m_counts;
    RoleLabel* m_problem;
};

} // namespace fieldcore

#pragma once

#include "core/equipment/ReceiverFields.h"
#include "core/equipment/StatusHistory.h"
#include "ui/controls/Dialog.h"

#include <vector>

class QBoxLayout;
class QGridLayout;

namespace fieldcore {

class CTextProgressCtrl;
class RoleLabel;
class StatusHistoryView;
struct StatusRow;

/// How the receiver is: the fix and the battery large, the last hour of satellites and PDOP, and
/// value by value the rest, each with its age. It asks nobody: whoever polls calls Show().
/// User-interface thread only.
class StatusPage : public Dialog
{
    Q_OBJECT

public:
    /// An empty page.
    explicit StatusPage(QWidget* parent = nullptr);

    /// Shows what is known. @param history  of the last hour
    void Show(const Receiver& receiver, const StatusHistory& history, const StatusView& view);

Q_SIGNALS:
    /// The user wants the version display.
    void VersionRequested();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Line
    {
        RoleLabel* name; // owned by the dialog, as are the next
        RoleLabel* value;
        RoleLabel* age;
        bool isStale = false;
        bool isAgeBelow = false;
    };
    void PutAge(std::size_t index);
    void ShowTable();
    void ShowRow(std::size_t index, const StatusRow& row);

    RoleLabel* m_fixAge;
    RoleLabel* m_batteryAge;
    RoleLabel* m_headline; // the fix; owned by the dialog, as are the next
    RoleLabel* m_broken;   // limits of the survey
    CTextProgressCtrl* m_battery;
    QGridLayout* m_grid;
    QBoxLayout* m_body; // values, then the graph
    std::vector<Line> m_lines;
    bool m_isWide = false;
    StatusHistoryView* m_history;
    Clock::UtcTime m_epoch{}; // of the clock that the history is timed by
};

} // namespace fieldcore

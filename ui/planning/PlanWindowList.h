#pragma once

#include "ui/controls/RoleLabel.h"
#include "ui/planning/PlanDrawing.h"

#include <QWidget>

namespace fieldcore {

/// "09:00-10:30　90分　衛星8　PDOP 1.9". @param plan  that @p window was found in
[[nodiscard]] QString WindowText(const ObservationPlan& plan, const PlanWindow& window);

/// The best windows of a plan, one a line, with what makes them good: for a screen that has room
/// for them. User-interface thread only.
class PlanWindowList : public QWidget
{
    Q_OBJECT

public:
    explicit PlanWindowList(QWidget* parent = nullptr);

    /// @param drawing  with a computed plan, or none
    void Show(const PlanDrawing& drawing);

protected:
    void changeEvent(QEvent* event) override;

private:
    void UpdateHeading();

    QLabel* m_heading; // owned by the widget, as are the next two
    QLabel* m_windows;
    RoleLabel* m_conditions;
};

} // namespace fieldcore

#pragma once

#include "core/planning/PlanSession.h"

#include <QWidget>

#include <array>

namespace fieldcore {

class ChoiceButton;

/// Takes @p system in or out; the plan is then to be computed. One of which nothing is known is not
/// taken in, and the user told why.
void ToggleSystem(PlanSession& session, GnssSystem system);

/// The systems of a plan as buttons in the colours and shapes of the live sky: how many satellites
/// are known of each, in amber how old they are where that is too old, and which have none. They
/// show what the plan has: a tap only asks. Where there is no room for that row, one button stands
/// for it. User-interface thread only.
class PlanSystemsBar : public QWidget
{
    Q_OBJECT

public:
    explicit PlanSystemsBar(QWidget* parent = nullptr);

    /// @param plan  its Systems() and what is known of them when its Period() starts
    void Show(const ObservationPlan& plan);

    /// The button that stands for the bar and folds it out: the letters of the systems that count
    /// and how many satellites they have together. It belongs to the layout that takes it.
    [[nodiscard]] ChoiceButton* FoldButton() const { return m_fold; }
    /// @param isFoldable  false: the whole bar is there, and the button is not
    void SetFoldable(bool isFoldable);

Q_SIGNALS:
    /// The user wants the system in, or out.
    void Chosen(GnssSystem system);

protected:
    void changeEvent(QEvent* event) override;

private:
    void UpdateSigns();

    std::array<ChoiceButton*, kGnssSystems> m_buttons; // owned by the widget
    ChoiceButton* m_fold;
};

} // namespace fieldcore

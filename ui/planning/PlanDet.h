#pragma once

#include "core/planning/SurveyPlanCalc.h"
#include "ui/controls/PropertyPage.h"

#include <array>

class QAbstractButton;
class QLabel;

namespace fieldcore {

class CSpinDouble;
class CSurveyPlan;

/// Page of the plan's detail settings: which satellites count, and what makes a window of time a
/// good one. User-interface thread only.
class CPlanDet : public PropertyPage
{
    Q_OBJECT

public:
    /// @param plan  read when the page is shown and set on OK; must outlive it
    explicit CPlanDet(CSurveyPlan& plan, QWidget* parent = nullptr);

protected:
    void OnInitDialog() override;
    bool OnKillActive() override;
    bool OnOK() override;

private:
    void CheckAll(bool checked);

    CSurveyPlan& m_plan;
    std::array<QAbstractButton*, CSurveyPlanCalc::kSatellites> m_satellites; // owned by the page
    QLabel* m_legend; // owned by the page, as is all that follows
    CSpinDouble* m_fewest;
    CSpinDouble* m_pdop;
    CSpinDouble* m_minutes;
    QAbstractButton* m_clocks;
};

} // namespace fieldcore

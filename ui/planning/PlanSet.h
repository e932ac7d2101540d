#pragma once

#include "ui/controls/PropertyPage.h"

namespace fieldcore {

class CSpinDouble;
class CSurveyPlan;
class CTComboBox;
class LabelSpin;

/// Page of the plan's detail settings: elevation mask, period, and kind of graph. User-interface
/// thread only.
class CPlanSet : public PropertyPage
{
    Q_OBJECT

public:
    /// @param plan  read when the page is shown and set on OK; must outlive it
    explicit CPlanSet(CSurveyPlan& plan, QWidget* parent = nullptr);

protected:
    void OnInitDialog() override;
    bool OnOK() override;

private:
    void FitHours();

    CSurveyPlan& m_plan;
    CSpinDouble* m_mask; // owned by the page, as is all that follows
    LabelSpin* m_start;
    LabelSpin* m_hours;
    CTComboBox* m_graph;
};

} // namespace fieldcore

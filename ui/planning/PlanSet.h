#pragma once

#include "ui/controls/PropertyPage.h"
#include "ui/planning/PlanSurroundings.h"

#include <functional>

class QVBoxLayout;

namespace fieldcore {

class CSpinDouble;
class CSurveyPlan;
class CTComboBox;
class LabelSpin;

/// Offers the conditions of the survey that is run, on a page of the detail settings; nothing where
/// nobody knows them.
/// @param take  puts them into the page's fields
void AddConditions(QVBoxLayout& layout, const CSurveyPlan& plan,
                   const std::function<void(const PlanSurroundings::Conditions&)>& take);

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

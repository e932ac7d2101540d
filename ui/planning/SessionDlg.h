#pragma once

#include "core/planning/SiteSkies.h"
#include "ui/controls/Dialog.h"
#include "ui/planning/PlanSurroundings.h"

#include <optional>
#include <vector>

class QLabel;
class QScrollArea;
class QStackedWidget;

namespace fieldcore {

class SiteChoice;

/// Several sites of the list at the day and the hours of the plan: what all of them see at once,
/// and a row for each. User-interface thread only.
class SessionDlg : public Dialog
{
    Q_OBJECT

public:
    /// @param session  must outlive the dialog, as must the rest
    SessionDlg(PlanSession& session, const PlanSurroundings& surroundings,
               QWidget* parent = nullptr);

private:
    QWidget* BuildChoice();
    QWidget* BuildRows();
    void ShowRows();
    void Export();

    PlanSession& m_session;
    const PlanSurroundings& m_surroundings;
    std::vector<SiteSky> m_sites;
    std::optional<PlanSearch> m_search;
    QStackedWidget* m_pages; // owned by the dialog, as is all that follows
    SiteChoice* m_siteList;
    QLabel* m_heading;
    QLabel* m_together;
    QScrollArea* m_rows;
};

} // namespace fieldcore

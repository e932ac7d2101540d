#pragma once

#include "core/host/Host.h"
#include "core/planning/SiteSkies.h"
#include "ui/controls/Dialog.h"

#include <QTimer>

#include <optional>
#include <vector>

class QLabel;
class QPushButton;
class QStackedWidget;

namespace fieldcore {

class CSpinDouble;
class CTComboBox;
class CTextProgressCtrl;
class LabelSpin;
class PlanSystemsBar;
class SiteChoice;

/// Searches days for hours that are good to observe at one or several sites, and shows the best of
/// each day as a calendar. Searches in slices, so that Cancel answers at once. The systems that are
/// chosen here, and the conditions of a search, are the plan's from then on, whatever ends the
/// dialog; sites and hours are offered again the next time. User-interface thread only.
class PlanSearchDlg : public Dialog
{
    Q_OBJECT

public:
    /// @param session  whose site list, mask, systems and conditions count; must outlive the dialog
    PlanSearchDlg(PlanSession& session, QWidget* parent = nullptr);

    /// What the user has tapped: the plan to show. After DoModal() with kOk.
    [[nodiscard]] const std::optional<PlanHours>& Chosen() const { return m_chosen; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void OnDestroy() override { m_slices.stop(); }

private:
    QWidget* BuildForm();
    QWidget* BuildResult();
    [[nodiscard]] WindowLimits Limits() const;
    void Start();
    void Stop();
    void ShowSearching(bool isSearching);
    void Slice();
    void ShowResult();
    void ShowCalendar();
    [[nodiscard]] std::size_t Site() const;

    PlanSession& m_session;
    QTimer m_slices;
    std::vector<SiteSky> m_sites;
    std::optional<PlanSearch> m_search;
    SearchHours m_hours;
    std::optional<PlanHours> m_chosen;
    QStackedWidget* m_pages; // owned by the dialog, as is all that follows
    PlanSystemsBar* m_systems;
    SiteChoice* m_siteList;
    LabelSpin* m_days;
    LabelSpin* m_start;
    LabelSpin* m_hoursSpin;
    CSpinDouble* m_minutes;
    CSpinDouble* m_fewest;
    CSpinDouble* m_pdop;
    CTextProgressCtrl* m_progress;
    QPushButton* m_cancel;
    QPushButton* m_go;
    CTComboBox* m_site;
    QLabel* m_conditions;
    QLabel* m_best;
    QWidget* m_calendar;
    QLabel* m_notes;
};

} // namespace fieldcore

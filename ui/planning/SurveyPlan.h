#pragma once

#include "core/planning/PlanSession.h"
#include "core/platform/Assign.h"
#include "core/settings/HostReg.h"
#include "ui/controls/Dialog.h"
#include "ui/planning/PlanDrawing.h"
#include "ui/planning/PlanSurroundings.h"

#include <chrono>
#include <optional>
#include <string>

class QBoxLayout;
class QGridLayout;
class QLabel;
class QPushButton;
class QSlider;
class QToolButton;

namespace fieldcore {

class CCommand;
class CnMenuBar;
class CnToolBar;
class CTextProgressCtrl;
class LabelSpin;
class PlanGraphView;
class PlanHeader;
class PlanSystemsBar;
class PlanWindowList;

/// The screen of the observation plan: for one day, a period of whole hours and a site, it shows
/// how many satellites can be used, how good their geometry is, and where they stand. The rules are
/// PlanSession's. User-interface thread only.
///
/// The ground of the graph is the yellow of the controller's screens by daylight, and the theme's
/// own in the dark, where that would blind.
class CSurveyPlan : public Dialog
{
    Q_OBJECT

public:
    // Numbers of the controls; the dates' are PlanHeader's.
    static constexpr int kTemplateId = 21013;
    static constexpr int kTemplateQ77Id = 23425; ///< on the controller with the taller screen
    static constexpr int kMenuBarId = 21201;
    static constexpr int kGraphId = 21373;
    static constexpr int kStartLabelId = 21374;
    static constexpr int kStartSpinId = 21375;
    static constexpr int kEndLabelId = 21376;
    static constexpr int kEndSpinId = 21377;

    // Numbers of the menu's items; those of the graphs, 21901 to 21907, are a group of choices.
    static constexpr int kFirstGraph = 21901;
    static constexpr int kLastGraph = 21907;
    static constexpr int kDetailItem = 21911;
    static constexpr int kAlmanacItem = 21912;
    static constexpr int kCurtainItem = 21913;
    static constexpr int kImportItem = 21914;
    static constexpr int kSearchItem = 21915;
    static constexpr int kSessionItem = 21916;
    static constexpr int kTableItem = 21917;

    /// Redraws when the user has left the spins alone for so long.
    static constexpr int kRefreshTimer = 256;
    static constexpr int kRefreshMs = 1000;
    /// Looks whether today is another day.
    static constexpr int kDayTimer = 257;
    static constexpr int kDayMs = 60'000;

    /// @param command  channel to the receiver, not owned; without one there is no almanac update
    /// @param loadWay  not 0: the screen is the host's program by itself, and closing it asks how
    /// to end the program
    CSurveyPlan(CCommand* command, int loadWay, QWidget* parent = nullptr);
    CSurveyPlan(CCommand* command, int loadWay, const PlanSurroundings& surroundings,
                QWidget* parent = nullptr);
    ~CSurveyPlan() override;

    /// Hands what the settings have to the spins and their labels, or back.
    /// @param fromControls  true: the spins' hours become the period, by the rules of their moves
    void DoDataExchange(bool fromControls);
    bool OnInitDialog() override;

    // What the pages of the detail settings read and set; DrawResults() shows it. Setters bring
    // what they are given into its range and answer 1 if the value changed.

    /// The sky of the plan, the channel and the way it was loaded.
    [[nodiscard]] CSurveyPlanCalc* GetSurveyPlanCalc() { return &m_session.Plan().Calc(); }
    [[nodiscard]] CCommand* GetCCommand() const { return m_command; }
    [[nodiscard]] int GetLoadWay() const { return m_loadWay; }
    /// Counts for closing at once, for the menu bar if it comes before OnInitDialog().
    void SetLoadWay(int loadWay) { m_loadWay = loadWay; }
    /// Elevation mask, whole degrees, 0 to 90.
    [[nodiscard]] int GetElMaskData() const { return m_session.Settings().elMaskDeg; }
    int SetElMaskData(int maskDeg);
    /// First hour of the period, Japan Standard Time, 0 to 23.
    [[nodiscard]] int GetStartTimeData() const { return m_session.Settings().startHour; }
    int SetStartTimeData(int hour);
    /// Length of the period, hours, 1 to 24 and not beyond midnight.
    [[nodiscard]] int GetDispTimeData() const { return m_session.Settings().hours; }
    int SetDispTimeData(int hours);
    /// Minutes between two samples: those of the last drawing, which works them out anew.
    [[nodiscard]] int GetIntervalData() const { return m_intervalMin; }
    int SetIntervalData(int minutes) { return Assign(m_intervalMin, minutes); }
    /// How the site page shows coordinates.
    [[nodiscard]] int GetListCoordData() const { return m_session.Settings().listCoord; }
    int SetListCoordData(int choice);
    /// The site's place in the list of sites, counted from 1.
    [[nodiscard]] int GetPositionData() const { return m_session.Settings().positionNo; }
    int SetPositionData(int number);
    [[nodiscard]] const std::wstring& GetPositionStr() const;
    /// @param name  of the site; ReadPosition() goes there
    int SetPositionStr(const std::wstring& name);
    /// Where the site's coordinates come from: 0 the list, 1 the receiver.
    [[nodiscard]] int GetPositionID() const { return m_session.Settings().positionId; }
    int SetPositionID(int id);
    /// The day of the plan. One that is none changes nothing.
    int SetSystemTime(std::chrono::year_month_day date);
    [[nodiscard]] std::chrono::year_month_day GetSystemTime() const { return m_session.Date(); }
    /// Takes the coordinates of the site from the site file.
    void ReadPosition() { m_session.ReadSite(); }

    // And beyond these:

    /// The plan without the screen, and what is around it.
    [[nodiscard]] PlanSession& Session() { return m_session; }
    [[nodiscard]] const PlanSurroundings& Surroundings() const { return m_surroundings; }
    [[nodiscard]] Host& GetHost() const { return m_session.GetEnvironment().GetHost(); }
    /// The day that Japan has by the clock of the channel.
    [[nodiscard]] std::chrono::sys_days Today() const;

    /// The menu item of a graph; a graph that is none has that of the first.
    [[nodiscard]] static int GetMenuID(int drawType);

    /// Computes the plan and shows it, under the wait cursor.
    void DrawResults();

protected:
    bool OnClose(int result) override;
    void OnDestroy() override;
    void OnTimer(int id) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

    /// Items of the menu: detail settings, curtain, almanac.
    void OnPlanSetDetail();
    void OnPlanSetCurtain();
    void OnPlanSetAlm();
    /// A spin was moved, or let go of.
    void OnHScroll(bool isEnd, bool isStartSpin);

private:
    void BuildControls();
    QWidget* BuildPanel();
    void BuildMenu();
    void OnMenu(int id);
    void SetDrawType(int drawType);
    void ShowGraph();
    void ShowSite();
    void ShowDates();
    void ShowSpins(const PlanSession::Spins& spins);
    void ShowWindows();
    void ShowSlider();
    void SetDay(std::chrono::year_month_day date);
    void ChooseSystem(GnssSystem system);
    void DragMask(int maskDeg);
    void OfferOldMask();
    void UndoMask();
    void Export();
    void Import();
    void SearchDays();
    void SetGround();
    void Tell(const AlmanacMessage& message) const;
    template <typename Change>
    int ChangeSettings(Change change);
    [[nodiscard]] PlanDrawing Drawing() const;

    CCommand* const m_command;
    int m_loadWay;
    const PlanSurroundings m_surroundings;
    PlanSession m_session;
    const bool m_isTall; // the controller with the taller screen
    int m_intervalMin = 0;
    std::optional<int> m_oldMaskDeg; // before its ring was dragged

    CnMenuBar* m_menu = nullptr; // owned by the dialog, as is all that follows
    QBoxLayout* m_body;          // panel and graph: one below the other, or side by side
    QWidget* m_panel;
    PlanHeader* m_header;
    PlanSystemsBar* m_systems;
    CnToolBar* m_tools;
    LabelSpin* m_start;
    LabelSpin* m_end;
    PlanGraphView* m_graph;
    QToolButton* m_enlarge; // on a small screen: the graph without the panel
    QGridLayout* m_below;   // the graph
    QSlider* m_time;
    QPushButton* m_maskUndo;
    QLabel* m_windows;            // two of them, below the graph
    PlanWindowList* m_windowList; // all of them, where the panel stands beside it or it is tall
    CTextProgressCtrl* m_progress;
};

} // namespace fieldcore

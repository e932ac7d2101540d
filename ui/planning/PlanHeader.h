#pragma once

#include "ui/planning/PlanDrawing.h"

#include <QWidget>

#include <chrono>

class QAbstractButton;
class QHBoxLayout;
class QLabel;

namespace fieldcore {

/// The head of the plan's screen: the site, its day with buttons that change it, and the almanac
/// with its source and its age, in amber where it is old, missing or made up. With more than GPS
/// the systems and their ages stand in its place. User-interface thread only.
class PlanHeader : public QWidget
{
    Q_OBJECT

public:
    // Numbers of the labels that show the dates.
    static constexpr int kPlanDateId = 21378;
    static constexpr int kAlmanacDateId = 21380;

    explicit PlanHeader(QWidget* parent = nullptr);

    /// Puts a bar of tools beside the site's name.
    /// @param tools  owned by the header from now on
    void AddTools(QWidget* tools);

    /// @param site  its name
    /// @param isKnown  its coordinates are in the site file; if not, the header says so
    void ShowSite(const QString& site, bool isKnown);
    /// Shows both dates as year, month and day; that of the almanac as "--" while there is none.
    /// Beside that of the plan stands its weekday, and whether it is today or next to it.
    /// @param drawing  with its plan, whose Period() and Calc() count
    /// @param today    in Japan
    void ShowDates(const PlanDrawing& drawing, std::chrono::sys_days today);

Q_SIGNALS:
    /// @param days  to go by, 1 or -1
    void DayStepped(int days);
    void CalendarRequested();
    void TodayRequested();

protected:
    void changeEvent(QEvent* event) override;

private:
    static QAbstractButton* MakeButton(const QString& icon, int nameId);
    void UpdateLook();

    QHBoxLayout* m_top; // owned by the widget, as is all that follows
    QLabel* m_site;
    QLabel* m_siteNote;
    QLabel* m_date;
    QLabel* m_weekday;
    QAbstractButton* m_today;
    QLabel* m_almanac;
    QLabel* m_almanacDate;
    QLabel* m_source;
    QLabel* m_almanacSign;
    QLabel* m_age;
    bool m_isAlmanacBad = false;
    bool m_isMadeUp = false;
};

} // namespace fieldcore

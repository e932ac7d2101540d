#pragma once

#include "core/planning/ObservationPlan.h"
#include "core/planning/PlanWindows.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <string>
#include <vector>

namespace fieldcore {

/// What a picture of a plan is made of. Place, almanac and curtain are those of the plan itself.
struct PlanDrawing
{
    const ObservationPlan* plan = nullptr; ///< after its Compute(); not owned, must outlive this
    PlanGraph graph = PlanGraph::Count;
    std::wstring site;
    bool isPlaceKnown = true; ///< false: the plan computes for a place that nobody has given
    int maskDeg = 15;         ///< as the plan was computed with, 0 to 90
    WindowLimits limits;
    double minutes = 0.0; ///< after the start of the period: what the tracks are brightest at
    bool isFromBelow =
        false;              ///< the sky as a map that lies on the ground shows it: east to the left
    bool hasHeader = false; ///< site, day and orbits stand beside it: the caption leaves them out

    /// @return whether there is anything to draw
    [[nodiscard]] bool HasPlan() const { return plan != nullptr && plan->Division() > 0; }
    /// Whole length of the period, minutes; 0 without a plan.
    [[nodiscard]] double LengthMin() const;
    /// Minutes between two epochs; 1 without a plan.
    [[nodiscard]] double IntervalMin() const;
    /// The satellites at #minutes.
    [[nodiscard]] std::vector<SkySatellite> Sky() const;
    /// Why nothing can be drawn; empty if something can.
    [[nodiscard]] QString Obstacle() const;
};

// The words of a picture.

/// The number of the text that names a graph.
[[nodiscard]] int GraphTextId(PlanGraph graph);
[[nodiscard]] QString GraphText(PlanGraph graph);
[[nodiscard]] QString PrnText(int prn);
/// At its sign: "12", and with more than GPS "G12".
[[nodiscard]] QString SatelliteLabel(const PlanDrawing& drawing, SatelliteId satellite);

/// The systems of a plan and its clocks: "GPS+GLO、受信機時計1つ".
[[nodiscard]] QString SystemsText(const ObservationPlan& plan);
/// How far its orbits are from the plan, each system by itself where they differ:
/// "軌道情報との差：GLONASS 3日、SBAS 3日（古い）".
[[nodiscard]] QString MessageAgesText(const ObservationPlan& plan);
/// What is known of @p system at the start of @p plan; where GPS is alone, of its almanac.
[[nodiscard]] SystemState StateOf(const ObservationPlan& plan, GnssSystem system);
/// How far from the plan, either way: "3日".
[[nodiscard]] QString AgeText(const SystemState& state);

/// Site, height, day, mask, curtain and almanac with its age: what tells one picture from another.
/// With more than GPS the systems stand in place of the almanac, if that is not made up. Beside a
/// header only height, mask and curtain.
[[nodiscard]] QStringList PlanCaption(const PlanDrawing& drawing);
/// "2026/11/20", the calendar day of @p time without a change of zone.
[[nodiscard]] QString DateText(std::chrono::sys_seconds time);
/// The plan's day.
[[nodiscard]] QString PlanDateText(const PlanDrawing& drawing);
/// How old the almanac is, by the days of the calendar that are shown: "観測日の3日前".
[[nodiscard]] QString AlmanacAgeText(const PlanDrawing& drawing);
/// The same for a screen, against @p today as well: "今日の2日前、観測日の3日前".
[[nodiscard]] QString AlmanacAgeText(const PlanDrawing& drawing, std::chrono::sys_days today);

// What the cursor tells.

/// The sample's time and value. Its time is that of the sample, not of the pointer.
[[nodiscard]] QStringList ReadingOfSample(const PlanDrawing& drawing, int sample);
/// The time alone: "09:30 JST（00:30 UTC）".
[[nodiscard]] QString ReadingOfTime(const PlanDrawing& drawing, double minutes);
[[nodiscard]] QStringList ReadingOfSatellite(const PlanDrawing& drawing,
                                             const SkySatellite& satellite);

/// The figures of a plan, for who cannot read the graph: for each epoch the count and the three
/// dilutions, or of tracks every satellite that can be used then.
struct PlanFigures
{
    QStringList heads;
    QList<QStringList> rows; ///< as many texts each
};
[[nodiscard]] PlanFigures FiguresOf(const PlanDrawing& drawing);

} // namespace fieldcore

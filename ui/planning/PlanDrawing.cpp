#include "ui/planning/PlanDrawing.h"

#include "core/planning/AlmanacState.h"
#include "core/planning/PlanSeries.h"
#include "core/platform/Degrees.h"
#include "ui/controls/UiText.h"
#include "ui/planning/LiveSkyStyle.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>

namespace fieldcore {

namespace {

constexpr int kMinutesOfDay = 24 * 60;
constexpr int kJapanAheadMin = 9 * 60;
constexpr double kDayS = 86400.0;

/// @param minutes  of the day; others are taken to the day they belong to
QString ClockText(int minutes)
{
    const int held = (minutes % kMinutesOfDay + kMinutesOfDay) % kMinutesOfDay;
    return QStringLiteral("%1:%2")
        .arg(held / 60, 2, 10, QLatin1Char('0'))
        .arg(held % 60, 2, 10, QLatin1Char('0'));
}

/// How many days a day lies before or behind another.
/// @param sameId  the number of the text for the same day; those for before and behind follow it
std::wstring Behind(std::chrono::sys_days day, std::chrono::sys_days other, int sameId)
{
    static_assert(text::kAgeBeforePlan == text::kAgeOfPlanDay + 1 &&
                  text::kAgeBehindPlan == text::kAgeOfPlanDay + 2 &&
                  text::kAgeBeforeToday == text::kAgeOfToday + 1 &&
                  text::kAgeBehindToday == text::kAgeOfToday + 2);
    const auto days = static_cast<int>((day - other).count());
    return days == 0 ? Text(sameId) : FormatText(sameId + (days < 0 ? 1 : 2), std::abs(days));
}

QString Urged(const std::wstring& age, const AlmanacState& almanac)
{
    return ToQt(almanac.isOld ? FormatText(text::kAgeOld, age.c_str()) : age);
}

} // namespace

double PlanDrawing::LengthMin() const
{
    return HasPlan() ? plan->Division() * IntervalMin() : 0.0;
}

double PlanDrawing::IntervalMin() const
{
    return HasPlan() ? static_cast<double>(plan->Computed().Interval().count()) : 1.0;
}

std::vector<SkySatellite> PlanDrawing::Sky() const
{
    if (!HasPlan()) {
        return {};
    }
    return SkyAt(*plan, std::chrono::seconds(std::lround(minutes * 60.0)));
}

QString PlanDrawing::Obstacle() const
{
    if (plan != nullptr && plan->IsGpsAlone() && StateOfAlmanac(*plan).satellites == 0) {
        return UiText(text::kPlotNoAlmanac);
    }
    if (HasPlan() && plan->Satellites().empty()) {
        return UiText(text::kPlotNoMessages);
    }
    return HasPlan() ? QString() : UiText(text::kPlotNotComputed);
}

int GraphTextId(PlanGraph graph)
{
    constexpr std::array kIds{text::kGraphCount,     text::kGraphSkyPlot, text::kGraphAzimuth,
                              text::kGraphElevation, text::kGraphPdop,    text::kGraphGdop,
                              text::kGraphTdop};
    return kIds[static_cast<std::size_t>(graph)];
}

QString GraphText(PlanGraph graph)
{
    return UiText(GraphTextId(graph));
}

QString PrnText(int prn)
{
    return ToQt(FormatText(text::kReadingPrn, prn));
}

QString SatelliteLabel(const PlanDrawing& drawing, SatelliteId satellite)
{
    return drawing.plan->IsGpsAlone() ? QString::number(satellite.number)
                                      : QString::fromStdString(satellite.Text());
}

QString SystemsText(const ObservationPlan& plan)
{
    QStringList names;
    for (std::size_t k = 0; k < kGnssSystems; ++k) {
        if (plan.Systems().test(k)) {
            names += UiText(text::kSystemShortGps + static_cast<int>(k));
        }
    }
    return UiText(plan.HasClockPerSystem() ? text::kSystemsManyClocks : text::kSystemsOneClock)
        .arg(names.join(QLatin1Char('+')));
}

SystemState StateOf(const ObservationPlan& plan, GnssSystem system)
{
    SystemState state = plan.StateOf(system);
    if (system == GnssSystem::Gps && plan.IsGpsAlone()) {
        const AlmanacState almanac = StateOfAlmanac(plan);
        state.satellites = almanac.satellites;
        state.healthy = almanac.healthy;
        state.ageS = std::abs(almanac.ageDays) * kDayS;
        state.isStale = almanac.isOld;
    }
    return state;
}

QString AgeText(const SystemState& state)
{
    constexpr double kHourS = 3600.0;
    return state.ageS < kDayS ? UiText(text::kSystemHoursOld).arg(std::lround(state.ageS / kHourS))
                              : UiText(text::kSystemDaysOld).arg(std::lround(state.ageS / kDayS));
}

QString MessageAgesText(const ObservationPlan& plan)
{
    QStringList words;
    QStringList ages;
    for (std::size_t k = 0; k < kGnssSystems; ++k) {
        const auto system = static_cast<GnssSystem>(k);
        if (!plan.Systems().test(k)) {
            continue;
        }
        const SystemState state = plan.StateOf(system);
        if (state.satellites == 0) {
            words += UiText(text::kSystemUnknownOrbit).arg(SystemText(system));
            ages += QString();
        } else if (state.isStale) {
            words += UiText(text::kSystemStaleOrbit).arg(SystemText(system), AgeText(state));
            ages += QString();
        } else {
            words += SystemText(system) + QLatin1Char(' ') + AgeText(state);
            ages += AgeText(state);
        }
    }
    const bool isOneForAll = ages.removeDuplicates() >= 0 && ages.size() == 1 && !ages[0].isEmpty();
    return UiText(text::kSystemOrbit)
        .arg(isOneForAll ? ages[0] : words.join(UiText(text::kPlanListSeparator)));
}

QString DateText(std::chrono::sys_seconds time)
{
    const std::chrono::year_month_day date(std::chrono::floor<std::chrono::days>(time));
    return ToQt(FormatText(text::kPlotDate, static_cast<int>(date.year()),
                           static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day())));
}

QString PlanDateText(const PlanDrawing& drawing)
{
    return DateText(std::chrono::sys_days(drawing.plan->Computed().date));
}

QString AlmanacAgeText(const PlanDrawing& drawing)
{
    const AlmanacState almanac = StateOfAlmanac(*drawing.plan);
    return Urged(Behind(almanac.Day(), drawing.plan->Period().date, text::kAgeOfPlanDay), almanac);
}

QString AlmanacAgeText(const PlanDrawing& drawing, std::chrono::sys_days today)
{
    const AlmanacState almanac = StateOfAlmanac(*drawing.plan);
    const std::chrono::sys_days day = drawing.plan->Period().date;
    std::wstring age = Behind(almanac.Day(), today, text::kAgeOfToday);
    if (day != today) {
        const std::wstring ofPlan = Behind(almanac.Day(), day, text::kAgeOfPlanDay);
        age = FormatText(text::kAgeBoth, age.c_str(), ofPlan.c_str());
    }
    return Urged(age, almanac);
}

QStringList PlanCaption(const PlanDrawing& drawing)
{
    const CSurveyPlanCalc& calc = drawing.plan->Calc();
    const AlmanacState almanac = StateOfAlmanac(*drawing.plan);
    const std::wstring date = DateText(almanac.time).toStdWString();
    const QString height = drawing.isPlaceKnown
                               ? ToQt(FormatText(text::kPlotHeight, calc.GetObserver().heightM))
                               : UiText(text::kSheetPlace) + QStringLiteral(" --");
    const QString mask = ToQt(FormatText(text::kPlotMask, drawing.maskDeg));
    const QString curtain =
        UiText(HasObstruction(calc.GetCurtain()) ? text::kPlotWithCurtain : text::kPlotNoCurtain);
    if (drawing.hasHeader) {
        return {height, mask, curtain};
    }
    QStringList caption{ToQt(drawing.site), height, PlanDateText(drawing), mask, curtain};
    if (!drawing.plan->IsGpsAlone()) {
        caption += {SystemsText(*drawing.plan), MessageAgesText(*drawing.plan)};
    } else {
        caption += {ToQt(FormatText(text::kPlotAlmanac, date.c_str())), AlmanacAgeText(drawing)};
    }
    if (drawing.plan->IsGpsAlone() ||
        (drawing.plan->UsesAlmanac() && almanac.source.origin == AlmanacOrigin::Nominal)) {
        caption += ToQt(SourceText(almanac.source));
    }
    return caption;
}

QString ReadingOfTime(const PlanDrawing& drawing, double minutes)
{
    const int jst =
        drawing.plan->Computed().startHour * 60 + static_cast<int>(std::lround(minutes));
    const QString local =
        jst == kMinutesOfDay ? QStringLiteral("24:00") : ClockText(jst); // still the plan's day
    return ToQt(FormatText(text::kReadingTime, local.toStdWString().c_str(),
                           ClockText(jst - kJapanAheadMin).toStdWString().c_str()));
}

QStringList ReadingOfSample(const PlanDrawing& drawing, int sample)
{
    const PlanGraph graph = drawing.graph;
    QStringList lines{ReadingOfTime(drawing, EpochOfSample(graph, sample) * drawing.IntervalMin())};
    const std::optional<double> value = SampleAt(*drawing.plan, graph, sample);
    if (!value) {
        lines += UiText(text::kPlotTooFewSatellites);
    } else if (IsDilution(graph)) {
        lines += ToQt(FormatText(text::kReadingDilution, Text(GraphTextId(graph)), *value));
    } else {
        lines += ToQt(FormatText(text::kReadingCount, *value));
    }
    return lines;
}

QStringList ReadingOfSatellite(const PlanDrawing& drawing, const SkySatellite& satellite)
{
    QString name = drawing.plan->IsGpsAlone()
                       ? PrnText(satellite.satellite.number)
                       : SystemText(satellite.satellite.system) + QLatin1Char(' ') +
                             SatelliteLabel(drawing, satellite.satellite);
    if (!satellite.isVisible) {
        name += QLatin1Char(' ') + UiText(text::kReadingHidden);
    }
    return {name,
            ToQt(FormatText(text::kReadingAzimuth, DegreesOf(satellite.direction.azimuthRad))),
            ToQt(FormatText(text::kReadingElevation, DegreesOf(satellite.direction.elevationRad)))};
}

PlanFigures FiguresOf(const PlanDrawing& drawing)
{
    const ObservationPlan& plan = *drawing.plan;
    const auto clock = [&](int epoch) {
        return QString::fromStdString(plan.Computed().ClockText(epoch));
    };
    PlanFigures figures;
    figures.heads += QStringLiteral("JST");
    if (IsTracks(drawing.graph)) {
        figures.heads += {UiText(text::kSkyColumnName), GraphText(PlanGraph::Azimuth),
                          GraphText(PlanGraph::Elevation)};
        const auto degrees = [](double rad) {
            return ToQt(FormatText(text::kSkyDegrees, DegreesOf(rad)));
        };
        for (int epoch = 0; epoch <= plan.Division(); ++epoch) {
            for (std::size_t i = 0; i < plan.Satellites().size(); ++i) {
                if (const auto direction = plan.DirectionAt(static_cast<int>(i), epoch)) {
                    figures.rows.push_back(
                        {clock(epoch), SatelliteLabel(drawing, plan.Satellites()[i]),
                         degrees(direction->azimuthRad), degrees(direction->elevationRad)});
                }
            }
        }
        return figures;
    }
    const PlanGraph graphs[] = {PlanGraph::Count, PlanGraph::Pdop, PlanGraph::Gdop,
                                PlanGraph::Tdop};
    for (const PlanGraph graph : graphs) {
        figures.heads += GraphText(graph);
    }
    for (int epoch = 0; epoch <= plan.Division(); ++epoch) {
        QStringList row{clock(epoch)};
        for (const PlanGraph graph : graphs) {
            const int sample = epoch - EpochOfSample(graph, 0);
            const auto value = sample < 0 || sample >= plan.Division()
                                   ? std::nullopt
                                   : SampleAt(plan, graph, sample);
            row += value ? QString::number(*value, 'f', graph == PlanGraph::Count ? 0 : 2)
                         : UiText(text::kSkyNoValue);
        }
        figures.rows.push_back(row);
    }
    return figures;
}

} // namespace fieldcore

#include "core/planning/PlanCsv.h"

#include "core/orbits/SystemTime.h"
#include "core/planning/AlmanacState.h"
#include "core/planning/PlanSeries.h"
#include "core/platform/Degrees.h"
#include "core/platform/NumberText.h"
#include "core/platform/Utf8.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace fieldcore {

namespace {

constexpr const char* kLineEnd = "\r\n";

} // namespace

std::string CsvField(std::string_view text)
{
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
        return std::string(text);
    }
    std::string quoted = "\"";
    for (const char c : text) {
        quoted += c;
        quoted += c == '"' ? "\"" : "";
    }
    return quoted + "\"";
}

namespace {

std::string Fixed(double number, std::uint8_t decimals)
{
    return std::isfinite(number) ? ToUtf8(FormatFixed(number, decimals)) : std::string();
}

std::string Whole(std::uint32_t number, std::size_t width)
{
    return ToUtf8(FormatWhole(number, width));
}

std::string DayText(std::chrono::sys_days date)
{
    const std::chrono::year_month_day day(date);
    return Whole(static_cast<std::uint32_t>(static_cast<int>(day.year())), 4) + "-" +
           Whole(static_cast<unsigned>(day.month()), 2) + "-" +
           Whole(static_cast<unsigned>(day.day()), 2);
}

} // namespace

std::string CsvSource(const ObservationPlan& plan)
{
    if (plan.IsGpsAlone()) {
        const AlmanacState almanac = StateOfAlmanac(plan);
        return ToUtf8(SourceText(almanac.source)) + " " + DayText(almanac.Day());
    }
    double oldestS = std::numeric_limits<double>::max();
    for (std::size_t i = 0; i < kGnssSystems; ++i) {
        const SystemState state = plan.StateOf(static_cast<GnssSystem>(i));
        if (plan.Systems()[i] && state.satellites > 0) {
            oldestS = std::min(oldestS, state.lastS);
        }
    }
    const std::string systems = TextOf(plan.Systems());
    return oldestS == std::numeric_limits<double>::max()
               ? systems
               : systems + " " +
                     DayText(std::chrono::floor<std::chrono::days>(UtcOfGpsSeconds(oldestS)));
}

std::string PlanCsvHeader(PlanGraph graph, bool isGpsAlone)
{
    std::string header = "site,time,";
    switch (graph) {
    case PlanGraph::Count:
        header += "satellites";
        break;
    case PlanGraph::Pdop:
        header += "pdop";
        break;
    case PlanGraph::Gdop:
        header += "gdop";
        break;
    case PlanGraph::Tdop:
        header += "tdop";
        break;
    case PlanGraph::SkyPlot:
    case PlanGraph::Azimuth:
    case PlanGraph::Elevation:
        header += isGpsAlone ? "prn" : "satellite";
        header += ",azimuth_deg,elevation_deg";
        break;
    }
    return header + ",almanac" + kLineEnd;
}

std::string PlanCsvRows(const ObservationPlan& plan, PlanGraph graph, std::wstring_view site)
{
    const std::string name = CsvField(ToUtf8(site));
    const std::string end = "," + CsvField(CsvSource(plan)) + kLineEnd;
    const auto begin = [&](int epoch) { return name + "," + plan.Computed().JstText(epoch) + ","; };
    std::string rows;
    for (int k = 0; k < plan.Division(); ++k) {
        if (graph == PlanGraph::Count) {
            rows += begin(k) + Fixed(plan.CountAt(k), 0) + end;
        } else if (IsDilution(graph)) {
            rows += begin(k + 1) + Fixed(SampleAt(plan, graph, k).value_or(NAN), 2) + end;
        }
    }
    if (graph == PlanGraph::Count || IsDilution(graph)) {
        return rows;
    }
    for (int k = 0; k <= plan.Division(); ++k) {
        for (std::size_t index = 0; index < plan.Satellites().size(); ++index) {
            if (const auto direction = plan.DirectionAt(static_cast<int>(index), k)) {
                const SatelliteId satellite = plan.Satellites()[index];
                rows += begin(k) +
                        (plan.IsGpsAlone() ? Whole(satellite.number, 1) : satellite.Text()) + "," +
                        Fixed(DegreesOf(direction->azimuthRad), 2) + "," +
                        Fixed(DegreesOf(direction->elevationRad), 2) + end;
            }
        }
    }
    return rows;
}

} // namespace fieldcore

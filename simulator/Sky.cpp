#include "simulator/Sky.h"

#include "core/planning/AlmanacOrbit.h"
#include "core/planning/LocalFrame.h"
#include "core/planning/NominalConstellation.h"
#include "core/platform/Degrees.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

namespace fieldcore::simulator {

namespace {

Almanac FromRecord(const AlmanacRecord& r)
{
    return {r.prn,         r.timeStamp, r.week,   r.toaS,  r.sqrtA, r.eccentricity,
            r.inclination, r.omegaDot,  r.omega0, r.omega, r.m0,    r.health};
}

/// @return the orbit; its week the full one that is nearest to @p now, if it is a 10-bit one
AlmanacOrbit OrbitOf(const Almanac& almanac, const GpsTime& now)
{
    constexpr double kCycle = 1024.0;
    const double cycles = std::round((now.week - almanac.week) / kCycle);
    const int week =
        almanac.week < 1024 ? almanac.week + static_cast<int>(cycles * kCycle) : almanac.week;
    AlmanacRecord record;
    record.week = static_cast<std::int16_t>(week);
    record.toaS = almanac.toaS;
    record.sqrtA = almanac.sqrtA;
    record.eccentricity = almanac.eccentricity;
    record.inclination = almanac.inclination;
    record.omegaDot = almanac.omegaDot;
    record.omega0 = almanac.omega0;
    record.omega = almanac.omega;
    record.m0 = almanac.m0;
    return AlmanacOrbit(record);
}

/// Those of the scenario, and of the nominal ones up to PRN @p last those that it does not give.
std::vector<Almanac> Almanacs(const Scenario& scenario, const GpsTime& now, int last)
{
    constexpr double kToaStepS = 4096.0;
    const int week = std::clamp(now.week, 0, 32767);
    const auto toaS = static_cast<std::uint32_t>(std::floor(now.sowS / kToaStepS) * kToaStepS);
    std::vector<Almanac> all = scenario.almanacs;
    for (const AlmanacRecord& nominal : NominalConstellation(last, week, toaS)) {
        const bool isGiven = std::any_of(
            scenario.almanacs.begin(), scenario.almanacs.end(),
            [&](const Almanac& given) { return given.prn == static_cast<int>(nominal.prn); });
        if (!isGiven) {
            all.push_back(FromRecord(nominal));
        }
    }
    return all;
}

/// What an antenna over open ground receives at that elevation, dB-Hz in the quarters of the wire:
/// the usual span of a survey receiver, weaker the longer the way through the air.
double Signal(double zenith, double elevationRad)
{
    constexpr double kLoss = 14.0; // at the horizon
    return std::round((zenith - kLoss * (1.0 - std::sin(elevationRad))) * 4.0) / 4.0;
}

Satellite Seen(const Scenario& scenario, int prn, const SkyDirection& direction)
{
    Satellite satellite;
    satellite.number = prn;
    const double elevationDeg = DegreesOf(direction.elevationRad);
    satellite.azimuthDeg =
        static_cast<int>(std::lround(DegreesOf(direction.azimuthRad) + 360.0)) % 360;
    satellite.elevationDeg = static_cast<int>(std::lround(elevationDeg));
    if (elevationDeg >= scenario.maskDeg &&
        elevationDeg >= ObstructionDeg(scenario, DegreesOf(direction.azimuthRad))) {
        satellite.signals[0] = Signal(50.0, direction.elevationRad);
        if (scenario.options.l2) {
            satellite.signals[1] = Signal(44.0, direction.elevationRad);
        }
        if (scenario.options.l5) {
            satellite.signals[3] = Signal(48.5, direction.elevationRad);
        }
    }
    return satellite;
}

/// What is left of its signals behind such an antenna.
void Dampen(Satellite& satellite, AntennaState antenna)
{
    constexpr double kLoss = 20.0; // dB
    constexpr double kFaintest = 25.0;
    if (antenna == AntennaState::Good) {
        return;
    }
    for (std::optional<double>& signal : satellite.signals) {
        if (signal) {
            *signal -= kLoss;
        }
        if (antenna == AntennaState::Dead || signal < kFaintest) {
            signal.reset();
        }
    }
}

EastNorthUp Towards(const Satellite& satellite)
{
    const double azimuth = RadiansOf(satellite.azimuthDeg);
    const double elevation = RadiansOf(satellite.elevationDeg);
    return {std::sin(azimuth) * std::cos(elevation), std::cos(azimuth) * std::cos(elevation),
            std::sin(elevation)};
}

LocalDop LimitedDop(const std::optional<LocalDop>& dop, int satellites)
{
    if (!dop || satellites < kSatellitesForDop || !(dop->pdop < kDopNone)) {
        return {kDopNone, kDopNone, kDopNone};
    }
    return *dop;
}

bool Moves(const Scenario& scenario)
{
    const bool isPlaced = std::any_of(
        scenario.satellites.begin(), scenario.satellites.end(),
        [](const Satellite& satellite) { return satellite.system == SatelliteSystem::Gps; });
    return !isPlaced && (scenario.nominalAlmanacs || !scenario.almanacs.empty());
}

} // namespace

bool IsTracked(const Satellite& satellite)
{
    return std::any_of(satellite.signals.begin(), satellite.signals.end(),
                       [](const std::optional<double>& signal) { return signal.has_value(); });
}

std::vector<Satellite> Listed(const Sky& sky, bool inView)
{
    std::vector<Satellite> listed;
    std::copy_if(sky.satellites.begin(), sky.satellites.end(), std::back_inserter(listed),
                 [&](const Satellite& satellite) { return inView || IsTracked(satellite); });
    return listed;
}

double ObstructionDeg(const Scenario& scenario, double azimuthDeg)
{
    constexpr double kCircle = 360.0;
    const auto clockwise = [](double from, double to) {
        const double way = std::fmod(to - from, kCircle);
        return way < 0.0 ? way + kCircle : way;
    };
    double highest = 0.0;
    for (const Obstruction& obstruction : scenario.obstructions) {
        const double width = clockwise(obstruction.fromDeg, obstruction.toDeg);
        const double into = clockwise(obstruction.fromDeg, azimuthDeg);
        const bool isAround = width == 0.0 && obstruction.fromDeg != obstruction.toDeg;
        if (into <= width || isAround) {
            const double part = width > 0.0 ? into / width : 0.0;
            highest = std::max(
                highest, std::lerp(obstruction.elevationDeg, obstruction.toElevationDeg, part));
        }
    }
    return highest;
}

std::vector<Almanac> AlmanacsAt(const Scenario& scenario, const GpsTime& now)
{
    return Almanacs(scenario, now, scenario.nominalAlmanacs.value_or(0));
}

Sky SkyAt(const Scenario& scenario, const GpsTime& now, double elapsedS)
{
    const auto antenna = static_cast<AntennaState>(
        ValueAt(scenario.laterAntennas, elapsedS, static_cast<int>(scenario.antenna)));
    Sky sky;
    DopSums sums;
    int tracked = 0;
    const auto add = [&](Satellite satellite, const EastNorthUp& local) {
        Dampen(satellite, antenna);
        sky.satellites.push_back(satellite);
        if (IsTracked(satellite)) {
            const double range = local.Range();
            sums.Add(local.east / range, local.north / range, local.up / range);
            ++tracked;
        }
    };
    const bool moves = Moves(scenario);
    if (moves) {
        const LocalFrame frame(
            {RadiansOf(scenario.latitudeDeg), RadiansOf(scenario.longitudeDeg), scenario.heightM});
        const int last = scenario.nominalAlmanacs ? kNominalSatellites : 0;
        for (const Almanac& almanac : Almanacs(scenario, now, last)) {
            const auto position = OrbitOf(almanac, now).Position({now.week, now.sowS});
            const EastNorthUp local = frame.ToLocal(position.value_or(Ecef{}));
            if (position && almanac.health == 0 && local.up >= 0.0 && local.Range() > 0.0) {
                add(Seen(scenario, almanac.prn, local.ToDirection(local.Range())), local);
            }
        }
    }
    for (const Satellite& satellite : scenario.satellites) {
        add(satellite, Towards(satellite));
    }
    if (scenario.pdop || !moves) {
        sky.dop = {scenario.pdop.value_or(1.8), scenario.hdop, scenario.vdop};
    } else {
        sky.dop = LimitedDop(sums.SolveLocal(), tracked);
    }
    return sky;
}

} // namespace fieldcore::simulator

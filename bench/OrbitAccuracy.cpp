// How far beside the truth satellites are computed from navigation messages of some age, as seen
// from Japan: orbit_accuracy NAVIGATION PRECISE
//   NAVIGATION  messages of one day, RINEX 3 or 4
//   PRECISE     orbits of the same day, every 15 minutes, SP3
// Prints what docs/planning.md has the worst of.
//
// Within the day the truth is PRECISE where it has the satellite; else what the satellite itself
// said at the later time. For later days nothing was measured: there the orbits of PRECISE are
// carried on by the forces of the earth, sun, moon and sunlight that fit them best. How good that
// is shows in the first half of the day carried on through the second.

#include "core/orbits/NavigationText.h"
#include "core/orbits/SystemTime.h"
#include "core/planning/LocalFrame.h"
#include "core/platform/Degrees.h"
#include "core/platform/TextLines.h"
#include "core/platform/WholeFile.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using namespace fieldcore;

namespace {

constexpr double kDayS = 86400.0;

Ecef operator+(const Ecef& a, const Ecef& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
Ecef operator-(const Ecef& a, const Ecef& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
Ecef operator*(double s, const Ecef& a)
{
    return {s * a.x, s * a.y, s * a.z};
}
double Dot(const Ecef& a, const Ecef& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
double Length(const Ecef& a)
{
    return std::sqrt(Dot(a, a));
}

struct Known
{
    double gpsS;
    Ecef position;
    bool isMeasured = true;
};
using Track = std::vector<Known>;
using Truth = std::map<SatelliteId, Track>;

Truth ReadPrecise(const char* file)
{
    Truth truth;
    const auto content = ReadWholeFile(file, kMostNavigation);
    if (!content) {
        return truth;
    }
    TextLines lines({reinterpret_cast<const char*>(content->data()), content->size()});
    double gpsS = 0.0;
    while (const auto line = lines.Next()) {
        const std::string text(*line);
        int year = 0, month = 0, day = 0, hour = 0, minute = 0;
        std::array<char, 4> name{};
        Ecef km{};
        if (std::sscanf(text.c_str(), "* %d %d %d %d %d", &year, &month, &day, &hour, &minute) ==
            5) {
            using namespace std::chrono;
            const auto days =
                sys_days(std::chrono::year(year) / month / day) - sys_days(1980y / 1 / 6);
            gpsS = static_cast<double>(days.count()) * kDayS + hour * 3600.0 + minute * 60.0;
        } else if (std::sscanf(text.c_str(), "P%3c %lf %lf %lf", name.data(), &km.x, &km.y,
                               &km.z) == 4 &&
                   km.x != 0.0) {
            if (const auto satellite = SatelliteId::Parse(name.data())) {
                truth[*satellite].push_back({gpsS, 1000.0 * km});
            }
        }
    }
    return truth;
}

// Where a satellite goes in a frame that does not turn: the equator and equinox of the day.

constexpr double kEarthGm = 3.986004418e14;
constexpr double kRadius = 6378136.3;
constexpr double kJ2 = 1.0826359e-3, kC22 = 1.5745e-6, kS22 = -9.0380e-7;
constexpr double kSunGm = 1.32712440e20, kMoonGm = 4.9028e12;
constexpr double kStepS = 150.0;

/// Days of UTC since 2000-01-01 12:00.
double DaysAt(double gpsS)
{
    return (gpsS - 18.0 - 630763200.0) / kDayS;
}

/// Greenwich mean sidereal time, rad.
double TurnAt(double gpsS)
{
    return RadiansOf(std::fmod(280.46061837 + 360.98564736629 * DaysAt(gpsS), 360.0));
}

Ecef Turned(Ecef v, double angle)
{
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {c * v.x - s * v.y, s * v.x + c * v.y, v.z};
}

Ecef OfEcliptic(double longitudeDeg, double latitudeDeg, double length)
{
    const double tilt = RadiansOf(23.437);
    const double l = RadiansOf(longitudeDeg);
    const double b = RadiansOf(latitudeDeg);
    const Ecef v{length * std::cos(b) * std::cos(l), length * std::cos(b) * std::sin(l),
                 length * std::sin(b)};
    return {v.x, std::cos(tilt) * v.y - std::sin(tilt) * v.z,
            std::sin(tilt) * v.y + std::cos(tilt) * v.z};
}

double Sine(double degrees)
{
    return std::sin(RadiansOf(degrees));
}
double Cosine(double degrees)
{
    return std::cos(RadiansOf(degrees));
}

/// To 0.01 degrees: Astronomical Almanac, page C5.
Ecef SunAt(double days)
{
    const double g = 357.528 + 0.9856003 * days;
    const double au = 1.495978707e11;
    return OfEcliptic(280.460 + 0.9856474 * days + 1.915 * Sine(g) + 0.020 * Sine(2.0 * g), 0.0,
                      au * (1.00014 - 0.01671 * Cosine(g) - 0.00014 * Cosine(2.0 * g)));
}

/// To 0.3 degrees: the same, page D46.
Ecef MoonAt(double days)
{
    const double t = days / 36525.0;
    const double longitude = 218.32 + 481267.881 * t + 6.29 * Sine(135.0 + 477198.87 * t) -
                             1.27 * Sine(259.3 - 413335.36 * t) +
                             0.66 * Sine(235.7 + 890534.22 * t) +
                             0.21 * Sine(269.9 + 954397.74 * t) -
                             0.19 * Sine(357.5 + 35999.05 * t) - 0.11 * Sine(186.5 + 966404.03 * t);
    const double latitude = 5.13 * Sine(93.3 + 483202.02 * t) + 0.28 * Sine(228.2 + 960400.89 * t) -
                            0.28 * Sine(318.3 + 6003.15 * t) - 0.17 * Sine(217.6 - 407332.21 * t);
    const double parallax =
        0.9508 + 0.0518 * Cosine(135.0 + 477198.87 * t) + 0.0095 * Cosine(259.3 - 413335.36 * t) +
        0.0078 * Cosine(235.7 + 890534.22 * t) + 0.0028 * Cosine(269.9 + 954397.74 * t);
    return OfEcliptic(longitude, latitude, kRadius / Sine(parallax));
}

/// What is fitted: place and motion at the start, the push of sunlight away from the sun and across
/// it, m/s^2, and how far the earth's axis stands beside the z axis, rad.
using Parameters = std::array<double, 10>;
constexpr Parameters kUnits{1e3, 1e3, 1e3, 0.1, 0.1, 0.1, 1e-8, 1e-9, 1e-6, 1e-6};

struct State
{
    Ecef place, motion;
    friend State operator+(const State& a, const State& b)
    {
        return {a.place + b.place, a.motion + b.motion};
    }
    friend State operator*(double s, const State& a) { return {s * a.place, s * a.motion}; }
};

Ecef PullOn(const Ecef& r, double gpsS, const Parameters& p)
{
    const double length = Length(r);
    const double r2 = length * length;
    const double central = kEarthGm / (r2 * length);
    const double oblate = 1.5 * kJ2 * central * kRadius * kRadius / r2;
    const double tilt = 5.0 * r.z * r.z / r2;
    Ecef pull{-central * r.x - oblate * (1.0 - tilt) * r.x,
              -central * r.y - oblate * (1.0 - tilt) * r.y,
              -central * r.z - oblate * (3.0 - tilt) * r.z};
    // The equator is no circle: that turns with the earth.
    const double turn = TurnAt(gpsS);
    const Ecef f = Turned(r, -turn);
    const double scale = 3.0 * kEarthGm * kRadius * kRadius / (r2 * r2 * length);
    const double potential = scale * (kC22 * (f.x * f.x - f.y * f.y) + 2.0 * kS22 * f.x * f.y);
    const Ecef round = 2.0 * scale * Ecef{kC22 * f.x + kS22 * f.y, kS22 * f.x - kC22 * f.y, 0};
    pull = pull + Turned(round - 5.0 * potential / r2 * f, turn);
    const double days = DaysAt(gpsS);
    const Ecef sun = SunAt(days);
    for (const auto& [body, gm] : {std::pair(sun, kSunGm), {MoonAt(days), kMoonGm}}) {
        const Ecef to = body - r;
        pull = pull + gm / std::pow(Length(to), 3) * to - gm / std::pow(Length(body), 3) * body;
    }
    const Ecef away = 1.0 / Length(r - sun) * (r - sun);
    const Ecef across{away.y * r.z - away.z * r.y, away.z * r.x - away.x * r.z,
                      away.x * r.y - away.y * r.x};
    return pull + p[6] * away + p[7] / Length(across) * across;
}

/// Earth-fixed places at @p count times, a quarter of an hour apart from @p startS on.
std::vector<Ecef> CarriedOn(const Parameters& p, double startS, std::size_t count)
{
    std::vector<Ecef> places;
    State s{{p[0], p[1], p[2]}, {p[3], p[4], p[5]}};
    constexpr int kSteps = static_cast<int>(900.0 / kStepS);
    const auto rate = [&p](const State& at, double gpsS) {
        return State{at.motion, PullOn(at.place, gpsS, p)};
    };
    double t = startS;
    while (places.size() < count) {
        const Ecef f = Turned(s.place, -TurnAt(t));
        places.push_back(f + Ecef{p[9] * f.z, -p[8] * f.z, p[8] * f.y - p[9] * f.x});
        for (int step = 0; step < kSteps; ++step, t += kStepS) {
            constexpr double h = kStepS;
            const State k1 = rate(s, t);
            const State k2 = rate(s + h / 2 * k1, t + h / 2);
            const State k3 = rate(s + h / 2 * k2, t + h / 2);
            const State k4 = rate(s + h * k3, t + h);
            s = s + h / 6 * (k1 + 2.0 * k2 + 2.0 * k3 + k4);
        }
    }
    return places;
}

/// Least squares: solves @p a x = @p b, symmetric, by elimination.
Parameters Solved(std::array<Parameters, std::tuple_size_v<Parameters>> a, Parameters b)
{
    for (std::size_t i = 0; i < b.size(); ++i) {
        for (std::size_t row = 0; row < b.size(); ++row) {
            const double factor = row == i ? 0.0 : a[row][i] / a[i][i];
            for (std::size_t column = i; column < b.size(); ++column) {
                a[row][column] -= factor * a[i][column];
            }
            b[row] -= factor * b[i];
        }
    }
    for (std::size_t i = 0; i < b.size(); ++i) {
        b[i] /= a[i][i];
    }
    return b;
}

/// The parameters that lead through the first @p count places of @p track, which are a quarter of
/// an hour apart.
Parameters Fitted(const Track& track, std::size_t count)
{
    const auto inertial = [&](std::size_t i) {
        return Turned(track[i].position, TurnAt(track[i].gpsS));
    };
    // By differences from the third place, carried back.
    const Ecef motion =
        1.0 / (12.0 * 900.0) * ((inertial(0) - inertial(4)) + 8.0 * (inertial(3) - inertial(1)));
    const double startS = track[2].gpsS;
    const Ecef place = inertial(2);
    Parameters p{place.x, place.y, place.z, motion.x, motion.y, motion.z, 1e-7, 0.0, 0.0, 0.0};
    const std::size_t used = count - 2;
    for (int round = 0; round < 5; ++round) {
        const std::vector<Ecef> base = CarriedOn(p, startS, used);
        std::array<std::vector<Ecef>, std::tuple_size_v<Parameters>> partials;
        std::array<Parameters, std::tuple_size_v<Parameters>> normal{};
        Parameters right{};
        for (std::size_t i = 0; i < p.size(); ++i) {
            Parameters moved = p;
            moved[i] += kUnits[i];
            partials[i] = CarriedOn(moved, startS, used);
            for (std::size_t k = 0; k < used; ++k) {
                partials[i][k] = partials[i][k] - base[k];
                right[i] += Dot(partials[i][k], track[k + 2].position - base[k]);
                for (std::size_t j = 0; j <= i; ++j) {
                    normal[i][j] += Dot(partials[i][k], partials[j][k]);
                    normal[j][i] = normal[i][j];
                }
            }
        }
        const Parameters change = Solved(normal, right);
        for (std::size_t i = 0; i < p.size(); ++i) {
            p[i] += change[i] * kUnits[i];
        }
    }
    return p;
}

// What is measured.

/// Angle between two places as a site sees them.
double DegreesBetween(const LocalFrame& site, const Ecef& a, const Ecef& b)
{
    const EastNorthUp u = site.ToLocal(a);
    const EastNorthUp v = site.ToLocal(b);
    const double cross = std::hypot(u.north * v.up - u.up * v.north, u.up * v.east - u.east * v.up,
                                    u.east * v.north - u.north * v.east);
    return DegreesOf(std::atan2(cross, u.east * v.east + u.north * v.north + u.up * v.up));
}

struct Age
{
    const char* name;
    double fromS, toS;
};
constexpr Age kAges[] = {{"0", 0, 900},
                         {"6 h", 6 * 3600 - 600, 6 * 3600 + 600},
                         {"1 day", 23 * 3600, 25 * 3600},
                         {"3 days", 3 * kDayS - 450, 3 * kDayS + 450},
                         {"7 days", 7 * kDayS - 450, 7 * kDayS + 450},
                         {"14 days", 14 * kDayS - 450, 14 * kDayS + 450}};
using Samples = std::array<std::array<std::vector<double>, std::size(kAges)>, kGnssSystems>;

void PrintTable(Samples& samples)
{
    std::printf("| |");
    for (const Age& age : kAges) {
        std::printf(" %s |", age.name);
    }
    std::printf("\n|---|---|---|---|---|---|---|\n");
    for (std::size_t system = 0; system < kGnssSystems; ++system) {
        std::printf("| %c |", kSystemLetters[system]);
        for (std::vector<double>& degrees : samples[system]) {
            std::sort(degrees.begin(), degrees.end());
            if (degrees.empty()) {
                std::printf(" - |");
            } else {
                std::printf(" %.4f, %.4f (%zu) |", degrees[degrees.size() / 2], degrees.back(),
                            degrees.size());
            }
        }
        std::printf("\n");
    }
}

/// How good the carried-on orbits are: those of the first half of the day in the second.
void PrintCheck(const LocalFrame& site, const Truth& truth)
{
    std::map<GnssSystem, std::vector<double>> ends;
    for (const auto& [satellite, track] : truth) {
        const std::size_t half = track.size() / 2;
        const std::vector<Ecef> carried =
            CarriedOn(Fitted(track, half), track[2].gpsS, track.size() - 2);
        ends[satellite.system].push_back(
            DegreesBetween(site, track.back().position, carried.back()));
    }
    for (auto& [system, degrees] : ends) {
        std::sort(degrees.begin(), degrees.end());
        std::printf("carried on for 12 h, %c: median %.5f, worst %.5f degrees\n", LetterOf(system),
                    degrees[degrees.size() / 2], degrees.back());
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "orbit_accuracy NAVIGATION PRECISE\n");
        return 2;
    }
    const NavigationText text = LoadNavigation(argv[1]);
    Truth truth = ReadPrecise(argv[2]);
    if (text.error || truth.empty()) {
        std::fprintf(stderr, "%s\n",
                     text.error ? text.error->message.c_str() : "no precise orbits");
        return 1;
    }
    const LocalFrame japan(Observer{RadiansOf(35.0), RadiansOf(139.0), 0.0});
    PrintCheck(japan, truth);
    for (auto& [satellite, track] : truth) {
        constexpr std::size_t kCount = 15 * 96;
        const double startS = track[2].gpsS;
        const std::vector<Ecef> carried = CarriedOn(Fitted(track, track.size()), startS, kCount);
        for (std::size_t k = track.size() - 2; k < kCount; ++k) {
            track.push_back({startS + static_cast<double>(k) * 900.0, carried[k], false});
        }
    }
    for (const NavigationRecord& record : text.records) {
        const bool isPrecise = record.satellite.system == GnssSystem::Gps ||
                               record.satellite.system == GnssSystem::Glonass ||
                               record.satellite.system == GnssSystem::Galileo;
        if (!isPrecise) {
            const auto position = OrbitMotion(record).At(record.ReferenceS());
            truth[record.satellite].push_back({record.ReferenceS(), position.value_or(Ecef{})});
        }
    }
    Samples samples;
    for (const NavigationRecord& record : text.records) {
        if (!record.IsHealthy() && record.satellite.system != GnssSystem::Sbas) {
            continue;
        }
        OrbitMotion motion(record);
        for (const Known& known : truth[record.satellite]) {
            const double ageS = std::abs(known.gpsS - record.ReferenceS());
            for (std::size_t i = 0; i < std::size(kAges); ++i) {
                if (ageS < kAges[i].fromS || ageS > kAges[i].toS ||
                    known.isMeasured != (kAges[i].toS < 2 * kDayS) ||
                    japan.ToLocal(known.position).up < 0.0) {
                    continue;
                }
                if (const auto position = motion.At(known.gpsS)) {
                    samples[static_cast<std::size_t>(record.satellite.system)][i].push_back(
                        DegreesBetween(japan, *position, known.position));
                }
            }
        }
    }
    PrintTable(samples);
    return 0;
}

// How far beside the truth satellites are computed from navigation messages of some age, as seen
// from Japan: orbit_accuracy NAVIGATION PRECISE
//   NAVIGATION  messages of one day, RINEX 3 or 4
//   PRECISE     orbits of the same day, every 15 minutes, SP3
// Prints the tables of docs/planning.md.
//
// Within the day the truth is PRECISE where it has the satellite; else what the satellite itself
// said at the later time. For later days nothing was measured: there the orbits of PRECISE are
// carried on by the forces of the earth, sun, moon and sunlight that fit them best. How good that
// is shows in the first half of the day carried on through the second.

#include "core/orbits/NavigationText.h"
#include "core/orbits/SystemTime.h"
#include "core/planning/Degrees.h"
#include "core/planning/LocalFrame.h"
#include "core/platform/TextLines.h"
#include "core/platform/WholeFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <numbers>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using namespace fieldcore;

namespace {

constexpr double kDayS = 86400.0;

struct Known
{
    double gpsS;
    Ecef position;
    bool isMeasured = true;
};
using Track = std::vector<Known>;
using Truth = std::map<SatelliteId, Track>;

double SecondsOf(const std::vector<std::string_view>& date)
{
    std::array<int, 5> parts{};
    for (std::size_t i = 0; i < parts.size() && i < date.size(); ++i) {
        parts[i] = std::atoi(std::string(date[i]).c_str());
    }
    using namespace std::chrono_literals;
    const std::chrono::sys_days day{std::chrono::year(parts[0]) / parts[1] / parts[2]};
    const auto days = (day - std::chrono::sys_days(1980y / 1 / 6)).count();
    return static_cast<double>(days) * kDayS + parts[3] * 3600.0 + parts[4] * 60.0;
}

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
        if (line->substr(0, 2) == "* ") {
            gpsS = SecondsOf(Words(line->substr(1)));
        } else if (line->substr(0, 1) == "P") {
            const auto words = Words(line->substr(4));
            const auto satellite = SatelliteId::Parse(line->substr(1, 3));
            const auto metres = [&](std::size_t i) {
                return 1000.0 * std::atof(std::string(words[i]).c_str());
            };
            if (satellite && words.size() >= 3 && metres(0) != 0.0) {
                truth[*satellite].push_back({gpsS, {metres(0), metres(1), metres(2)}});
            }
        }
    }
    return truth;
}

// Where a satellite goes in a frame that does not turn: the equator and equinox of the day.

struct Vector
{
    double x = 0.0, y = 0.0, z = 0.0;
    friend Vector operator+(Vector a, Vector b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
    friend Vector operator-(Vector a, Vector b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
    friend Vector operator*(double s, Vector a) { return {s * a.x, s * a.y, s * a.z}; }
    [[nodiscard]] double Length() const { return std::hypot(x, y, z); }
};
double Dot(Vector a, Vector b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

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

Vector Turned(Vector v, double angle)
{
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {c * v.x - s * v.y, s * v.x + c * v.y, v.z};
}

Vector OfEcliptic(double longitudeDeg, double latitudeDeg, double length)
{
    const double tilt = RadiansOf(23.437);
    const double l = RadiansOf(longitudeDeg);
    const double b = RadiansOf(latitudeDeg);
    const Vector v{length * std::cos(b) * std::cos(l), length * std::cos(b) * std::sin(l),
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
Vector SunAt(double days)
{
    const double g = 357.528 + 0.9856003 * days;
    const double au = 1.495978707e11;
    return OfEcliptic(280.460 + 0.9856474 * days + 1.915 * Sine(g) + 0.020 * Sine(2.0 * g), 0.0,
                      au * (1.00014 - 0.01671 * Cosine(g) - 0.00014 * Cosine(2.0 * g)));
}

/// To 0.3 degrees: the same, page D46.
Vector MoonAt(double days)
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
    Vector place, motion;
};

Vector PullOn(const Vector& r, double gpsS, const Parameters& p)
{
    const double length = r.Length();
    const double r2 = length * length;
    const double central = kEarthGm / (r2 * length);
    const double oblate = 1.5 * kJ2 * central * kRadius * kRadius / r2;
    const double tilt = 5.0 * r.z * r.z / r2;
    Vector pull{-central * r.x - oblate * (1.0 - tilt) * r.x,
                -central * r.y - oblate * (1.0 - tilt) * r.y,
                -central * r.z - oblate * (3.0 - tilt) * r.z};
    // The equator is no circle: that turns with the earth.
    const double turn = TurnAt(gpsS);
    const Vector f = Turned(r, -turn);
    const double scale = 3.0 * kEarthGm * kRadius * kRadius / (r2 * r2 * length);
    const double potential = scale * (kC22 * (f.x * f.x - f.y * f.y) + 2.0 * kS22 * f.x * f.y);
    const Vector round = 2.0 * scale * Vector{kC22 * f.x + kS22 * f.y, kS22 * f.x - kC22 * f.y, 0};
    pull = pull + Turned(round - 5.0 * potential / r2 * f, turn);
    const double days = DaysAt(gpsS);
    const Vector sun = SunAt(days);
    for (const auto& [body, gm] : {std::pair(sun, kSunGm), {MoonAt(days), kMoonGm}}) {
        const Vector to = body - r;
        pull = pull + gm / std::pow(to.Length(), 3) * to - gm / std::pow(body.Length(), 3) * body;
    }
    const Vector away = 1.0 / (r - sun).Length() * (r - sun);
    const Vector across{away.y * r.z - away.z * r.y, away.z * r.x - away.x * r.z,
                        away.x * r.y - away.y * r.x};
    return pull + p[6] * away + p[7] / across.Length() * across;
}

/// Earth-fixed places at @p count times, a quarter of an hour apart from @p startS on.
std::vector<Vector> CarriedOn(const Parameters& p, double startS, std::size_t count)
{
    std::vector<Vector> places;
    State s{{p[0], p[1], p[2]}, {p[3], p[4], p[5]}};
    constexpr int kSteps = static_cast<int>(900.0 / kStepS);
    double t = startS;
    while (places.size() < count) {
        const Vector f = Turned(s.place, -TurnAt(t));
        places.push_back(f + Vector{p[9] * f.z, -p[8] * f.z, p[8] * f.y - p[9] * f.x});
        for (int step = 0; step < kSteps; ++step, t += kStepS) {
            const double h = kStepS;
            const Vector v1 = s.motion, a1 = PullOn(s.place, t, p);
            const Vector v2 = s.motion + h / 2 * a1,
                         a2 = PullOn(s.place + h / 2 * v1, t + h / 2, p);
            const Vector v3 = s.motion + h / 2 * a2,
                         a3 = PullOn(s.place + h / 2 * v2, t + h / 2, p);
            const Vector v4 = s.motion + h * a3, a4 = PullOn(s.place + h * v3, t + h, p);
            s = {s.place + h / 6 * (v1 + 2.0 * v2 + 2.0 * v3 + v4),
                 s.motion + h / 6 * (a1 + 2.0 * a2 + 2.0 * a3 + a4)};
        }
    }
    return places;
}

Vector VectorOf(const Ecef& e)
{
    return {e.x, e.y, e.z};
}

/// Least squares: solves @p a x = @p b, symmetric, by elimination.
Parameters Solved(std::array<Parameters, std::tuple_size_v<Parameters>> a, Parameters b)
{
    for (std::size_t i = 0; i < b.size(); ++i) {
        for (std::size_t row = i + 1; row < b.size(); ++row) {
            const double factor = a[row][i] / a[i][i];
            for (std::size_t column = i; column < b.size(); ++column) {
                a[row][column] -= factor * a[i][column];
            }
            b[row] -= factor * b[i];
        }
    }
    for (std::size_t i = b.size(); i-- > 0;) {
        for (std::size_t column = i + 1; column < b.size(); ++column) {
            b[i] -= a[i][column] * b[column];
        }
        b[i] /= a[i][i];
    }
    return b;
}

/// The parameters that lead through the first @p count places of @p track, which are a quarter of
/// an hour apart.
Parameters Fitted(const Track& track, std::size_t count)
{
    const auto inertial = [&](std::size_t i) {
        return Turned(VectorOf(track[i].position), TurnAt(track[i].gpsS));
    };
    // By differences from the third place, carried back.
    const Vector motion =
        1.0 / (12.0 * 900.0) * ((inertial(0) - inertial(4)) + 8.0 * (inertial(3) - inertial(1)));
    const double startS = track[2].gpsS;
    const Vector place = inertial(2);
    Parameters p{place.x, place.y, place.z, motion.x, motion.y, motion.z, 1e-7, 0.0, 0.0, 0.0};
    for (int round = 0; round < 6; ++round) {
        const std::size_t used = round < 2 ? 12 : count - 2; // the nearest first
        const std::vector<Vector> base = CarriedOn(p, startS, used);
        std::array<std::vector<Vector>, std::tuple_size_v<Parameters>> partials;
        const std::size_t free = round < 2 ? 6 : p.size();
        std::array<Parameters, std::tuple_size_v<Parameters>> normal{};
        Parameters right{};
        for (std::size_t i = 0; i < p.size(); ++i) {
            Parameters moved = p;
            moved[i] += kUnits[i];
            partials[i] = CarriedOn(moved, startS, used);
            for (std::size_t k = 0; k < used; ++k) {
                partials[i][k] = partials[i][k] - base[k];
            }
        }
        for (std::size_t i = 0; i < p.size(); ++i) {
            for (std::size_t k = 0; k < used; ++k) {
                right[i] += Dot(partials[i][k], VectorOf(track[k + 2].position) - base[k]);
                for (std::size_t j = 0; j < p.size(); ++j) {
                    normal[i][j] += Dot(partials[i][k], partials[j][k]);
                }
            }
            if (i >= free) { // held
                normal[i] = {};
                normal[i][i] = 1.0;
                right[i] = 0.0;
            }
        }
        for (std::size_t i = 0; i < free; ++i) {
            for (std::size_t j = free; j < p.size(); ++j) {
                normal[i][j] = 0.0;
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
        const std::vector<Vector> carried =
            CarriedOn(Fitted(track, half), track[2].gpsS, track.size() - 2);
        const Vector& last = carried.back();
        ends[satellite.system].push_back(
            DegreesBetween(site, track.back().position, {last.x, last.y, last.z}));
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
        const std::vector<Vector> carried = CarriedOn(Fitted(track, track.size()), startS, kCount);
        for (std::size_t k = track.size() - 2; k < kCount; ++k) {
            track.push_back({startS + static_cast<double>(k) * 900.0,
                             {carried[k].x, carried[k].y, carried[k].z},
                             false});
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

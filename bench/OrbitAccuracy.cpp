// How far beside the truth satellites are computed from navigation messages of some age, as seen
// from Japan: orbit_accuracy NAVIGATION PRECISE
//   NAVIGATION  messages of one day, RINEX 3 or 4
//   PRECISE     orbits of the same day, SP3-c or -d
// Prints the table of docs/planning.md. The truth is PRECISE where it has the satellite; else what
// the satellite itself said at the later time.

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
#include <string>
#include <vector>

using namespace fieldcore;

namespace {

struct Known
{
    double gpsS;
    Ecef position;
};
using Truth = std::map<SatelliteId, std::vector<Known>>;

Truth ReadPrecise(const char* file)
{
    constexpr double kAbsent = 0.0;
    constexpr double kKm = 1000.0;
    Truth truth;
    const auto content = ReadWholeFile(file, kMostNavigation);
    if (!content) {
        return truth;
    }
    TextLines lines({reinterpret_cast<const char*>(content->data()), content->size()});
    double gpsS = 0.0;
    while (const auto line = lines.Next()) {
        if (line->substr(0, 2) == "* ") {
            const auto words = Words(line->substr(1));
            std::array<int, 5> date{};
            for (std::size_t i = 0; i < date.size() && i < words.size(); ++i) {
                date[i] = std::atoi(std::string(words[i]).c_str());
            }
            const std::chrono::sys_days day{std::chrono::year(date[0]) / date[1] / date[2]};
            using namespace std::chrono_literals;
            gpsS = static_cast<double>((day - std::chrono::sys_days(1980y / 1 / 6)).count()) *
                       86400.0 +
                   date[3] * 3600.0 + date[4] * 60.0;
        } else if (line->substr(0, 1) == "P") {
            const auto words = Words(line->substr(4));
            const auto satellite = SatelliteId::Parse(line->substr(1, 3));
            if (satellite && words.size() >= 3) {
                const auto metres = [&](std::size_t i) {
                    return kKm * std::atof(std::string(words[i]).c_str());
                };
                const Ecef position{metres(0), metres(1), metres(2)};
                if (position.x != kAbsent || position.y != kAbsent) {
                    truth[*satellite].push_back({gpsS, position});
                }
            }
        }
    }
    return truth;
}

struct Errors
{
    std::vector<double> degrees;
    void Print(const char* what, const char* age)
    {
        if (degrees.empty()) {
            std::printf("| %s | %s | - | - | 0 |\n", what, age);
            return;
        }
        std::sort(degrees.begin(), degrees.end());
        std::printf("| %s | %s | %.5f | %.5f | %zu |\n", what, age, degrees[degrees.size() / 2],
                    degrees.back(), degrees.size());
    }
};

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "orbit_accuracy NAVIGATION PRECISE\n");
        return 2;
    }
    const NavigationText text = LoadNavigation(argv[1]);
    if (text.error) {
        std::fprintf(stderr, "%s: line %d %s: %s\n", argv[1], text.error->line,
                     text.error->field.c_str(), text.error->message.c_str());
        return 1;
    }
    const int variant = argc > 3 ? std::atoi(argv[3]) : 0;
    std::printf("records %zu other %d odd %d\n", text.records.size(), text.otherSystems, text.odd);
    if (text.firstOdd) { std::printf("odd line %d %s %s\n", text.firstOdd->line, text.firstOdd->field.c_str(), text.firstOdd->message.c_str()); }
    Truth truth = ReadPrecise(argv[2]);
    for (const NavigationRecord& record : text.records) {
        const GnssSystem s = record.satellite.system;
        if (s == GnssSystem::BeiDou || s == GnssSystem::Qzss || s == GnssSystem::Sbas) {
            if (const auto position = OrbitMotion(record).At(record.ReferenceS())) {
                truth[record.satellite].push_back({record.ReferenceS(), *position});
            }
        }
    }
    struct Age
    {
        const char* name;
        double fromS, toS;
    };
    constexpr Age kAges[] = {{"0", 0, 900},
                             {"1 h", 3000, 4200},
                             {"2 h", 6900, 7500},
                             {"4 h", 14000, 14800},
                             {"6 h", 21000, 22200},
                             {"12 h", 42000, 44400},
                             {"1 day", 82800, 93600}};
    const LocalFrame japan(Observer{RadiansOf(35.0), RadiansOf(139.0), 0.0});
    const auto systemName = [](GnssSystem s) { return std::string(1, LetterOf(s)); };
    std::map<std::pair<GnssSystem, std::size_t>, Errors> errors;
    std::map<std::pair<GnssSystem, std::size_t>, std::pair<double, std::string>> worst;
    for (const NavigationRecord& record : text.records) {
        if (!record.IsHealthy() && record.satellite.system != GnssSystem::Sbas) {
            continue;
        }
        NavigationRecord used = record;
        for (const Known& known : truth[record.satellite]) {
            const double age = std::abs(known.gpsS - record.ReferenceS());
            if (auto* k = std::get_if<KeplerOrbit>(&used.orbit)) {
                *k = std::get<KeplerOrbit>(record.orbit);
                if (variant >= 1) {
                    k->cuc = k->cus = 0;
                }
                if (variant >= 2) {
                    k->crc = k->crs = k->cic = k->cis = 0;
                }
                if (variant >= 3) {
                    k->iDot = 0;
                }
                if (variant == 4) {
                    k->deltaN = 0;
                }
            }
            OrbitMotion motion(used);
            for (std::size_t a = 0; a < std::size(kAges); ++a) {
                if (age < kAges[a].fromS || age > kAges[a].toS) {
                    continue;
                }
                const EastNorthUp t = japan.ToLocal(known.position);
                if (t.up < 0.0) {
                    continue;
                }
                const auto position = motion.At(known.gpsS);
                if (!position) {
                    continue;
                }
                const EastNorthUp p = japan.ToLocal(*position);
                const double cx = t.north * p.up - t.up * p.north;
                const double cy = t.up * p.east - t.east * p.up;
                const double cz = t.east * p.north - t.north * p.east;
                const double cross = std::sqrt(cx * cx + cy * cy + cz * cz);
                const double dot = t.east * p.east + t.north * p.north + t.up * p.up;
                const double deg = DegreesOf(std::atan2(cross, dot));
                errors[{record.satellite.system, a}].degrees.push_back(deg);
                auto& w = worst[{record.satellite.system, a}];
                if (deg > w.first) {
                    w = {deg, record.satellite.Text() + " age " +
                                  std::to_string((known.gpsS - record.ReferenceS()) / 3600)};
                }
            }
        }
    }
    for (std::size_t s = 0; s < kGnssSystems; ++s) {
        for (std::size_t a = 0; a < std::size(kAges); ++a) {
            const std::pair key{static_cast<GnssSystem>(s), a};
            errors[key].Print(systemName(key.first).c_str(), kAges[a].name);
            std::printf("      %s\n", worst[key].second.c_str());
        }
    }
    return 0;
}

#include "simulator/ScenarioKeys.h"

namespace fieldcore::simulator {

namespace {

bool ReadSatelliteId(Words& words, Satellite& satellite)
{
    struct Range
    {
        char letter;
        SatelliteSystem system;
        int first;
        int last;
    };
    constexpr Range kRanges[] = {{'G', SatelliteSystem::Gps, 1, 32},
                                 {'S', SatelliteSystem::Sbas, 120, 138},
                                 {'R', SatelliteSystem::Glonass, 1, 24},
                                 {'X', SatelliteSystem::Other, 1, 33}};
    const std::string_view word = words.Take();
    for (const Range& range : kRanges) {
        if (word.starts_with(range.letter)) {
            satellite.system = range.system;
            Words number(word.substr(1));
            return number.Integer("the satellite's number", range.first, range.last,
                                  satellite.number) ||
                   words.Fail(number.Error());
        }
    }
    return words.Fail("a satellite starts with G, S, R or X, not \"" + std::string(word) + "\"");
}

} // namespace

bool ReadSatellite(Words& words, Scenario& scenario)
{
    constexpr std::size_t kMaxSatellites = 60;
    Satellite satellite;
    if (!ReadSatelliteId(words, satellite) ||
        !words.Integer("the azimuth", 0, 359, satellite.azimuthDeg) ||
        !words.Integer("the elevation", 0, 90, satellite.elevationDeg)) {
        return false;
    }
    for (std::optional<double>& signal : satellite.signals) {
        if (words.Peek() == "-") {
            words.Take();
        } else if (!words.AtEnd() && !words.Real("the signal", 0.0, 63.75, signal.emplace())) {
            return false;
        }
    }
    if (scenario.satellites.size() == kMaxSatellites) {
        return words.Fail("there can be no more than 60 satellites");
    }
    scenario.satellites.push_back(satellite);
    return true;
}

bool ReadObstruction(Words& words, Scenario& scenario)
{
    constexpr std::size_t kMost = 100;
    if (scenario.obstructions.size() == kMost) {
        return words.Fail("there can be no more than 100 obstructions");
    }
    Obstruction& made = scenario.obstructions.emplace_back();
    if (!words.Real("the azimuth", 0.0, 360.0, made.fromDeg) ||
        !words.Real("the other azimuth", 0.0, 360.0, made.toDeg) ||
        !words.Real("the elevation", 0.0, 90.0, made.elevationDeg)) {
        return false;
    }
    made.toElevationDeg = made.elevationDeg;
    return words.AtEnd() || words.Real("the other elevation", 0.0, 90.0, made.toElevationDeg);
}

bool ReadListForm(Words& words, Scenario& scenario)
{
    const std::string_view form = words.Take();
    if (form == "text1" || form == "text2") {
        scenario.listForm = form == "text1" ? ListForm::Text1 : ListForm::Text2;
        return true;
    }
    if (form != "binary") {
        return words.Fail("a list form is text1, text2 or binary");
    }
    scenario.listForm = ListForm::Binary;
    int mask = scenario.signalMask;
    if (!words.AtEnd() && !words.Integer("the signal mask", 0, 15, mask)) {
        return false;
    }
    scenario.signalMask = static_cast<std::uint8_t>(mask);
    return true;
}

bool ReadAlmanac(Words& words, Scenario& scenario)
{
    constexpr long kMaxU32 = 4'294'967'295;
    constexpr double kHuge = 1e6; // any finite element may be tried on a controller
    Almanac almanac;
    long stamp = 0;
    long toa = 0;
    int health = 0;
    if (!words.Integer("the PRN", 1, 32, almanac.prn) ||
        !words.Integer("the time stamp", 0, kMaxU32, stamp) ||
        !words.Integer("the week", 0, 65535, almanac.week) ||
        !words.Integer("the reference time", 0, kMaxU32, toa)) {
        return false;
    }
    struct Element
    {
        std::string_view what;
        double Almanac::*value;
    };
    constexpr Element kElements[] = {
        {"the square root of the axis", &Almanac::sqrtA},
        {"the eccentricity", &Almanac::eccentricity},
        {"the inclination", &Almanac::inclination},
        {"the rate of right ascension", &Almanac::omegaDot},
        {"the longitude of the node", &Almanac::omega0},
        {"the argument of perigee", &Almanac::omega},
        {"the mean anomaly", &Almanac::m0},
    };
    for (const Element& element : kElements) {
        if (!words.Real(element.what, -kHuge, kHuge, almanac.*element.value)) {
            return false;
        }
    }
    if (!words.Integer("the health", 0, 255, health)) {
        return false;
    }
    almanac.stamp = static_cast<std::uint32_t>(stamp);
    almanac.toaS = static_cast<std::uint32_t>(toa);
    almanac.health = static_cast<std::uint8_t>(health);
    scenario.almanacs.push_back(almanac);
    return true;
}

} // namespace fieldcore::simulator

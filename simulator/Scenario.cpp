#include "simulator/Scenario.h"

#include "core/planning/NominalConstellation.h"
#include "simulator/Models.h"
#include "simulator/SatelliteKeys.h"
#include "simulator/Words.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>

namespace fieldcore::simulator {

namespace {

constexpr int kMaxU16 = 65535;

struct Key
{
    std::string_view name;
    bool (*read)(Words& words, Scenario& scenario);
};

void Become(Scenario& scenario, const Model& model)
{
    scenario.typeCode = model.typeCode;
    scenario.modelWord = model.modelWord;
    scenario.typeNumber = model.typeNumber;
    // The family name that most models carry does not fit into the eight characters.
    constexpr std::string_view kMaker = "Corvane ";
    scenario.typeText = model.name.empty() ? std::to_string(model.typeNumber)
                                           : std::string(model.name.substr(kMaker.size()));
}

bool ReadModel(Words& words, Scenario& scenario)
{
    const std::string text(words.TakeRest());
    const std::optional<Model> model = FindModel(text);
    if (!model) {
        return words.Fail("\"" + text + "\" is neither a type number nor a model name");
    }
    Become(scenario, *model);
    return true;
}

bool ReadTypeCode(Words& words, Scenario& scenario)
{
    int code = 0;
    int word = 0;
    if (!words.Integer("the type code", 0, 255, code) ||
        (!words.AtEnd() && !words.Integer("the model word", 0, kMaxU16, word))) {
        return false;
    }
    Become(scenario, ModelOfCode(code, word));
    return true;
}

bool ReadFirmware(Words& words, Scenario& scenario)
{
    const auto version = [&](std::string_view what, double& value) {
        return words.Real(what, 0.0, 999.99, value);
    };
    return version("the navigation version", scenario.navVersion) &&
           (words.AtEnd() || version("the signal version", scenario.signalVersion)) &&
           (words.AtEnd() || version("the boot version", scenario.bootVersion));
}

struct OptionName
{
    std::string_view name;
    bool Options::*flag;
    bool isExtended;
};

constexpr OptionName kOptionNames[] = {
    {"l2", &Options::l2, false},
    {"rtk", &Options::rtk, false},
    {"otf", &Options::otf, false},
    {"vrs", &Options::vrs, false},
    {"nmea", &Options::nmea, false},
    {"solace", &Options::solace, false},
    {"cmr-in", &Options::cmrIn, false},
    {"cmr-out", &Options::cmrOut, false},
    {"cmr-plus", &Options::cmrPlus, false},
    {"rtcm-in", &Options::rtcmIn, false},
    {"rtcm-out", &Options::rtcmOut, false},
    {"rtcm2-in", &Options::rtcm2In, false},
    {"rtcm2-out", &Options::rtcm2Out, false},
    {"rtcm21-in", &Options::rtcm21In, false},
    {"rtcm21-out", &Options::rtcm21Out, false},
    {"rtcm22", &Options::rtcm22, false},
    {"rtcm23", &Options::rtcm23, false},
    {"rtcm30", &Options::rtcm30, false},
    {"bluetooth", &Options::bluetooth, false},
    {"file-naming", &Options::fileNaming, false},
    {"logging-2hz", &Options::logging2Hz, false},
    {"extended", &Options::extended, true},
    {"l5", &Options::l5, true},
    {"l2c", &Options::l2c, true},
    {"glonass", &Options::glonass, true},
    {"galileo", &Options::galileo, true},
    {"qzss", &Options::qzss, true},
    {"tilt", &Options::tilt, true},
    {"meridian", &Options::meridian, true},
    {"cmrx-in", &Options::cmrxIn, true},
    {"cmrx-out", &Options::cmrxOut, true},
};

bool ReadOptions(Words& words, Scenario& scenario)
{
    while (!words.AtEnd()) {
        const std::string name(words.Take());
        const auto* const found =
            std::find_if(std::begin(kOptionNames), std::end(kOptionNames),
                         [&](const OptionName& option) { return option.name == name; });
        if (found == std::end(kOptionNames)) {
            return words.Fail("\"" + name + "\" is no option of a receiver");
        }
        scenario.options.*found->flag = true;
        scenario.options.extended = scenario.options.extended || found->isExtended;
    }
    return true;
}

bool ReadFix(Words& words, Scenario& scenario)
{
    constexpr std::string_view kKinds[] = {"none",         "searching", "single",
                                           "differential", "float",     "fixed"};
    const auto* const found = std::find(std::begin(kKinds), std::end(kKinds), words.Take());
    if (found == std::end(kKinds)) {
        return words.Fail("a fix is none, searching, single, differential, float or fixed");
    }
    scenario.fixKind = static_cast<int>(found - std::begin(kKinds));
    return true;
}

bool ReadStart(Words& words, Scenario& scenario)
{
    using namespace std::chrono;
    const std::string date(words.Take());
    const std::string time(words.Take());
    int part[6] = {};
    int used = 0;
    const std::string text = date + " " + time;
    // The letters of a date are few enough for one scan; what it leaves over is no date.
    const int fields = std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d:%2d%n", &part[0], &part[1],
                                   &part[2], &part[3], &part[4], &part[5], &used);
    const year_month_day day{year(part[0]), month(static_cast<unsigned>(part[1])),
                             std::chrono::day(static_cast<unsigned>(part[2]))};
    const bool good = fields == 6 && used == static_cast<int>(text.size()) && day.ok() &&
                      part[0] >= 1980 && part[0] <= 2099 && part[3] >= 0 && part[3] < 24 &&
                      part[4] >= 0 && part[4] < 60 && part[5] >= 0 && part[5] < 60;
    if (!good) {
        return words.Fail(
            "a start is a date in UTC such as 2026-03-14 01:30:00, from 1980 to 2099");
    }
    scenario.start = sys_days(day) + hours(part[3]) + minutes(part[4]) + seconds(part[5]);
    return true;
}

bool ReadFault(Words& words, Scenario& scenario)
{
    FaultRule rule;
    std::string error;
    if (!ParseFaultRule(words.TakeRest(), rule, error)) {
        return words.Fail(error);
    }
    scenario.faults.push_back(rule);
    return true;
}

bool ReadBaud(Words& words, Scenario& scenario)
{
    int baud = 0;
    if (!words.Integer("the baud rate", 300, 921'600, baud)) {
        return false;
    }
    scenario.baudRate = static_cast<std::uint32_t>(baud);
    return true;
}

bool ReadPacing(Words& words, Scenario& scenario)
{
    const std::string_view pacing = words.Take();
    if (pacing != "burst" && pacing != "baud") {
        return words.Fail("pacing is burst or baud");
    }
    scenario.pacing = pacing == "burst" ? Pacing::Burst : Pacing::Baud;
    return true;
}

bool ReadPosition(Words& words, Scenario& scenario)
{
    return words.Real("the latitude", -90.0, 90.0, scenario.latitudeDeg) &&
           words.Real("the longitude", -180.0, 180.0, scenario.longitudeDeg) &&
           words.Real("the height", -1000.0, 20'000.0, scenario.heightM);
}

bool ReadDop(Words& words, Scenario& scenario)
{
    const auto dop = [&](std::string_view what, double& value) {
        return words.Real(what, 0.0, 99.9, value);
    };
    return dop("the PDOP", scenario.pdop.emplace()) &&
           (words.AtEnd() || dop("the HDOP", scenario.hdop)) &&
           (words.AtEnd() || dop("the VDOP", scenario.vdop));
}

bool ReadLongSerial(Words& words, Scenario& scenario)
{
    if (words.Peek() == "none") {
        words.Take();
        scenario.longSerial.clear();
        return true;
    }
    return words.Text("the long serial", 10, scenario.longSerial);
}

constexpr Key kKeys[] = {
    {"title", [](Words& w, Scenario& s) { return w.Text("the title", 100, s.title); }},
    {"title-ja",
     [](Words& w, Scenario& s) { return w.Utf8Text("the Japanese title", 200, s.titleJa); }},
    {"model", ReadModel},
    {"type-code", ReadTypeCode},
    {"type-text", [](Words& w, Scenario& s) { return w.Text("the type text", 8, s.typeText); }},
    {"identity", [](Words& w, Scenario& s) { return w.Text("the identity", 20, s.identity); }},
    {"serial", [](Words& w, Scenario& s) { return w.Text("the serial", 8, s.serial); }},
    {"long-serial", ReadLongSerial},
    {"antenna-serial",
     [](Words& w, Scenario& s) { return w.Text("the antenna's serial", 8, s.antennaSerial); }},
    {"antenna-type",
     [](Words& w, Scenario& s) { return w.Text("the antenna's type", 2, s.antennaType); }},
    {"firmware", ReadFirmware},
    {"options", ReadOptions},
    {"logging-rate",
     [](Words& w, Scenario& s) {
         return w.Integer("the rate", 0, kMaxU16, s.loggingRate) &&
                (w.AtEnd() || w.Integer("the extended rate", 0, kMaxU16, s.extendedLoggingRate));
     }},
    {"memory-mb", [](Words& w, Scenario& s) { return w.Integer("MB", 0, kMaxU16, s.memoryMb); }},
    {"time-valid", [](Words& w, Scenario& s) { return w.YesNo("time-valid", s.timeValid); }},
    {"tracked",
     [](Words& w, Scenario& s) { return w.Integer("the count", 0, 99, s.trackedSatellites); }},
    {"pdop", ReadDop},
    {"fix", ReadFix},
    {"survey", [](Words& w, Scenario& s) { return w.Text("the survey", 4, s.survey); }},
    {"free-memory",
     [](Words& w, Scenario& s) { return w.Integer("tenths", 0, 10, s.freeMemoryTenths); }},
    {"battery",
     [](Words& w, Scenario& s) {
         return w.Real("the charge", 0.0, 999.0, s.batteryPercent) &&
                (w.AtEnd() || w.Real("the drain", 0.0, 36'000.0, s.batteryDrainPerHour));
     }},
    {"power-source",
     [](Words& w, Scenario& s) { return w.Integer("the source", 0, 255, s.powerSource); }},
    {"position", ReadPosition},
    {"utc-offset", [](Words& w, Scenario& s) { return w.Integer("seconds", 0, 99, s.utcOffsetS); }},
    {"signals-locked", [](Words& w, Scenario& s) { return w.YesNo("the lock", s.signalsLocked); }},
    {"satellite", ReadSatellite},
    {"list-form", ReadListForm},
    {"almanac", ReadAlmanac},
    {"almanacs",
     [](Words& w, Scenario& s) {
         return w.Integer("the number of almanacs", 0, kNominalSatellites,
                          s.nominalAlmanacs.emplace());
     }},
    {"mask", [](Words& w, Scenario& s) { return w.Real("the mask", 0.0, 90.0, s.maskDeg); }},
    {"port",
     [](Words& w, Scenario& s) {
         return w.Integer("the port", 1, 255, s.port) &&
                (w.AtEnd() || w.Integer("the number of ports", s.port, 255, s.portCount));
     }},
    {"baud", ReadBaud},
    {"pacing", ReadPacing},
    {"latency", [](Words& w, Scenario& s) { return w.Integer("ms", 0, 60'000, s.latencyMs); }},
    {"answers", [](Words& w, Scenario& s) { return w.YesNo("answers", s.answers); }},
    {"start", ReadStart},
    {"speed", [](Words& w, Scenario& s) { return w.Real("the speed", 1e-3, 1e6, s.speed); }},
    {"fault", ReadFault},
    {"chance-start",
     [](Words& w, Scenario& s) {
         long start = 0;
         const bool good = w.Integer("the start", 0, 4'294'967'295, start);
         s.chanceStart = static_cast<std::uint32_t>(start);
         return good;
     }},
};

bool ReadLine(Words& words, Scenario& scenario)
{
    const std::string_view name = words.Take();
    const auto* const key = std::find_if(std::begin(kKeys), std::end(kKeys),
                                         [&](const Key& k) { return k.name == name; });
    if (key == std::end(kKeys)) {
        return words.Fail("\"" + std::string(name) + "\" is not known");
    }
    return key->read(words, scenario) && words.End();
}

} // namespace

std::optional<Scenario> ParseScenario(std::string_view text, std::string& error)
{
    Scenario scenario;
    for (int number = 1; !text.empty(); ++number) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        Words words(line.substr(0, line.find('#')));
        if (!words.AtEnd() && !ReadLine(words, scenario)) {
            error = "line " + std::to_string(number) + ": " + words.Error();
            return std::nullopt;
        }
    }
    return scenario;
}

} // namespace fieldcore::simulator

#include "simulator/Scenario.h"

#include "core/planning/NominalConstellation.h"
#include "simulator/Models.h"
#include "simulator/ScenarioKeys.h"
#include "simulator/Words.h"

#include <algorithm>
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
    {"free-memory", ReadFreeMemory},
    {"file", ReadFile},
    {"files", ReadFiles},
    {"listing", ReadListing},
    {"battery",
     [](Words& w, Scenario& s) {
         return w.Real("the charge", 0.0, 999.0, s.batteryPercent) &&
                (w.AtEnd() || w.Real("the drain", 0.0, 36'000.0, s.batteryDrainPerHour));
     }},
    {"power-source", ReadPowerSource},
    {"position", ReadPosition},
    {"utc-offset",
     [](Words& w, Scenario& s) { return w.Integer("seconds", -101, 101, s.utcOffsetS); }},
    {"signals-locked", [](Words& w, Scenario& s) { return w.YesNo("the lock", s.signalsLocked); }},
    {"tilt-pole", ReadTiltPole},
    {"tilt-present", ReadTiltPresent},
    {"tilt-starting",
     [](Words& w, Scenario& s) { return w.Real("seconds", 0.0, 3600.0, s.tilt.startingS); }},
    {"tilt-errors",
     [](Words& w, Scenario& s) { return w.Integer("the errors", 0, 3, s.tilt.errors); }},
    {"tilt-calibration", ReadTiltCalibration},
    {"tilt-calibrated", ReadTiltCalibrated},
    {"tilt-validity", ReadTiltValidity},
    {"antenna", ReadAntenna},
    {"obstruction", ReadObstruction},
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
    {"check-rate", [](Words& w, Scenario& s) { return w.YesNo("the check", s.checksRate); }},
    {"latency", [](Words& w, Scenario& s) { return w.Integer("ms", 0, 60'000, s.latencyMs); }},
    {"answers", [](Words& w, Scenario& s) { return w.YesNo("answers", s.answers); }},
    {"start", [](Words& w, Scenario& s) { return w.Moment("a start", s.start.emplace()); }},
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

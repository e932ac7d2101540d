#pragma once

#include "core/settings/Reg.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fieldcore {

inline constexpr bool kNearest = true;

/// A setting that is kept. What is missing or of another type reads as its default.
struct Setting
{
    struct Number
    {
        std::uint32_t byDefault = 0;
        std::uint32_t least = 0;
        std::uint32_t most = 0; ///< 0: there is no range
        bool isNearest = false; ///< what counts in place of one out of range; else the default

        [[nodiscard]] constexpr std::int64_t Fit(std::int64_t value) const
        {
            return most == 0 || (value >= least && value <= most) ? value
                   : isNearest ? std::clamp<std::int64_t>(value, least, most)
                               : byDefault;
        }
    };

    std::wstring_view path; ///< key below HostBasePath(), and name; "*" is a part that differs
    Number number;
    const char* meaning;
    const wchar_t* text = nullptr; ///< of a text its default; null: it is a number

    /// @param which  what stands in place of "*"
    [[nodiscard]] std::wstring Key(std::wstring_view which = {}) const;
    [[nodiscard]] std::wstring Name(std::wstring_view which = {}) const;
};

/// All of them, as docs/settings.md has them.
inline constexpr Setting kSettings[] = {
    {L"Ports\\COM*", {}, "whole path of the device, best below `/dev/serial/by-id`", L""},
    {L"GPS\\Connect\\Port", {}, "how the receiver was last reached: COM1, a path, `sim:`", L""},
    {L"GPS\\Com\\Com*\\Baudlate", {9600}, "bit/s, 38400 of port 0; unknown: 9600"},
    {L"GPS\\Com\\Com*\\Length", {8}, "data bits, 8 or 7"},
    {L"GPS\\Com\\Com*\\Parity", {}, "0 none, 1 odd, 2 even; unknown: odd"},
    {L"GPS\\Com\\Com*\\Stopbit", {}, "0 one, 2 two"},
    {L"GPS\\Com\\Com*\\Flow", {}, "0 none, 1 Xon/Xoff, 2 CTS"},
    {L"GPS\\Com\\Com*\\Told", {}, "what a receiver was told last, and its serial number", L""},
    {L"GPS\\*\\ActivePage", {}, "page that was open last; `Com` of the ports"},
    {L"GPS\\Antenna\\*\\AntType", {}, "place of the type in the catalogue"},
    {L"GPS\\Antenna\\*\\AntWay", {}, "0 vertical height, else the method's place and 1"},
    {L"GPS\\Antenna\\*\\AntH*", {}, "the last ten heights, m, the one in use first", L""},
    {L"GPS\\Antenna\\*\\AntSN*", {}, "the last ten serial numbers", L""},
    {L"GPS\\Antenna\\*\\AntNoSN", {}, "1 the antenna in use has no serial number"},
    {L"GPS\\Antenna\\List\\*", {}, "copy of the catalogue", L""},
    {L"GPS\\Point\\PointName*", {}, "remembered entries, the last choice first", L""},
    {L"GPS\\Point\\PointNo*", {}, "the same", L""},
    {L"GPS\\Point\\Attrib*", {}, "the same", L""},
    {L"GPS\\Signal\\*\\L2C", {}, "1 chosen"},
    {L"GPS\\Signal\\*\\Glonass", {}, "the same"},
    {L"GPS\\Signal\\*\\Qzss", {}, "the same"},
    {L"GPS\\Signal\\*\\Galileo", {}, "the same"},
    {L"GPS\\Signal\\*\\L5", {}, "the same"},
    {L"GPS\\Tracking\\Survey", {}, "the survey that is run", L"RtkRef"},
    {L"GPS\\Tracking\\*\\Interval", {1, 1, 60}, "s: 1, 2, 3, 4, 5, 10, 15 and so on"},
    {L"GPS\\Tracking\\*\\ElMask", {15, 0, 90}, "degrees: 0, 5, 10 to 50, 60 and so on"},
    {L"GPS\\Tracking\\*\\SvEpoch", {10, 1, 9999}, "epochs"},
    {L"GPS\\Tracking\\*\\MinSVs", {5, 4, 9}, "fewest satellites"},
    {L"GPS\\Tracking\\*\\MSAS", {0, 0, 1}, "1 used"},
    {L"GPS\\Tracking\\*\\PDOPMask", {}, "highest PDOP, 1.0 to 99.0", L"7.0"},
    {L"GPS\\eBubble\\Sensitivity", {}, "tilt that moves the bubble by 2 mm, arc minutes", L"40"},
    {L"GPS\\eBubble\\Viscosity", {}, "speed of the sensor: 0 fast, 1 medium, 2 slow", L"1"},
    {L"GPS\\eBubble\\Duration", {}, "tolerance at the antenna, whole mm, 1 to 1000", L"20"},
    {L"GPS\\SurveyPlan\\ElMask", {15, 0, 90, kNearest}, "mask, degrees"},
    {L"GPS\\SurveyPlan\\StartTime", {9, 0, 23, kNearest}, "first hour in Japan"},
    {L"GPS\\SurveyPlan\\DispTime", {2, 1, 24, kNearest}, "hours, not beyond midnight"},
    {L"GPS\\SurveyPlan\\DrawType",
     {},
     "0 count, 1 sky plot, 2 azimuth, 3 elevation, 4 PDOP, 5 GDOP, 6 TDOP"},
    {L"GPS\\SurveyPlan\\ListCoord", {}, "0 degrees, minutes, seconds, 1 degrees"},
    {L"GPS\\SurveyPlan\\Position", {}, "site, a section of `GSurveyPlan.ini`", L"東京都千代田区"},
    {L"GPS\\SurveyPlan\\PositionNo", {13}, "its place in the list, from 1"},
    {L"GPS\\SurveyPlan\\PositionID", {}, "0 from the list, 1 from the receiver"},
    {L"GPS\\SurveyPlan\\Conditions\\MinSatellites", {5, 4, 12, kNearest}, "fewest of good windows"},
    {L"GPS\\SurveyPlan\\Conditions\\MaxPdop", {400, 100, 1000, kNearest}, "their PDOP, hundredths"},
    {L"GPS\\SurveyPlan\\Conditions\\MinMinutes", {30, 5, 720, kNearest}, "their length"},
    {L"GPS\\SurveyPlan\\Conditions\\SwitchedOff", {}, "not to count: bit k is PRN k + 1"},
    {L"GPS\\SurveyPlan\\Conditions\\Systems", {1}, "systems that count: bits for G R E C J S"},
    {L"GPS\\SurveyPlan\\Conditions\\ClockPerSystem", {}, "1 a clock for each"},
    {L"GPS\\SurveyPlan\\Search\\Days", {14, 1, 31, kNearest}, "days of the last search"},
    {L"GPS\\SurveyPlan\\Search\\StartTime", {8, 0, 23, kNearest}, "first hour in Japan"},
    {L"GPS\\SurveyPlan\\Search\\Hours", {10, 1, 24, kNearest}, "hours of a day"},
    {L"GPS\\SurveyPlan\\Search\\Site*", {}, "its sites, or a session's", L""},
    {L"GPS\\SkyPlot\\Constellation", {0, 0, 5}, "0 all systems, else the one shown"},
    {L"GPS\\SkyPlot\\View", {0, 0, 1}, "0 bars, 1 list"},
    {L"GPS\\App\\Theme", {0, 0, 2}, "0 daylight, 1 dark, 2 system"},
    {L"GPS\\App\\AntennaRole", {1, 0, 2}, "0 reference station, 1 rover, 2 its second form"},
    {L"GPS\\App\\SetClock", {0, 0, 1}, "1 the receiver may set the clock"},
    {L"GPS\\App\\PlaneZone", {0, 0, 19}, "0 the nearest"},
    {L"GPS\\App\\Q77", {0, 0, 1}, "1 the taller controller"},
    {L"Data\\System\\Rtk\\GpsPort", {1}, "COM number of the receiver: 1 the cable"},
};

/// A row of kSettings, by its path: one that is not there does not compile.
class KnownSetting
{
public:
    consteval KnownSetting(const wchar_t* path)
        : m_row(std::ranges::find(kSettings, std::wstring_view(path), &Setting::path))
    {
        if (m_row == std::end(kSettings)) {
            throw "no such setting";
        }
    }
    constexpr const Setting* operator->() const { return m_row; }

private:
    const Setting* m_row;
};

// Reading and writing, with an accessor that starts at the base path; @p which as above.

/// @return 1, or 0 if @p number is the default
int ReadSetting(const CReg& reg, KnownSetting setting, std::uint32_t& number,
                std::wstring_view which = {});
/// A number that fits.
[[nodiscard]] std::uint32_t StoredNumber(const CReg& reg, KnownSetting setting,
                                         std::wstring_view which = {});
[[nodiscard]] std::wstring StoredText(const CReg& reg, KnownSetting setting,
                                      std::wstring_view which = {});
/// @return 1, or 0 if it could not be stored
int Store(const CReg& reg, KnownSetting setting, const SettingsValue& value,
          std::wstring_view which = {});

/// A setting and what is to be stored.
struct SettingWrite
{
    SettingWrite(KnownSetting known, SettingsValue stored, std::wstring_view star = {})
        : setting(known), value(std::move(stored)), which(star)
    {}

    KnownSetting setting;
    SettingsValue value;
    std::wstring which; ///< in place of "*"
};
/// Stores all of them, or none. @return 1, or 0 if they could not be stored
int StoreAll(const CReg& reg, const std::vector<SettingWrite>& settings);

} // namespace fieldcore

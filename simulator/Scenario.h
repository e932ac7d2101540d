#pragma once

#include "core/platform/Clock.h"
#include "simulator/FaultRule.h"
#include "simulator/ReceiverFile.h"
#include "simulator/Steps.h"
#include "simulator/TiltSettings.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fieldcore::simulator {

/// How satellites are numbered: G1-G32 GPS, S120-S138 SBAS, R1-R24 GLONASS, X1-X33 the others.
enum class SatelliteSystem : std::uint8_t
{
    Gps,
    Sbas,
    Glonass,
    Other
};

/// A satellite that the receiver tracks.
struct Satellite
{
    SatelliteSystem system = SatelliteSystem::Gps;
    int number = 1;                               ///< in its system
    int azimuthDeg = 0;                           ///< 0 to 359, clockwise from north
    int elevationDeg = 0;                         ///< 0 to 90
    std::array<std::optional<double>, 4> signals; ///< signal strength, dB-Hz, 0 to 63.75
};

/// Almanac of a GPS satellite as it goes over the line. Angles are semicircles.
struct Almanac
{
    int prn = 1;             ///< 1 to 32
    std::uint32_t stamp = 0; ///< when the receiver decoded it, seconds since 1980-01-06
    int week = 0;            ///< GPS week of toa, full count
    std::uint32_t toaS = 0;  ///< reference time, seconds of its week
    double sqrtA = 0.0;      ///< m^0.5
    double eccentricity = 0.0;
    double inclination = 0.0; ///< semicircles
    double omegaDot = 0.0;    ///< rate of right ascension, semicircles/s
    double omega0 = 0.0;      ///< longitude of ascending node at the week's start, semicircles
    double omega = 0.0;       ///< argument of perigee, semicircles
    double m0 = 0.0;          ///< mean anomaly at toa, semicircles
    std::uint8_t health = 0;  ///< 0: healthy
};

/// What stands around the antenna: from one azimuth clockwise to the other, and how high it reaches
/// at both ends. Degrees; in between it rises evenly.
struct Obstruction
{
    double fromDeg = 0.0;
    double toDeg = 0.0;
    double elevationDeg = 0.0;
    double toElevationDeg = 0.0;
};

/// How the antenna hears.
enum class AntennaState : std::uint8_t
{
    Good,
    Weak, ///< 20 dB less, and nothing of what is too faint then
    Dead
};

/// What the receiver can do. Names in a scenario are these names in lower case.
struct Options
{
    bool l2 = false, rtk = false, otf = false, vrs = false, nmea = false, solace = false;
    bool cmrIn = false, cmrOut = false, cmrPlus = false;
    bool rtcmIn = false, rtcmOut = false, rtcm2In = false, rtcm2Out = false;
    bool rtcm21In = false, rtcm21Out = false, rtcm22 = false, rtcm23 = false, rtcm30 = false;
    bool bluetooth = false, fileNaming = false, logging2Hz = false;
    // The extended ones: asked for with a request of their own.
    bool extended = false; ///< the receiver knows that request; set by naming any of these
    bool l5 = false, l2c = false, glonass = false, galileo = false, qzss = false, tilt = false;
    bool meridian = false, cmrxIn = false, cmrxOut = false;
};

/// How satellites are listed when no form is asked for.
enum class ListForm : std::uint8_t
{
    Text1,
    Text2,
    Binary
};

/// In what manner files are listed.
enum class ListingManner : std::uint8_t
{
    Plain,
    Backwards, ///< a Lark's pages come from the last to the first
    Endless    ///< the pages begin again and again
};

/// How fast the answers come.
enum class Pacing : std::uint8_t
{
    Burst, ///< at once, as a pseudo-terminal does
    Baud   ///< 10 bits a byte at the port's rate, as a cable does
};

/// A receiver, the place where it stands and what goes wrong: all that a Simulator needs to know.
/// Made by ParseScenario(), LoadScenario() or by hand; docs/simulator.md has the text format.
// Its members stand together by meaning, not by size; there is one of it.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
struct Scenario
{
    std::string title = "A receiver"; ///< one line, for lists
    std::string titleJa;              ///< the same in Japanese, UTF-8; may be empty

    // Who it is.
    int typeCode = 31;               ///< the code that the receiver reports
    int modelWord = 0;               ///< counts only with type code 0
    int typeNumber = 3017;           ///< what that code stands for
    std::string typeText = "VX1";    ///< up to 8 ASCII characters
    std::string identity;            ///< model text of the identification; empty: the type number
    std::string serial = "00301701"; ///< up to 8 ASCII characters
    std::string longSerial = "5017000001"; ///< up to 10; empty: the reply ends before it
    std::string antennaSerial = "A0001";   ///< up to 8
    std::string antennaType = "01";        ///< up to 2
    double navVersion = 4.43;              ///< 0 to 999.99
    double signalVersion = 2.10;
    double bootVersion = 1.05;

    Options options;             ///< what is installed
    int loggingRate = 10;        ///< shortest logging interval, tenths of a second
    int extendedLoggingRate = 5; ///< the same, newer receivers; 0: not told
    int memoryMb = 64;           ///< memory word of the options, MB

    // How it is.
    bool timeValid = true;
    int trackedSatellites = -1;    ///< negative: as many as are listed
    std::optional<double> pdop;    ///< 99.9: none; not given: that of the sky, 1.8 if it stands
    double hdop = 1.0, vdop = 1.5; ///< count where pdop is given, or the sky stands
    int fixKind = 5; ///< 0 none, 1 searching, 2 single, 3 differential, 4 float, 5 fixed
    /// What it is later on. While it is below single no satellite is used and there is no dilution;
    /// a receiver that begins so knows no time until the first position.
    Steps laterFixes;
    std::string survey; ///< text of the running survey, up to 4 characters
    /// What it starts with, 0 to 10; it grows as files are deleted. None: what the files leave of
    /// memoryMb.
    std::optional<int> freeMemoryTenths = 9;
    std::vector<ReceiverFile> files; ///< see FilesAtStart()
    ListingManner listing = ListingManner::Plain;
    double batteryPercent = 85.0;
    double batteryDrainPerHour = 0.0; ///< percent
    int powerSource = 1;              ///< 1 to 3
    Steps laterPowerSources;
    double latitudeDeg = 35.0, longitudeDeg = 139.0, heightM = 70.0; ///< WGS84
    int utcOffsetS = 18;                                             ///< GPS time minus UTC
    TiltSettings tilt;                                               ///< counts with the option
    bool signalsLocked = false; ///< an application file fixes the signals

    std::vector<Obstruction> obstructions; ///< hide GPS satellites that move
    AntennaState antenna = AntennaState::Good;
    Steps laterAntennas;   ///< numbers of an AntennaState
    double maskDeg = 10.0; ///< GPS satellites that move are tracked from this elevation on
    std::vector<Satellite> satellites; ///< with a GPS one among them none moves
    ListForm listForm = ListForm::Binary;
    std::uint8_t signalMask =
        0x03; ///< binary lists: bit 0 first, 1 second, 2 fourth, 3 third signal
    std::vector<Almanac> almanacs;
    /// The sky has the nominal GPS constellation, and the receiver the almanacs of its PRN 1 to
    /// this number, 0 to 31; those that almanacs gives stand for their PRN.
    std::optional<int> nominalAlmanacs;

    // The port that the controller is plugged into.
    int port = 1; ///< 1 to portCount
    int portCount = 2;
    std::uint32_t baudRate = 38400;
    Pacing pacing = Pacing::Burst;
    /// Requests at another rate than the port's are not heard. What the rate is a pseudo-terminal
    /// knows, though it does not matter to it.
    bool checksRate = false;
    int latencyMs = 0;   ///< thinking time before each answer
    bool answers = true; ///< false: the port is there and nothing ever comes

    // Time, and what goes wrong.
    std::optional<Clock::UtcTime> start; ///< the receiver's date when it starts; none: the clock's
    double speed = 1.0; ///< receiver seconds in one second of the clock, greater than 0
    std::vector<FaultRule> faults;
    std::uint32_t chanceStart = 1; ///< start of the random numbers: same start, same faults
};

/// Reads a scenario. Keys that @p text does not name keep their defaults.
/// @param error  "line N: cause" for the first line that is wrong; untouched on success
/// @return nothing if a line is wrong
[[nodiscard]] std::optional<Scenario> ParseScenario(std::string_view text, std::string& error);

/// A scenario by the name of a shipped one ("lark"), else by the path of a file.
/// @param name   empty: "lark"
/// @param error  what is wrong; a name that is neither is answered with the names there are
[[nodiscard]] std::optional<Scenario> LoadScenario(const std::string& name, std::string& error);

/// Names and titles of the shipped scenarios, in the order in which they are best tried.
[[nodiscard]] std::vector<std::pair<std::string, std::string>> ShippedScenarios();

} // namespace fieldcore::simulator

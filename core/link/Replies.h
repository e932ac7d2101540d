#pragma once

#include "core/link/DirectoryListing.h"
#include "core/link/FrameReader.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace fieldcore {

// What the receiver answers, read out of a frame. Every parser answers nothing when the frame is
// of another type, shorter than its layout, or holds a value that no receiver can mean; the
// frame's cursor is left behind the last field. The layouts stand in docs/protocol.md.

/// Identity and firmware, reply 0x07. Versions are five digits, hundredths: "00443" is 4.43.
struct SerialReply
{
    std::wstring shortSerial;
    std::wstring receiverType; ///< without trailing blanks
    std::wstring navVersion;
    std::wstring sigVersion;
    std::wstring bootVersion;
    std::wstring antennaSerial;
    std::wstring antennaType;
    std::wstring longSerial; ///< a copy of the short one if the receiver sends none

    friend bool operator==(const SerialReply&, const SerialReply&) = default;
};
[[nodiscard]] std::optional<SerialReply> ParseSerial(FrameReader frame);

/// Installed options, reply 0x4B to a request without data. See CRecvInfo for what they mean.
struct OptionsReply
{
    std::uint8_t firstOption = 0;  ///< kept; nothing reads it
    double tenths = 0.0;           ///< kept; nothing reads it
    std::uint32_t loggingRate = 0; ///< the rate word times 100
    std::uint8_t currentPort = 1;  ///< from 1; 1 while it is not told, as the next
    std::uint8_t portCount = 1;
    std::uint8_t frequencies = 0; ///< 2: L1 and L2
    std::uint8_t nmea = 0;
    std::uint8_t rtcm1Input = 0;
    std::uint8_t rtcm2Input = 0;
    std::uint8_t rtcmOutput = 0; ///< bit 1: version 2.3, bit 2: version 3.0
    std::uint8_t rtcm2Output = 0;
    std::uint16_t memory = 0;
    std::uint8_t byte32 = 0; ///< kept; nothing reads it
    std::uint8_t rtk = 0;
    std::uint8_t rtkFlags = 0;
    std::uint8_t rtcm21 = 0;
    std::uint8_t typeCode = 0;
    bool bluetooth = false;
    std::uint8_t flags1 = 0;
    std::uint8_t flags2 = 0;     ///< bit 7: extended options can be asked for
    std::uint16_t modelWord = 0; ///< 0 unless the type code is 0

    friend bool operator==(const OptionsReply&, const OptionsReply&) = default;
};
[[nodiscard]] std::optional<OptionsReply> ParseOptions(FrameReader frame);

/// Extended options, reply 0x4B to the request with the data byte 1. All clear when the receiver
/// has none. See CRecvInfo for what they mean.
struct ExtendedOptionsReply
{
    std::uint32_t signals = 0; ///< bit 21: L2C, bit 29: L5
    std::uint32_t systems = 0; ///< bit 0: GLONASS, bits 19 and 23: Galileo
    std::uint32_t sensors = 0; ///< bit 1: tilt sensor, bit 2: QZSS
    std::uint8_t board = 0;    ///< bit 4: CMRx input, bit 5: CMRx output, bit 6: Meridian board
    std::uint8_t counts = 0;   ///< bit 0: the bits of CMRx count, bit 1: the logging rate does
    std::uint16_t loggingRate = 0;

    friend bool operator==(const ExtendedOptionsReply&, const ExtendedOptionsReply&) = default;
};
[[nodiscard]] std::optional<ExtendedOptionsReply> ParseExtendedOptions(FrameReader frame);

/// Receiver status, reply 0x09.
struct StatusReply
{
    bool timeValid = false;
    int satellitesTracked = 0;
    int batteryPercent = 0;
    double pdop = 0.0; ///< 99.9 when there is none
    int fixKind = 0;
    bool rtkFixed = false; ///< the fix kind is 5
    std::wstring survey;   ///< the running survey, blank when none; 4 characters
    int freeMemoryTenths = 0;

    friend bool operator==(const StatusReply&, const StatusReply&) = default;
};
[[nodiscard]] std::optional<StatusReply> ParseStatus(FrameReader frame);

/// GPS time, reply 0x15.
struct GpsTimeReply
{
    double secondsOfWeek = 0.0; ///< 0 <= s < 604800
    int week = 0;               ///< as sent, not repaired
    int utcOffsetS = 0;         ///< of UTC from GPS time, whole seconds

    friend bool operator==(const GpsTimeReply&, const GpsTimeReply&) = default;
};
[[nodiscard]] std::optional<GpsTimeReply> ParseGpsTime(FrameReader frame);

/// The receiver's last known place, reply 0x31. WGS84.
struct SiteReply
{
    double latitudeRad = 0.0;
    double longitudeRad = 0.0;
    double heightM = 0.0; ///< above the ellipsoid

    friend bool operator==(const SiteReply&, const SiteReply&) = default;
};
[[nodiscard]] std::optional<SiteReply> ParseSite(FrameReader frame);

/// Position status, reply 0x35.
struct PositionStatusReply
{
    int fixKind = 0; ///< 0 none, 1 searching, 2 single, 3 differential, 4 float, 5 fixed
    int satellitesUsed = 0;
    std::uint32_t week = 0;
    std::uint32_t secondsOfWeek = 0;
    // From here on as sent: without a fix these may be no numbers.
    float pdop = 0.0F;
    float hdop = 0.0F;
    float vdop = 0.0F;
    SiteReply position;

    friend bool operator==(const PositionStatusReply&, const PositionStatusReply&) = default;
};
[[nodiscard]] std::optional<PositionStatusReply> ParsePositionStatus(FrameReader frame);

/// The power source that feeds the receiver, reply 0x41: 1, 2 or 3.
[[nodiscard]] std::optional<int> ParseBatteryPort(FrameReader frame);

/// Settings flags, reply 0x7A. The third is 1 while an application file fixes the signals.
using SettingsFlags = std::array<std::uint8_t, 3>;
[[nodiscard]] std::optional<SettingsFlags> ParseSettingsFlags(FrameReader frame);

/// A moment of GPS time as the tilt sensor reports it.
struct TiltTime
{
    std::uint16_t week = 0;
    std::uint32_t secondsOfWeek = 0;

    friend bool operator==(const TiltTime&, const TiltTime&) = default;
};

/// A reading of the tilt sensor, reply 0xC8. Angles as sent; they may be no numbers.
struct TiltReading
{
    int state = 0; ///< 0 starting, 1 measuring, 2 moving too fast, 3 out of range
    bool error1 = false;
    bool error2 = false;
    bool sensorPresent = false;
    int calibrationState = 0;
    bool calibrationValid = false; ///< the calibration state may be believed
    bool calibrated = false;
    double t1Rad = 0.0;
    double t2Rad = 0.0;
    double tiltRad = 0.0;
    std::optional<TiltTime> time; ///< nothing when unknown

    friend bool operator==(const TiltReading&, const TiltReading&) = default;
};
[[nodiscard]] std::optional<TiltReading> ParseTiltReading(FrameReader frame);

/// The tilt sensor's calibration record, reply 0xC8.
struct TiltCalibration
{
    int validityHours = 0;
    std::optional<TiltTime> calibrated; ///< nothing when never
    int progressPercent = 0;            ///< while a calibration runs

    friend bool operator==(const TiltCalibration&, const TiltCalibration&) = default;
};
[[nodiscard]] std::optional<TiltCalibration> ParseTiltCalibration(FrameReader frame);

/// What a receiver tells of itself after a BREAK, packet 0x6E: a text such as
/// "ID,3017;PORT,0,38400,L,8,1,N,F;VER,4.43,".
struct IdentificationRecord
{
    std::uint8_t port = 0; ///< from 1
    std::uint32_t baudRate = 0;
    std::uint8_t byteSize = 0;
    std::uint8_t parity = 0;   ///< 0 none, 1 odd, 2 even
    std::uint8_t stopBits = 0; ///< 0 one stop bit, 2 two stop bits
    bool flowControl = false;
    std::uint32_t typeNumber = 0;
    double version = 0.0;
};

/// Empty fields do not count as fields. @return nothing for fewer than twelve, too
[[nodiscard]] std::optional<IdentificationRecord> ParseIdentification(FrameReader frame);

// About files: nothing, too, for a frame shorter than what it announces, or one with more records
// than a page holds.

inline constexpr std::size_t kPicaPageFiles = 9;
inline constexpr std::size_t kLarkPageFiles = 8;

/// One page of a listing.
struct FilePage
{
    int number = 0;    ///< from 0; of a Lark 0 to 127
    bool last = false; ///< no other follows
    std::size_t count = 0;
    std::array<DirectoryListingData, kPicaPageFiles> files; ///< the first @c count are valid
};

/// A page of a Pica, reply 0x79. The time is the record's date, hour and minute (UTC) and 9 hours;
/// 0 where they are no date since 1980-01-06, the last second that fits where they are beyond it.
[[nodiscard]] std::optional<FilePage> ParsePicaFilePage(FrameReader frame);

/// A page of a Lark, frame 0x9D.
[[nodiscard]] std::optional<FilePage> ParseLarkFilePage(FrameReader frame);

/// A piece of a file, long frame 0x95.
struct FileBlock
{
    enum Flag : std::uint8_t
    {
        Last = 0x01,
        NoSuchFile = 0x02,
        Open = 0x04, ///< being written by the receiver
    };

    std::uint32_t offset = 0; ///< in the file
    std::uint8_t flags = 0;
    std::span<const std::uint8_t> bytes; ///< at most 1000; inside the frame
};
/// Nothing either for a frame that does not end in ETX.
[[nodiscard]] std::optional<FileBlock> ParseFileBlock(FrameReader frame);

} // namespace fieldcore

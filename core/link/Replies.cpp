#include "core/link/Replies.h"

#include "core/link/NumberFields.h"

#include <algorithm>
#include <cmath>

namespace fieldcore {

namespace {

constexpr std::uint8_t kSerialType = 0x07;
constexpr std::uint8_t kStatusType = 0x09;
constexpr std::uint8_t kGpsTimeType = 0x15;
constexpr std::uint8_t kSiteType = 0x31;
constexpr std::uint8_t kPositionStatusType = 0x35;
constexpr std::uint8_t kBatteryPortType = 0x41;
constexpr std::uint8_t kOptionsType = 0x4B;
constexpr std::uint8_t kSettingsFlagsType = 0x7A;
constexpr std::uint8_t kTiltType = 0xC8;

// Shortest data lengths.
constexpr std::size_t kSerialLength = 45;
constexpr std::size_t kLongSerialFrom = 46; // the frame has a long serial number from here on
constexpr std::size_t kStatusLength = 21;
constexpr std::size_t kGpsTimeLength = 13;
constexpr std::size_t kSiteLength = 26;
constexpr std::size_t kPositionStatusLength = 46;
constexpr std::size_t kOptionsLength = 49;
constexpr std::size_t kModelWordLength = 51;
constexpr std::size_t kExtendedLength = 20; // behind the mark: up to the three words
constexpr std::size_t kMeridianLength = 29;
constexpr std::size_t kCmrxLength = 33;
constexpr std::size_t kExtendedRateLength = 34;
constexpr std::size_t kSettingsFlagsLength = 5;
constexpr std::size_t kTiltReadingLength = 34;
constexpr std::size_t kTiltCalibrationLength = 11;

constexpr double kSecondsPerWeek = 604800.0;
constexpr std::uint16_t kUnknownWeek = 0xFFFF;
constexpr std::uint16_t kBluetoothModel = 310;
constexpr int kRtkFixed = 5;

/// Tests type and length and puts the cursor on the data.
bool Begin(FrameReader& frame, std::uint8_t type, std::size_t length)
{
    return frame.Type() == type && frame.DataLength() >= length;
}

constexpr bool Bit(std::uint32_t value, int bit)
{
    return (value >> bit & 1) != 0;
}

SiteReply ReadPlace(FrameReader& frame)
{
    SiteReply place;
    place.latitudeRad = frame.Double();
    place.longitudeRad = frame.Double();
    place.heightM = frame.Double();
    return place;
}

/// Not so when one of the values is no number.
bool IsOnEarth(const SiteReply& place)
{
    constexpr double kHalfTurn = 3.141592653589793;
    return std::abs(place.latitudeRad) <= kHalfTurn / 2 &&
           std::abs(place.longitudeRad) <= 2 * kHalfTurn && std::isfinite(place.heightM);
}

std::optional<TiltTime> ReadTiltTime(FrameReader& frame)
{
    TiltTime time;
    time.week = frame.Word();
    time.secondsOfWeek = frame.Long();
    if (time.week == kUnknownWeek || time.secondsOfWeek >= kSecondsPerWeek) {
        return std::nullopt;
    }
    return time;
}

/// The tilt sensor's two replies carry the query in their first two bytes.
bool BeginTilt(FrameReader& frame, std::uint8_t what, std::size_t length)
{
    return Begin(frame, kTiltType, length) && frame.Byte() == 1 && frame.Byte() == what;
}

} // namespace

std::optional<SerialReply> ParseSerial(FrameReader frame)
{
    if (!Begin(frame, kSerialType, kSerialLength)) {
        return std::nullopt;
    }
    SerialReply reply;
    reply.shortSerial = frame.Text(8);
    reply.receiverType = frame.Text(8);
    reply.receiverType.erase(reply.receiverType.find_last_not_of(L' ') + 1);
    reply.navVersion = frame.Text(5);
    reply.sigVersion = frame.Text(5);
    reply.bootVersion = frame.Text(5);
    reply.antennaSerial = frame.Text(8);
    reply.antennaType = frame.Text(2);
    frame.Skip(4);
    const std::size_t length = frame.DataLength();
    reply.longSerial = length >= kLongSerialFrom
                           ? frame.Text(std::min<std::size_t>(length - kSerialLength, 10))
                           : reply.shortSerial;
    return reply;
}

std::optional<OptionsReply> ParseOptions(FrameReader frame)
{
    if (!Begin(frame, kOptionsType, kOptionsLength)) {
        return std::nullopt;
    }
    OptionsReply reply;
    reply.firstOption = frame.Byte();
    reply.tenths = frame.Byte() / 10.0;
    frame.Skip(2);
    reply.loggingRate = frame.Word() * 100U;
    reply.currentPort = frame.Byte();
    reply.portCount = frame.Byte();
    reply.frequencies = frame.Byte();
    frame.Skip(9);
    reply.nmea = frame.Byte();
    reply.rtcm1Input = frame.Byte();
    reply.rtcm2Input = frame.Byte();
    reply.rtcmOutput = frame.Byte();
    reply.rtcm2Output = frame.Byte();
    frame.Skip(6);
    reply.memory = frame.Word();
    frame.Skip(1);
    reply.byte32 = frame.Byte();
    frame.Skip(7);
    reply.rtk = frame.Byte();
    frame.Skip(1);
    reply.rtkFlags = frame.Byte();
    reply.rtcm21 = frame.Byte();
    reply.typeCode = frame.Byte();
    reply.bluetooth = Bit(frame.Byte(), 4);
    reply.flags1 = frame.Byte();
    frame.Skip(1);
    reply.flags2 = frame.Byte();
    if (reply.typeCode == 0 && frame.DataLength() >= kModelWordLength) {
        reply.modelWord = frame.Word();
        reply.bluetooth = reply.bluetooth || reply.modelWord == kBluetoothModel;
    }
    return reply;
}

std::optional<ExtendedOptionsReply> ParseExtendedOptions(FrameReader frame)
{
    if (!Begin(frame, kOptionsType, 1)) {
        return std::nullopt;
    }
    ExtendedOptionsReply reply;
    if (frame.Byte() != '[') {
        return reply; // a receiver without extended options
    }
    const std::size_t length = frame.DataLength();
    if (length < kExtendedLength) {
        return std::nullopt;
    }
    frame.Skip(7);
    const std::uint32_t w1 = frame.Long();
    const std::uint32_t w2 = frame.Long();
    const std::uint32_t w3 = frame.Long();
    reply.l5 = Bit(w1, 29);
    reply.l2c = Bit(w1, 21);
    reply.glonass = Bit(w2, 0);
    reply.galileo = Bit(w2, 19) || Bit(w2, 23);
    reply.qzss = Bit(w3, 2);
    reply.tilt = Bit(w3, 1);
    if (length < kMeridianLength) {
        return reply;
    }
    frame.Skip(8);
    const std::uint8_t b = frame.Byte();
    reply.meridian = Bit(b, 6);
    if (length < kCmrxLength) {
        return reply;
    }
    frame.Skip(2);
    const std::uint8_t d = frame.Byte();
    if (Bit(d, 1) && length >= kExtendedRateLength) {
        reply.loggingRate = frame.Word();
    }
    if (Bit(d, 0)) {
        reply.cmrxInput = Bit(b, 4);
        reply.cmrxOutput = Bit(b, 5);
    }
    return reply;
}

std::optional<StatusReply> ParseStatus(FrameReader frame)
{
    if (!Begin(frame, kStatusType, kStatusLength)) {
        return std::nullopt;
    }
    StatusReply reply;
    reply.timeValid = frame.Byte(ByteForm::Digit) == 1;
    frame.Skip(1);
    reply.satellitesTracked = IntegerField(frame, 2);
    frame.Skip(3);
    reply.batteryPercent = IntegerField(frame, 3);
    reply.pdop = RealField(frame, 4);
    reply.fixKind = frame.Byte(ByteForm::Digit);
    reply.rtkFixed = reply.fixKind == kRtkFixed;
    reply.survey = frame.Text(4);
    reply.freeMemoryTenths = IntegerField(frame, 2);
    return reply;
}

std::optional<GpsTimeReply> ParseGpsTime(FrameReader frame)
{
    if (!Begin(frame, kGpsTimeType, kGpsTimeLength)) {
        return std::nullopt;
    }
    GpsTimeReply reply;
    reply.secondsOfWeek = RealField(frame, 7);
    reply.week = IntegerField(frame, 4);
    // A number that does not fit its two characters goes on to the end of the reply.
    constexpr std::size_t kOffsetAt = 11;
    constexpr std::size_t kLongest = 8;
    const std::size_t rest = frame.DataLength() - kOffsetAt;
    reply.utcOffsetS = IntegerField(frame, std::min(rest, kLongest));
    const bool possible = reply.secondsOfWeek >= 0.0 && reply.secondsOfWeek < kSecondsPerWeek;
    if (!possible) {
        return std::nullopt;
    }
    return reply;
}

std::optional<SiteReply> ParseSite(FrameReader frame)
{
    if (!Begin(frame, kSiteType, kSiteLength) || frame.Byte() != 18 || frame.Byte() != 0) {
        return std::nullopt;
    }
    const SiteReply place = ReadPlace(frame);
    if (!IsOnEarth(place)) {
        return std::nullopt;
    }
    return place;
}

std::optional<PositionStatusReply> ParsePositionStatus(FrameReader frame)
{
    if (!Begin(frame, kPositionStatusType, kPositionStatusLength)) {
        return std::nullopt;
    }
    PositionStatusReply reply;
    reply.fixKind = frame.Byte();
    reply.satellitesUsed = frame.Byte();
    reply.week = frame.Long();
    reply.secondsOfWeek = frame.Long();
    reply.pdop = frame.Float();
    reply.hdop = frame.Float();
    reply.vdop = frame.Float();
    reply.position = ReadPlace(frame);
    if (reply.secondsOfWeek >= kSecondsPerWeek) {
        return std::nullopt;
    }
    return reply;
}

std::optional<int> ParseBatteryPort(FrameReader frame)
{
    if (!Begin(frame, kBatteryPortType, 1)) {
        return std::nullopt;
    }
    return frame.Byte();
}

std::optional<SettingsFlags> ParseSettingsFlags(FrameReader frame)
{
    if (!Begin(frame, kSettingsFlagsType, kSettingsFlagsLength)) {
        return std::nullopt;
    }
    frame.Skip(2);
    SettingsFlags flags{};
    for (std::uint8_t& flag : flags) {
        flag = frame.Byte();
    }
    return flags;
}

std::optional<TiltReading> ParseTiltReading(FrameReader frame)
{
    if (!BeginTilt(frame, 0, kTiltReadingLength)) {
        return std::nullopt;
    }
    TiltReading reading;
    const std::uint8_t status = frame.Byte();
    reading.state = status & 0x0F;
    reading.error1 = Bit(status, 4);
    reading.error2 = Bit(status, 5);
    reading.sensorPresent = Bit(status, 6);
    const std::uint8_t calibration = frame.Byte();
    reading.calibrationState = calibration & 0x07;
    reading.calibrationValid = Bit(calibration, 3);
    reading.calibrated = Bit(calibration, 4);
    reading.t1Rad = frame.Double();
    reading.t2Rad = frame.Double();
    reading.tiltRad = frame.Double();
    reading.time = ReadTiltTime(frame);
    return reading;
}

std::optional<TiltCalibration> ParseTiltCalibration(FrameReader frame)
{
    if (!BeginTilt(frame, 1, kTiltCalibrationLength)) {
        return std::nullopt;
    }
    TiltCalibration calibration;
    calibration.validityHours = frame.Word();
    calibration.calibrated = ReadTiltTime(frame);
    calibration.progressPercent = frame.Byte();
    return calibration;
}

} // namespace fieldcore

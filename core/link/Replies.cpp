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
bool Begin(FrameBuffer& frame, std::uint8_t type, std::size_t length)
{
    frame.ResetReadPos();
    return frame.GetReplyType() == type && frame.GetDataLength() >= length;
}

constexpr bool Bit(std::uint32_t value, int bit)
{
    return (value >> bit & 1) != 0;
}

SiteReply ReadPlace(FrameBuffer& frame)
{
    SiteReply place;
    place.latitudeRad = frame.GetDouble();
    place.longitudeRad = frame.GetDouble();
    place.heightM = frame.GetDouble();
    return place;
}

/// Not so when one of the values is no number.
bool IsOnEarth(const SiteReply& place)
{
    constexpr double kHalfTurn = 3.141592653589793;
    return std::abs(place.latitudeRad) <= kHalfTurn / 2 &&
           std::abs(place.longitudeRad) <= 2 * kHalfTurn && std::isfinite(place.heightM);
}

std::optional<TiltTime> ReadTiltTime(FrameBuffer& frame)
{
    TiltTime time;
    time.week = frame.GetWord();
    time.secondsOfWeek = frame.GetLong();
    if (time.week == kUnknownWeek || time.secondsOfWeek >= kSecondsPerWeek) {
        return std::nullopt;
    }
    return time;
}

/// The tilt sensor's two replies carry the query in their first two bytes.
bool BeginTilt(FrameBuffer& frame, std::uint8_t what, std::size_t length)
{
    return Begin(frame, kTiltType, length) && frame.GetByte() == 1 && frame.GetByte() == what;
}

} // namespace

std::optional<SerialReply> ParseSerial(FrameBuffer& frame)
{
    if (!Begin(frame, kSerialType, kSerialLength)) {
        return std::nullopt;
    }
    SerialReply reply;
    reply.shortSerial = frame.GetText(8);
    reply.receiverType = frame.GetText(8);
    reply.receiverType.erase(reply.receiverType.find_last_not_of(L' ') + 1);
    reply.navVersion = frame.GetText(5);
    reply.sigVersion = frame.GetText(5);
    reply.bootVersion = frame.GetText(5);
    reply.antennaSerial = frame.GetText(8);
    reply.antennaType = frame.GetText(2);
    frame.SkipBytes(4);
    const std::size_t length = frame.GetDataLength();
    reply.longSerial = length >= kLongSerialFrom
                           ? frame.GetText(std::min<std::size_t>(length - kSerialLength, 10))
                           : reply.shortSerial;
    return reply;
}

std::optional<OptionsReply> ParseOptions(FrameBuffer& frame)
{
    if (!Begin(frame, kOptionsType, kOptionsLength)) {
        return std::nullopt;
    }
    OptionsReply reply;
    reply.firstOption = frame.GetByte();
    reply.tenths = frame.GetByte() / 10.0;
    frame.SkipBytes(2);
    reply.loggingRate = frame.GetWord() * 100U;
    reply.currentPort = frame.GetByte();
    reply.portCount = frame.GetByte();
    reply.frequencies = frame.GetByte();
    frame.SkipBytes(9);
    reply.nmea = frame.GetByte();
    reply.rtcm1Input = frame.GetByte();
    reply.rtcm2Input = frame.GetByte();
    reply.rtcmOutput = frame.GetByte();
    reply.rtcm2Output = frame.GetByte();
    frame.SkipBytes(6);
    reply.memory = frame.GetWord();
    frame.SkipBytes(1);
    reply.byte32 = frame.GetByte();
    frame.SkipBytes(7);
    reply.rtk = frame.GetByte();
    frame.SkipBytes(1);
    reply.rtkFlags = frame.GetByte();
    reply.rtcm21 = frame.GetByte();
    reply.typeCode = frame.GetByte();
    reply.bluetooth = Bit(frame.GetByte(), 4);
    reply.flags1 = frame.GetByte();
    frame.SkipBytes(1);
    reply.flags2 = frame.GetByte();
    if (reply.typeCode == 0 && frame.GetDataLength() >= kModelWordLength) {
        reply.modelWord = frame.GetWord();
        reply.bluetooth = reply.bluetooth || reply.modelWord == kBluetoothModel;
    }
    return reply;
}

std::optional<ExtendedOptionsReply> ParseExtendedOptions(FrameBuffer& frame)
{
    if (!Begin(frame, kOptionsType, 1)) {
        return std::nullopt;
    }
    ExtendedOptionsReply reply;
    if (frame.GetByte() != '[') {
        return reply; // a receiver without extended options
    }
    const std::size_t length = frame.GetDataLength();
    if (length < kExtendedLength) {
        return std::nullopt;
    }
    frame.SkipBytes(7);
    const std::uint32_t w1 = frame.GetLong();
    const std::uint32_t w2 = frame.GetLong();
    const std::uint32_t w3 = frame.GetLong();
    reply.l5 = Bit(w1, 29);
    reply.l2c = Bit(w1, 21);
    reply.glonass = Bit(w2, 0);
    reply.galileo = Bit(w2, 19) || Bit(w2, 23);
    reply.qzss = Bit(w3, 2);
    reply.tilt = Bit(w3, 1);
    if (length < kMeridianLength) {
        return reply;
    }
    frame.SkipBytes(8);
    const std::uint8_t b = frame.GetByte();
    reply.meridian = Bit(b, 6);
    if (length < kCmrxLength) {
        return reply;
    }
    frame.SkipBytes(2);
    const std::uint8_t d = frame.GetByte();
    if (Bit(d, 1) && length >= kExtendedRateLength) {
        reply.loggingRate = frame.GetWord();
    }
    if (Bit(d, 0)) {
        reply.cmrxInput = Bit(b, 4);
        reply.cmrxOutput = Bit(b, 5);
    }
    return reply;
}

std::optional<StatusReply> ParseStatus(FrameBuffer& frame)
{
    if (!Begin(frame, kStatusType, kStatusLength)) {
        return std::nullopt;
    }
    StatusReply reply;
    reply.timeValid = frame.GetByte(FrameBuffer::ByteForm::Digit) == 1;
    frame.SkipBytes(1);
    reply.satellitesTracked = IntegerField(frame, 2);
    frame.SkipBytes(3);
    reply.batteryPercent = IntegerField(frame, 3);
    reply.pdop = RealField(frame, 4);
    reply.fixKind = frame.GetByte(FrameBuffer::ByteForm::Digit);
    reply.rtkFixed = reply.fixKind == kRtkFixed;
    reply.survey = frame.GetText(4);
    reply.freeMemoryTenths = IntegerField(frame, 2);
    return reply;
}

std::optional<GpsTimeReply> ParseGpsTime(FrameBuffer& frame)
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
    const std::size_t rest = frame.GetDataLength() - kOffsetAt;
    reply.utcOffsetS = IntegerField(frame, std::min(rest, kLongest));
    const bool possible = reply.secondsOfWeek >= 0.0 && reply.secondsOfWeek < kSecondsPerWeek;
    if (!possible) {
        return std::nullopt;
    }
    return reply;
}

std::optional<SiteReply> ParseSite(FrameBuffer& frame)
{
    if (!Begin(frame, kSiteType, kSiteLength) || frame.GetByte() != 18 || frame.GetByte() != 0) {
        return std::nullopt;
    }
    const SiteReply place = ReadPlace(frame);
    if (!IsOnEarth(place)) {
        return std::nullopt;
    }
    return place;
}

std::optional<PositionStatusReply> ParsePositionStatus(FrameBuffer& frame)
{
    if (!Begin(frame, kPositionStatusType, kPositionStatusLength)) {
        return std::nullopt;
    }
    PositionStatusReply reply;
    reply.fixKind = frame.GetByte();
    reply.satellitesUsed = frame.GetByte();
    reply.week = frame.GetLong();
    reply.secondsOfWeek = frame.GetLong();
    reply.pdop = frame.GetFloat();
    reply.hdop = frame.GetFloat();
    reply.vdop = frame.GetFloat();
    reply.position = ReadPlace(frame);
    if (reply.secondsOfWeek >= kSecondsPerWeek) {
        return std::nullopt;
    }
    return reply;
}

std::optional<int> ParseBatteryPort(FrameBuffer& frame)
{
    if (!Begin(frame, kBatteryPortType, 1)) {
        return std::nullopt;
    }
    return frame.GetByte();
}

std::optional<SettingsFlags> ParseSettingsFlags(FrameBuffer& frame)
{
    if (!Begin(frame, kSettingsFlagsType, kSettingsFlagsLength)) {
        return std::nullopt;
    }
    frame.SkipBytes(2);
    SettingsFlags flags{};
    for (std::uint8_t& flag : flags) {
        flag = frame.GetByte();
    }
    return flags;
}

std::optional<TiltReading> ParseTiltReading(FrameBuffer& frame)
{
    if (!BeginTilt(frame, 0, kTiltReadingLength)) {
        return std::nullopt;
    }
    TiltReading reading;
    const std::uint8_t status = frame.GetByte();
    reading.state = status & 0x0F;
    reading.error1 = Bit(status, 4);
    reading.error2 = Bit(status, 5);
    reading.sensorPresent = Bit(status, 6);
    const std::uint8_t calibration = frame.GetByte();
    reading.calibrationState = calibration & 0x07;
    reading.calibrationValid = Bit(calibration, 3);
    reading.calibrated = Bit(calibration, 4);
    reading.t1Rad = frame.GetDouble();
    reading.t2Rad = frame.GetDouble();
    reading.tiltRad = frame.GetDouble();
    reading.time = ReadTiltTime(frame);
    return reading;
}

std::optional<TiltCalibration> ParseTiltCalibration(FrameBuffer& frame)
{
    if (!BeginTilt(frame, 1, kTiltCalibrationLength)) {
        return std::nullopt;
    }
    TiltCalibration calibration;
    calibration.validityHours = frame.GetWord();
    calibration.calibrated = ReadTiltTime(frame);
    calibration.progressPercent = frame.GetByte();
    return calibration;
}

} // namespace fieldcore

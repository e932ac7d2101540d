#include "core/link/Replies.h"

#include "core/input/Parts.h"
#include "core/link/LayoutReader.h"
#include "core/platform/Calendar.h"

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <limits>
#include <string_view>

namespace fieldcore {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t kCmrxLength = 33; // of the extended options, from which on CMRx counts

constexpr std::uint16_t kUnknownWeek = 0xFFFF;
constexpr std::uint16_t kBluetoothModel = 310;
constexpr int kRtkFixed = 5;

constexpr bool Bit(std::uint32_t value, int bit)
{
    return (value >> bit & 1) != 0;
}

void ReadPlace(LayoutReader& in, SiteReply& place)
{
    in.Read(place.latitudeRad, place.longitudeRad, place.heightM);
}

/// Not so when one of the values is no number.
bool IsOnEarth(const SiteReply& place)
{
    constexpr double kHalfTurn = 3.141592653589793;
    return std::abs(place.latitudeRad) <= kHalfTurn / 2 &&
           std::abs(place.longitudeRad) <= 2 * kHalfTurn && std::isfinite(place.heightM);
}

std::optional<TiltTime> ReadTiltTime(LayoutReader& in)
{
    TiltTime time;
    in.Read(time.week, time.secondsOfWeek);
    if (time.week == kUnknownWeek || time.secondsOfWeek >= kWeekS) {
        return std::nullopt;
    }
    return time;
}

// The identification.

constexpr std::size_t kModelDigits = 4;

// What ends each field, in turn.
constexpr std::array<wchar_t, 12> kDelimiters{L',', L';', L',', L',', L',', L',',
                                              L',', L',', L',', L';', L',', L','};
using Fields = std::array<std::wstring, kDelimiters.size()>;

/// Takes the next field off @p text: delimiters in front of it are skipped, the one behind it
/// goes with it.
std::wstring NextField(std::wstring_view& text, wchar_t delimiter)
{
    text.remove_prefix(std::min(text.find_first_not_of(delimiter), text.size()));
    const std::size_t length = std::min(text.find(delimiter), text.size());
    std::wstring field(text.substr(0, length));
    text.remove_prefix(std::min(length + 1, text.size()));
    return field;
}

std::uint32_t Number(const std::wstring& text)
{
    constexpr long long kMost = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(
        std::clamp(std::wcstoll(text.c_str(), nullptr, 10), 0LL, kMost));
}

std::uint8_t ParityCode(wchar_t letter)
{
    return letter == L'E' ? 2 : letter == L'O' ? 1 : 0;
}

/// Four leading digits are the number itself; of the texts three are known.
std::uint32_t TypeNumberOfModel(std::wstring_view model)
{
    const std::wstring_view digits = model.substr(0, kModelDigits);
    const bool numeric =
        digits.size() == kModelDigits &&
        std::all_of(digits.begin(), digits.end(), [](wchar_t c) { return c >= L'0' && c <= L'9'; });
    if (numeric) {
        return Number(std::wstring(digits));
    }
    if (model == L"VX2") {
        return 3028;
    }
    if (model == L"VX1") {
        return 3017;
    }
    return model == L"VX1-GNSS" ? 3012 : 3010;
}

} // namespace

std::optional<SerialReply> ParseSerial(FrameReader frame)
{
    return ReadReply<SerialReply>(frame, 0x07, "", [](auto& in, auto& reply) {
        in.Read(reply.shortSerial, reply.receiverType, reply.navVersion, reply.sigVersion,
                reply.bootVersion, reply.antennaSerial, reply.antennaType);
        reply.receiverType.erase(reply.receiverType.find_last_not_of(L' ') + 1);
        reply.longSerial = reply.shortSerial;
        if (in.HasNext()) {
            in.Read(reply.longSerial);
        }
        return true;
    });
}

std::optional<OptionsReply> ParseOptions(FrameReader frame)
{
    return ReadReply<OptionsReply>(frame, 0x4B, "", [](auto& in, auto& reply) {
        std::uint8_t tenths = 0;
        std::uint16_t loggingRate = 0;
        std::uint8_t radio = 0;
        in.Read(reply.firstOption, tenths, loggingRate, reply.currentPort, reply.portCount,
                reply.frequencies, reply.nmea, reply.rtcm1Input, reply.rtcm2Input, reply.rtcmOutput,
                reply.rtcm2Output, reply.memory, reply.byte32, reply.rtk, reply.rtkFlags,
                reply.rtcm21, reply.typeCode, radio, reply.flags1, reply.flags2);
        if (reply.typeCode == 0 && in.HasNext()) {
            in.Read(reply.modelWord);
        } else {
            in.Leave();
        }
        reply.tenths = tenths / 10.0;
        reply.loggingRate = loggingRate * 100U;
        reply.bluetooth = Bit(radio, 4) || reply.modelWord == kBluetoothModel;
        return true;
    });
}

std::optional<ExtendedOptionsReply> ParseExtendedOptions(FrameReader frame)
{
    ExtendedOptionsReply reply;
    const bool holdsData = frame.DataLength() > 0 && FrameReader(frame).Byte() == '[';
    if (frame.Type() == 0x4B && !holdsData) {
        return reply; // a receiver without extended options
    }
    LayoutReader in(frame, 0x4B, "[");
    if (!in.Fits()) {
        return std::nullopt;
    }
    std::uint32_t signals = 0;
    std::uint32_t systems = 0;
    std::uint32_t sensors = 0;
    in.Read(signals, systems, sensors);
    reply.l5 = Bit(signals, 29);
    reply.l2c = Bit(signals, 21);
    reply.glonass = Bit(systems, 0);
    reply.galileo = Bit(systems, 19) || Bit(systems, 23);
    reply.qzss = Bit(sensors, 2);
    reply.tilt = Bit(sensors, 1);
    if (!in.HasNext()) {
        return reply;
    }
    std::uint8_t board = 0;
    in.Read(board);
    reply.meridian = Bit(board, 6);
    if (frame.DataLength() < kCmrxLength) {
        in.Leave(2);
        return reply;
    }
    std::uint8_t counts = 0;
    in.Read(counts);
    if (Bit(counts, 1) && in.HasNext()) {
        in.Read(reply.loggingRate);
    } else {
        in.Leave();
    }
    reply.cmrxInput = Bit(counts, 0) && Bit(board, 4);
    reply.cmrxOutput = Bit(counts, 0) && Bit(board, 5);
    return reply;
}

std::optional<StatusReply> ParseStatus(FrameReader frame)
{
    return ReadReply<StatusReply>(frame, 0x09, "", [](auto& in, auto& reply) {
        int timeValid = 0;
        in.Read(timeValid, reply.satellitesTracked, reply.batteryPercent, reply.pdop, reply.fixKind,
                reply.survey, reply.freeMemoryTenths);
        reply.timeValid = timeValid == 1;
        reply.rtkFixed = reply.fixKind == kRtkFixed;
        return true;
    });
}

std::optional<GpsTimeReply> ParseGpsTime(FrameReader frame)
{
    return ReadReply<GpsTimeReply>(frame, 0x15, "", [](auto& in, auto& reply) {
        in.Read(reply.secondsOfWeek, reply.week, reply.utcOffsetS);
        return reply.secondsOfWeek >= 0.0 && reply.secondsOfWeek < kWeekS;
    });
}

std::optional<SiteReply> ParseSite(FrameReader frame)
{
    return ReadReply<SiteReply>(frame, 0x31, "\x12\0"sv, [](auto& in, auto& place) {
        ReadPlace(in, place);
        return IsOnEarth(place);
    });
}

std::optional<PositionStatusReply> ParsePositionStatus(FrameReader frame)
{
    return ReadReply<PositionStatusReply>(frame, 0x35, "", [](auto& in, auto& reply) {
        in.Read(reply.fixKind, reply.satellitesUsed, reply.week, reply.secondsOfWeek, reply.pdop,
                reply.hdop, reply.vdop);
        ReadPlace(in, reply.position);
        return reply.secondsOfWeek < kWeekS;
    });
}

std::optional<int> ParseBatteryPort(FrameReader frame)
{
    return ReadReply<int>(frame, 0x41, "", [](auto& in, auto& input) {
        in.Read(input);
        return true;
    });
}

std::optional<SettingsFlags> ParseSettingsFlags(FrameReader frame)
{
    return ReadReply<SettingsFlags>(frame, 0x7A, "", [](auto& in, auto& flags) {
        in.Read(flags[0], flags[1], flags[2]);
        return true;
    });
}

std::optional<TiltReading> ParseTiltReading(FrameReader frame)
{
    return ReadReply<TiltReading>(frame, 0xC8, "\1\0"sv, [](auto& in, auto& reading) {
        std::uint8_t status = 0;
        std::uint8_t calibration = 0;
        in.Read(status, calibration, reading.t1Rad, reading.t2Rad, reading.tiltRad);
        reading.state = status & 0x0F;
        reading.error1 = Bit(status, 4);
        reading.error2 = Bit(status, 5);
        reading.sensorPresent = Bit(status, 6);
        reading.calibrationState = calibration & 0x07;
        reading.calibrationValid = Bit(calibration, 3);
        reading.calibrated = Bit(calibration, 4);
        reading.time = ReadTiltTime(in);
        return true;
    });
}

std::optional<TiltCalibration> ParseTiltCalibration(FrameReader frame)
{
    return ReadReply<TiltCalibration>(frame, 0xC8, "\1\1"sv, [](auto& in, auto& calibration) {
        in.Read(calibration.validityHours);
        calibration.calibrated = ReadTiltTime(in);
        in.Read(calibration.progressPercent);
        return true;
    });
}

std::optional<IdentificationRecord> ParseIdentification(FrameReader frame)
{
    LayoutReader in(frame, 0x6E);
    if (!in.Fits()) {
        return std::nullopt;
    }
    std::wstring text;
    in.Read(text);
    std::wstring_view rest = text;
    Fields fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        fields[i] = NextField(rest, kDelimiters[i]);
        if (fields[i].empty()) {
            return std::nullopt;
        }
    }
    const std::uint32_t port = Number(fields[3]);
    const std::uint32_t byteSize = Number(fields[6]);
    if (port >= std::numeric_limits<std::uint8_t>::max() ||
        byteSize > std::numeric_limits<std::uint8_t>::max()) {
        return std::nullopt;
    }
    IdentificationRecord record;
    record.typeNumber = TypeNumberOfModel(fields[1]);
    record.port = static_cast<std::uint8_t>(port + 1);
    record.baudRate = Number(fields[4]);
    record.byteSize = static_cast<std::uint8_t>(byteSize);
    record.stopBits = Number(fields[7]) == 2 ? 2 : 0;
    record.parity = ParityCode(fields[8].front());
    record.flowControl = fields[9].front() != L'F';
    record.version = CParts::atof(fields[11]);
    return record;
}

} // namespace fieldcore

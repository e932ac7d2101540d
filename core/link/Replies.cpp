#include "core/link/Replies.h"

#include "core/input/Parts.h"
#include "core/link/LayoutReader.h"
#include "core/platform/Calendar.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cwchar>
#include <limits>
#include <numbers>
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

/// Not so when one of the values is no number.
bool IsOnEarth(const SiteReply& place)
{
    constexpr double kHalfTurn = std::numbers::pi;
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
constexpr std::wstring_view kDelimiters = L",;,,,,,,,;,,";

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
    if (digits.size() == kModelDigits &&
        digits.find_first_not_of(L"0123456789") == std::wstring_view::npos) {
        return Number(std::wstring(digits));
    }
    return model == L"VX2" ? 3028 : model == L"VX1" ? 3017 : model == L"VX1-GNSS" ? 3012 : 3010;
}

// Files.

constexpr std::uint8_t kLastPage = 0x80;
constexpr std::uint8_t kMoreFollows = 128;
constexpr std::size_t kMostBlockBytes = 1000;

/// @return seconds since 1980-01-06 00:00, 0 if these are no date and time
std::uint32_t RecordTime(int year, const std::array<std::uint8_t, 4>& rest)
{
    using namespace std::chrono;
    const auto [month, day, hour, minute] = rest;
    const year_month_day date{std::chrono::year(std::min(year, 9999)), std::chrono::month(month),
                              std::chrono::day(day)};
    if (!date.ok() || hour > 23 || minute > 59) {
        return 0;
    }
    const seconds inJapan = sys_days(date) - kGpsEpoch + hours(hour) + minutes(minute) + kJst;
    constexpr std::int64_t kMost = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(inJapan.count(), 0, kMost));
}

/// Reads the next field as a file's name.
void ReadName(LayoutReader& in, DirectoryListingData& file)
{
    std::wstring text;
    in.Read(text);
    text.resize(std::min(text.find_last_not_of(L' ') + 1, kLongestFileName));
    std::copy(text.begin(), text.end(), file.name);
}

/// Reads each record of a page by @p readFile. @return whether the page can hold them and has them
template <typename ReadFile>
bool ReadFiles(LayoutReader& in, FilePage& page, std::size_t most, ReadFile readFile)
{
    for (std::size_t i = 0; i < std::min(page.count, most); ++i) {
        in.BeginRecord();
        readFile(page.files[i]);
    }
    return page.count <= most && in.IsComplete();
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
        }
        reply.tenths = tenths / 10.0;
        reply.loggingRate = loggingRate * 100U;
        reply.bluetooth = Bit(radio, 4) || reply.modelWord == kBluetoothModel;
        return true;
    });
}

std::optional<ExtendedOptionsReply> ParseExtendedOptions(FrameReader frame)
{
    if (frame.Type() == 0x4B && (frame.DataLength() == 0 || FrameReader(frame).Byte() != '[')) {
        return ExtendedOptionsReply(); // a receiver without extended options
    }
    return ReadReply<ExtendedOptionsReply>(frame, 0x4B, "[", [frame](auto& in, auto& reply) {
        in.Read(reply.signals, reply.systems, reply.sensors);
        if (in.HasNext()) {
            in.Read(reply.board);
        }
        if (frame.DataLength() >= kCmrxLength) {
            in.Read(reply.counts);
        }
        if (Bit(reply.counts, 1) && in.HasNext()) {
            in.Read(reply.loggingRate);
        }
        return true;
    });
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
        in.Read(place.latitudeRad, place.longitudeRad, place.heightM);
        return IsOnEarth(place);
    });
}

std::optional<PositionStatusReply> ParsePositionStatus(FrameReader frame)
{
    return ReadReply<PositionStatusReply>(frame, 0x35, "", [](auto& in, auto& reply) {
        in.Read(reply.fixKind, reply.satellitesUsed, reply.week, reply.secondsOfWeek, reply.pdop,
                reply.hdop, reply.vdop, reply.position.latitudeRad, reply.position.longitudeRad,
                reply.position.heightM);
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
        in.Read(flags);
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
    return ReadReply<IdentificationRecord>(frame, 0x6E, "", [](auto& in, auto& record) {
        std::wstring text;
        in.Read(text);
        std::wstring_view rest = text;
        std::array<std::wstring, kDelimiters.size()> fields;
        for (std::size_t i = 0; i < fields.size(); ++i) {
            fields[i] = NextField(rest, kDelimiters[i]);
            if (fields[i].empty()) {
                return false;
            }
        }
        constexpr std::uint32_t kMost = std::numeric_limits<std::uint8_t>::max();
        const std::uint32_t port = Number(fields[3]);
        const std::uint32_t byteSize = Number(fields[6]);
        record.typeNumber = TypeNumberOfModel(fields[1]);
        record.port = static_cast<std::uint8_t>(port + 1);
        record.baudRate = Number(fields[4]);
        record.byteSize = static_cast<std::uint8_t>(byteSize);
        record.stopBits = Number(fields[7]) == 2 ? 2 : 0;
        record.parity = ParityCode(fields[8].front());
        record.flowControl = fields[9].front() != L'F';
        record.version = CParts::atof(fields[11]);
        return port < kMost && byteSize <= kMost;
    });
}

std::optional<FilePage> ParsePicaFilePage(FrameReader frame)
{
    return ReadReply<FilePage>(frame, 0x79, "", [](auto& in, auto& page) {
        in.Read(page.number, page.count);
        page.last = page.count < kPicaPageFiles;
        return ReadFiles(in, page, kPicaPageFiles, [&](DirectoryListingData& file) {
            std::uint16_t year = 0;
            std::array<std::uint8_t, 4> rest{}; // month, day, hour, minute
            file.pageFlag = page.last ? 0 : kMoreFollows;
            in.Read(file.fileIndex);
            ReadName(in, file);
            in.Read(file.size, year, rest, file.attributes);
            file.time = RecordTime(year, rest);
        });
    });
}

std::optional<FilePage> ParseLarkFilePage(FrameReader frame)
{
    return ReadReply<FilePage>(frame, 0x9D, "", [](auto& in, auto& page) {
        std::uint8_t first = 0;
        in.Read(first, page.count);
        page.number = first & ~kLastPage;
        page.last = (first & kLastPage) != 0;
        return ReadFiles(in, page, kLarkPageFiles, [&](DirectoryListingData& file) {
            file.pageFlag = first;
            ReadName(in, file);
            in.Read(file.size, file.time, file.attributes);
        });
    });
}

std::optional<FileBlock> ParseFileBlock(FrameReader frame)
{
    return ReadReply<FileBlock>(frame, kLongFrameType, "", [&frame](auto& in, auto& block) {
        in.Read(block.offset, block.flags, block.bytes);
        frame.Skip(frame.Length() - 1 - kFrameDataStart);
        // Where the line has lost bytes, the next frame fills them up: once in 256 times the sum
        // fits.
        return frame.Byte() == kEtx && block.bytes.size() <= kMostBlockBytes;
    });
}

} // namespace fieldcore

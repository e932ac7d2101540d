#include "core/link/FrameLayouts.h"

#include <algorithm>
#include <iterator>

namespace fieldcore {

namespace {

using enum FieldKind;
using namespace std::string_view_literals;

constexpr Meaning Is(std::uint32_t value, std::string_view words)
{
    return {0xFFFFFFFF, value, words};
}

constexpr Meaning Bit(unsigned number, std::string_view words)
{
    return {1U << number, 1U << number, words};
}

/// Of the lowest bits, that @p bits has.
constexpr Meaning Low(std::uint32_t bits, std::uint32_t value, std::string_view words)
{
    return {bits, value, words};
}

constexpr Meaning kFix[] = {Is(0, "none"),         Is(1, "searching"), Is(2, "single"),
                            Is(3, "differential"), Is(4, "RTK float"), Is(5, "RTK fixed")};
constexpr Meaning kYesNo[] = {Is(0, "no"), Is(1, "yes")};
constexpr Meaning kFrequencies[] = {Is(2, "L1 and L2")};

constexpr FieldLayout kSerial[] = {{8, Text, "short serial number"},
                                   {8, Text, "receiver type"},
                                   {5, Hundredths, "navigation firmware"},
                                   {5, Hundredths, "signal firmware"},
                                   {5, Hundredths, "boot firmware"},
                                   {8, Text, "antenna serial number"},
                                   {2, Text, "antenna type"},
                                   {4, Spare, ""},
                                   {10, Text, "long serial number"}};

constexpr Meaning kRtcmOutput[] = {Bit(0, "basic"), Bit(1, "version 2.3"), Bit(2, "version 3.0")};
constexpr Meaning kRtkFlags[] = {Bit(3, "on-the-fly"), Bit(5, "no CMR input"),
                                 Bit(6, "no CMR output"), Bit(7, "Solace board")};
constexpr Meaning kRtcm21[] = {Bit(1, "input"), Bit(2, "output")};
constexpr Meaning kBluetooth[] = {Bit(4, "Bluetooth")};
constexpr Meaning kFlags1[] = {Bit(2, "CMR+"), Bit(4, "file naming"), Bit(6, "RTCM 2.2")};
constexpr Meaning kFlags2[] = {Bit(1, "logging at 2 Hz"), Bit(4, "VRS"),
                               Bit(7, "extended options")};
constexpr FieldLayout kOptions[] = {{1, Unsigned, "option generation"},
                                    {1, Unsigned, "option version", "tenths"},
                                    {2, Spare, ""},
                                    {2, Unsigned, "shortest logging interval"},
                                    {1, Unsigned, "port in use"},
                                    {1, Unsigned, "ports"},
                                    {1, Unsigned, "frequencies", "", kFrequencies},
                                    {9, Spare, ""},
                                    {1, Unsigned, "NMEA output", "", kYesNo},
                                    {1, Unsigned, "RTCM input", "", kYesNo},
                                    {1, Unsigned, "RTCM 2 input", "", kYesNo},
                                    {1, Unsigned, "RTCM output", "", kRtcmOutput},
                                    {1, Unsigned, "RTCM 2 output", "", kYesNo},
                                    {6, Spare, ""},
                                    {2, Unsigned, "memory", "MB"},
                                    {1, Spare, ""},
                                    {1, Unsigned, "byte 32"},
                                    {7, Spare, ""},
                                    {1, Unsigned, "RTK survey"},
                                    {1, Spare, ""},
                                    {1, Unsigned, "RTK flags", "", kRtkFlags},
                                    {1, Unsigned, "RTCM 2.1", "", kRtcm21},
                                    {1, Unsigned, "type code"},
                                    {1, Unsigned, "radio", "", kBluetooth},
                                    {1, Unsigned, "flags 1", "", kFlags1},
                                    {1, Spare, ""},
                                    {1, Unsigned, "flags 2", "", kFlags2},
                                    {2, Unsigned, "model word"}};

constexpr Meaning kExtended1[] = {Bit(21, "L2C"), Bit(29, "L5")};
constexpr Meaning kExtended2[] = {Bit(0, "GLONASS"), Bit(19, "Galileo"), Bit(23, "Galileo")};
constexpr Meaning kExtended3[] = {Bit(1, "tilt sensor"), Bit(2, "QZSS")};
constexpr Meaning kBoard[] = {Bit(4, "CMRx input"), Bit(5, "CMRx output"),
                              Bit(6, "Meridian board")};
constexpr Meaning kFollows[] = {Bit(0, "CMRx bits count"), Bit(1, "logging interval follows")};
constexpr FieldLayout kExtendedOptions[] = {{1, Spare, ""},
                                            {7, Spare, ""},
                                            {4, Unsigned, "signals", "", kExtended1},
                                            {4, Unsigned, "systems", "", kExtended2},
                                            {4, Unsigned, "sensors", "", kExtended3},
                                            {8, Spare, ""},
                                            {1, Unsigned, "board", "", kBoard},
                                            {2, Spare, ""},
                                            {1, Unsigned, "what counts", "", kFollows},
                                            {2, Unsigned, "shortest logging interval"}};

constexpr FieldLayout kStatus[] = {
    {1, Digit, "time valid", "", kYesNo}, {1, Spare, ""},
    {2, Digits, "satellites tracked"},    {3, Spare, ""},
    {3, Digits, "battery", "%"},          {4, Digits, "PDOP"},
    {1, Digit, "fix", "", kFix},          {4, Text, "running survey"},
    {2, Digits, "free memory", "tenths"}};
constexpr FieldLayout kTime[] = {{7, Digits, "seconds of the GPS week", "s"},
                                 {4, Digits, "GPS week"},
                                 {2, Digits, "GPS time minus UTC", "s"}};
constexpr FieldLayout kQuery[] = {{2, Pattern, "what"}};
constexpr FieldLayout kTwoBytes[] = {{1, Unsigned, "first"}, {1, Unsigned, "second"}};
constexpr FieldLayout kSite[] = {{2, Spare, ""},
                                 {8, Angle, "latitude"},
                                 {8, Angle, "longitude"},
                                 {8, Real, "ellipsoidal height", "m"}};
constexpr FieldLayout kPosition[] = {{1, Unsigned, "fix", "", kFix},
                                     {1, Unsigned, "satellites used"},
                                     {4, Unsigned, "GPS week"},
                                     {4, Unsigned, "seconds of the GPS week", "s"},
                                     {4, Real, "PDOP"},
                                     {4, Real, "HDOP"},
                                     {4, Real, "VDOP"},
                                     {8, Angle, "latitude"},
                                     {8, Angle, "longitude"},
                                     {8, Real, "ellipsoidal height", "m"}};
constexpr FieldLayout kUnsolicited[] = {{0, Pattern, "content"}};
constexpr FieldLayout kPower[] = {{1, Unsigned, "power input"}};

constexpr Meaning kListForm[] = {Is(1, "tracked"), Is(2, "in view")};
constexpr FieldLayout kListRequest[] = {{1, Unsigned, "list", "", kListForm}};
constexpr FieldLayout kSatelliteHead[] = {{2, Digits, "satellites"}, {1, Unsigned, "format"}};
constexpr Meaning kHighAzimuth[] = {Bit(7, "azimuth + 256 deg")};
constexpr FieldLayout kTextSatellite[] = {{2, Digits, "number"},
                                          {3, Digits, "azimuth", "deg"},
                                          {2, Digits, "elevation", "deg"},
                                          {3, Digits, "first signal", "tenths of a dB-Hz"},
                                          {5, Digits, "second signal", "hundredths of a dB-Hz"}};
constexpr FieldLayout kBinarySatellite[] = {{1, Unsigned, "number"},
                                            {1, Unsigned, "frequency channel, two's complement"},
                                            {1, Unsigned, "azimuth, low eight bits", "deg"},
                                            {1, Unsigned, "elevation", "deg", kHighAzimuth},
                                            {1, Unsigned, "first signal", "quarters of a dB-Hz"},
                                            {1, Unsigned, "second signal", "quarters of a dB-Hz"},
                                            {1, Unsigned, "fourth signal", "quarters of a dB-Hz"},
                                            {1, Unsigned, "third signal", "quarters of a dB-Hz"}};
constexpr FieldLayout kSatelliteFrame[] = {{1, Unsigned, "list", "", kListForm},
                                           {1, Unsigned, "frame"},
                                           {1, Unsigned, "last frame", "", kYesNo},
                                           {1, Unsigned, "format"},
                                           {1, Unsigned, "satellites"}};

constexpr FieldLayout kAlmanacRequest[] = {{1, Spare, ""}, {1, Unsigned, "PRN"}, {1, Spare, ""}};
constexpr Meaning kMasks[] = {Is(0, "GPS"), Is(1, "GPS and GLONASS")};
constexpr FieldLayout kStateRequest[] = {
    {1, Spare, ""}, {1, Spare, ""}, {1, Unsigned, "systems", "", kMasks}};
constexpr FieldLayout kOtherRequest[] = {
    {1, Spare, ""}, {1, Unsigned, "number of bit 0"}, {2, Spare, ""}};
constexpr FieldLayout kAlmanac[] = {{1, Spare, ""},
                                    {1, Unsigned, "PRN"},
                                    {4, Unsigned, "received", "s since 1980-01-06"},
                                    {2, Unsigned, "GPS week of the reference time"},
                                    {4, Unsigned, "reference time", "s"},
                                    {8, Real, "square root of the semi-major axis", "m^0.5"},
                                    {8, Real, "eccentricity"},
                                    {8, Real, "inclination", "semicircles"},
                                    {8, Real, "rate of right ascension", "semicircles/s"},
                                    {8, Real, "longitude of the ascending node", "semicircles"},
                                    {8, Real, "argument of perigee", "semicircles"},
                                    {8, Real, "mean anomaly", "semicircles"},
                                    {1, Unsigned, "health"}};
constexpr FieldLayout kSatelliteState[] = {{1, Spare, ""},
                                           {1, Spare, ""},
                                           {4, Mask, "GPS with an almanac"},
                                           {4, Mask, "GPS with an ephemeris"},
                                           {4, Mask, "GPS healthy"},
                                           {4, Mask, "GPS switched on"},
                                           {4, Mask, "GPS tracked, first signal"},
                                           {4, Mask, "GPS tracked, second signal"},
                                           {4, Mask, "GPS used"},
                                           {4, Mask, "GPS in view"},
                                           {4, Spare, ""},
                                           {2, Unsigned, "GPS week of the newest almanac"},
                                           {2, Unsigned, "GPS time minus UTC", "s"},
                                           {4, Unsigned, "reference time", "s"},
                                           {4, Unsigned, "received", "s since 1980-01-06"},
                                           {3, Mask, "GLONASS with an almanac"},
                                           {3, Mask, "GLONASS with an ephemeris"},
                                           {3, Mask, "GLONASS in view"},
                                           {3, Mask, "GLONASS switched on"},
                                           {3, Mask, "GLONASS tracked, first signal"},
                                           {3, Mask, "GLONASS tracked, second signal"},
                                           {3, Mask, "GLONASS used"}};
constexpr FieldLayout kOtherState[] = {{1, Spare, ""},
                                       {1, Unsigned, "number of bit 0"},
                                       {3, Pattern, "form"},
                                       {2, Mask, "with an almanac"},
                                       {2, Mask, "with an ephemeris"},
                                       {2, Mask, "in view"},
                                       {2, Mask, "tracked, first signal"},
                                       {2, Mask, "tracked, second signal"}};

constexpr FieldLayout kSignals[] = {{0, Pattern, "signals"}};
constexpr FieldLayout kFlags[] = {{2, Spare, ""},
                                  {1, Unsigned, "first flags"},
                                  {1, Unsigned, "second flags"},
                                  {1, Unsigned, "signals are fixed", "", kYesNo}};
constexpr Meaning kParity[] = {Is(0, "none"), Is(1, "odd"), Is(2, "even")};
constexpr Meaning kStopBits[] = {Is(0, "one"), Is(2, "two")};
constexpr Meaning kFlow[] = {Is(0, "none"), Is(1, "software"), Is(2, "RTS/CTS"), Is(3, "DSR/DTR")};
constexpr FieldLayout kSetPort[] = {{1, Unsigned, "port"},
                                    {4, Unsigned, "rate", "bit/s"},
                                    {1, Unsigned, "data bits"},
                                    {1, Unsigned, "parity", "", kParity},
                                    {1, Unsigned, "stop bits", "", kStopBits},
                                    {1, Unsigned, "flow control", "", kFlow},
                                    {1, Spare, ""}};
constexpr FieldLayout kLabel[] = {
    {1, Unsigned, "line"}, {2, Unsigned, "shown for", "s"}, {1, Spare, ""}, {0, Text, "text"}};
constexpr FieldLayout kAbort[] = {{9, Spare, ""}};
constexpr FieldLayout kReset[] = {{2, Pattern, "key"}, {5, Text, "word"}};
constexpr FieldLayout kApplicationFile[] = {
    {10, Pattern, "head"}, {1, Unsigned, "port, from 0"}, {0, Pattern, "rest"}};

constexpr Meaning kTiltState[] = {Low(15, 0, "starting"),        Low(15, 1, "measuring"),
                                  Low(15, 2, "moving too fast"), Low(15, 3, "out of range"),
                                  Bit(4, "first error"),         Bit(5, "second error"),
                                  Bit(6, "sensor present")};
constexpr Meaning kTiltCalibration[] = {
    Low(7, 0, "not completed"), Low(7, 1, "completed"), Low(7, 2, "running"),
    Low(7, 3, "failed"),        Low(7, 4, "too old"),   Bit(3, "calibration may be believed"),
    Bit(4, "calibrated")};
constexpr FieldLayout kTiltReading[] = {{2, Spare, ""},
                                        {1, Unsigned, "state", "", kTiltState},
                                        {1, Unsigned, "calibration", "", kTiltCalibration},
                                        {8, Angle, "first component"},
                                        {8, Angle, "second component"},
                                        {8, Angle, "tilt"},
                                        {2, Unsigned, "GPS week"},
                                        {4, Unsigned, "seconds of the week", "s"}};
constexpr FieldLayout kTiltRecord[] = {{2, Spare, ""},
                                       {2, Unsigned, "valid for", "h"},
                                       {2, Unsigned, "GPS week"},
                                       {4, Unsigned, "seconds of the week", "s"},
                                       {1, Unsigned, "progress", "%"}};
constexpr FieldLayout kTiltValidity[] = {{1, Spare, ""}, {2, Unsigned, "valid for", "h"}};
constexpr Meaning kTiltSpeeds[] = {Is(22, "fast"), Is(44, "medium"), Is(88, "slow")};
constexpr FieldLayout kTiltSpeed[] = {{1, Spare, ""}, {1, Unsigned, "speed", "", kTiltSpeeds}};

constexpr Meaning kListed[] = {Is(0, "deleted files"), Is(1, "live files")};
constexpr FieldLayout kPicaListRequest[] = {
    {1, Unsigned, "page"}, {1, Unsigned, "list", "", kListed}, {1, Unsigned, "Pica type"}};
constexpr FieldLayout kPicaList[] = {{1, Unsigned, "page"}, {1, Unsigned, "files"}};
constexpr Meaning kAttributes[] = {Bit(0, "not to be listed"), Bit(5, "being logged"),
                                   Bit(7, "deleted")};
constexpr FieldLayout kPicaFile[] = {
    {2, Unsigned, "index"}, {8, Text, "name"},       {4, Unsigned, "size", "bytes"},
    {2, Unsigned, "year"},  {1, Unsigned, "month"},  {1, Unsigned, "day"},
    {1, Unsigned, "hour"},  {1, Unsigned, "minute"}, {1, Unsigned, "attributes", "", kAttributes},
    {1, Spare, ""}};
constexpr Meaning kLastPage[] = {Bit(7, "last page")};
constexpr FieldLayout kLarkList[] = {{1, Unsigned, "page", "", kLastPage}, {1, Unsigned, "files"}};
constexpr FieldLayout kLarkFile[] = {{14, Text, "name"},
                                     {4, Unsigned, "size", "bytes"},
                                     {4, Unsigned, "time", "s since 1980-01-06"},
                                     {1, Unsigned, "attributes"},
                                     {1, Spare, ""}};
constexpr FieldLayout kFileName[] = {{14, Text, "name"}};
constexpr FieldLayout kFileIndex[] = {{2, Unsigned, "index"}};
constexpr FieldLayout kDownload[] = {
    {14, Text, "name"}, {4, Unsigned, "offset"}, {2, Unsigned, "blocks, 0 is to the end"}};
constexpr Meaning kBlockFlags[] = {Bit(0, "last block"), Bit(1, "no such file"),
                                   Bit(2, "file is open")};
constexpr FieldLayout kBlock[] = {
    {4, Unsigned, "offset"}, {1, Unsigned, "flags", "", kBlockFlags}, {0, Pattern, "content"}};
constexpr FieldLayout kIdentification[] = {{0, Text, "text"}};

constexpr auto Tx = Direction::Sent;
constexpr auto Rx = Direction::Received;

constexpr FrameLayout kLayouts[] = {
    {0x06, Tx, "", "serial numbers request", "製造番号の要求"},
    {0x07, Rx, "", "serial numbers", "製造番号", kSerial, 45},
    {0x08, Tx, "", "status request", "状態の要求"},
    {0x09, Rx, "", "status", "状態", kStatus},
    {0x14, Tx, "", "GPS time request", "GPS時刻の要求"},
    {0x15, Rx, "", "GPS time", "GPS時刻", kTime},
    {0x16, Tx, "", "satellite list request", "衛星一覧の要求", kListRequest, 0},
    {kSatelliteList, Rx, "\1"sv, "satellite list, one frame of several", "衛星一覧（分割）",
     kSatelliteFrame},
    {kSatelliteList, Rx, "\2"sv, "satellite list, one frame of several", "衛星一覧（分割）",
     kSatelliteFrame},
    {kSatelliteList, Rx, "", "satellite list", "衛星一覧", kSatelliteHead},
    {0x30, Tx, "", "site request", "設置位置の要求", kQuery},
    {0x31, Rx, "\x12\0"sv, "site", "設置位置", kSite},
    {0x32, Tx, "", "echo request", "折り返しの要求", kTwoBytes},
    {0x33, Rx, "", "echo", "折り返し", kTwoBytes},
    {0x34, Tx, "", "position request", "測位の要求"},
    {0x35, Rx, "", "position", "測位", kPosition},
    {0x40, Rx, "", "unsolicited", "自発の通知", kUnsolicited},
    {0x41, Tx, "", "power source request", "電源の要求"},
    {0x41, Rx, "", "power source", "電源", kPower},
    {0x4A, Tx, "\1"sv, "extended options request", "拡張オプションの要求"},
    {0x4A, Tx, "", "options request", "オプションの要求"},
    {0x4B, Rx, "[", "extended options", "拡張オプション", kExtendedOptions, 20},
    {0x4B, Rx, "", "options", "オプション", kOptions, 49},
    {0x53, Tx, "", "choose signals", "信号の選択", kSignals, 3},
    {0x54, Tx, "\2"sv, "almanac request", "軌道暦の要求", kAlmanacRequest},
    {0x54, Tx, "\x14"sv, "other satellites request", "他の衛星系の要求", kOtherRequest},
    {0x54, Tx, "\0"sv, "satellite state request", "衛星状態の要求", kStateRequest},
    {0x55, Rx, "\2"sv, "almanac", "軌道暦", kAlmanac},
    {0x55, Rx, "\x14"sv, "other satellites", "他の衛星系", kOtherState, 5},
    {0x55, Rx, "\0"sv, "satellite state", "衛星状態", kSatelliteState, 50},
    {0x58, Tx, "", "reset", "初期化", kReset},
    {0x5A, Tx, "", "abort", "中止", kAbort},
    {0x5E, Tx, "", "set port", "ポート設定", kSetPort},
    {0x60, Tx, "", "delete file", "ファイル削除", kFileIndex},
    {0x64, Tx, "", "application file", "設定ファイル", kApplicationFile, 14},
    {0x68, Tx, "", "recover file", "ファイル復元", kFileIndex},
    {0x6B, Tx, "", "file memory state request", "ファイルメモリ状態の要求"},
    {0x6E, Rx, "", "identification", "機種情報", kIdentification},
    {0x79, Tx, "", "file list request", "ファイル一覧の要求", kPicaListRequest},
    {0x79, Rx, "", "file list", "ファイル一覧", kPicaList, kWhole, kPicaFile},
    {0x7A, Tx, "", "settings flags request", "設定フラグの要求", kQuery},
    {0x7A, Rx, "", "settings flags", "設定フラグ", kFlags},
    {0x84, Tx, "", "power off", "電源断", kQuery},
    {0x85, Tx, "", "label", "表示ラベル", kLabel},
    {0x95, Rx, "", "file block", "ファイルの一部", kBlock},
    {0x96, Tx, "", "file request", "ファイルの要求", kDownload},
    {0x9C, Tx, "", "file list request", "ファイル一覧の要求", kFileName},
    {0x9D, Rx, "", "file list", "ファイル一覧", kLarkList, kWhole, kLarkFile},
    {0xA0, Tx, "", "delete file", "ファイル削除", kFileName},
    {0xA1, Tx, "", "recover file", "ファイル復元", kFileName},
    {0xA3, Tx, "", "refresh the signals", "信号の更新", kSignals, 3},
    {0xC8, Tx, "\1\0"sv, "tilt reading request", "傾斜の要求"},
    {0xC8, Tx, "\1\1"sv, "tilt calibration request", "傾斜校正の要求"},
    {0xC8, Tx, "\3"sv, "set validity of the tilt calibration", "傾斜校正の有効期間設定",
     kTiltValidity},
    {0xC8, Tx, "\4"sv, "start the tilt calibration", "傾斜校正の開始"},
    {0xC8, Tx, "\5"sv, "cancel the tilt calibration", "傾斜校正の取消"},
    {0xC8, Tx, "\n"sv, "set speed of the bubble", "気泡の速さ設定", kTiltSpeed},
    {0xC8, Rx, "\1\0"sv, "tilt reading", "傾斜", kTiltReading},
    {0xC8, Rx, "\1\1"sv, "tilt calibration", "傾斜校正", kTiltRecord},
};

} // namespace

std::size_t FrameLayout::ShortestLength() const
{
    std::size_t length = 0;
    for (const FieldLayout& field : fields) {
        length += field.width;
    }
    return endsFrom == kWhole ? std::max(length, prefix.size()) : endsFrom;
}

std::span<const FrameLayout> FrameLayouts()
{
    return kLayouts;
}

std::span<const FieldLayout> TextSatelliteLayout()
{
    return kTextSatellite;
}

std::span<const FieldLayout> BinarySatelliteLayout()
{
    return kBinarySatellite;
}

const FrameLayout* FindFrameLayout(Direction direction, std::uint8_t type, std::string_view data)
{
    const auto* const found = std::ranges::find_if(kLayouts, [&](const FrameLayout& layout) {
        return layout.type == type && layout.direction == direction &&
               data.starts_with(layout.prefix);
    });
    return found == std::end(kLayouts) ? nullptr : found;
}

} // namespace fieldcore

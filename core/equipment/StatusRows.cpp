#include "core/equipment/StatusRows.h"

#include "core/resources/StringTable.h"

#include <cmath>

namespace fieldcore {

namespace {

using Info = CRecvInfo;
constexpr int kIn = CRecvInfo::Input;
constexpr int kOut = CRecvInfo::Output;

template <auto Get, auto... Way>
int Has(const CRecvInfo& info)
{
    return (info.*Get)(Way...);
}

constexpr InstalledOption kOptions[] = {
    {"L1/L2", text::kOptionL2, Has<&Info::GetL2>},
    {"L2C", text::kOptionL2C, Has<&Info::GetL2C>},
    {"L5", text::kOptionL5, Has<&Info::GetL5>},
    {"GLONASS", text::kOptionGlonass, Has<&Info::GetGLONASS>},
    {"Galileo", text::kOptionGalileo, Has<&Info::GetGalileo>},
    {"QZSS", text::kOptionQzss, Has<&Info::GetQZSS>},
    {"RTK", text::kOptionRtk, Has<&Info::GetRtkSurvey>},
    {"on-the-fly initialisation", text::kOptionOtf, Has<&Info::GetRtkOTF>},
    {"VRS", text::kOptionVrs, Has<&Info::GetRtkVRS>},
    {"NMEA output", text::kOptionNmea, Has<&Info::GetNMEA>},
    {"CMR input", text::kOptionCmrIn, Has<&Info::GetCMR, kIn>},
    {"CMR output", text::kOptionCmrOut, Has<&Info::GetCMR, kOut>},
    {"CMR+", text::kOptionCmrPlus, Has<&Info::GetCMRp>},
    {"CMRx input", text::kOptionCmrxIn, Has<&Info::GetCMRxInput>},
    {"CMRx output", text::kOptionCmrxOut, Has<&Info::GetCMRxOutput>},
    {"RTCM input", text::kOptionRtcmIn, Has<&Info::GetRTCM1, kIn>},
    {"RTCM output", text::kOptionRtcmOut, Has<&Info::GetRTCM1, kOut>},
    {"RTCM 2 input", text::kOptionRtcm2In, Has<&Info::GetRTCM2, kIn>},
    {"RTCM 2 output", text::kOptionRtcm2Out, Has<&Info::GetRTCM2, kOut>},
    {"RTCM 2.1 input", text::kOptionRtcm21In, Has<&Info::GetRTCM21, kIn>},
    {"RTCM 2.1 output", text::kOptionRtcm21Out, Has<&Info::GetRTCM21, kOut>},
    {"RTCM 2.2", text::kOptionRtcm22, Has<&Info::GetRTCM22>},
    {"RTCM 2.3", text::kOptionRtcm23, Has<&Info::GetRTCM23>},
    {"RTCM 3.0", text::kOptionRtcm30, Has<&Info::GetRTCM30>},
    {"Bluetooth", text::kOptionBluetooth, Has<&Info::GetBlueTooth>},
    {"logging at 2 Hz", text::kOption2Hz, Has<&Info::Get2HzLogging>},
    {"Q02 files", text::kOptionQ02, Has<&Info::GetQ02Format>},
    {"tilt sensor", text::kOptionTilt, Has<&Info::GetTilt>},
    {"Solace board", text::kOptionSolace, Has<&Info::GetSolace>},
    {"Meridian board", text::kOptionMeridian, Has<&Info::GetMeridian>},
};

/// How old a value is: seconds, then minutes.
std::wstring AgeText(Clock::Duration age)
{
    const auto seconds = static_cast<int>(age / std::chrono::seconds(1));
    return seconds < 120 ? FormatText(text::kAgeSeconds, seconds)
                         : FormatText(text::kAgeMinutes, seconds / 60);
}

} // namespace

StatusRow StatusRowOf(const ReceiverField& field, const Receiver& receiver, const StatusView& view)
{
    StatusRow row{&field, FieldText(field, receiver, view), L"", IsStale(field, receiver, view)};
    if (const auto age = AgeOf(field, receiver, view)) {
        row.age = row.isStale ? FormatText(text::kStatusLastReceived,
                                           ControllerTimeOfDay(view.utc - *age).c_str())
                              : AgeText(*age);
    }
    return row;
}

std::vector<StatusRow> StatusRowsOf(const Receiver& receiver, const StatusView& view)
{
    std::vector<StatusRow> rows;
    for (const bool isPosition : {true, false}) {
        for (const ReceiverField& field : AllReceiverFields()) {
            if ((field.places & ReceiverField::Page) != 0 &&
                ((field.places & ReceiverField::PositionReport) != 0) == isPosition) {
                rows.push_back(StatusRowOf(field, receiver, view));
            }
        }
    }
    return rows;
}

std::vector<std::wstring> BrokenLimits(const Receiver& receiver, const StatusView& view)
{
    std::vector<std::wstring> broken;
    const auto fresh = [&](std::string_view key) {
        const ReceiverField& field = FieldOf(key);
        return IsStale(field, receiver, view) ? std::nullopt : ReadField(field, receiver, view);
    };
    if (!view.limits) {
        return broken;
    }
    const auto shown = [](double pdop) { return std::lround(pdop * 10.0); }; // with one decimal
    if (const auto pdop = fresh("pdop");
        pdop && shown(std::get<double>(*pdop)) > shown(view.limits->pdop)) {
        broken.push_back(FormatText(text::kLimitPdop,
                                    FieldText(FieldOf("pdop"), receiver, view).c_str(),
                                    view.limits->pdop));
    }
    if (const auto above = fresh("satellitesAboveMask");
        above && std::get<std::int64_t>(*above) < view.limits->satellites) {
        broken.push_back(FormatText(text::kLimitSatellites, view.limits->maskDeg,
                                    static_cast<int>(std::get<std::int64_t>(*above)),
                                    view.limits->satellites));
    }
    return broken;
}

const wchar_t* LinkText(LinkState link)
{
    constexpr int kTexts[] = {text::kAppLinkNone, text::kAppLinkConnecting, text::kAppLinkConnected,
                              text::kAppLinkLost, // and reconnecting:
                              text::kAppLinkLost, text::kAppLinkFailed,     text::kAppLinkRefused};
    return Text(kTexts[static_cast<std::size_t>(link)]);
}

std::wstring FixText(const Receiver& receiver, const StatusView& view)
{
    const std::optional<FieldValue> fix = ReadField(FieldOf("fix"), receiver, view);
    if (!fix) {
        return {};
    }
    const int kind = std::get<const Term*>(*fix)->textId - text::kFixNone;
    return FormatText(text::kFixLine, Text(text::kFixShortNone + kind),
                      FieldText(FieldOf("satellitesTracked"), receiver, view).c_str());
}

std::wstring BatteryText(const Receiver& receiver, const StatusView& view)
{
    const std::wstring charge = FieldText(FieldOf("batteryPercent"), receiver, view);
    const bool hasSource = BatteryPercent(receiver) && receiver.powerSource;
    return hasSource ? FormatText(text::kBatteryValue, charge.c_str(),
                                  FieldText(FieldOf("powerSourceName"), receiver, view).c_str())
                     : charge;
}

std::optional<int> BatteryPercent(const Receiver& receiver)
{
    const std::optional<FieldValue> percent = ReadField(FieldOf("batteryPercent"), receiver);
    return percent ? std::optional(static_cast<int>(std::get<std::int64_t>(*percent)))
                   : std::nullopt;
}

std::span<const InstalledOption> AllInstalledOptions()
{
    return kOptions;
}

std::vector<VersionRow> VersionRowsOf(const ReceiverIdentity& identity)
{
    std::vector<VersionRow> rows;
    Receiver receiver;
    receiver.identity = identity;
    const auto addAll = [&](int headingId, unsigned place) {
        rows.push_back({Text(headingId), L"", true});
        for (const ReceiverField& field : AllReceiverFields()) {
            if ((field.places & place) != 0) {
                rows.push_back({Text(field.textId), FieldText(field, receiver, {})});
            }
        }
    };
    addAll(text::kVersionReceiver, ReceiverField::Version);
    addAll(text::kVersionFirmware, ReceiverField::Firmware);
    rows.push_back({Text(text::kVersionOptions), L"", true});
    const CRecvInfo info(identity);
    for (const InstalledOption& option : AllInstalledOptions()) {
        const bool isThere = option.has(info) != 0;
        rows.push_back({Text(option.textId),
                        Text(isThere ? text::kVersionInstalled : text::kVersionNotInstalled), false,
                        !isThere});
    }
    return rows;
}

std::wstring VersionText(const std::vector<VersionRow>& rows)
{
    std::wstring text;
    for (const VersionRow& row : rows) {
        text += row.isHeading ? L"[" + row.name + L"]" : row.name + L"\t" + row.value;
        text += L"\n";
    }
    return text;
}

} // namespace fieldcore

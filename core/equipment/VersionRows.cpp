#include "core/equipment/VersionRows.h"

#include "core/equipment/ReceiverFields.h"
#include "core/resources/StringTable.h"

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

} // namespace

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

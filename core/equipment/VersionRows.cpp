#include "core/equipment/VersionRows.h"

#include "core/equipment/ReceiverFields.h"
#include "core/resources/StringTable.h"

#include <array>

namespace fieldcore {

namespace {

using Info = const CRecvInfo&;
constexpr int kIn = CRecvInfo::Input;
constexpr int kOut = CRecvInfo::Output;

constexpr std::array kOptions{
    InstalledOption{"L1/L2", text::kOptionL2, [](Info i) { return i.GetL2(); }},
    InstalledOption{"L2C", text::kOptionL2C, [](Info i) { return i.GetL2C(); }},
    InstalledOption{"L5", text::kOptionL5, [](Info i) { return i.GetL5(); }},
    InstalledOption{"GLONASS", text::kOptionGlonass, [](Info i) { return i.GetGLONASS(); }},
    InstalledOption{"Galileo", text::kOptionGalileo, [](Info i) { return i.GetGalileo(); }},
    InstalledOption{"QZSS", text::kOptionQzss, [](Info i) { return i.GetQZSS(); }},
    InstalledOption{"RTK", text::kOptionRtk, [](Info i) { return i.GetRtkSurvey(); }},
    InstalledOption{"on-the-fly initialisation", text::kOptionOtf,
                    [](Info i) { return i.GetRtkOTF(); }},
    InstalledOption{"VRS", text::kOptionVrs, [](Info i) { return i.GetRtkVRS(); }},
    InstalledOption{"NMEA output", text::kOptionNmea, [](Info i) { return i.GetNMEA(); }},
    InstalledOption{"CMR input", text::kOptionCmrIn, [](Info i) { return i.GetCMR(kIn); }},
    InstalledOption{"CMR output", text::kOptionCmrOut, [](Info i) { return i.GetCMR(kOut); }},
    InstalledOption{"CMR+", text::kOptionCmrPlus, [](Info i) { return i.GetCMRp(); }},
    InstalledOption{"CMRx input", text::kOptionCmrxIn, [](Info i) { return i.GetCMRxInput(); }},
    InstalledOption{"CMRx output", text::kOptionCmrxOut, [](Info i) { return i.GetCMRxOutput(); }},
    InstalledOption{"RTCM input", text::kOptionRtcmIn, [](Info i) { return i.GetRTCM1(kIn); }},
    InstalledOption{"RTCM output", text::kOptionRtcmOut, [](Info i) { return i.GetRTCM1(kOut); }},
    InstalledOption{"RTCM 2 input", text::kOptionRtcm2In, [](Info i) { return i.GetRTCM2(kIn); }},
    InstalledOption{"RTCM 2 output", text::kOptionRtcm2Out,
                    [](Info i) { return i.GetRTCM2(kOut); }},
    InstalledOption{"RTCM 2.1 input", text::kOptionRtcm21In,
                    [](Info i) { return i.GetRTCM21(kIn); }},
    InstalledOption{"RTCM 2.1 output", text::kOptionRtcm21Out,
                    [](Info i) { return i.GetRTCM21(kOut); }},
    InstalledOption{"RTCM 2.2", text::kOptionRtcm22, [](Info i) { return i.GetRTCM22(); }},
    InstalledOption{"RTCM 2.3", text::kOptionRtcm23, [](Info i) { return i.GetRTCM23(); }},
    InstalledOption{"RTCM 3.0", text::kOptionRtcm30, [](Info i) { return i.GetRTCM30(); }},
    InstalledOption{"Bluetooth", text::kOptionBluetooth, [](Info i) { return i.GetBlueTooth(); }},
    InstalledOption{"logging at 2 Hz", text::kOption2Hz, [](Info i) { return i.Get2HzLogging(); }},
    InstalledOption{"Q02 files", text::kOptionQ02, [](Info i) { return i.GetQ02Format(); }},
    InstalledOption{"tilt sensor", text::kOptionTilt, [](Info i) { return i.GetTilt(); }},
    InstalledOption{"Solace board", text::kOptionSolace, [](Info i) { return i.GetSolace(); }},
    InstalledOption{"Meridian board", text::kOptionMeridian,
                    [](Info i) { return i.GetMeridian(); }},
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

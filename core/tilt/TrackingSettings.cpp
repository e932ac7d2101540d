#include "core/tilt/TrackingSettings.h"

#include "core/input/Parts.h"
#include "core/platform/NumberText.h"
#include "core/platform/SettingsStore.h"
#include "core/resources/StringTable.h"

#include <string>

namespace fieldcore {

namespace {

constexpr SurveyKind kKinds[] = {
    {false, 1, 0, text::kSurveyRtkRef},      {false, 1, 1, text::kSurveyRtkRov},
    {false, 2, 1, text::kSurveyRtkKijun},    {false, 4, 1, text::kSurvey2Set},
    {false, 8, 1, text::kSurveyCalib},       {false, 32, 1, text::kSurvey1Set},
    {false, 256, 1, text::kSurveyRtkDgps},   {false, 512, 1, text::kSurveySingle},
    {false, 4096, 1, text::kSurveySokuLine}, {true, 1, 0, text::kSurveyStatic},
    {true, 2, 0, text::kSurveyFStatic},      {true, 4, 0, text::kSurveyKinemaRef},
    {true, 8, 0, text::kSurveyKinemaRov},
};

constexpr const wchar_t* kPdop = L"PDOPMask";

/// A whole number of the set, and what may be stored of it.
struct Field
{
    const wchar_t* name;
    int (CGPSPrm::*get)() const;
    int (CGPSPrm::*set)(int);
    bool (*isGood)(int);
};

constexpr const wchar_t* kTracking = L"GPS\\Tracking";
constexpr const wchar_t* kSurvey = L"Survey";
constexpr const wchar_t* kMsas = L"MSAS";

constexpr Field kFields[] = {
    {L"Interval", &CGPSPrm::GetIntervalData, &CGPSPrm::SetIntervalData,
     [](int v) {
         return v > 0 && CParts::ConvIntervalFlag2Data(CParts::ConvIntervalData2Flag(v)) == v;
     }},
    {L"ElMask", &CGPSPrm::GetElMaskData, &CGPSPrm::SetElMaskData,
     [](int v) {
         return v >= 0 && CParts::ConvElMaskFlag2Data(CParts::ConvElMaskData2Flag(v)) == v;
     }},
    {L"SvEpoch", &CGPSPrm::GetSvEpochData, &CGPSPrm::SetSvEpochData,
     [](int v) { return v >= 1 && v <= kMostEpochs; }},
    {L"MinSVs", &CGPSPrm::GetMinSVsData, &CGPSPrm::SetMinSVsData,
     [](int v) { return v >= kLeastSatellites && v < kLeastSatellites + 6; }},
    {kMsas, &CGPSPrm::GetMSASData, &CGPSPrm::SetMSASData, [](int v) { return v == 0 || v == 1; }},
};

std::wstring KeyOf(const SurveyKind& kind)
{
    return std::wstring(kTracking) + L"\\" + SectionOf(kind);
}

void TakeSignals(CGPSPrm& parameters, const SignalSet& chosen)
{
    const auto isUsed = [&chosen](Signal signal) { return chosen.Has(signal) ? 1 : 0; };
    parameters.SetL2CData(isUsed(Signal::L2c));
    parameters.SetGLONASSData(isUsed(Signal::Glonass));
    parameters.SetQZSSData(isUsed(Signal::Qzss));
    parameters.SetGalileoData(isUsed(Signal::Galileo));
    parameters.SetL5Data(isUsed(Signal::L5));
}

} // namespace

std::span<const SurveyKind> AllSurveys()
{
    return kKinds;
}

const wchar_t* SectionOf(const SurveyKind& kind)
{
    return kind.isPost ? CParts::GetPostSec(kind.surveyType)
                       : CParts::GetRtkSec(kind.surveyType, kind.rover);
}

void ResetTracking(CGPSPrm& parameters, const SurveyKind& kind)
{
    parameters.SetSurveyType(kind.surveyType, kind.rover);
    parameters.SetIntervalData(kind.isPost ? 15 : 1);
    parameters.SetElMaskData(15);
    parameters.SetSvEpochData(10);
    parameters.SetMinSVsData(5);
    parameters.SetPDOPMaskData(7.0);
    parameters.SetMSASData(0);
    TakeSignals(parameters, SignalSet());
}

void LoadTracking(const CReg& reg, const SurveyKind& kind, std::uint32_t typeNumber,
                  CGPSPrm& parameters)
{
    ResetTracking(parameters, kind);
    TakeSignals(parameters, LoadSignals(reg, typeNumber));
    const std::wstring key = KeyOf(kind);
    for (const Field& field : kFields) {
        std::uint32_t stored = 0;
        constexpr std::uint32_t kMost = kMostEpochs; // of all fields
        if (reg.ReadNumber(key, field.name, stored, 0) == 1 && stored <= kMost &&
            field.isGood(static_cast<int>(stored))) {
            (parameters.*field.set)(static_cast<int>(stored));
        }
    }
    std::wstring pdop;
    reg.ReadString(key, kPdop, pdop, L"");
    const double value = ParseReal(pdop.c_str());
    if (value >= kLeastPdop && value <= kMostPdop) {
        parameters.SetPDOPMaskData(value);
    }
}

int SaveTracking(const CReg& reg, const SurveyKind& kind, const CGPSPrm& parameters)
{
    const std::wstring key = KeyOf(kind);
    SettingsBatch batch(reg.Store());
    if (!batch.IsOpen()) {
        return 0;
    }
    for (const Field& field : kFields) {
        const int value = (parameters.*field.get)();
        if (reg.WriteNumber(key, field.name, static_cast<std::uint32_t>(value)) == 0) {
            return 0;
        }
    }
    if (reg.WriteString(key, kPdop, FormatFixed(parameters.GetPDOPMaskData(1), 1)) == 0) {
        return 0;
    }
    return batch.Commit() ? 1 : 0;
}

std::size_t LoadSurvey(const CReg& reg)
{
    std::wstring section;
    reg.ReadString(kTracking, kSurvey, section, L"");
    for (std::size_t i = 0; i < AllSurveys().size(); ++i) {
        if (section == SectionOf(AllSurveys()[i])) {
            return i;
        }
    }
    return 0;
}

int SaveSurvey(const CReg& reg, std::size_t place)
{
    return reg.WriteString(kTracking, kSurvey, SectionOf(AllSurveys()[place]));
}

} // namespace fieldcore

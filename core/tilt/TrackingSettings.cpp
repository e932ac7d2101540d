#include "core/tilt/TrackingSettings.h"

#include "core/input/Parts.h"
#include "core/platform/NumberText.h"
#include "core/resources/StringTable.h"

#include <algorithm>

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

constexpr KnownSetting kPdop = L"GPS\\Tracking\\*\\PDOPMask";

/// A whole number of the set; where it is chosen from a list, the places in it and back.
struct Field
{
    KnownSetting setting;
    int (CGPSPrm::*get)() const;
    int (CGPSPrm::*set)(int);
    int (*place)(int) = nullptr;
    int (*entry)(int) = nullptr;
};

constexpr Field kFields[] = {
    {L"GPS\\Tracking\\*\\Interval", &CGPSPrm::GetIntervalData, &CGPSPrm::SetIntervalData,
     CParts::ConvIntervalData2Flag, CParts::ConvIntervalFlag2Data},
    {L"GPS\\Tracking\\*\\ElMask", &CGPSPrm::GetElMaskData, &CGPSPrm::SetElMaskData,
     CParts::ConvElMaskData2Flag, CParts::ConvElMaskFlag2Data},
    {L"GPS\\Tracking\\*\\SvEpoch", &CGPSPrm::GetSvEpochData, &CGPSPrm::SetSvEpochData},
    {L"GPS\\Tracking\\*\\MinSVs", &CGPSPrm::GetMinSVsData, &CGPSPrm::SetMinSVsData},
    {L"GPS\\Tracking\\*\\MSAS", &CGPSPrm::GetMSASData, &CGPSPrm::SetMSASData},
};

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
    for (const Field& field : kFields) {
        (parameters.*field.set)(static_cast<int>(field.setting->number.byDefault));
    }
    parameters.SetIntervalData(kind.isPost ? 15 : parameters.GetIntervalData());
    parameters.SetPDOPMaskData(ParseReal(kPdop->text));
    TakeSignals(parameters, SignalSet());
}

void LoadTracking(const CReg& reg, const SurveyKind& kind, std::uint32_t typeNumber,
                  CGPSPrm& parameters)
{
    ResetTracking(parameters, kind);
    TakeSignals(parameters, LoadSignals(reg, typeNumber));
    for (const Field& field : kFields) {
        std::uint32_t stored = 0;
        const bool isStored = ReadSetting(reg, field.setting, stored, SectionOf(kind)) == 1;
        const auto value = static_cast<int>(stored);
        if (isStored && field.setting->number.Fit(stored) == stored &&
            (field.place == nullptr || field.entry(field.place(value)) == value)) {
            (parameters.*field.set)(value);
        }
    }
    const double pdop = ParseReal(StoredText(reg, kPdop, SectionOf(kind)).c_str());
    if (pdop >= kLeastPdop && pdop <= kMostPdop) {
        parameters.SetPDOPMaskData(pdop);
    }
}

int SaveTracking(const CReg& reg, const SurveyKind& kind, const CGPSPrm& parameters)
{
    std::vector<SettingWrite> writes;
    for (const Field& field : kFields) {
        const int value = (parameters.*field.get)();
        writes.push_back({field.setting, static_cast<std::uint32_t>(value), SectionOf(kind)});
    }
    writes.push_back({kPdop, FormatFixed(parameters.GetPDOPMaskData(1), 1), SectionOf(kind)});
    return StoreAll(reg, writes);
}

std::size_t LoadSurvey(const CReg& reg)
{
    const auto* const found = std::ranges::find(
        kKinds, StoredText(reg, L"GPS\\Tracking\\Survey"),
        [](const SurveyKind& kind) { return std::wstring_view(SectionOf(kind)); });
    return found != std::end(kKinds) ? static_cast<std::size_t>(found - kKinds) : 0;
}

int SaveSurvey(const CReg& reg, std::size_t place)
{
    return Store(reg, L"GPS\\Tracking\\Survey", SectionOf(AllSurveys()[place]));
}

} // namespace fieldcore

#include "core/input/Parts.h"

#include "core/input/EntryList.h"
#include "core/platform/NumberText.h"
#include "core/platform/SaturateCast.h"
#include "core/resources/StringTable.h"
#include "core/settings/Setting.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace fieldcore {

namespace {

constexpr KnownSetting kPointName = L"GPS\\Point\\PointName*";
constexpr KnownSetting kPointNo = L"GPS\\Point\\PointNo*";
constexpr KnownSetting kAttrib = L"GPS\\Point\\Attrib*";

using Wide = std::int64_t; // in which no sum of these rules overflows

constexpr Wide kMostDegrees = 90;
constexpr Wide kLongestInterval = 60;
constexpr int kLongestList = 127;

int Saturated(Wide value)
{
    return static_cast<int>(
        std::clamp<Wide>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

void FillByRule(TextList& list, int (*rule)(int), int textId)
{
    for (int flag = 0; flag <= kLongestList && rule(flag) >= 0; ++flag) {
        list.Insert(flag, FormatText(textId, rule(flag)));
    }
}

} // namespace

double CParts::atof(const std::wstring& text)
{
    return ParseReal(text.c_str());
}

double CParts::atof(const wchar_t* text)
{
    return ParseReal(text);
}

double CParts::round(double value, std::uint8_t decimals)
{
    if (std::isnan(value)) {
        return value;
    }
    const double sign = value < 0.0 ? -1.0 : 1.0;
    const double magnitude = std::fabs(value);
    const auto scaled =
        SaturateCast<std::uint32_t>(std::floor(magnitude * std::pow(10.0, decimals) + 0.5));

    // One digit at least stands before the point.
    std::wstring digits = FormatWhole(scaled, decimals + std::size_t{1});
    digits.insert(digits.size() - decimals, 1, L'.');
    return atof(digits) * sign;
}

std::wstring CParts::Round(double value, std::uint8_t decimals)
{
    constexpr std::uint8_t kRoundedFirst = 3;
    return FormatFixed(round(value, kRoundedFirst), decimals);
}

double CParts::RoundNega(double a, double b, std::uint8_t decimals)
{
    return round(round(a, decimals) - round(b, decimals), decimals);
}

double CParts::RoundAve(double a, double b, std::uint8_t decimals)
{
    return round((round(a, decimals) + round(b, decimals)) / 2.0, decimals);
}

const wchar_t* CParts::GetRtkSec(std::uint32_t surveyType, int rover)
{
    if (rover == 0) {
        return L"RtkRef";
    }
    switch (surveyType) {
    case 2:
        return L"RtkKijun";
    case 4:
        return L"2Set";
    case 8:
        return L"Calib";
    case 32:
        return L"1Set";
    case 256:
        return L"RtkDGPS";
    case 512:
        return L"Single";
    case 4096:
        return L"SokuLine";
    default:
        return L"RtkRov";
    }
}

const wchar_t* CParts::GetPostSec(std::uint32_t surveyType)
{
    switch (surveyType) {
    case 2:
        return L"FStatic";
    case 4:
        return L"KinemaRef";
    case 8:
        return L"KinemaRov";
    default:
        return L"Static";
    }
}

int CParts::StackComboList(EntryList& list, const std::wstring& text, int /*maxCount*/)
{
    if (text.empty()) {
        return 1;
    }
    for (int i = 0; i < list.GetCount(); ++i) {
        if (list.GetText(i) == text) {
            list.Select(i);
            return 1;
        }
    }
    list.Insert(0, text);
    list.ScrollToTop();
    return 1;
}

int CParts::RegReadComboBoxList(EntryList& list, const CReg& reg, const std::wstring& key,
                                const std::wstring& prefix, int count)
{
    for (int n = 0; n < count; ++n) {
        std::wstring text;
        if (reg.ReadString(key, prefix + std::to_wstring(n), text, L"") == 0 || text.empty()) {
            break;
        }
        list.Insert(n, text);
    }
    return 1;
}

int CParts::RegWriteComboBoxList(const EntryList& list, const CReg& reg, const std::wstring& key,
                                 const std::wstring& prefix, int count)
{
    const int selected = list.GetSelected();
    const int first = selected >= 0 && selected < list.GetCount() ? selected : -1;
    int number = 0;
    // The list changes as a whole: a program that ends meanwhile leaves no mixture of two.
    SettingsBatch batch(reg.Store());
    const auto store = [&](int index) {
        const std::wstring text = list.GetText(index);
        if (CReg::FitsText(text)) {
            const std::wstring name = prefix + std::to_wstring(number++);
            return text.empty() || reg.WriteString(key, name, text) == 1;
        }
        return true;
    };
    bool goesOn = count > 0 && (first < 0 || store(first));
    for (int i = 0; goesOn && i < list.GetCount() && number < count; ++i) {
        goesOn = i == first || store(i);
    }
    if (goesOn) {
        static_cast<void>(batch.Commit());
    }
    return 1;
}

int CParts::ReadRegPointName(EntryList& list, int count, const CReg& reg)
{
    return RegReadComboBoxList(list, reg, kPointName->Key(), kPointName->Name(), count);
}

int CParts::ReadRegPointNo(EntryList& list, int count, const CReg& reg)
{
    return RegReadComboBoxList(list, reg, kPointNo->Key(), kPointNo->Name(), count);
}

int CParts::ReadRegAttrib(EntryList& list, int count, const CReg& reg)
{
    return RegReadComboBoxList(list, reg, kAttrib->Key(), kAttrib->Name(), count);
}

int CParts::WriteRegPointName(const EntryList& list, int count, const CReg& reg)
{
    return RegWriteComboBoxList(list, reg, kPointName->Key(), kPointName->Name(), count);
}

int CParts::WriteRegPointNo(const EntryList& list, int count, const CReg& reg)
{
    return RegWriteComboBoxList(list, reg, kPointNo->Key(), kPointNo->Name(), count);
}

int CParts::WriteRegAttrib(const EntryList& list, int count, const CReg& reg)
{
    return RegWriteComboBoxList(list, reg, kAttrib->Key(), kAttrib->Name(), count);
}

int CParts::SetRegActivePage(int read, int& value, const std::wstring& dialogName, const CReg& reg)
{
    constexpr KnownSetting kActivePage = L"GPS\\*\\ActivePage";
    auto number = static_cast<std::uint32_t>(value);
    if (read != 0) {
        reg.ReadNumber(kActivePage->Key(dialogName), kActivePage->Name(), number, number);
        value = static_cast<int>(number);
    } else {
        Store(reg, kActivePage, number, dialogName);
    }
    return 1;
}

int CParts::ConvElMaskFlag2Data(int flag)
{
    const Wide data = flag < 11 ? Wide{flag} * 5 : (Wide{flag} - 10) * 10 + 50;
    return data > kMostDegrees ? -1 : Saturated(data);
}

int CParts::ConvElMaskData2Flag(int data)
{
    const int flag = data > 50 ? (data - 50) / 10 + 10 : data / 5;
    return data > kMostDegrees || flag < 0 ? -1 : flag;
}

int CParts::ConvIntervalFlag2Data(int flag)
{
    const Wide data = flag < 5 ? Wide{flag} + 1 : (Wide{flag} - 5) * 5 + 10;
    return data > kLongestInterval ? -1 : Saturated(data);
}

int CParts::ConvIntervalData2Flag(int data)
{
    const Wide flag = data > 5 ? (Wide{data} - 10) / 5 + 5 : Wide{data} - 1;
    return data > kLongestInterval || flag < 0 ? -1 : Saturated(flag);
}

int CParts::ConvMinSVsFlag2Data(int flag, int base)
{
    return Saturated(Wide{flag} + base);
}

int CParts::ConvMinSVsData2Flag(int data, int base)
{
    return Saturated(Wide{data} - base);
}

void CParts::SetElMaskStr(TextList& list)
{
    FillByRule(list, ConvElMaskFlag2Data, text::kListDegrees);
}

void CParts::SetIntervalStr(TextList& list, int unit)
{
    FillByRule(list, ConvIntervalFlag2Data, unit == 0 ? text::kListSeconds : text::kListMinutes);
}

void CParts::SetComboBoxStr(TextList& list, int count, const std::wstring& unit, int base)
{
    for (int i = 0; i < count; ++i) {
        list.Insert(i, FormatText(text::kListEntry, Saturated(Wide{i} + base), unit.c_str()));
    }
}

void CParts::SetMinSVsStr(TextList& list, int base)
{
    SetComboBoxStr(list, 6, Text(text::kListSatellites), base);
}

void CParts::SetSvHourStr(TextList& list, int flag)
{
    SetComboBoxStr(list, 24, Text(flag != 0 ? text::kListHour : text::kListHours), 0);
}

void CParts::SetSvMinuteStr(TextList& list)
{
    SetComboBoxStr(list, 60, Text(text::kListMinute), 0);
}

void CParts::SetSvEnableStr(TextList& list)
{
    list.Insert(0, Text(text::kListUnused));
    list.Insert(1, Text(text::kListUsed));
}

} // namespace fieldcore

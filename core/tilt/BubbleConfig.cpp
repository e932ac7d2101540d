#include "core/tilt/BubbleConfig.h"

#include "core/platform/Assign.h"
#include "core/platform/NumberText.h"
#include "core/platform/SettingsStore.h"

#include <algorithm>
#include <cmath>

namespace fieldcore {

namespace {

constexpr const wchar_t* kSensitivity = L"Sensitivity";
constexpr const wchar_t* kViscosity = L"Viscosity";
constexpr const wchar_t* kDuration = L"Duration";
constexpr double kMmInM = 1000.0;

int ReadWhole(const CReg& reg, const wchar_t* name, const wchar_t* defaultText)
{
    std::wstring text;
    reg.ReadString(eBubbleConfig::GetKeyPrm(), name, text, defaultText);
    return ParseWhole(text.c_str());
}

} // namespace

double eBubbleConfig::s_sensitivity = 40.0;
int eBubbleConfig::s_viscosity = 1;
double eBubbleConfig::s_durationM = 0.02;
int eBubbleConfig::s_expiryH = 720;

int eBubbleConfig::SetBubbleSensitivity(double arcMinutes)
{
    return std::isfinite(arcMinutes) ? Assign(s_sensitivity, arcMinutes) : 0;
}

int eBubbleConfig::SetBubbleViscosity(int viscosity)
{
    return Assign(s_viscosity, std::clamp(viscosity, 0, 2));
}

int eBubbleConfig::SetBubbleDuration(double toleranceM)
{
    return std::isnan(toleranceM) ? 0 : Assign(s_durationM, std::clamp(toleranceM, 0.001, 1.0));
}

int eBubbleConfig::SetBubbleExpiry(int hours)
{
    return Assign(s_expiryH, std::clamp(hours, 1, 30000));
}

void eBubbleConfig::LoadBubbleData(const CReg& reg)
{
    SetBubbleSensitivity(ReadWhole(reg, kSensitivity, L"40"));
    SetBubbleViscosity(ReadWhole(reg, kViscosity, L"1"));
    SetBubbleDuration(ReadWhole(reg, kDuration, L"20") / kMmInM);
}

int eBubbleConfig::SaveBubbleData(const CReg& reg)
{
    const std::wstring key = GetKeyPrm();
    SettingsBatch batch(reg.Store());
    const bool stored = batch.IsOpen() &&
                        reg.WriteString(key, kSensitivity, FormatFixed(s_sensitivity, 0)) == 1 &&
                        reg.WriteString(key, kViscosity, std::to_wstring(s_viscosity)) == 1 &&
                        reg.WriteString(key, kDuration, FormatFixed(s_durationM * kMmInM, 0)) == 1;
    return stored && batch.Commit() ? 1 : 0;
}

std::wstring eBubbleConfig::GetKeyPrm()
{
    return L"GPS\\eBubble\\";
}

} // namespace fieldcore

#include "core/tilt/BubbleConfig.h"

#include "core/platform/Assign.h"
#include "core/platform/NumberText.h"
#include "core/settings/Setting.h"

#include <algorithm>
#include <cmath>

namespace fieldcore {

namespace {

constexpr double kMmInM = 1000.0;

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
    SetBubbleSensitivity(ParseWhole(StoredText(reg, L"GPS\\eBubble\\Sensitivity").c_str()));
    SetBubbleViscosity(ParseWhole(StoredText(reg, L"GPS\\eBubble\\Viscosity").c_str()));
    SetBubbleDuration(ParseWhole(StoredText(reg, L"GPS\\eBubble\\Duration").c_str()) / kMmInM);
}

int eBubbleConfig::SaveBubbleData(const CReg& reg)
{
    return StoreAll(reg, {{L"GPS\\eBubble\\Sensitivity", FormatFixed(s_sensitivity, 0)},
                          {L"GPS\\eBubble\\Viscosity", std::to_wstring(s_viscosity)},
                          {L"GPS\\eBubble\\Duration", FormatFixed(s_durationM * kMmInM, 0)}});
}

std::wstring eBubbleConfig::GetKeyPrm()
{
    return L"GPS\\eBubble\\";
}

} // namespace fieldcore

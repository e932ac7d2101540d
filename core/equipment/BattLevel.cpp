#include "core/equipment/BattLevel.h"

#include "core/host/Host.h"
#include "core/link/Command.h"
#include "core/link/RecvInfo.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <array>

namespace fieldcore {

namespace {

constexpr std::uint32_t kFirstPica = 3010; // has one source, and does not know the request
constexpr std::uint32_t kSecondPica = 3020;
constexpr std::array<std::uint32_t, 5> kLettered{3012, 3015, 3017, 3022, 3028};

constexpr int kFirstShown = 5;    // percent; less is empty
constexpr int kFirstInSteps = 10; // from here on a band is ten wide
constexpr int kFirstBeyond = 110;

int SourceTextId(std::uint32_t typeNumber, int source)
{
    if (std::find(kLettered.begin(), kLettered.end(), typeNumber) != kLettered.end()) {
        return source == 2 ? text::kPowerSourceB : text::kPowerSourceA;
    }
    if (source == 2) {
        return text::kPowerSource2;
    }
    return source == 3 && typeNumber != kSecondPica ? text::kPowerSource3 : text::kPowerSource1;
}

} // namespace

bool CanTellPowerSource(std::uint32_t typeNumber)
{
    return typeNumber != kFirstPica;
}

int BatteryBand(int percent)
{
    if (percent < kFirstShown || percent >= kFirstBeyond) {
        return 0;
    }
    return percent < kFirstInSteps ? 10 : std::min(percent / 10 * 10 + 10, 100);
}

std::wstring PowerSourceName(std::uint32_t typeNumber, int source)
{
    return Text(SourceTextId(typeNumber, source));
}

void CBattLevel::SetInit(ProgressBar* bar)
{
    if (bar != nullptr) {
        bar->SetRange(0, 100);
        bar->SetPos(0);
    }
    m_calls = kCallsPerQuery;
}

void CBattLevel::SetBatteryStatus(int textControlId, ProgressBar* bar)
{
    if (m_command == nullptr || m_command->IsBusy()) {
        return;
    }
    if (m_calls >= kCallsPerQuery) {
        m_calls = 0;
        const int level = GetBattLevel();
        if (bar != nullptr) {
            bar->SetPos(level);
        }
        Host& host = m_command->GetHost();
        if (host.HasActiveWindow()) {
            host.SetControlText(textControlId, GetBattPort());
        }
    }
    ++m_calls;
}

int CBattLevel::GetBattLevel()
{
    StatusReply status;
    const bool isKnown = m_command != nullptr && m_command->RequestStatus(status) == 1;
    return isKnown ? BatteryBand(status.batteryPercent) : 0;
}

std::wstring CBattLevel::GetBattPort()
{
    if (m_typeNumber == 0 && m_command != nullptr) {
        m_typeNumber = fieldcore::GetRecvTypeNum(*m_command);
    }
    int source = 1;
    if (CanTellPowerSource(m_typeNumber) && m_command != nullptr) {
        m_command->RequestBatteryPort(source); // stays 1 if it fails: every family's first name
    }
    return PowerSourceName(m_typeNumber, source);
}

} // namespace fieldcore

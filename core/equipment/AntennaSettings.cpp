#include "core/equipment/AntennaSettings.h"

#include "core/equipment/AntennaInput.h"
#include "core/input/Parts.h"
#include "core/input/TextEntries.h"
#include "core/link/Command.h"
#include "core/link/RecvInfo.h"
#include "core/platform/NumberText.h"
#include "core/platform/SaturateCast.h"
#include "core/resources/StringTable.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace fieldcore {

namespace {

constexpr const wchar_t* kType = L"AntType";
constexpr const wchar_t* kWay = L"AntWay";
constexpr const wchar_t* kHeight = L"AntH";
constexpr const wchar_t* kSerial = L"AntSN";
constexpr const wchar_t* kNoSerial = L"AntNoSN"; // 1: none, whatever is remembered

int Limited(std::uint32_t number, int most)
{
    return static_cast<int>(std::min(number, static_cast<std::uint32_t>(most)));
}

/// Assigns a value. @return 1 if it changed
template <typename Value>
int Change(Value& variable, const Value& value)
{
    return std::exchange(variable, value) != value ? 1 : 0;
}

} // namespace

AntennaSettings::AntennaSettings(CCommand* command, int rover, int reConnect,
                                 Surroundings surroundings)
    : m_command(command), m_reg(*surroundings.roots),
      m_catalogue(std::move(surroundings.folder), *surroundings.roots), m_rover(rover != 0),
      m_reConnect(reConnect != 0)
{}

AntennaRole AntennaSettings::Role() const
{
    return m_second  ? AntennaRole::RoverSecond
           : m_rover ? AntennaRole::Rover
                     : AntennaRole::Reference;
}

void AntennaSettings::SetRole(AntennaRole role)
{
    m_rover = role == AntennaRole::Rover;
    m_second = role == AntennaRole::RoverSecond;
}

std::wstring AntennaSettings::RoleKey() const
{
    const wchar_t* const role = m_second ? L"PrmRovf" : m_rover ? L"PrmRov" : L"PrmRef";
    return std::wstring(L"GPS\\Antenna\\") + role;
}

int AntennaSettings::SetAntTypeFlag(int type)
{
    // Without a catalogue nobody knows which types there are: the stored one is kept.
    const int count = GetMaxCount();
    const int last = (count > 0 ? count : AntennaCatalogue::kMaxTypes) - 1;
    const int changed = Change(m_type, std::clamp(type, 0, last));
    Describe();
    return changed;
}

int AntennaSettings::SetAntWayFlag(int way)
{
    way = std::clamp(way, 0, AntennaCatalogue::kMaxMethods);
    if (way > 0 && GetMaxCount() > 0 && !m_catalogue.Method(m_type, way - 1)) {
        way = 0;
    }
    return Change(m_way, way);
}

int AntennaSettings::SetAntInputH(double heightM)
{
    if (!std::isfinite(heightM)) {
        return 0;
    }
    constexpr std::uint8_t kDecimals = 4;
    return Change(m_inputM, CParts::round(std::clamp(heightM, 0.0, kHighestAntennaM), kDecimals));
}

std::wstring AntennaSettings::GetAntInputStr() const
{
    constexpr std::uint8_t kMostDecimals = 4;
    std::wstring height = FormatFixed(m_inputM, kMostDecimals);
    if (height.back() == L'0') {
        height.pop_back(); // tenths of a millimetre only where somebody measured them
    }
    return height;
}

int AntennaSettings::SetAntSN(const std::wstring& serial)
{
    return AntennaSerialFault(serial).empty() ? Change(m_serial, serial) : 0;
}

int AntennaSettings::GetAntNo() const
{
    return SaturateCast<int>(static_cast<double>(m_description.code));
}

void AntennaSettings::Describe()
{
    m_description = m_catalogue.Type(m_type).value_or(AntennaType{});
}

int AntennaSettings::ReadRegAntPrm()
{
    std::uint32_t type = 0;
    std::uint32_t way = 0;
    const int hasType = m_reg.ReadNumber(RoleKey(), kType, type, 0);
    const int hasWay = m_reg.ReadNumber(RoleKey(), kWay, way, 0);
    SetAntTypeFlag(Limited(type, AntennaCatalogue::kMaxTypes));
    SetAntWayFlag(Limited(way, AntennaCatalogue::kMaxMethods));
    return hasType != 0 && hasWay != 0 ? 1 : 0;
}

int AntennaSettings::WriteRegAntType() const
{
    return m_reg.WriteNumber(RoleKey(), kType, static_cast<std::uint32_t>(m_type));
}

int AntennaSettings::WriteRegAntWay() const
{
    return m_reg.WriteNumber(RoleKey(), kWay, static_cast<std::uint32_t>(m_way));
}

std::vector<std::wstring> AntennaSettings::ReadHeights() const
{
    std::vector<std::wstring> list = ReadList(kHeight);
    std::erase_if(list, [](const std::wstring& text) { return !AntennaHeightFault(text).empty(); });
    return list;
}

std::vector<std::wstring> AntennaSettings::ReadSerials() const
{
    std::vector<std::wstring> list = ReadList(kSerial);
    std::erase_if(list, [](const std::wstring& text) { return !AntennaSerialFault(text).empty(); });
    return list;
}

std::vector<std::wstring> AntennaSettings::ReadList(const wchar_t* prefix) const
{
    TextEntries list;
    CParts::RegReadComboBoxList(list, m_reg, RoleKey(), prefix, kRemembered);
    return list.Texts();
}

bool AntennaSettings::WriteList(const wchar_t* prefix, std::vector<std::wstring> list,
                                const std::wstring& chosen) const
{
    TextEntries entries(std::move(list));
    CParts::StackComboList(entries, chosen, kRemembered);
    CParts::RegWriteComboBoxList(entries, m_reg, RoleKey(), prefix, kRemembered);
    list = entries.Texts(); // nobody told whether all of them could be written
    const auto first = std::find(list.begin(), list.end(), chosen);
    if (first != list.end()) {
        std::rotate(list.begin(), first, first + 1);
    }
    list.resize(std::min<std::size_t>(list.size(), kRemembered));
    std::vector<std::wstring> stored = ReadList(prefix);
    stored.resize(std::min(stored.size(), list.size()));
    return stored == list;
}

int AntennaSettings::ReadRegAnt()
{
    const int read = ReadRegAntPrm();
    m_heights = ReadHeights();
    m_serials = ReadSerials();
    SetAntInputH(m_heights.empty() ? 0.0 : CParts::atof(m_heights.front()));
    SetAntSN(GetAntSNEx());
    return read != 0 && !m_heights.empty() ? 1 : 0;
}

int AntennaSettings::WriteRegAnt()
{
    SettingsBatch batch(m_reg.Store());
    const bool written = batch.IsOpen() && WriteRegAntType() != 0 && WriteRegAntWay() != 0 &&
                         WriteList(kHeight, ReadHeights(), GetAntInputStr()) &&
                         WriteList(kSerial, ReadSerials(), m_serial) &&
                         m_reg.WriteNumber(RoleKey(), kNoSerial, m_serial.empty() ? 1 : 0) != 0 &&
                         batch.Commit();
    if (written) {
        m_heights = ReadHeights();
        m_serials = ReadSerials();
    }
    return written ? 1 : 0;
}

int AntennaSettings::GetMeasMethod(int type, int method, double& radiusM, double& verticalM,
                                   std::wstring& name) const
{
    const std::optional<AntennaMethod> found = m_catalogue.Method(type, method);
    radiusM = found ? found->radiusM : 0.0;
    verticalM = found ? found->verticalM : 0.0;
    if (found) {
        name = found->name;
    }
    return found ? 1 : 0;
}

AntennaHeight AntennaSettings::Height(double measuredM, int type, int way) const
{
    const auto method = way > 0 ? m_catalogue.Method(type, way - 1) : std::nullopt;
    return method ? ReduceAntennaHeight(measuredM, *method)
                  : AntennaHeight{measuredM, measuredM, 0.0, {}, AntennaReduction::None};
}

double AntennaSettings::GetAntCalcH(double measuredM, int type, int way) const
{
    return Height(measuredM, type, way).verticalM;
}

int AntennaSettings::GetAntTypeFromAntNo(int number) const
{
    return m_catalogue.FindCode(number).value_or(-1);
}

long AntennaSettings::GetAntTypeFromAntFlag(int type) const
{
    return m_catalogue.Type(type).value_or(AntennaType{}).code;
}

int AntennaSettings::GetInternalAntTypeFromRecvType(std::uint32_t receiverType) const
{
    return receiverType == 0 ? -1
                             : m_catalogue.FindCode(static_cast<long>(receiverType)).value_or(-1);
}

std::wstring AntennaSettings::GetAntTypeStrEx() const
{
    std::uint32_t type = 0;
    m_reg.ReadNumber(RoleKey(), kType, type, 0);
    return m_catalogue.Type(Limited(type, AntennaCatalogue::kMaxTypes))
        .value_or(AntennaType{})
        .name;
}

std::wstring AntennaSettings::GetAntWayStr(int type, int way) const
{
    const auto method = way > 0 ? m_catalogue.Method(type, way - 1) : std::nullopt;
    return !method                ? Text(text::kAntennaPhaseCentre)
           : method->name.empty() ? Text(text::kAntennaBase)
                                  : method->name;
}

std::wstring AntennaSettings::GetAntHEx() const
{
    constexpr std::uint8_t kDecimals = 3;
    return GetAntFlag() != 0 ? CParts::Round(GetAntHExD(), kDecimals) : std::wstring();
}

double AntennaSettings::GetAntHExD() const
{
    const std::vector<std::wstring> heights = ReadHeights();
    return heights.empty() ? 0.0 : CParts::atof(heights.front());
}

std::wstring AntennaSettings::GetAntSNEx() const
{
    std::uint32_t none = 0;
    m_reg.ReadNumber(RoleKey(), kNoSerial, none, 0);
    const std::vector<std::wstring> serials = ReadSerials();
    return none != 0 || serials.empty() ? std::wstring() : serials.front();
}

int AntennaSettings::GetAntFlag() const
{
    return ReadHeights().empty() ? 0 : 1;
}

int AntennaSettings::GetAntInfo(AntennaInfo& info) const
{
    info = {m_type,  m_way, m_description, GetAntWayStr(), Height(m_inputM, m_type, m_way),
            m_serial};
    return GetAntFlag();
}

std::wstring AntennaSettings::GetAntLine() const
{
    if (GetAntFlag() == 0) {
        return Text(text::kAntennaStripNone);
    }
    constexpr std::uint8_t kDecimals = 3;
    const AntennaHeight height = Height(m_inputM, m_type, m_way);
    const double measuredM = CParts::round(height.measuredM, kDecimals);
    const double verticalM = CParts::round(height.verticalM, kDecimals);
    switch (height.reduction) {
    case AntennaReduction::Slant:
        return FormatText(text::kAntennaStripSlant, measuredM, verticalM);
    case AntennaReduction::TooShort:
        return FormatText(text::kAntennaStripShort, measuredM, verticalM);
    case AntennaReduction::Upright:
        return FormatText(text::kAntennaStripBase, measuredM, verticalM);
    case AntennaReduction::None:
        break;
    }
    return FormatText(text::kAntennaStripVertical, verticalM);
}

AntennaSettings::Taken AntennaSettings::TakeFromReceiver()
{
    m_sourceCode.clear();
    SerialReply identity;
    if (m_command == nullptr || m_command->IsPortOpen() == 0 ||
        m_command->RequestSerial(identity) == 0) {
        return Taken::NoAnswer;
    }
    m_sourceCode = identity.antennaType;
    std::optional<int> type = m_catalogue.FindCharCode(identity.antennaType);
    CRecvInfo info;
    if (!type && info.GetRETOPT(*m_command) != 0) {
        const int builtIn = GetInternalAntTypeFromRecvType(info.GetRecvTypeNum());
        type = builtIn < 0 ? std::nullopt : std::optional(builtIn);
    }
    if (!type) {
        return Taken::NotListed;
    }
    if (SetAntTypeFlag(*type) != 0) {
        SetAntWayFlag(0); // the other antenna's method would mean another point of this one
    }
    std::wstring serial = identity.antennaSerial;
    serial.resize(serial.find_last_not_of(std::wstring_view(L" \0", 2)) + 1);
    if (!AntennaSerialFault(serial).empty()) {
        serial.clear(); // unknown: the one of before belongs to another antenna
    }
    SetAntSN(serial);
    return Taken::Yes;
}

int AntennaSettings::GetAntInfoFromLoggingData(std::span<const std::uint8_t> blocks)
{
    const std::optional<AntennaRecord> record = FindAntennaBlock(blocks);
    return record ? Take(*record) : 0;
}

int AntennaSettings::SetAntInfo(const ApplicationFileDataBlock& block)
{
    const std::optional<AntennaRecord> record = ParseAntennaBlock(block);
    return record ? Take(*record) : 0;
}

int AntennaSettings::Take(const AntennaRecord& record)
{
    m_sourceCode = record.charCode;
    const std::optional<int> type = m_catalogue.FindCharCode(record.charCode);
    if (!type || (record.way > 0 && !m_catalogue.Method(*type, record.way - 1))) {
        return 0;
    }
    SetAntTypeFlag(*type);
    SetAntWayFlag(record.way);
    SetAntInputH(record.heightM);
    SetAntSN(record.serial);
    return 1;
}

} // namespace fieldcore

#include "core/equipment/AntennaSettings.h"

#include "core/input/Check.h"
#include "core/input/EntryList.h"
#include "core/input/Parts.h"
#include "core/link/Command.h"
#include "core/link/RecvInfo.h"
#include "core/platform/Cp932.h"
#include "core/platform/NumberText.h"
#include "core/platform/SaturateCast.h"
#include "core/resources/StringTable.h"
#include "core/settings/Setting.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace fieldcore {

namespace {

constexpr KnownSetting kType = L"GPS\\Antenna\\*\\AntType";
constexpr KnownSetting kWay = L"GPS\\Antenna\\*\\AntWay";
constexpr KnownSetting kHeight = L"GPS\\Antenna\\*\\AntH*";
constexpr KnownSetting kSerial = L"GPS\\Antenna\\*\\AntSN*";
constexpr KnownSetting kNoSerial = L"GPS\\Antenna\\*\\AntNoSN";

// Where what stands in a block, and how much of it.
constexpr std::size_t kCodeAt = 0;
constexpr std::size_t kCodeSize = 2;
constexpr std::size_t kSerialAt = 2;
constexpr std::size_t kSerialSize = 8;
constexpr std::size_t kWayAt = 10;
constexpr std::size_t kHeightAt = 11; // four bytes, 0.1 mm
constexpr std::size_t kBlockSize = 15;

std::wstring TextAt(std::span<const std::uint8_t> data, std::size_t at, std::size_t size)
{
    const auto field = data.subspan(at, size);
    const std::wstring text = FromCp932(std::string(field.begin(), field.end()));
    return text.substr(0, text.find_last_not_of(std::wstring_view(L" \0", 2)) + 1);
}

} // namespace

std::wstring AntennaHeightFault(const std::wstring& text)
{
    const std::optional<double> metres = TypedNumber(text);
    return !metres                       ? Text(text::kAntennaBadHeight)
           : *metres < 0.0               ? Text(text::kAntennaNegativeHeight)
           : *metres <= kHighestAntennaM ? std::wstring()
                                         : FormatText(text::kAntennaHighHeight, kHighestAntennaM);
}

std::wstring AntennaSerialFault(const std::wstring& text)
{
    const bool isGood =
        text.size() <= kMaxAntennaSerial && std::all_of(text.begin(), text.end(), [](wchar_t c) {
            return (c >= L'0' && c <= L'9') || c == L'-' || (c >= L'A' && c <= L'Z') ||
                   (c >= L'a' && c <= L'z');
        });
    return isGood ? std::wstring()
                  : FormatText(text::kAntennaBadSerial, static_cast<int>(kMaxAntennaSerial));
}

std::optional<AntennaRecord> ParseAntennaBlock(const ApplicationFileDataBlock& block)
{
    if (block.type != AntennaRecord::kBlockType || block.data.size() < kBlockSize) {
        return std::nullopt;
    }
    std::uint32_t tenths = 0;
    for (const std::uint8_t byte : block.data.subspan(kHeightAt, 4)) {
        tenths = tenths << 8U | byte;
    }
    constexpr double kTenthsPerMetre = 10000.0;
    AntennaRecord record{TextAt(block.data, kCodeAt, kCodeSize),
                         TextAt(block.data, kSerialAt, kSerialSize), block.data[kWayAt],
                         tenths / kTenthsPerMetre};
    const bool canBe = record.way <= AntennaCatalogue::kMaxMethods &&
                       record.heightM <= kHighestAntennaM &&
                       AntennaSerialFault(record.serial).empty();
    return canBe ? std::optional(std::move(record)) : std::nullopt;
}

std::optional<ApplicationFileDataBlock> FindAntennaBlock(std::span<const std::uint8_t> blocks)
{
    constexpr std::size_t kHead = 2; // type, number of bytes that follow
    std::optional<ApplicationFileDataBlock> last;
    while (blocks.size() >= kHead) {
        const std::size_t length = blocks[1];
        if (blocks.size() < kHead + length) {
            break;
        }
        const ApplicationFileDataBlock block{blocks[0], blocks.subspan(kHead, length)};
        if (ParseAntennaBlock(block)) {
            last = block;
        }
        blocks = blocks.subspan(kHead + length);
    }
    return last;
}

AntennaSettings::AntennaSettings(CCommand* command, int rover, int reConnect)
    : m_command(command), m_reg(EnvironmentOf(command).Roots()),
      m_catalogue(EnvironmentOf(command).Roots()), m_rover(rover != 0), m_reConnect(reConnect != 0)
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

const wchar_t* AntennaSettings::RoleName() const
{
    return m_second ? L"PrmRovf" : m_rover ? L"PrmRov" : L"PrmRef";
}

int AntennaSettings::SetAntTypeFlag(int type)
{
    m_description = m_catalogue.Type(type).value_or(AntennaType{});
    return Assign(m_type, type);
}

int AntennaSettings::ChoiceFault() const
{
    const int count = GetMaxCount();
    if (count > 0 && (m_type < 0 || m_type >= count)) {
        return text::kAntennaTypeUnknown;
    }
    return m_way != 0 && !MethodOf(m_type, m_way) ? text::kAntennaMethodUnknown : 0;
}

int AntennaSettings::SetAntInputH(double heightM)
{
    if (!std::isfinite(heightM)) {
        return 0;
    }
    constexpr std::uint8_t kDecimals = 4;
    return Assign(m_inputM, CParts::round(std::clamp(heightM, 0.0, kHighestAntennaM), kDecimals));
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
    return AntennaSerialFault(serial).empty() ? Assign(m_serial, serial) : 0;
}

int AntennaSettings::GetAntNo() const
{
    return SaturateCast<int>(static_cast<double>(m_description.code));
}

int AntennaSettings::ReadRegAntPrm()
{
    std::uint32_t type = 0;
    std::uint32_t way = 0;
    const int hasType = ReadSetting(m_reg, kType, type, RoleName());
    const int hasWay = ReadSetting(m_reg, kWay, way, RoleName());
    SetAntTypeFlag(static_cast<int>(type));
    SetAntWayFlag(static_cast<int>(way));
    return hasType != 0 && hasWay != 0 ? 1 : 0;
}

int AntennaSettings::WriteRegAntType() const
{
    return Store(m_reg, kType, static_cast<std::uint32_t>(m_type), RoleName());
}

int AntennaSettings::WriteRegAntWay() const
{
    return Store(m_reg, kWay, static_cast<std::uint32_t>(m_way), RoleName());
}

std::vector<std::wstring> AntennaSettings::ReadRemembered(KnownSetting setting) const
{
    TextEntries entries;
    CParts::RegReadComboBoxList(entries, m_reg, setting->Key(RoleName()), setting->Name(),
                                kRemembered);
    std::vector<std::wstring> list = entries.Texts();
    const auto fault = setting->path == kHeight->path ? AntennaHeightFault : AntennaSerialFault;
    std::erase_if(list, [fault](const std::wstring& text) { return !fault(text).empty(); });
    return list;
}

bool AntennaSettings::WriteList(KnownSetting setting, const std::wstring& chosen) const
{
    std::vector<std::wstring> list = ReadRemembered(setting);
    if (!chosen.empty()) {
        auto first = std::find(list.begin(), list.end(), chosen);
        first = first != list.end() ? first : list.insert(first, chosen);
        std::rotate(list.begin(), first, first + 1);
    }
    list.resize(std::min<std::size_t>(list.size(), kRemembered));
    bool isStored = true;
    for (std::size_t n = 0; isStored && n < list.size(); ++n) {
        isStored = m_reg.WriteString(setting->Key(RoleName()), setting->Name(std::to_wstring(n)),
                                     list[n]) == 1;
    }
    return isStored;
}

int AntennaSettings::ReadRegAnt()
{
    const int read = ReadRegAntPrm();
    m_heights = ReadRemembered(kHeight);
    m_serials = ReadRemembered(kSerial);
    SetAntInputH(m_heights.empty() ? 0.0 : CParts::atof(m_heights.front()));
    SetAntSN(GetAntSNEx());
    return read != 0 && !m_heights.empty() ? 1 : 0;
}

int AntennaSettings::WriteRegAnt()
{
    SettingsBatch batch(m_reg.Store());
    const bool written = batch.IsOpen() && WriteRegAntType() != 0 && WriteRegAntWay() != 0 &&
                         WriteList(kHeight, GetAntInputStr()) && WriteList(kSerial, m_serial) &&
                         Store(m_reg, kNoSerial, m_serial.empty() ? 1U : 0U, RoleName()) != 0 &&
                         batch.Commit();
    if (written) {
        m_heights = ReadRemembered(kHeight);
        m_serials = ReadRemembered(kSerial);
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

std::optional<AntennaMethod> AntennaSettings::MethodOf(int type, int way) const
{
    return way > 0 && type < GetMaxCount() ? m_catalogue.Method(type, way - 1) : std::nullopt;
}

AntennaHeight AntennaSettings::Height(double measuredM, int type, int way) const
{
    const auto method = MethodOf(type, way);
    return method ? ReduceAntennaHeight(measuredM, *method)
                  : AntennaHeight{measuredM,
                                  measuredM,
                                  0.0,
                                  {},
                                  way == 0 ? AntennaReduction::None : AntennaReduction::Unknown};
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
    const auto type = static_cast<int>(StoredNumber(m_reg, kType, RoleName()));
    return m_catalogue.Type(type).value_or(AntennaType{}).name;
}

std::wstring AntennaSettings::GetAntWayStr(int type, int way) const
{
    if (way == 0) {
        return Text(text::kAntennaPhaseCentre);
    }
    const auto method = MethodOf(type, way);
    return !method                ? std::wstring()
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
    const std::vector<std::wstring> heights = ReadRemembered(kHeight);
    return heights.empty() ? 0.0 : CParts::atof(heights.front());
}

std::wstring AntennaSettings::GetAntSNEx() const
{
    const std::vector<std::wstring> serials = ReadRemembered(kSerial);
    return StoredNumber(m_reg, kNoSerial, RoleName()) != 0 || serials.empty() ? std::wstring()
                                                                              : serials.front();
}

int AntennaSettings::GetAntFlag() const
{
    return ReadRemembered(kHeight).empty() ? 0 : 1;
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
    constexpr int kTexts[] = {text::kAntennaStripVertical, text::kAntennaStripUnknown,
                              text::kAntennaStripBase, text::kAntennaStripSlant,
                              text::kAntennaStripShort}; // in the order of the reductions
    const int id = kTexts[static_cast<std::size_t>(height.reduction)];
    return height.IsReduced() ? FormatText(id, measuredM, verticalM) : FormatText(id, measuredM);
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
    const std::optional<ApplicationFileDataBlock> block = FindAntennaBlock(blocks);
    return block ? SetAntInfo(*block) : 0;
}

int AntennaSettings::SetAntInfo(const ApplicationFileDataBlock& block)
{
    const std::optional<AntennaRecord> record = ParseAntennaBlock(block);
    m_sourceCode = record ? record->charCode : L"";
    const std::optional<int> type = m_catalogue.FindCharCode(m_sourceCode);
    if (!record || !type || (record->way > 0 && !MethodOf(*type, record->way))) {
        return 0;
    }
    SetAntTypeFlag(*type);
    SetAntWayFlag(record->way);
    SetAntInputH(record->heightM);
    SetAntSN(record->serial);
    return 1;
}

} // namespace fieldcore

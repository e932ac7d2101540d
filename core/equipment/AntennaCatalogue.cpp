#include "core/equipment/AntennaCatalogue.h"

#include "core/host/Host.h"
#include "core/input/Parts.h"
#include "core/planning/CalendarTime.h"
#include "core/platform/AtomicFile.h"
#include "core/platform/Folders.h"
#include "core/platform/SaturateCast.h"
#include "core/platform/Utf8.h"
#include "core/platform/WholeFile.h"
#include "core/resources/StringTable.h"
#include "core/settings/Profile.h"
#include "core/settings/ProfileText.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <span>
#include <system_error>
#include <utility>
#include <vector>

#include <fmt/xchar.h>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

constexpr const wchar_t* kDate = L"Date";
constexpr const wchar_t* kFile = L"File"; // see FileIdentity()
constexpr const wchar_t* kMaxCount = L"MaxCount";
constexpr const wchar_t* kType = L"ANTENNATYPE";
constexpr const wchar_t* kCharCode = L"CharCode";
constexpr const wchar_t* kCode = L"Type";
constexpr const wchar_t* kMethod = L"MeasMethod";

/// The values of a section under the keys that count. Of an entry that is there twice the first
/// does.
using Values = std::map<std::wstring, std::optional<std::wstring>, std::less<>>;

/// The keys of @p prefix with the numbers from 0 to before @p limit, as yet without values.
Values NumberedKeys(const std::wstring& prefix, int limit)
{
    Values keys;
    for (int number = 0; number < limit; ++number) {
        keys[prefix + std::to_wstring(number)];
    }
    return keys;
}

/// The values under numbered keys, from 0 to before the first that is missing.
std::vector<std::wstring> RowOf(const Values& values, const std::wstring& prefix)
{
    std::vector<std::wstring> row;
    for (;;) {
        const auto value = values.find(prefix + std::to_wstring(row.size()));
        if (value == values.end() || !value->second) {
            return row;
        }
        row.push_back(*value->second);
    }
}

/// What sections of a file say under some keys.
std::map<std::wstring, Values> ReadSections(const ProfileText& file,
                                            const std::set<std::wstring>& names, const Values& keys)
{
    const std::vector<std::wstring> sections(names.begin(), names.end());
    std::map<std::wstring, Values> found;
    for (const std::wstring& name : sections) {
        found.emplace(name, keys);
    }
    file.Visit(sections, [&](std::size_t at, std::wstring_view key, std::wstring_view value) {
        Values& values = found.at(sections[at]);
        if (const auto known = values.find(key); known != values.end() && !known->second) {
            known->second = value;
        }
    });
    return found;
}

std::vector<AntennaFileType> ReadFile(const fs::path& file)
{
    constexpr auto kMost = static_cast<std::size_t>(kMaxProfileBytes);
    const auto content = ReadWholeFile(file, kMost + 1);
    if (!content || content->size() > kMost) {
        return {};
    }
    return ReadAntennaFile(std::string(content->begin(), content->end()));
}

/// @return false if a value was not taken
bool WriteTypes(const CReg& reg, const std::vector<AntennaFileType>& types)
{
    bool written = true;
    const auto write = [&](const std::wstring& name, const std::wstring& value) {
        written = written && reg.WriteString(AntennaCatalogue::kKey, name, value) != 0;
    };
    for (std::size_t n = 0; n < types.size() && written; ++n) {
        const std::wstring number = std::to_wstring(n);
        write(kType + number, types[n].name);
        write(kCharCode + number, types[n].charCode);
        write(kCode + number, types[n].code);
        for (std::size_t m = 0; m < types[n].methods.size(); ++m) {
            write(kMethod + std::to_wstring(m) + number, types[n].methods[m]);
        }
    }
    return written;
}

std::wstring WithoutBlanks(std::wstring_view text)
{
    return std::wstring(text.substr(0, text.find_last_not_of(L' ') + 1));
}

/// Takes the text up to the next comma, and the comma, off @p rest.
std::wstring TakeField(std::wstring_view& rest)
{
    const std::size_t comma = rest.find(L',');
    std::wstring field(rest.substr(0, comma));
    rest = comma == std::wstring_view::npos ? std::wstring_view() : rest.substr(comma + 1);
    return field;
}

double TakeMetres(std::wstring_view& rest)
{
    const double metres = CParts::atof(TakeField(rest));
    return std::isfinite(metres) ? metres : 0.0;
}

/// What stands between the first quote and the last character, which should be the other one.
std::wstring Unquoted(const std::wstring& field)
{
    const std::size_t quote = field.find(L'"');
    if (quote == std::wstring::npos) {
        return field;
    }
    std::wstring name = field.substr(quote + 1);
    if (!name.empty()) {
        name.pop_back();
    }
    return name;
}

} // namespace

AntennaMethod ParseAntennaMethod(std::wstring_view text)
{
    AntennaMethod method;
    method.radiusM = TakeMetres(text);
    method.verticalM = TakeMetres(text);
    TakeField(text);
    method.name = Unquoted(TakeField(text));
    return method;
}

AntennaHeight ReduceAntennaHeight(double measuredM, const AntennaMethod& method)
{
    const double h2 = measuredM * measuredM; // two products of their own: see Build.cmake
    const double r2 = method.radiusM * method.radiusM;
    const double square = h2 - r2;
    const bool isLonger = square > 0.0;
    return {measuredM, (isLonger ? std::sqrt(square) : measuredM) + method.verticalM, square,
            method,
            method.radiusM == 0.0 ? AntennaReduction::Upright // perhaps nothing was measured yet
            : isLonger            ? AntennaReduction::Slant
                                  : AntennaReduction::TooShort};
}

std::vector<AntennaFileType> ReadAntennaFile(std::string bytes)
{
    const ProfileText file(std::move(bytes));
    const std::wstring data = L"DATA";
    const std::vector<std::wstring> names = RowOf(
        ReadSections(file, {kType}, NumberedKeys(data, AntennaCatalogue::kMaxTypes)).at(kType),
        data);
    Values keys = NumberedKeys(kMethod, AntennaCatalogue::kMaxMethods);
    keys[kCharCode];
    keys[kCode];
    const auto sections = ReadSections(file, {names.begin(), names.end()}, keys);
    std::vector<AntennaFileType> types;
    for (const std::wstring& name : names) {
        const Values& values = sections.at(name); // several types may name the same section
        types.push_back({name, values.at(kCharCode).value_or(L"  "),
                         values.at(kCode).value_or(L"0"), RowOf(values, kMethod)});
        std::ranges::replace(types.back().methods, L"", Text(text::kAntennaDefaultMethod));
    }
    return types;
}

fs::path AntennaFilePath(const fs::path& folder)
{
    return folder / "GAntenna.ini";
}

std::wstring AntennaFileStamp(const fs::path& folder)
{
    constexpr const wchar_t* kNoFile = L"00/00/00 00:00:00 0";
    const fs::path file = AntennaFilePath(folder);
    std::error_code error;
    if (!fs::is_regular_file(file, error) || !std::ifstream(file)) {
        return kNoFile;
    }
    const std::uintmax_t size = fs::file_size(file, error);
    const fs::file_time_type written =
        error ? fs::file_time_type() : fs::last_write_time(file, error);
    if (error) {
        return kNoFile;
    }
    const auto utc = std::chrono::file_clock::to_sys(written);
    const CTime::LocalParts t =
        CTime(std::chrono::floor<std::chrono::seconds>(utc).time_since_epoch().count())
            .GetLocalParts();
    return fmt::format(L"{}/{}/{} {:02}:{:02}:{:02} {}", t.year, t.month, t.day, t.hour, t.minute,
                       t.second, size);
}

int InstallSampleAntennas(const fs::path& folder)
{
    const fs::path file = AntennaFilePath(folder);
    std::error_code error;
    if (fs::exists(file, error)) {
        return 1;
    }
    error = Folders::Create(folder);
    return !error && !ReplaceFile(file, "$#TEMP.TMP", std::as_bytes(SampleAntennas())) ? 1 : 0;
}

AntennaCatalogue::AntennaCatalogue(SettingsRoots& roots)
    : m_folder(roots.GetFolders().Program()), m_reg(roots)
{
    m_reg.SetRootKey(RootKey::CurrentUser, 0);
}

int AntennaCatalogue::Update(Host& host)
{
    // Taken before the file is read: if somebody changes it meanwhile, the next time finds another
    // stamp and reads it again.
    const std::wstring stamp = AntennaFileStamp(m_folder);
    const std::wstring file = FromUtf8(FileIdentity(AntennaFilePath(m_folder)));
    std::wstring known;
    std::wstring knownFile;
    m_reg.ReadString(kKey, kDate, known, L"");
    const bool isFileKnown = m_reg.ReadString(kKey, kFile, knownFile, L"") == 1;
    if (known == stamp && (knownFile == file || !isFileKnown)) {
        return 1;
    }
    const WaitCursor waiting(host);
    const std::vector<AntennaFileType> types = ReadFile(AntennaFilePath(m_folder));
    CReg reg(m_reg);
    reg.SetRootKey(RootKey::CurrentUser, 1);
    SettingsBatch batch(reg.Store());
    if (!batch.IsOpen()) {
        return 0; // piece by piece it could be cut off in the middle
    }
    reg.DeleteKey(L"", kKey);
    const bool written =
        reg.WriteString(kKey, kDate, stamp) != 0 && reg.WriteString(kKey, kFile, file) != 0 &&
        WriteTypes(reg, types) &&
        reg.WriteNumber(kKey, kMaxCount, static_cast<std::uint32_t>(types.size())) != 0;
    return written && batch.Commit() ? 1 : 0;
}

int AntennaCatalogue::GetMaxCount() const
{
    std::uint32_t count = 0;
    m_reg.ReadNumber(kKey, kMaxCount, count, 0);
    return static_cast<int>(std::min<std::uint32_t>(count, kMaxTypes));
}

std::wstring AntennaCatalogue::Read(const wchar_t* name, int type) const
{
    std::wstring text;
    m_reg.ReadString(kKey, name + std::to_wstring(type), text, L"");
    return text;
}

std::optional<AntennaType> AntennaCatalogue::Type(int type) const
{
    if (type < 0 || type >= GetMaxCount()) {
        return std::nullopt;
    }
    return AntennaType{Read(kType, type), Read(kCharCode, type),
                       SaturateCast<long>(CParts::atof(Read(kCode, type)))};
}

std::optional<AntennaMethod> AntennaCatalogue::Method(int type, int method) const
{
    if (type < 0 || method < 0 || type >= kMaxTypes || method >= kMaxMethods) {
        return std::nullopt;
    }
    const std::wstring text = Read((kMethod + std::to_wstring(method)).c_str(), type);
    return text.empty() ? std::nullopt : std::optional(ParseAntennaMethod(text));
}

int AntennaCatalogue::MethodCount(int type) const
{
    int count = 0;
    while (Method(type, count)) {
        ++count;
    }
    return count;
}

template <typename IsIt>
std::optional<int> AntennaCatalogue::Find(const wchar_t* name, IsIt isIt) const
{
    const int count = GetMaxCount();
    int type = 0;
    while (type < count && !isIt(Read(name, type))) {
        ++type;
    }
    return type < count ? std::optional(type) : std::nullopt;
}

std::optional<int> AntennaCatalogue::FindCode(long code) const
{
    return Find(kCode, [code](const std::wstring& text) {
        return !text.empty() && SaturateCast<long>(CParts::atof(text)) == code;
    });
}

std::optional<int> AntennaCatalogue::FindCharCode(std::wstring_view charCode) const
{
    const std::wstring wanted = WithoutBlanks(charCode);
    return Find(kCharCode, [&wanted](const std::wstring& text) {
        return !wanted.empty() && WithoutBlanks(text) == wanted;
    });
}

} // namespace fieldcore

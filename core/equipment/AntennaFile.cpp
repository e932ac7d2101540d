#include "core/equipment/AntennaFile.h"

#include "core/equipment/AntennaCatalogue.h"
#include "core/resources/StringTable.h"
#include "core/settings/ProfileText.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace fieldcore {

namespace {

constexpr std::wstring_view kTypes = L"ANTENNATYPE";
constexpr std::wstring_view kData = L"DATA";
constexpr std::wstring_view kMethod = L"MeasMethod";

/// The number behind @p prefix as the file has it, without zeros in front.
/// @return nothing if @p key is another one, or the number is not below @p limit
std::optional<int> NumberOf(std::wstring_view key, std::wstring_view prefix, int limit)
{
    if (!key.starts_with(prefix)) {
        return std::nullopt;
    }
    key.remove_prefix(prefix.size());
    int number = 0;
    for (const wchar_t digit : key) {
        if (digit < L'0' || digit > L'9' || number >= limit) {
            return std::nullopt;
        }
        number = 10 * number + (digit - L'0');
    }
    return number < limit && key == std::to_wstring(number) ? std::optional(number) : std::nullopt;
}

/// Values under numbers, of which the first counts.
class Numbered
{
public:
    void Add(int number, std::wstring_view value) { m_values.try_emplace(number, value); }

    /// Those from 0 to before the first that is missing.
    [[nodiscard]] std::vector<std::wstring> Row() const
    {
        std::vector<std::wstring> row;
        for (const auto& [number, value] : m_values) { // in order of the numbers
            if (number != static_cast<int>(row.size())) {
                break;
            }
            row.push_back(value);
        }
        return row;
    }

private:
    std::map<int, std::wstring> m_values;
};

/// What a section says of an antenna; several types may name the same one.
struct Description
{
    std::optional<std::wstring> charCode;
    std::optional<std::wstring> code;
    Numbered methods;

    void Add(std::wstring_view key, std::wstring_view value)
    {
        if (key == L"CharCode" && !charCode) {
            charCode = value;
        } else if (key == L"Type" && !code) {
            code = value;
        } else if (const auto method = NumberOf(key, kMethod, AntennaCatalogue::kMaxMethods)) {
            methods.Add(*method, value.empty() ? Text(text::kAntennaDefaultMethod) : value);
        }
    }
};

} // namespace

std::vector<AntennaFileType> ReadAntennaFile(std::string bytes)
{
    const ProfileText file(std::move(bytes));
    Numbered list;
    const std::wstring head(kTypes);
    file.Visit(std::span(&head, 1),
               [&](std::size_t, std::wstring_view key, std::wstring_view name) {
                   if (const auto type = NumberOf(key, kData, AntennaCatalogue::kMaxTypes)) {
                       list.Add(*type, name);
                   }
               });
    const std::vector<std::wstring> names = list.Row();
    std::vector<std::wstring> sections = names;
    std::sort(sections.begin(), sections.end());
    sections.erase(std::unique(sections.begin(), sections.end()), sections.end());
    std::vector<Description> found(sections.size());
    file.Visit(sections, [&](std::size_t at, std::wstring_view key, std::wstring_view value) {
        found[at].Add(key, value);
    });
    std::vector<AntennaFileType> types;
    for (const std::wstring& name : names) {
        const auto at = std::lower_bound(sections.begin(), sections.end(), name);
        const Description& section = found[static_cast<std::size_t>(at - sections.begin())];
        types.push_back({name, section.charCode.value_or(L"  "), section.code.value_or(L"0"),
                         section.methods.Row()});
    }
    return types;
}

} // namespace fieldcore

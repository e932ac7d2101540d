#include "core/settings/Setting.h"

#include <variant>

namespace fieldcore {

namespace {

std::wstring Filled(std::wstring_view part, std::wstring_view which)
{
    const std::size_t star = part.find(L'*');
    return star == std::wstring_view::npos ? std::wstring(part)
                                           : std::wstring(part).replace(star, 1, which);
}

} // namespace

std::wstring Setting::Key(std::wstring_view which) const
{
    return Filled(path.substr(0, path.rfind(L'\\')), which);
}

std::wstring Setting::Name(std::wstring_view which) const
{
    return Filled(path.substr(path.rfind(L'\\') + 1), which);
}

int ReadSetting(const CReg& reg, KnownSetting setting, std::uint32_t& number,
                std::wstring_view which)
{
    return reg.ReadNumber(setting->Key(which), setting->Name(which), number,
                          setting->number.byDefault);
}

std::uint32_t StoredNumber(const CReg& reg, KnownSetting setting, std::wstring_view which)
{
    std::uint32_t number = 0;
    ReadSetting(reg, setting, number, which);
    return static_cast<std::uint32_t>(setting->number.Fit(number));
}

std::wstring StoredText(const CReg& reg, KnownSetting setting, std::wstring_view which)
{
    std::wstring text;
    reg.ReadString(setting->Key(which), setting->Name(which), text, setting->text);
    return text;
}

int Store(const CReg& reg, KnownSetting setting, const SettingsValue& value,
          std::wstring_view which)
{
    const std::wstring key = setting->Key(which);
    const auto* const text = std::get_if<std::wstring>(&value);
    return text != nullptr
               ? reg.WriteString(key, setting->Name(which), *text)
               : reg.WriteNumber(key, setting->Name(which), std::get<std::uint32_t>(value));
}

int StoreAll(const CReg& reg, const std::vector<SettingWrite>& settings)
{
    SettingsBatch batch(reg.Store());
    const bool stored =
        batch.IsOpen() && std::ranges::all_of(settings, [&reg](const SettingWrite& write) {
            return Store(reg, write.setting, write.value, write.which) == 1;
        });
    return stored && batch.Commit() ? 1 : 0;
}

} // namespace fieldcore

#include "core/equipment/VersionRows.h"

#include "core/equipment/InstalledOptions.h"
#include "core/link/ReceiverTypes.h"
#include "core/platform/NumberText.h"
#include "core/resources/StringTable.h"

namespace fieldcore {

namespace {

constexpr std::uint8_t kVersionDecimals = 2;

std::wstring OrUnknown(std::wstring text)
{
    // What a receiver sends is shown as it is, but for what would break the line.
    for (wchar_t& character : text) {
        character = character < L' ' ? L'?' : character;
    }
    text.erase(text.find_last_not_of(L' ') + 1);
    return text.empty() ? Text(text::kStatusUnknown) : text;
}

std::wstring OrUnknown(const wchar_t* text)
{
    return OrUnknown(std::wstring(text != nullptr ? text : L""));
}

std::wstring Version(double version)
{
    return version > 0.0 ? FormatFixed(version, kVersionDecimals) : Text(text::kStatusUnknown);
}

std::wstring ModelOf(std::uint32_t number)
{
    const ReceiverType* const type = FindReceiverType(number);
    if (type != nullptr && type->model != nullptr) {
        return type->model;
    }
    return number != 0 ? std::to_wstring(number) : Text(text::kStatusUnknown);
}

} // namespace

std::vector<VersionRow> VersionRowsOf(const CRecvInfo& info)
{
    std::vector<VersionRow> rows;
    const auto head = [&](int id) { rows.push_back({Text(id), L"", true}); };
    const auto add = [&](int id, std::wstring value) {
        rows.push_back({Text(id), std::move(value)});
    };
    head(text::kVersionReceiver);
    add(text::kVersionModel, ModelOf(info.GetRecvTypeNum()));
    add(text::kVersionType, OrUnknown(info.GetRecvType()));
    add(text::kVersionSerial, OrUnknown(info.GetRecvSN()));
    add(text::kVersionLongSerial, OrUnknown(info.GetRecvSNLong()));
    add(text::kVersionMemory, info.GetRecvMemory() > 0
                                  ? FormatText(text::kVersionMegabytes, info.GetRecvMemory())
                                  : std::wstring(Text(text::kStatusUnknown)));
    head(text::kVersionFirmware);
    add(text::kVersionNav, Version(info.GetNavVer()));
    add(text::kVersionSig, Version(info.GetSigVer()));
    add(text::kVersionBoot, Version(info.GetBootVer()));
    head(text::kVersionOptions);
    for (const InstalledOption& option : AllInstalledOptions()) {
        const bool isThere = option.has(info) != 0;
        rows.push_back({Text(option.textId),
                        Text(isThere ? text::kVersionInstalled : text::kVersionNotInstalled), false,
                        !isThere});
    }
    return rows;
}

std::wstring VersionText(const std::vector<VersionRow>& rows)
{
    std::wstring text;
    for (const VersionRow& row : rows) {
        text += row.isHeading ? L"[" + row.name + L"]" : row.name + L"\t" + row.value;
        text += L"\n";
    }
    return text;
}

} // namespace fieldcore

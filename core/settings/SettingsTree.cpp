#include "core/settings/SettingsTree.h"

#include <algorithm>
#include <utility>

namespace fieldcore {

namespace {

std::wstring Below(const std::wstring& path, const std::wstring& name)
{
    return path.empty() ? name : path + L'\\' + name;
}

} // namespace

std::optional<std::vector<SettingsKey>> ReadSettingsTree(SettingsStore& store,
                                                         std::wstring_view path)
{
    // Keeps others from writing meanwhile. Where that cannot be had the tree is read all the same.
    const SettingsBatch still(store);
    std::vector<SettingsKey> keys;
    const bool isThere = store.OpenKey(path, KeyOpening::Existing); // or could not be looked for
    std::vector<std::wstring> waiting{std::wstring(path)};          // the next one last
    while (!waiting.empty()) {
        std::wstring key = std::move(waiting.back());
        waiting.pop_back();
        std::optional<std::vector<std::wstring>> below = store.Keys(key);
        std::optional<std::vector<NamedSetting>> values = store.Values(key);
        if (!below || !values) {
            return std::nullopt;
        }
        if (!isThere && below->empty() && values->empty()) {
            return keys;
        }
        std::reverse(below->begin(), below->end());
        for (const std::wstring& name : *below) {
            waiting.push_back(Below(key, name));
        }
        keys.push_back({std::move(key), std::move(*values)});
    }
    return keys;
}

bool StoreSettings(SettingsStore& store, std::span<const SettingsKey> keys, std::wstring& refused)
{
    refused.clear();
    SettingsBatch batch(store);
    if (!batch.IsOpen()) {
        return false;
    }
    for (const SettingsKey& key : keys) {
        if (!store.OpenKey(key.path, KeyOpening::Create)) {
            refused = key.path;
            return false;
        }
        for (const NamedSetting& setting : key.values) {
            if (!store.Set(key.path, setting.name, setting.value, KeyOpening::Create)) {
                refused = Below(key.path, setting.name);
                return false;
            }
        }
    }
    return batch.Commit();
}

} // namespace fieldcore

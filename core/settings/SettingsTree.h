#pragma once

#include "core/platform/SettingsStore.h"
#include "core/settings/SettingsText.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore {

// Many settings at once, as they are saved and brought back. One thread at a time, as the store.

/// The key @p path with its values and all keys below it, each after the one it stands in, in
/// alphabetical order; read as they are at one moment, whatever other processes do.
/// @return no keys if there is none at @p path; nothing if the store could not be read to its end
[[nodiscard]] std::optional<std::vector<SettingsKey>> ReadSettingsTree(SettingsStore& store,
                                                                       std::wstring_view path);

/// Stores all of @p keys, or nothing. What is in the store besides stays there.
/// @param refused  what could not be stored, if it was one value and not the store as a whole
/// @return whether they are on the disk
[[nodiscard]] bool StoreSettings(SettingsStore& store, std::span<const SettingsKey> keys,
                                 std::wstring& refused);

} // namespace fieldcore

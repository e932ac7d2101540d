#pragma once

#include "core/platform/SettingsStore.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fieldcore {

// Settings as a text that people read, compare and edit: UTF-8, one line a value, below a line with
// the path of its key. docs/settings.md describes it. Bytes in, values out: no store. Any thread.

/// A key and its values.
struct SettingsKey
{
    std::wstring path; ///< whole, below the root; empty: the root's own key
    std::vector<NamedSetting> values;
};

/// What is wrong with a text, and where.
struct SettingsTextFault
{
    std::size_t line = 0; ///< from 1
    std::string message;  ///< in plain English, with what to do about it
};

struct SettingsTextResult
{
    std::vector<SettingsKey> keys;          ///< in the order of the text; empty with a fault
    std::optional<SettingsTextFault> fault; ///< the first one
};

/// A longer text is refused, bytes.
inline constexpr std::size_t kMaxSettingsText = 16U << 20U;

/// Reads a text. Any bytes may be given to it. A value that stands there twice, in whatever case,
/// is a fault, as is a last line without its end: a number that was cut is another number.
[[nodiscard]] SettingsTextResult ParseSettingsText(std::string_view utf8);

/// The text of @p keys, in their order, with LF line ends. Reading it gives the same keys, as long
/// as they are such as a store holds: names of at most SettingsStore::kMaxNameLength characters, no
/// NUL and no surrogate in a text.
[[nodiscard]] std::string FormatSettingsText(std::span<const SettingsKey> keys);

/// A number from 0 to 2^32 - 1, in decimal or, behind "0x", in hexadecimal digits.
/// @return nothing if @p text is something else
[[nodiscard]] std::optional<std::uint32_t> ParseSettingNumber(std::string_view text);

/// Bytes of two hexadecimal digits each, with or without blanks between them.
/// @return nothing if @p text is something else
[[nodiscard]] std::optional<std::vector<std::uint8_t>> ParseSettingBytes(std::string_view text);

/// "00 FF 1A".
[[nodiscard]] std::string FormatSettingBytes(std::span<const std::uint8_t> bytes);

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

#pragma once

#include "core/platform/SettingsStore.h"
#include "core/settings/SettingsRoots.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace fieldcore {

/// Access to the settings below one key. Each operation opens its key, does one thing, closes the
/// key again, and answers 1 on success and 0 on any failure; nothing is tried again.
///
/// The key of an operation is the base path, a backslash and @p subkey, or only the one of the two
/// that is not empty. With the create flag it is made if it is not there, by reading too; without
/// it the operation fails then. A value of another type than the one asked for fails a read.
///
/// One thread at a time, together with all others that use the same roots.
class CReg
{
public:
    /// Longest base path, characters.
    static constexpr std::size_t kMaxBasePath = 259;
    /// Longest text that is read, UTF-16 units: 512 bytes with the terminator.
    static constexpr std::size_t kMaxText = 255;

    /// The user's own settings, the empty base path, and the create flag set.
    /// @param roots  must outlive the object
    explicit CReg(SettingsRoots& roots = SettingsRoots::Instance());

    /// Whether ReadString() would read this text again.
    [[nodiscard]] static bool FitsText(std::wstring_view text);

    /// @param create  0: operations fail on a key that is not there
    int SetRootKey(RootKey root, int create);

    /// @return 0, and nothing changes, if @p path is longer than kMaxBasePath
    int SetBasePath(std::wstring_view path);

    /// @param text  the value; on failure, and for a value longer than kMaxText, @p defaultText
    int ReadString(std::wstring_view subkey, std::wstring_view name, std::wstring& text,
                   std::wstring_view defaultText) const;

    /// Text of any length is stored, but see kMaxText. It ends at its first NUL.
    int WriteString(std::wstring_view subkey, std::wstring_view name, std::wstring_view text) const;

    /// @param number  the value; on failure @p defaultNumber
    int ReadNumber(std::wstring_view subkey, std::wstring_view name, std::uint32_t& number,
                   std::uint32_t defaultNumber) const;

    /// The same, but a value that is missing gets stored with @p defaultNumber; that counts as
    /// success.
    int ReadOrStoreNumber(std::wstring_view subkey, std::wstring_view name, std::uint32_t& number,
                          std::uint32_t defaultNumber) const;

    /// Stores a value. @return 1, or 0 if it could not be stored
    int WriteNumber(std::wstring_view subkey, std::wstring_view name, std::uint32_t number) const;

    /// A value that is missing gets stored with @p defaultBytes; that counts as success.
    /// @param bytes  the value, followed by default bytes if it is shorter; on failure, and if the
    /// value is longer than there is room, the default bytes
    /// @param defaultBytes  as many as @p bytes; where there are fewer, zeros follow
    int ReadBinary(std::wstring_view subkey, std::wstring_view name, std::span<std::uint8_t> bytes,
                   std::span<const std::uint8_t> defaultBytes) const;

    /// The same with bytes.
    int WriteBinary(std::wstring_view subkey, std::wstring_view name,
                    std::span<const std::uint8_t> bytes) const;

    /// Removes the key @p name below the key of @p subkey, with all that is in it and below it.
    /// @return 0 if it is not there, or @p name is empty
    int DeleteKey(std::wstring_view subkey, std::wstring_view name) const;

    /// The store below, for a SettingsBatch around many writes.
    [[nodiscard]] SettingsStore& Store() const { return m_roots.Store(m_root); }

private:
    [[nodiscard]] std::wstring KeyPath(std::wstring_view subkey) const;
    [[nodiscard]] SettingsRead Read(std::wstring_view subkey, std::wstring_view name) const;
    int Write(std::wstring_view subkey, std::wstring_view name, const SettingsValue& value) const;

    SettingsRoots& m_roots;
    RootKey m_root = RootKey::CurrentUser;
    KeyOpening m_opening = KeyOpening::Create;
    std::wstring m_basePath;
};

} // namespace fieldcore

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace fieldcore {

/// One setting: text, a 32-bit number or bytes. It keeps the type it was stored with.
using SettingsValue = std::variant<std::wstring, std::uint32_t, std::vector<std::uint8_t>>;

/// A setting under the name it has below its key.
struct NamedSetting
{
    std::wstring name; ///< in the case in which it was first written
    SettingsValue value;
};

/// What to do about a key that is not there.
enum class KeyOpening
{
    Existing, ///< the operation fails
    Create    ///< it is made, with the keys above it
};

enum class SettingsReadState
{
    Found,
    Missing, ///< no such value, or no such key
    Failed   ///< the store could not be read, or what is in it is no setting
};

struct SettingsRead
{
    SettingsReadState state = SettingsReadState::Missing;
    SettingsValue value; ///< of meaning when Found
};

/// Whom a store's file is made for.
enum class SettingsSharing
{
    Private, ///< its owner alone
    Shared   ///< all users of the machine, as far as the file's rights let them
};

/// What the user of a store should know about it.
struct SettingsNotice
{
    enum class Kind
    {
        None,    ///< nothing
        NotKept, ///< nothing can be saved: the settings last until the program ends
        NotRead, ///< and what was saved cannot be read: they start anew
        SetAside ///< the file was damaged and is kept under another name; the settings start anew
    };
    Kind kind = Kind::None;
    std::string file = {};   ///< that cannot be used, or that was kept
    std::string reason = {}; ///< why it cannot be used, for who knows the machine

    [[nodiscard]] bool IsEmpty() const { return kind == Kind::None; }
    /// In plain English, for a terminal; empty: nothing.
    [[nodiscard]] std::string Words() const;
};

/// Why something could not be stored.
enum class StoringFault
{
    Unknown,
    InUse,    ///< another program kept the settings too long
    Full,     ///< no room on the disk
    ReadOnly, ///< the file, or its disk, takes nothing
};

/// The settings below one root: a tree of keys, each with named values. Keys are written with
/// backslashes between the names of the path; empty names do not count, so that "GPS\Com" and
/// "GPS\Com\" are the same key, and the empty path is the root's own key, which is always there.
///
/// Names of keys and values are the same whatever case they are written in. That goes for all
/// letters that the controller's code page has in two cases (Latin, Greek, Cyrillic, the full-width
/// Latin ones and the small Roman numerals) and does not depend on the user's language.
///
/// A write outside a batch is on the disk when the call returns. Several processes may have the
/// same store open. One thread at a time.
class SettingsStore
{
public:
    static constexpr std::size_t kMaxNameLength = 255; ///< of a key's or value's name, characters

    virtual ~SettingsStore() = default;

    /// @return false if the key is not there (or could not be made)
    [[nodiscard]] virtual bool OpenKey(std::wstring_view key, KeyOpening opening) = 0;

    [[nodiscard]] virtual SettingsRead Get(std::wstring_view key, std::wstring_view name) = 0;

    /// Stores a value, whatever type it had before. Text ends at its first NUL.
    /// @return false if nothing was stored
    [[nodiscard]] virtual bool Set(std::wstring_view key, std::wstring_view name,
                                   const SettingsValue& value, KeyOpening opening) = 0;

    /// Removes the key with its values and all keys below it. The root's own key stays.
    /// @return false if nothing was removed
    [[nodiscard]] virtual bool DeleteKey(std::wstring_view key) = 0;

    /// Removes one value; its key stays.
    /// @return false if nothing was removed
    [[nodiscard]] virtual bool DeleteValue(std::wstring_view key, std::wstring_view name) = 0;

    /// Names of the keys directly below @p key, in alphabetical order.
    /// @return nothing if the store could not be read to its end
    [[nodiscard]] virtual std::optional<std::vector<std::wstring>> Keys(std::wstring_view key) = 0;

    /// The values of @p key by name, in alphabetical order; what is no setting is left out.
    /// @return nothing if the store could not be read to its end
    [[nodiscard]] virtual std::optional<std::vector<NamedSetting>>
    Values(std::wstring_view key) = 0;

    /// Whether what is written outlasts the program; false where nothing can be written.
    [[nodiscard]] virtual bool IsKept() const = 0;

    /// Of the last write that failed.
    [[nodiscard]] virtual StoringFault LastFault() const { return StoringFault::Unknown; }

    /// What the user should know about the store; told once, then nothing.
    [[nodiscard]] virtual SettingsNotice TakeNotice() = 0;

protected:
    friend class SettingsBatch;

    /// Collects what follows until Commit() or Rollback().
    /// @return false if a batch is running already, or another process kept the store too long
    [[nodiscard]] virtual bool Begin() = 0;
    [[nodiscard]] virtual bool Commit() = 0;
    virtual void Rollback() = 0;
};

/// Writes that come together: all of them are stored by one Commit(), or none. While a batch is
/// open other processes can read but not write, so nobody should be asked anything meanwhile.
class SettingsBatch
{
public:
    /// @param store  must outlive the batch
    explicit SettingsBatch(SettingsStore& store);
    ~SettingsBatch();
    SettingsBatch(const SettingsBatch&) = delete;
    SettingsBatch& operator=(const SettingsBatch&) = delete;

    /// False if the batch could not be opened; what is written then is stored at once, each by
    /// itself.
    [[nodiscard]] bool IsOpen() const { return m_open; }

    /// @return false if nothing was stored; the batch is closed either way
    [[nodiscard]] bool Commit();

private:
    SettingsStore& m_store;
    bool m_open;
};

/// A name as it is compared: without case, see SettingsStore.
[[nodiscard]] std::wstring FoldCase(std::wstring_view name);

} // namespace fieldcore

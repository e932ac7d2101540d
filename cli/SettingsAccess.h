#pragma once

#include "cli/Command.h"
#include "cli/Failure.h"
#include "cli/Report.h"

#include "core/settings/SettingsRoots.h"
#include "core/settings/SettingsText.h"

#include <optional>
#include <string>
#include <vector>

namespace fieldcore::cli {

/// Which settings, for all commands that have to do with them.
struct SettingsOptions
{
    bool machine = false; ///< the root that all users share, instead of the user's own
    bool whole = false;   ///< keys count from the root, instead of from the library's own key
    bool yes = false;
    std::string key;
    std::optional<std::string> name;
    std::string value;
    std::string type; ///< empty: the one it has
    std::string file; ///< empty: stdout
};

/// The settings of one root for the time of one command.
class SettingsAccess
{
public:
    /// Both outlive the object. What there is to say about the store is said as a warning.
    SettingsAccess(const Context& context, const SettingsOptions& options);

    [[nodiscard]] SettingsStore& Store() { return m_roots.Store(m_root); }
    /// The whole path of the key that the user named.
    [[nodiscard]] const std::wstring& Key() const { return m_key; }
    /// Adds which root and key are meant.
    void AddPlace(Report& report) const;
    /// The value @p name of that key.
    [[nodiscard]] SettingsRead Read(const std::string& name);
    /// That key with all below it; nothing if it cannot be read.
    [[nodiscard]] std::optional<std::vector<SettingsKey>> Tree();
    /// Whether any of it can be read; why not was said as a warning.
    [[nodiscard]] bool CanRead() const { return m_canRead; }
    /// What is stored could not be read.
    [[nodiscard]] Failure NotRead() const;
    /// Nothing can be written, or a write was refused.
    [[nodiscard]] Failure NotWritten() const;

private:
    SettingsRoots& m_roots;
    const RootKey m_root;
    std::wstring m_key;
    bool m_canRead = true;
};

/// "text", "number" or "binary".
[[nodiscard]] std::string TypeName(const SettingsValue& value);

/// A text as it is, also an empty one.
[[nodiscard]] Value Plain(const std::wstring& text);

/// A number for a program too; bytes as hexadecimal digits.
[[nodiscard]] Value ShownSetting(const SettingsValue& value);

/// Adds the keys as a list, with their values and types.
void AddKeys(Report& report, const std::vector<SettingsKey>& keys);

// Saving settings as text and bringing them back.
Ending ExportSettings(const Context& context, const SettingsOptions& options);
Ending ImportSettings(const Context& context, const SettingsOptions& options);

} // namespace fieldcore::cli

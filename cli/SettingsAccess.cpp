#include "cli/SettingsAccess.h"
#include "cli/Wording.h"

#include "core/platform/Utf8.h"
#include "core/resources/StringTable.h"
#include "core/settings/HostReg.h"

#include <cstdint>
#include <utility>
#include <variant>
#include <vector>

namespace fieldcore::cli {

SettingsAccess::SettingsAccess(const Context& context, const SettingsOptions& options)
    : m_roots(Folders(context.world.folders)),
      m_root(options.machine ? RootKey::LocalMachine : RootKey::CurrentUser)
{
    if (!options.whole) {
        m_key = HostBasePath();
    }
    if (!options.key.empty()) {
        m_key += m_key.empty() ? L"" : L"\\";
        m_key += FromUtf8(options.key);
    }
    const SettingsNotice notice = Store().TakeNotice();
    m_canRead = notice.kind != SettingsNotice::Kind::NotRead;
    if (!notice.IsEmpty()) {
        context.output.Message("warning", "", Translated(notice.Words()), Colour::Yellow);
    }
}

void SettingsAccess::AddPlace(Report& report) const
{
    report.Add("root", text::kLabelRoot,
               m_root == RootKey::LocalMachine ? Value::Word("machine", Worded(text::kWordMachine))
                                               : Value::Word("user", Worded(text::kWordUser)));
    report.Add("key", text::kLabelKey,
               Value::Word(ToUtf8(m_key), m_key.empty() ? Worded(text::kWordRoot) : ToUtf8(m_key)));
}

SettingsRead SettingsAccess::Read(const std::string& name)
{
    return m_canRead ? Store().Get(m_key, FromUtf8(name))
                     : SettingsRead{SettingsReadState::Failed, {}};
}

std::optional<std::vector<SettingsKey>> SettingsAccess::Tree()
{
    return m_canRead ? ReadSettingsTree(Store(), m_key) : std::nullopt;
}

std::optional<Failure> SettingsAccess::CannotRead() const
{
    return m_canRead ? std::nullopt : std::optional(NotRead());
}

Failure SettingsAccess::NotRead() const
{
    return FileFailure(Worded(text::kSayNotRead, {m_roots.File(m_root).string()}),
                       "fieldcore-cli doctor");
}

std::optional<Failure> SettingsAccess::CannotWrite()
{
    return Store().IsKept() ? std::nullopt : std::optional(NotWritten());
}

Failure SettingsAccess::NotWritten() const
{
    return FileFailure(Worded(text::kSayNothingStored, {m_roots.File(m_root).string()}),
                       "fieldcore-cli doctor");
}

std::string TypeName(const SettingsValue& value)
{
    return std::holds_alternative<std::wstring>(value)    ? "text"
           : std::holds_alternative<std::uint32_t>(value) ? "number"
                                                          : "binary";
}

Value ShownSetting(const SettingsValue& value)
{
    if (const auto* number = std::get_if<std::uint32_t>(&value)) {
        return Value::Integer(*number);
    }
    const auto* words = std::get_if<std::wstring>(&value);
    std::string text = words != nullptr
                           ? ToUtf8(*words)
                           : FormatSettingBytes(std::get<std::vector<std::uint8_t>>(value));
    std::string shown = text.empty() ? Worded(text::kWordEmpty) : text;
    return Value::Word(std::move(text), std::move(shown));
}

void AddKeys(Report& report, const std::vector<SettingsKey>& keys)
{
    for (const SettingsKey& key : keys) {
        Report entry;
        entry.Add("key", "", Value::Word(ToUtf8(key.path), ToUtf8(key.path)));
        Report::Table table{"values", "", {{"name", ""}, {"type", ""}, {"value", ""}}, {}};
        for (const NamedSetting& setting : key.values) {
            table.rows.push_back({Value::Word(ToUtf8(setting.name), ToUtf8(setting.name)),
                                  Value::Text(TypeName(setting.value)),
                                  ShownSetting(setting.value)});
        }
        entry.AddTable(std::move(table));
        report.AddEntry("keys", std::move(entry));
    }
}

} // namespace fieldcore::cli

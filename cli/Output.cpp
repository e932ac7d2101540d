#include "cli/Output.h"

#include "core/platform/Utf8.h"

#include <array>
#include <cstddef>
#include <ostream>
#include <utility>

#include <nlohmann/json.hpp>

namespace fieldcore::cli {

namespace {

using Json = nlohmann::ordered_json;

Json ToJson(const Value& value)
{
    return std::visit(
        [](const auto& data) -> Json {
            if constexpr (std::is_same_v<std::decay_t<decltype(data)>, std::monostate>) {
                return nullptr;
            } else {
                return data;
            }
        },
        value.GetData());
}

Json ToJson(const Report& report);

Json ToJson(const Report::Table& table)
{
    Json rows = Json::array();
    for (const auto& row : table.rows) {
        Json entry = Json::object();
        for (const Report::Cell& cell : row) {
            entry[cell.key] = ToJson(cell.value);
        }
        rows.push_back(std::move(entry));
    }
    return rows;
}

Json ToJson(const Report& report)
{
    Json json = Json::object();
    for (const Report::Item& item : report.Items()) {
        if (const auto* field = std::get_if<Report::Field>(&item)) {
            json[field->key] = ToJson(field->value);
        } else if (const auto* section = std::get_if<Report::Section>(&item)) {
            json[section->key] = ToJson(*section->content);
        } else if (const auto* table = std::get_if<Report::Table>(&item)) {
            json[table->key] = ToJson(*table);
        } else {
            const auto& list = std::get<Report::List>(item);
            Json& entries = json[list.key] = Json::array();
            for (const auto& entry : list.entries) {
                entries.push_back(ToJson(*entry));
            }
        }
    }
    return json;
}

Json ToJson(const Failure& failure)
{
    const auto text = [](const std::string& words) { return words.empty() ? Json() : Json(words); };
    return {{"exitCode", static_cast<int>(failure.exit)},
            {"code", failure.code},
            {"message", failure.message},
            {"hint", text(failure.hint)},
            {"step", text(failure.step)},
            {"detail", text(failure.detail)}};
}

/// Messages of the library have several lines; each is made printable by itself.
std::string PrintableLines(std::string_view text)
{
    std::string lines;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size());
        lines += Printable(text.substr(0, length)) + "\n";
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return lines;
}

} // namespace

Output::Output(const World& world, std::string command, bool json, bool isDryRun)
    : m_world(world), m_command(std::move(command)), m_json(json), m_isDryRun(isDryRun)
{}

ExitCode Output::Done(const Report& report)
{
    return Done(report, m_json ? "" : report.Words());
}

ExitCode Output::Done(const Report& report, std::string_view words)
{
    TellPosted();
    Progress("");
    if (m_isDryRun) {
        Note(Worded(text::kSayDryRun));
    }
    if (m_json) {
        WriteJson(&report, nullptr);
    } else {
        *m_world.out << words << std::flush;
    }
    return ExitCode::Done;
}

ExitCode Output::Failed(const Failure& failure, const Report* partial)
{
    TellPosted();
    Progress("");
    if (m_json) {
        WriteJson(partial, &failure);
    } else if (partial != nullptr) {
        *m_world.out << partial->Words() << std::flush;
    }
    std::string text = Paint("fieldcore-cli: ", Colour::Red, m_world.errIsTerminal);
    text += PrintableLines(failure.message);
    if (!failure.step.empty()) {
        text += Worded(text::kSayWhile, {failure.step});
    }
    if (!failure.hint.empty()) {
        text += Worded(text::kSayTry) + PrintableLines(failure.hint);
    }
    if (!failure.detail.empty()) {
        text += "  (" + Printable(Translated(failure.detail)) + ")\n";
    }
    *m_world.err << text << std::flush;
    return failure.exit;
}

void Output::Note(const Wording& text)
{
    Progress("");
    *m_world.err << text << "\n" << std::flush;
}

void Output::Message(std::string_view kind, std::string_view caption, std::string_view text,
                     Colour colour)
{
    TellPosted();
    Progress("");
    m_told.push_back({std::string(kind), std::string(caption), std::string(text)});
    if (!caption.empty()) {
        *m_world.err << Paint("[" + Printable(caption) + "]", colour, m_world.errIsTerminal)
                     << "\n";
    }
    *m_world.err << PrintableLines(text) << std::flush;
}

void Output::Post(std::string warning)
{
    const std::scoped_lock lock(m_posting);
    m_posted.push_back(std::move(warning));
}

void Output::TellPosted()
{
    std::vector<std::string> posted;
    {
        const std::scoped_lock lock(m_posting);
        posted.swap(m_posted);
    }
    for (const std::string& warning : posted) {
        Warn(warning);
    }
}

void Output::Progress(const Wording& text)
{
    if (!m_world.errIsTerminal || (text.empty() && !m_progressShown)) {
        return;
    }
    *m_world.err << "\r\x1b[K" << text << std::flush;
    m_progressShown = !text.empty();
}

std::string Output::Painted(std::string_view text, Colour colour) const
{
    return Paint(text, colour, m_world.outIsTerminal);
}

void Output::WriteJson(const Report* report, const Failure* failure)
{
    Json document = {{"schema", kJsonSchema}, {"command", m_command}, {"ok", failure == nullptr}};
    if (m_isDryRun) {
        document["dryRun"] = true;
    }
    document["result"] = report != nullptr ? ToJson(*report) : Json();
    document["error"] = failure != nullptr ? ToJson(*failure) : Json();
    Json messages = Json::array();
    for (const Told& told : m_told) {
        messages.push_back({{"kind", told.kind}, {"caption", told.caption}, {"text", told.text}});
    }
    document["messages"] = std::move(messages);
    m_told.clear();
    // A byte that is no UTF-8, from a file name for example, must not cost the whole document.
    *m_world.out << document.dump(-1, ' ', false, Json::error_handler_t::replace) << "\n"
                 << std::flush;
}

std::string Output::Paint(std::string_view text, Colour colour, bool terminal) const
{
    const bool wanted = terminal && colour != Colour::Plain && !m_world.variable("NO_COLOR") &&
                        m_world.variable("TERM") != "dumb";
    // In the order of Colour.
    constexpr std::array kEscapes{"", "\x1b[32m", "\x1b[33m", "\x1b[31m"};
    return wanted ? kEscapes[static_cast<std::size_t>(colour)] + std::string(text) + "\x1b[0m"
                  : std::string(text);
}

} // namespace fieldcore::cli

#include "cli/Complaint.h"
#include "cli/Wording.h"

#include "core/resources/StringTable.h"

#include <algorithm>
#include <cstddef>

#include <CLI/CLI.hpp>

namespace fieldcore::cli {

namespace {

/// How many letters were left out, added, wrong, or swapped with the next one.
std::size_t Mistypings(const std::string& typed, const std::string& meant)
{
    std::vector<std::vector<std::size_t>> costs(typed.size() + 1,
                                                std::vector<std::size_t>(meant.size() + 1));
    for (std::size_t i = 0; i <= typed.size(); ++i) {
        for (std::size_t j = 0; j <= meant.size(); ++j) {
            std::size_t& cost = costs[i][j] = std::max(i, j);
            if (i == 0 || j == 0) {
                continue;
            }
            const std::size_t wrong = typed[i - 1] == meant[j - 1] ? 0 : 1;
            cost =
                std::min({costs[i - 1][j] + 1, costs[i][j - 1] + 1, costs[i - 1][j - 1] + wrong});
            if (i > 1 && j > 1 && typed[i - 1] == meant[j - 2] && typed[i - 2] == meant[j - 1]) {
                cost = std::min(cost, costs[i - 2][j - 2] + 1);
            }
        }
    }
    return costs[typed.size()][meant.size()];
}

/// "Did you mean ...?"; empty if nothing is near enough.
std::string Guess(const std::string& typed, const std::vector<std::string>& known)
{
    constexpr std::size_t kLongest = 30; // of what could be meant
    if (typed.size() > kLongest) {
        return "";
    }
    std::string nearest;
    std::size_t fewest = std::max<std::size_t>(1, typed.size() / 3) + 1;
    for (const std::string& candidate : known) {
        const std::size_t mistypings = Mistypings(typed, candidate);
        if (mistypings < fewest) {
            fewest = mistypings;
            nearest = candidate;
        }
    }
    return nearest.empty() ? nearest : Worded(text::kSayDidYouMean, {nearest});
}

std::vector<std::string> NamesBelow(const CLI::App& parser)
{
    std::vector<std::string> names;
    for (const CLI::App* child : parser.get_subcommands([](const CLI::App*) { return true; })) {
        names.push_back(child->get_name());
    }
    return names;
}

std::string HelpOf(const CLI::App& parser)
{
    const std::string name = CommandName(parser);
    return "fieldcore-cli " + name + (name.empty() ? "" : " ") + "--help";
}

/// The option that @p complaint of the parser begins or ends with.
const CLI::Option* OptionIn(const CLI::App& parser, const std::string& complaint)
{
    for (const CLI::App* app = &parser; app != nullptr; app = app->get_parent()) {
        for (const CLI::Option* option : app->get_options()) {
            const std::string name = option->get_name();
            const std::size_t at = complaint.find(name);
            const std::string_view before = std::string_view(complaint).substr(0, at);
            const char behind = at == std::string::npos ? '?' : (complaint + ':')[at + name.size()];
            if ((behind == ':' || behind == ' ') &&
                (before.empty() || before == "Could not convert: ")) {
                return option;
            }
        }
    }
    return nullptr;
}

/// "--count N: how many, 1 to 10000 (1)"
std::string Described(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    return option.get_name() + (type.empty() ? "" : " " + type) + ": " + option.get_description();
}

Failure NotExpected(const CLI::App& parser)
{
    const CLI::App* program = &parser;
    while (program->get_parent() != nullptr) {
        program = program->get_parent();
    }
    const std::vector<std::string> left = program->remaining(true);
    const std::string word = left.empty() ? "" : left.front();
    const std::string name = CommandName(parser);
    if (!name.empty() && parser.get_option_no_throw(word) != nullptr) {
        return UsageFailure({text::kSayBehindCommand, {word}},
                            "fieldcore-cli " + name + " " + word + " ...");
    }
    std::vector<std::string> known = NamesBelow(parser);
    for (const CLI::App* app = &parser; app != nullptr; app = app->get_parent()) {
        for (const CLI::Option* option : app->get_options()) {
            known.push_back(option->get_name());
        }
    }
    return UsageFailure({text::kSayNotTaken, {name.empty() ? "fieldcore-cli" : name, word}},
                        Guess(word.substr(0, word.find('=')), known) + HelpOf(parser));
}

Failure BadValue(const CLI::App& parser, const CLI::Option& option)
{
    const std::string value = Joined(option.results());
    return UsageFailure(
        {value.empty() ? text::kSayNeedsValue : text::kSayCannotBe, {option.get_name(), value}},
        Described(option) + "\n         " + HelpOf(parser));
}

Failure Missing(const CLI::App& parser, const std::string& complaint)
{
    if (const CLI::Option* const option = OptionIn(parser, complaint)) {
        return UsageFailure({text::kSayMissing, {option->get_name()}},
                            Described(*option) + "\n         " + HelpOf(parser));
    }
    return UsageFailure({text::kSayNeedsOneOf, {CommandName(parser), Joined(NamesBelow(parser))}},
                        HelpOf(parser));
}

/// "--yes excludes --dry-run" in our words.
Failure Related(const CLI::App& parser, const std::string& complaint, std::string_view verb, int id)
{
    const std::size_t at = complaint.find(verb);
    Failure failure = UsageFailure(
        at == std::string::npos
            ? Worded(text::kSayNotUnderstood)
            : Worded(id, {complaint.substr(0, at), complaint.substr(at + verb.size())}),
        HelpOf(parser));
    failure.detail = at == std::string::npos ? complaint : "";
    return failure;
}

} // namespace

std::string CommandName(const CLI::App& parser)
{
    std::string name;
    for (const CLI::App* app = &parser; app->get_parent() != nullptr; app = app->get_parent()) {
        name.insert(0, app->get_name() + (name.empty() ? "" : " "));
    }
    return name;
}

std::optional<Failure> UnknownCommand(const CLI::App& program,
                                      const std::vector<std::string>& arguments)
{
    const CLI::App* parser = &program;
    for (const std::string& word : arguments) {
        if (word.starts_with('-')) {
            if (parser->get_option_no_throw(word) == nullptr) {
                break; // it may have a value
            }
            continue;
        }
        const std::vector<std::string> names = NamesBelow(*parser);
        if (std::find(names.begin(), names.end(), word) == names.end()) {
            return UsageFailure({text::kSayUnknownCommand,
                                 {CommandName(*parser) + (parser == &program ? "" : " ") + word}},
                                Guess(word, names) + HelpOf(*parser));
        }
        parser = parser->get_subcommand(word);
        if (parser->get_require_subcommand_min() == 0) {
            break; // what follows is the parser's to judge
        }
    }
    return std::nullopt;
}

Failure Complaint(const CLI::App& parser, const CLI::ParseError& error)
{
    const std::string complaint = error.what();
    const auto kind = static_cast<CLI::ExitCodes>(error.get_exit_code());
    if (kind == CLI::ExitCodes::ExtrasError) {
        return NotExpected(parser);
    }
    if (kind == CLI::ExitCodes::RequiredError) {
        return Missing(parser, complaint);
    }
    const CLI::Option* const option = OptionIn(parser, complaint);
    if (kind == CLI::ExitCodes::RequiresError) {
        return Related(parser, complaint, " requires ", text::kSayGoesWith);
    }
    return kind == CLI::ExitCodes::ExcludesError || option == nullptr
               ? Related(parser, complaint, " excludes ", text::kSayNotWith)
               : BadValue(parser, *option);
}

} // namespace fieldcore::cli

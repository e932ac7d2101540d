#pragma once

#include "cli/Failure.h"

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace fieldcore::cli {

/// The name of the command as it was typed: "sim run"; empty for the program itself.
[[nodiscard]] std::string CommandName(const CLI::App& parser);

/// @return what is wrong if the words that should name a command name none
[[nodiscard]] std::optional<Failure> UnknownCommand(const CLI::App& program,
                                                    const std::vector<std::string>& arguments);

/// What is wrong with a command line, and what would be right: the range of an option stands in
/// its description.
/// @param parser  of the command, after it has failed
[[nodiscard]] Failure Complaint(const CLI::App& parser, const CLI::ParseError& error);

} // namespace fieldcore::cli

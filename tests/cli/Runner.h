#pragma once

// What is included here the tests of this folder do not include again.

#include "cli/World.h"
#include "tests/core/platform/TemporaryFolder.h"

#include <filesystem>
#include <initializer_list>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace fieldcore::cli::test {

/// What a run of the program came to.
struct Outcome
{
    int code = -1;
    std::string out;
    std::string err;

    /// stdout as the one JSON document that it must be; a failure of the test if it is not.
    [[nodiscard]] nlohmann::json Json() const;
};

/// How a command line has to end.
struct Told
{
    std::string arguments;
    int code;
    std::string_view told = ""; ///< part of what stands on stderr; empty: nothing if the code is 0
    std::string place = "";     ///< JSON pointer into the document; empty: none is asked for
    nlohmann::json value = nullptr; ///< what the document has at @c place
};

/// @p command on a simulated receiver, whose time runs fast.
[[nodiscard]] std::string OnSim(const std::string& command, const std::string& scenario = "");

/// A process and a machine of the test's own, in which command lines are run: empty folders, no
/// serial ports, no terminal, no Ctrl-C, until the test says otherwise.
class Runner
{
public:
    Runner();

    /// @param arguments  separated by blanks, but for what stands 'between quotes'; "@/" begins a
    /// path below the runner's folder
    [[nodiscard]] Outcome Run(const std::string& arguments);
    [[nodiscard]] Outcome Run(std::vector<std::string> arguments);

    /// The result of a command that succeeds, by its JSON document.
    [[nodiscard]] nlohmann::json Result(const std::string& arguments);
    /// Runs one after the other. What fails has no result on stdout.
    void Expect(std::initializer_list<Told> rows);

    /// A command of the shell, which finds the real program.
    [[nodiscard]] Outcome RunInShell(const std::string& command) const;
    /// The same in the real program.
    [[nodiscard]] Outcome RunProgram(const std::string& arguments) const;

    [[nodiscard]] const TemporaryFolder& Folder() const { return m_folder; }
    [[nodiscard]] std::string Path(const std::string& name) const;
    /// The path of a new scenario: the shipped healthy receiver's numbers with @p lines in
    /// addition.
    [[nodiscard]] std::string Scenario(const std::string& lines);
    /// Typed on a terminal from now on.
    void Type(const std::string& answers);

    World world;
    std::map<std::string, std::string> variables;
    std::string input; ///< what stands on stdin

private:
    [[nodiscard]] std::string Expanded(const std::string& text) const;

    TemporaryFolder m_folder;
    int m_scenarios = 0;
};

} // namespace fieldcore::cli::test

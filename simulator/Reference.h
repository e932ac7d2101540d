#pragma once

#include <CLI/CLI.hpp>

#include <initializer_list>
#include <ostream>
#include <sstream>
#include <string>

namespace fieldcore {

/// Prints what a program understands as a table, a line each with tabs between: "program", its
/// name and purpose; "example" and the line; "command", its words and purpose; "option", the words
/// of its command, its names, what it takes, and its purpose. packaging/reference.awk makes the
/// manual page and the completion of shells of it.
class ReferencePrinter
{
public:
    explicit ReferencePrinter(std::ostream& out) : m_out(out) {}

    /// @param examples  lines of them
    void Print(const CLI::App& program, const std::string& examples)
    {
        Line({"program", program.get_name(), program.get_description()});
        std::istringstream lines(examples);
        for (std::string line; std::getline(lines, line);) {
            Line({"example", line});
        }
        Below(program, "");
    }

private:
    void Below(const CLI::App& app, const std::string& words)
    {
        for (const CLI::Option* option : app.get_options()) {
            if (!option->get_group().empty()) {
                const bool takes = option->get_items_expected_max() > 0;
                const bool isNamed = option->nonpositional();
                Line({"option", words, isNamed ? option->get_name(false, true) : "",
                      !isNamed ? option->get_name(true)
                      : takes  ? option->get_type_name()
                               : "",
                      option->get_description()});
            }
        }
        for (const CLI::App* child : app.get_subcommands({})) {
            const std::string path = words + (words.empty() ? "" : " ") + child->get_name();
            if (!child->get_group().empty()) {
                Line({"command", path, child->get_description()});
                Below(*child, path);
            }
        }
    }

    void Line(std::initializer_list<std::string> cells)
    {
        const char* between = "";
        for (const std::string& cell : cells) {
            m_out << between;
            between = "\t";
            for (const char c : cell) {
                m_out << (c == '\n' || c == '\t' ? ' ' : c);
            }
        }
        m_out << '\n';
    }

    std::ostream& m_out;
};

} // namespace fieldcore

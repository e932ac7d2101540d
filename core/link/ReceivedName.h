#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace fieldcore {

/// Why a file of a receiver may not be kept under its name.
enum class NameFault
{
    None,
    NotPlain,   ///< no name of a file in a folder here, or on a card: see IsPlainFileName()
    Hidden,     ///< begins with a dot, as the files do that programs obey and lists do not show
    Obeyed,     ///< systems do what a file of this name says: autorun.inf, desktop.ini
    Unfinished, ///< what has not arrived as a whole is called so: ends in .part or .part.info
    Unaskable,  ///< the requests that name a file cannot say it, see IsReceiverFileName()
    Taken,      ///< the folder or the fetch has another that a card takes for the same
};

/// What is said of a fault, each thing once.
struct NameFaultMeaning
{
    NameFault fault;
    const char* words; ///< behind a name, in the terminal: "is no name for a file here"
    int textId;        ///< for the user, a sentence of the string table
};
/// Any thread, as the next three.
[[nodiscard]] const NameFaultMeaning& MeaningOf(NameFault fault);

/// Whether the requests that name a file of the receiver can send @p name.
[[nodiscard]] bool IsReceiverFileName(std::wstring_view name);
/// The rule for names of files that a receiver offers, as far as the name alone says. Never Taken.
[[nodiscard]] NameFault CheckReceivedName(std::wstring_view name);
/// The whole rule for one file that is to be kept in @p folder. Taken if something there has a name
/// that differs from it only in capitals, or is what the folder finds under it; not if something
/// has exactly this name. A folder that cannot be read has nothing in it.
[[nodiscard]] NameFault CheckReceivedName(std::wstring_view name,
                                          const std::filesystem::path& folder);

/// The names of the files of one fetch, in their order. One thread.
class ReceivedNames
{
public:
    /// The whole rule, for which the files that were added before it are there, too.
    /// @return None: it is added
    [[nodiscard]] NameFault Add(std::wstring_view name, const std::filesystem::path& folder);

private:
    std::set<std::pair<std::filesystem::path, std::wstring>> m_names; // folded
};

} // namespace fieldcore

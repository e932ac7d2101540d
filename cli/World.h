#pragma once

#include "core/platform/SystemRoots.h"
#include "core/settings/Environment.h"

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace fieldcore::cli {

/// What the command line uses of the process and the machine around it. A test makes one up. The
/// settings of its environment are those of the command that runs, see #folders.
struct World : Environment
{
    // Streams; they outlive the world.
    std::ostream* out = nullptr;
    std::ostream* err = nullptr;
    std::istream* in = nullptr;
    bool outIsTerminal = false;
    bool errIsTerminal = false;
    bool inIsTerminal = false;
    /// Whether whoever read the results has gone, as "head" does.
    std::function<bool()> outIsClosed = [] { return false; };

    /// An environment variable; nothing if it is not set or empty.
    std::function<std::optional<std::string>(const std::string& name)> variable;
    /// The signal with which the user asked for an end; 0 if there was none.
    std::function<int()> stopSignal;

    /// Sets the machine's date and time. @return empty, or why it was not set. Null: nothing can
    /// be set here.
    std::function<std::string(Clock::UtcTime)> setClock;

    SystemRoots system;    ///< where devices are looked for
    FolderSources folders; ///< of the settings and of all other files

    /// Families of the fonts that have Japanese, one a line; nothing if they cannot be listed.
    std::function<std::optional<std::string>()> listJapaneseFonts;
    std::vector<std::filesystem::path> fontFolders; ///< where fonts are looked for otherwise

    struct SerialGroup
    {
        std::string name; ///< empty: this machine has none
        bool isMember = false;
        bool isListed = false; ///< the user database has it, this session may not yet
    };
    /// The group whose members may open serial ports, and whether the user is one.
    std::function<SerialGroup()> serialGroup;

    [[nodiscard]] bool StopRequested() const { return stopSignal() != 0; }
    /// There is somebody who can answer a question.
    [[nodiscard]] bool CanAsk() const { return inIsTerminal && errIsTerminal; }

    /// Whether reading a stream has failed, which is not its end.
    [[nodiscard]] static bool HasFailed(const std::istream& stream);

    /// The process that asks. Ctrl-C and a termination request are noted from now on instead of
    /// ending it at once.
    static World OfThisProcess();
};

} // namespace fieldcore::cli

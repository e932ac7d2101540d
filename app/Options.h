#pragma once

#include "core/resources/StringTable.h"
#include "ui/controls/Theme.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace fieldcore {

/// What the program was started with.
struct AppOptions
{
    QString port;                     ///< empty: the one of the settings
    std::optional<Theme::Kind> theme; ///< nothing: the one of the settings
    Language language = Language::Japanese;
    double speed = 1.0;     ///< of the simulator's time and the program's, 0.1 to 1000
    QString screenshots;    ///< folder; empty: an ordinary session
    bool isQ77 = false;     ///< the layouts of the taller controller, whatever is set
    bool firstPage = false; ///< end when the first page has been painted: for measuring
    QString answer; ///< what is asked for that needs no screen, such as the help; empty: nothing
    QString fault;  ///< what is wrong with the command line; empty: nothing
    QString hint;   ///< what would be right; may be empty
};

/// Everything is said in the language that is found first, which is set from then on.
/// @param arguments  the program's name first
[[nodiscard]] AppOptions ParseArguments(const QStringList& arguments);

} // namespace fieldcore

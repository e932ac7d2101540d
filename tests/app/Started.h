#pragma once

#include "app/Controller.h"
#include "tests/support/StartReceiver.h"
#include "tests/ui/controls/OnScreen.h"

#include <QTemporaryDir>

#include <string>

namespace fieldcore::testing {

/// Settings and folders of the test's own.
struct OwnFolders
{
    OwnFolders()
    {
        qputenv("FIELDCORE_HOME", m_folder.filePath(QStringLiteral("home")).toUtf8());
        qputenv("XDG_CONFIG_HOME", m_folder.filePath(QStringLiteral("config")).toUtf8());
        qunsetenv("FIELDCORE_MACHINE_STORE");
    }

    QTemporaryDir m_folder;
};

[[nodiscard]] inline AppOptions OptionsFor(const QString& port, double speed = 5.0)
{
    AppOptions options;
    options.port = port;
    options.speed = speed;
    return options;
}

/// At which a busy machine is not taken for a silent receiver.
inline constexpr double kRealSpeed = 1.0;

/// The controller as its program starts it.
struct Started : Controller
{
    explicit Started(const AppOptions& options) : Controller(options) { Begin(); }
    explicit Started(const QString& port, double speed = 5.0) : Started(OptionsFor(port, speed)) {}

    /// On a busy machine a receiver whose time runs so fast may seem silent: it is tried again.
    [[nodiscard]] bool IsConnectedQuietly()
    {
        constexpr int kAttempts = 50;
        std::wstring fault;
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            if (ConnectQuietly(fault)) {
                return true;
            }
        }
        return false;
    }
};

} // namespace fieldcore::testing

#pragma once

#include "app/Controller.h"
#include "tests/support/StartReceiver.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>
#include <string>
#include <utility>

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

/// Does something again and again while such a page is in front.
template <typename Page = QWidget>
class Hand
{
public:
    explicit Hand(std::function<void(Page& page)> act, int everyMs = 10)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [act = std::move(act)] {
            if (auto* const page = dynamic_cast<Page*>(QApplication::activeModalWidget())) {
                act(*page);
            }
        });
        m_timer.start(everyMs);
    }

private:
    QTimer m_timer;
};

} // namespace fieldcore::testing

#include "app/Controller.h"
#include "app/Options.h"
#include "app/ScreenPictures.h"
#include "app/Session.h"
#include "core/platform/Version.h"
#include "core/resources/StringTable.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

#include <QApplication>
#include <QSocketNotifier>
#include <QTemporaryDir>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace fieldcore;

constexpr int kUsage = 2; // as of the command line's programs

/// What is asked for that needs no screen.
/// @return an exit code; nothing if a screen is wanted
std::optional<int> AnswerWithoutScreen(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    if (argc == 2 && std::string_view(argv[1]) == "--print-reference") {
        std::fputs(qPrintable(ParseArguments({QStringLiteral("fieldcore")}).reference), stdout);
        return 0;
    }
    const AppOptions options = ParseArguments(QCoreApplication::arguments());
    if (options.showHelp) {
        std::fputs(qPrintable(options.help), stdout);
        return 0;
    }
    if (options.showVersion) {
        std::printf("fieldcore %s\n", Version());
        return 0;
    }
    return std::nullopt;
}

/// While the application is made: a message that ends the program means that there is no screen.
void TellOfNoDisplay(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message)
{
    if (type != QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(message));
        return;
    }
    std::fputs(qPrintable(UiText(text::kAppNoDisplay)), stderr);
    std::_Exit(kUsage);
}

std::unique_ptr<QApplication> MakeApplication(int& argc, char** argv)
{
    TouchStyle::UseWholePixels();
    const QtMessageHandler before = qInstallMessageHandler(TellOfNoDisplay);
    auto application = std::make_unique<QApplication>(argc, argv);
    qInstallMessageHandler(before);
    return application;
}

std::array<int, 2> stopPipe{-1, -1};
volatile std::sig_atomic_t stopNumber = 0;

extern "C" void NoteStop(int number)
{
    const char byte = 0;
    stopNumber = number;
    static_cast<void>(!write(stopPipe[1], &byte, 1)); // full: it is known already
}

/// Ends the program in good order when somebody asks for its end, so that nothing of it is left
/// behind. One for the time of the event loop, on its thread.
class StopSignals
{
public:
    StopSignals()
    {
        if (pipe2(stopPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
            return;
        }
        m_notifier = std::make_unique<QSocketNotifier>(stopPipe[0], QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [] {
            std::array<char, 16> bytes{};
            static_cast<void>(!read(stopPipe[0], bytes.data(), bytes.size()));
            QCoreApplication::exit(128 + stopNumber);
        });
        for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
            std::signal(number, NoteStop);
        }
    }
    [[nodiscard]] static bool IsStopped() { return stopNumber != 0; }

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};

/// Settings and folders of the program's own for as long as it lives, in place of the user's.
class OwnFolders
{
public:
    OwnFolders()
    {
        qputenv("FIELDCORE_HOME", m_folder.filePath(QStringLiteral("home")).toUtf8());
        qputenv("XDG_CONFIG_HOME", m_folder.filePath(QStringLiteral("config")).toUtf8());
        qunsetenv("FIELDCORE_MACHINE_STORE");
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

int main(int argc, char** argv)
{
    if (const std::optional<int> code = AnswerWithoutScreen(argc, argv)) {
        return *code;
    }
    const std::unique_ptr<QApplication> application = MakeApplication(argc, argv);
    const AppOptions options = ParseArguments(QApplication::arguments());
    if (!options.fault.isEmpty()) {
        std::fprintf(stderr, "fieldcore: %s\n%s%s%sfieldcore --help\n", qPrintable(options.fault),
                     qPrintable(UiText(text::kSayTry)), qPrintable(options.hint),
                     options.hint.isEmpty() ? "" : "\n         ");
        return kUsage;
    }
    TouchStyle::Install();
    if (!TouchStyle::CanDrawJapanese()) {
        SetLanguage(Language::English); // or nothing could be read
    }
    const StopSignals signals;
    const bool isDrawing = !options.screenshots.isEmpty();
    const auto ownFolders = isDrawing ? std::make_unique<OwnFolders>() : nullptr;
    Controller controller(options);
    controller.Begin();
    Session session(controller);
    if (isDrawing) {
        return WritePictures(controller, session.Window(), options.screenshots,
                             &StopSignals::IsStopped);
    }
    session.Begin();
    if (options.firstPage) {
        QApplication::processEvents(); // which paints the window
        return 0;
    }
    return QApplication::exec();
}

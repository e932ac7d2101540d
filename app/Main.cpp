#include "app/Controller.h"
#include "app/Options.h"
#include "app/ScreenPictures.h"
#include "app/Session.h"
#include "core/resources/StringTable.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

#include <QApplication>
#include <QTemporaryDir>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

namespace {

using namespace fieldcore;

constexpr int kUsage = 2; // as of the command line's programs

/// What is asked for that needs no screen; empty: one is wanted.
QString AnswerWithoutScreen(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return ParseArguments(QCoreApplication::arguments()).answer;
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

volatile std::sig_atomic_t stopNumber = 0;

extern "C" void NoteStop(int number)
{
    stopNumber = number;
}

/// Ends the program in good order when somebody asks for its end, so that nothing of it is left
/// behind.
void EndWhenAsked(const Controller& controller)
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        std::signal(number, NoteStop);
    }
    QObject::connect(&controller, &Controller::Changed, [] { // four times a second
        if (stopNumber != 0) {
            QCoreApplication::exit(128 + stopNumber);
        }
    });
}

} // namespace

int main(int argc, char** argv)
{
    if (const QString answer = AnswerWithoutScreen(argc, argv); !answer.isEmpty()) {
        std::fputs(qPrintable(answer), stdout);
        return 0;
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
    const bool isDrawing = !options.screenshots.isEmpty();
    std::optional<QTemporaryDir> own; // settings and folders, in place of the user's
    if (isDrawing) {
        own.emplace();
        qputenv("FIELDCORE_HOME", own->filePath(QStringLiteral("home")).toUtf8());
        qputenv("XDG_CONFIG_HOME", own->filePath(QStringLiteral("config")).toUtf8());
        qunsetenv("FIELDCORE_MACHINE_STORE");
    }
    Controller controller(options);
    EndWhenAsked(controller);
    controller.Begin();
    Session session(controller);
    if (isDrawing) {
        return WritePictures(controller, session.Window(), options.screenshots,
                             [] { return stopNumber != 0; });
    }
    session.Begin();
    if (options.firstPage) {
        QApplication::processEvents(); // which paints the window
        return 0;
    }
    return QApplication::exec();
}

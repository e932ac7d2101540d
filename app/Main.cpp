#include "app/Controller.h"
#include "app/Options.h"
#include "app/ScreenPictures.h"
#include "app/Session.h"
#include "ui/controls/TouchStyle.h"

#include <QApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    using namespace fieldcore;
    const QApplication application(argc, argv);
    const AppOptions options = ParseOptions(QApplication::arguments());
    constexpr int kUsage = 2; // as of the command line's programs
    if (options.showHelp) {
        std::fputs(qPrintable(options.help), stdout);
        return 0;
    }
    if (options.showVersion) {
        std::printf("fieldcore %s\n", FIELDCORE_VERSION);
        return 0;
    }
    if (!options.fault.isEmpty()) {
        std::fprintf(stderr, "fieldcore: %s\n  try:   fieldcore --help\n",
                     qPrintable(options.fault));
        return kUsage;
    }
    TouchStyle::Install();
    Controller controller(options);
    controller.Begin();
    Session session(controller);
    if (!options.screenshots.isEmpty()) {
        return ScreenPictures(controller, session.Window()).Write(options.screenshots);
    }
    session.Begin();
    if (options.firstPage) {
        QApplication::processEvents(); // which paints the window
        return 0;
    }
    return QApplication::exec();
}

// How does a Qt program show the plan and the bubble, in its theme and with its messages?
// ./example-QtScreens PORT; with --once it ends when both have been seen, with --reset it offers to
// return the receiver to its factory settings instead.

#include <fieldcore/core/link/Command.h>
#include <fieldcore/core/planning/AlmanacStore.h>
#include <fieldcore/core/platform/Folders.h>
#include <fieldcore/simulator/UseSimulator.h>
#include <fieldcore/ui/controls/QtHost.h>
#include <fieldcore/ui/controls/Theme.h>
#include <fieldcore/ui/controls/TouchStyle.h>
#include <fieldcore/ui/link/RecvForceInitDlg.h>
#include <fieldcore/ui/planning/SurveyPlan.h>
#include <fieldcore/ui/tilt/TiltSensorDlg.h>

#include <QApplication>
#include <QTimer>

#include <cstdio>
#include <string_view>

int main(int argc, char** argv)
{
    fieldcore::UseSimulator();
    fieldcore::TouchStyle::UseWholePixels(); // before the application
    const QApplication application(argc, argv);
    fieldcore::TouchStyle::Install();
    fieldcore::Theme::Use(fieldcore::Theme::Kind::Dark);
    fieldcore::QtHost host; // messages, wait cursor, repainting while the library waits
    fieldcore::SetDefaultHost(&host);
    const std::string_view option = argc > 2 ? argv[2] : "";

    fieldcore::CCommand receiver;
    if (receiver.OpenPort(argc > 1 ? argv[1] : "sim:tilted") == 0) {
        std::fprintf(stderr, "%s\n", receiver.LastError().c_str());
        return 1;
    }
    if (option == "--reset") { // asks twice, and closes the port
        return fieldcore::RecvForceInitDlg(receiver).DoModal() == fieldcore::CRecvForceInit::Done
                   ? 0
                   : 1;
    }
    // The plan asks for an almanac where there is none: a nominal one will do.
    fieldcore::AlmanacStore(fieldcore::Folders().Program()).PutNominal(receiver.GetClock().Utc());
    {
        fieldcore::CSurveyPlan plan(&receiver, 0);
        plan.resize(480, 640);
        plan.show();
        fieldcore::TiltSensorDlg::StartUp(&receiver, &plan, &plan);
        if (option == "--once") {
            QTimer::singleShot(0, &application, [] { QApplication::exit(0); });
        }
        QApplication::exec();
        std::printf("shown: %d\n", int{plan.isVisible()} + fieldcore::TiltSensorDlg::IsShow());
        fieldcore::TiltSensorDlg::ShutDown();
    }
    receiver.ClosePort();
    fieldcore::SetDefaultHost(nullptr);
}

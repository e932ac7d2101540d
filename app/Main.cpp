#include "app/MainWindow.h"
#include "app/Options.h"
#include "ui/controls/TouchStyle.h"

#include <QApplication>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    fieldcore::TouchStyle::Install();
    fieldcore::Theme::Use(fieldcore::Theme::Kind::Daylight);
    fieldcore::MainWindow window;
    window.resize(480, 640);
    fieldcore::ReceiverState state;
    state.link = fieldcore::ReceiverState::Link::Connected;
    state.receiver = QStringLiteral("Corvane VX1");
    state.simulator = QStringLiteral("lark");
    state.receivedUtc = QDateTime::currentDateTimeUtc();
    state.utc = state.receivedUtc;
    state.pdop = 1.8;
    state.batteryPercent = 85;
    window.ShowState(state, QDateTime::currentDateTimeUtc());
    window.show();
    window.grab().save(QStringLiteral("/tmp/app1.png"));
    window.resize(1280, 800);
    fieldcore::Theme::Use(fieldcore::Theme::Kind::Dark);
    window.grab().save(QStringLiteral("/tmp/app2.png"));
    return 0;
}

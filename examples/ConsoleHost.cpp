// How does a program without windows show the library's messages, and let its user cancel?
// It brings a host. Here Enter agrees, n refuses, and Ctrl-C ends what runs.

#include <fieldcore/core/host/Host.h>
#include <fieldcore/core/link/Command.h>
#include <fieldcore/core/link/Connect.h>
#include <fieldcore/core/platform/Utf8.h>
#include <fieldcore/simulator/UseSimulator.h>

#include <csignal>
#include <iostream>
#include <string>

volatile std::sig_atomic_t wantsEnd = 0;

class ConsoleHost : public fieldcore::Host
{
public:
    fieldcore::BoxAnswer ShowMessage(std::wstring_view text, std::wstring_view caption,
                                     fieldcore::BoxStyle style) override
    {
        const bool isFailure = style.icon == fieldcore::BoxIcon::Stop;
        std::cout << (isFailure ? "[stop] " : "") << fieldcore::ToUtf8(caption) << "\n"
                  << fieldcore::ToUtf8(text) << "\n";
        if (style.buttons == fieldcore::BoxButtons::Ok) {
            return fieldcore::BoxAnswer::Ok;
        }
        std::cout << "? " << std::flush;
        std::string line;
        const bool agrees = !std::getline(std::cin, line) || line != "n";
        return agrees ? fieldcore::AgreeingAnswer(style.buttons)
                      : fieldcore::HarmlessAnswer(style.buttons);
    }
    bool Breathe() override { return wantsEnd == 0; } // about every 50 ms of a wait
};

int main(int argc, char** argv)
{
    std::signal(SIGINT, [](int) { wantsEnd = 1; });
    fieldcore::UseSimulator();
    ConsoleHost host;
    fieldcore::SetDefaultHost(&host);
    fieldcore::CCommand receiver;
    fieldcore::ConnectTarget target;
    target.devicePath = argc > 1 ? argv[1] : "sim:";
    fieldcore::CConnect connect(receiver, 0, target);
    connect.SupportAllTypes();
    const bool isConnected = connect.DoModal() == fieldcore::CConnect::Connected;
    std::cout << (isConnected ? "connected\n" : "not connected\n");
    fieldcore::SetDefaultHost(nullptr);
}

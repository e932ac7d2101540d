// What does a host with screens of its own need of a receiver? The library's rules without the
// library's screens: which time and PDOP may be trusted, the battery's bar, what the receiver can
// do, and the signals and the antenna of a survey.

#include <fieldcore/core/equipment/AntennaCatalogue.h>
#include <fieldcore/core/equipment/AntennaSettings.h>
#include <fieldcore/core/equipment/BattLevel.h>
#include <fieldcore/core/equipment/GPSError.h>
#include <fieldcore/core/host/Host.h>
#include <fieldcore/core/link/Command.h>
#include <fieldcore/core/link/RecvInfo.h>
#include <fieldcore/core/platform/Folders.h>
#include <fieldcore/core/platform/Utf8.h>
#include <fieldcore/core/tilt/GPSPrm.h>
#include <fieldcore/simulator/UseSimulator.h>

#include <filesystem>
#include <iostream>

/// Stands for the bar of a window.
struct Bar : fieldcore::ProgressBar
{
    void SetRange(int, int last) override { end = last; }
    void SetPos(int to) override { position = to; }

    int end = 0;
    int position = 0;
};

int main(int argc, char** argv)
{
    using fieldcore::ToUtf8;
    fieldcore::UseSimulator();
    fieldcore::CCommand receiver;
    fieldcore::CRecvInfo info;
    if (receiver.OpenPort(argc > 1 ? argv[1] : "sim:") == 0 || info.GetOptionData(receiver) == 0) {
        std::cerr << receiver.LastError() << "\n";
        return 1;
    }
    std::cout << ToUtf8(info.GetRecvType()) << ": port " << info.GetCurrentPortID() << " of "
              << info.GetPortsAvailable() << ", memory " << info.GetRecvMemory()
              << ", logs at up to " << info.GetMaxLoggingRate() << ", two frequencies "
              << info.GetL1L2Option() << ", tilt " << info.GetTilt() << "\n";

    // Once per second, say. Before the time is accepted there is a time without seconds, and no
    // PDOP.
    fieldcore::CGPSError status(&receiver);
    status.CheckTimeSynchro();
    if (receiver.RequestPositionStatus(*status.GetRETPOS3()) == 1) {
        status.CheckTimeSynchro();
        std::cout << "JST " << ToUtf8(status.GetJSTTime(1)) << ", PDOP " << ToUtf8(status.GetPDOP())
                  << ", synchronised " << status.GetTimeSynchro() << "\n";
    }

    Bar bar;
    fieldcore::CBattLevel battery(&receiver);
    battery.SetRecvTypeNum(info.GetRecvTypeNum());
    battery.SetInit(&bar);
    constexpr int kPowerSource = 1001; // the control with its name in the active window
    battery.SetBatteryStatus(kPowerSource, &bar);
    std::cout << "battery " << bar.position << " of " << bar.end << ", power from "
              << ToUtf8(battery.GetBattPort()) << "\n";

    // What a survey is to use, as far as this receiver has it.
    fieldcore::CGPSPrm survey;
    constexpr std::uint32_t kRealTime = 1;
    survey.SetSurveyType(kRealTime, 1);
    survey.SetGLONASSData(info.GetGLONASS());
    survey.SetGalileoData(info.GetGalileo());
    survey.SetQZSSData(info.GetQZSS());
    survey.SetL2CData(info.GetL2C());
    survey.SetL5Data(info.GetL5());
    std::cout << "survey " << survey.GetSurveyType() << " uses GLONASS " << survey.GetGLONASSData()
              << ", Galileo " << survey.GetGalileoData() << ", QZSS " << survey.GetQZSSData()
              << ", L2C " << survey.GetL2CData() << ", L5 " << survey.GetL5Data() << "\n";

    fieldcore::InstallSampleAntennas(fieldcore::Folders().Program()); // unless there is a catalogue
    constexpr int kRover = 1;
    fieldcore::AntennaSettings antenna(&receiver, kRover, 1);
    antenna.CheckReg(); // which reads the catalogue
    if (antenna.TakeFromReceiver() != fieldcore::AntennaSettings::Taken::Yes) {
        std::cout << "antenna \"" << ToUtf8(antenna.SourceCode()) << "\" is not in the catalogue\n";
        return 1;
    }
    antenna.SetAntWayFlag(1); // measured to the first of the antenna's points
    antenna.SetAntInputH(1.5);
    if (antenna.ChoiceFault() != 0 || antenna.WriteRegAnt() == 0) {
        return 1;
    }
    std::cout << "antenna " << ToUtf8(antenna.GetAntTypeStrEx()) << ", number "
              << antenna.GetAntNo() << ", " << ToUtf8(antenna.GetAntHEx()) << " m measured, "
              << antenna.GetAntCalcH() << " m vertical\n";
}

// Every reply parser on any bytes of any length: what it accepts must be what a receiver can mean.

#include "core/link/Replies.h"
#include "core/link/FrameBuffer.h"
#include "core/link/SatelliteReplies.h"
#include "fuzz/Target.h"

#include <cmath>

using namespace fieldcore;

namespace {

void CheckList(const SatelliteList& list)
{
    for (const ListedSatellite& satellite : list.satellites) {
        Check(satellite.azimuthDeg >= 0 && satellite.azimuthDeg <= 360);
        Check(satellite.elevationDeg >= -90 && satellite.elevationDeg <= 90);
    }
    Check(list.satellites.size() <= 255);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FrameBuffer frame;
    frame.Load({data, size});
    static_cast<void>(frame.VerifyChecksum());

    static_cast<void>(ParseOptions(frame.Reader()));
    static_cast<void>(ParseExtendedOptions(frame.Reader()));
    static_cast<void>(ParseBatteryPort(frame.Reader()));
    static_cast<void>(ParseSettingsFlags(frame.Reader()));
    static_cast<void>(ParseTiltCalibration(frame.Reader()));
    static_cast<void>(ParseAlmanac(frame.Reader(), 1));
    static_cast<void>(ParseSatelliteData(frame.Reader(), false));
    static_cast<void>(ParseSatelliteData(frame.Reader(), true));
    static_cast<void>(ParseSatelliteDataExtra(frame.Reader()));

    if (const auto reply = ParseSerial(frame.Reader())) {
        Check(reply->shortSerial.size() <= 8 && reply->longSerial.size() <= 10);
    }
    if (const auto reply = ParseStatus(frame.Reader())) {
        Check(reply->batteryPercent <= 999 && reply->survey.size() <= 4);
    }
    if (const auto reply = ParseGpsTime(frame.Reader())) {
        Check(reply->secondsOfWeek >= 0.0 && reply->secondsOfWeek < 604800.0);
    }
    if (const auto reply = ParseSite(frame.Reader())) {
        Check(std::isfinite(reply->heightM) && std::abs(reply->latitudeRad) < 1.5708);
    }
    if (const auto reply = ParsePositionStatus(frame.Reader())) {
        Check(reply->secondsOfWeek < 604800);
    }
    if (const auto reply = ParseTiltReading(frame.Reader())) {
        Check(!reply->time || reply->time->secondsOfWeek < 604800);
    }
    if (const auto list = ParseSatelliteList(frame.Reader())) {
        CheckList(*list);
    }
    SatelliteList collected;
    if (ParseSatelliteListFrame(frame.Reader(), SatelliteListForm::InView, 0, collected)) {
        CheckList(collected);
    }
    return 0;
}

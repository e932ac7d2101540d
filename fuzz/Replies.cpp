// Every reply parser on any bytes of any length: what it accepts must be what a receiver can mean.

#include "core/link/Replies.h"

#include "core/link/FrameBuffer.h"
#include "core/link/SatelliteReplies.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

using namespace fieldcore;

namespace {

void Check(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

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

    static_cast<void>(ParseOptions(frame));
    static_cast<void>(ParseExtendedOptions(frame));
    static_cast<void>(ParseBatteryPort(frame));
    static_cast<void>(ParseSettingsFlags(frame));
    static_cast<void>(ParseTiltCalibration(frame));
    static_cast<void>(ParseAlmanac(frame, 1));
    static_cast<void>(ParseSatelliteData(frame, false));
    static_cast<void>(ParseSatelliteData(frame, true));
    static_cast<void>(ParseSatelliteDataExtra(frame));

    if (const auto reply = ParseSerial(frame)) {
        Check(reply->shortSerial.size() <= 8 && reply->longSerial.size() <= 10);
    }
    if (const auto reply = ParseStatus(frame)) {
        Check(reply->batteryPercent <= 999 && reply->survey.size() <= 4);
    }
    if (const auto reply = ParseGpsTime(frame)) {
        Check(reply->secondsOfWeek >= 0.0 && reply->secondsOfWeek < 604800.0);
    }
    if (const auto reply = ParseSite(frame)) {
        Check(std::isfinite(reply->heightM) && std::abs(reply->latitudeRad) < 1.5708);
    }
    if (const auto reply = ParsePositionStatus(frame)) {
        Check(reply->secondsOfWeek < 604800);
    }
    if (const auto reply = ParseTiltReading(frame)) {
        Check(!reply->time || reply->time->secondsOfWeek < 604800);
    }
    if (const auto list = ParseSatelliteList(frame)) {
        CheckList(*list);
    }
    SatelliteList collected;
    if (ParseSatelliteListFrame(frame, SatelliteListForm::InView, 0, collected)) {
        CheckList(collected);
    }
    return 0;
}

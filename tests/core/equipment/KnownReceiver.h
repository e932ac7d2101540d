#pragma once

#include "core/link/Receiver.h"

#include <chrono>
#include <numbers>

namespace fieldcore::testing {

/// A receiver that has told everything 100 s after its clock began, all of it good.
inline Receiver KnownReceiver()
{
    using namespace std::chrono_literals;
    constexpr double kRad = std::numbers::pi / 180.0;
    Receiver receiver;
    receiver.link = LinkState::Connected;
    receiver.identity.serial =
        SerialReply{L"00301701", L"VX1", L"00443", L"00210", L"00105", L"", L"", L"5017000001"};
    receiver.identity.options.emplace();
    receiver.identity.options->typeCode = 31; // type 3017
    receiver.identity.options->memory = 64;
    StatusReply status;
    status.timeValid = true;
    status.satellitesTracked = 16;
    status.batteryPercent = 80;
    status.survey = L"    ";
    status.freeMemoryTenths = 9;
    receiver.status = {status, 100s};
    PositionStatusReply position;
    position.fixKind = 5;
    position.satellitesUsed = 14;
    position.pdop = 2.0F;
    position.hdop = 0.94F;
    position.vdop = 1.55F;
    position.position = {36.0 * kRad, (139.0 + 50.0 / 60.0) * kRad, 70.1234}; // origin of zone 9
    receiver.position = {position, 100s};
    receiver.powerSource = {1, 100s};
    receiver.isSynchronised = true;
    receiver.utcOffsetS = 18;
    receiver.time = {
        ReceiverTime{2410, 345618.0, std::chrono::local_days(2026y / 3 / 19) + 9h, 1500ms}, 100s};
    receiver.trend = BatteryTrend{-12.0, 5h + 7min};
    return receiver;
}

} // namespace fieldcore::testing

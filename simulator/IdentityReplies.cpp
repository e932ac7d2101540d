#include "simulator/Replies.h"

#include <cmath>

#include <fmt/format.h>

namespace fieldcore::simulator {

namespace {

constexpr std::uint8_t kSerial = 0x07;
constexpr std::uint8_t kOptions = 0x4B;
constexpr std::uint8_t kIdentity = 0x6E;

unsigned Bit(bool set, unsigned bit)
{
    return set ? 1U << bit : 0U;
}

long Hundredths(double version)
{
    return std::lround(version * 100.0);
}

} // namespace

Bytes SerialReply(const Scenario& scenario)
{
    DataWriter out;
    out.Text(scenario.serial, 8).Text(scenario.typeText, 8);
    out.Digits(Hundredths(scenario.navVersion), 5);
    out.Digits(Hundredths(scenario.signalVersion), 5);
    out.Digits(Hundredths(scenario.bootVersion), 5);
    out.Text(scenario.antennaSerial, 8).Text(scenario.antennaType, 2);
    out.U16(0).U16(0);
    if (!scenario.longSerial.empty()) {
        out.Text(scenario.longSerial, 10);
    }
    return out.Frame(kSerial);
}

Bytes OptionsReply(const Scenario& scenario)
{
    const Options& has = scenario.options;
    DataWriter out;
    out.U8(1).U8(10).U16(0);
    out.U16(static_cast<unsigned>(scenario.loggingRate));
    out.U8(static_cast<unsigned>(scenario.port)).U8(static_cast<unsigned>(scenario.portCount));
    out.U8(has.l2 ? 2 : 1);
    out.Text(std::string_view("\0\0\0\0\0\0\0\0\0", 9), 9);
    out.U8(has.nmea ? 1 : 0);
    out.U8(has.rtcmIn ? 1 : 0).U8(has.rtcm2In ? 1 : 0);
    out.U8(Bit(has.rtcmOut, 0) | Bit(has.rtcm23, 1) | Bit(has.rtcm30, 2));
    out.U8(has.rtcm2Out ? 1 : 0);
    out.U24(0).U24(0);
    out.U16(static_cast<unsigned>(scenario.memoryMb));
    out.U8(0).U8(0).U16(0).U16(0).U16(0).U8(0);
    out.U8(has.rtk ? 1 : 0);
    out.U8(0);
    // The two CMR bits say that the receiver cannot do it.
    out.U8(Bit(has.otf, 3) | Bit(!has.cmrIn, 5) | Bit(!has.cmrOut, 6) | Bit(has.solace, 7));
    out.U8(Bit(has.rtcm21In, 1) | Bit(has.rtcm21Out, 2));
    out.U8(static_cast<unsigned>(scenario.typeCode));
    out.U8(Bit(has.bluetooth, 4));
    out.U8(Bit(has.cmrPlus, 2) | Bit(has.fileNaming, 4) | Bit(has.rtcm22, 6));
    out.U8(0);
    out.U8(Bit(has.logging2Hz, 1) | Bit(has.vrs, 4) | Bit(has.extended, 7));
    if (scenario.typeCode == 0) {
        out.U16(static_cast<unsigned>(scenario.modelWord));
    }
    return out.Frame(kOptions);
}

Bytes ExtendedOptionsReply(const Scenario& scenario)
{
    const Options& has = scenario.options;
    const bool knowsRate = scenario.extendedLoggingRate != 0;
    DataWriter out;
    out.U8('[');
    out.U8(0).U24(0).U24(0);
    out.U32(Bit(has.l5, 29) | Bit(has.l2c, 21));
    out.U32(Bit(has.glonass, 0) | Bit(has.galileo, 19));
    out.U32(Bit(has.qzss, 2) | Bit(has.tilt, 1));
    out.U32(0).U32(0);
    out.U8(Bit(has.cmrxIn, 4) | Bit(has.cmrxOut, 5) | Bit(has.meridian, 6));
    out.U16(0);
    out.U8(Bit(true, 0) | Bit(knowsRate, 1));
    out.U16(static_cast<unsigned>(scenario.extendedLoggingRate));
    return out.Frame(kOptions);
}

Bytes IdentityReply(const Scenario& scenario, std::uint32_t baudRate)
{
    const std::string model =
        scenario.identity.empty() ? std::to_string(scenario.typeNumber) : scenario.identity;
    return MakeFrame(
        kIdentity, std::string_view(fmt::format("ID,{};PORT,{},{},L,8,1,N,F;VER,{:.2f},", model,
                                                scenario.port - 1, baudRate, scenario.navVersion)));
}

} // namespace fieldcore::simulator

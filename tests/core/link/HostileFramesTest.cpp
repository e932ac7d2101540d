#include "tests/core/link/FarEnd.h"
#include "tests/support/VirtualReceiver.h"

#include <algorithm>
#include <functional>
#include <random>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

using testing::Bytes;
using testing::Frame;
using testing::LongFrame;

/// A receiver that answers whatever a test wants.
class HostileFramesTest : public ::testing::Test, protected testing::VirtualReceiver
{
protected:
    HostileFramesTest() { Open(); }

    void AnswerWith(const Bytes& answer)
    {
        simulator.SetScripted([answer](std::span<const std::uint8_t>) { return answer; });
    }
    /// What was sent before and does not fit into the line comes after each purge.
    void ExpectUnharmed()
    {
        constexpr int kMostSpoilt = 40;
        simulator.SetScripted(nullptr);
        StatusReply status;
        int spoilt = 0;
        while (spoilt < kMostSpoilt && command.RequestStatus(status) == 0) {
            ++spoilt;
        }
        EXPECT_LT(spoilt, kMostSpoilt) << command.LastError();
    }
};

TEST_F(HostileFramesTest, EveryLengthOfEveryReply)
{
    SerialReply serial;
    StatusReply status;
    GpsTimeReply time;
    SatelliteList list;
    SiteReply site;
    PositionStatusReply position;
    int source = 0;
    OptionsReply options;
    ExtendedOptionsReply extended;
    AlmanacReply almanac;
    SatelliteDataReply data;
    SatelliteDataExtra extra{};
    SettingsFlags flags{};
    TiltReading tilt;
    TiltCalibration calibration;
    IdentificationRecord identity;
    struct Row
    {
        std::uint8_t replyType;
        std::function<int()> ask;
    };
    const Row rows[] = {
        {0x07, [&] { return command.RequestSerial(serial); }},
        {0x09, [&] { return command.RequestStatus(status); }},
        {0x15, [&] { return command.RequestGpsTime(time); }},
        {0x17, [&] { return command.RequestSvList(list); }},
        {0x31, [&] { return command.RequestSite(site); }},
        {0x33, [&] { return command.RequestHostData(0, 0); }},
        {0x35, [&] { return command.RequestPositionStatus(position); }},
        {0x41, [&] { return command.RequestBatteryPort(source); }},
        {0x4B, [&] { return command.RequestOptions(options); }},
        {0x4B, [&] { return command.RequestOptionsEx(extended); }},
        {0x55, [&] { return command.RequestAlmanac(1, almanac); }},
        {0x55, [&] { return command.RequestSvData(data, extra); }},
        {0x7A, [&] { return command.RequestSettingsFlags(flags); }},
        {0xC8, [&] { return command.RequestTiltReading(tilt); }},
        {0xC8, [&] { return command.RequestTiltCalibration(calibration); }},
    };
    std::mt19937 random(20261121); // NOLINT: the same bytes in every run
    const auto byte = [&](std::uint8_t) { return static_cast<std::uint8_t>(random()); };
    // Random bytes are texts without end, reals that are no numbers, counts beyond the data.
    for (const Row& row : rows) {
        SCOPED_TRACE(int{row.replyType});
        for (std::size_t length = 0; length <= 255; ++length) {
            Bytes noise(length);
            std::transform(noise.begin(), noise.end(), noise.begin(), byte);
            AnswerWith(Frame(row.replyType, noise));
            row.ask();
            ASSERT_EQ(command.GetDataLength(), length)
                << "it did not arrive: " << command.LastError();
        }
        for (const std::uint8_t all : Bytes{0x00, 0x20, 0x39, 0x7F, 0xFF}) {
            AnswerWith(Frame(row.replyType, Bytes(255, all)));
            row.ask();
        }
    }
    for (const std::size_t length : {0U, 1U, 12U, 255U}) {
        AnswerWith(Frame(0x6E, Bytes(length, 'x')));
        EXPECT_EQ(command.RequestIdentity(identity), 0);
    }
    ExpectUnharmed();
}

TEST_F(HostileFramesTest, LongFramesOfAnyLength)
{
    for (const std::size_t length : {0U, 1U, 511U, 512U, 1016U, 1017U, 1018U, 4096U, 65535U}) {
        SCOPED_TRACE(length);
        AnswerWith(LongFrame(Bytes(length, 0x02)));
        StatusReply status;
        EXPECT_EQ(command.RequestStatus(status), 0);
        const bool fits = length <= 1017;
        EXPECT_EQ(command.Fault() == CommandFault::WrongType, fits) << command.LastError();
        ExpectUnharmed();
    }
    // Announced and not sent.
    AnswerWith({0x02, 0x00, 0x95, 0xFF, 0xFF, 0x00});
    StatusReply status;
    EXPECT_EQ(command.RequestStatus(status), 0);
    ExpectUnharmed();
}

} // namespace
} // namespace fieldcore

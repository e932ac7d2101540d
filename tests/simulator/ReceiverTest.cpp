#include "simulator/Receiver.h"
#include "simulator/Replies.h"
#include "tests/simulator/Support.h"

namespace fieldcore::simulator::test {

TEST(Receiver, RefusesWhatItDoesNotKnow)
{
    using Row = std::tuple<std::string_view, std::string_view, std::uint8_t, std::string_view>;
    constexpr Row kRows[] = {
        {"a type that no receiver has", "lark", 0x01, ""},
        {"data where there are none", "lark", 0x08, "00"},
        {"a third form of the list", "lark", 0x16, "03"},
        {"almanac of a satellite that it has not", "lark", 0x54, "02 20 00"},
        {"almanac of no satellite", "lark", 0x54, "02 00 00"},
        {"another site", "lark", 0x30, "12 01"},
        {"power source of the first Pica", "pica", 0x41, ""},
        {"extended options of an old receiver", "pica", 0x4A, "01"},
        {"tilt without a sensor", "lark", 0xC8, "01 00"},
        {"reset with another word", "lark", 0x58, "FF 02 52 45 53 45 50"},
        {"reset with a longer word", "lark", 0x58, "FF 02 52 45 53 45 54 54"},
        {"a rate that no port has", "lark", 0x5E, "01 00 00 00 07 08 00 00 00 00"},
        {"a port that is not there", "lark", 0x5E, "03 00 00 25 80 08 00 00 00 00"},
        {"signals of a wrong length", "lark", 0x53, "0E 00 00 00"},
        {"an unknown speed of the bubble", "tilted", 0xC8, "0A 15"},
    };
    for (const auto& [fault, scenario, type, data] : kRows) {
        SCOPED_TRACE(fault);
        Receiver receiver(Shipped(std::string(scenario)), kStill);
        EXPECT_EQ(Ask(receiver, type, data), kRefused);
    }
}

TEST(Receiver, TimeAndBatteryRunWithTheClockAndTheSpeed)
{
    HandClock clock;
    Scenario scenario = Shipped("lark");
    scenario.speed = 10.0;
    scenario.batteryPercent = 50.0;
    scenario.batteryDrainPerHour = 6.0;
    Receiver receiver(scenario, clock);
    EXPECT_EQ(Data(receiver, 0x14), Hex("30333435363030 32343130 3138")); // 0345600 2410 18
    clock.Advance(12min); // two hours of the receiver
    EXPECT_EQ(Data(receiver, 0x14), Hex("30333532383030 32343130 3138")); // 0352800
    const Bytes status = Data(receiver, 0x08);
    EXPECT_EQ(Bytes(status.begin() + 7, status.begin() + 10), Hex("303338")); // 50 - 12
    clock.Advance(100h);
    const Bytes flat = Data(receiver, 0x08);
    EXPECT_EQ(Bytes(flat.begin() + 7, flat.begin() + 10), Hex("303030")) << "never below 0";
    const Bytes later = Data(receiver, 0x14);
    EXPECT_EQ(Bytes(later.begin() + 7, later.begin() + 11), Hex("32343136")) << "week 2416";
}

TEST(Receiver, CommandsChangeItsState)
{
    Receiver receiver(Shipped("lark"), kStill);

    EXPECT_EQ(Ask(receiver, 0x53, "9E 03 00"), kAccepted);
    EXPECT_EQ(receiver.Kept(0x53), Hex("9E 03 00"));

    EXPECT_EQ(Ask(receiver, 0x5E, "01 00 01 C2 00 08 00 00 00 00"), kAccepted);
    EXPECT_EQ(receiver.BaudRate(), 115200U);
    const auto identity = receiver.Answer({Request::Kind::Break, {0x00}});
    ASSERT_EQ(identity.size(), 1U);
    const std::string text(identity[0].begin() + 4, identity[0].end() - 2);
    EXPECT_EQ(text, "ID,3017;PORT,0,115200,L,8,1,N,F;VER,4.43,");
    EXPECT_EQ(Ask(receiver, 0x5E, "02 00 00 25 80 08 00 00 00 00"), kAccepted);
    EXPECT_EQ(receiver.BaudRate(), 115200U) << "the other port's rate is not ours";

    EXPECT_NE(Ask(receiver, 0x54, "02 07 00"), kRefused);
    EXPECT_EQ(Ask(receiver, 0x58, "FF 02 52 45 53 45 54"), kAccepted);
    EXPECT_EQ(Ask(receiver, 0x54, "02 07 00"), kRefused) << "a reset forgets the almanacs";
}

TEST(Receiver, SleepsWhenSwitchedOffUntilItIsAskedForItsStatus)
{
    Receiver receiver(Shipped("lark"), kStill);
    EXPECT_EQ(Ask(receiver, 0x84, "01 00"), kAccepted);
    EXPECT_TRUE(Ask(receiver, 0x06).empty());
    EXPECT_EQ(Ask(receiver, 0x08).size(), 1U);
    EXPECT_EQ(Ask(receiver, 0x06).size(), 1U);
}

TEST(SatelliteReplies, WireNumbersAndSignalsStandWhereTheLayoutSays)
{
    const Scenario scenario = Parsed("list-form binary 15\n"
                                     "satellite G32 359 90 10 20 30 40\n"
                                     "satellite S138 256 1 10\n"
                                     "satellite R24 255 2 10\n"
                                     "satellite X33 0 0 63.75\n"
                                     "satellite G1 10 10\n");
    const Sky sky = SkyAt(scenario, {});
    const Bytes list = SatelliteList(scenario, sky);
    EXPECT_EQ(Bytes(list.begin() + 4, list.end() - 2), Hex("30 34 0F"
                                                           "20 67 DA 28 50 A0 78"
                                                           "33 00 81 28 00 00 00"
                                                           "4B 00 FF 02 28 00 00 00"
                                                           "6D 00 00 FF 00 00 00"));
    // In view are those without a signal, too: the fifth.
    EXPECT_EQ(SatelliteFrames(scenario, sky, 1)[0][8], 4);
    EXPECT_EQ(SatelliteFrames(scenario, sky, 2)[0][8], 5);
}

TEST(SatelliteReplies, ManySatellitesFillSeveralFramesAndOneFrameHoldsWhatFits)
{
    Scenario scenario;
    Sky sky;
    for (int i = 0; i < 40; ++i) {
        Satellite satellite;
        satellite.number = i % 32 + 1;
        satellite.signals[0] = 40.0;
        sky.satellites.push_back(satellite);
    }
    const std::vector<Bytes> frames = SatelliteFrames(scenario, sky, 1);
    ASSERT_EQ(frames.size(), 5U);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        EXPECT_EQ(frames[i][5], i);
        EXPECT_EQ(frames[i][6], i == 4 ? 1 : 0);
    }
    for (const ListForm form : {ListForm::Text1, ListForm::Text2, ListForm::Binary}) {
        scenario.listForm = form;
        const Bytes frame = SatelliteList(scenario, sky);
        EXPECT_EQ(frame.size(), frame[3] + 6U);
    }
    sky.satellites.clear();
    EXPECT_EQ(SatelliteFrames(scenario, sky, 2).size(), 1U) << "an empty list ends, too";
}

} // namespace fieldcore::simulator::test

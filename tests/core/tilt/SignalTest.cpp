// The choice of signals, in front of receivers that have any of them.

#include "core/tilt/SignalChoice.h"
#include "tests/core/tilt/SensorLine.h"
#include "tests/support/VirtualReceiver.h"

#include <optional>

namespace fieldcore {
namespace {

using testing::Bytes;
using testing::SensorLine;

constexpr unsigned kCombinations = 1U << 5U;

SignalSet SetOf(unsigned bits)
{
    SignalSet set;
    for (const Signal signal : kAllSignals) {
        set.Set(signal, (bits >> static_cast<unsigned>(signal) & 1U) != 0);
    }
    return set;
}

/// Data of 0x53 as tables, put down by hand: [L2C: no, yes, yes on Solace][GLONASS][L5].
Bytes Expected(const SignalSet& chosen, bool isSolace)
{
    constexpr std::uint8_t kFirst[3][2][2] = {
        {{0x0E, 0x4E}, {0x8E, 0xCE}}, {{0x04, 0x44}, {0x84, 0xC4}}, {{0x1E, 0x5E}, {0x9E, 0xDE}}};
    constexpr std::uint8_t kGalileo[2][2] = {{0, 0}, {9, 11}};
    const bool glonass = chosen.Has(Signal::Glonass);
    const bool l5 = chosen.Has(Signal::L5);
    const int row = !chosen.Has(Signal::L2c) ? 0 : isSolace ? 2 : 1;
    Bytes data{kFirst[row][glonass ? 1 : 0][l5 ? 1 : 0], static_cast<std::uint8_t>(glonass ? 3 : 0),
               kGalileo[chosen.Has(Signal::Galileo) ? 1 : 0][l5 ? 1 : 0]};
    static const Bytes kQzss[2] = {{0x00, 0x84}, {0x00, 0x84, 0x04}};
    if (chosen.Has(Signal::Qzss)) {
        const Bytes& tail = kQzss[l5 ? 1 : 0];
        data.insert(data.end(), tail.begin(), tail.end());
    }
    return data;
}

TEST(Signals, SendsEveryChoiceOfEveryReceiverAsItsBytes)
{
    SensorLine line;
    // A folder that cannot be: the settings stay in memory, or every choice would wait for a disk.
    line.roots.Use(testing::FoldersBelow("/dev/null"));
    for (unsigned receiver = 0; receiver < kCombinations * 4; ++receiver) {
        const SignalSet has = SetOf(receiver);
        simulator::Scenario scenario;
        scenario.options.extended = true;
        scenario.options.l2c = has.Has(Signal::L2c);
        scenario.options.glonass = has.Has(Signal::Glonass);
        scenario.options.qzss = has.Has(Signal::Qzss);
        scenario.options.galileo = has.Has(Signal::Galileo);
        scenario.options.l5 = has.Has(Signal::L5);
        const bool isSolace = (receiver & 32U) != 0;
        const bool isMeridian = (receiver & 64U) != 0;
        scenario.options.solace = isSolace;
        scenario.options.meridian = isMeridian;
        ASSERT_NO_FATAL_FAILURE(line.Start(scenario));
        SignalSession session(&line.command);
        session.Open();
        for (unsigned wanted = 0; wanted < kCombinations; ++wanted) {
            SCOPED_TRACE(::testing::Message() << "receiver " << receiver << ", choice " << wanted);
            SignalSet chosen = SetOf(wanted);
            for (const Signal signal : kAllSignals) {
                ASSERT_EQ(session.IsEnabled(signal), has.Has(signal));
                session.Check(signal, chosen.Has(signal));
                chosen.Set(signal, chosen.Has(signal) && has.Has(signal));
            }
            line.ForgetSent();
            const SignalSession::Outcome outcome = session.Confirm();
            std::vector<Bytes> expected;
            if (!has.IsEmpty()) {
                expected.push_back(testing::Frame(0x53, Expected(chosen, isSolace)));
                ASSERT_EQ(outcome.sent, 1);
            }
            if (isMeridian) {
                expected.push_back({0x02, 0x00, 0xA3, 0x03, 0x00, 0x00, 0x00, 0xA6, 0x03});
            }
            ASSERT_EQ(line.SentFrames(), expected);
            ASSERT_EQ(outcome.stored, 1);
            ASSERT_EQ(LoadSignals(line.reg, 3017), chosen);
        }
    }
}

TEST(Signals, KeepsAChoiceForEachReceiverTypeUnderItsNames)
{
    const SensorLine line;
    EXPECT_TRUE(LoadSignals(line.reg, 3017).IsEmpty());
    constexpr std::pair<const wchar_t*, Signal> kNames[] = {{L"Glonass", Signal::Glonass},
                                                            {L"Qzss", Signal::Qzss},
                                                            {L"Galileo", Signal::Galileo},
                                                            {L"L2C", Signal::L2c},
                                                            {L"L5", Signal::L5}};
    for (const auto& [name, signal] : kNames) {
        SignalSet one;
        one.Set(signal, true);
        ASSERT_EQ(SaveSignals(line.reg, 3017, one), 1);
        for (const auto& [other, unused] : kNames) {
            std::uint32_t value = 9;
            EXPECT_EQ(line.reg.ReadNumber(L"GPS\\Signal\\3017", other, value, 7), 1);
            EXPECT_EQ(value, other == name ? 1U : 0U);
        }
    }
    EXPECT_TRUE(LoadSignals(line.reg, 3051).IsEmpty());
}

TEST(Signals, ShowsALockedOrUnknownReceiverAsItIs)
{
    struct Row
    {
        const char* fault;
        bool isLocked;
        const char* rule; // of the line
        unsigned enabled; // afterwards
        unsigned checked;
        std::optional<int> sent;
        bool stores;
    };
    const Row rows[] = {
        {"all is well: what is kept and there is checked", false, "", 0b01110, 0b00110, 1, true},
        {"locked: what is kept is shown, there or not", true, "", 0, 0b10110, std::nullopt, false},
        {"a lock that cannot be asked for is none", false, "nak on 7A", 0b01110, 0b00110, 1, true},
        {"a refused choice is kept all the same", false, "nak on 53", 0b01110, 0b00110, 0, true},
        {"options unreadable: nothing for type 0", false, "nak on 4A", 0b11111, 0, std::nullopt,
         false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        SensorLine line;
        ASSERT_EQ(SaveSignals(line.reg, 3017, SetOf(0b10110)), 1);
        simulator::Scenario scenario;
        scenario.options.extended = true;
        scenario.options.glonass = scenario.options.qzss = scenario.options.galileo = true;
        scenario.signalsLocked = row.isLocked;
        ASSERT_NO_FATAL_FAILURE(line.Start(scenario));
        if (*row.rule != '\0') {
            line.simulator->AddFault(testing::ParsedRule(row.rule));
        }
        SignalSession session(&line.command);
        session.Open();
        EXPECT_EQ(session.IsLocked(), row.isLocked);
        for (const Signal signal : kAllSignals) {
            EXPECT_EQ(session.IsEnabled(signal), SetOf(row.enabled).Has(signal));
            EXPECT_EQ(session.IsChecked(signal), SetOf(row.checked).Has(signal));
        }
        session.Check(Signal::Galileo, true);
        const SignalSession::Outcome outcome = session.Confirm();
        EXPECT_EQ(outcome.stored.has_value(), row.stores);
        EXPECT_EQ(outcome.sent, row.sent);
        EXPECT_EQ(line.Sent(0x53), row.sent ? 1 : 0);
        EXPECT_TRUE(LoadSignals(line.reg, 0).IsEmpty());
        EXPECT_EQ(LoadSignals(line.reg, 3017), SetOf(row.stores ? 0b01110 : 0b10110));
    }
}

} // namespace
} // namespace fieldcore

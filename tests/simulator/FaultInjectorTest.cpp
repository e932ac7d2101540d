#include "simulator/FaultInjector.h"
#include "tests/simulator/Support.h"

#include <algorithm>

namespace fieldcore::simulator::test {

namespace {

using RuleRow = std::pair<std::string_view, std::string_view>; ///< and what comes of it

const Bytes kQuestion = Hex("02 00 4A 00 4A 03");
const Bytes kReply = Hex("02 00 4B 02 11 22 80 03");

/// The pieces as hexadecimal digits, one bracket each; "!" where the port hangs up.
std::string Show(const Pieces& pieces)
{
    std::string text;
    for (const Piece& piece : pieces) {
        text += '[';
        for (const std::uint8_t byte : piece.bytes) {
            constexpr std::string_view kDigits = "0123456789ABCDEF";
            text += kDigits[byte >> 4U];
            text += kDigits[byte & 0x0FU];
        }
        text += piece.hangsUp ? "]!" : "]";
    }
    return text;
}

Pieces Apply(FaultInjector& injector, const Bytes& request = kQuestion)
{
    return injector.Apply(FrameRequest(request), {kReply}).pieces;
}

/// Which of @p count answers a rule spoils, "x" for each spoilt one.
std::string Pattern(std::string_view rule, int count)
{
    FaultInjector injector(1);
    injector.Add(ParsedRule(rule));
    std::string pattern;
    for (int i = 0; i < count; ++i) {
        pattern += Apply(injector).empty() ? 'x' : '.';
    }
    return pattern;
}

} // namespace

TEST(FaultInjector, DoesToTheAnswerWhatTheRuleSays)
{
    constexpr RuleRow kRows[] = {
        {"drop", ""},
        {"corrupt", "[02004B0211227F03]"},
        {"corrupt 4", "[02004B02EE228003]"},
        {"corrupt 99", "[02004B0211228003]"},
        {"split 3", "[02004B][0211228003]"},
        {"split", "[02][00][4B][02][11][22][80][03]"},
        {"split 8", "[02004B0211228003]"},
        {"duplicate", "[02004B0211228003][02004B0211228003]"},
        {"nak", "[15]"},
        {"nak-storm 3", "[151515]"},
        {"ack", "[06]"},
        {"wrong-type 77", "[02004D0211228203]"},
        {"truncate", "[02004B02112280]"},
        {"truncate 3", "[02004B0211]"},
        {"truncate 99", "[]"},
        {"corrupt of 4B", "[02004B0211227F03]"},
        {"corrupt of 4A", "[02004B0211228003]"},
        {"nak on 08 of 4B", "[02004B0211228003]"},
        {"zero-length", "[02004B004B03]"},
        {"oversize-length", "[02004BFF11228003]"},
        {"oversize-length 65535", "[020095FFFF11228003]"},
        {"hang-up", "[]!"},
        {"hang-up reply 5", "[02004B0211][]!"},
        {"hang-up reply 99", "[02004B0211228003][]!"},
        {"reboot", ""},
        {"drop on 4B", "[02004B0211228003]"},
        {"drop on break", "[02004B0211228003]"},
    };
    for (const auto& [rule, sent] : kRows) {
        FaultInjector injector(1);
        injector.Add(ParsedRule(rule));
        EXPECT_EQ(Show(Apply(injector)), sent) << rule;
    }
}

TEST(FaultInjector, KnowsTheFramesOfAnAnswerThatGoesOn)
{
    // Four blocks of two data bytes and four pages; a block has nine bytes.
    constexpr RuleRow kRows[] = {
        {"drop of 95 skip 1 count 1", "b.bb"},
        {"drop of 95 every 2", "b.b."},
        {"drop of 9D", "bbbb"},
        {"nak of 95 skip 2 count 1", "bbnb"},
        {"duplicate of 95 skip 3", "bbbbb"},
        {"hang-up of 95 skip 2", "bb!"},
        {"hang-up 4 of 95 skip 2", "bbs!"},
        {"drop", "."},
        {"nak", "n"},
        {"hang-up reply 9", "b!"},
        {"hang-up reply 13", "bs!"},
        {"hang-up reply 18", "bb!"},
        {"hang-up reply 999", "bbbb!"},
        {"truncate 7 of 95 skip 1 count 1", "bsbb"},
        {"reboot of 95 skip 1", "b."},
        {"drop on 08 of 95", "bbbb"},
        {"drop on 4A of 95 skip 3", "bbb."},
    };
    const Bytes block = MakeFrame(0x95, Bytes{1, 2});
    for (const auto& [rule, expected] : kRows) {
        FaultInjector injector(1);
        injector.Add(ParsedRule(rule));
        std::string sent;
        auto outcome = injector.Apply(FrameRequest(kQuestion), {block}, true);
        for (int turn = 1;; ++turn) {
            sent += outcome.pieces.empty() && turn < 5 ? "." : "";
            for (const Piece& piece : outcome.pieces) {
                if (!piece.bytes.empty()) {
                    sent += piece.bytes == block ? 'b' : piece.bytes == Bytes{kNak} ? 'n' : 's';
                }
                sent += piece.hangsUp ? "!" : "";
            }
            if (outcome.ends || turn == 5) {
                break;
            }
            outcome = injector.ApplyToNext(turn < 4 ? std::optional(block) : std::nullopt);
        }
        EXPECT_EQ(sent, expected) << rule;
    }
}

TEST(FaultInjector, StrikesWhenTheRuleSays)
{
    constexpr RuleRow kRows[] = {
        {"drop", "xxxxxxxx"},
        {"drop every 3", "..x..x.."},
        {"drop first 2", "xx......"},
        {"drop skip 2", "..xxxxxx"},
        {"drop skip 1 every 2 count 2", "..x.x..."},
        {"drop chance 0", "........"},
        {"drop chance 1", "xxxxxxxx"},
    };
    for (const auto& [rule, pattern] : kRows) {
        EXPECT_EQ(Pattern(rule, static_cast<int>(pattern.size())), pattern) << rule;
    }
}

TEST(FaultInjector, ChanceIsRepeatableAndAboutWhatIsAskedFor)
{
    const std::string once = Pattern("drop chance 0.25", 4000);
    EXPECT_EQ(Pattern("drop chance 0.25", 4000), once);
    const auto spoilt = std::count(once.begin(), once.end(), 'x');
    // 1000 with a deviation of 27: seven of them on either side.
    EXPECT_NEAR(static_cast<double>(spoilt), 1000.0, 200.0);
}

TEST(FaultInjector, RulesActOneAfterTheOther)
{
    FaultInjector injector(1);
    injector.Add(ParsedRule("duplicate"));
    injector.Add(ParsedRule("delay 100"));
    injector.Add(ParsedRule("hang-up reply 10 back 50"));
    const Pieces pieces = Apply(injector);
    EXPECT_EQ(Show(pieces), "[02004B0211228003][0200][]!");
    EXPECT_EQ(pieces[0].wait, 100ms);
    EXPECT_EQ(pieces[2].backAfter, 50ms);
}

} // namespace fieldcore::simulator::test

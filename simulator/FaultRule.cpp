#include "simulator/FaultRule.h"

#include "core/platform/NumberText.h"
#include "simulator/Words.h"

#include <algorithm>
#include <array>

namespace fieldcore::simulator {

namespace {

struct KindName
{
    std::string_view name;
    FaultKind kind;
    int maxAmount; ///< -1: takes no amount
};

constexpr int kOneHour = 3'600'000; // ms

constexpr std::array kKinds{
    KindName{"drop", FaultKind::Drop, -1},
    KindName{"corrupt", FaultKind::Corrupt, 65535},
    KindName{"split", FaultKind::Split, 65535},
    KindName{"delay", FaultKind::Delay, kOneHour},
    KindName{"duplicate", FaultKind::Duplicate, -1},
    KindName{"nak", FaultKind::Nak, -1},
    KindName{"nak-storm", FaultKind::NakStorm, 100'000},
    KindName{"ack", FaultKind::Ack, -1},
    KindName{"reply-for-ack", FaultKind::ReplyForAck, -1},
    KindName{"wrong-type", FaultKind::WrongType, 255},
    KindName{"unsolicited", FaultKind::Unsolicited, -1},
    KindName{"early", FaultKind::Early, kOneHour},
    KindName{"burst", FaultKind::Burst, -1},
    KindName{"garbage", FaultKind::Garbage, 65535},
    KindName{"zero-length", FaultKind::ZeroLength, -1},
    KindName{"truncate", FaultKind::Truncate, 65535},
    KindName{"oversize-length", FaultKind::OversizeLength, 65535},
    KindName{"hang-up", FaultKind::HangUp, 65535},
    KindName{"reboot", FaultKind::Reboot, kOneHour},
};

std::string AllKinds()
{
    std::string names;
    for (const KindName& kind : kKinds) {
        names += (names.empty() ? "" : ", ") + std::string(kind.name);
    }
    return names;
}

bool StartsNumber(std::string_view word)
{
    return !word.empty() && word.front() >= '0' && word.front() <= '9';
}

bool ReadKind(Words& words, FaultRule& rule)
{
    const std::string_view name = words.Take();
    const auto* const found = std::find_if(kKinds.begin(), kKinds.end(),
                                           [&](const KindName& k) { return k.name == name; });
    if (found == kKinds.end()) {
        return words.Fail("\"" + std::string(name) + "\" is no fault; there are " + AllKinds());
    }
    rule.kind = found->kind;
    if (rule.kind == FaultKind::HangUp && (words.Peek() == "request" || words.Peek() == "reply")) {
        rule.place = words.Take() == "request" ? HangUpPlace::Request : HangUpPlace::Reply;
    }
    if (!StartsNumber(words.Peek())) {
        return true;
    }
    if (found->maxAmount < 0) {
        return words.Fail("\"" + std::string(name) + "\" takes no number");
    }
    return words.Integer("the number behind \"" + std::string(name) + "\"", 0, found->maxAmount,
                         rule.amount);
}

/// Two hexadecimal digits.
/// @param wanted  what else may stand there, for the error
bool ReadType(Words& words, std::string_view word, std::string_view wanted, int& type)
{
    const auto read = NumberOf<std::uint8_t>(word, 16);
    if (!read || word.size() != 2) {
        return words.Fail(std::string(wanted) + ", not \"" + std::string(word) + "\"");
    }
    type = *read;
    return true;
}

bool ReadRequestType(Words& words, FaultRule& rule)
{
    const std::string_view word = words.Take();
    if (word == "any") {
        rule.requestType = FaultRule::kAnyRequest;
    } else if (word == "break") {
        rule.requestType = FaultRule::kBreakRequest;
    } else if (word == "line") {
        rule.requestType = FaultRule::kLineRequest;
    } else {
        return ReadType(words, word, "a request is two hexadecimal digits, any, break or line",
                        rule.requestType);
    }
    return true;
}

bool ReadCount(Words& words, std::string_view what, long min, std::size_t& count)
{
    long value = 0;
    if (!words.Integer(what, min, 1'000'000'000, value)) {
        return false;
    }
    count = static_cast<std::size_t>(value);
    return true;
}

bool ReadClause(Words& words, FaultRule& rule)
{
    const std::string_view clause = words.Take();
    if (clause == "on") {
        return ReadRequestType(words, rule);
    }
    const bool inRequest = rule.kind == FaultKind::HangUp && rule.place == HangUpPlace::Request;
    if (clause == "of" && !inRequest) {
        return ReadType(words, words.Take(), "a frame of an answer is two hexadecimal digits",
                        rule.replyType);
    }
    if (clause == "skip") {
        return ReadCount(words, "skip", 0, rule.skip);
    }
    if (clause == "every") {
        return ReadCount(words, "every", 1, rule.every);
    }
    if (clause == "first" || clause == "count") {
        return ReadCount(words, clause, 1, rule.count);
    }
    if (clause == "chance") {
        return words.Real("chance", 0.0, 1.0, rule.chance);
    }
    if (clause == "back" && rule.kind == FaultKind::HangUp) {
        long ms = 0;
        if (!words.Integer("back", 0, kOneHour, ms)) {
            return false;
        }
        rule.backAfter = std::chrono::milliseconds(ms);
        return true;
    }
    return words.Fail("\"" + std::string(clause) +
                      "\" is not understood here; a rule goes on with on, of, skip, every, first, "
                      "chance, count, and back for a hang-up");
}

} // namespace

bool ParseFaultRule(std::string_view text, FaultRule& rule, std::string& error)
{
    Words words(text);
    FaultRule read;
    bool good = ReadKind(words, read);
    while (good && !words.AtEnd()) {
        good = ReadClause(words, read);
    }
    if (!good) {
        error = words.Error();
        return false;
    }
    rule = read;
    return true;
}

} // namespace fieldcore::simulator

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace fieldcore::simulator {

/// What goes wrong with the answer to one request. "Answer" is everything that the receiver
/// would have sent; "first frame" is the first frame of it, or the lone ACK or NAK byte. Of a
/// list of files or a download, which are made as they are sent, a rule for whole answers has the
/// first frame alone; only a hang-up counts the bytes of all.
enum class FaultKind : std::uint8_t
{
    Drop,           ///< nothing is sent
    Corrupt,        ///< byte @c amount of the first frame is damaged; default: its check byte
    Split,          ///< the first frame comes in two pieces, cut at byte @c amount;
                    ///< default 0: every byte comes alone
    Delay,          ///< the answer comes @c amount ms late; default 500
    Duplicate,      ///< the answer comes twice
    Nak,            ///< NAK instead of the answer
    NakStorm,       ///< @c amount NAKs instead of the answer; default 20
    Ack,            ///< ACK instead of the answer
    ReplyForAck,    ///< a status frame instead of the answer
    WrongType,      ///< the first frame says that it is of type @c amount; default 0x7E
    Unsolicited,    ///< an 0x40 frame stands in front of the answer
    Early,          ///< a status frame follows the answer @c amount ms later (default 0), so that
                    ///< it lies in the line before the next request comes
    Burst,          ///< a status frame follows the answer in the same write
    Garbage,        ///< @c amount random bytes stand in front of the answer; default 8
    ZeroLength,     ///< the first frame keeps its type and has no data
    Truncate,       ///< the first frame lacks its last @c amount bytes; default 1
    OversizeLength, ///< the first frame announces @c amount data bytes, more than it has; default
                    ///< 255. More than 255 (up to 65535): it comes as a long frame
    HangUp,         ///< the port goes away, see FaultRule::place
    Reboot,         ///< the receiver says nothing for @c amount ms (default 3000), then is back
};

/// Where a hang-up cuts the exchange.
enum class HangUpPlace : std::uint8_t
{
    Reply,  ///< @c amount bytes of the answer are sent first; default 0
    Request ///< @c amount bytes of the request are taken in first; default 1
};

/// A fault, and the requests that it happens to. Written as text:
///
///     KIND [AMOUNT] [request|reply] [back MS] [on TYPE] [of TYPE] [skip N] [every N | first N |
///     chance P] [count N]
///
/// for example `corrupt on 08 every 3`, `delay 700 chance 0.2`, `hang-up reply 10 back 2000 skip
/// 5`, `truncate 20 of 95 skip 3 count 1`. TYPE is two hexadecimal digits; behind `on`, which
/// means the request, also `any`, `break` or `line`.
struct FaultRule
{
    /// A rule for whatever is asked.
    static constexpr int kAnyRequest = -1;
    static constexpr int kBreakRequest = 0x100; ///< a BREAK
    static constexpr int kLineRequest = 0x101;  ///< a line of text
    static constexpr int kWholeAnswer = -1;
    static constexpr int kDefaultAmount = -1; ///< the kind's own default, see FaultKind

    FaultKind kind = FaultKind::Drop; ///< what goes wrong
    int amount = kDefaultAmount;      ///< bytes, milliseconds, a count or a type: see FaultKind
    HangUpPlace place = HangUpPlace::Reply;
    std::chrono::milliseconds backAfter{-1}; ///< a hang-up ends after this time; negative: never

    /// The rule is about single frames of answers, those of this type 0 to 255: it counts them, and
    /// "answer" means one of them. kWholeAnswer: it is about whole answers.
    int replyType = kWholeAnswer;
    int requestType = kAnyRequest; ///< a frame type 0 to 255, or one of the constants above
    std::size_t skip = 0;          ///< matching requests that are let through first
    std::size_t every = 1;         ///< of the rest, each every-th one fails (1: each one)
    double chance = 1.0;           ///< probability 0 to 1 that it does
    std::size_t count = 0;         ///< faults until the rule is used up; 0: never
};

/// Reads a rule in its text form.
/// @param error  says which word is wrong and why; untouched on success
/// @return false if @p text is no rule; @p rule is then as it was
[[nodiscard]] bool ParseFaultRule(std::string_view text, FaultRule& rule, std::string& error);

} // namespace fieldcore::simulator

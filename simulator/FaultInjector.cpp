#include "simulator/FaultInjector.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

namespace fieldcore::simulator {

namespace {

using std::chrono::milliseconds;

// What a fault does to the bytes of an answer.

/// The rule's number, or @p usual where it has none.
int AmountOr(const FaultRule& rule, int usual)
{
    return rule.amount == FaultRule::kDefaultAmount ? usual : rule.amount;
}

bool IsFrame(const Bytes& bytes)
{
    return bytes.size() >= kFrameOverhead && bytes.front() == kStx;
}

/// How many bytes they are together.
std::size_t SizeOf(const Pieces& pieces)
{
    std::size_t size = 0;
    for (const Piece& piece : pieces) {
        size += piece.bytes.size();
    }
    return size;
}

Piece HangUpPiece(const FaultRule& rule)
{
    Piece piece;
    piece.hangsUp = true;
    piece.backAfter = rule.backAfter;
    return piece;
}

/// Ends the answer behind its first @p bytes bytes, with a hang-up.
void CutAnswer(Pieces& pieces, std::size_t bytes, const FaultRule& rule)
{
    Pieces kept;
    for (Piece& piece : pieces) {
        piece.bytes.resize(std::min(piece.bytes.size(), bytes));
        bytes -= piece.bytes.size();
        if (!piece.bytes.empty()) {
            kept.push_back(std::move(piece));
        }
    }
    kept.push_back(HangUpPiece(rule));
    pieces = std::move(kept);
}

// Long enough for the far end to see two events, short enough for any reply time-out.
constexpr milliseconds kSplitGap{2};

/// A good frame that answers another question than the one in front of it.
Bytes StrayFrame(const Pieces& pieces)
{
    constexpr std::uint8_t kStatus = 0x09;
    constexpr std::uint8_t kTime = 0x15;
    const bool isStatus =
        !pieces.empty() && IsFrame(pieces.front().bytes) && pieces.front().bytes[2] == kStatus;
    return isStatus ? MakeFrame(kTime, "0345600241018")
                    : MakeFrame(kStatus, "1008000085 1.85    09");
}

Bytes RandomBytes(std::size_t count, std::mt19937& random)
{
    Bytes bytes(count);
    std::generate(bytes.begin(), bytes.end(),
                  [&] { return static_cast<std::uint8_t>(random() >> 24U); });
    return bytes;
}

void Corrupt(Bytes& bytes, int amount)
{
    const std::size_t checkByte = IsFrame(bytes) ? bytes.size() - 2 : 0;
    const std::size_t at = amount < 0 ? checkByte : static_cast<std::size_t>(amount);
    if (at < bytes.size()) {
        bytes[at] ^= 0xFFU;
    }
}

void Split(Pieces& pieces, int amount)
{
    const Piece whole = pieces.front();
    const std::size_t size = whole.bytes.size();
    const std::size_t step = amount == 0 ? 1 : std::min(static_cast<std::size_t>(amount), size);
    Pieces parts;
    for (std::size_t begin = 0; begin < size;) {
        const std::size_t end = amount == 0 || begin == 0 ? begin + step : size;
        const auto from = whole.bytes.begin();
        Piece part = whole;
        part.bytes.assign(from + static_cast<std::ptrdiff_t>(begin),
                          from + static_cast<std::ptrdiff_t>(end));
        part.wait = begin == 0 ? whole.wait : Clock::Duration(kSplitGap);
        parts.push_back(std::move(part));
        begin = end;
    }
    pieces.erase(pieces.begin());
    pieces.insert(pieces.begin(), parts.begin(), parts.end());
}

void SetType(Bytes& frame, int type)
{
    if (IsFrame(frame)) {
        frame[2] = static_cast<std::uint8_t>(type);
        frame[frame.size() - 2] = CheckSum(std::span(frame).subspan(1, frame.size() - 3));
    }
}

void AnnounceMore(Bytes& frame, int length)
{
    if (!IsFrame(frame)) {
        return;
    }
    if (frame[2] == kLongFrame) {
        frame[3] = static_cast<std::uint8_t>(length >> 8);
        frame[4] = static_cast<std::uint8_t>(length & 0xFF);
        return;
    }
    frame[3] = static_cast<std::uint8_t>(length & 0xFF);
    if (length > 0xFF) {
        frame[2] = kLongFrame;
        frame.insert(frame.begin() + 3, static_cast<std::uint8_t>(length >> 8));
    }
}

void ReplaceAnswer(Pieces& pieces, Bytes bytes)
{
    const Clock::Duration wait = pieces.empty() ? Clock::Duration{} : pieces.front().wait;
    pieces = {Piece{std::move(bytes), wait}};
}

void InflictOnPieces(const FaultRule& rule, Pieces& pieces, std::mt19937& random)
{
    const auto stray = [&] { return StrayFrame(pieces); };
    Piece& first = pieces.front();
    switch (rule.kind) {
    case FaultKind::Corrupt:
        Corrupt(first.bytes, rule.amount);
        break;
    case FaultKind::Split:
        Split(pieces, AmountOr(rule, 0));
        break;
    case FaultKind::Delay:
        first.wait += milliseconds(AmountOr(rule, 500));
        break;
    case FaultKind::Duplicate: {
        const Pieces again = pieces;
        pieces.insert(pieces.end(), again.begin(), again.end());
        break;
    }
    case FaultKind::WrongType:
        SetType(first.bytes, AmountOr(rule, 0x7E));
        break;
    case FaultKind::Unsolicited:
        pieces.insert(pieces.begin(), Piece{MakeFrame(0x40, "unsolicited"), first.wait});
        break;
    case FaultKind::Early:
        pieces.push_back({stray(), milliseconds(AmountOr(rule, 0))});
        break;
    case FaultKind::Burst: {
        const Bytes other = stray();
        pieces.back().bytes.insert(pieces.back().bytes.end(), other.begin(), other.end());
        break;
    }
    case FaultKind::Garbage:
        pieces.insert(
            pieces.begin(),
            Piece{RandomBytes(static_cast<std::size_t>(AmountOr(rule, 8)), random), first.wait});
        break;
    case FaultKind::ZeroLength:
        if (IsFrame(first.bytes)) {
            first.bytes = MakeFrame(first.bytes[2], Bytes());
        }
        break;
    case FaultKind::Truncate: {
        const auto lost = static_cast<std::size_t>(AmountOr(rule, 1));
        first.bytes.resize(first.bytes.size() - std::min(lost, first.bytes.size()));
        break;
    }
    case FaultKind::OversizeLength:
        AnnounceMore(first.bytes, AmountOr(rule, 255));
        break;
    default:
        break;
    }
}

/// @param pieces  the answer, or one frame of it
/// @return how long the receiver hears and says nothing from then on
Clock::Duration Inflict(const FaultRule& rule, Pieces& pieces, std::mt19937& random)
{
    switch (rule.kind) {
    case FaultKind::Drop:
        pieces.clear();
        break;
    case FaultKind::Nak:
        ReplaceAnswer(pieces, {kNak});
        break;
    case FaultKind::NakStorm:
        ReplaceAnswer(pieces, Bytes(static_cast<std::size_t>(AmountOr(rule, 20)), kNak));
        break;
    case FaultKind::Ack:
        ReplaceAnswer(pieces, {kAck});
        break;
    case FaultKind::ReplyForAck:
        ReplaceAnswer(pieces, StrayFrame(pieces));
        break;
    case FaultKind::HangUp:
        CutAnswer(pieces, static_cast<std::size_t>(AmountOr(rule, 0)), rule);
        break;
    case FaultKind::Reboot:
        pieces.clear();
        return milliseconds(AmountOr(rule, 3000));
    default:
        if (!pieces.empty()) { // else nothing is said that could be said wrongly
            InflictOnPieces(rule, pieces, random);
        }
    }
    return {};
}

// Which fault strikes.

int RequestType(const Request& request)
{
    switch (request.kind) {
    case Request::Kind::Frame:
        return request.Type();
    case Request::Kind::Break:
        return FaultRule::kBreakRequest;
    case Request::Kind::Line:
        return FaultRule::kLineRequest;
    case Request::Kind::Damaged:
        break;
    }
    return FaultRule::kAnyRequest;
}

bool Matches(const FaultRule& rule, int type)
{
    return rule.requestType == FaultRule::kAnyRequest || rule.requestType == type;
}

bool IsForFrames(const FaultRule& rule)
{
    return rule.replyType != FaultRule::kWholeAnswer;
}

/// Whether nothing of an answer is left behind what such a fault makes of it.
bool EndsAnswer(FaultKind kind)
{
    constexpr FaultKind kEnds[] = {FaultKind::Drop,       FaultKind::Nak,    FaultKind::NakStorm,
                                   FaultKind::Ack,        FaultKind::HangUp, FaultKind::Reboot,
                                   FaultKind::ReplyForAck};
    return std::find(std::begin(kEnds), std::end(kEnds), kind) != std::end(kEnds);
}

bool CutsRequest(const FaultRule& rule)
{
    return rule.kind == FaultKind::HangUp && rule.place == HangUpPlace::Request;
}

/// How much of a request must be there for the cut; its type is its third byte.
std::size_t CutAt(const FaultRule& rule)
{
    const int least = rule.requestType == FaultRule::kAnyRequest ? 1 : 3;
    return static_cast<std::size_t>(std::max(AmountOr(rule, 1), least));
}

} // namespace

FaultInjector::Outcome FaultInjector::Apply(const Request& request, std::vector<Bytes> answer,
                                            bool goesOn)
{
    m_requestType = RequestType(request);
    m_cut.reset();
    Outcome outcome = ApplyToFrames(std::move(answer));
    for (RuleState& state : m_rules) {
        if (IsForFrames(state.rule) || !Matches(state.rule, m_requestType)) {
            continue;
        }
        if (!CutsRequest(state.rule)) {
            if (!Strikes(state)) {
                continue;
            }
            const auto cutAt = static_cast<std::size_t>(AmountOr(state.rule, 0));
            const std::size_t size = SizeOf(outcome.pieces);
            if (state.rule.kind == FaultKind::HangUp && goesOn && !outcome.ends && cutAt > size) {
                m_cut = ComingCut{state.rule, cutAt - size};
            } else {
                Strike(state.rule, outcome);
                outcome.ends = outcome.ends || EndsAnswer(state.rule.kind);
            }
        } else if (request.bytes.size() <= CutAt(state.rule) && Strikes(state)) {
            outcome.pieces = {HangUpPiece(state.rule)}; // too short to be cut before its end
            outcome.ends = true;
        }
    }
    return outcome;
}

FaultInjector::Outcome FaultInjector::ApplyToNext(std::optional<Bytes> frame)
{
    if (!frame) {
        Outcome outcome;
        if (m_cut) {
            outcome.pieces = {HangUpPiece(m_cut->rule)};
            m_cut.reset();
        }
        return outcome;
    }
    std::vector<Bytes> frames;
    frames.push_back(*std::move(frame));
    Outcome outcome = ApplyToFrames(std::move(frames));
    if (m_cut) {
        const std::size_t size = SizeOf(outcome.pieces);
        if (m_cut->bytesLeft <= size) {
            CutAnswer(outcome.pieces, m_cut->bytesLeft, m_cut->rule);
            outcome.ends = true;
            m_cut.reset();
        } else {
            m_cut->bytesLeft -= size;
        }
    }
    return outcome;
}

FaultInjector::Outcome FaultInjector::ApplyToFrames(std::vector<Bytes> frames)
{
    Outcome all;
    for (Bytes& frame : frames) {
        if (all.ends) {
            break;
        }
        const int type = IsFrame(frame) ? frame[2] : FaultRule::kWholeAnswer;
        Outcome one;
        one.pieces.push_back({std::move(frame)});
        for (RuleState& state : m_rules) {
            const bool isMeant = IsForFrames(state.rule) && state.rule.replyType == type &&
                                 Matches(state.rule, m_requestType);
            if (isMeant && Strikes(state)) {
                Strike(state.rule, one);
                one.ends = one.ends || state.rule.kind == FaultKind::HangUp ||
                           state.rule.kind == FaultKind::Reboot;
            }
        }
        std::move(one.pieces.begin(), one.pieces.end(), std::back_inserter(all.pieces));
        all.silence = std::max(all.silence, one.silence);
        all.ends = one.ends;
    }
    return all;
}

std::optional<Piece> FaultInjector::CutRequest(std::span<const std::uint8_t> begun)
{
    for (RuleState& state : m_rules) {
        const bool isThere = CutsRequest(state.rule) && begun.size() == CutAt(state.rule) &&
                             (state.rule.requestType == FaultRule::kAnyRequest ||
                              (begun.front() == kStx && state.rule.requestType == begun[2]));
        if (isThere && Strikes(state)) {
            return HangUpPiece(state.rule);
        }
    }
    return std::nullopt;
}

bool FaultInjector::Strikes(RuleState& state)
{
    const FaultRule& rule = state.rule;
    if (rule.count != 0 && state.faults >= rule.count) {
        return false;
    }
    ++state.seen;
    if (state.seen <= rule.skip ||
        (state.seen - rule.skip) % std::max<std::size_t>(rule.every, 1) != 0) {
        return false;
    }
    if (rule.chance < 1.0) {
        constexpr double kRange = 4294967296.0; // of the generator, which gives 32 bits
        if (static_cast<double>(m_random()) / kRange >= rule.chance) {
            return false;
        }
    }
    ++state.faults;
    return true;
}

void FaultInjector::Strike(const FaultRule& rule, Outcome& outcome)
{
    outcome.silence = std::max(outcome.silence, Inflict(rule, outcome.pieces, m_random));
}

} // namespace fieldcore::simulator

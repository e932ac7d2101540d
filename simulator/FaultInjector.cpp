#include "simulator/FaultInjector.h"

#include "simulator/FaultActions.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace fieldcore::simulator {

namespace {

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

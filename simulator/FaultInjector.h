#pragma once

#include "simulator/FaultRule.h"
#include "simulator/Outgoing.h"
#include "simulator/RequestParser.h"

#include <cstdint>
#include <optional>
#include <random>
#include <span>
#include <vector>

namespace fieldcore::simulator {

/// Keeps the fault rules and does to each answer what they say, one rule after the other. The
/// same rules, requests and start of the random numbers give the same faults. One thread at a
/// time.
class FaultInjector
{
public:
    explicit FaultInjector(std::uint32_t chanceStart) : m_random(chanceStart) {}

    void Add(const FaultRule& rule) { m_rules.push_back({rule}); }
    void Clear() { m_rules.clear(); }

    /// What becomes of an answer.
    struct Outcome
    {
        Pieces pieces;
        Clock::Duration silence{}; ///< so long the receiver hears and says nothing from now on
        bool ends = false;         ///< what would follow is not sent either
    };

    /// What becomes of the answer to @p request. Call it once for every request.
    /// @param goesOn  more frames follow, which come through ApplyToNext()
    [[nodiscard]] Outcome Apply(const Request& request, std::vector<Bytes> answer,
                                bool goesOn = false);

    /// What becomes of the next frame of that answer.
    /// @param frame  nothing: the answer is at its end
    [[nodiscard]] Outcome ApplyToNext(std::optional<Bytes> frame);

    /// A hang-up that cuts the request of which @p begun has come. Call it for every byte.
    [[nodiscard]] std::optional<Piece> CutRequest(std::span<const std::uint8_t> begun);

private:
    struct RuleState
    {
        FaultRule rule;
        std::size_t seen = 0;   // matching requests
        std::size_t faults = 0; // that it has made of them
    };

    [[nodiscard]] bool Strikes(RuleState& state);
    /// A hang-up of a whole answer whose byte has not come yet.
    struct ComingCut
    {
        FaultRule rule;
        std::size_t bytesLeft = 0;
    };

    void Strike(const FaultRule& rule, Outcome& outcome);
    /// Does to each frame what the rules for single frames say.
    [[nodiscard]] Outcome ApplyToFrames(std::vector<Bytes> frames);

    std::vector<RuleState> m_rules;
    std::mt19937 m_random;
    int m_requestType = FaultRule::kAnyRequest; // of the answer that is being given
    std::optional<ComingCut> m_cut;             // of it
};

} // namespace fieldcore::simulator

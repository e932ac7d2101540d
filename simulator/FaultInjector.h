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

    /// What becomes of the answer to @p request. Call it once for every request.
    /// @param silence  how long the receiver hears and says nothing from now on; set by a reboot
    [[nodiscard]] Pieces Apply(const Request& request, const std::vector<Bytes>& answer,
                               Clock::Duration& silence);

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
    void Inflict(const FaultRule& rule, Pieces& pieces, Clock::Duration& silence);
    [[nodiscard]] Bytes RandomBytes(std::size_t count);

    std::vector<RuleState> m_rules;
    std::mt19937 m_random;
};

} // namespace fieldcore::simulator

#pragma once

#include "simulator/FaultRule.h"
#include "simulator/Outgoing.h"

#include <cstddef>
#include <random>

namespace fieldcore::simulator {

// What a fault does to the bytes of an answer.

/// @param pieces  the answer, or one frame of it
/// @return how long the receiver hears and says nothing from then on
[[nodiscard]] Clock::Duration Inflict(const FaultRule& rule, Pieces& pieces, std::mt19937& random);

/// Ends the answer behind its first @p bytes bytes, with a hang-up.
void CutAnswer(Pieces& pieces, std::size_t bytes, const FaultRule& rule);
[[nodiscard]] Piece HangUpPiece(const FaultRule& rule);

/// The rule's number, or @p usual where it has none.
[[nodiscard]] int AmountOr(const FaultRule& rule, int usual);
[[nodiscard]] bool IsFrame(const Bytes& bytes);
/// How many bytes they are together.
[[nodiscard]] std::size_t SizeOf(const Pieces& pieces);

} // namespace fieldcore::simulator

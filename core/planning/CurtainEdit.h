#pragma once

#include "core/planning/SkyLimits.h"

#include <deque>
#include <optional>

namespace fieldcore {

/// An obstruction curtain while it is being drawn: strokes, ranges and single degrees, all of which
/// can be taken back. Azimuths are degrees of any size and count around the circle; elevations are
/// brought into 0 to 90 degrees and rounded to whole ones. What is not finite changes nothing. User
/// interface thread only.
class CurtainEdit
{
public:
    static constexpr int kMaxElevationDeg = 90;
    /// So many changes can be taken back.
    static constexpr std::size_t kMostUndos = 200;

    CurtainEdit() = default;
    explicit CurtainEdit(const ObstructionCurtain& curtain) : m_curtain(curtain) {}

    [[nodiscard]] const ObstructionCurtain& Curtain() const { return m_curtain; }
    /// @param azimuthDeg  any whole number
    [[nodiscard]] int At(int azimuthDeg) const;

    // A stroke: the points of a finger on its way. All of it is one change.

    /// Begins a stroke with its first point. One that is under way ends.
    void BeginStroke(double azimuthDeg, double elevationDeg);
    /// Goes on to the next point: the entries between this one and the last get elevations between
    /// the two, on the shorter way round, clockwise if both are equally long. Without a stroke
    /// under way it begins one.
    void StrokeTo(double azimuthDeg, double elevationDeg);
    void EndStroke();
    [[nodiscard]] bool IsStroking() const { return m_last.has_value(); }

    /// Sets the entries from @p fromDeg clockwise to @p toDeg, both included, across north where
    /// @p toDeg is the smaller.
    void SetRange(int fromDeg, int toDeg, int elevationDeg);
    /// Takes away all obstructions.
    void Clear();
    /// Takes another curtain in place of this one. Entries above 90 become 90.
    void Replace(const ObstructionCurtain& curtain);

    [[nodiscard]] bool CanUndo() const { return !m_undo.empty(); }
    [[nodiscard]] bool CanRedo() const { return !m_redo.empty(); }
    /// Takes the last change back. Ends a stroke that is under way, and takes that back.
    void Undo();
    /// Makes the change again that was taken back last. A new change leaves nothing to make again.
    void Redo();

private:
    struct Point
    {
        int azimuthDeg;
        int elevationDeg;
    };
    [[nodiscard]] static std::optional<Point> PointOf(double azimuthDeg, double elevationDeg);
    /// Keeps the curtain of before a change, if it was one.
    void Keep(const ObstructionCurtain& before);

    ObstructionCurtain m_curtain{};
    ObstructionCurtain m_beforeStroke{};
    std::optional<Point> m_last; ///< of the stroke that is under way
    std::deque<ObstructionCurtain> m_undo;
    std::deque<ObstructionCurtain> m_redo;
};

} // namespace fieldcore

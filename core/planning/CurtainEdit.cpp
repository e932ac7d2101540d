#include "core/planning/CurtainEdit.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace fieldcore {

namespace {

constexpr int kCircle = 360;

std::size_t IndexOf(int azimuthDeg)
{
    const int within = azimuthDeg % kCircle;
    return static_cast<std::size_t>(within < 0 ? within + kCircle : within);
}

std::uint8_t Entry(int elevationDeg)
{
    return static_cast<std::uint8_t>(std::clamp(elevationDeg, 0, CurtainEdit::kMaxElevationDeg));
}

} // namespace

int CurtainEdit::At(int azimuthDeg) const
{
    return m_curtain[IndexOf(azimuthDeg)];
}

std::optional<CurtainEdit::Point> CurtainEdit::PointOf(double azimuthDeg, double elevationDeg)
{
    if (!std::isfinite(azimuthDeg) || !std::isfinite(elevationDeg)) {
        return std::nullopt;
    }
    double azimuth = std::fmod(azimuthDeg, kCircle);
    azimuth += azimuth < 0.0 ? kCircle : 0.0;
    // Entry k covers the azimuths from k on: nothing is rounded up. What is a hair below north may
    // come out as 360.
    const int entry = static_cast<int>(azimuth) % kCircle;
    const double elevation = std::clamp(elevationDeg, 0.0, double{kMaxElevationDeg});
    return Point{entry, static_cast<int>(std::lround(elevation))};
}

void CurtainEdit::BeginStroke(double azimuthDeg, double elevationDeg)
{
    EndStroke();
    const std::optional<Point> point = PointOf(azimuthDeg, elevationDeg);
    if (!point) {
        return;
    }
    m_beforeStroke = m_curtain;
    m_curtain[IndexOf(point->azimuthDeg)] = Entry(point->elevationDeg);
    m_last = point;
}

void CurtainEdit::StrokeTo(double azimuthDeg, double elevationDeg)
{
    if (!m_last) {
        BeginStroke(azimuthDeg, elevationDeg);
        return;
    }
    const std::optional<Point> point = PointOf(azimuthDeg, elevationDeg);
    if (!point) {
        return;
    }
    int way = point->azimuthDeg - m_last->azimuthDeg; // clockwise
    if (way > kCircle / 2) {
        way -= kCircle;
    } else if (way <= -kCircle / 2) {
        way += kCircle;
    }
    const int steps = std::max(std::abs(way), 1);
    const double rise = static_cast<double>(point->elevationDeg - m_last->elevationDeg) / steps;
    // The last point has its entry already: going back over it must not lift it again.
    for (int step = 1; step <= steps; ++step) {
        const int elevation = static_cast<int>(std::lround(m_last->elevationDeg + rise * step));
        const int azimuth = m_last->azimuthDeg + (way < 0 ? -step : way > 0 ? step : 0);
        m_curtain[IndexOf(azimuth)] = Entry(elevation);
    }
    m_last = point;
}

void CurtainEdit::EndStroke()
{
    if (m_last) {
        m_last.reset();
        Keep(m_beforeStroke);
    }
}

void CurtainEdit::SetRange(int fromDeg, int toDeg, int elevationDeg)
{
    EndStroke();
    const ObstructionCurtain before = m_curtain;
    const std::size_t last = IndexOf(toDeg);
    for (std::size_t at = IndexOf(fromDeg);; at = (at + 1) % m_curtain.size()) {
        m_curtain[at] = Entry(elevationDeg);
        if (at == last) {
            break;
        }
    }
    Keep(before);
}

void CurtainEdit::Clear()
{
    Replace({});
}

void CurtainEdit::Replace(const ObstructionCurtain& curtain)
{
    EndStroke();
    const ObstructionCurtain before = m_curtain;
    std::transform(curtain.begin(), curtain.end(), m_curtain.begin(),
                   [](std::uint8_t entry) { return Entry(entry); });
    Keep(before);
}

void CurtainEdit::Undo()
{
    EndStroke();
    if (!m_undo.empty()) {
        m_redo.push_back(m_curtain);
        m_curtain = m_undo.back();
        m_undo.pop_back();
    }
}

void CurtainEdit::Redo()
{
    EndStroke();
    if (!m_redo.empty()) {
        m_undo.push_back(m_curtain);
        m_curtain = m_redo.back();
        m_redo.pop_back();
    }
}

void CurtainEdit::Keep(const ObstructionCurtain& before)
{
    if (before == m_curtain) {
        return;
    }
    m_redo.clear();
    m_undo.push_back(before);
    if (m_undo.size() > kMostUndos) {
        m_undo.pop_front();
    }
}

} // namespace fieldcore

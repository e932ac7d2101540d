#pragma once

#include "core/equipment/StatusHistory.h"
#include "core/platform/Clock.h"
#include "ui/controls/GraphicsBase.h"

namespace fieldcore {

/// Satellites and PDOP of the last hour: two bands over one axis of minutes before now. The
/// satellites go in steps, the PDOP as a line that breaks where there was none. User-interface
/// thread only.
class StatusHistoryView : public CGraphicsBase
{
    Q_OBJECT

public:
    explicit StatusHistoryView(QWidget* parent = nullptr);

    /// Draws anew only if there is another sample, or time has moved the graph by half a pixel.
    /// @param history  copied
    /// @param now      of the clock that the samples are timed by
    void Show(const StatusHistory& history, Clock::Duration now);

    [[nodiscard]] const StatusHistory& History() const { return m_history; }

    [[nodiscard]] QSize sizeHint() const override { return {456, 240}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {240, 160}; }

protected:
    void Draw(QPainter& painter, const QSizeF& size) override;

private:
    struct Band;
    void Describe();
    void DrawBand(QPainter& painter, const Band& band) const;
    void DrawCurve(QPainter& painter, const Band& band) const;

    StatusHistory m_history;
    Clock::Duration m_now{};
};

} // namespace fieldcore

#pragma once

#include "core/planning/LiveSky.h"
#include "ui/controls/GraphicsBase.h"
#include "ui/planning/PlotStyle.h"
#include "ui/planning/SkyDisc.h"

#include <optional>
#include <vector>

namespace fieldcore {

/// The sky plot of the live satellites: their signs with numbers, and behind them a small cross
/// where the almanac has each GPS satellite. A touch chooses the satellite that is nearest, the
/// arrow keys go from one to the next. User-interface thread only.
class LiveSkyView : public CGraphicsBase
{
    Q_OBJECT

public:
    struct Picture
    {
        std::vector<LiveSatellite> satellites;
        std::vector<PredictedSatellite> predicted;
        bool isStale = false;
        QString notice; ///< in place of satellites, such as that there are none
    };

    explicit LiveSkyView(QWidget* parent = nullptr);

    /// The chosen satellite stays chosen as long as it is there.
    void Show(const Picture& picture);
    void SetFromBelow(bool isFromBelow);
    /// @param row  of Picture::satellites; -1: none
    void Choose(int row);
    /// -1: none.
    [[nodiscard]] int Chosen() const;
    /// Where the sign of a satellite stands, logical pixels.
    /// @param row  of Picture::satellites
    [[nodiscard]] QPointF PointOf(int row) const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The user has chosen the satellite of that row.
    void Picked(int row);

protected:
    void Draw(QPainter& painter, const QSizeF& size) override;
    void DrawOver(QPainter& painter, const QSizeF& size) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    [[nodiscard]] PlotStyle Style() const;
    void Pick(int row);

    Picture m_picture;
    bool m_isFromBelow = false;
    std::optional<LiveSatellite> m_chosen;
};

} // namespace fieldcore

#pragma once

#include "core/planning/LiveSky.h"
#include "ui/controls/GraphicsBase.h"

#include <optional>
#include <vector>

namespace fieldcore {

/// The signals of the live satellites as bars, one group a satellite, the first signal leftmost and
/// darkest. The scale is 0 to 60 dB-Hz. As wide as its satellites need: it stands in something that
/// scrolls. User-interface thread only.
class SignalBars : public CGraphicsBase
{
    Q_OBJECT

public:
    /// Bars end here, dB-Hz.
    static constexpr double kTop = 60.0;

    explicit SignalBars(QWidget* parent = nullptr);

    /// A satellite without any signal has no group.
    /// @param isStale  drawn grey
    void Show(const std::vector<LiveSatellite>& satellites, bool isStale);
    /// Marks a satellite.
    void Choose(const std::optional<LiveSatellite>& satellite);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void Draw(QPainter& painter, const QSizeF& size) override;

private:
    [[nodiscard]] int ScaleWidth() const;
    [[nodiscard]] int GroupWidth() const;

    std::vector<LiveSatellite> m_satellites;
    bool m_isStale = false;
    std::optional<LiveSatellite> m_chosen;
};

} // namespace fieldcore

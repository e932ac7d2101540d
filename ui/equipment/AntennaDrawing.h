#pragma once

#include "core/equipment/AntennaCatalogue.h"
#include "ui/controls/GraphicsBase.h"

#include <optional>

namespace fieldcore {

/// Shows what is measured for an antenna: the mark on the ground, the antenna above it, the line
/// that is measured, R and V, and the vertical height that comes out. Not to scale: V would be too
/// small to see. User-interface thread only.
class AntennaDrawing : public CGraphicsBase
{
    Q_OBJECT

public:
    explicit AntennaDrawing(QWidget* parent = nullptr);

    /// @param height   how it is measured, and with which R and V
    /// @param isKnown  false: no height has been typed that could be written to the lines
    void Show(const AntennaHeight& height, bool isKnown);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void Draw(QPainter& painter, const QSizeF& size) override;

private:
    AntennaHeight m_height;
    bool m_isKnown = false;
};

} // namespace fieldcore

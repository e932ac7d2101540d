#pragma once

#include "core/tilt/Bubble.h"
#include "ui/controls/GraphicsBase.h"

namespace fieldcore {

/// The round vial seen from above: ground, rim and cross lines; the bubble; glass and tolerance
/// ring in front. Drawn for a square of 96 and scaled to whatever room there is. User-interface
/// thread only.
///
/// Within tolerance the bubble is green with a tick, outside amber with an exclamation mark; a
/// picture that is not fresh is grey.
class BubbleView : public CGraphicsBase
{
    Q_OBJECT

public:
    explicit BubbleView(QWidget* parent = nullptr);

    /// @param isStale  the picture is of a reading that is not fresh
    void Show(const BubblePicture& picture, bool isStale);
    [[nodiscard]] const BubblePicture& Picture() const { return m_picture; }

    [[nodiscard]] QSize sizeHint() const override { return {kVialWidth, kVialWidth}; }

protected:
    void Draw(QPainter& painter, const QSizeF& size) override;

private:
    void DrawVial(QPainter& painter) const;
    void DrawBubble(QPainter& painter) const;
    void DrawGlass(QPainter& painter) const;
    void DrawMessage(QPainter& painter) const;

    BubblePicture m_picture;
    bool m_isStale = true;
};

} // namespace fieldcore

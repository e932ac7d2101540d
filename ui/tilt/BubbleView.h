#pragma once

#include "core/tilt/Bubble.h"
#include "ui/controls/GraphicsBase.h"

namespace fieldcore {

/// The round vial seen from above: ground, rim and cross lines; the bubble; glass and tolerance
/// ring in front. Drawn for a square of 96 and scaled to whatever room there is. User-interface
/// thread only.
///
/// Within tolerance the bubble is green with a tick, outside amber with an exclamation mark; a
/// picture that is not fresh is grey, and says so.
class BubbleView : public CGraphicsBase
{
    Q_OBJECT

public:
    explicit BubbleView(QWidget* parent = nullptr);

    /// Where the picture comes from.
    enum class Source
    {
        NotReceived, ///< no receiver, no answer, or none for too long
        NoSensor,
        Reading,
    };
    void Show(const BubblePicture& picture, Source source);
    [[nodiscard]] const BubblePicture& Picture() const { return m_picture; }

    [[nodiscard]] QSize sizeHint() const override { return {kVialWidth, kVialWidth}; }

protected:
    void Draw(QPainter& painter, const QSizeF& size) override;

private:
    void DrawVial(QPainter& painter) const;
    void DrawBubble(QPainter& painter) const;
    void DrawGlass(QPainter& painter) const;
    void DrawMessage(QPainter& painter) const;

    /// What the picture says, a number of the string table.
    [[nodiscard]] int Words() const;
    [[nodiscard]] bool IsFresh() const { return m_source == Source::Reading; }

    BubblePicture m_picture;
    Source m_source = Source::NotReceived;
};

} // namespace fieldcore

#pragma once

#include <QProxyStyle>

namespace fieldcore {

/// The shape of all controls: large enough for a glove, whatever the font. Colours come from Theme
/// by way of the palette. User-interface thread only.
class TouchStyle : public QProxyStyle
{
    Q_OBJECT

public:
    TouchStyle();

    /// The least height of what can be touched, logical pixels.
    static constexpr int kTarget = 44;
    /// The grid that distances are multiples of, logical pixels.
    static constexpr int kGrid = 8;

    /// Keeps the pixels of the controls whole, whatever resolution the display says that it has.
    /// Before the application is made.
    static void UseWholePixels();
    /// Gives the whole application this style and its font of 16 px, in a face that has Japanese.
    /// On a display that wants larger text it is larger by as much as every screen has room for.
    static void Install();

    /// Whether there is a font with Japanese.
    [[nodiscard]] static bool CanDrawJapanese();

    /// The one for a control that must be large in an application with a style of its own.
    static TouchStyle* Shared();

    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option,
                                  const QWidget* widget) const override;
    [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption* option,
                                         const QSize& size, const QWidget* widget) const override;
    [[nodiscard]] int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                QStyleHintReturn* returned) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    using QProxyStyle::polish;
    void polish(QWidget* widget) override;
};

/// Brings a window that is about to be seen into the screen of the one beneath it: no larger than
/// the screen, and with all its edges on it.
void FitOnScreen(QWidget& window);

} // namespace fieldcore

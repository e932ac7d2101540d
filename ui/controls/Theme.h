#pragma once

#include <QColor>

#include <array>

namespace fieldcore {

/// The colours of all screens, plots and icons among them. User-interface thread only.
struct Theme
{
    /// Which colours are used.
    enum class Kind
    {
        Daylight,
        Dark,
        System, ///< whichever of the two is nearer to the desktop's own
    };

    bool isDark = false; ///< light on dark
    QColor ground;       ///< of the whole window
    QColor raised;       ///< ground of what stands out: bars, buttons, cards
    QColor text;
    QColor second; ///< text of less weight, axes
    QColor accent;
    QColor good;
    QColor attention;
    QColor bad;
    QColor stale; ///< a value that is no longer fresh
    /// Curves and satellites, to be told apart with any eyes.
    std::array<QColor, 7> curves;

    /// The one that is used, and the two that there are.
    [[nodiscard]] static const Theme& Current();
    [[nodiscard]] static const Theme& Daylight();
    [[nodiscard]] static const Theme& Dark();
    /// Paints the whole application anew.
    static void Use(Kind kind);
    [[nodiscard]] static Kind Used();

    /// The colour of curve @p index, whatever its size.
    [[nodiscard]] const QColor& Curve(int index) const;
};

} // namespace fieldcore

#include "ui/controls/Theme.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>

#include <cstddef>

namespace fieldcore {

namespace {

Theme::Kind g_used = Theme::Kind::Daylight;
bool g_dark = false;

QColor Rgb(unsigned value)
{
    return QColor::fromRgb(value);
}

/// The seven that people with any colour vision tell apart, the last by the ground.
std::array<QColor, 7> Curves(bool dark)
{
    return {Rgb(dark ? 0x56B4E9U : 0x0072B2U),
            Rgb(dark ? 0xE69F00U : 0xD55E00U),
            Rgb(0x009E73U),
            Rgb(0xCC79A7U),
            Rgb(dark ? 0x0072B2U : 0x56B4E9U),
            Rgb(dark ? 0xD55E00U : 0xE69F00U),
            Rgb(dark ? 0xFFFFFFU : 0x000000U)};
}

QPalette PaletteOf(const Theme& theme)
{
    QPalette palette;
    palette.setColor(QPalette::Window, theme.ground);
    palette.setColor(QPalette::WindowText, theme.text);
    palette.setColor(QPalette::Base, theme.ground);
    palette.setColor(QPalette::AlternateBase, theme.raised);
    palette.setColor(QPalette::Text, theme.text);
    palette.setColor(QPalette::Button, theme.raised);
    palette.setColor(QPalette::ButtonText, theme.text);
    palette.setColor(QPalette::BrightText, theme.bad);
    palette.setColor(QPalette::Highlight, theme.accent);
    palette.setColor(QPalette::HighlightedText, theme.ground);
    palette.setColor(QPalette::ToolTipBase, theme.raised);
    palette.setColor(QPalette::ToolTipText, theme.text);
    palette.setColor(QPalette::PlaceholderText, theme.second);
    palette.setColor(QPalette::Link, theme.accent);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, theme.stale);
    }
    return palette;
}

bool DesktopIsDark()
{
    return QApplication::style()->standardPalette().color(QPalette::Window).lightness() < 128;
}

} // namespace

const Theme& Theme::Daylight()
{
    static const Theme theme{false,         Rgb(0xFFFFFF), Rgb(0xF1F4F7), Rgb(0x101418),
                             Rgb(0x44505C), Rgb(0x0B4F94), Rgb(0x0F5E2C), Rgb(0x774500),
                             Rgb(0x9B1D18), Rgb(0x626D79), Curves(false)};
    return theme;
}

const Theme& Theme::Dark()
{
    static const Theme theme{true,          Rgb(0x14181C), Rgb(0x1F262D), Rgb(0xF2F5F7),
                             Rgb(0xB4C0CA), Rgb(0x7FB6F0), Rgb(0x6FCF8E), Rgb(0xF2B95E),
                             Rgb(0xF49C94), Rgb(0x8A96A1), Curves(true)};
    return theme;
}

const Theme& Theme::Current()
{
    return g_dark ? Dark() : Daylight();
}

void Theme::Use(Kind kind)
{
    g_used = kind;
    g_dark = kind == Kind::Dark || (kind == Kind::System && DesktopIsDark());
    QApplication::setPalette(PaletteOf(Current()));
}

Theme::Kind Theme::Used()
{
    return g_used;
}

const QColor& Theme::Curve(int index) const
{
    return curves[static_cast<std::size_t>(index) % curves.size()];
}

} // namespace fieldcore

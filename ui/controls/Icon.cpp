#include "ui/controls/Icon.h"

#include "ui/controls/Theme.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>

/// The resources of a static library are left out of the program unless somebody names them, and
/// that cannot be done inside a namespace.
static void LoadFieldcoreIcons()
{
    Q_INIT_RESOURCE(Icons);
}

namespace fieldcore {

namespace {

/// The drawings are in the daylight colours, so that any program shows them as they are meant.
constexpr const char* kLineInFile = "#101418";
constexpr const char* kAccentInFile = "#0B4F94";

QString Folder()
{
    return QStringLiteral(":/fieldcore/icons/");
}

class ThemeIconEngine : public QIconEngine
{
public:
    ThemeIconEngine(const QString& name, const QColor& accent) : m_name(name), m_accent(accent) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        Q_UNUSED(state)
        const int size = std::min(rect.width(), rect.height());
        const double ratio = painter->device()->devicePixelRatioF();
        QRect place(0, 0, size, size);
        place.moveCenter(rect.center());
        painter->drawPixmap(place, Drawn(size, ratio, mode));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1.0);
    }

    /// @param size  in device pixels
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                         qreal scale) override
    {
        Q_UNUSED(state)
        const int edge = std::min(size.width(), size.height());
        return Drawn(static_cast<int>(std::lround(edge / scale)), scale, mode);
    }

    QIconEngine* clone() const override { return new ThemeIconEngine(m_name, m_accent); }

private:
    QPixmap Drawn(int size, double ratio, QIcon::Mode mode) const
    {
        const Theme& theme = Theme::Current();
        QColor line = theme.text;
        QColor accent = m_accent.isValid() ? m_accent : theme.accent;
        if (mode == QIcon::Disabled) {
            line = theme.stale;
            accent = theme.stale;
        } else if (mode == QIcon::Selected) { // on the accent: the ground is what shows there
            line = theme.ground;
            accent = theme.ground;
        }
        return DrawIcon(m_name, size, ratio, line, accent);
    }

    QString m_name;
    QColor m_accent;
};

} // namespace

QPixmap DrawIcon(const QString& name, int size, double devicePixelRatio, const QColor& line,
                 const QColor& accent)
{
    LoadFieldcoreIcons();
    const int pixels = static_cast<int>(std::lround(size * devicePixelRatio));
    const QString key = QStringLiteral("fieldcore-%1-%2-%3-%4")
                            .arg(name)
                            .arg(pixels)
                            .arg(line.rgba(), 0, 16)
                            .arg(accent.rgba(), 0, 16);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = QPixmap(pixels, pixels);
        pixmap.fill(Qt::transparent);
        QFile file(Folder() + name + QStringLiteral(".svg"));
        if (file.open(QIODevice::ReadOnly)) {
            QByteArray svg = file.readAll();
            svg.replace(kLineInFile, line.name().toLatin1());
            // After the line, whose new colour may be the old accent but never is in our themes.
            svg.replace(kAccentInFile, accent.name().toLatin1());
            QSvgRenderer renderer(svg);
            QPainter painter(&pixmap);
            renderer.render(&painter);
        }
        QPixmapCache::insert(key, pixmap);
    }
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

QIcon ThemeIcon(const QString& name, const QColor& accent)
{
    return QIcon(new ThemeIconEngine(name, accent));
}

QStringList IconNames()
{
    LoadFieldcoreIcons();
    QStringList names = QDir(Folder()).entryList(QDir::Files, QDir::Name);
    for (QString& name : names) {
        name.chop(4); // .svg
    }
    return names;
}

} // namespace fieldcore

#include "ui/planning/PlanExport.h"

#include "core/planning/PlanCsv.h"
#include "core/platform/AtomicFile.h"
#include "ui/controls/UiText.h"
#include "ui/planning/PlanPainter.h"
#include "ui/planning/PlanSheet.h"

#include <QBuffer>
#include <QImage>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

#include <cmath>
#include <span>
#include <string>

namespace fieldcore {

namespace fs = std::filesystem;

namespace {

constexpr double kLogicalDpi = 96.0;
constexpr double kMetresPerInch = 0.0254;

std::error_code Replace(const fs::path& file, std::span<const std::byte> content)
{
    fs::path temporary = file.filename();
    temporary += ".new";
    return ReplaceFile(file, temporary, content);
}

std::error_code Replace(const fs::path& file, const QByteArray& content)
{
    return Replace(file, std::as_bytes(std::span(content.constData(),
                                                 static_cast<std::size_t>(content.size()))));
}

bool IsSize(const QSize& size)
{
    constexpr int kLeast = 64;
    constexpr int kMost = 20000;
    return size.width() >= kLeast && size.height() >= kLeast && size.width() <= kMost &&
           size.height() <= kMost;
}

std::error_code Refusal(const PlanDrawing& drawing)
{
    return drawing.Obstacle().isEmpty() ? std::error_code()
                                        : std::make_error_code(std::errc::operation_not_permitted);
}

void PaintOnPaper(QPainter& painter, const PlanDrawing& drawing, const QSizeF& size)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRectF(QPointF(), size), Qt::white);
    PaintGraph(painter, drawing, PlotStyle::OnPaper(), QRectF(QPointF(), size));
}

QString TitleOf(const PlanDrawing& drawing)
{
    return UiText(text::kSheetTitle) + QLatin1Char(' ') + ToQt(drawing.site) + QLatin1Char(' ') +
           PlanDateText(drawing);
}

} // namespace

std::error_code ExportPdf(const fs::path& file, const PlanDrawing& drawing)
{
    if (const std::error_code refusal = Refusal(drawing)) {
        return refusal;
    }
    return ExportPages(file, TitleOf(drawing), 1,
                       [&](QPainter& painter, int) { plan_sheet::Paint(painter, drawing); });
}

std::error_code ExportPages(const fs::path& file, const QString& title, int pages,
                            const std::function<void(QPainter& painter, int page)>& paint)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setTitle(title);
        writer.setPageLayout(
            QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF()));
        writer.setResolution(1200);
        QPainter painter;
        if (!painter.begin(&writer)) {
            return std::make_error_code(std::errc::io_error);
        }
        painter.scale(writer.width() / plan_sheet::kPage.width(),
                      writer.height() / plan_sheet::kPage.height());
        for (int page = 0; page < pages; ++page) {
            if (page > 0 && !writer.newPage()) {
                return std::make_error_code(std::errc::io_error);
            }
            paint(painter, page);
        }
    }
    return Replace(file, buffer.data());
}

std::error_code ExportPng(const fs::path& file, const PlanDrawing& drawing, const QSize& size,
                          double dpi)
{
    constexpr double kLeastDpi = 48.0;
    constexpr double kMostDpi = 1200.0;
    if (const std::error_code refusal = Refusal(drawing)) {
        return refusal;
    }
    if (!IsSize(size) || !(dpi >= kLeastDpi && dpi <= kMostDpi)) {
        return std::make_error_code(std::errc::invalid_argument);
    }
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull()) {
        return std::make_error_code(std::errc::not_enough_memory);
    }
    image.setDotsPerMeterX(static_cast<int>(std::lround(dpi / kMetresPerInch)));
    image.setDotsPerMeterY(image.dotsPerMeterX());
    {
        QPainter painter(&image);
        const double scale = dpi / kLogicalDpi;
        painter.scale(scale, scale);
        PaintOnPaper(painter, drawing, QSizeF(size) / scale);
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "PNG")) {
        return std::make_error_code(std::errc::io_error);
    }
    return Replace(file, buffer.data());
}

std::error_code ExportSvg(const fs::path& file, const PlanDrawing& drawing, const QSize& size)
{
    if (const std::error_code refusal = Refusal(drawing)) {
        return refusal;
    }
    if (!IsSize(size)) {
        return std::make_error_code(std::errc::invalid_argument);
    }
    QBuffer buffer;
    {
        QSvgGenerator generator;
        generator.setOutputDevice(&buffer);
        generator.setTitle(TitleOf(drawing));
        generator.setSize(size);
        generator.setViewBox(QRect(QPoint(), size));
        generator.setResolution(static_cast<int>(kLogicalDpi));
        QPainter painter;
        if (!painter.begin(&generator)) {
            return std::make_error_code(std::errc::io_error);
        }
        PaintOnPaper(painter, drawing, size);
    }
    return Replace(file, buffer.data());
}

std::error_code ExportCsv(const fs::path& file, const PlanDrawing& drawing)
{
    if (const std::error_code refusal = Refusal(drawing)) {
        return refusal;
    }
    const std::string text = PlanCsvHeader(drawing.graph, drawing.plan->IsGpsAlone()) +
                             PlanCsvRows(*drawing.plan, drawing.graph, drawing.site);
    return Replace(file, std::as_bytes(std::span(text)));
}

QString ExportFailureText(const fs::path& file, const std::error_code& error)
{
    // Not file.wstring(): it throws on a name that the locale has no characters for.
    const std::wstring name = QString::fromUtf8(file.native().c_str()).toStdWString();
    const std::wstring cause = QString::fromStdString(error.message()).toStdWString();
    return ToQt(FormatText(text::kExportNotWritten, name.c_str(), cause.c_str()));
}

} // namespace fieldcore

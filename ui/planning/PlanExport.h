#pragma once

#include "ui/planning/PlanDrawing.h"

#include <QPainter>
#include <QSize>
#include <QString>

#include <filesystem>
#include <functional>
#include <system_error>

namespace fieldcore {

// A plan as a file. Each writes its content beside the file first and then replaces the file as a
// whole: after an error the old one is still there. Nothing is written of a drawing that has an
// Obstacle(): operation_not_permitted. User-interface thread only.

/// The sheet of the plan, one page of A4.
[[nodiscard]] std::error_code ExportPdf(const std::filesystem::path& file,
                                        const PlanDrawing& drawing);

/// Pages of A4.
/// @param paint  each, from 0 on, with a painter that is scaled so that plan_sheet::kPage is the
/// page
[[nodiscard]] std::error_code
ExportPages(const std::filesystem::path& file, const QString& title, int pages,
            const std::function<void(QPainter& painter, int page)>& paint);

/// The graph as a picture, black on white.
/// @param size  pixels, each side 64 to 20000
/// @param dpi   pixels to the inch, 48 to 1200: at 96 letters have the size of paper's
/// @return invalid_argument for other sizes; not_enough_memory if they are too much together
[[nodiscard]] std::error_code ExportPng(const std::filesystem::path& file,
                                        const PlanDrawing& drawing, const QSize& size,
                                        double dpi = 96.0);

/// The graph as vectors.
/// @param size  1/96 inch, each side 64 to 20000
[[nodiscard]] std::error_code ExportSvg(const std::filesystem::path& file,
                                        const PlanDrawing& drawing, const QSize& size);

/// The graph's figures, as PlanCsv.h has them.
[[nodiscard]] std::error_code ExportCsv(const std::filesystem::path& file,
                                        const PlanDrawing& drawing);

/// What to tell the user when one of these failed: file, cause, and what to do.
[[nodiscard]] QString ExportFailureText(const std::filesystem::path& file,
                                        const std::error_code& error);

} // namespace fieldcore

#pragma once

#include "ui/planning/PlanDrawing.h"

#include <QPainter>
#include <QSizeF>

namespace fieldcore {

/// The sheet of an observation plan, 観測計画書: a title block, the sky plot, count and PDOP over
/// time, and a table of the good windows, on one upright page of A4. User-interface thread only.
namespace plan_sheet {

/// The page in logical pixels, 1/96 inch: 210 by 297 mm.
inline constexpr QSizeF kPage{793.7, 1122.5};

/// @param painter  scaled so that kPage is the page; its ground is white
/// @param drawing  the kind of its graph does not matter
void Paint(QPainter& painter, const PlanDrawing& drawing);

} // namespace plan_sheet

} // namespace fieldcore

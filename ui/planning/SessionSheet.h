#pragma once

#include "core/planning/SiteSkies.h"

#include <QPainter>
#include <QString>
#include <QStringList>

#include <span>

namespace fieldcore {

/// A session of several sites in words and on paper: 同時観測計画書, upright pages of A4 with the
/// times that suit all sites, a row and a sky plot for each. User-interface thread only.
namespace session_sheet {

/// The day, its hours, the systems and the conditions.
[[nodiscard]] QStringList Heading(const PlanSession& session);
/// "09:00-10:30、12:00-13:00", or that there is none.
[[nodiscard]] QString WindowsText(const PlanSearch& search, const SiteSummary& summary);
/// "衛星7以上、PDOP 2.3以下"
[[nodiscard]] QString ValuesText(const SiteSummary& summary);
/// Mask and curtain of a site.
[[nodiscard]] QString SkyText(const PlanSession& session, const SiteSky& site);

/// One for twelve sites.
[[nodiscard]] int PageCount(std::size_t sites);

/// Computes the plan for each site on the way; it is the session's own again afterwards.
/// @param painter  scaled so that plan_sheet::kPage is the page; its ground is white
/// @param sites    all of them, of which the page has its own
/// @param search   of the session's day and hours, after its last step
/// @param page     0 to PageCount() - 1
void Paint(QPainter& painter, PlanSession& session, std::span<const SiteSky> sites,
           const PlanSearch& search, int page);

} // namespace session_sheet

} // namespace fieldcore

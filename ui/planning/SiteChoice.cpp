#include "ui/planning/SiteChoice.h"

#include "core/planning/PlanSession.h"
#include "core/planning/PlanSite.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"

#include <algorithm>

namespace fieldcore {

SiteChoice::SiteChoice(const PlanSession& session, QWidget* parent) : QListWidget(parent)
{
    setAccessibleName(UiText(text::kSiteList));
    setMinimumHeight(3 * TouchStyle::kTarget);
    setSelectionMode(QAbstractItemView::NoSelection);
    const std::wstring& own = session.Settings().position;
    const std::vector<std::wstring>& before = session.Settings().search.sites;
    for (const auto& [name, entry] : ReadSites(session.Folder())) {
        const bool isOwn = name == own;
        auto* const item = new QListWidgetItem(ToQt(name));
        item->setSizeHint({0, TouchStyle::kTarget});
        item->setFlags(entry.IsComplete() ? Qt::ItemIsEnabled | Qt::ItemIsUserCheckable
                                          : Qt::NoItemFlags);
        const bool isChosen = std::find(before.begin(), before.end(), name) != before.end();
        item->setCheckState(isChosen && entry.IsComplete() ? Qt::Checked : Qt::Unchecked);
        insertItem(isOwn ? 0 : count(), item);
    }
    if (Chosen().empty() && count() > 0 && item(0)->flags().testFlag(Qt::ItemIsEnabled) &&
        item(0)->text() == ToQt(own)) {
        item(0)->setCheckState(Qt::Checked);
    }
    // A tap anywhere on a row: the box alone is small.
    connect(this, &QListWidget::itemPressed, this,
            [this](QListWidgetItem* item) { m_before = item->checkState(); });
    connect(this, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        if (item->checkState() == m_before) { // else the box itself was hit
            item->setCheckState(m_before == Qt::Checked ? Qt::Unchecked : Qt::Checked);
        }
    });
}

std::vector<std::wstring> SiteChoice::Chosen() const
{
    std::vector<std::wstring> names;
    for (int row = 0; row < count(); ++row) {
        if (item(row)->checkState() == Qt::Checked) {
            names.push_back(item(row)->text().toStdWString());
        }
    }
    return names;
}

} // namespace fieldcore

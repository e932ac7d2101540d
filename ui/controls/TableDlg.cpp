#include "ui/controls/TableDlg.h"

#include "ui/controls/NMenuBar.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/Widgets.h"

#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace fieldcore {

TableDlg::TableDlg(const QString& title, const QStringList& heads, const QList<QStringList>& rows,
                   QWidget* parent)
    : Dialog(parent, Extent::Whole)
{
    setWindowTitle(title);
    setAccessibleName(title);
    auto* const table =
        new QTableWidget(static_cast<int>(rows.size()), static_cast<int>(heads.size()));
    table->setAccessibleName(title);
    table->setHorizontalHeaderLabels(heads);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setTabKeyNavigation(false);
    table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->verticalHeader()->hide();
    table->horizontalHeader()->setMinimumHeight(TouchStyle::kTarget);
    table->horizontalHeader()->setHighlightSections(false);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    const auto widest = std::ranges::max_element(heads, {}, &QString::size);
    table->horizontalHeader()->setSectionResizeMode(static_cast<int>(widest - heads.begin()),
                                                    QHeaderView::ResizeToContents);
    for (int row = 0; row < rows.size(); ++row) {
        for (int column = 0; column < heads.size(); ++column) {
            auto* const item = new QTableWidgetItem(rows[row][column]);
            item->setTextAlignment(Qt::AlignCenter);
            table->setItem(row, column, item);
        }
    }
    auto* const menu = new CnMenuBar;
    connect(menu, &CnMenuBar::CloseRequested, this, [this] { Close(kCancelled); });
    LayOut(new QVBoxLayout(this), {}, 0, {{table, 1}, menu});
    table->setFocus();
}

} // namespace fieldcore

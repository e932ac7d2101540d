#pragma once

#include "ui/controls/Dialog.h"

#include <QList>
#include <QStringList>

namespace fieldcore {

/// A page with the figures of a plot as a table, for who cannot read the plot. User-interface
/// thread only.
class TableDlg : public Dialog
{
    Q_OBJECT

public:
    /// @param heads  of the columns
    /// @param rows   as many texts each
    TableDlg(const QString& title, const QStringList& heads, const QList<QStringList>& rows,
             QWidget* parent);
};

} // namespace fieldcore

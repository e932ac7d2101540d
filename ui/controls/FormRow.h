#pragma once

class QFormLayout;
class QString;
class QWidget;

namespace fieldcore {

/// Adds a row whose field is as wide as the form, and whose label stands in the middle of the
/// field's height, as a form of large fields does not do by itself, and takes its mnemonic there.
/// User-interface thread only.
/// @param form, field  a form without rows of several lines; the field becomes the form's
void AddFormRow(QFormLayout& form, const QString& label, QWidget* field);

} // namespace fieldcore

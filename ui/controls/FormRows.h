#pragma once

#include "ui/controls/TouchStyle.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>

namespace fieldcore {

/// Adds a row whose label stands at the middle of its field, and whose field is as wide as the
/// form. A form by itself puts the label of a high field near the field's top.
/// @return the label
inline QLabel* AddFormRow(QFormLayout& form, const QString& words, QWidget* field)
{
    auto* const label = new QLabel(words);
    label->setMinimumHeight(TouchStyle::kTarget);
    field->setMinimumHeight(TouchStyle::kTarget);
    field->setSizePolicy(QSizePolicy::Expanding, field->sizePolicy().verticalPolicy());
    if (auto* const list = qobject_cast<QComboBox*>(field)) {
        // It would shrink to its contents for a moment after it was filled.
        list->setSizeAdjustPolicy(QComboBox::AdjustToContentsOnFirstShow);
    }
    form.addRow(label, field);
    return label;
}

} // namespace fieldcore

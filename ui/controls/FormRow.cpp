#include "ui/controls/FormRow.h"

#include "ui/controls/TouchStyle.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>

namespace fieldcore {

void AddFormRow(QFormLayout& form, const QString& label, QWidget* field)
{
    auto* const shown = new QLabel(label);
    shown->setMinimumHeight(TouchStyle::kTarget);
    shown->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    shown->setBuddy(field);
    field->setMinimumHeight(TouchStyle::kTarget);
    field->setSizePolicy(QSizePolicy::Expanding, field->sizePolicy().verticalPolicy());
    if (auto* const list = qobject_cast<QComboBox*>(field)) {
        // It would shrink to its contents for a moment after it was filled.
        list->setSizeAdjustPolicy(QComboBox::AdjustToContentsOnFirstShow);
    }
    form.addRow(shown, field);
}

} // namespace fieldcore

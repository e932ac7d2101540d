#include "ui/controls/FormRow.h"

#include "ui/controls/TouchStyle.h"

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
    form.addRow(shown, field);
}

} // namespace fieldcore

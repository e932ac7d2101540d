#include "ui/controls/TComboBox.h"

#include "ui/controls/TouchStyle.h"

#include <QAbstractItemView>
#include <QStyledItemDelegate>
#include <QWheelEvent>

#include <algorithm>

namespace fieldcore {

namespace {

class TallRows : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override
    {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.setHeight(std::max(size.height(), TouchStyle::kTarget));
        return size;
    }
};

} // namespace

CTComboBox::CTComboBox(QWidget* parent) : QComboBox(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMinimumHeight(TouchStyle::kTarget);
    setItemDelegate(new TallRows(this));
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
}

int CTComboBox::AddEntry(const QString& text, int code)
{
    addItem(text, code);
    return count() - 1;
}

int CTComboBox::GetCode(int index) const
{
    const QVariant code = itemData(index);
    return code.isValid() ? code.toInt() : kNoCode;
}

int CTComboBox::FindCode(int code) const
{
    return findData(code);
}

int CTComboBox::SelectCode(int code)
{
    const int index = FindCode(code);
    if (index < 0) {
        return 0;
    }
    setCurrentIndex(index);
    return 1;
}

void CTComboBox::wheelEvent(QWheelEvent* event)
{
    if (!hasFocus()) {
        event->ignore(); // it scrolls the page, not what happens to pass under the pointer
        return;
    }
    QComboBox::wheelEvent(event);
}

} // namespace fieldcore

#include "ui/equipment/ComPortPage.h"

#include "ui/controls/TComboBox.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <iterator>

namespace fieldcore {

namespace {

/// A list of choices, whose codes are the flags.
struct Choice
{
    int textId;
    int count;
    std::wstring (CComPrmSet::*text)(int flag) const;
    int (CComPrmSet::*flag)() const;
    int (CComPrmSet::*setFlag)(int flag);
};

using Set = CComPrmSet;
constexpr std::array<Choice, ComPortPage::kLists> kChoices{{
    {text::kComRate, std::size(kBaudRates), &Set::GetStrBps, &Set::GetFlagBps, &Set::SetFlagBps},
    {text::kComDataBits, 2, &Set::GetStrDataBits, &Set::GetFlagDataBits, &Set::SetFlagDataBits},
    {text::kComParity, 3, &Set::GetStrParity, &Set::GetFlagParity, &Set::SetFlagParity},
    {text::kComStopBits, 2, &Set::GetStrStopBits, &Set::GetFlagStopBits, &Set::SetFlagStopBits},
    {text::kComFlow, 3, &Set::GetStrFlowCtrl, &Set::GetFlagFlowCtrl, &Set::SetFlagFlowCtrl},
}};

} // namespace

ComPortPage::ComPortPage(int port, QWidget* parent)
    : PropertyPage(parent), m_port(port), m_note(new QLabel),
      m_search(new QPushButton(UiText(text::kComSearch))), m_found(new QLabel)
{
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(2 * TouchStyle::kGrid);
    auto* const form = new QFormLayout;
    form->setSpacing(TouchStyle::kGrid);
    form->setHorizontalSpacing(2 * TouchStyle::kGrid);
    form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    for (std::size_t i = 0; i < kLists; ++i) {
        auto* const combo = m_lists[i] = new CTComboBox;
        connect(combo, &QComboBox::activated, this, [this] { m_isTouched = true; });
        combo->setAccessibleName(UiText(kChoices[i].textId));
        combo->setMaximumWidth(35 * TouchStyle::kGrid);
        combo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        AddFormRow(*form, combo->accessibleName(), combo);
    }
    m_search->setMinimumSize(20 * TouchStyle::kGrid, TouchStyle::kTarget);
    m_search->setAutoDefault(false);
    for (QLabel* const label : {m_note, m_found}) {
        label->setWordWrap(true);
        label->setTextFormat(Qt::PlainText);
        label->hide();
    }
    m_search->hide();
    connect(m_search, &QPushButton::clicked, this, &ComPortPage::SearchWanted);
    column->addLayout(form);
    column->addWidget(m_note);
    column->addWidget(m_search, 0, Qt::AlignLeft);
    column->addWidget(m_found);
    column->addStretch(1);
}

void ComPortPage::ShowNote(const QString& note)
{
    m_note->setText(note);
    m_note->setVisible(!note.isEmpty());
}

void ComPortPage::OfferSearch()
{
    m_search->show();
}

void ComPortPage::ShowSearchResult(const QString& text)
{
    m_found->setText(text);
    m_found->show();
}

void ComPortPage::InsertString(const CComPrmSet& set)
{
    m_isTouched = false;
    for (std::size_t i = 0; i < kLists; ++i) {
        const Choice& choice = kChoices[i];
        m_lists[i]->clear();
        for (int flag = 0; flag < choice.count; ++flag) {
            m_lists[i]->AddEntry(ToQt((set.*choice.text)(flag)), flag);
        }
        m_lists[i]->SelectCode((set.*choice.flag)());
    }
}

void ComPortPage::Take(CComPrmSet& set) const
{
    for (std::size_t i = 0; i < kLists; ++i) {
        (set.*kChoices[i].setFlag)(m_lists[i]->GetCode());
    }
}

} // namespace fieldcore

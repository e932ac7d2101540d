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

namespace fieldcore {

namespace {

/// @param text  of a flag; its choices are 0 to @p count - 1
template <typename Text>
void Fill(CTComboBox* combo, int count, Text text, int selected)
{
    combo->clear();
    for (int flag = 0; flag < count; ++flag) {
        combo->AddEntry(ToQt(text(flag)), flag);
    }
    combo->setCurrentIndex(
        combo->findText(ToQt(text(selected)))); // an unknown flag has a text, too
}

} // namespace

ComPortPage::ComPortPage(int port, QWidget* parent)
    : PropertyPage(parent), m_port(port), m_bps(new CTComboBox), m_dataBits(new CTComboBox),
      m_parity(new CTComboBox), m_stopBits(new CTComboBox), m_flow(new CTComboBox),
      m_note(new QLabel), m_search(new QPushButton(UiText(text::kComSearch))), m_found(new QLabel)
{
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(2 * TouchStyle::kGrid);
    auto* const form = new QFormLayout;
    form->setSpacing(TouchStyle::kGrid);
    form->setHorizontalSpacing(2 * TouchStyle::kGrid);
    form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    const auto add = [this, form](int id, CTComboBox* combo) {
        connect(combo, &QComboBox::activated, this, [this] { m_isTouched = true; });
        combo->setAccessibleName(UiText(id));
        combo->setMaximumWidth(35 * TouchStyle::kGrid);
        combo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        AddFormRow(*form, UiText(id), combo);
    };
    add(text::kComRate, m_bps);
    add(text::kComDataBits, m_dataBits);
    add(text::kComParity, m_parity);
    add(text::kComStopBits, m_stopBits);
    add(text::kComFlow, m_flow);
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

void ComPortPage::OnRate(std::uint32_t rate, int done, int total)
{
    ShowSearchResult(
        ToQt(FormatText(text::kComSearching, static_cast<long>(rate), done + 1, total)));
}

void ComPortPage::ShowSearchResult(const QString& text)
{
    m_found->setText(text);
    m_found->show();
}

void ComPortPage::InsertString(const CComPrmSet& set)
{
    m_isTouched = false;
    Fill(
        m_bps, static_cast<int>(kBaudRates.size()), [&](int f) { return set.GetStrBps(f); },
        set.GetFlagBps());
    Fill(
        m_dataBits, 2, [&](int f) { return set.GetStrDataBits(f); }, set.GetFlagDataBits());
    Fill(
        m_parity, 3, [&](int f) { return set.GetStrParity(f); }, set.GetFlagParity());
    Fill(
        m_stopBits, 2, [&](int f) { return set.GetStrStopBits(f); }, set.GetFlagStopBits());
    Fill(
        m_flow, 3, [&](int f) { return set.GetStrFlowCtrl(f); }, set.GetFlagFlowCtrl());
}

void ComPortPage::Take(CComPrmSet& set) const
{
    set.SetFlagBps(m_bps->GetCode());
    set.SetFlagDataBits(m_dataBits->GetCode());
    set.SetFlagParity(m_parity->GetCode());
    set.SetFlagStopBits(m_stopBits->GetCode());
    set.SetFlagFlowCtrl(m_flow->GetCode());
}

} // namespace fieldcore

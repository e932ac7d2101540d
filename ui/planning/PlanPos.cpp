#include "ui/planning/PlanPos.h"

#include "core/host/MesBox.h"
#include "core/input/Angles.h"
#include "core/link/Command.h"
#include "core/planning/PlanSite.h"
#include "core/planning/SitesCsv.h"
#include "core/resources/StringTable.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/planning/SiteDlg.h"
#include "ui/planning/SurveyPlan.h"
#include "ui/planning/TextErrorText.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr int kFromList = 0;
constexpr int kFromReceiver = 1;

QString PlaceText(const SiteEntry& entry)
{
    if (!entry.IsComplete()) {
        return UiText(text::kSiteIncomplete);
    }
    constexpr int kPlain = 0;
    constexpr std::uint8_t kDecimals = 3;
    const std::wstring latitude = RADtoDEGStr(*entry.latitudeRad, kPlain, kDecimals);
    const std::wstring longitude = RADtoDEGStr(*entry.longitudeRad, kPlain, kDecimals);
    return ToQt(FormatText(text::kSitePlace, latitude.c_str(), longitude.c_str(), *entry.heightM));
}

} // namespace

CPlanPos::CPlanPos(CSurveyPlan& plan, QWidget* parent)
    : PropertyPage(parent), m_plan(plan), m_search(new QLineEdit), m_list(new QListWidget),
      m_note(new QLabel), m_place(new QLabel), m_edit(nullptr), m_remove(nullptr),
      m_receiver(nullptr)
{
    m_search->setPlaceholderText(UiText(text::kSiteSearch));
    m_search->setAccessibleName(UiText(text::kSiteSearch));
    m_search->setClearButtonEnabled(true);
    m_search->setMinimumHeight(TouchStyle::kTarget);
    m_list->setAccessibleName(UiText(text::kSiteList));
    m_list->setMinimumHeight(4 * TouchStyle::kTarget);
    m_note->setWordWrap(true);
    m_note->setAlignment(Qt::AlignCenter);
    m_place->setWordWrap(true);
    m_place->setMinimumHeight(3 * m_place->fontMetrics().lineSpacing());

    QPushButton* const add = MakeButton(text::kSiteAdd, &CPlanPos::Add);
    m_edit = MakeButton(text::kSiteEdit, &CPlanPos::Edit);
    m_remove = MakeButton(text::kSiteRemove, &CPlanPos::Remove);
    m_receiver = MakeButton(text::kSiteFromReceiver, &CPlanPos::TakeFromReceiver);
    QPushButton* const import = MakeButton(text::kSiteImport, &CPlanPos::Import);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(m_search);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_note);
    layout->addWidget(m_place);
    auto* const buttons = new QGridLayout;
    buttons->setSpacing(kGrid);
    buttons->addWidget(add, 0, 0, 1, 2);
    buttons->addWidget(m_edit, 0, 2, 1, 2);
    buttons->addWidget(m_remove, 0, 4, 1, 2);
    buttons->addWidget(m_receiver, 1, 0, 1, 3);
    buttons->addWidget(import, 1, 3, 1, 3);
    layout->addLayout(buttons);

    connect(m_search, &QLineEdit::textChanged, this, &CPlanPos::Filter);
    connect(m_list, &QListWidget::currentRowChanged, this, &CPlanPos::ShowChosen);
}

QPushButton* CPlanPos::MakeButton(int textId, void (CPlanPos::*action)())
{
    auto* const button = new QPushButton(UiText(textId));
    button->setMinimumHeight(TouchStyle::kTarget);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, action);
    return button;
}

void CPlanPos::OnInitDialog()
{
    m_received.clear();
    Fill(m_plan.GetPositionStr());
}

void CPlanPos::OnSetActive()
{
    const CCommand* const command = m_plan.GetCCommand();
    m_receiver->setEnabled(command != nullptr && command->IsPortOpen() != 0);
}

std::wstring CPlanPos::Chosen() const
{
    const QListWidgetItem* const item = m_list->currentItem();
    return item != nullptr && !item->isHidden() ? item->text().toStdWString() : std::wstring();
}

void CPlanPos::Fill(const std::wstring& name)
{
    const int before = std::max(m_list->currentRow(), 0);
    {
        const QSignalBlocker quiet(m_list);
        m_list->clear();
        for (const std::wstring& site : SiteNames(m_plan.Session().Folder())) {
            auto* const item = new QListWidgetItem(ToQt(site), m_list);
            item->setSizeHint({0, TouchStyle::kTarget});
            if (site == name) {
                m_list->setCurrentItem(item);
            }
        }
        if (m_list->currentItem() == nullptr && m_list->count() > 0) {
            m_list->setCurrentRow(std::min(before, m_list->count() - 1));
        }
    }
    Filter();
}

void CPlanPos::Filter()
{
    const QString wanted = m_search->text().trimmed();
    QListWidgetItem* first = nullptr;
    for (int row = 0; row < m_list->count(); ++row) {
        QListWidgetItem* const item = m_list->item(row);
        const bool fits = item->text().contains(wanted, Qt::CaseInsensitive);
        item->setHidden(!fits);
        first = first == nullptr && fits ? item : first;
    }
    // What the search hides must not be chosen.
    if (first != nullptr &&
        (m_list->currentItem() == nullptr || m_list->currentItem()->isHidden())) {
        m_list->setCurrentItem(first);
    }
    if (m_list->currentItem() != nullptr) {
        m_list->scrollToItem(m_list->currentItem());
    }
    m_note->setVisible(first == nullptr);
    m_note->setText(UiText(m_list->count() == 0 ? text::kSiteNone : text::kSiteNoneFound));
    ShowChosen();
}

void CPlanPos::ShowChosen()
{
    const std::wstring name = Chosen();
    m_edit->setEnabled(!name.empty());
    m_remove->setEnabled(!name.empty());
    m_place->setText(name.empty() ? QString()
                                  : PlaceText(ReadSite(m_plan.Session().Folder(), name)));
}

bool CPlanPos::EditSite(const std::wstring& name, const SiteInput& input)
{
    SiteDlg dialog(m_plan.Session().Folder(), name, input, this);
    dialog.resize(window()->size());
    if (dialog.DoModal() != Dialog::kOk) {
        return false;
    }
    m_search->clear();
    Fill(dialog.Site().name);
    return true;
}

void CPlanPos::Add()
{
    EditSite({}, {});
}

void CPlanPos::Edit()
{
    const std::wstring name = Chosen();
    const SiteEntry entry = ReadSite(m_plan.Session().Folder(), name);
    // Of a site that lacks something the rest is kept.
    SiteInput input = InputOf({name,
                               {entry.latitudeRad.value_or(0.0), entry.longitudeRad.value_or(0.0),
                                entry.heightM.value_or(0.0)}});
    input.latitude = entry.latitudeRad ? input.latitude : std::wstring();
    input.longitude = entry.longitudeRad ? input.longitude : std::wstring();
    input.height = entry.heightM ? input.height : std::wstring();
    EditSite(name, input);
}

void CPlanPos::Remove()
{
    const std::wstring name = Chosen();
    const CMesBox box(m_plan.GetHost());
    if (!box.Confirm(FormatText(text::kSiteRemoveQuestion, name.c_str()),
                     text::kSiteRemoveCaption)) {
        return;
    }
    if (RemoveSite(m_plan.Session().Folder(), name) == 0) {
        box.Fail(text::kSiteNotWritten, text::kSiteCaption);
    }
    Fill({});
}

void CPlanPos::Import()
{
    const PlanSurroundings& surroundings = m_plan.Surroundings();
    const std::filesystem::path file =
        surroundings.chooseFile(this, false, surroundings.documents,
                                UiText(text::kSiteImport) + QStringLiteral(" (*.csv *.txt)"));
    if (file.empty()) {
        return;
    }
    const CMesBox box(m_plan.GetHost());
    const SitesCsv read = LoadSitesCsv(file);
    if (read.error) {
        box.Fail(TextErrorText(file, *read.error), text::kSiteImport);
        return;
    }
    if (WriteSites(m_plan.Session().Folder(), read.sites) == 0) {
        box.Fail(text::kSiteNotWritten, text::kSiteImport);
        return;
    }
    m_search->clear();
    Fill(read.sites.front().name);
    box.Show(FormatText(text::kSiteImported, static_cast<int>(read.sites.size())),
             text::kSiteImport, {BoxButtons::Ok, BoxIcon::Information});
}

void CPlanPos::TakeFromReceiver()
{
    CCommand& command = *m_plan.GetCCommand();
    SiteReply place;
    if (command.RequestSite(place) == 0) {
        CMesBox(m_plan.GetHost())
            .Fail(FormatText(text::kSiteNotReceived, CauseText(command.Fault())),
                  text::kSiteCaption);
        return;
    }
    const ListedSite site{Text(text::kSiteReceiverName),
                          {place.latitudeRad, place.longitudeRad, place.heightM}};
    if (EditSite({}, InputOf(site))) {
        m_received = Chosen();
    }
}

bool CPlanPos::OnOK()
{
    const std::wstring name = Chosen();
    if (!name.empty()) {
        m_plan.SetPositionStr(name);
        m_plan.SetPositionData(m_list->currentRow() + 1);
        m_plan.SetPositionID(name == m_received ? kFromReceiver : kFromList);
        m_plan.ReadPosition();
    }
    return true;
}

} // namespace fieldcore

#include "ui/planning/PlanPos.h"

#include "core/host/MesBox.h"
#include "core/input/Angles.h"
#include "core/link/Command.h"
#include "core/planning/PlanSite.h"
#include "core/planning/SitesCsv.h"
#include "core/platform/Degrees.h"
#include "core/platform/NumberText.h"
#include "core/resources/StringTable.h"
#include "ui/controls/DoAside.h"
#include "ui/controls/TComboBox.h"
#include "ui/controls/TextProgressCtrl.h"
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
#include <optional>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr int kFromList = 0;
constexpr int kFromReceiver = 1;

// How coordinates are shown: ListCoord of the settings.
constexpr int kSexagesimal = 0;
constexpr int kDecimal = 1;

std::wstring AngleText(const std::optional<double>& angleRad, int coordinates)
{
    constexpr int kPlain = 0;
    constexpr std::uint8_t kSecondsDecimals = 3;
    constexpr std::uint8_t kDegreesDecimals = 8;
    return !angleRad ? Text(text::kPlanAlmanacUnknown)
           : coordinates == kDecimal
               ? FormatFixed(DegreesOf(*angleRad), kDegreesDecimals) + Text(text::kPlanDegrees)
               : RADtoDEGStr(*angleRad, kPlain, kSecondsDecimals);
}

QString PlaceText(const SiteEntry& entry, int coordinates)
{
    const std::wstring latitude = AngleText(entry.latitudeRad, coordinates);
    const std::wstring longitude = AngleText(entry.longitudeRad, coordinates);
    const std::wstring height = entry.heightM ? FormatText(text::kSiteHeightValue, *entry.heightM)
                                              : Text(text::kPlanAlmanacUnknown);
    return ToQt(FormatText(text::kSitePlace, latitude.c_str(), longitude.c_str(), height.c_str()));
}

} // namespace

CPlanPos::CPlanPos(CSurveyPlan& plan, QWidget* parent)
    : PropertyPage(parent), m_plan(plan), m_search(new QLineEdit), m_list(new QListWidget),
      m_note(new QLabel), m_place(new QLabel), m_coordinates(new CTComboBox),
      m_progress(new CTextProgressCtrl), m_edit(nullptr), m_remove(nullptr), m_receiver(nullptr)
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
    auto* const place = new QHBoxLayout;
    place->setSpacing(kGrid);
    place->addWidget(m_place, 1);
    m_coordinates->AddEntry(UiText(text::kSiteSexagesimal), kSexagesimal);
    m_coordinates->AddEntry(UiText(text::kSiteDecimal), kDecimal);
    m_coordinates->setAccessibleName(UiText(text::kSiteCoordinates));
    m_coordinates->setToolTip(m_coordinates->accessibleName());
    place->addWidget(m_coordinates, 0, Qt::AlignTop);
    layout->addLayout(place);
    m_progress->hide();
    layout->addWidget(m_progress);
    auto* const buttons = new QGridLayout;
    buttons->setSpacing(kGrid);
    buttons->addWidget(add, 0, 0, 1, 2);
    buttons->addWidget(m_edit, 0, 2, 1, 2);
    buttons->addWidget(m_remove, 0, 4, 1, 2);
    buttons->addWidget(m_receiver, 1, 0, 1, 3);
    buttons->addWidget(import, 1, 3, 1, 3);
    layout->addLayout(buttons);

    connect(m_search, &QLineEdit::textChanged, this, &CPlanPos::Filter);
    // Not the current row: that is one, too, where nothing is chosen.
    connect(m_list, &QListWidget::itemSelectionChanged, this, [this] {
        m_wanted = Chosen();
        ShowChosen();
    });
    connect(m_coordinates, &QComboBox::currentIndexChanged, this, &CPlanPos::ShowChosen);
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
    m_received = m_plan.GetPositionID() == kFromReceiver ? m_plan.GetPositionStr() : std::wstring();
    m_coordinates->SelectCode(m_plan.GetListCoordData() == kDecimal ? kDecimal : kSexagesimal);
    Fill(m_plan.GetPositionStr());
    if (Chosen().empty()) { // where it was when it was still there
        m_list->scrollToItem(m_list->item(std::min(m_plan.GetPositionData(), m_list->count()) - 1));
    }
}

void CPlanPos::OnSetActive()
{
    const CCommand* const command = m_plan.GetCCommand();
    m_receiver->setEnabled(command != nullptr && command->IsPortOpen() != 0);
}

std::wstring CPlanPos::Chosen() const
{
    const QListWidgetItem* const item = m_list->selectedItems().value(0);
    return item != nullptr ? item->text().toStdWString() : std::wstring();
}

void CPlanPos::Fill(const std::wstring& name)
{
    {
        const QSignalBlocker quiet(m_list);
        m_list->clear();
        for (const std::wstring& site : SiteNames(m_plan.Session().Folder())) {
            auto* const item = new QListWidgetItem(ToQt(site), m_list);
            item->setSizeHint({0, TouchStyle::kTarget});
        }
    }
    m_wanted = name;
    Filter();
}

void CPlanPos::Filter()
{
    const QString searched = m_search->text().trimmed();
    const QString wanted = ToQt(m_wanted);
    QListWidgetItem* first = nullptr;
    QListWidgetItem* chosen = nullptr;
    for (int row = 0; row < m_list->count(); ++row) {
        QListWidgetItem* const item = m_list->item(row);
        const bool fits = item->text().contains(searched, Qt::CaseInsensitive);
        item->setHidden(!fits);
        first = first == nullptr && fits ? item : first;
        chosen = fits && item->text() == wanted ? item : chosen;
    }
    // What the search hides must not be chosen, and without a search nothing but what is wanted.
    chosen = chosen == nullptr && !searched.isEmpty() ? first : chosen;
    {
        const QSignalBlocker quiet(m_list);
        m_list->setCurrentItem(chosen);
        if (chosen == nullptr) {
            m_list->clearSelection();
        } else {
            m_list->scrollToItem(chosen);
        }
    }
    ShowChosen();
}

void CPlanPos::ShowChosen()
{
    const std::wstring name = Chosen();
    m_edit->setEnabled(!name.empty());
    m_remove->setEnabled(!name.empty());
    if (!name.empty()) {
        const SiteEntry entry = ReadSite(m_plan.Session().Folder(), name);
        m_place->setText(PlaceText(entry, m_coordinates->GetCode()));
        m_note->setText(UiText(text::kSiteIncomplete));
        m_note->setVisible(!entry.IsComplete());
        return;
    }
    m_place->clear();
    const bool isSearching = !m_search->text().trimmed().isEmpty();
    m_note->setText(UiText(m_list->count() == 0 ? text::kSiteNone : text::kSiteNoneFound));
    m_note->setVisible(m_list->count() == 0 || isSearching); // a search chooses what it finds
}

bool CPlanPos::EditSite(const std::wstring& name, const SiteInput& input)
{
    SiteDlg dialog(m_plan.Session().Folder(), name, input, this);
    dialog.resize(window()->size());
    if (dialog.DoModal() != Dialog::kOk) {
        return false;
    }
    const std::wstring& stored = dialog.Site().name;
    if (!name.empty() && name == m_plan.GetPositionStr()) {
        m_plan.SetPositionStr(stored);
    }
    if (!name.empty() && name == m_received) {
        m_received = stored;
    }
    Follow();
    m_search->clear();
    Fill(stored);
    return true;
}

void CPlanPos::Follow()
{
    if (HasSite(m_plan.Session().Folder(), m_plan.GetPositionStr())) {
        m_plan.ReadPosition();
    }
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
    const std::filesystem::path file = m_plan.Surroundings().chooseFile(
        this, false, m_plan.Session().GetEnvironment().GetFolders().Documents(),
        UiText(text::kSiteImport) + QStringLiteral(" (*.csv *.txt)"));
    if (file.empty()) {
        return;
    }
    const CMesBox box(m_plan.GetHost());
    SitesCsv read;
    bool isStored = false;
    m_progress->SetRange(0, 0); // how far it is nobody knows: most of it is one write
    m_progress->show();
    DoAside(*window(), [&, folder = m_plan.Session().Folder()] {
        ShowProgress(UiText(text::kSitesReading));
        read = LoadSitesCsv(file);
        if (!read.error) {
            ShowProgress(
                ToQt(FormatText(text::kSitesStoring, static_cast<int>(read.sites.size()))));
            isStored = WriteSites(folder, read.sites) == 1;
        }
    });
    m_progress->hide();
    if (read.error) {
        box.Fail(TextErrorText(file, *read.error), text::kSiteImport);
        return;
    }
    if (!isStored) {
        box.Fail(text::kSiteNotWritten, text::kSiteImport);
        return;
    }
    Follow();
    m_search->clear();
    Fill(read.sites.front().name);
    box.Show(FormatText(text::kSiteImported, static_cast<int>(read.sites.size())),
             text::kSiteImport, {BoxButtons::Ok, BoxIcon::Information});
}

void CPlanPos::ShowProgress(const QString& text)
{
    QMetaObject::invokeMethod(
        this, [this, text] { m_progress->SetText(text); }, Qt::QueuedConnection);
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
    m_plan.SetListCoordData(m_coordinates->GetCode());
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

#include "ui/controls/PrgEndMes.h"

#include "core/host/MesBox.h"
#include "core/link/Command.h"
#include "core/resources/StringTable.h"
#include "ui/controls/Icon.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;

} // namespace

CPrgEndMes::CPrgEndMes(Mode mode, QWidget* parent) : Dialog(parent)
{
    setWindowTitle(UiText(text::kEndCaption));
    setAccessibleName(windowTitle());
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(2 * kGrid, 2 * kGrid, 2 * kGrid, 2 * kGrid);
    layout->setSpacing(kGrid);
    auto* const question = new QLabel(UiText(text::kEndQuestion));
    question->setFont(BoldFont(font()));
    question->setWordWrap(true);
    layout->addWidget(question);
    if (mode == Mode::Logging) {
        auto* const note = new QLabel(UiText(text::kEndLoggingNote));
        note->setWordWrap(true);
        layout->addWidget(note);
    }
    layout->addSpacing(kGrid);
    layout->addStretch(1);
    AddButton(text::kEndProgram, QStringLiteral("ok"), kEnd);
    if (mode == Mode::Logging) {
        AddButton(text::kEndProgramPowerOff, QStringLiteral("power"), kPowerOffAndEnd);
    }
    AddButton(text::kButtonCancel, QStringLiteral("back"), kStay);
}

bool CPrgEndMes::MayEnd(CCommand* command, QWidget* parent)
{
    const int answer =
        CPrgEndMes(command != nullptr ? Mode::Logging : Mode::Normal, parent).DoModal();
    if (answer == kStay) {
        return false;
    }
    if (command == nullptr) {
        return true;
    }
    if (answer != kEnd && command->PowerOff() == 0) {
        const std::wstring told = FormatText(text::kPowerOffFailed, CauseText(command->Fault()));
        if (!CMesBox(command->GetHost()).Confirm(told, text::kPowerOffFailedCaption)) {
            return false;
        }
    }
    command->ClosePort();
    return true;
}

void CPrgEndMes::AddButton(int textId, const QString& icon, int result)
{
    auto* const button = new QPushButton(UiText(textId));
    button->setIcon(ThemeIcon(icon));
    button->setMinimumHeight(7 * kGrid);
    button->setDefault(result == kEnd);
    connect(button, &QPushButton::clicked, this, [this, result] { Close(result); });
    layout()->addWidget(button);
}

} // namespace fieldcore

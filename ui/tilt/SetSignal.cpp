#include "ui/tilt/SetSignal.h"

#include "core/settings/NotKept.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace fieldcore {

SetSignal::SetSignal(CCommand* command, QWidget* parent)
    : Dialog(parent, Extent::Form), m_command(command), m_reg(EnvironmentOf(command).Roots()),
      m_session(command), m_hint(new QLabel(UiText(text::kSignalHint))),
      m_ok(MakeButton(text::kButtonOk))
{
    setWindowTitle(UiText(text::kSignalTitle));
    OfferConnection([this] { OnInitDialog(); });
    Build();
}

SetSignal::~SetSignal()
{
    Destroy();
}

void SetSignal::Build()
{
    constexpr int kGrid = TouchStyle::kGrid;
    auto* const inside = new QWidget;
    auto* const column = new QVBoxLayout(inside);
    column->setContentsMargins(12, kGrid, 12, kGrid);
    column->setSpacing(kGrid);
    m_hint->setWordWrap(true);
    column->addWidget(m_hint);
    for (const Signal signal : kAllSignals) {
        auto* const box = new QCheckBox(UiText(SignalTextId(signal)));
        box->setMinimumHeight(TouchStyle::kTarget);
        m_boxes[static_cast<std::size_t>(signal)] = box;
        column->addWidget(box);
    }
    column->addStretch(1);
    m_ok->setDefault(true);
    connect(m_ok, &QPushButton::clicked, this, [this] { Close(kOk); });
    auto* const row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(m_ok);
    LayOutPage(*this, inside, row);
}

bool SetSignal::OnInitDialog()
{
    constexpr Rhythm kRhythm{std::chrono::seconds(1), std::chrono::seconds(16)};
    m_isAsked = false; // it was of no receiver before, perhaps
    ShowSignals(text::kSignalAsking);
    m_ok->setEnabled(false);
    m_ok->setFocus();
    if (m_command == nullptr || m_command->IsPortOpen() == 0) {
        Take({});
        return true;
    }
    m_question = std::make_unique<BackgroundQuestion>(
        *m_command, kRhythm,
        [](CCommand& asking) {
            SignalAnswers answers = SignalSession::Ask(asking);
            return std::pair(!answers.IsSilent(), std::move(answers));
        },
        [this](const SignalAnswers& answers) {
            if (!m_isAsked) {
                Take(answers);
            }
        });
    return true;
}

/// A silent receiver is asked on.
void SetSignal::Take(const SignalAnswers& answers)
{
    m_session.Open(answers);
    m_isAsked = !answers.IsSilent();
    ShowSignals(!answers.hasPort       ? text::kSignalNoReceiver
                : m_session.IsLocked() ? text::kSignalLocked
                : m_session.IsKnown()  ? text::kSignalHint
                                       : text::kSignalUnread);
    m_ok->setEnabled(m_isAsked);
    if (m_isAsked && m_question) {
        m_question->Stop();
    }
}

void SetSignal::OnDestroy()
{
    m_question.reset();
}

void SetSignal::ShowSignals(int hintId)
{
    for (const Signal signal : kAllSignals) {
        QCheckBox& box = *Box(signal);
        const QString name = UiText(SignalTextId(signal));
        const bool isAbsent = m_session.IsKnown() && !m_session.IsEnabled(signal);
        box.setText(isAbsent ? ToQt(FormatText(text::kSignalAbsent, name.toStdWString().c_str()))
                             : name);
        box.setEnabled(m_isAsked && m_session.IsEnabled(signal));
        box.setChecked(m_session.IsChecked(signal));
    }
    m_hint->setText(UiText(hintId));
}

bool SetSignal::OnClose(int result)
{
    if (m_isConfirming) {
        return false; // it closes when the receiver has answered
    }
    if (result == kOk) {
        for (const Signal signal : kAllSignals) {
            m_session.Check(signal, Box(signal)->isChecked());
        }
        m_isConfirming = true;
        const SignalSession::Outcome outcome = m_session.Confirm();
        m_isConfirming = false;
        if (outcome.stored == 0) {
            TellNotKept(text::kSignalTitle, EnvironmentOf(m_command).GetHost(), m_reg);
        }
    }
    return true;
}

} // namespace fieldcore

#include "ui/planning/PlanSystemsBar.h"

#include "core/host/MesBox.h"
#include "core/resources/StringTable.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/planning/ChoiceButton.h"
#include "ui/planning/LiveSkyStyle.h"
#include "ui/planning/PlanDrawing.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QIcon>
#include <QPainter>
#include <QPixmap>

namespace fieldcore {

namespace {

constexpr int kSign = 16; // pixels

} // namespace

void ToggleSystem(PlanSession& session, GnssSystem system)
{
    const SystemSet chosen = SystemSetOf(system);
    const ObservationPlan& plan = session.Plan();
    if (plan.StateOf(system).satellites == 0 && (plan.Systems() & chosen).none()) {
        CMesBox(session.GetEnvironment().GetHost())
            .Warn(FormatText(text::kSystemMissing, SystemText(system).toStdWString().c_str()),
                  text::kSystemsName);
        return;
    }
    session.SetSystems(plan.Systems() ^ chosen);
}

PlanSystemsBar::PlanSystemsBar(QWidget* parent)
    : QWidget(parent), m_buttons{}, m_fold(new ChoiceButton(this))
{
    setAccessibleName(UiText(text::kSystemsName));
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(TouchStyle::kGrid);
    QFont small = font();
    small.setPixelSize(13);
    for (std::size_t k = 0; k < kGnssSystems; ++k) {
        auto* const button = new ChoiceButton(this);
        button->setFont(small);
        button->setMinimumSize(0, 3 * small.pixelSize() * 4 / 3 + TouchStyle::kGrid);
        button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        button->setIconSize({kSign, kSign});
        row->addWidget(button, 1);
        connect(button, &QPushButton::clicked, this,
                [this, k] { Q_EMIT Chosen(static_cast<GnssSystem>(k)); });
        m_buttons[k] = button;
    }
    m_fold->setFont(small);
    m_fold->setMinimumHeight(TouchStyle::kTarget);
    m_fold->setToolTip(UiText(text::kSystemsName));
    m_fold->hide();
    connect(m_fold, &QPushButton::toggled, this, &QWidget::setVisible);
    UpdateSigns();
}

void PlanSystemsBar::SetFoldable(bool isFoldable)
{
    m_fold->setVisible(isFoldable);
    setVisible(!isFoldable || m_fold->isChecked());
}

void PlanSystemsBar::Show(const ObservationPlan& plan)
{
    int together = 0;
    bool isWarning = false;
    for (std::size_t k = 0; k < kGnssSystems; ++k) {
        const auto system = static_cast<GnssSystem>(k);
        const SystemState state = StateOf(plan, system);
        const bool isKnown = state.satellites > 0;
        const bool isStale = isKnown && state.isStale;
        const QString count =
            isKnown ? UiText(text::kSystemCount).arg(state.healthy) : UiText(text::kSystemNone);
        const QString age = isKnown ? AgeText(state) : QString();
        ChoiceButton& button = *m_buttons[k];
        button.setText(UiText(text::kSystemShortGps + static_cast<int>(k)) + QLatin1Char('\n') +
                       count + QLatin1Char('\n') + age);
        button.setChecked(plan.Systems().test(k));
        button.SetWarning(isStale || (!isKnown && button.isChecked()));
        if (button.isChecked()) {
            together += state.healthy;
            isWarning = isWarning || isStale || !isKnown;
        }
        QString words = SystemText(system) + QLatin1Char(' ') + count + QLatin1Char(' ') + age;
        if (!isKnown) {
            words =
                ToQt(FormatText(text::kSystemMissing, SystemText(system).toStdWString().c_str()));
        } else if (isStale) {
            words += QLatin1Char('\n') + UiText(text::kSystemStale).arg(age);
        }
        button.setAccessibleName(words);
        button.setToolTip(words);
    }
    const QString letters = QString::fromStdString(TextOf(plan.Systems()));
    m_fold->setText(letters + QLatin1Char('\n') + UiText(text::kSystemCount).arg(together));
    m_fold->SetWarning(isWarning);
    m_fold->setAccessibleName(UiText(text::kSystemsName));
    m_fold->setAccessibleDescription(m_fold->text());
}

void PlanSystemsBar::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        UpdateSigns();
    }
}

void PlanSystemsBar::UpdateSigns()
{
    const PlotStyle style = PlotStyle::OnScreen(Theme::Current().ground, font());
    for (std::size_t k = 0; k < kGnssSystems; ++k) {
        const auto system = static_cast<GnssSystem>(k);
        QPixmap sign(QSize(kSign, kSign) * devicePixelRatioF());
        sign.setDevicePixelRatio(devicePixelRatioF());
        sign.fill(Qt::transparent);
        QPainter painter(&sign);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(style.ground); // so that it is seen on the accent, too
        painter.drawRoundedRect(QRectF(0.0, 0.0, kSign, kSign), 3.0, 3.0);
        const QColor colour = SystemColour(style, system);
        DrawSystemSign(painter, system, {kSign / 2.0, kSign / 2.0}, 4.5, colour, colour);
        m_buttons[k]->setIcon(QIcon(sign));
    }
}

} // namespace fieldcore

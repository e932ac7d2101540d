#include "ui/controls/MessageDlg.h"

#include "core/resources/StringTable.h"
#include "ui/controls/Icon.h"
#include "ui/controls/Theme.h"
#include "ui/controls/TouchStyle.h"
#include "ui/controls/UiText.h"
#include "ui/controls/Widgets.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>
#include <vector>

namespace fieldcore {

namespace {

constexpr int kGrid = TouchStyle::kGrid;
constexpr int kIconSize = 6 * kGrid;
constexpr QSize kHandheld(480, 640);
/// Results of DoModal() that are answers, apart from those that every dialog has.
constexpr int kFirstAnswer = 100;

struct IconLook
{
    const char* name;
    QColor Theme::*colour;
    int textId;
};

/// Nothing to show for BoxIcon::None.
const IconLook& LookOf(BoxIcon icon)
{
    static constexpr IconLook kLooks[] = {
        {"", &Theme::accent, 0},
        {"information", &Theme::accent, text::kMessageIconInformation},
        {"exclamation", &Theme::attention, text::kMessageIconExclamation},
        {"stop", &Theme::bad, text::kMessageIconStop},
        {"question", &Theme::accent, text::kMessageIconQuestion},
    }; // in the order of the icons
    return kLooks[static_cast<std::size_t>(icon)];
}

int TextOf(BoxAnswer answer)
{
    constexpr int kTexts[] = {text::kButtonOk, text::kButtonCancel, text::kButtonYes,
                              text::kButtonNo, text::kButtonRetry}; // in their order
    return kTexts[static_cast<std::size_t>(answer)];
}

/// The text, whose long words, such as the path of a file, may break behind each of their
/// characters.
QString Breakable(const QString& text)
{
    constexpr int kLongest = 24; // characters that stay together
    constexpr QChar kMayBreak(0x200B);
    QString made;
    qsizetype word = 0;
    for (const QChar c : text) {
        word = c.isSpace() || c.unicode() > 0xFF ? 0 : word + 1;
        if (word > kLongest) {
            made += kMayBreak;
        }
        made += c;
    }
    return made;
}

} // namespace

MessageDlg::MessageDlg(const QString& text, const QString& caption, BoxStyle style, QWidget* parent)
    : Dialog(parent), m_style(style), m_text(new QLabel(Breakable(text))),
      m_scroll(MakeScroll(m_text))
{
    // The caption stands in the box: a controller shows no title bars.
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint);
    setWindowTitle(caption);
    setAccessibleName(caption);
    setAccessibleDescription(text);

    auto* const icon = new QLabel;
    const IconLook& look = LookOf(style.icon);
    icon->setVisible(look.textId != 0);
    if (look.textId != 0) {
        icon->setPixmap(ThemeIcon(QString::fromLatin1(look.name), Theme::Current().*look.colour)
                            .pixmap(QSize(kIconSize, kIconSize), devicePixelRatioF()));
        icon->setAccessibleName(UiText(look.textId));
    }
    auto* const heading = new QLabel(caption);
    heading->setFont(BoldFont(font()));
    heading->setWordWrap(true);
    heading->setVisible(!caption.isEmpty());
    m_text->setWordWrap(true);
    m_text->setTextFormat(Qt::PlainText);
    heading->setTextFormat(Qt::PlainText);
    m_text->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    QBoxLayout* const words = LayOut(new QVBoxLayout, {}, -1, {heading, {m_scroll, 1}});
    QBoxLayout* const top =
        LayOut(new QHBoxLayout, {}, 2 * kGrid, {{icon, 0, Qt::AlignTop}, {words, 1}});
    QBoxLayout* const buttons = LayOut(new QHBoxLayout, {}, kGrid, {BoxItem::Room()});
    AddButtons(*buttons);
    constexpr QMargins kMargins(2 * kGrid, 2 * kGrid, 2 * kGrid, 2 * kGrid);
    LayOut(new QVBoxLayout(this), kMargins, 2 * kGrid, {{top, 1}, buttons});
}

void MessageDlg::AddButtons(QBoxLayout& row)
{
    const BoxAnswer byDefault = DefaultAnswer(m_style);
    std::vector<BoxAnswer> answers{AgreeingAnswer(m_style.buttons)};
    if (m_style.buttons != BoxButtons::Ok) {
        answers.push_back(HarmlessAnswer(m_style.buttons));
    }
    if (answers.back() != byDefault) {
        std::reverse(answers.begin(), answers.end());
    }
    for (const BoxAnswer answer : answers) {
        auto* const button = MakeButton(TextOf(answer));
        button->setDefault(answer == byDefault);
        connect(button, &QPushButton::clicked, this,
                [this, answer] { Close(kFirstAnswer + static_cast<int>(answer)); });
        row.addWidget(button);
        if (answer == byDefault) {
            m_default = button;
        }
    }
}

BoxAnswer MessageDlg::Ask()
{
    const int result = DoModal();
    return result < kFirstAnswer ? HarmlessAnswer(m_style.buttons)
                                 : static_cast<BoxAnswer>(result - kFirstAnswer);
}

bool MessageDlg::OnInitDialog()
{
    const QWidget* under = parentWidget() != nullptr ? parentWidget()->window() : nullptr;
    const QSize all = (under != nullptr ? under : this)->screen()->availableSize();
    // A window that is smaller than a handheld's screen need not hold it.
    const QSize room =
        (under != nullptr ? under->size().expandedTo(kHandheld).boundedTo(all) : all) -
        QSize(2 * kGrid, 2 * kGrid);
    // As wide as some thirty characters, which the eye finds its way back in.
    const int wanted = 30 * fontInfo().pixelSize();
    const int width = std::max(std::min(wanted, room.width()), layout()->minimumSize().width());
    resize(width, 1);
    layout()->activate();
    m_scroll->setMinimumHeight(1);
    const int chrome = layout()->totalHeightForWidth(width) - m_scroll->sizeHint().height();
    const int textHeight = m_text->heightForWidth(m_scroll->width());
    const int fits = std::max(room.height() - chrome, 3 * fontMetrics().lineSpacing());
    m_scroll->setMinimumHeight(std::min(textHeight, fits));
    m_scroll->setMaximumHeight(std::max(textHeight, 1));
    m_scroll->setFocusPolicy(textHeight > fits ? Qt::StrongFocus : Qt::NoFocus);
    setFixedWidth(width);
    adjustSize();
    if (under != nullptr) {
        move(under->mapToGlobal(under->rect().center()) - rect().center());
    }
    m_default->setFocus();
    return false;
}

void MessageDlg::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    PaintGround(*this, Theme::Current().*LookOf(m_style.icon).colour);
}

} // namespace fieldcore

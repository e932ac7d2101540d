#pragma once

// What is included here the tests of screens do not include again.

#include "ui/controls/UiText.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

namespace fieldcore::testing {

/// A control below @p window by its text or its name; one that is seen, if there is one.
/// @return null, if none is called so
template <typename Control = QAbstractButton>
[[nodiscard]] Control* Called(const QWidget& window, const QString& words)
{
    const QString name = words.trimmed(); // some have margins
    Control* found = nullptr;
    for (Control* const control : window.findChildren<Control*>()) {
        const bool isIt =
            control->property("text").toString() == name || control->accessibleName() == name;
        if (isIt && (found == nullptr || !found->isVisible())) {
            found = control;
        }
    }
    return found;
}

template <typename Control = QAbstractButton>
[[nodiscard]] Control* Called(const QWidget& window, int textId)
{
    return Called<Control>(window, UiText(textId));
}

/// Clicks a button that is seen.
inline void Click(const QWidget& window, int textId)
{
    QAbstractButton* const button = Called(window, textId);
    ASSERT_TRUE(button != nullptr && button->isVisible()) << UiText(textId).toStdString();
    QTest::mouseClick(button, Qt::LeftButton);
}

/// Whether a label that is seen says that, or has it in it.
inline bool Says(const QWidget& window, const QString& words, bool inPart = false)
{
    const QList<QLabel*> labels = window.findChildren<QLabel*>();
    return std::any_of(labels.begin(), labels.end(), [&](const QLabel* label) {
        const QString said = label->text();
        return label->isVisible() && (inPart ? said.contains(words) : said == words);
    });
}

/// Does @p act with the next such window or popup that stands over @p below, from inside its loop;
/// closes what is still open much later, so that nothing hangs.
template <typename Window = QWidget>
void Next(QWidget& below, const std::type_identity_t<std::function<void(Window&)>>& act)
{
    auto* const look = new QTimer(&below);
    QObject::connect(look, &QTimer::timeout, look, [look, &below, act] {
        QWidget* over = QApplication::activePopupWidget();
        over = over != nullptr ? over : QApplication::activeModalWidget();
        auto* const window = dynamic_cast<Window*>(over);
        if (window == nullptr || over == &below || !over->isVisible()) {
            return;
        }
        look->stop();
        look->deleteLater();
        QTimer::singleShot(30000, over, [over] {
            ADD_FAILURE() << "nobody has answered";
            over->close();
        });
        act(*window);
    });
    look->start(1);
}

/// Does something again and again while such a page is in front.
template <typename Page = QWidget>
class Hand
{
public:
    explicit Hand(std::function<void(Page& page)> act, int everyMs = 10)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [act = std::move(act)] {
            if (auto* const page = dynamic_cast<Page*>(QApplication::activeModalWidget())) {
                act(*page);
            }
        });
        m_timer.start(everyMs);
    }

private:
    QTimer m_timer;
};

} // namespace fieldcore::testing

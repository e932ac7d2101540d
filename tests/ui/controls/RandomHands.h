#pragma once

#include "tests/support/ProofSize.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <array>
#include <limits>
#include <random>

namespace fieldcore::testing {

/// Hands in gloves before a window: clicks, drags and keys in an order that nobody thought of, and
/// the same every time. What opens over the window is closed again.
class RandomHands
{
public:
    RandomHands()
    {
        QObject::connect(&m_closer, &QTimer::timeout, &m_closer, [this] {
            if (m_window == nullptr) {
                return; // what opens now is the test's own
            }
            QWidget* over = QApplication::activePopupWidget();
            over = over != nullptr ? over : QApplication::activeModalWidget();
            if (over != nullptr && over != m_window) {
                over->close();
            }
        });
        m_closer.start(0);
    }

    ~RandomHands() { Measured(m_count, "events"); }
    RandomHands(const RandomHands&) = delete;
    RandomHands& operator=(const RandomHands&) = delete;

    [[nodiscard]] int Count() const { return m_count; }
    [[nodiscard]] bool IsTired() const { return m_count >= m_most; }

    /// Plays until a thousand events (or FIELDCORE_HANDS) are over in all, @p most here, or the
    /// window is closed.
    void Play(QWidget& window, int most = std::numeric_limits<int>::max())
    {
        m_window = &window;
        const QPointer<QWidget> alive = &window;
        const int end = m_count + std::min(most, m_most - m_count);
        while (m_count < end && alive != nullptr && alive->isVisible()) {
            ++m_count;
            Act(*alive);
            QCoreApplication::processEvents();
        }
        m_window = nullptr;
    }

    int Below(int limit)
    {
        return static_cast<int>(m_random() % static_cast<unsigned>(std::max(limit, 1)));
    }

private:
    void Act(QWidget& window)
    {
        const QPoint point(Below(window.width()), Below(window.height()));
        switch (Below(6)) {
        case 0:
        case 1:
            if (QWidget* const hit = window.childAt(point)) {
                QTest::mouseClick(hit, Qt::LeftButton, {}, hit->mapFrom(&window, point));
            }
            break;
        case 2:
            Drag(window, point);
            break;
        case 3: {
            const auto buttons = window.findChildren<QAbstractButton*>();
            if (!buttons.isEmpty()) {
                QAbstractButton* const button = buttons[Below(static_cast<int>(buttons.size()))];
                if (button->isVisible()) {
                    QTest::mouseClick(button, Qt::LeftButton);
                }
            }
            break;
        }
        default:
            Press(window);
        }
    }

    void Drag(QWidget& window, QPoint from)
    {
        const QPointer<QWidget> hit = window.childAt(from);
        if (hit == nullptr) {
            return;
        }
        QTest::mousePress(hit.data(), Qt::LeftButton, {}, hit->mapFrom(&window, from));
        for (int i = 0; i < 3 && hit != nullptr; ++i) {
            QTest::mouseMove(hit.data(), {Below(hit->width()), Below(hit->height())});
        }
        if (hit != nullptr) {
            QTest::mouseRelease(hit.data(), Qt::LeftButton, {},
                                {Below(hit->width()), Below(hit->height())});
        }
    }

    void Press(QWidget& window)
    {
        constexpr std::array kKeys{Qt::Key_Tab,   Qt::Key_Backtab,  Qt::Key_Left,  Qt::Key_Right,
                                   Qt::Key_Up,    Qt::Key_Down,     Qt::Key_Home,  Qt::Key_End,
                                   Qt::Key_Space, Qt::Key_PageUp,   Qt::Key_Plus,  Qt::Key_Minus,
                                   Qt::Key_F1,    Qt::Key_PageDown, Qt::Key_F2,    Qt::Key_9,
                                   Qt::Key_0,     Qt::Key_Delete,   Qt::Key_Period};
        QWidget* const focus = QApplication::focusWidget();
        QWidget* const target = focus != nullptr && window.isAncestorOf(focus) ? focus : &window;
        if (Below(25) == 0) {
            QTest::keyClick(target, Below(2) == 0 ? Qt::Key_Escape : Qt::Key_Return);
        } else {
            QTest::keyClick(target, kKeys[static_cast<std::size_t>(Below(kKeys.size()))],
                            Below(8) == 0 ? Qt::ControlModifier : Qt::NoModifier);
        }
    }

    const int m_most = ProofSize("FIELDCORE_HANDS", 1000);
    std::mt19937 m_random{Seed()}; // the same events every time
    QTimer m_closer;
    QPointer<QWidget> m_window;
    int m_count = 0;
};

} // namespace fieldcore::testing

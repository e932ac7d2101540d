#include "ui/controls/Dialog.h"

#include <QApplication>
#include <QFontMetrics>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include <string>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

/// Writes down what happens to it.
class Probe : public Dialog
{
public:
    explicit Probe(std::string& told) : m_told(told)
    {
        auto* const layout = new QVBoxLayout(this);
        edit = new QLineEdit;
        layout->addWidget(edit);
        SetControlId(edit, 42);
    }
    ~Probe() override { Destroy(); }

    bool stays = false;
    QLineEdit* edit = nullptr;
    using Dialog::IsTimerRunning;
    using Dialog::KillTimer;
    using Dialog::SetTimer;

protected:
    bool OnInitDialog() override
    {
        m_told += "init ";
        return true;
    }
    bool OnClose(int result) override
    {
        m_told += "close" + std::to_string(result) + " ";
        return !stays;
    }
    void OnDestroy() override { m_told += "destroy "; }
    void OnTimer(int id) override
    {
        m_told += "timer" + std::to_string(id) + " ";
        KillTimer(id);
    }

private:
    std::string& m_told;
};

TEST(Dialog, OpensAsLargeAsItIsToBe)
{
    struct Row
    {
        const char* fault;
        Dialog::Extent extent;
        QSize under;
        QSize given;
        QSize opened; // empty: as the contents wish
    };
    const int character = QFontMetrics(QApplication::font()).horizontalAdvance(QChar(0x3042));
    using enum Dialog::Extent;
    const QSize form(40 * character, 45 * character);
    const QSize handheld(20 * character, 25 * character);
    const QSize desktop(48 * character, 47 * character); // the screen has room for it
    const Row rows[] = {
        {"a form on a handheld", Form, handheld, {}, handheld},
        {"a form on a desktop", Form, desktop, {}, form},
        {"a page on a desktop", Whole, desktop, {}, desktop},
        {"a page of a given size", Whole, desktop, handheld, handheld},
        {"a message", Natural, desktop, {}, {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        QWidget under;
        under.resize(row.under);
        under.show();
        Dialog dialog(&under, row.extent);
        QVBoxLayout layout(&dialog);
        layout.addWidget(new QLineEdit);
        if (!row.given.isEmpty()) {
            dialog.resize(row.given);
        }
        dialog.show();
        if (row.opened.isEmpty()) {
            EXPECT_EQ(dialog.height(), dialog.sizeHint().height());
        } else {
            EXPECT_EQ(dialog.size(), row.opened);
        }
    }
}

TEST(Dialog, CallsItsHooksOnce)
{
    std::string told;
    {
        Probe probe(told);
        QTimer::singleShot(0, &probe, [&probe] { QTest::keyClick(&probe, Qt::Key_Escape); });
        EXPECT_EQ(probe.DoModal(), Dialog::kCancelled);
    }
    EXPECT_EQ(told, "init close2 destroy ");
    told.clear();
    {
        Probe probe(told); // never shown: nothing to undo
    }
    EXPECT_EQ(told, "");
    {
        Probe probe(told); // shown without a loop of its own, and thrown away
        probe.show();
    }
    EXPECT_EQ(told, "init destroy ");
}

TEST(Dialog, StaysWhenItsCloseIsRefused)
{
    std::string told;
    Probe probe(told);
    probe.stays = true;
    probe.show();
    EXPECT_FALSE(probe.close());
    QTest::keyClick(&probe, Qt::Key_Escape);
    EXPECT_TRUE(probe.isVisible());
    probe.stays = false;
    probe.Close(7);
    EXPECT_FALSE(probe.isVisible());
    EXPECT_EQ(probe.result(), 7);
    EXPECT_EQ(told, "init close2 close2 close7 destroy ");
}

TEST(Dialog, RunsTimersByItsOwnNumbers)
{
    std::string told;
    Probe probe(told);
    probe.show();
    probe.SetTimer(256, 1);
    probe.SetTimer(256, 1); // again: one timer, not two
    probe.SetTimer(7, 60000);
    EXPECT_TRUE(QTest::qWaitFor([&] { return told.find("timer256") != std::string::npos; }));
    QTest::qWait(20);
    EXPECT_EQ(told, "init timer256 ");
    EXPECT_TRUE(probe.IsTimerRunning(7));
    probe.Close(Dialog::kOk);
    EXPECT_FALSE(probe.IsTimerRunning(7));
}

} // namespace
} // namespace fieldcore

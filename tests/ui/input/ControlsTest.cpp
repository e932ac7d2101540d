// Checks and remembered entries on real controls.

#include "core/input/Check.h"
#include "core/input/Parts.h"
#include "tests/ui/controls/OnScreen.h"
#include "ui/controls/Dialog.h"
#include "ui/controls/MessageDlg.h"
#include "ui/controls/QtHost.h"
#include "ui/controls/TComboBox.h"
#include "ui/input/ComboEntries.h"

#include <QFormLayout>
#include <QLineEdit>

namespace fieldcore {
namespace {

/// A dialog that takes a height and an angle.
class InputDlg : public Dialog
{
public:
    explicit InputDlg(Host& host) : check(0.0, 5.0, host)
    {
        auto* const form = new QFormLayout(this);
        form->addRow(QStringLiteral("アンテナ高 (m)"), height);
        form->addRow(QStringLiteral("方位角"), azimuth);
        form->addRow(MakeOkCancel());
        SetControlId(height, 1001);
    }
    QLineEdit* const height = new QLineEdit;
    QLineEdit* const azimuth = new QLineEdit;
    CCheck check;

protected:
    bool OnClose(int result) override
    {
        WidgetFocus focus(azimuth);
        return result != kOk || (check.CheckNum(height->text().toStdWString(), 1001, 0, 1) == 1 &&
                                 check.CheckDeg(azimuth->text().toStdWString(), &focus, 1) == 1);
    }
};

TEST(Check, StandsOverItsDialogAndGoesBackToTheControl)
{
    QtHost host{QtHost::Options{}};
    struct Row
    {
        const char* fault;
        QString height;
        QString azimuth;
        int text; ///< of the message; 0: none
        bool isHeight;
    };
    const Row rows[] = {
        {"full-width number, by its number", QStringLiteral("１．５"), QStringLiteral("90"),
         text::kCheckNumber, true},
        {"angle with decimals, by the control", QStringLiteral("1.5"), QStringLiteral("90.5"),
         text::kCheckAngle, false},
        {"nothing wrong", QStringLiteral("1.5"), QStringLiteral("90-30"), 0, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        InputDlg dialog(host);
        dialog.height->setText(row.height);
        dialog.azimuth->setText(row.azimuth);
        dialog.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
        (row.isHeight ? dialog.azimuth : dialog.height)->setFocus();
        QString told;
        testing::Next<MessageDlg>(dialog, [&](MessageDlg& box) {
            told = box.accessibleDescription();
            EXPECT_EQ(box.parentWidget(), &dialog);
            QTest::keyClick(&box, Qt::Key_Return);
        });
        dialog.Close(Dialog::kOk);
        EXPECT_EQ(told, row.text != 0 ? UiText(row.text) : QString());
        EXPECT_EQ(dialog.isVisible(), row.text != 0);
        if (row.text != 0) {
            QLineEdit* const wrong = row.isHeight ? dialog.height : dialog.azimuth;
            EXPECT_TRUE(QTest::qWaitFor([&] { return dialog.focusWidget() == wrong; }, 1000));
            EXPECT_EQ(wrong->selectedText(), wrong->text()) << "to be typed over";
        }
    }
}

TEST(ComboEntries, KeepWhatIsTypedAndSelected)
{
    CTComboBox combo;
    combo.setEditable(true);
    combo.setEditText(QStringLiteral("typing"));
    ComboEntries entries(combo);
    CParts::StackComboList(entries, L"P1", 10);
    EXPECT_EQ(combo.currentIndex(), -1) << "nothing selects itself";
    EXPECT_EQ(combo.currentText(), QStringLiteral("typing"));
    CParts::StackComboList(entries, L"P2", 10);
    CParts::StackComboList(entries, L"P1", 10);
    EXPECT_EQ(combo.count(), 2);
    EXPECT_EQ(combo.currentText(), QStringLiteral("P1"));
    CParts::StackComboList(entries, L"P3", 10);
    EXPECT_EQ(combo.itemText(0), QStringLiteral("P3"));
    EXPECT_EQ(combo.currentText(), QStringLiteral("P1")) << "the selection moves with its entry";
    EXPECT_EQ(entries.GetSelected(), 2);
    combo.setEditText(QStringLiteral("P4"));
    EXPECT_EQ(entries.GetSelected(), -1) << "P1 would be stored as the choice, before P4";
}

} // namespace
} // namespace fieldcore

// The number pad: it comes when a field for numbers is tapped, types under the rules of the field,
// and stands where the field and the whole screen can still be seen.

#include "ui/controls/NumberPad.h"

#include "tests/ui/controls/OnScreen.h"
#include "ui/controls/SpinDouble.h"

#include <QDialog>
#include <QLineEdit>
#include <QScreen>
#include <QVBoxLayout>

namespace fieldcore {
namespace {

NumberPad* Pad()
{
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        auto* const pad = qobject_cast<NumberPad*>(window);
        if (pad != nullptr && pad->isVisible()) {
            return pad;
        }
    }
    return nullptr;
}

void Tap(QLineEdit* field)
{
    QTest::mouseClick(field, Qt::LeftButton);
    QCoreApplication::processEvents();
    // This display gives the focus to every window that appears, whatever that says of itself.
    field->window()->activateWindow();
    QCoreApplication::processEvents();
}

/// @param keys  labels with a blank between
void Press(const QString& keys)
{
    for (const QString& key : keys.split(QLatin1Char(' '))) {
        ASSERT_NE(Pad(), nullptr) << "before " << key.toStdString();
        QTest::mouseClick(testing::Called(*Pad(), key), Qt::LeftButton);
    }
}

TEST(NumberPad, TypesUnderTheRulesOfTheField)
{
    struct Row
    {
        const char* what;
        double first, last;
        int decimals;
        const char* keys;
        double value;
        double before = 0.0;
    };
    const Row rows[] = {
        {"replaces what was there", 0, 100, 3, "1 . 5 4 3", 1.543},
        {"a digit too many", 0, 100, 1, "1 . 5 4", 1.5},
        {"out of range", 0, 100, 0, "7 0 0 完了", 100.0},
        {"corrected", 0, 100, 0, "7 8 ← 6", 76.0},
        {"cleared", 0, 100, 0, "7 8 消去 6", 6.0},
        {"negative", -50, 100, 1, "3 . 5 ±", -3.5},
        {"the sign first", -50, 100, 1, "± 3 . 5", -3.5},
        {"the sign first, and back", -50, 100, 1, "± ± 3 . 5", 3.5},
        {"the sign alone", -50, 100, 1, "±", -7.0, 7.0},
        {"and positive again", -50, 100, 1, "3 ± ± 4", 34.0},
        {"no sign where none may be", 0, 100, 0, "3 ± 4", 34.0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        CSpinDouble spin;
        spin.SetDecimals(row.decimals);
        spin.SetRange(row.first, row.last);
        spin.SetUnit(QStringLiteral(" m"));
        spin.SetValue(row.before);
        spin.show();
        Tap(spin.findChild<QLineEdit*>());
        Press(QString::fromUtf8(row.keys));
        EXPECT_EQ(spin.GetValue(), row.value);
    }
    QLineEdit longitude(QStringLiteral("139.75"));
    longitude.setInputMethodHints(Qt::ImhFormattedNumbersOnly);
    longitude.show();
    Tap(&longitude);
    Press(QStringLiteral("±"));
    EXPECT_EQ(longitude.text(), QStringLiteral("-139.75"));
    Press(QStringLiteral("7 0"));
    EXPECT_EQ(longitude.text(), QStringLiteral("-70"));
}

TEST(NumberPad, NeverHidesItsField)
{
    const QRect screen = QApplication::primaryScreen()->availableGeometry();
    QWidget page;
    auto* const column = new QVBoxLayout(&page);
    QList<QLineEdit*> fields;
    for (int i = 0; i < 9; ++i) {
        fields += new QLineEdit(QStringLiteral("1.5"));
        fields.back()->setInputMethodHints(Qt::ImhFormattedNumbersOnly);
        column->addWidget(fields.back());
    }
    page.resize(480, 640);
    for (const QPoint& at : {screen.topLeft(), screen.bottomRight() - page.rect().bottomRight()}) {
        page.move(at);
        page.show();
        for (QLineEdit* const field : std::as_const(fields)) {
            Tap(field);
            ASSERT_NE(Pad(), nullptr);
            const QRect covered = Pad()->frameGeometry();
            EXPECT_TRUE(screen.contains(covered));
            EXPECT_FALSE(covered.intersects(QRect(field->mapToGlobal(QPoint()), field->size())));
        }
    }
}

TEST(NumberPad, GoesWhenItIsNotWanted)
{
    struct Row
    {
        const char* what;
        void (*act)(QLineEdit& field, QLineEdit& other);
        const char* left; ///< in the field
    };
    const Row rows[] = {
        {"done", [](QLineEdit&, QLineEdit&) { Press(QStringLiteral("完了")); }, "2"},
        {"a keyboard", [](QLineEdit& field, QLineEdit&) { QTest::keyClick(&field, Qt::Key_7); },
         "27"},
        {"escape", [](QLineEdit& field, QLineEdit&) { QTest::keyClick(&field, Qt::Key_Escape); },
         "2"},
        {"another field", [](QLineEdit&, QLineEdit& other) { other.setFocus(); }, "2"},
        {"the page goes", [](QLineEdit& field, QLineEdit&) { field.window()->hide(); }, "2"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        QDialog page;
        auto* const column = new QVBoxLayout(&page);
        auto* const field = new QLineEdit(QStringLiteral("1.5"));
        auto* const name = new QLineEdit;
        field->setInputMethodHints(Qt::ImhFormattedNumbersOnly);
        column->addWidget(name);
        column->addWidget(field);
        page.show();
        page.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&page));
        Tap(name);
        EXPECT_EQ(Pad(), nullptr) << "a name is no number";
        int entered = 0;
        QObject::connect(field, &QLineEdit::editingFinished, field, [&] { ++entered; });
        Tap(field);
        Press(QStringLiteral("2"));
        row.act(*field, *name);
        EXPECT_EQ(Pad(), nullptr);
        EXPECT_EQ(field->text(), QLatin1String(row.left));
        EXPECT_EQ(page.isVisible(), row.act != rows[4].act) << "Esc was for the pad";
        EXPECT_TRUE(row.act != rows[0].act || entered > 0);
    }
}

} // namespace
} // namespace fieldcore

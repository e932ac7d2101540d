// The dialogs that choose a file speak Japanese, and what was chosen comes back as it was typed.

#include "ui/controls/FileChoice.h"

#include "tests/core/platform/TemporaryFolder.h"
#include "tests/ui/controls/OnScreen.h"
#include "ui/controls/RoleLabel.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>

namespace fieldcore {
namespace {

TEST(FileChoice, AsksInJapaneseAndKeepsTheName)
{
    UseJapaneseTextsOfQt(); // where it is not installed, what follows must hold as well
    const TemporaryFolder folder;
    folder.Write("old.csv", "1");
    struct Row
    {
        bool save;
        const char* name;
        bool agrees;
        const char* typed = nullptr; ///< in place of the suggestion, without its ending
    };
    const Row rows[] = {
        {true, "計画 #1.csv", true},
        {false, "old.csv", true},
        {true, "x.csv", false},
        {true, "x.csv", true, "old"},
    };
    QWidget page;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        testing::Next<QFileDialog>(page, [&](QFileDialog& dialog) {
            QStringList shown;
            for (const QPushButton* const button : dialog.findChildren<QPushButton*>()) {
                shown += button->text().remove(QLatin1Char('&'));
            }
            for (const QLabel* const label : dialog.findChildren<QLabel*>()) {
                shown += label->text();
            }
            for (const char* const word :
                 {row.save ? "保存" : "開く", "キャンセル", "ファイル名:", "種類:", "場所:"}) {
                EXPECT_TRUE(shown.contains(QString::fromUtf8(word)))
                    << shown.join(QLatin1Char('|')).toStdString();
            }
            auto* const name = dialog.findChild<QLineEdit*>();
            EXPECT_EQ(name->text(), QString::fromUtf8(row.name)) << "the suggestion is lost";
            if (row.typed != nullptr) {
                name->setText(QString::fromUtf8(row.typed));
            }
            row.agrees ? dialog.QDialog::accept() : dialog.reject();
        });
        const std::filesystem::path suggested = folder.Path() / row.name;
        const std::filesystem::path chosen =
            ChooseFile(nullptr, row.save, QString(), suggested, QStringLiteral("CSV (*.csv)"));
        const std::filesystem::path named =
            row.typed != nullptr ? folder.Path() / (std::string(row.typed) + ".csv") : suggested;
        EXPECT_EQ(chosen, row.agrees ? named : std::filesystem::path());
    }
}

TEST(RoleLabel, FollowsTheTheme)
{
    RoleLabel label(&Theme::bad, QStringLiteral("x"));
    label.show();
    const auto colour = [&label] { return label.palette().color(QPalette::WindowText); };
    for (const Theme::Kind theme : {Theme::Kind::Dark, Theme::Kind::Daylight}) {
        Theme::Use(theme);
        QCoreApplication::processEvents(); // which tell the widgets
        EXPECT_EQ(colour(), Theme::Current().bad);
        for (const RoleLabel::Role role : {&Theme::second, &Theme::bad}) {
            label.SetRole(role);
            EXPECT_EQ(colour(), Theme::Current().*role);
        }
    }
}

} // namespace
} // namespace fieldcore

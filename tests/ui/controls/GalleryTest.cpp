// Every control on one page, in both themes, in a plain and a large font and on two sizes of
// screen: nothing may be cut off. With FIELDCORE_PICTURES the pages are kept as pictures.

#include "tests/ui/controls/Pictures.h"
#include "ui/controls/ButtonMenuDlg.h"
#include "ui/controls/Icon.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/LabelSpin.h"
#include "ui/controls/NMenuBar.h"
#include "ui/controls/NToolBar.h"
#include "ui/controls/PrgEndMes.h"
#include "ui/controls/PropertyPage.h"
#include "ui/controls/PropertySheet.h"
#include "ui/controls/SpinDouble.h"
#include "ui/controls/TComboBox.h"
#include "ui/controls/TextProgressCtrl.h"
#include "ui/controls/Theme.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QTabBar>
#include <QTest>

#include <memory>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fieldcore {
namespace {

class FormPage : public PropertyPage
{
public:
    FormPage()
    {
        auto* const combo = new CTComboBox;
        combo->AddEntry(QStringLiteral("38400"), 0);
        auto* const height = new CSpinDouble;
        height->SetDecimals(3);
        height->SetUnit(QStringLiteral(" m"));
        height->SetValue(1.543);
        auto* const hour = new LabelSpin;
        hour->SetLabel(&LabelSpin::HourLabel);
        hour->setRange(0, 23);
        hour->setValue(9);
        auto* const progress = new CTextProgressCtrl;
        progress->SetPos(62);
        auto* const named = new CTextProgressCtrl;
        named->SetText(QStringLiteral("衛星 12 / 31"));
        named->SetPos(39);
        auto* const tools = new CnToolBar;
        tools->AddButton(1, QStringLiteral("refresh"), QStringLiteral("更新"));
        tools->AddButton(2, QStringLiteral("skyplot"), QStringLiteral("スカイプロット"));
        tools->AddSeparator();
        tools->AddButton(3, QStringLiteral("print"), QStringLiteral("印刷"));
        tools->EnableItem(3, false);
        auto* const form = new QFormLayout(this);
        form->setRowWrapPolicy(QFormLayout::WrapLongRows);
        form->addRow(tools);
        form->addRow(QStringLiteral("通信速度"), combo);
        form->addRow(QStringLiteral("アンテナ高"), height);
        form->addRow(QStringLiteral("開始時刻"), hour);
        form->addRow(QStringLiteral("電池残量"), progress);
        form->addRow(QStringLiteral("軌道暦"), named);
        form->addRow(new QCheckBox(QStringLiteral("カーテンを使用する")));
    }
};

std::unique_ptr<Dialog> MakeSheet()
{
    auto sheet = std::make_unique<PropertySheet>(QStringLiteral("詳細設定"));
    for (const QString& title :
         {QStringLiteral("観測"), QStringLiteral("位置"), QStringLiteral("表示")}) {
        sheet->AddPage(new FormPage, title);
    }
    auto* const bar = new CnMenuBar(1);
    for (const QString& text : {QStringLiteral(" 設  定 "), QStringLiteral(" グラフ ")}) {
        bar->AddItem(bar->AddPopup(text), 1, text);
    }
    sheet->SetMenuBar(bar);
    return sheet;
}

std::unique_ptr<Dialog> MakeMenu()
{
    auto menu = std::make_unique<CButtonMenuDlg>(QStringLiteral("メニュー"));
    for (const auto& [icon, label] :
         {std::pair("connect", "接続"), std::pair("satellites", "衛星"),
          std::pair("plan", "観測計画"), std::pair("status", "状態"),
          std::pair("files", "ファイル"), std::pair("antenna", "アンテナ"),
          std::pair("signal", "信号"), std::pair("tilt", "電子気泡"), std::pair("settings", "設定"),
          std::pair("version", "受信機バージョン表示")}) {
        menu->AddButton(QString::fromLatin1(icon), QString::fromUtf8(label));
    }
    menu->EnableButton(3, false);
    return menu;
}

std::unique_ptr<Dialog> MakeEnd()
{
    return std::make_unique<CPrgEndMes>(CPrgEndMes::Mode::Logging);
}

std::unique_ptr<Dialog> MakeIcons()
{
    auto menu = std::make_unique<CButtonMenuDlg>(QStringLiteral("icons"));
    for (const QString& name : IconNames()) {
        menu->AddButton(name, name);
    }
    return menu;
}

/// Every text has the room that it asks for, and every button the height that a glove asks for.
void ExpectNothingCut(const QWidget& window)
{
    for (const QWidget* control : window.findChildren<QWidget*>()) {
        if (!control->isVisible()) {
            continue;
        }
        const auto* label = qobject_cast<const QLabel*>(control);
        const auto* button = qobject_cast<const QAbstractButton*>(control);
        const bool inTabs = qobject_cast<const QTabBar*>(control->parentWidget()) != nullptr;
        if (label != nullptr && !label->text().isEmpty()) {
            const int height = label->wordWrap() ? label->heightForWidth(label->width())
                                                 : label->sizeHint().height();
            EXPECT_GE(label->height(), height) << label->text().toStdString();
            EXPECT_TRUE(label->wordWrap() || label->width() >= label->sizeHint().width())
                << label->text().toStdString();
        }
        if (button != nullptr && !inTabs) {
            EXPECT_GE(button->width(), button->sizeHint().width()) << button->text().toStdString();
            EXPECT_GE(button->height(), std::max(44, button->sizeHint().height()))
                << button->text().toStdString();
            EXPECT_FALSE(button->text().isEmpty() && button->accessibleName().isEmpty());
        }
        if (const auto* progress = qobject_cast<const CTextProgressCtrl*>(control)) {
            EXPECT_GE(progress->width(), progress->sizeHint().width());
        }
    }
}

TEST(Gallery, CutsNothing)
{
    struct Page
    {
        const char* name;
        std::unique_ptr<Dialog> (*make)();
    };
    const Page pages[] = {
        {"sheet", &MakeSheet}, {"menu", &MakeMenu}, {"end", &MakeEnd}, {"icons", &MakeIcons}};
    const QFont before = QApplication::font();
    for (const bool isDark : {false, true}) {
        Theme::Use(isDark ? Theme::Kind::Dark : Theme::Kind::Daylight);
        for (const int fontPx : {16, 21}) {
            QFont font = before;
            font.setPixelSize(fontPx);
            QApplication::setFont(font);
            for (const QSize& size : {QSize(480, 640), QSize(1280, 800)}) {
                for (const Page& page : pages) {
                    const QString name =
                        QStringLiteral("%1-%2-%3-%4")
                            .arg(QString::fromLatin1(page.name))
                            .arg(isDark ? QStringLiteral("dark") : QStringLiteral("daylight"))
                            .arg(fontPx)
                            .arg(size.width());
                    SCOPED_TRACE(name.toStdString());
                    const auto window = page.make();
                    window->resize(size);
                    window->show();
                    QCoreApplication::processEvents();
                    EXPECT_EQ(window->size(), size) << "it does not fit on the screen";
                    ExpectNothingCut(*window);
                    KeepPicture(*window, name);
                }
            }
        }
    }
    QApplication::setFont(before);
    Theme::Use(Theme::Kind::Daylight);
}

} // namespace
} // namespace fieldcore

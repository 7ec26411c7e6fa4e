// The dialogs: Options bindings, the Statistics lists, the Rename Grammar filter.
#include "model/Settings.h"
#include "support/GrammarSamples.h"
#include "ui/frmAbout.h"
#include "ui/frmRename.h"
#include "ui/frmSetts.h"
#include "ui/frmStat.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {

QStringList Texts(const QListWidget* list)
{
    QStringList texts;
    for (int i = 0; i < list->count(); ++i)
        texts << list->item(i)->text();
    return texts;
}

TEST(Dialogs, OptionsChangeSettingsAtOnce)
{
    Settings settings;
    settings.displayAllItems = 1;
    frmSetts dialog(settings);
    const QList<bool> shown{dialog.chkRules[0]->isChecked(), dialog.chkRules[1]->isChecked(),
                            dialog.chkRules[2]->isChecked(), dialog.chkRules[3]->isChecked(), dialog.chkItems->isChecked()};
    EXPECT_EQ(shown, (QList<bool>{true, false, true, false, true}));
    EXPECT_EQ(settings.generateRules, 1);  // setting the boxes from the settings changes nothing
    dialog.chkRules[0]->click();
    dialog.chkRules[3]->click();
    dialog.chkLetters->click();
    dialog.chkItems->click();
    const QList<int> changed{settings.generateRules, settings.generateRecognizer, settings.lfLetters,
                             settings.displayAllItems};
    EXPECT_EQ(changed, (QList<int>{0, 1, 1, 0}));
    QSignalSpy accepted(&dialog, &QDialog::accepted);
    dialog.cmdOK->click();
    EXPECT_EQ(accepted.count(), 1);
    EXPECT_EQ(settings.generateRules, 0);  // no Cancel: the changes stay
}

TEST(Dialogs, StatisticsFiguresAndFeatureLists)
{
    for (const bool features : {true, false}) {
        Workspace ws;
        RecordingFrontend fe(features ? Lines({"<S>", "<S>=<S><A>[x]", "<S>=<A>", "<A>=", "<A>=[y]", "<B>=<A>"})
                                      : Lines({"<S>", "<S>=[a]"}));
        ASSERT_TRUE(AnalyzeGrammar(ws, fe));
        frmStat dialog(ws.grammar);
        dialog.List1->setCurrentRow(0);
        if (!features) {
            EXPECT_EQ(dialog.List2->count(), 0);
            continue;
        }
        EXPECT_EQ((QStringList{dialog.lblRules->text(), dialog.lblTokens->text(), dialog.lblSymbols->text(),
                               dialog.lblEmptyRules->text()}),
                  (QStringList{QStringLiteral("5"), QStringLiteral("2"), QStringLiteral("5"), QStringLiteral("1")}));
        EXPECT_EQ(Texts(dialog.List1),
                  (QStringList{QStringLiteral("Nullable Symbols"), QStringLiteral("Left Recursive Symbols")}));
        EXPECT_EQ(Texts(dialog.List2), (QStringList{QStringLiteral("<S>"), QStringLiteral("<A>"), QStringLiteral("<B>")}));
        dialog.List1->setCurrentRow(1);
        EXPECT_EQ(Texts(dialog.List2), QStringList{QStringLiteral("<S>")});
    }
}

TEST(Dialogs, RenameGrammarTakesOnlyItsCharacters)
{
    frmRename dialog{QString()};
    QTest::keyClicks(dialog.Text1, QStringLiteral("Ab 1.x-!#$%&'(){}~^_`;,+=@"));
    EXPECT_EQ(dialog.Text1->text(), QStringLiteral("Ab1x-!#$%&'(){}~^_`"));
    QTest::keyClick(dialog.Text1, Qt::Key_Backspace);
    EXPECT_EQ(dialog.Text1->text(), QStringLiteral("Ab1x-!#$%&'(){}~^_"));
    QSignalSpy accepted(&dialog, &QDialog::accepted);
    QTest::keyClick(dialog.Text1, Qt::Key_Return);
    EXPECT_EQ(accepted.count(), 1);
}

} // namespace

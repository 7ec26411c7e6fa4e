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

TEST(Dialogs, OptionsChangeSettingsAtOnce)
{
    Settings settings;
    settings.displayAllItems = 1;
    frmSetts dialog(settings);
    EXPECT_TRUE(dialog.chkRules[0]->isChecked());
    EXPECT_FALSE(dialog.chkRules[1]->isChecked());
    EXPECT_TRUE(dialog.chkRules[2]->isChecked());
    EXPECT_FALSE(dialog.chkRules[3]->isChecked());
    EXPECT_TRUE(dialog.chkItems->isChecked());
    // Setting the boxes from the settings changes nothing.
    EXPECT_EQ(settings.generateRules, 1);
    dialog.chkRules[0]->click();
    EXPECT_EQ(settings.generateRules, 0);
    dialog.chkRules[3]->click();
    EXPECT_EQ(settings.generateRecognizer, 1);
    dialog.chkLetters->click();
    EXPECT_EQ(settings.lfLetters, 1);
    dialog.chkItems->click();
    EXPECT_EQ(settings.displayAllItems, 0);
    QSignalSpy accepted(&dialog, &QDialog::accepted);
    dialog.cmdOK->click();
    EXPECT_EQ(accepted.count(), 1);
    EXPECT_EQ(settings.generateRules, 0);  // no Cancel: the changes stay
}

TEST(Dialogs, StatisticsFiguresAndFeatureLists)
{
    Workspace ws;
    RecordingFrontend fe(Lines({"<S>", "<S>=<S><A>[x]", "<S>=<A>", "<A>=", "<A>=[y]", "<B>=<A>"}));
    ASSERT_TRUE(AnalyzeGrammar(ws, fe));
    frmStat dialog(ws.grammar);
    EXPECT_EQ(dialog.lblRules->text(), QStringLiteral("5"));
    EXPECT_EQ(dialog.lblTokens->text(), QStringLiteral("2"));
    EXPECT_EQ(dialog.lblSymbols->text(), QStringLiteral("5"));
    EXPECT_EQ(dialog.lblEmptyRules->text(), QStringLiteral("1"));
    ASSERT_EQ(dialog.List1->count(), 2);
    EXPECT_EQ(dialog.List1->item(0)->text(), QStringLiteral("Nullable Symbols"));
    EXPECT_EQ(dialog.List1->item(1)->text(), QStringLiteral("Left Recursive Symbols"));
    dialog.List1->setCurrentRow(0);
    QStringList nullable;
    for (int i = 0; i < dialog.List2->count(); ++i)
        nullable << dialog.List2->item(i)->text();
    EXPECT_EQ(nullable, (QStringList{QStringLiteral("<S>"), QStringLiteral("<A>"), QStringLiteral("<B>")}));
    dialog.List1->setCurrentRow(1);
    ASSERT_EQ(dialog.List2->count(), 1);
    EXPECT_EQ(dialog.List2->item(0)->text(), QStringLiteral("<S>"));

    Workspace plain;
    RecordingFrontend fe2(Lines({"<S>", "<S>=[a]"}));
    ASSERT_TRUE(AnalyzeGrammar(plain, fe2));
    frmStat none(plain.grammar);
    none.List1->setCurrentRow(0);
    EXPECT_EQ(none.List2->count(), 0);
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

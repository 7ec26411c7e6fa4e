// The Rename symbols dialog over its core: layout, selection, rename and refusal.
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "ui/frmReplace.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace {

TEST(ReplaceDialog, RenamesTheSelectedSymbol)
{
    RecordingHost host;
    Grammar g(&host);
    ASSERT_TRUE(g.SetText(Lines({"<E>", "<E>=<E>[+]<T>", "<E>=<T>", "<T>=[a]"})));
    frmReplace dialog(g);
    EXPECT_EQ((QStringList{dialog.windowTitle(), dialog.cmdReplace->text(), dialog.cmdClose->text()}),
              (QStringList{QStringLiteral("Rename"), QStringLiteral("&Rename"), QStringLiteral("&Close")}));
    ASSERT_EQ(dialog.List1->count(), 4);
    EXPECT_EQ(dialog.List1->item(3)->text(), QStringLiteral("T"));

    QSignalSpy reset(&dialog, &frmReplace::ResetText);
    dialog.List1->setCurrentRow(3);
    EXPECT_EQ(dialog.Text2->text(), QStringLiteral("T"));
    dialog.Text1->setText(QStringLiteral("E"));
    dialog.cmdReplace->click();
    EXPECT_EQ(host.informations, QStringList{QStringLiteral("Symbol exists.\r\nYou may edit grammar also.")});
    EXPECT_EQ(reset.count(), 0);

    dialog.Text1->setText(QStringLiteral("Term"));
    dialog.cmdReplace->click();
    ASSERT_EQ(reset.count(), 1);
    EXPECT_EQ(reset.at(0).at(0).toString(),
              Lines({"#0 <E>", "#1 <E>=<E>[+]<Term>", "#2 <E>=<Term>", "#3 <Term>=[a]"}));
    EXPECT_EQ(dialog.List1->item(3)->text(), QStringLiteral("Term"));  // the list is filled afresh
    EXPECT_EQ(dialog.Text2->text(), QString());
}

} // namespace

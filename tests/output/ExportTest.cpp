// Export of the selected view: preconditions and their messages, odd paths and
// an unwritable folder. What each view writes is a golden case (export-*).
#include "session/Export.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

TEST(Export, BaseNameCutsAtTheLastDot)
{
    // The file names of the views are golden cases (export-*); here the odd paths.
    EXPECT_EQ((QStringList{ExportBaseName(QStringLiteral("C:\\g\\expr.tkg")), ExportBaseName(QStringLiteral("/a.b/grammar")),
                           ExportBaseName(QStringLiteral("noext")), ExportSuffix(12)}),
              (QStringList{QStringLiteral("C:\\g\\expr"), QStringLiteral("/a"), QStringLiteral("noext"), QString()}));
}

TEST(Export, PreconditionsAndAnUnwritableFolder)
{
    RecordingHost host;
    Workspace ws(&host);
    RecordingFrontend fe(Lines({"<S>", "<S>=[a]<S>", "<S>=[b]"}));
    EXPECT_EQ(ExportView(ws, fe, 2), QString());
    ws.grammar.SetPath(QStringLiteral("/nonexistent-folder/x/g.tkg"));
    EXPECT_EQ(ExportView(ws, fe, 2), QString());
    EXPECT_EQ(ExportView(ws, fe, 6), QString());
    EXPECT_EQ(ExportView(ws, fe, 12), QString());
    EXPECT_EQ(fe.starts, 0);
    Analyse(ws, fe, 0);
    EXPECT_EQ(ExportView(ws, fe, 6), QString());  // parsed, but LL(1) has not run
    EXPECT_EQ(host.informations, (QStringList{QStringLiteral("Save this grammar first."),
                                              QStringLiteral("Analyze grammar first."),
                                              QStringLiteral("This method is not analysed yet."),
                                              QStringLiteral("This method is not analysed yet.")}));

    Analyse(ws, fe, 6);
    fe.starts = fe.stops = 0;
    EXPECT_EQ(ExportView(ws, fe, 2), QString());
    EXPECT_EQ(ExportView(ws, fe, 6), QString());  // the C text streamed to a file that cannot be
    EXPECT_EQ((std::pair{fe.starts, fe.stops}), (std::pair{2, 2}));
    EXPECT_FALSE(fe.processing);
    EXPECT_EQ(host.criticals,
              (QStringList{QStringLiteral("Cannot write /nonexistent-folder/x/g-2-first.txt: No such file or directory"),
                           QStringLiteral("Cannot write /nonexistent-folder/x/g-6-LL-table.txt: No such file or directory")}));
    EXPECT_EQ(host.informations.size(), 4);
    // Told apart from a view with nothing to export: trelk-cli exits 3 for one, 1 for the other.
    EXPECT_EQ(ExportViewFile(ws, fe, 6).status, ExportResult::WriteFailed);
    EXPECT_EQ(ExportViewFile(ws, fe, 7).status, ExportResult::NotReady);
}

} // namespace

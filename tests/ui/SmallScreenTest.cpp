// Start-up refuses a screen below 1024 x 768, width first.
#include "support/RecordingHost.h"
#include "support/TestPaths.h"
#include "ui/Startup.h"
#include "ui/frmMain.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

const QString kNarrow = QStringLiteral("Not enough screen width.\r\n1024 pixels width are required.");

TEST(Startup, ScreenCheckBoundaries)
{
    EXPECT_EQ(ScreenCheckMessage(QSize(1024, 768)), QString());
    EXPECT_EQ(ScreenCheckMessage(QSize(1023, 768)), kNarrow);
    EXPECT_EQ(ScreenCheckMessage(QSize(1024, 767)),
              QStringLiteral("Not enough screen height.\r\n768 pixels height are required."));
    EXPECT_EQ(ScreenCheckMessage(QSize(800, 600)), kNarrow);
}

TEST(Startup, ATooNarrowScreenEndsStartUpAndWritesNothing)
{
    // This test program runs on a 1023 x 768 virtual screen.
    const QString ini = ScratchIni(QStringLiteral("small-screen"));
    RecordingHost host;
    int status = 0;
    EXPECT_EQ(Main(StartupOptions{ini, QString(), &host}, status), nullptr);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(host.criticals, QStringList{kNarrow});
    EXPECT_FALSE(QFile::exists(ini));
}

} // namespace

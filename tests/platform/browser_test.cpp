#include "platform/browser.h"

#include <gtest/gtest.h>

#include <QFile>

#include "support/scratch_folder.h"
#include "window_support/window_actions.h"

namespace tarnwick::platform {

namespace {

TEST(Browser, CutsTheMarkerOffACommand) {
  EXPECT_EQ(BrowserCommand(R"("C:\a b.exe" -url "%1" -x)"), R"("C:\a b.exe" -url )");
  EXPECT_EQ(BrowserCommand("browser %1"), "browser ");
  EXPECT_EQ(BrowserCommand("browser \"-u=%1"), "browser \"-u=");
  EXPECT_EQ(BrowserCommand("browser"), "browser");
}

#ifndef _WIN32
TEST(Browser, StartsTheFirstThatIsInstalled) {
  const tests::ScratchFolder folder;
  const std::string script = folder.Path("my browser");
  const std::string seen = folder.Path("seen");
  tests::WriteShellProgram(script,
                           "printf '%s|' \"$@\" > '" + seen + ".part'\nmv '" + seen + ".part' '" + seen + "'\n");
  const QByteArray before = qgetenv("BROWSER");
  qputenv("BROWSER", ("no-such-browser:\"" + script + "\" -w %s").c_str());
  EXPECT_TRUE(StartBrowser("http://x/?a=1 &b"));
  qputenv("BROWSER", before);
  ASSERT_TRUE(tests::WaitUntil([&] { return QFile::exists(QString::fromStdString(seen)); }));
  EXPECT_EQ(tests::ReadText(seen), "-w|http://x/?a=1 &b|");
}
#endif

}  // namespace

}  // namespace tarnwick::platform

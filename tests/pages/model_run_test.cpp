// Runs of studiomdl and hlmv that the model pages begin.

#include <gmock/gmock.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <filesystem>

#include "model_page.h"
#include "pages/qc_compile_dialog.h"
#include "pages/tool_output.h"
#include "support/shell_programs.h"
#include "view/widget/model_viewer.h"
#include "view/widget/model_window.h"

namespace tarnwick::pages {

namespace {

using platform::BoxIcon;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using tests::Click;
using tests::ControlOf;
using tests::ShownBox;

TEST_F(ModelPages, CompileTwiceAndStop) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  Tool("studiomdl.exe", "echo compiled\nif [ -e \"$0.slow\" ]; then sleep 30; fi\n");
  const auto page = OpenCrate();
  auto& status = *page->findChild<CStudioMDLStatusDialog*>();
  const std::string command =
      m_folder.Path() + "/studiomdl.exe -game \"/no/game\" \"" + m_folder.Path("crate.qc") + "\"";
  for (int run = 0; run < 2; ++run) {
    Click(*page, "compileButton");
    EXPECT_TRUE(status.isVisible() && !page->isEnabled());
    ASSERT_TRUE(tests::WaitUntil([&] { return page->isEnabled(); }));
    EXPECT_THAT(status.Text(), StartsWith(command + "\r\ncompiled\n"));
    EXPECT_EQ(status.Text().rfind(command), 0u) << "each run begins its text anew";
    EXPECT_THAT(status.Text(), HasSubstr("\r\nWarning: ")) << "there is no such game directory";
  }
  tests::WriteText(m_folder.Path("studiomdl.exe.slow"), "");
  Click(*page, "compileButton");
  ASSERT_TRUE(tests::WaitUntil([&] { return status.Text().find("compiled") != std::string::npos; }))
      << "the text comes while the tool runs";
  EXPECT_FALSE(page->isEnabled());
  Click(status, "okButton");
  EXPECT_FALSE(status.isVisible());
  Click(*page, "compileButton");  // it is disabled, but somebody wants something of the page
  EXPECT_TRUE(status.isVisible());
  Click(status, "stopButton");
  ASSERT_TRUE(tests::WaitUntil([&] { return page->isEnabled(); }));
  EXPECT_THAT(status.Text(), HasSubstr("[Stopped."));

  m_settings.Values["Tarnwick/SDKDirectory"] = "/no/sdk";
  Click(*page, "compileButton");
  ASSERT_TRUE(tests::WaitUntil([&] { return page->isEnabled(); }));
  EXPECT_THAT(status.Text(),
              AllOf(HasSubstr("studiomdl: our own"), HasSubstr("/sdk/studiomdl.exe -game \"/no/game\"")));
  status.reject();
  EXPECT_FALSE(status.isVisible());
}

TEST_F(ModelPages, ShowARunInColoursCopyItsCommandAndKeepItWhole) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  Tool("studiomdl.exe",
       "echo 'WARNING: thin'\necho 'ERROR: gone'\necho 'Working on \"error.smd\"'\nyes 0123456789 | head -n 7000\n");
  const auto page = OpenCrate();
  auto& status = *page->findChild<CStudioMDLStatusDialog*>();
  EXPECT_FALSE(ControlOf<QPushButton>(status, "wholeLogButton").isEnabled()) << "nothing has been run";
  Click(*page, "compileButton");
  ASSERT_TRUE(tests::WaitUntil([&] { return page->isEnabled(); }));
  auto& output = ControlOf<CToolOutput>(status, "outputEdit");
  const QColor error = tests::ColorOfLine(output, "ERROR: gone");
  const QColor warning = tests::ColorOfLine(output, "WARNING: thin");
  EXPECT_TRUE(error.isValid() && warning.isValid() && error != warning);
  EXPECT_FALSE(tests::ColorOfLine(output, "Working on").isValid());
  EXPECT_FALSE(tests::ColorOfLine(output, "/").isValid()) << "the command line";
  Click(status, "copyCommandButton");
  const std::string command = QGuiApplication::clipboard()->text().toStdString();
  EXPECT_EQ(command, m_folder.Path() + "/studiomdl.exe -game /no/game " + m_folder.Path("crate.qc"))
      << "as a shell takes it";

  EXPECT_LT(status.Text().size(), 70'000u) << "77,000 bytes were printed";
  m_desktop.Choices = {m_folder.Path("log.txt"), m_folder.Path("no such folder/log.txt")};
  tests::WhenModalOpens([&](QWidget& dialog) {
    const std::string shown = ControlOf<CToolOutput>(dialog, "outputEdit").toPlainText().toStdString();
    EXPECT_THAT(shown, StartsWith(command + "\nWARNING: thin\n"));
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '0'), 7000 + std::count(command.begin(), command.end(), '0'));
    Click(dialog, "saveButton");
    EXPECT_TRUE(m_desktop.Boxes.empty());
    Click(dialog, "saveButton");
    Click(dialog, "okButton");
  });
  Click(status, "wholeLogButton");
  EXPECT_THAT(tests::ReadText(m_folder.Path("log.txt")), AllOf(StartsWith(command), EndsWith("\n0123456789\n")));
  ASSERT_EQ(m_desktop.Boxes.size(), 1u);
  EXPECT_THAT(m_desktop.Boxes.front().Text, StartsWith("Unable to write " + m_folder.Path("no such folder/log.txt: ")));
}

TEST_F(ModelPages, TheVerdictTellsWhatTheRunLeft) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  const std::string model = m_folder.Path("game/models/props/crate.mdl");
  std::filesystem::create_directories(m_folder.Path("game/models/props"));
  tests::WriteText(m_folder.Path("game/gameinfo.txt"), "");
  tests::WriteText(m_folder.Path("crate.smd"), "");
  const auto page = OpenCrate();
  auto& status = *page->findChild<CStudioMDLStatusDialog*>();
  const auto& verdict = ControlOf<QLabel>(status, "verdictLabel");
  const auto run = [&](const std::string& commands) {
    Tool("studiomdl.exe", commands);
    m_settings.Values["Tarnwick/GameDirectory"] = m_folder.Path("game/");
    Click(*page, "compileButton");
    EXPECT_FALSE(verdict.isVisible()) << "none before the end";
    EXPECT_TRUE(tests::WaitUntil([&] { return page->isEnabled(); }));
    EXPECT_TRUE(verdict.isVisible());
    return verdict.text().toStdString();
  };
  EXPECT_EQ(run("echo model > '" + model + "'\necho 'WARNING: thin'\n"),
            "props/crate.mdl was written (6 bytes); no errors, 1 warning");
  using namespace std::chrono_literals;
  std::filesystem::last_write_time(model, std::filesystem::file_time_type::clock::now() - 73h);
  const std::string failed = "props/crate.mdl was not written, the file there is 3 days old; 2 errors, no warnings";
  EXPECT_EQ(run("yes 0123456789 | head -n 7000\necho 'ERROR: gone'\necho 'ERROR: more'\n"),
            failed + "\nThe first error: ERROR: gone");
  EXPECT_THAT(status.Text(), EndsWith("[" + failed + "]\r\n[The first error: ERROR: gone]\r\n"))
      << "also behind a text that stops at its limit";
  std::filesystem::remove(model);
  EXPECT_THAT(run("kill -SEGV $$\n"),
              AllOf(StartsWith("props/crate.mdl was not written, and there is none; "), HasSubstr("crashed")));
}

TEST_F(ModelPages, TheWholeLogOpensDuringARunAtItsFirstError) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  Tool("studiomdl.exe",
       "yes 'all is well' | head -n 300\necho 'ERROR: the first'\nyes 'all is well' | head -n 300\n"
       "echo 'ERROR: the second'\nwhile [ ! -e \"$0.go\" ]; do sleep 0.05; done\necho 'the end'\n");
  const auto page = OpenCrate();
  auto& status = *page->findChild<CStudioMDLStatusDialog*>();
  Click(*page, "compileButton");
  ASSERT_TRUE(tests::WaitUntil([&] { return status.Text().find("the second") != std::string::npos; }));
  EXPECT_FALSE(page->isEnabled()) << "it still runs";
  tests::WhenModalOpens([&](QWidget& dialog) {
    auto& output = ControlOf<CToolOutput>(dialog, "outputEdit");
    EXPECT_EQ(output.textCursor().block().text(), "ERROR: the first");
    const int top = output.cursorForPosition(QPoint(0, 0)).blockNumber();
    EXPECT_GT(top, 200) << "in sight";
    tests::WriteText(m_folder.Path("studiomdl.exe.go"), "");
    EXPECT_TRUE(tests::WaitUntil([&] { return output.toPlainText().contains("the end"); })) << "it grows";
    Click(dialog, "okButton");
  });
  Click(status, "wholeLogButton");
  ASSERT_TRUE(tests::WaitUntil([&] { return page->isEnabled(); }));
}

TEST_F(ModelPages, LiveOnWhileAToolPrintsTenMegabytes) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  Tool("studiomdl.exe", "yes 'WARNING: a line of the usual length that is printed far too often' | head -c 10000000\n");
  const auto page = Open<CQCCompileDialog>();
  ControlOf<QLineEdit>(*page, "qcFileEdit").setText("/m/a.qc");
  int beats = 0;
  QTimer beat;
  QObject::connect(&beat, &QTimer::timeout, [&] { ++beats; });
  beat.start(10);
  Click(*page, "compileButton");
  ASSERT_TRUE(tests::WaitUntil([&] { return page->OutputText().find("complete") != std::string::npos; }));
  EXPECT_GT(beats, 5) << "the window went on between pieces of the output";
  EXPECT_LT(page->OutputText().size(), 10'000u);
}

TEST_F(ModelPages, ViewTheCompiledModel) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  Tool("hlmv.exe", "for word; do echo \"$word\"; done > \"$0.new\"\nmv \"$0.new\" \"$0.words\"\n");
  const auto page = OpenCrate();
  Click(*page, "viewButton");
  ASSERT_TRUE(tests::WaitUntil([&] { return std::filesystem::exists(m_folder.Path("hlmv.exe.words")); }));
  EXPECT_EQ(tests::ReadText(m_folder.Path("hlmv.exe.words")), "-game\n/no/game\n/no/game/models/props/crate.mdl\n");
  EXPECT_TRUE(m_desktop.Boxes.empty());
}

TEST_F(ModelPages, ViewTheCompiledModelInAWindowOfOurOwnWithoutTheSdks) {
  const auto page = OpenCrate();
  m_settings.Values["Tarnwick/GameDirectory"] = "/no/game";
  for (const char* sdk : {"", "/no/sdk"}) {
    m_settings.Values["Tarnwick/SDKDirectory"] = sdk;
    Click(*page, "viewButton");
    auto* window = page->findChild<view::ModelWindow*>();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->Viewer().File(), "/no/game/models/props/crate.mdl");
    ASSERT_TRUE(tests::WaitUntil([&] { return !window->Viewer().IsBusy(); }));
    EXPECT_THAT(window->Viewer().View().ShownText().toStdString(), HasSubstr("crate.mdl"));
    window->close();
  }
  EXPECT_TRUE(m_desktop.Boxes.empty());
}

TEST_F(ModelPages, ViewSaysWhyTheViewerDidNotStart) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  Tool("hlmv.exe", "");
  const auto page = OpenCrate();
  const auto cause = [&] {
    m_desktop.LastBox = {};
    Click(*page, "viewButton");
    EXPECT_EQ(m_desktop.LastBox.Text, "Error starting " + m_folder.Path("hlmv.exe"));
    return m_desktop.LastBox.Details;
  };
  std::filesystem::permissions(m_folder.Path("hlmv.exe"), std::filesystem::perms::owner_read);
  EXPECT_THAT(cause(), HasSubstr("ermission"));
  // A Windows program for 32-bit processors, where no Wine is to be had.
  std::string program(128, '\0');
  program.replace(0, 2, "MZ");
  program[0x3C] = 0x40;
  program.replace(0x40, 6, std::string("PE\0\0\x4C\x01", 6));
  std::filesystem::remove(m_folder.Path("hlmv.exe"));
  tests::WriteText(m_folder.Path("hlmv.exe"), program);
  m_settings.Values["Tarnwick/Wine Program"] = "/no/wine";
  m_desktop.LastBox = {};
  Click(*page, "viewButton");
  EXPECT_EQ(m_desktop.LastBox.Text, "") << "one that cannot run here is as good as none";
  EXPECT_NE(page->findChild<view::ModelWindow*>(), nullptr);
}

TEST_F(ModelPages, CompileAReadyMadeScript) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  const auto page = Open<CQCCompileDialog>();
  tests::Drop(ControlOf<QLineEdit>(*page, "qcFileEdit"), {"/m/a.qc", "/m/b.qc"});
  Tool("studiomdl.exe", "echo read\n");
  m_options.studioMdlOptions = 1;
  Click(*page, "compileButton");
  EXPECT_EQ(m_settings.Values["Tarnwick/QC File"], "/m/a.qc");
  EXPECT_TRUE(page->isEnabled()) << "its output can be read meanwhile";
  ASSERT_TRUE(tests::WaitUntil([&] { return page->OutputText().find("complete") != std::string::npos; }));
  EXPECT_THAT(page->OutputText(),
              StartsWith(m_folder.Path() + "/studiomdl.exe -game \"/no/game\" \"/m/a.qc\"\r\nread\n"));
  EXPECT_THAT(page->OutputText(), EndsWith("\r\nStudioMDL Thread complete\r\n"));
}

}  // namespace

}  // namespace tarnwick::pages

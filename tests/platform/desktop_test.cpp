#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <filesystem>

#include "platform/look.h"
#include "platform/qt_desktop.h"
#include "support/scratch_folder.h"
#include "window_support/window_actions.h"

namespace tarnwick::platform {

namespace {

/// What Enter answers in the box of `request`.
BoxAnswer EnterIn(const MessageBoxRequest& request) {
  tests::WhenModalOpens([](QWidget& box) { QTest::keyClick(&box, Qt::Key_Return); });
  return QtDesktop().ShowBox(nullptr, request);
}

TEST(Boxes, EnterRefusesWhereAYesLosesSomething) {
  MessageBoxRequest box{"Stop it?", {}, BoxIcon::Question, BoxButtons::YesNo};
  EXPECT_EQ(EnterIn(box), BoxAnswer::Yes);
  box.RefusalIsDefault = true;
  EXPECT_EQ(EnterIn(box), BoxAnswer::No);
  box.Buttons = BoxButtons::OkCancel;
  box.OkLabel = "Use it all the same";
  EXPECT_EQ(EnterIn(box), BoxAnswer::Cancel);
  box.Buttons = BoxButtons::Ok;
  EXPECT_EQ(EnterIn(box), BoxAnswer::Ok);
}

#ifndef _WIN32

/// The user's editors, named in the environment as long as the object lives.
class Editors {
 public:
  Editors(const QByteArray& visual, const QByteArray& editor, const QByteArray& path) {
    qputenv("VISUAL", visual);
    qputenv("EDITOR", editor);
    qputenv("PATH", path);
  }
  ~Editors() {
    qunsetenv("VISUAL");
    qunsetenv("EDITOR");
    qputenv("PATH", m_path);
  }

 private:
  QByteArray m_path = qgetenv("PATH");
};

TEST(EditingAFile, TakesTheEditorThatTheUserHasNamed) {
  const tests::ScratchFolder folder;
  const std::string file = folder.Path("a file.qc");
  tests::WriteText(file, "$modelname a\n");
  const std::string record = "for word; do echo \"$word\"; done > '" + folder.Path("words.new") + "'\nmv '" +
                             folder.Path("words.new") + "' '" + folder.Path("words") + "'\n";
  for (const char* name : {"gedit", "nano", "x-terminal-emulator"}) {
    tests::WriteShellProgram(folder.Path(name),
                             "echo " + std::string(name) + " > '" + folder.Path("who") + "'\n" + record);
  }
  const struct {
    const char* Visual;
    const char* Editor;
    const char* Who;
    std::string Words;
  } cases[] = {{"gedit --wait", "nano", "gedit\n", "--wait\n" + file + "\n"},
               {"gone", "gedit", "gedit\n", file + "\n"},
               {"", "nano -w", "x-terminal-emulator\n", "-e\n" + folder.Path("nano") + "\n-w\n" + file + "\n"}};
  for (const auto& each : cases) {
    std::filesystem::remove(folder.Path("words"));
    const Editors named(each.Visual, each.Editor, (folder.Path() + ":/usr/bin:/bin").c_str());
    EXPECT_EQ(QtDesktop().Edit(file), EditStart::Begun);
    ASSERT_TRUE(tests::WaitUntil([&] { return std::filesystem::exists(folder.Path("words")); })) << each.Who;
    EXPECT_EQ(tests::ReadText(folder.Path("who")), each.Who);
    EXPECT_EQ(tests::ReadText(folder.Path("words")), each.Words);
  }
  const Editors none("", "", folder.Path("nothing").c_str());
  EXPECT_EQ(QtDesktop().Edit(folder.Path("gone.qc")), EditStart::NoFile);
  EXPECT_EQ(QtDesktop().Edit(folder.Path()), EditStart::NoFile) << "a folder";
}

#endif

TEST(PlaceholderTexts, CanBeReadInEveryPalette) {
  const QPalette before = QApplication::palette();
  ApplyLook("Fusion");
  // A dark theme that leaves the role as it was in the light palette, as some desktops do.
  const QColor grounds[] = {QColor(27, 30, 32), QColor(35, 35, 35), QColor(255, 255, 255), QColor(120, 120, 120)};
  for (const QColor& ground : grounds) {
    const QColor text = Contrast(ground, Qt::white) > Contrast(ground, Qt::black) ? Qt::white : Qt::black;
    QPalette palette = before;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
      palette.setColor(group, QPalette::Base, ground);
      palette.setColor(group, QPalette::Text, text);
      palette.setColor(group, QPalette::PlaceholderText, QColor(0, 0, 0, 128));
    }
    QApplication::setPalette(palette);
    QApplication::processEvents();
    const QColor shown = QApplication::palette().color(QPalette::Active, QPalette::PlaceholderText);
    const int alpha = shown.alpha();
    const auto over = [&](int part, int under) { return (part * alpha + under * (255 - alpha)) / 255; };
    const QColor seen(over(shown.red(), ground.red()), over(shown.green(), ground.green()),
                      over(shown.blue(), ground.blue()));
    EXPECT_GE(Contrast(seen, ground), ReadableContrast - 0.2) << ground.name().toStdString();
    EXPECT_EQ(QApplication::palette().color(QPalette::Active, QPalette::Base), ground) << "the rest stays";
  }
  QApplication::setPalette(before);
}

TEST(DarkPalette, CanBeRead) {
  struct {
    QPalette::ColorRole Text, Ground;
  } const pairs[] = {
      {QPalette::Text, QPalette::Base},
      {QPalette::Text, QPalette::AlternateBase},
      {QPalette::WindowText, QPalette::Window},
      {QPalette::ButtonText, QPalette::Button},
      {QPalette::PlaceholderText, QPalette::Base},
      {QPalette::HighlightedText, QPalette::Highlight},
      {QPalette::Link, QPalette::Base},
      {QPalette::Link, QPalette::Window},
      {QPalette::LinkVisited, QPalette::Window},
      {QPalette::ToolTipText, QPalette::ToolTipBase},
      {QPalette::BrightText, QPalette::Window},
  };
  const QPalette palette = DarkPalette();
  for (const auto& [text, ground] : pairs) {
    EXPECT_GE(Contrast(palette.color(text), palette.color(ground)), ReadableContrast) << text << " on " << ground;
    for (const auto role : {text, ground}) {
      EXPECT_TRUE(palette.isBrushSet(QPalette::Active, role)) << role << " would be the desktop's";
    }
  }
}

}  // namespace

}  // namespace tarnwick::platform

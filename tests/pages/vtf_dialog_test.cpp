#include "pages/vtf_dialog.h"

#include <gmock/gmock.h>

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>

#include "project/model_options.h"
#include "settings/documents_folder.h"
#include "support/archive_builder.h"
#include "support/file_builder.h"
#include "support/scratch_folder.h"
#include "support/shell_programs.h"
#include "support/vtf_builder.h"
#include "tools/sdk_tools.h"
#include "view/widget/picture_view.h"
#include "view/widget/texture_view.h"
#include "window_support/memory_settings.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::pages {

namespace {

using platform::BoxAnswer;
using platform::BoxButtons;
using platform::BoxIcon;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using tests::Click;
using tests::ControlOf;
using tests::ShownBox;

/// A texture of 4 by 4 pixels of one colour, three bytes each.
std::string Texture(uint8_t red, uint8_t green, uint8_t blue) {
  tests::FileBuilder file;
  file.Append(std::string_view("VTF\0", 4));
  for (const uint32_t number : {7u, 2u, 80u}) file.AppendValue(number);  // version, size of the header
  file.AppendValue<uint32_t>(4 | 4 << 16);                               // width and height
  file.AppendValue<uint32_t>(0);                                         // flags
  file.AppendValue<uint32_t>(1);                                         // one frame, the first
  file.Append(std::string(24, '\0'));                                    // reflectivity, bump scale
  file.AppendValue<uint32_t>(3);                                         // BGR888
  file.Append(std::string_view("\1\377\377\377\377\0\0\1\0", 9));        // one level, no small image, depth 1
  file.Bytes().resize(80);
  for (int i = 0; i < 16; ++i) {
    for (const uint8_t value : {blue, green, red}) file.AppendValue(value);
  }
  return file.Bytes();
}

/// The page in a window of its own that takes drops, as in the main dialog.
class VtfPage : public testing::Test {
 protected:
  void Open() {
    m_settings.Values["Tarnwick/SDKDirectory"] = tools::BundledSdkDirectory().value_or("");
    m_page = std::make_unique<CVTFDialog>(PageContext{m_settings, m_desktop, m_options});
    m_page->Create();
    m_page->AcceptFiles();
    m_page->show();
  }
  std::string WriteTexture(const std::string& name, uint8_t red, uint8_t green, uint8_t blue) {
    tests::WriteText(m_folder.Path(name), Texture(red, green, blue));
    return m_folder.Path(name);
  }
  QLineEdit& Input() { return ControlOf<QLineEdit>(*m_page, "inputEdit"); }
  QLineEdit& Output() { return ControlOf<QLineEdit>(*m_page, "outputEdit"); }
  std::string Log() { return ControlOf<QPlainTextEdit>(*m_page, "logEdit").toPlainText().toStdString(); }
  const QImage& Picture() { return m_page->findChild<view::PictureView*>("picture")->Picture(); }
  bool WaitForJob() {
    return tests::WaitUntil([this] { return ControlOf<QWidget>(*m_page, "controls").isEnabled(); });
  }
  void Export(const std::string& input, const std::string& output) {
    Input().setText(QString::fromStdString(input));
    Output().setText(QString::fromStdString(output));
    Click(*m_page, "extractButton");
    ASSERT_TRUE(WaitForJob());
  }
  std::string Kept(const std::string& name) { return m_settings.GetString("Tarnwick", name, "(not there)"); }

  tests::ScratchFolder m_folder;
  tests::MemorySettings m_settings;
  tests::ScriptedDesktop m_desktop;
  project::ModelOptions m_options;
  std::unique_ptr<CVTFDialog> m_page;
};

TEST_F(VtfPage, BrowsingStoresBothNames) {
  Open();
  m_desktop.Choices = {"/t/wall.v2.vtf", "", "/t/wall.png"};
  Click(*m_page, "browseInputButton");
  EXPECT_EQ(Input().text(), "/t/wall.v2.vtf");
  EXPECT_EQ(Output().text(), "/t/wall.v2.tga");
  EXPECT_EQ(Kept("VTFExportFile"), "/t/wall.v2.vtf");
  EXPECT_EQ(Kept("TGAExportFile"), "/t/wall.v2.tga");
  Output().clear();
  Click(*m_page, "browseOutputButton");  // cancelled
  Click(*m_page, "browseOutputButton");
  EXPECT_EQ(Kept("TGAExportFile"), "/t/wall.png");
  EXPECT_EQ(m_desktop.FileRequests[0].Title, "Name of Input File");
  EXPECT_EQ(m_desktop.FileRequests[0].Filter, "VTF Files (*.vtf)|*.vtf|");
  EXPECT_EQ(m_desktop.FileRequests[1].Title, "Name of TGA or VMT Output File");
  EXPECT_EQ(m_desktop.FileRequests[1].StartDirectory, settings::DocumentsFolder());
}

TEST_F(VtfPage, TakesADropByItsPointAndSavesAtTheEnd) {
  Open();
  tests::Drop(Input(), {"/t/wall.vtf", "/t/notes.txt"});
  EXPECT_EQ(Output().text(), QDir::toNativeSeparators("/t/wall.tga"));
  EXPECT_EQ(Kept("TGAExportFile"), QDir::toNativeSeparators("/t/wall.tga").toStdString());
  EXPECT_EQ(Kept("VTFExportFile"), "(not there)");
  tests::Drop(Output(), {"/t/door.png", "/t/wall.vtf"});
  tests::Drop(ControlOf<QLabel>(*m_page, "hintLabel"), {"/t/notes.txt"});
  EXPECT_EQ(Input().text(), QDir::toNativeSeparators("/t/wall.vtf"));
  EXPECT_EQ(Output().text(), QDir::toNativeSeparators("/t/door.png"));
  m_page->SaveSettings();
  EXPECT_EQ(Kept("VTFExportFile"), QDir::toNativeSeparators("/t/wall.vtf").toStdString());
  EXPECT_EQ(Kept("TGAExportFile"), QDir::toNativeSeparators("/t/door.png").toStdString());
  Open();
  EXPECT_EQ(Output().text(), QDir::toNativeSeparators("/t/door.png"));
  tests::Drop(ControlOf<QLabel>(*m_page, "hintLabel"), {"/t/notes.txt", "/t/floor.VTF"});
  EXPECT_EQ(Input().text(), QDir::toNativeSeparators("/t/floor.VTF")) << "a texture counts wherever it is dropped";
  EXPECT_EQ(Output().text(), QDir::toNativeSeparators("/t/floor.tga"));
}

TEST_F(VtfPage, WritesTheImageAndShowsIt) {
  Open();
  const std::string texture = WriteTexture("My Wall.vtf", 200, 100, 50);
  Export(texture, m_folder.Path("wall.png"));
  EXPECT_EQ(QImage(QString::fromStdString(m_folder.Path("wall.png"))).pixelColor(1, 1), QColor(200, 100, 50));
  EXPECT_EQ(Picture().pixelColor(1, 1), QColor(200, 100, 50));
  EXPECT_THAT(m_folder.Files(), ElementsAre("My Wall.vtf", "wall.png", "wall.tga"));
  EXPECT_THAT(
      Log(),
      AllOf(StartsWith(QDir::fromNativeSeparators(QString::fromStdString(Kept("SDKDirectory"))).toStdString() +
                       "/vtf2tga.exe -nopause -i \"" + texture + "\" -o \"" + m_folder.Path("wall.tga") + "\"\n"),
            HasSubstr("Converting wall.tga from TGA to PNG\n")));
  EXPECT_TRUE(m_desktop.Boxes.empty());

  Export(m_folder.Path("gone.vtf"), m_folder.Path("wall.tga"));
  EXPECT_TRUE(Picture().isNull()) << "the older image is not taken for the new one";
  EXPECT_THAT(Log(), HasSubstr("gone.vtf"));
  std::filesystem::remove(m_folder.Path("wall.tga"));
  Export(texture, m_folder.Path("wall.vmt"));
  EXPECT_THAT(m_desktop.Boxes,
              ElementsAre(ShownBox{BoxIcon::Stop, "Unable to create TGA file " + m_folder.Path("wall.vmt") + "\n",
                                   "TGA Error"}));
}

/// Pixels in the order blue, green, red, alpha.
std::string Pixels(int count, uint8_t blue, uint8_t green, uint8_t red, uint8_t alpha) {
  std::string pixels;
  for (int i = 0; i < count; ++i) {
    for (const uint8_t value : {blue, green, red, alpha}) pixels += static_cast<char>(value);
  }
  return pixels;
}

TEST_F(VtfPage, ShowsEachImageOfTheTextureThatIsNamed) {
  Open();
  auto& view = ControlOf<view::TextureView>(*m_page, "texture");
  const QImage& shown = ControlOf<view::PictureView>(view, "texturePicture").Picture();
  const auto settle = [&] { return tests::WaitUntil([&] { return !view.IsBusy(); }); };
  auto& mip = ControlOf<QComboBox>(view, "mipCombo");
  auto& frame = ControlOf<QSpinBox>(view, "frameSpin");
  auto& channels = ControlOf<QComboBox>(view, "channelsCombo");
  // The smallest mip level stands first, of each level its frames.
  const std::string smoke = m_folder.Path("smoke.vtf");
  tests::VtfBuilder builder;
  builder.Format(textures::PixelFormat::Bgra8888).Mips(2).Frames(2);
  tests::WriteText(smoke, builder
                              .Pixels(Pixels(4, 1, 2, 3, 4) + Pixels(4, 5, 6, 7, 8) + Pixels(16, 9, 10, 11, 12) +
                                      Pixels(16, 13, 14, 15, 16))
                              .Build());
  // In an archive first: the same texture is shown from there.
  tests::VpkBuilder vpk{.Files = {{.Name = "materials/smoke.vtf", .Bytes = builder.Build()}}};
  const tests::ScratchFolder game;
  tests::WriteText(game.Path("pak_dir.vpk"), vpk.Build().Directory);
  Input().setText(QString::fromStdString(game.Path("pak_dir.vpk") + ":materials/smoke.vtf"));
  ASSERT_TRUE(settle());
  EXPECT_EQ(shown.size(), QSize(4, 4));
  Input().clear();
  ASSERT_TRUE(settle());
  EXPECT_NE(shown.size(), QSize(4, 4));
  tests::Drop(Input(), {smoke});
  ASSERT_TRUE(settle());
  EXPECT_EQ(shown.size(), QSize(4, 4));
  EXPECT_EQ(shown.pixelColor(3, 3), QColor(11, 10, 9, 12));
  EXPECT_THAT(ControlOf<QLabel>(view, "textureFacts").text().toStdString(),
              AllOf(StartsWith("4 × 4, BGRA8888, 2 mip levels, 2 frames, version 7.2, "), HasSubstr("Flags 0x0000")));
  frame.setValue(1);
  ASSERT_TRUE(settle());
  EXPECT_EQ(shown.pixelColor(0, 0), QColor(15, 14, 13, 16));
  mip.setCurrentIndex(1);
  ASSERT_TRUE(settle());
  EXPECT_EQ(shown.size(), QSize(2, 2));
  EXPECT_EQ(shown.pixelColor(0, 0), QColor(7, 6, 5, 8));
  const struct {
    const char* Name;
    QColor Shown;
  } cases[] = {{"Colour", QColor(7, 6, 5)},
               {"Red", QColor(7, 7, 7)},
               {"Green", QColor(6, 6, 6)},
               {"Blue", QColor(5, 5, 5)},
               {"Alpha", QColor(8, 8, 8)}};
  for (const auto& each : cases) {
    channels.setCurrentText(each.Name);
    ASSERT_TRUE(settle());
    EXPECT_EQ(shown.pixelColor(1, 1), each.Shown) << each.Name;
  }
  EXPECT_THAT(m_folder.Files(), ElementsAre("smoke.vtf")) << "nothing is exported by looking";

  // Written anew with fewer images while the last of them is looked at.
  channels.setCurrentText("Colour");
  tests::WriteText(smoke,
                   tests::VtfBuilder().Format(textures::PixelFormat::Bgra8888).Pixels(Pixels(16, 1, 1, 99, 1)).Build());
  ASSERT_TRUE(tests::WaitUntil([&] { return shown.size() == QSize(4, 4); }));
  EXPECT_EQ(shown.pixelColor(0, 0), QColor(99, 1, 1));
  EXPECT_FALSE(frame.isVisible());

  tests::WriteText(m_folder.Path("cut.vtf"), builder.Build().substr(0, 90));
  for (const auto& [file, reason] :
       {std::pair("cut.vtf", "runs past the end of the file"), {"none.vtf", "No such file"}}) {
    Input().setText(QString::fromStdString(m_folder.Path(file)));
    ASSERT_TRUE(settle());
    EXPECT_TRUE(shown.isNull());
    EXPECT_THAT(ControlOf<view::PictureView>(view, "texturePicture").accessibleDescription().toStdString(),
                AllOf(StartsWith("No picture: "), HasSubstr(reason)));
  }
}

TEST_F(VtfPage, ZoomsThePictureByWheelKeysAndList) {
  Open();
  tests::Drop(Input(), {WriteTexture("a.vtf", 1, 2, 3)});
  auto& view = ControlOf<view::TextureView>(*m_page, "texture");
  ASSERT_TRUE(tests::WaitUntil([&] { return !view.IsBusy(); }));
  auto& picture = ControlOf<view::PictureView>(view, "texturePicture");
  auto& zoom = ControlOf<QComboBox>(view, "zoomCombo");
  EXPECT_EQ(zoom.currentText(), "Fit");
  zoom.setCurrentText("400 %");
  EXPECT_EQ(picture.Zoom(), 4);
  QTest::keyClick(&picture, Qt::Key_Plus);
  QTest::keyClick(&picture, Qt::Key_Plus);
  EXPECT_EQ(zoom.currentText(), "800 %");
  QTest::keyClick(&picture, Qt::Key_Minus);
  EXPECT_EQ(zoom.currentText(), "565.7 %") << "between the steps of the list";
  QTest::keyClick(&picture, Qt::Key_0);
  EXPECT_EQ(zoom.currentText(), "Fit");
}

TEST_F(VtfPage, ExportsSeveralDroppedTexturesOneAfterTheOther) {
  Open();
  Output().setText("/anywhere/x.png");
  const std::vector<std::string> textures = {WriteTexture("a.vtf", 1, 2, 3), WriteTexture("b.VTF", 4, 5, 6)};
  tests::Drop(Input(), textures);
  ASSERT_TRUE(WaitForJob());
  EXPECT_THAT(m_folder.Files(), ElementsAre("a.png", "a.tga", "a.vtf", "b.VTF", "b.png", "b.tga"));
  EXPECT_EQ(Output().text().toStdString(), tests::Dropped(m_folder.Path("b.png")));
  EXPECT_THAT(Log(), AllOf(HasSubstr("Converting a.tga"), HasSubstr("Converting b.tga")));
  EXPECT_EQ(Picture().pixelColor(0, 0), QColor(4, 5, 6));

  tests::WriteText(m_folder.Path("a.png"), "mine");
  m_desktop.BoxAnswers = {BoxAnswer::Cancel};
  tests::Drop(ControlOf<QLabel>(*m_page, "hintLabel"), textures);
  ASSERT_TRUE(tests::WaitUntil([this] { return !m_desktop.Boxes.empty(); }));
  EXPECT_THAT(m_desktop.Boxes.back().Text, StartsWith("2 of 2 textures"));
  ASSERT_TRUE(WaitForJob());
  EXPECT_EQ(tests::ReadText(m_folder.Path("a.png")), "mine");
}

TEST_F(VtfPage, OffersToCreateTheOutputDirectory) {
  Open();
  const std::string texture = WriteTexture("a.vtf", 1, 2, 3);
  Export(texture, m_folder.Path("new/deep/a.png"));
  ASSERT_EQ(m_desktop.Boxes.size(), 1u);
  EXPECT_EQ(m_desktop.Boxes[0].Buttons, BoxButtons::OkCancel);
  EXPECT_THAT(m_folder.Files(), testing::Contains("new/deep/a.png"));
}

TEST_F(VtfPage, StopsAToolThatDoesNotEndAndHasItsWholeLog) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  Open();
  m_settings.Values["Tarnwick/SDKDirectory"] = m_folder.Path();
  tests::WriteShellProgram(m_folder.Path("vtf2tga.exe"),
                           "for i in 1 2 3 4 5 6; do printf '%0450d\\n' $i; done\necho waiting\nsleep 60\n");
  Input().setText("a.vtf");
  Output().setText(QString::fromStdString(m_folder.Path("a.png")));
  Click(*m_page, "extractButton");
  EXPECT_TRUE(tests::WaitUntil([this] { return Log().ends_with("waiting\n"); })) << "text shows as it is printed";
  EXPECT_FALSE(Input().isEnabled());
  Click(*m_page, "stopButton");
  ASSERT_TRUE(WaitForJob());
  EXPECT_THAT(Log(),
              AllOf(testing::Not(HasSubstr("waiting")), HasSubstr("\"Whole log\" has them"), HasSubstr("[Stopped.")));
  Click(*m_page, "wholeLogButton");
  EXPECT_THAT(Log(), AllOf(HasSubstr("0006\nwaiting\n"), HasSubstr("[Stopped.")));
  EXPECT_TRUE(m_desktop.Boxes.empty());
}

TEST_F(VtfPage, StaysInHandWhileAToolPrintsWithoutEnd) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  Open();
  m_settings.Values["Tarnwick/SDKDirectory"] = m_folder.Path();
  tests::WriteShellProgram(m_folder.Path("vtf2tga.exe"), "exec yes $(printf '%0450d' 7)\n");
  Input().setText("a.vtf");
  Output().setText(QString::fromStdString(m_folder.Path("a.png")));
  const auto& log = ControlOf<QPlainTextEdit>(*m_page, "logEdit");
  Click(*m_page, "extractButton");
  // 4.5 MB, which takes its time under a sanitizer.
  const auto isLong = [&] { return log.document()->blockCount() >= 10'000; };
  ASSERT_TRUE(tests::WaitUntil(isLong) || tests::WaitUntil(isLong) || tests::WaitUntil(isLong));
  Click(*m_page, "stopButton");
  ASSERT_TRUE(WaitForJob());
  Click(*m_page, "wholeLogButton");
  EXPECT_THAT(Log(), AllOf(HasSubstr(" bytes of output are left out here]"), HasSubstr("[Stopped.")));
  EXPECT_LT(Log().size(), size_t{5} << 20);
}

TEST_F(VtfPage, UsesTheProgramsOwnToolWhereTheSdkHasNoneAndSaysSo) {
  Open();
  for (const char* sdk : {"", "C:\\sdk"}) {
    m_settings.Values["Tarnwick/SDKDirectory"] = sdk;
    Export(WriteTexture("a.vtf", 1, 2, 3), m_folder.Path("a.tga"));
    EXPECT_THAT(m_folder.Files(), ElementsAre("a.tga", "a.vtf"));
    EXPECT_THAT(Log(), testing::EndsWith("vtf2tga: our own\n"));
    std::filesystem::remove(m_folder.Path("a.tga"));
  }
  EXPECT_TRUE(m_desktop.Boxes.empty());
}

TEST_F(VtfPage, AsksBeforeItReplacesTheTgaFileBesideTheImage) {
  Open();
  const std::string texture = WriteTexture("a.vtf", 1, 2, 3);
  tests::WriteText(m_folder.Path("a.tga"), "mine");
  m_desktop.BoxAnswers = {BoxAnswer::Cancel};
  Export(texture, m_folder.Path("a.png"));
  ASSERT_EQ(m_desktop.Boxes.size(), 1u);
  EXPECT_THAT(m_desktop.Boxes[0].Text, StartsWith(m_folder.Path("a.tga") + " exists already."));
  EXPECT_EQ(tests::ReadText(m_folder.Path("a.tga")), "mine");
  EXPECT_THAT(m_folder.Files(), ElementsAre("a.tga", "a.vtf"));
  Export(texture, m_folder.Path("a.png"));
  EXPECT_THAT(m_folder.Files(), ElementsAre("a.png", "a.tga", "a.vtf"));
}

}  // namespace

}  // namespace tarnwick::pages

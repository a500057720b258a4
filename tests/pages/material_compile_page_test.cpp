#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QToolTip>
#include <filesystem>

#include "material_page.h"
#include "support/shell_programs.h"
#include "tools/sdk_tools.h"

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

/// The page with a game and the program's own texture tools in the place of an SDK.
class MaterialCompilePage : public MaterialPage {
 protected:
  MaterialCompilePage() {
    Kept("GameDirectory") = m_folder.Path("game");
    Kept("SDKDirectory") = tools::BundledSdkDirectory().value_or("");
    Kept("Materials DIR") = "props";
    std::filesystem::create_directories(Source());
    m_pageLog.SetTarget(&m_log);
  }

  std::string Source() const { return m_folder.Path("game/materialsrc/models/props"); }
  void Compile() {
    Click(*m_page, "compileButton");
    EXPECT_FALSE(m_page->isEnabled());
    ASSERT_TRUE(tests::WaitUntil([this] { return m_page->isEnabled(); }));
  }
  CVtexStatusDialog& Status() { return *m_page->findChild<CVtexStatusDialog*>(); }
  std::string StatusLog() { return ControlOf<QPlainTextEdit>(Status(), "logEdit").toPlainText().toStdString(); }
  std::string State() { return ControlOf<QLabel>(Status(), "stateLabel").text().toStdString(); }

  std::string m_log;  // of the compile pages
};

TEST_F(MaterialCompilePage, MakesAMaterialThatTheGameCanRead) {
  Kept("HasNormal") = "1";
  Kept("Normal Map") = Image("Brick_N.png", QColor(128, 128, 255));
  Kept("EnvMap") = "1";
  Kept("EnvMapNormalMask") = "1";
  Kept("Envmap Contrast") = "0.5";
  Kept("Envmap SpecularMap") = Image("shine.png", Qt::gray);
  Kept("Material0") = Image("Brick.png", Qt::red, 30);
  Open();
  Compile();

  const std::string compiled = m_folder.Path("game/materials/models/props/brick");
  EXPECT_TRUE(std::filesystem::exists(compiled + ".vtf"));
  EXPECT_THAT(tests::ReadText(compiled + ".vmt"),
              AllOf(StartsWith("\"VertexLitGeneric\""), HasSubstr("\"$basetexture\" \"models/props/brick\""),
                    HasSubstr("\"$bumpmap\" \"models\\props/Brick_N\""), HasSubstr("\"$model\" \"1\""),
                    HasSubstr("\"$normalmapalphaenvmapmask\" \"1\""), HasSubstr("\"$envmapcontrast\" \"0.5\"")));
  EXPECT_EQ(tests::ReadText(Source() + "/brick.tga").substr(12, 2), std::string(" \0", 2)) << "32 pixels wide";
  EXPECT_EQ(m_log, "Material Output Dir: props\r\nRunning VTEX on " + m_folder.Path("Brick.png") +
                       "\r\nVTEX COMPLETED !\r\n\r\n");
  EXPECT_TRUE(m_desktop.Boxes.empty());
  EXPECT_EQ(Kept("Model Path"), "1") << "the page is saved first";

  EXPECT_TRUE(Status().isVisible());
  EXPECT_EQ(Status().windowTitle(), "VTEX Log Dialog");
#ifdef _WIN32  // where the case of letters means nothing
  const char* const told = "Converting brick.png from PNG to TGA\n";
#else
  const char* const told = "Converting Brick.png from PNG to TGA\n";
#endif
  EXPECT_THAT(StatusLog(),
              AllOf(HasSubstr(told), HasSubstr("/vtex.exe -nopause -shader VertexLitGeneric -vmtparam $bumpmap")));
  EXPECT_EQ(State(), "1 of 1 compiled");
  EXPECT_EQ(ControlOf<QProgressBar>(Status(), "progressBar").value(), 100);
}

TEST_F(MaterialCompilePage, GoesThroughTheListPastAnImageThatIsNone) {
  tests::WriteText(m_folder.Path("bad.png"), "no image");
  Kept("Material0") = m_folder.Path("bad.png");
  Kept("Material1") = Image("good.png");
  Open();
  Compile();
  ASSERT_EQ(m_desktop.Boxes.size(), 1u);
  ShownBox& box = m_desktop.Boxes[0];
  box.Text = QDir::fromNativeSeparators(QString::fromStdString(box.Text)).toStdString();
  EXPECT_EQ(box, (ShownBox{BoxIcon::Stop,
                           "Unable to create TGA file " + m_folder.Path("game") + "/materialsrc/models/props/bad.tga\n",
                           "TGA Error"}));
  EXPECT_TRUE(std::filesystem::exists(m_folder.Path("game/materials/models/props/good.vmt")));
  EXPECT_EQ(State(), "1 of 2 compiled, 1 failed");
  EXPECT_EQ(ControlOf<QProgressBar>(Status(), "countBar").text(), "2 of 2");
  EXPECT_THAT(StatusLog(), HasSubstr("good.png"));
  auto& materials = ControlOf<QComboBox>(Status(), "materialCombo");
  EXPECT_EQ(materials.itemText(0), "bad.png (failed)");
  materials.setCurrentIndex(0);
  EXPECT_THAT(StatusLog(), HasSubstr("bad.png: the file cannot be read as a PNG image"));
}

TEST_F(MaterialCompilePage, OffersToCreateTheDirectoryOnce) {
  std::filesystem::remove(Source());
  Kept("Material0") = Image("a.png");
  Kept("Material1") = Image("b.png");
  Open();
  m_desktop.BoxAnswers = {BoxAnswer::Cancel};
  Compile();
  ASSERT_EQ(m_desktop.Boxes.size(), 1u) << "what was refused is not asked again";
  EXPECT_EQ(m_desktop.Boxes.front().Buttons, BoxButtons::OkCancel);
  EXPECT_THAT(m_desktop.Boxes.front().Text, AllOf(StartsWith("Unable to create TGA file "), HasSubstr("/a.tga\n")));
  EXPECT_FALSE(std::filesystem::exists(Source()));
  EXPECT_EQ(State(), "0 of 2 compiled, 2 failed");
  Compile();  // the box is answered with OK
  EXPECT_EQ(m_desktop.Boxes.size(), 2u);
  EXPECT_TRUE(std::filesystem::exists(Source() + "/a.tga") && std::filesystem::exists(Source() + "/b.tga"));
  EXPECT_EQ(State(), "2 of 2 compiled");
}

TEST_F(MaterialCompilePage, AsksAboutAnEmptyDirectory) {
  Kept("Materials DIR").clear();
  Kept("Material0") = Image("a.png");
  Open();
  m_desktop.BoxAnswers = {BoxAnswer::Cancel};
  Compile();
  EXPECT_THAT(m_desktop.Boxes, ElementsAre(ShownBox{BoxIcon::Exclamation,
                                                    "No material output directory specified.\r\n"
                                                    "Do you want materials in materials/models dir ?",
                                                    "Warning", BoxButtons::OkCancel}));
  EXPECT_EQ(m_log, "");
  EXPECT_FALSE(Status().isVisible());
  Compile();
  EXPECT_TRUE(std::filesystem::exists(m_folder.Path("game/materials/models/a.vmt")));
}

TEST_F(MaterialCompilePage, TheProgramsOwnToolStandsInForOneThatTheSdkLacks) {
  Kept("SDKDirectory") = "C:\\sdk";
  Kept("Material0") = Image("a.png");
  Open();
  Compile();
  EXPECT_TRUE(m_desktop.Boxes.empty());
  EXPECT_EQ(State(), "1 of 1 compiled - vtex: our own");
}

TEST_F(MaterialCompilePage, StopsBeforeTheNextMaterial) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  Kept("SDKDirectory") = m_folder.Path();
  tests::WriteShellProgram(m_folder.Path("vtex.exe"),
                           "for i in $(seq 999); do echo $i; done\necho Error: none here\necho go\nsleep 60\n");
  Kept("Material0") = Image("a.png");
  Kept("Material1") = Image("b.png");
  Open();
  Click(*m_page, "compileButton");
  ASSERT_TRUE(tests::WaitUntil([this] { return StatusLog().ends_with("go\n"); }));
  const auto& log = ControlOf<QPlainTextEdit>(Status(), "logEdit");
  EXPECT_TRUE(tests::ColorOfLine(log, "Error:").isValid());
  EXPECT_FALSE(tests::ColorOfLine(log, "998").isValid());
  Click(Status(), "stopButton");
  ASSERT_TRUE(tests::WaitUntil([this] { return m_page->isEnabled(); }));
  EXPECT_EQ(State(), "0 of 2 compiled, 1 stopped");
  EXPECT_FALSE(std::filesystem::exists(Source() + "/b.tga"));
  EXPECT_THAT(StatusLog(), HasSubstr("[Stopped."));
  Click(Status(), "wholeLogButton");
  EXPECT_THAT(StatusLog(), AllOf(HasSubstr("999\nError: none here\ngo\n"), HasSubstr("Converting a.png")));
}

TEST_F(MaterialCompilePage, OffersToConfigureWhereThereIsNoGame) {
  Kept("Material0") = Image("a.png");
  for (const char* game : {"", "/no/such/game"}) {
    SCOPED_TRACE(game);
    Kept("GameDirectory") = game;
    int configured = 0;
    m_configure = [&configured] { ++configured; };
    m_desktop.Boxes.clear();
    Open();
    Click(*m_page, "compileButton");
    ASSERT_EQ(m_desktop.Boxes.size(), 1u) << "and no offer to make a folder";
    EXPECT_THAT(m_desktop.Boxes[0].Text,
                StartsWith(*game == 0 ? "No game directory is set." : "The game directory /no"));
    EXPECT_EQ(m_desktop.Boxes[0].Buttons, BoxButtons::OkCancel);
    EXPECT_EQ(configured, 1);
    EXPECT_TRUE(m_page->isEnabled());
    EXPECT_EQ(m_log, "");
  }
}

TEST_F(MaterialCompilePage, SaysThatTheProgramsOwnToolIsUsed) {
  Kept("SDKDirectory").clear();
  Kept("Material0") = Image("a.png");
  Open();
  Compile();
  EXPECT_EQ(State(), "1 of 1 compiled - vtex: our own");
  EXPECT_TRUE(m_desktop.Boxes.empty());
}

TEST_F(MaterialCompilePage, CountsNothingAsCompiledWhereNothingWasWritten) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  Kept("SDKDirectory") = m_folder.Path();
  tests::WriteShellProgram(m_folder.Path("vtex.exe"), "echo all is well\n");
  Kept("Material0") = Image("a.png");
  Open();
  Compile();
  EXPECT_EQ(State(), "0 of 1 compiled, 1 failed");
  EXPECT_THAT(StatusLog(), HasSubstr("[vtex wrote no "));
}

TEST_F(MaterialCompilePage, UsesADamagedImageWhenTheUserSaysSo) {
  const std::string image = Image("a.bmp", Qt::red, 32);
  tests::WriteText(image, tests::ReadText(image).substr(0, 1000));
  Kept("Material0") = image;
  Open();
  m_desktop.BoxAnswers = {BoxAnswer::Cancel};
  Compile();
  ASSERT_EQ(m_desktop.Boxes.size(), 1u);
  EXPECT_THAT(m_desktop.Boxes[0].Text, StartsWith("Unable to create TGA file "));
  EXPECT_TRUE(m_desktop.LastBox.RefusalIsDefault) << "Enter pressed by habit takes no damaged image";
  EXPECT_EQ(State(), "0 of 1 compiled, 1 failed");
  Compile();
  EXPECT_EQ(State(), "1 of 1 compiled");
  EXPECT_THAT(StatusLog(), HasSubstr("WARNING, a.bmp is used though it is damaged: "));
}

TEST_F(MaterialCompilePage, AsksBeforeTwoImagesBecomeOneTexture) {
  std::filesystem::create_directory(m_folder.Path("other"));
  Kept("Material0") = Image("a.png");
  Kept("Material1") = Image("other/A.png");
  Open();
  m_desktop.BoxAnswers = {BoxAnswer::Cancel};
  Compile();
  ASSERT_EQ(m_desktop.Boxes.size(), 1u);
  EXPECT_THAT(m_desktop.Boxes[0].Text, HasSubstr("both become a.tga."));
  EXPECT_FALSE(std::filesystem::exists(Source() + "/a.tga"));
}

TEST_F(MaterialCompilePage, DoesNotRunOnAnEmptyList) {
  Open();
  Compile();
  EXPECT_EQ(m_log, "Material Output Dir: props\r\n\r\n");
  EXPECT_FALSE(Status().isVisible());
  EXPECT_TRUE(m_desktop.Boxes.empty());
  EXPECT_THAT(QToolTip::text().toStdString(), HasSubstr("no images in the list")) << "why nothing happens";
}

}  // namespace

}  // namespace tarnwick::pages

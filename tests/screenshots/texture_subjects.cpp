#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QTest>
#include <optional>

#include "app/kilndesk_dlg.h"
#include "core/settings_table.h"
#include "pages/content_dialog.h"
#include "pages/content_list.h"
#include "pages/material_list.h"
#include "pages/vtf_dialog.h"
#include "screenshots/subject.h"
#include "support/archive_builder.h"
#include "support/scratch_folder.h"
#include "support/vtf_builder.h"
#include "view/widget/picture_view.h"
#include "view/widget/texture_view.h"

namespace tarnwick::screenshots {

namespace {

namespace setting = core::setting;

/// A texture that can be told from others by its colours; half of it shows through.
QImage Texture(const QColor& color, int side) {
  QImage image(side, side, QImage::Format_ARGB32);
  image.fill(color);
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  QLinearGradient fade(0, 0, side, side);
  fade.setColorAt(0, color.lighter());
  fade.setColorAt(1, QColor(color.red(), color.green(), color.blue(), 60));
  painter.fillRect(QRect(side / 8, side / 8, side * 3 / 4, side * 3 / 4), fade);
  return image;
}

/// Images on the disk, as long as the program runs.
std::string ImageFile(const char* name, const QColor& color, int side) {
  static const QTemporaryDir folder;
  const QString path = folder.filePath(name);
  Texture(color, side).save(path);
  return path.toStdString();
}

std::unique_ptr<QWidget> MainWindow(Stage& stage, int tab) {
  setting::GameDirectory.Write(stage.Settings, "/home/ada/.steam/steam/steamapps/common/Half-Life 2/hl2");
  setting::TabSelect.Write(stage.Settings, tab);
  auto dialog = std::make_unique<app::CKilndeskDlg>(stage.Settings, stage.Desktop);
  dialog->Create();
  return dialog;
}

void FillMaterials(Stage& stage) {
  setting::MaterialsDir.Write(stage.Settings, "props/workshop");
  setting::HasNormal.Write(stage.Settings, 1);
  setting::NormalMap.Write(stage.Settings, "/home/ada/textures/crate_n.png");
  setting::EnvMap.Write(stage.Settings, 1);
  setting::EnvMapNormalMask.Write(stage.Settings, 1);
  setting::EnvmapContrast.Write(stage.Settings, "0.5");
  setting::EnvmapTint.Write(stage.Settings, "1 0.9 0.8");
  setting::EnvmapSpecularMap.Write(stage.Settings, "/home/ada/textures/crate_s.png");
  setting::Material0.Write(stage.Settings, ImageFile("Crate.png", QColor(170, 110, 50), 256));
  setting::Material1.Write(stage.Settings, ImageFile("barrel rusty.png", QColor(60, 120, 90), 128));
  setting::Material2.Write(stage.Settings, ImageFile("lamp.bmp", QColor(220, 200, 90), 64));
}

std::unique_ptr<QWidget> Materials(Stage& stage) {
  FillMaterials(stage);
  auto window = MainWindow(stage, 1);
  QTest::qWait(1500);  // for the list's small pictures
  return window;
}

std::unique_ptr<QWidget> Envmap(Stage& stage) {
  auto dialog = std::make_unique<pages::CEnvmapDialog>(stage.Desktop, nullptr);
  tools::MaterialCompile values;
  values.MaskInNormalAlpha = true;
  values.EnvMapContrast = "0.5";
  values.EnvMapTint = "1 0.9 0.8";
  values.SpecularMap = "/home/ada/textures/crate_s.png";
  dialog->Show(values);
  dialog->Create();
  return dialog;
}

std::unique_ptr<QWidget> RunningCompile(Stage& stage) {
  auto status = std::make_unique<pages::CVtexStatusDialog>(stage.Desktop, nullptr, [] {});
  status->Create();
  status->Begin();
  status->Show(jobs::Started{3});
  status->Show(jobs::ItemStarted{0, "/home/ada/textures/Crate.png", {}});
  status->Show(jobs::ItemFinished{0, {.Judged = jobs::Verdict::Succeeded}});
  status->Show(jobs::ItemStarted{1, "/home/ada/textures/barrel rusty.png", {}});
  for (const char* line :
       {"Converting barrel rusty.png from PNG to TGA\r\n",
        "/home/ada/sdk/bin/vtex.exe -nopause -shader VertexLitGeneric -vmtparam $model 1 "
        "\"/home/ada/game/materialsrc/models/props/barrel rusty.tga\"\r\n",
        "Warning: no mip maps for an image of this size\r\n", "Error opening \"barrel rusty.txt\"\r\n"}) {
    status->Show(jobs::Line{.Item = 1, .Text = line});
  }
  return status;
}

std::unique_ptr<QWidget> ExportedTexture(Stage& stage) {
  setting::VtfExportFile.Write(stage.Settings, "/home/ada/game/materials/props/crate.vtf");
  setting::TgaExportFile.Write(stage.Settings, "/home/ada/game/materials/props/crate.png");
  auto window = MainWindow(stage, 3);
  window->findChild<view::PictureView*>("picture")->ShowPicture(Texture(QColor(170, 110, 50), 256), "crate.tga");
  window->findChild<pages::CVTFDialog*>()->findChild<QPlainTextEdit*>("logEdit")->setPlainText(
      "/home/ada/sdk/bin/vtf2tga.exe -nopause -i \"/home/ada/game/materials/props/crate.vtf\" -o "
      "\"/home/ada/game/materials/props/crate.tga\"\nvtf width: 256\nvtf height: 256\nConverting crate.tga from TGA to "
      "PNG\n");
  return window;
}

/// The page before anything is exported: an animated texture with alpha.
std::unique_ptr<QWidget> NamedTexture(Stage& stage) {
  static const QTemporaryDir folder;
  const std::string path = folder.filePath("crate.vtf").toStdString();
  constexpr int Side = 256;
  QByteArray pixels;
  for (int size = 1; size <= Side; size *= 2) {
    for (int frame = 0; frame < 2; ++frame) {
      const QImage image = Texture(QColor(170, 110, 50 + 100 * frame), size);
      pixels.append(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes());
    }
  }
  tests::WriteText(path, tests::VtfBuilder()
                             .Size(Side, Side)
                             .Format(textures::PixelFormat::Bgra8888)
                             .Mips(9)
                             .Frames(2)
                             .Pixels(pixels.toStdString())
                             .Build());
  setting::VtfExportFile.Write(stage.Settings, path);
  setting::TgaExportFile.Write(stage.Settings, path.substr(0, path.size() - 3) + "png");
  auto window = MainWindow(stage, 3);
  auto* view = window->findChild<view::TextureView*>();
  for (int i = 0; i < 100 && view->IsBusy(); ++i) QTest::qWait(20);
  return window;
}

/// A texture file with that picture.
std::string TextureFile(const QColor& color) {
  constexpr int Side = 64;
  const QImage image = Texture(color, Side).convertToFormat(QImage::Format_ARGB32);
  return tests::VtfBuilder()
      .Size(Side, Side)
      .Format(textures::PixelFormat::Bgra8888)
      .Pixels({reinterpret_cast<const char*>(image.constBits()), size_t{Side} * Side * 4})
      .Build();
}

/// A game with an archive, as long as the program runs.
std::string GameDirectory() {
  static const QTemporaryDir folder;
  const std::string game = folder.filePath("Half-Life 2/hl2").toStdString();
  tests::WriteText(game + "/gameinfo.txt",
                   "GameInfo { FileSystem { SearchPaths { game |gameinfo_path|. game hl2/hl2_textures.vpk } } }");
  tests::VpkBuilder vpk;
  int hue = 0;
  for (const char* name : {"wood/crate", "wood/plank_old", "metal/barrel_rusty", "metal/door", "stone/wall",
                           "glass/pane", "props/lamp", "props/bench", "nature/grass"}) {
    const std::string path = std::string("materials/") + name;
    vpk.Files.push_back({.Name = path + ".vtf", .Bytes = TextureFile(QColor::fromHsv(hue += 37, 160, 190))});
    vpk.Files.push_back({.Name = path + ".vmt", .Bytes = "LightmappedGeneric { $basetexture crate }"});
  }
  for (const char* name : {"props/crate01", "props/barrel01", "props/lamp", "humans/walker"}) {
    const std::string path = std::string("models/") + name;
    for (const char* ending : {".mdl", ".vvd", ".dx90.vtx"}) {
      vpk.Files.push_back({.Name = path + ending, .Bytes = std::string(70'000, 'm')});
    }
  }
  tests::WriteText(folder.filePath("Half-Life 2/hl2/hl2_textures_dir.vpk").toStdString(), vpk.Build().Directory);
  tests::WriteText(game + "/models/mine/chair.mdl", "mdl");
  return game;
}

std::unique_ptr<QWidget> GameContent(Stage& stage, std::optional<archives::ContentKind> kind, const char* words) {
  auto window =
      std::make_unique<pages::CContentDialog>(pages::ContentContext{stage.Settings, stage.Desktop, [] {}, {}}, nullptr);
  window->BrowseGame(kind);
  QTest::qWait(700);
  window->findChild<QLineEdit*>("searchEdit")->setText(words);
  QTest::qWait(700);
  auto* list = window->findChild<pages::CContentList*>();
  list->setCurrentIndex(list->model()->index(1, 0));
  QTest::qWait(700);  // for the pictures
  return window;
}

}  // namespace

std::vector<Subject> TextureSubjects() {
  return {{"game-content",
           [](Stage& stage) {
             setting::GameDirectory.Write(stage.Settings, GameDirectory());
             return GameContent(stage, {}, "");
           }},
          {"game-content-search",
           [](Stage& stage) {
             setting::GameDirectory.Write(stage.Settings, GameDirectory());
             return GameContent(stage, archives::ContentKind::Texture, "wo");
           }},
          {"game-content-none", [](Stage& stage) { return GameContent(stage, {}, ""); }},
          {"materials", Materials},
          {"envmap-settings", Envmap},
          {"vtex-status", RunningCompile},
          {"vtf-named", NamedTexture},
          {"vtf-exported", ExportedTexture}};
}

}  // namespace tarnwick::screenshots

#include <QComboBox>

#include "material_page.h"

namespace tarnwick::pages {

namespace {

using platform::BoxIcon;
using testing::ElementsAre;
using tests::Click;
using tests::ControlOf;
using tests::Dropped;
using tests::ShownBox;

TEST_F(MaterialPage, StartsForModelsWhenNothingIsKept) {
  Open();
  EXPECT_EQ(ControlOf<QComboBox>(*m_page, "shaderCombo").currentText(), "VertexLitGeneric");
  EXPECT_TRUE(Button("modelPathRadio").isChecked());
  EXPECT_FALSE(Edit("normalEdit").isEnabled() || Edit("glowEdit").isEnabled() || Button("envmapButton").isEnabled());
  EXPECT_FALSE(Envmap().isVisible());
  EXPECT_TRUE(m_directories.empty());
  EXPECT_TRUE(m_settings.Values.empty());
}

TEST_F(MaterialPage, ShowsWholeNamesAndPicturesFromTheFirstRowOn) {
  Open();
  m_desktop.Choices = {Image("a name that is longer than the header.png", Qt::red, 100)};
  Click(*m_page, "addButton");
  ASSERT_EQ(List().topLevelItemCount(), 1);
  const QFontMetrics metrics(List().font());
  EXPECT_GE(List().columnWidth(0), metrics.horizontalAdvance(List().topLevelItem(0)->text(0)) + 24);
  EXPECT_GE(List().visualItemRect(List().topLevelItem(0)).height(), 24);
  const int chosen = List().columnWidth(0) / 2;
  List().setColumnWidth(0, chosen);
  m_desktop.Choices = {Image("b.png")};
  Click(*m_page, "addButton");
  EXPECT_EQ(List().columnWidth(0), chosen) << "what the user has set stays";
}

TEST_F(MaterialPage, KeepsEveryControlForTheNextStart) {
  Open();
  ControlOf<QComboBox>(*m_page, "shaderCombo").setEditText("My Shader");
  Edit("directoryEdit").setText("props/new");
  EXPECT_THAT(m_directories, ElementsAre("props/new"));
  for (const char* name : {"mapPathRadio", "normalCheck", "glowCheck", "selfIllumTextureCheck", "envmapCheck"}) {
    Button(name).click();
  }
  Edit("normalEdit").setText("/n.png");
  Edit("glowEdit").setText("/g.png");
  for (const char* name : {"baseMaskCheck", "normalMaskCheck", "illumMaskCheck"}) {
    ControlOf<QAbstractButton>(Envmap(), name).setChecked(true);
  }
  ControlOf<QLineEdit>(Envmap(), "contrastEdit").setText("1");
  ControlOf<QLineEdit>(Envmap(), "tintEdit").setText("1 2 3");
  ControlOf<QLineEdit>(Envmap(), "saturationEdit").setText("0.5");
  ControlOf<QLineEdit>(Envmap(), "specularEdit").setText("/s.png");
  std::vector<std::string> images;
  for (const char* name : {"a.png", "b.tga", "c.png", "d.png", "e.png"}) {
    tests::WriteText(m_folder.Path(name), std::string(2000, 'x'));
    images.push_back(m_folder.Path(name));
  }
  tests::Drop(*List().viewport(), images);
  for (std::string& image : images) image = tests::Dropped(image);
  m_page->SaveSettings();

  const std::vector<std::pair<std::string, std::string>> expected = {{"Materials DIR", "props/new"},
                                                                     {"Shader", "My Shader"},
                                                                     {"Model Path", "0"},
                                                                     {"Transparency", "0"},
                                                                     {"SelfIllum", "1"},
                                                                     {"SelfIllumBaseAlpha", "1"},
                                                                     {"HasNormal", "1"},
                                                                     {"Normal Map", "/n.png"},
                                                                     {"Glow Map", "/g.png"},
                                                                     {"Material0", images[0]},
                                                                     {"Material3", images[3]},
                                                                     {"EnvMap", "1"},
                                                                     {"EnvMapNormalMask", "1"},
                                                                     {"EnvMapIllumMask", "1"},
                                                                     {"EnvMapBaseMask", "1"},
                                                                     {"Envmap Contrast", "1"},
                                                                     {"Envmap Tint", "1 2 3"},
                                                                     {"Envmap Saturation", "0.5"},
                                                                     {"Envmap SpecularMap", "/s.png"}};
  for (const auto& [name, value] : expected) EXPECT_EQ(Kept(name), value) << name;
  EXPECT_EQ(m_settings.Values.size(), 21u) << "the fifth image is not kept";

  const auto kept = m_settings.Values;
  std::filesystem::remove(images[1]);
  m_directories.clear();
  Open();
  EXPECT_THAT(List().Files(), ElementsAre(images[0], images[2], images[3])) << "a file that is gone drops out";
  EXPECT_EQ(List().topLevelItem(0)->text(1), "PNG image");
  EXPECT_EQ(List().topLevelItem(0)->text(2), "1.95 KB");
  EXPECT_THAT(m_directories, ElementsAre("props/new"));
  EXPECT_TRUE(Edit("normalEdit").isEnabled() && Edit("glowEdit").isEnabled() && Button("envmapButton").isEnabled());
  m_options.modelPath = false;  // as the main dialog reads it
  m_page->SaveSettings();
  Kept("Material1") = images[1], Kept("Material2") = images[2], Kept("Material3") = images[3];
  EXPECT_EQ(m_settings.Values, kept);
}

TEST_F(MaterialPage, LetsGlowAndTranslucencyExcludeEachOther) {
  Open();
  Button("translucentCheck").click();
  Button("glowCheck").click();
  EXPECT_FALSE(Button("translucentCheck").isChecked());
  EXPECT_TRUE(Edit("glowEdit").isEnabled());
  Button("translucentCheck").click();
  EXPECT_FALSE(Button("glowCheck").isChecked());
  EXPECT_TRUE(Edit("glowEdit").isEnabled()) << "the box of the map is not touched";
  EXPECT_FALSE(Button("browseGlowButton").isEnabled());
  Button("mapPathRadio").click();
  EXPECT_FALSE(m_options.modelPath);
  Button("modelPathRadio").click();
  EXPECT_TRUE(m_options.modelPath);
}

TEST_F(MaterialPage, BrowsesForMapsAndImages) {
  Open();
  for (const char* name : {"normalCheck", "glowCheck", "envmapCheck"}) Button(name).click();
  Edit("normalEdit").setText("/old/n.png");
  Click(*m_page, "envmapButton");
  EXPECT_TRUE(Envmap().isVisible());
  m_desktop.Choices = {"/n.png", "", "/s.png", "/a.png", "/a.png"};
  Click(*m_page, "browseNormalButton");
  Click(*m_page, "browseGlowButton");  // cancelled
  Click(Envmap(), "browseSpecularButton");
  Click(*m_page, "addButton");
  Click(*m_page, "addButton");
  EXPECT_EQ(Edit("normalEdit").text(), "/n.png");
  EXPECT_EQ(Edit("glowEdit").text(), "");
  EXPECT_EQ(ControlOf<QLineEdit>(Envmap(), "specularEdit").text(), "/s.png");
  EXPECT_THAT(List().Files(), ElementsAre("/a.png", "/a.png")) << "Add does not look for doubles";
  EXPECT_EQ(List().topLevelItem(0)->text(2), "") << "a size that cannot be read stays blank";

  std::vector<std::string> titles;
  for (const auto& request : m_desktop.FileRequests) titles.push_back(request.Title);
  EXPECT_THAT(titles, ElementsAre("Name of Normal MAP TGA", "Name of Illum MAP TGA", "Name of Normal MAP TGA",
                                  "Name of TGA File", "Name of TGA File"));
  EXPECT_EQ(m_desktop.FileRequests[0].StartName, "/old/n.png");
  EXPECT_EQ(m_desktop.FileRequests[0].Filter,
            "TGA Files (*.tga)|*.tga|All Supported Files|*.tga;*.jpg;*.gif;*.bmp;*.png;*.dds|");
  EXPECT_EQ(m_desktop.FileRequests[3].Filter,
            "TGA/LST Files (*.tga,*lst)|*.tga;*.lst|All Supported Files|*.tga;*.jpg;*.gif;*.bmp;*.png;*.dds|");
  Click(Envmap(), "okButton");
  EXPECT_FALSE(Envmap().isVisible());
}

TEST_F(MaterialPage, TakesDropsByTheirPointAndClearsRows) {
  Open();
  tests::Drop(Edit("normalEdit"), {"/n.png", "/other.png"});
  EXPECT_EQ(Edit("normalEdit").text().toStdString(), Dropped("/n.png")) << "although the box is disabled";
  tests::Drop(Edit("glowEdit"), {"/g.png"});
  EXPECT_EQ(Edit("glowEdit").text().toStdString(), Dropped("/g.png"));
  Envmap().show();
  tests::Drop(ControlOf<QLineEdit>(Envmap(), "specularEdit"), {"/s.png"});
  EXPECT_EQ(ControlOf<QLineEdit>(Envmap(), "specularEdit").text().toStdString(), Dropped("/s.png"));
  tests::Drop(*List().viewport(), {"/a.png", "/A.png", "/a.png", "/b.png", "/c.png"});
  tests::Drop(*List().viewport(), {"/a.png"});
  EXPECT_THAT(List().Files(), ElementsAre(Dropped("/a.png"), Dropped("/A.png"), Dropped("/b.png"), Dropped("/c.png")));

  Click(*m_page, "clearButton");
  EXPECT_THAT(m_desktop.Boxes, ElementsAre(ShownBox{BoxIcon::Exclamation, "No items were selected!", "Warning"}));
  List().topLevelItem(0)->setSelected(true);
  List().topLevelItem(2)->setSelected(true);
  Click(*m_page, "clearButton");
  EXPECT_THAT(List().Files(), ElementsAre(Dropped("/A.png"), Dropped("/c.png")));
  Click(*m_page, "clearAllButton");
  EXPECT_TRUE(List().Files().empty());
  EXPECT_EQ(m_desktop.Boxes.size(), 1u);
}

TEST_F(MaterialPage, ShowsEachImageInItsRow) {
  Open();
  tests::Drop(*List().viewport(), {Image("green.png", Qt::green)});
  const auto color = [this] {
    const QImage icon = List().topLevelItem(0)->icon(0).pixmap(8, 8).toImage();
    return icon.pixelColor(icon.width() / 2, icon.height() / 2);
  };
  EXPECT_TRUE(tests::WaitUntil([&] { return color() == QColor(Qt::green); }));
}

}  // namespace

}  // namespace tarnwick::pages

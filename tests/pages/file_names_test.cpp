// A file may be called anything that the system allows. In every page its name must stay a name.

#include <gmock/gmock.h>

#include <QImage>
#include <QLineEdit>
#include <filesystem>

#include "core/paths.h"
#include "pages/decompiler_dialog.h"
#include "pages/mat_dialog.h"
#include "pages/material_list.h"
#include "pages/qc_compile_dialog.h"
#include "pages/ref_smd_info.h"
#include "pages/vtf_dialog.h"
#include "project/model_options.h"
#include "support/model_builder.h"
#include "support/scratch_folder.h"
#include "support/shell_programs.h"
#include "support/vtf_builder.h"
#include "window_support/memory_settings.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::pages {
namespace {

namespace fs = std::filesystem;
using tests::Click;
using tests::ControlOf;

/// Names with every character that a name can hold and a field of one line can show, and with some of other alphabets;
/// a backslash parts folders everywhere in the program.
std::vector<std::string> AllCharacters() {
  std::vector<std::string> names;
  for (int c = ' '; c < 127; ++c) {
    if (c == '/' || c == '\\') continue;
    if (names.empty() || names.back().size() == 33) names.emplace_back("n");
    names.back() += static_cast<char>(c);
  }
  names.emplace_back("\u00e9\u0436\u4e2d\U0001f600");
  names.emplace_back("water.vtf\" -o \"pwned");
#ifdef _WIN32
  for (std::string& name : names) {
    std::erase_if(name, [](char c) { return std::string_view("<>:\"|?*").find(c) != std::string_view::npos; });
  }
#endif
  return names;
}

class FileNamesOnPages : public testing::Test {
 protected:
  template <typename Page>
  std::unique_ptr<Page> Open() {
    auto page = std::make_unique<Page>(PageContext{m_settings, m_desktop, m_options});
    page->Create();
    page->AcceptFiles();
    page->show();
    return page;
  }
  static void Type(QWidget& page, const char* field, const std::string& text) {
    ControlOf<QLineEdit>(page, field).setText(QString::fromStdString(text));
  }

  tests::ScratchFolder m_folder;
  tests::MemorySettings m_settings;
  tests::ScriptedDesktop m_desktop;
  project::ModelOptions m_options;
};

TEST_F(FileNamesOnPages, AModelIsDecompiled) {
  const auto page = Open<CDecompilerDialog>();
  for (const std::string& name : AllCharacters()) {
    Type(*page, "modelEdit", tests::ModelBuilder{}.Write(m_folder.Path("in " + name), name));
    Type(*page, "outputEdit", m_folder.Path("out " + name));
    Click(*page, "extractButton");
    ASSERT_TRUE(tests::WaitUntil([&] { return page->isEnabled(); }));
    EXPECT_TRUE(fs::exists(core::NativePath(m_folder.Path("out " + name)))) << name;
    size_t scripts = 0;
    for (const auto& entry : fs::recursive_directory_iterator(core::NativePath(m_folder.Path("out " + name)))) {
      scripts += entry.path().extension() == ".qc" ? 1u : 0u;
    }
    EXPECT_EQ(scripts, 1u) << name;
  }
}

TEST_F(FileNamesOnPages, ATextureIsExported) {
  const auto page = Open<CVTFDialog>();
  std::vector<std::string> wanted;
  for (const std::string& name : AllCharacters()) {
    tests::WriteText(m_folder.Path("in/" + name + ".vtf"), tests::VtfBuilder().Build());
    Type(*page, "inputEdit", m_folder.Path("in/" + name + ".vtf"));
    Type(*page, "outputEdit", m_folder.Path("in/" + name + ".tga"));
    Click(*page, "extractButton");
    ASSERT_TRUE(tests::WaitUntil([&] { return ControlOf<QWidget>(*page, "controls").isEnabled(); }));
    wanted.push_back("in/" + name + ".tga");
    wanted.push_back("in/" + name + ".vtf");
  }
  EXPECT_THAT(m_folder.Files(), testing::UnorderedElementsAreArray(wanted));
}

TEST_F(FileNamesOnPages, AScriptIsCompiled) {
  TARNWICK_NEEDS_SHELL_PROGRAMS();
  tests::WriteShellProgram(m_folder.Path("sdk/studiomdl.exe"), "printf '[%s]' \"$@\" >\"$0.seen\"\n");
  m_settings.Values["Tarnwick/SDKDirectory"] = m_folder.Path("sdk");
  for (const std::string& name : AllCharacters()) {
    const auto page = Open<CQCCompileDialog>();
    const std::string game = m_folder.Path("game " + name);
    tests::WriteText(game + "/gameinfo.txt", "");
    m_settings.Values["Tarnwick/GameDirectory"] = game;
    const std::string script = m_folder.Path(name + ".qc");
    tests::WriteText(script, "$modelname a.mdl\n");
    Type(*page, "qcFileEdit", script);
    Click(*page, "compileButton");
    ASSERT_TRUE(tests::WaitUntil([&] { return page->OutputText().find("complete") != std::string::npos; }));
    EXPECT_EQ(tests::ReadText(m_folder.Path("sdk/studiomdl.exe.seen")), "[-game][" + game + "][" + script + "]");
  }
}

TEST_F(FileNamesOnPages, AnImageBecomesAMaterial) {
  const auto page = Open<CMatDialog>();
  m_settings.Values["Tarnwick/GameDirectory"] = m_folder.Path("game");
  fs::create_directory(m_folder.Path("game"));
  for (const std::string& name : AllCharacters()) {
    const std::string image = m_folder.Path(name + ".png");
    QImage picture(4, 4, QImage::Format_ARGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(QString::fromStdString(image)));
    page->findChild<CMaterialList*>()->AddFile(image);
  }
  Type(*page, "directoryEdit", "props");
  Click(*page, "compileButton");
  ASSERT_TRUE(tests::WaitUntil([&] { return page->isEnabled(); }));
  size_t textures = 0;
  for (const auto& entry : fs::recursive_directory_iterator(m_folder.Path("game"))) {
    textures += entry.path().extension() == ".vtf" ? 1u : 0u;
  }
  EXPECT_EQ(textures, AllCharacters().size());
}

TEST_F(FileNamesOnPages, ASourceIsInspectedAndChanged) {
  for (const std::string& name : AllCharacters()) {
    CRefSMDInfo dialog(m_desktop, nullptr);
    dialog.SmdPath = m_folder.Path(name + ".smd");
    tests::WriteText(dialog.SmdPath, "version 1\nnodes\n0 \"root\" -1\nend\ntriangles\nwood\n");
    dialog.Create();
    ControlOf<QLineEdit>(dialog, "replaceEdit").setText("oak");
    m_desktop.BoxAnswers = {platform::BoxAnswer::Ok};
    Click(dialog, "replaceButton");
    EXPECT_THAT(tests::ReadText(dialog.SmdPath), testing::HasSubstr("triangles\noak\n")) << name;
  }
}

}  // namespace
}  // namespace tarnwick::pages

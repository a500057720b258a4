#pragma once

#include <memory>
#include <string>

#include "jobs/events.h"
#include "pages/envmap_dialog.h"
#include "pages/page.h"
#include "pages/page_job.h"
#include "pages/vtex_status_dialog.h"
#include "tools/material_compile.h"

namespace tarnwick::jobs {
struct CompileImages;
}

namespace Ui {
class MatDialog;
}

namespace tarnwick::pages {

/// The tab "Material Compile": a list of images and the options of their materials; runs vtex on each.
class CMatDialog : public CPage {
  Q_OBJECT

 public:
  explicit CMatDialog(const PageContext& context, QWidget* parent = nullptr);
  ~CMatDialog() override;

  void OnDropFiles(const platform::DroppedFiles& drop) override;
  void SaveSettings() override;

  /// Saves the page's values and compiles the list; the status window shows how it goes on.
  void CompileMaterials();

 signals:
  /// The compiled material directory has changed; also sent when the page starts with one.
  void MaterialDirectoryChanged(const std::string& directory);

 protected:
  void OnInitDialog() override;

 private:
  tools::MaterialCompile Values() const;
  void OnGlowMap();
  void OnTranslucent();
  void OnEnvMapSettings();
  void OnAdd();
  void OnClear();
  bool HasGame(const jobs::CompileImages& job);
  void Show(const jobs::Event& event);
  void TellNoImages();
  void ToPageLog(const std::string& text);

  std::unique_ptr<Ui::MatDialog> m_ui;
  CEnvmapDialog m_envmap;
  CVtexStatusDialog m_status;
  std::string m_outputDirectory;  // of the compile at work
  bool m_begun = false;
  PageJob m_job;  // behind the window that it writes to
};

}  // namespace tarnwick::pages

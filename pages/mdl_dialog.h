#pragma once

#include <memory>
#include <string>

#include "pages/page.h"
#include "pages/row_list.h"
#include "pages/studiomdl_status_dialog.h"
#include "pages/viewed_model.h"
#include "project/model_project.h"
#include "project/profile_store.h"

namespace Ui {
class MdlDialog;
}

namespace tarnwick::pages {

/// The inner tab "Compile Model": the form of a model project.
class CMDLDialog : public CPage {
  Q_OBJECT

 public:
  explicit CMDLDialog(const PageContext& context, QWidget* parent = nullptr);
  ~CMDLDialog() override;

  void OnDropFiles(const platform::DroppedFiles& drop) override;
  size_t OpenFiles(const std::vector<std::string>& paths) override;
  /// The project's fields into the settings.
  void SaveSettings() override;

  /// Shows the directory below materials/models that the material page has; the script names it.
  void SetMaterialDirectory(const std::string& directory);

  /// The project as the form shows it.
  const project::ModelProject& Project();

 protected:
  void OnInitDialog() override;
  void DoDataExchange(platform::CDataExchange& exchange) override;

 private:
  void ConnectButtons();
  void OnBrowseReference();
  void OnBrowseCollision();
  bool AddSequence(const std::string& smdFile);
  void EditSequence(int row);
  void FollowSequenceRule();
  void FollowCollisionCheck();
  void OnLoad();
  void OnSave();
  void RememberAsSaved();
  bool HasUnsavedChanges() const;
  void OnView();
  void OnInspect();
  void OnModelOptions();
  /// Writes the script and runs studiomdl on it.
  void CompileModel();

  std::unique_ptr<Ui::MdlDialog> m_ui;
  project::ModelProject m_project;
  project::ProfileStore m_store;
  project::ProfileStore m_saved;  // the project as it was begun, loaded or saved last
  std::unique_ptr<RowList> m_sequences;
  ViewedModel m_viewed;
  CStudioMDLStatusDialog m_status;
  ToolRunner m_runner;  // behind the window that it writes to
};

}  // namespace tarnwick::pages

#pragma once

#include <string>

#include "pages/row_list_page.h"
#include "project/model_project.h"

namespace tarnwick::pages {

// The pages of the model options: each works on one list of the project at once.

class CMdlAttachDlg : public CRowListPage {
  Q_OBJECT

 public:
  CMdlAttachDlg(platform::Desktop& desktop, QWidget* parent, project::AttachmentList& list);
};

class CMdlGibDlg : public CRowListPage {
  Q_OBJECT

 public:
  /// `gameDirectory` is where the editor looks for models.
  CMdlGibDlg(platform::Desktop& desktop, QWidget* parent, project::GibList& list, const std::string& gameDirectory);
};

class CMdlLODDlg : public CRowListPage {
  Q_OBJECT

 public:
  CMdlLODDlg(platform::Desktop& desktop, QWidget* parent, project::LodList& list);
};

class CSkinDlg : public CRowListPage {
  Q_OBJECT

 public:
  CSkinDlg(platform::Desktop& desktop, QWidget* parent, project::SkinList& list);
};

class CMdlQCCmdDlg : public CRowListPage {
  Q_OBJECT

 public:
  CMdlQCCmdDlg(platform::Desktop& desktop, QWidget* parent, project::QcCommandList& list);
};

}  // namespace tarnwick::pages

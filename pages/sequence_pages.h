#pragma once

#include <string>
#include <vector>

#include "pages/row_list_page.h"
#include "project/project_entries.h"

namespace tarnwick::pages {

/// The tab "Sequence Commands" of the sequence editor. It works on the editor's copy of the commands.
class CSeqCmdDlg : public CRowListPage {
  Q_OBJECT

 public:
  CSeqCmdDlg(platform::Desktop& desktop, QWidget* parent, std::vector<std::string>& commands);

 private:
  bool Add();
  void Edit(size_t row);

  std::vector<std::string>& m_commands;
};

/// The tab "Events", likewise.
class CEventDlg : public CRowListPage {
  Q_OBJECT

 public:
  CEventDlg(platform::Desktop& desktop, QWidget* parent, std::vector<project::EventEntry>& events);

 private:
  bool Add();
  void Edit(size_t row);

  std::vector<project::EventEntry>& m_events;
};

}  // namespace tarnwick::pages

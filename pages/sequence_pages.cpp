#include "pages/sequence_pages.h"

#include "pages/event_dialog.h"
#include "pages/refusal_box.h"
#include "pages/text_line_dialog.h"
#include "platform/text.h"
#include "project/sequence_editor.h"

namespace tarnwick::pages {

using platform::ToQt;

namespace {

constexpr const char* Frame = "Additional Sequence and Animation Commands";

/// What the list needs of `rows`; `texts` tells the columns of an entry.
template <typename Page, typename Entry, typename Texts>
RowListEntries EntriesOf(std::vector<Entry>& rows, Texts texts, Page& page, bool (Page::*add)(),
                         void (Page::*edit)(size_t)) {
  return {.Count = [&rows] { return static_cast<int>(rows.size()); },
          .Texts = [&rows, texts](int row) { return texts(rows[static_cast<size_t>(row)]); },
          .Add = [&page, add] { return (page.*add)(); },
          .Edit = [&page, edit](int row) { (page.*edit)(static_cast<size_t>(row)); },
          .Remove = [&rows](int row) { rows.erase(rows.begin() + row); }};
}

QStringList CommandTexts(const std::string& command) {
  return {ToQt(command)};
}

QStringList EventTexts(const project::EventEntry& event) {
  return {ToQt(event.name), ToQt(event.frame), ToQt(event.option)};
}

}  // namespace

CSeqCmdDlg::CSeqCmdDlg(platform::Desktop& desktop, QWidget* parent, std::vector<std::string>& commands)
    : CRowListPage(desktop, parent, Frame, {"Command    "},
                   EntriesOf(commands, CommandTexts, *this, &CSeqCmdDlg::Add, &CSeqCmdDlg::Edit)),
      m_commands(commands) {}

bool CSeqCmdDlg::Add() {
  if (ShowRefusal(*this, project::CheckRoomForCommand(m_commands.size()))) return false;
  CAnimEditCtrl editor(DesktopSeam(), this);
  if (editor.DoModal() != Accepted || editor.Text.empty()) return false;
  m_commands.push_back(editor.Text);
  return true;
}

void CSeqCmdDlg::Edit(size_t row) {
  CAnimEditCtrl editor(DesktopSeam(), this);
  editor.Text = m_commands[row];
  if (editor.DoModal() == Accepted && !editor.Text.empty()) m_commands[row] = editor.Text;
}

CEventDlg::CEventDlg(platform::Desktop& desktop, QWidget* parent, std::vector<project::EventEntry>& events)
    : CRowListPage(desktop, parent, Frame, {"Name    ", "Frame   ", "Option  "},
                   EntriesOf(events, EventTexts, *this, &CEventDlg::Add, &CEventDlg::Edit)),
      m_events(events) {}

bool CEventDlg::Add() {
  if (ShowRefusal(*this, project::CheckRoomForEvent(m_events.size()))) return false;
  CEventDialog editor(DesktopSeam(), this);
  if (editor.DoModal() != Accepted) return false;
  m_events.push_back(editor.Entry);
  return true;
}

void CEventDlg::Edit(size_t row) {
  CEventDialog editor(DesktopSeam(), this);
  editor.Entry = m_events[row];
  if (editor.DoModal() == Accepted) m_events[row] = editor.Entry;
}

}  // namespace tarnwick::pages

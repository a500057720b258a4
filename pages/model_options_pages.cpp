#include "pages/model_options_pages.h"

#include "pages/entry_dialogs.h"
#include "pages/text_line_dialog.h"
#include "platform/text.h"

namespace tarnwick::pages {

namespace {

using platform::Desktop;

/// The texts of an entry's columns.
template <typename... Texts>
QStringList Row(const Texts&... texts) {
  return {platform::ToQt(texts)...};
}

/// What a page's list needs: `texts` tells the columns of an entry, and `edit` opens the editor on one and gives
/// whether that ended with OK.
template <typename Entry, typename List>
RowListEntries EntriesOf(List& list, QStringList (*texts)(const Entry&), std::function<bool(Entry&)> edit) {
  return {.Count = [&list] { return static_cast<int>(list.Count()); },
          .Texts = [&list, texts](int row) { return texts(list.At(row)); },
          .Add =
              [&list, edit] {
                Entry entry;
                if (!edit(entry)) return false;
                list.Add(std::move(entry));
                return true;
              },
          .Edit = [&list, edit](int row) { edit(list.At(row)); },
          .Remove = [&list](int row) { list.RemoveAt(row); }};
}

/// Opens `editor` on an entry.
template <typename Editor, typename Entry>
bool EditIn(Editor&& editor, Entry& entry) {
  editor.Entry = entry;
  if (editor.DoModal() != QDialog::Accepted) return false;
  entry = editor.Entry;
  return true;
}

}  // namespace

CMdlAttachDlg::CMdlAttachDlg(Desktop& desktop, QWidget* parent, project::AttachmentList& list)
    : CRowListPage(
          desktop, parent, "Attachments", {"Name", "Bone", "Translation", "Rotation"},
          EntriesOf<project::AttachmentEntry>(
              list,
              [](const project::AttachmentEntry& entry) {
                return Row(entry.name, entry.bone, entry.translation, entry.rotation);
              },
              [this](project::AttachmentEntry& entry) { return EditIn(CAttachDialog(DesktopSeam(), this), entry); })) {}

CMdlGibDlg::CMdlGibDlg(Desktop& desktop, QWidget* parent, project::GibList& list, const std::string& gameDirectory)
    : CRowListPage(desktop, parent, "Gibs - Specify the pieces this model breaks into ", {"Model"},
                   EntriesOf<project::GibEntry>(
                       list, [](const project::GibEntry& entry) { return Row(entry.model); },
                       [this, gameDirectory](project::GibEntry& entry) {
                         return EditIn(CGibDialog(DesktopSeam(), this, gameDirectory), entry);
                       })) {}

CMdlLODDlg::CMdlLODDlg(Desktop& desktop, QWidget* parent, project::LodList& list)
    : CRowListPage(desktop, parent, "LOD Files (Specify files to use for Level Of Detail models)",
                   {"SMD File", "Distance"},
                   EntriesOf<project::LodEntry>(
                       list, [](const project::LodEntry& entry) { return Row(entry.smdFile, entry.distance); },
                       [this](project::LodEntry& entry) { return EditIn(CLodDialog(DesktopSeam(), this), entry); })) {}

CSkinDlg::CSkinDlg(Desktop& desktop, QWidget* parent, project::SkinList& list)
    : CRowListPage(desktop, parent, "Skins", {"Name"},
                   EntriesOf<project::SkinEntry>(
                       list, [](const project::SkinEntry& entry) { return Row(entry.skin); },
                       [this](project::SkinEntry& entry) { return EditIn(CSkinDialog(DesktopSeam(), this), entry); })) {
}

CMdlQCCmdDlg::CMdlQCCmdDlg(Desktop& desktop, QWidget* parent, project::QcCommandList& list)
    : CRowListPage(desktop, parent, "Additional QC Commands", {"Command"},
                   EntriesOf<project::QcCommandEntry>(
                       list, [](const project::QcCommandEntry& entry) { return Row(entry.command); },
                       [this](project::QcCommandEntry& entry) {
                         CQCCmdDialog editor(DesktopSeam(), this);
                         editor.Text = entry.command;
                         if (editor.DoModal() != Accepted) return false;
                         entry.command = editor.Text;
                         return true;
                       })) {}

}  // namespace tarnwick::pages

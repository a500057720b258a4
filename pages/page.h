#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "archives/content_index.h"
#include "core/app_settings.h"
#include "platform/dialog.h"
#include "tools/page_log.h"

class QAbstractButton;

namespace tarnwick::jobs {
class InputContent;
}
namespace tarnwick::project {
struct ModelOptions;
}

namespace tarnwick::pages {

class CPage;

/// Takes names of files that were chosen in the window of game content, and gives how many of them it works on.
using ContentTaker = std::function<size_t(const std::vector<std::string>& names)>;
using BrowseContentFor = std::function<void(std::optional<archives::ContentKind> kind, const ContentTaker& take)>;

/// What every page works with; all of it outlives the pages.
struct PageContext {
  core::AppSettings& Settings;
  platform::Desktop& Desktop;
  project::ModelOptions& Options;        // the program's one record, filled from the settings before a page is created
  tools::PageLog* Log = nullptr;         // the compile pages' one channel; may be missing
  std::function<void()> Configure = {};  // opens the configuration of game and SDK; may be missing
  /// Shows the window of game content, files of that kind first; what is opened there goes to OpenFiles of the page if
  /// it takes it. May be missing.
  std::function<void(CPage& page, std::optional<archives::ContentKind> kind)> BrowseContent = {};
  /// The same for another window: what is opened goes to `take`, which gives how many files it takes. May be missing.
  BrowseContentFor BrowseContentForWindow = {};
};

/// A page of the main dialog. Its OnDropFiles is called with the files that are dropped on the main dialog while its
/// tab is showing; what runs on a platform::JobRunner of the page is found and asked about when the window closes.
class CPage : public platform::CDialog {
  Q_OBJECT

 public:
  CPage(const PageContext& context, QWidget* parent);

  /// Writes what is kept for the next run; called when the main dialog closes. Does nothing here.
  virtual void SaveSettings();

  /// Takes files that the program was started with, as if they had been chosen on the page. Gives how many of them are
  /// of a kind that this page works on; nothing changes if none is. None are here.
  virtual size_t OpenFiles(const std::vector<std::string>& paths);

 protected:
  core::AppSettings& Settings() const { return m_context.Settings; }
  project::ModelOptions& Options() const { return m_context.Options; }
  const PageContext& Context() const { return m_context; }

  /// Puts a button behind the one that opens a file; `caption` is "Game content..." with a letter that the page has
  /// free.
  void AddContentButton(QAbstractButton& openButton, const QString& caption, std::optional<archives::ContentKind> kind);
  /// By which a job reads its inputs, in archives and through the game's search paths too.
  std::shared_ptr<jobs::InputContent> NewContent() const;

 private:
  PageContext m_context;
};

}  // namespace tarnwick::pages

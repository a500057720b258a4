#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/trouble.h"

class QWidget;

namespace tarnwick::platform {

using core::BoxIcon;  // Stop, Exclamation and Information beep as the platform does

/// The buttons of a message box, the first of each being the default one unless the box says otherwise.
enum class BoxButtons { Ok, OkCancel, YesNo, YesNoCancel };

/// How the user left a message box. Esc and the close box count as Cancel (No where there is none, Ok where that is
/// the only button).
enum class BoxAnswer { Ok, Cancel, Yes, No };

/// One message box.
struct MessageBoxRequest {
  std::string Text;     // plain text, never read as markup; \r\n and \n break lines
  std::string Caption;  // empty: the program's name
  BoxIcon Icon = BoxIcon::None;
  BoxButtons Buttons = BoxButtons::Ok;
  std::string Details = {};  // a second, quieter paragraph; may be empty
  std::string OkLabel = {};  // for the OK button; empty: the platform's
  /// Whether Enter answers Cancel (No where there is none) as Esc does: for a question whose yes loses something.
  bool RefusalIsDefault = false;
};

/// What became of the wish to edit a file.
enum class EditStart {
  Begun,
  NoFile,    // there is no such file
  NoEditor,  // there is no program for it, or none that starts
};

/// One file chooser.
struct FileRequest {
  std::string Title;           // empty: the platform's
  std::string Filter;          // pairs as in "MDL Files (*.mdl)|*.mdl|", patterns parted by ';'
  std::string StartName;       // the file that is filled in, with or without a directory; may be empty
  std::string StartDirectory;  // where the chooser opens when StartName names no directory; may be empty
};

/// Everything that the program asks of the user's desktop. The windows hold a reference to one and call nothing of the
/// kind directly, so a test answers for the user. Every call is made on the user-interface thread; the boxes and
/// choosers return when the user has answered. `owner` is the window that the box belongs to; it may be null.
class Desktop {
 public:
  virtual ~Desktop() = default;

  virtual BoxAnswer ShowBox(QWidget* owner, const MessageBoxRequest& request) = 0;

  /// The file that the user chose to read; nothing on cancel.
  virtual std::optional<std::string> ChooseFileToOpen(QWidget* owner, const FileRequest& request) = 0;
  /// The files that the user chose to read, at least one; nothing on cancel.
  virtual std::optional<std::vector<std::string>> ChooseFilesToOpen(QWidget* owner, const FileRequest& request) = 0;
  /// The file that the user chose to write, who has agreed if it is there already; nothing on cancel.
  virtual std::optional<std::string> ChooseFileToSave(QWidget* owner, const FileRequest& request) = 0;
  /// The directory that the user chose, without a separator at its end; nothing on cancel. An empty title is the
  /// platform's; an empty or missing start directory is the platform's too.
  virtual std::optional<std::string> ChooseFolder(QWidget* owner, const std::string& title,
                                                  const std::string& startDirectory) = 0;

  /// Opens a web or mail address, or a file or folder by its path, in the handler that the system has for it. False
  /// if there is none or it does not start.
  virtual bool Open(const std::string& addressOrPath) = 0;
  /// The same, in a window of its own where the handler knows how to.
  virtual bool OpenInNewWindow(const std::string& addressOrPath) { return Open(addressOrPath); }
  /// Starts the user's web browser with `address`: for when Open has failed. False if there is none or it does not
  /// start.
  virtual bool OpenInBrowser(const std::string& /*address*/) { return false; }
  /// Opens a text file in the user's editor.
  virtual EditStart Edit(const std::string& path) = 0;

  /// Shows a box with an OK button: the short form of ShowBox.
  void Box(QWidget* owner, BoxIcon icon, const std::string& text, const std::string& caption = {}) {
    ShowBox(owner, {text, caption, icon, BoxButtons::Ok});
  }
};

/// The name filters of a chooser as Qt takes them, from pairs such as "TGA Files (*.tga)|*.tga|All|*.tga;*.png|". A
/// pattern list in brackets at a label's end is replaced by the true one.
std::vector<std::string> NameFilters(const std::string& pairs);

}  // namespace tarnwick::platform

#pragma once

#include <deque>

#include "platform/desktop.h"

namespace tarnwick::tests {

/// What a box said, to be compared in one piece.
struct ShownBox {
  platform::BoxIcon Icon;
  std::string Text;
  std::string Caption;
  platform::BoxButtons Buttons = platform::BoxButtons::Ok;

  bool operator==(const ShownBox&) const = default;
};

/// A desktop at which nobody sits: it keeps what was shown and answers as the test has laid down. Without an answer
/// laid down a box is answered with Ok (Yes where it has that) and a chooser is cancelled.
class ScriptedDesktop : public platform::Desktop {
 public:
  platform::BoxAnswer ShowBox(QWidget* owner, const platform::MessageBoxRequest& request) override;
  std::optional<std::string> ChooseFileToOpen(QWidget* owner, const platform::FileRequest& request) override;
  std::optional<std::vector<std::string>> ChooseFilesToOpen(QWidget* owner,
                                                            const platform::FileRequest& request) override;
  std::optional<std::string> ChooseFileToSave(QWidget* owner, const platform::FileRequest& request) override;
  std::optional<std::string> ChooseFolder(QWidget* owner, const std::string& title,
                                          const std::string& startDirectory) override;
  bool Open(const std::string& addressOrPath) override;
  platform::EditStart Edit(const std::string& path) override;

  // Answers, used up from the front.
  std::deque<platform::BoxAnswer> BoxAnswers;
  std::deque<std::string> Choices;  // for choosers of every kind; "" cancels
  bool OpenSucceeds = true;
  platform::EditStart EditEndsAs = platform::EditStart::Begun;

  // What was asked.
  std::vector<ShownBox> Boxes;
  platform::MessageBoxRequest LastBox;  // the last of them, with all that it holds
  std::vector<platform::FileRequest> FileRequests;
  std::vector<std::pair<std::string, std::string>> FolderRequests;  // title and start directory
  std::vector<std::string> Opened;                                  // addresses and paths, also of Edit

 private:
  std::optional<std::string> NextChoice();
};

}  // namespace tarnwick::tests

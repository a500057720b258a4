#include "window_support/scripted_desktop.h"

namespace tarnwick::tests {

using platform::BoxAnswer;
using platform::BoxButtons;

BoxAnswer ScriptedDesktop::ShowBox(QWidget*, const platform::MessageBoxRequest& request) {
  LastBox = request;
  Boxes.push_back({request.Icon, request.Text, request.Caption, request.Buttons});
  if (BoxAnswers.empty()) {
    return request.Buttons == BoxButtons::Ok || request.Buttons == BoxButtons::OkCancel ? BoxAnswer::Ok
                                                                                        : BoxAnswer::Yes;
  }
  const BoxAnswer answer = BoxAnswers.front();
  BoxAnswers.pop_front();
  return answer;
}

std::optional<std::string> ScriptedDesktop::NextChoice() {
  if (Choices.empty()) return std::nullopt;
  std::string choice = Choices.front();
  Choices.pop_front();
  if (choice.empty()) return std::nullopt;
  return choice;
}

std::optional<std::string> ScriptedDesktop::ChooseFileToOpen(QWidget*, const platform::FileRequest& request) {
  FileRequests.push_back(request);
  return NextChoice();
}

std::optional<std::vector<std::string>> ScriptedDesktop::ChooseFilesToOpen(QWidget*,
                                                                           const platform::FileRequest& request) {
  FileRequests.push_back(request);
  const std::optional<std::string> choice = NextChoice();
  if (!choice) return std::nullopt;
  return std::vector{*choice};
}

std::optional<std::string> ScriptedDesktop::ChooseFileToSave(QWidget*, const platform::FileRequest& request) {
  FileRequests.push_back(request);
  return NextChoice();
}

std::optional<std::string> ScriptedDesktop::ChooseFolder(QWidget*, const std::string& title,
                                                         const std::string& startDirectory) {
  FolderRequests.emplace_back(title, startDirectory);
  return NextChoice();
}

bool ScriptedDesktop::Open(const std::string& addressOrPath) {
  Opened.push_back(addressOrPath);
  return OpenSucceeds;
}

platform::EditStart ScriptedDesktop::Edit(const std::string& path) {
  Opened.push_back(path);
  return EditEndsAs;
}

}  // namespace tarnwick::tests

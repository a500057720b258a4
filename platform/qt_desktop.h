#pragma once

#include "platform/browser.h"
#include "platform/desktop.h"

namespace tarnwick::platform {

/// The desktop that the user sits at: Qt's own boxes and choosers, the system's handlers.
class QtDesktop : public Desktop {
 public:
  BoxAnswer ShowBox(QWidget* owner, const MessageBoxRequest& request) override;
  std::optional<std::string> ChooseFileToOpen(QWidget* owner, const FileRequest& request) override;
  std::optional<std::vector<std::string>> ChooseFilesToOpen(QWidget* owner, const FileRequest& request) override;
  std::optional<std::string> ChooseFileToSave(QWidget* owner, const FileRequest& request) override;
  std::optional<std::string> ChooseFolder(QWidget* owner, const std::string& title,
                                          const std::string& startDirectory) override;
  bool Open(const std::string& addressOrPath) override;
  bool OpenInNewWindow(const std::string& addressOrPath) override;
  bool OpenInBrowser(const std::string& address) override { return StartBrowser(address); }
  EditStart Edit(const std::string& path) override;
};

}  // namespace tarnwick::platform

#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "jobs/events.h"
#include "platform/dialog.h"

class QProgressBar;

namespace Ui {
class DecompilerStatus;
}

namespace tarnwick::pages {

/// What is seen of a decompile job: its log, how far it has got, and what became of each model where there are several.
/// The page owns the one window and shows it anew for each job.
class CDecompilerStatus : public platform::CDialog {
  Q_OBJECT

 public:
  /// `stop` is called when the user wants the job to end, `verify` when the models of the last one are to be verified.
  CDecompilerStatus(platform::Desktop& desktop, QWidget* parent, std::function<void()> stop,
                    std::function<void()> verify);
  ~CDecompilerStatus() override;

  /// Empties the window for a job that writes into `outputDirectory`.
  void Begin(const std::string& outputDirectory);
  /// Readies the window for a verification of the models of the job before, whose text stays.
  void BeginVerifying();
  void Show(const jobs::Event& event);

  /// The models that the last job has decompiled.
  const std::vector<std::string>& Models() const { return m_models; }

  QProgressBar& Bar() const;

 private:
  void OnStarted(const jobs::Started& started);
  void OnModelStarted(const jobs::ItemStarted& started);
  void OnProgress(const jobs::Progress& progress);
  void OnModelFinished(const jobs::ItemFinished& finished);
  void OnFinished(const jobs::JobResult& result);
  void OpenFolder(const std::string& folder);

  std::unique_ptr<Ui::DecompilerStatus> m_ui;
  std::string m_folder;  // of the only model, or of all
  bool m_isVerifying = false;
  std::vector<std::string> m_models;
  std::map<std::string, std::string> m_folders;  // of their sources, by model
  size_t m_count = 0;
  size_t m_modelsDone = 0;
  size_t m_filesDone = 0;  // of the models that are done
  int64_t m_lost = 0;      // things of theirs that the sources do not say
};

}  // namespace tarnwick::pages

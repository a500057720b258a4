#pragma once

#include <QString>
#include <atomic>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "archives/content_extraction.h"
#include "platform/desktop.h"
#include "platform/job_runner.h"

namespace tarnwick::pages {

/// "1 file", "200,000 files".
QString FilesText(size_t count);
/// The bytes of all files of the list.
uint64_t BytesOf(const archives::ContentIndex& index, const std::vector<uint32_t>& files);

/// An extraction of files out of the content window, told from its thread to the window's.
class ContentExtractionJob {
 public:
  ContentExtractionJob(std::shared_ptr<const archives::ContentIndex> index, std::vector<uint32_t> files,
                       std::string folder)
      : m_index(std::move(index)), m_files(std::move(files)), m_folder(std::move(folder)) {}

  /// Asks about older files, then writes.
  void Run(platform::JobReport& report, const std::stop_token& stop);

  /// How many files were looked at so far; any thread may ask.
  size_t Done() const { return m_done; }
  const std::string& Folder() const { return m_folder; }
  // What came of it, once it has ended.
  bool WroteAny() const { return !m_result.Files.empty(); }
  QString Outcome() const;
  /// What to say of files that failed; nothing to say has no text.
  platform::MessageBoxRequest Failures() const;

 private:
  /// Keeps the first of the troubles for the box.
  class FirstTroubles : public core::TroubleSink {
   public:
    void Tell(const core::Trouble& trouble) override;
    std::vector<std::string> Texts;
  };

  const std::shared_ptr<const archives::ContentIndex> m_index;
  const std::vector<uint32_t> m_files;
  const std::string m_folder;
  std::atomic<size_t> m_done = 0;
  bool m_refused = false;  // by the user, who was asked about older files
  archives::Extraction m_result;
  FirstTroubles m_troubles;
};

}  // namespace tarnwick::pages

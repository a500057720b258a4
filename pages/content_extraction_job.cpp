#include "pages/content_extraction_job.h"

#include <QLocale>
#include <numeric>

#include "core/byte_size.h"
#include "pages/content_list.h"
#include "platform/text.h"

namespace tarnwick::pages {

using platform::FromQt;
using platform::ToQt;

QString FilesText(size_t count) {
  return count == 1 ? QString("1 file") : QLocale(QLocale::English).toString(qulonglong{count}) + " files";
}

uint64_t BytesOf(const archives::ContentIndex& index, const std::vector<uint32_t>& files) {
  return std::accumulate(files.begin(), files.end(), uint64_t{0},
                         [&](uint64_t sum, uint32_t file) { return sum + index.Size(file); });
}

void ContentExtractionJob::FirstTroubles::Tell(const core::Trouble& trouble) {
  constexpr size_t Most = 5;
  if (Texts.size() < Most) Texts.push_back(trouble.Text);
}

void ContentExtractionJob::Run(platform::JobReport& report, const std::stop_token& stop) {
  const size_t older = archives::CountExisting(*m_index, m_files, m_folder);
  if (older > 0) {
    platform::MessageBoxRequest box;
    box.Text =
        FromQt(FilesText(older)) + (older == 1 ? " is" : " are") + " there already and will be replaced:\n" + m_folder;
    box.Caption = "Extract";
    box.Icon = platform::BoxIcon::Question;
    box.Buttons = platform::BoxButtons::OkCancel;
    box.OkLabel = "Replace";
    box.RefusalIsDefault = true;
    m_refused = report.Ask(box) != platform::BoxAnswer::Ok;
    if (m_refused) return;
  }
  m_result = archives::ExtractContent(*m_index, m_files, m_folder, m_troubles, stop,
                                      [this](const std::string&, size_t done) { m_done = done; });
}

QString ContentExtractionJob::Outcome() const {
  if (m_refused) return "Nothing was extracted.";
  uint64_t bytes = 0;
  for (const archives::ExtractedFile& file : m_result.Files) bytes += file.Size;
  const QString text = FilesText(m_result.Files.size()) + " (" + ToQt(core::FormatByteSize(bytes)) + ") extracted to " +
                       ShownName(m_folder);
  return m_result.Stopped ? "Stopped: " + text : text;
}

platform::MessageBoxRequest ContentExtractionJob::Failures() const {
  platform::MessageBoxRequest box;
  if (m_result.Failed == 0) return box;
  box.Text = FromQt(FilesText(m_result.Failed)) + " could not be extracted.";
  box.Caption = "Error";
  box.Icon = platform::BoxIcon::Stop;
  for (const std::string& text : m_troubles.Texts) box.Details += (box.Details.empty() ? "" : "\n") + text;
  if (m_result.Failed > m_troubles.Texts.size()) box.Details += "\n...";
  return box;
}

}  // namespace tarnwick::pages

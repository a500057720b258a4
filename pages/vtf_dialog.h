#pragma once

#include <memory>
#include <string>

#include "jobs/export_textures.h"
#include "pages/page.h"
#include "pages/page_job.h"
#include "tools/whole_log.h"

namespace Ui {
class VtfDialog;
}

namespace tarnwick::pages {

/// The tab "VTF Export": shows the texture that is named, writes textures as images by means of vtf2tga and shows what
/// became of them.
class CVTFDialog : public CPage {
  Q_OBJECT

 public:
  explicit CVTFDialog(const PageContext& context, QWidget* parent = nullptr);
  ~CVTFDialog() override;

  void OnDropFiles(const platform::DroppedFiles& drop) override;
  size_t OpenFiles(const std::vector<std::string>& paths) override;
  void SaveSettings() override;

  void OnBrowseInput();
  void OnBrowseOutput();
  /// Exports the texture that is named.
  void ExtractVtf();

 protected:
  void OnInitDialog() override;

 private:
  struct Pictures;
  class PicturingHost;
  void ShowTexture();
  void SuggestOutputName(const std::string& input);
  void SetOutput(const std::string& path);
  void ExtractAll(const std::vector<std::string>& inputs);
  void Start(jobs::ExportTextures job);
  void Show(const jobs::Event& event, Pictures& pictures);
  void OnItemFinished(const jobs::ItemFinished& finished, Pictures& pictures);
  void OnFinished(const jobs::JobResult& result);
  void ShowLog();

  static constexpr size_t KeptBytes = size_t{4} << 20;  // of a tool that prints on and on

  std::unique_ptr<Ui::VtfDialog> m_ui;
  std::string m_finishedLog;                // of the textures of this job that are done
  tools::WholeLog m_wholeLog{KeptBytes};    // the same, with everything that the tool printed
  tools::WholeLog m_runningLog{KeptBytes};  // of the one at hand
  std::string m_note;                       // on which tool is used
  size_t m_count = 0;
  PageJob m_job;
};

}  // namespace tarnwick::pages

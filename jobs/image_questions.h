#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/report.h"
#include "images/conversion.h"
#include "jobs/item_run.h"

namespace tarnwick::jobs {

/// Passes everything on to the run, and keeps the lines for what a page shows.
class KeepingReport : public core::Report {
 public:
  KeepingReport(ItemRun& run, std::string& kept) : m_run(run), m_kept(kept) {}
  void Log(std::string_view text) override {
    m_kept += text;
    m_run.Log(text);
  }
  void Tell(const core::Trouble& trouble) override { m_run.Tell(trouble); }

 private:
  ItemRun& m_run;
  std::string& m_kept;
};

/// What an image conversion needs, with its questions put to the host of `run`: whether a missing directory is to be
/// made, and, unless `useDamaged` answers that, whether a damaged image is to be used. `log` gets the lines. All that
/// is handed in outlives the context.
images::ConversionContext ConversionFor(ItemRun& run, core::Report& log, const images::ImageWorker& worker,
                                        bool useDamaged);

}  // namespace tarnwick::jobs

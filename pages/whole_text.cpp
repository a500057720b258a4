#include "pages/whole_text.h"

namespace tarnwick::pages {

std::string WholeText(std::string log, const tools::FinishedRun& run) {
  const size_t place = run.Text.empty() ? std::string::npos : log.find(run.Text);
  if (place == std::string::npos) return log;
  return log.replace(place, run.Text.size(), run.CommandLine + "\r\n" + run.Outcome.Log.Text());
}

}  // namespace tarnwick::pages

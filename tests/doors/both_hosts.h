#pragma once

#include <gtest/gtest.h>

#include <QPlainTextEdit>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>

#include "cli/console_host.h"
#include "pages/page_job.h"
#include "platform/dialog.h"
#include "support/recording_host.h"
#include "support/scratch_folder.h"
#include "window_support/scripted_desktop.h"
#include "window_support/window_actions.h"

namespace tarnwick::tests {

/// Passes a job's events and questions on to the host of a door, and records them.
class RecordingDoor : public RecordingHost {
 public:
  explicit RecordingDoor(jobs::Host& door) : m_door(door) {}
  void On(const jobs::Event& event) override {
    RecordingHost::On(event);
    m_door.On(event);
  }
  bool Ask(const jobs::Question& question) override {
    Questions.push_back(question);
    return m_door.Ask(question);
  }

 private:
  jobs::Host& m_door;
};

/// What one door made of a job.
struct DoorRun {
  std::vector<jobs::Event> Events;
  std::vector<jobs::Question> Questions;
  std::map<std::string, std::string> Files;  // content by the path below `folder`

  bool operator==(const DoorRun&) const = default;
};

inline std::map<std::string, std::string> FilesBelow(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file())
      files[entry.path().lexically_relative(folder).generic_string()] = ReadText(entry.path().string());
  }
  return files;
}

/// Runs `job` (with the function `Run` of its kind) behind the command line's host; its files are those below `folder`,
/// which is emptied behind them.
template <typename Job>
DoorRun RunInConsole(const Job& job, const std::string& folder) {
  std::ostringstream out;
  std::ostringstream err;
  cli::ConsoleHost host(out, err, {.Item = "item", .ResultLine = [](const auto&) { return std::string(); }});
  RecordingDoor door(host);
  Run(job, door, std::stop_token());
  DoorRun run{door.Events, door.Questions, FilesBelow(folder)};
  std::filesystem::remove_all(folder);
  return run;
}

/// The same behind a window's host. The events are those that reach the window's thread.
template <typename Job>
DoorRun RunInWindow(const Job& job, const std::string& folder) {
  ScriptedDesktop desktop;
  platform::CDialog page(desktop);
  pages::PageJob runner(page);
  RecordingHost shown;
  std::vector<jobs::Question> questions;
  runner.Start(
      [&](jobs::Host& host, const std::stop_token& stop) {
        RecordingDoor door(host);
        Run(job, door, stop);
        questions = door.Questions;
      },
      {.OnEvent = [&](const jobs::Event& event) { shown.On(event); }});
  EXPECT_TRUE(WaitUntil([&] { return !runner.IsRunning(); }));
  DoorRun run{shown.Events, questions, FilesBelow(folder)};
  std::filesystem::remove_all(folder);
  return run;
}

}  // namespace tarnwick::tests

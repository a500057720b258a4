#pragma once

#include "jobs/events.h"

namespace tarnwick::jobs {

/// Who runs a job: the command line, a window, a test. A host translates: events to lines, widgets or a list, questions
/// to a box or an option. It judges nothing; the result does.
class Host {
 public:
  virtual ~Host() = default;

  /// Takes an event. Calls come one at a time and in order, on the job's threads. A trouble with a caption is shown in
  /// a box by a host that has boxes; the job waits until the user has answered.
  virtual void On(const Event& event) = 0;

  /// Asks, and waits for the answer: whether to go on. No event comes meanwhile.
  virtual bool Ask(const Question& question) = 0;
};

}  // namespace tarnwick::jobs

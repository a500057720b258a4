#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "jobs/host.h"

namespace tarnwick::tests {

/// Keeps every event of a job and answers its questions. Times become 0, so that two runs can be compared.
class RecordingHost : public jobs::Host {
 public:
  void On(const jobs::Event& event) override {
    Events.push_back(event);
    std::visit(jobs::Overloaded{[](jobs::ItemFinished& finished) { finished.Result.Seconds = 0; },
                                [](jobs::Finished& finished) {
                                  finished.Result.Seconds = 0;
                                  for (jobs::ItemResult& item : finished.Result.Items) item.Seconds = 0;
                                },
                                [](auto&) {}},
               Events.back());
    if (OnEvent) OnEvent(event);
  }
  bool Ask(const jobs::Question& question) override {
    Questions.push_back(question);
    return Answer.value_or(question.Assumed);
  }

  /// All events of one type, in order.
  template <typename E>
  std::vector<E> All() const {
    std::vector<E> found;
    for (const jobs::Event& event : Events) {
      if (const E* each = std::get_if<E>(&event)) found.push_back(*each);
    }
    return found;
  }
  /// The texts of the lines of `source`, one behind the other.
  std::string Text(jobs::LineSource source) const {
    std::string text;
    for (const jobs::Line& line : All<jobs::Line>()) {
      if (line.Source == source) text += line.Text;
    }
    return text;
  }

  std::vector<jobs::Event> Events;
  std::vector<jobs::Question> Questions;
  std::optional<bool> Answer;                       // to every question; nothing: what the job assumes
  std::function<void(const jobs::Event&)> OnEvent;  // called behind the recording; may be empty
};

}  // namespace tarnwick::tests

#include "images/worker_protocol.h"

#include <charconv>
#include <iterator>

#include "images/limits.h"

namespace tarnwick::images {

namespace {

constexpr std::string_view JobWords[] = {"to-tga", "from-tga", "preview", "formats"};
constexpr std::string_view DoneWord = "done ";
constexpr std::string_view FailedWord = "failed ";
constexpr std::string_view DamagedWord = "damaged ";
constexpr std::string_view FlagWords[] = {"use-damaged", "familiar-only"};
constexpr size_t LongestReason = 300;

/// The number before the next blank or the end; `text` loses both. -1 if there is none.
int TakeNumber(std::string_view& text) {
  int value = -1;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || value < 0) return -1;
  text.remove_prefix(static_cast<size_t>(end - text.data()));
  if (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  return value;
}

/// The reason as it can be shown: no control characters, not endless.
std::string Presentable(std::string_view reason) {
  std::string text;
  for (const char c : reason.substr(0, LongestReason)) text += static_cast<unsigned char>(c) < 32 || c == 127 ? ' ' : c;
  return text;
}

/// The text behind the tab with which `text` begins, up to the next; `text` loses both. Empty if there is no tab.
std::string TakeText(std::string_view& text) {
  if (!text.starts_with('\t')) return {};
  text.remove_prefix(1);
  const std::string_view taken = text.substr(0, text.find('\t'));
  text.remove_prefix(taken.size());
  return Presentable(taken);
}

}  // namespace

std::vector<std::string> ToArguments(const WorkerRequest& request) {
  return {std::string(JobWords[static_cast<size_t>(request.Task)]),
          request.Source,
          request.Alpha,
          request.Output,
          request.Name,
          std::to_string(request.Side),
          request.UseDamaged ? std::string(FlagWords[0]) : "",
          request.FamiliarOnly ? std::string(FlagWords[1]) : ""};
}

std::optional<WorkerRequest> FromArguments(std::span<const std::string> arguments) {
  if (arguments.size() != 8) return std::nullopt;
  WorkerRequest request;
  size_t job = 0;
  while (job < std::size(JobWords) && JobWords[job] != arguments[0]) ++job;
  if (job == std::size(JobWords)) return std::nullopt;
  request.Task = static_cast<WorkerRequest::Job>(job);
  request.Source = arguments[1];
  request.Alpha = arguments[2];
  request.Output = arguments[3];
  request.Name = arguments[4];
  std::string_view side = arguments[5];
  request.Side = TakeNumber(side);
  if (request.Side < 0 || request.Side > LargestSide) return std::nullopt;
  request.UseDamaged = arguments[6] == FlagWords[0];
  request.FamiliarOnly = arguments[7] == FlagWords[1];
  return request;
}

std::string AnswerLine(const WorkerAnswer& answer) {
  if (!answer.Done) {
    return std::string(answer.Damaged ? DamagedWord : FailedWord) + Presentable(answer.Reason) + "\n";
  }
  return std::string(DoneWord) + std::to_string(answer.Width) + " " + std::to_string(answer.Height) + " " +
         (answer.AlphaReplaced ? "1" : "0") + "\t" + Presentable(answer.AlphaReason) + "\t" +
         Presentable(answer.Doubt) + "\n";
}

std::optional<WorkerAnswer> ParseAnswer(std::string_view text) {
  const size_t lineEnd = text.find('\n');
  if (lineEnd == std::string_view::npos) return std::nullopt;
  std::string_view line = text.substr(0, lineEnd);
  WorkerAnswer answer;
  for (const std::string_view word : {FailedWord, DamagedWord}) {
    if (!line.starts_with(word)) continue;
    answer.Damaged = word == DamagedWord;
    answer.Reason = Presentable(line.substr(word.size()));
    return answer;
  }
  if (!line.starts_with(DoneWord)) return std::nullopt;
  line.remove_prefix(DoneWord.size());
  answer.Width = TakeNumber(line);
  answer.Height = TakeNumber(line);
  answer.AlphaReplaced = TakeNumber(line) == 1;
  answer.AlphaReason = TakeText(line);
  answer.Doubt = TakeText(line);
  if (answer.Width < 0 || answer.Width > LargestSide || answer.Height < 0 || answer.Height > LargestSide) {
    return std::nullopt;
  }
  answer.Done = true;
  answer.Payload = text.substr(lineEnd + 1);
  return answer;
}

}  // namespace tarnwick::images

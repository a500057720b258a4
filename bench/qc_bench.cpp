// Reading a large script, against the plain way: a line at a time, words cut by strtok, numbers read by strtod.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "qc/script.h"

namespace tarnwick::bench {
namespace {

constexpr int Statements = 100'000;

/// A script of hitboxes, attachments and sequences as decompiling writes them, about 8 MB.
const std::string& SampleScript() {
  static const std::string script = [] {
    std::string text = "$modelname \"props/crate.mdl\"\n";
    for (int i = 0; i < Statements; i += 3) {
      const std::string number = std::to_string(i);
      text += "$hbox 0 \"bone " + number + "\" -1.250  -2.500  -3.750  1.250  2.500  3.750\n";
      text += "$attachment \"hook_" + number + "\" \"bone " + number + "\" 1.00 2.00 3.00 rotate 0.00 -90.00 -0.00\n";
      text += "$sequence walk_" + number + " \"walk_" + number + "\" loop ACT_WALK 1 fps 30.00 {\n  { event AE_STEP " +
              number + " \"left\" }\n}\n";
    }
    return text;
  }();
  return script;
}

/// A statement of the plain reader: its words, and its numbers.
struct PlainStatement {
  std::vector<std::string> Words;
  std::vector<double> Numbers;
};

std::vector<PlainStatement> ReadPlainly(const std::string& script) {
  std::vector<PlainStatement> statements;
  std::string line;
  for (size_t at = 0; at < script.size(); at += line.size() + 1) {
    line = script.substr(at, script.find('\n', at) - at);
    std::string words = line;
    PlainStatement statement;
    for (char* word = std::strtok(words.data(), " \t\"{}"); word != nullptr; word = std::strtok(nullptr, " \t\"{}")) {
      char* end = nullptr;
      const double number = std::strtod(word, &end);
      if (*end == '\0') statement.Numbers.push_back(number);
      statement.Words.emplace_back(word);
    }
    statements.push_back(std::move(statement));
  }
  return statements;
}

void Plain(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ReadPlainly(SampleScript()).size());
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(SampleScript().size()));
}

void Read(benchmark::State& state) {
  qc::ReadOptions options;
  options.FindSources = false;
  for (auto _ : state) {
    const qc::Script script = qc::ReadScriptText(SampleScript(), "crate.qc", options);
    if (!script.Sound()) state.SkipWithError("the script is not sound");
    benchmark::DoNotOptimize(script.Statements.size());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(SampleScript().size()));
}

BENCHMARK(Plain)->Unit(benchmark::kMillisecond);
BENCHMARK(Read)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tarnwick::bench

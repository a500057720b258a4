// Printing a float: ours against fprintf.

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "core/number_text.h"
#include "core/text_writer.h"

namespace {

/// Floats of the size that models hold.
std::vector<float> OrdinaryFloats() {
  std::mt19937 random(1);
  std::uniform_real_distribution<float> values(-100.0f, 100.0f);
  std::vector<float> floats(4096);
  for (float& value : floats) value = values(random);
  return floats;
}

void CountNumbers(benchmark::State& state, size_t count) {
  state.SetItemsProcessed(static_cast<int64_t>(count) * static_cast<int64_t>(state.iterations()));
}

/// Into memory that is used again and again.
void WriterFloat(benchmark::State& state) {
  const auto floats = OrdinaryFloats();
  std::string text;
  tarnwick::core::TextWriter writer(text);
  for (auto _ : state) {
    for (const float value : floats) writer.Float6(value);
    text.clear();
  }
  CountNumbers(state, floats.size());
}
BENCHMARK(WriterFloat);

/// Into a file that takes everything and keeps nothing.
void PlainFprintf(benchmark::State& state) {
  const auto floats = OrdinaryFloats();
  std::FILE* file = std::fopen("/dev/null", "w");
  for (auto _ : state) {
    for (const float value : floats) std::fprintf(file, "%f", static_cast<double>(value));
  }
  std::fclose(file);
  CountNumbers(state, floats.size());
}
BENCHMARK(PlainFprintf);

/// As scripts and the sources of animations have them: half of them typed with few decimals.
std::vector<float> SourceFloats() {
  std::vector<float> floats = OrdinaryFloats();
  for (size_t i = 0; i < floats.size(); i += 2) floats[i] = static_cast<float>(static_cast<int>(i) - 2048) / 100;
  return floats;
}

void ShortestText(benchmark::State& state) {
  const auto floats = SourceFloats();
  char text[tarnwick::core::LongestNumberText];
  for (auto _ : state) {
    for (const float value : floats) benchmark::DoNotOptimize(tarnwick::core::WriteShortestDecimal(text, value));
  }
  CountNumbers(state, floats.size());
}
BENCHMARK(ShortestText);

void PlainToChars(benchmark::State& state) {
  const auto floats = SourceFloats();
  char text[tarnwick::core::LongestNumberText];
  for (auto _ : state) {
    for (const float value : floats) {
      benchmark::DoNotOptimize(std::to_chars(text, text + sizeof text, value, std::chars_format::fixed));
    }
  }
  CountNumbers(state, floats.size());
}
BENCHMARK(PlainToChars);

}  // namespace

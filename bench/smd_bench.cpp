// Scanning an SMD file and renaming a material in it, against the plain way.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "bench/plain_smd.h"
#include "smd/material_replacement.h"
#include "smd/smd_scan.h"
#include "support/silent_report.h"

namespace tarnwick::bench {
namespace {

constexpr int Triangles = 100'000;

/// An SMD file with as many triangles, of twelve materials, and vertices with two links; removed at the end.
class SampleFile {
 public:
  SampleFile() {
    std::string text = "version 1\nnodes\n0 \"root\" -1\n1 \"arm\" 0\nend\nskeleton\ntime 0\n";
    text += "0 0.000000 0.000000 0.000000 0.000000 0.000000 0.000000\nend\ntriangles\n";
    for (int i = 0; i < Triangles; ++i) {
      text += "material_" + std::to_string(i / 500 % 12) + ".bmp\n";
      for (int j = 0; j < 3; ++j) {
        text += "0 " + std::to_string(i) + ".123456 -12.345678 3.456789 0.577350 0.577350 0.577350 0." +
                std::to_string(j) + "12345 0.987654 2 0 0.500000 1 0.500000\n";
      }
    }
    text += "end\n";
    std::ofstream(Path, std::ios::binary) << text;
    Bytes = static_cast<int64_t>(text.size());
  }
  ~SampleFile() {
    std::error_code ignored;
    std::filesystem::remove(Path, ignored);
  }

  const std::string Path = (std::filesystem::temp_directory_path() / "tarnwick_bench.smd").string();
  int64_t Bytes = 0;
};

const SampleFile& Sample() {
  static const SampleFile sample;
  return sample;
}

void CheckScan(benchmark::State& state, const smd::SmdSummary& summary) {
  if (summary.TriangleCount != Triangles || summary.Materials.size() != 12) state.SkipWithError("wrong figures");
}

void ScanPlain(benchmark::State& state) {
  const SampleFile& sample = Sample();
  for (auto _ : state) {
    smd::SmdSummary summary;
    std::FILE* file = std::fopen(sample.Path.c_str(), "r");
    ScanPlainly(file, summary);
    std::fclose(file);
    CheckScan(state, summary);
  }
  state.SetBytesProcessed(state.iterations() * sample.Bytes);
}
BENCHMARK(ScanPlain)->Unit(benchmark::kMillisecond);

void ScanFast(benchmark::State& state) {
  const SampleFile& sample = Sample();
  for (auto _ : state) {
    smd::SmdSummary summary;
    auto file = core::InputFile::Open(sample.Path);
    smd::ScanSmdFile(*file, summary);
    CheckScan(state, summary);
  }
  state.SetBytesProcessed(state.iterations() * sample.Bytes);
}
BENCHMARK(ScanFast)->Unit(benchmark::kMillisecond);

void ReplacePlain(benchmark::State& state) {
  const SampleFile& sample = Sample();
  for (auto _ : state) {
    std::ifstream in(sample.Path, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(in), {});
    std::FILE* out = std::fopen(sample.Path.c_str(), "w");
    ReplacePlainly(text, "material_3", "material_3", out);
    std::fclose(out);
  }
  state.SetBytesProcessed(state.iterations() * sample.Bytes);
}
BENCHMARK(ReplacePlain)->Unit(benchmark::kMillisecond);

void ReplaceFast(benchmark::State& state) {
  const SampleFile& sample = Sample();
  tests::SilentReport report;
  for (auto _ : state) {
    if (!smd::ReplaceMaterial({sample.Path, "material_3", "material_3"}, report)) state.SkipWithError("not replaced");
  }
  state.SetBytesProcessed(state.iterations() * sample.Bytes);
}
BENCHMARK(ReplaceFast)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tarnwick::bench

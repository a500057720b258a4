// Opening an archive's directory and looking files up, against a plain map of strings, and reading its files where
// they lie against unpacking them first.

#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>

#include "archives/archive.h"
#include "archives/content_index.h"
#include "archives/extraction.h"
#include "archives/folded_text.h"
#include "bench/large_archive.h"

namespace tarnwick::bench {
namespace {

using archives::Archive;

const LargeArchive& TheSample() {
  static const LargeArchive sample;
  return sample;
}

std::shared_ptr<const Archive> Opened() {
  std::string reason;
  return Archive::Open(TheSample().Path, reason);
}

/// The plain way: every name a string in a map.
using PlainDirectory = std::map<std::string, archives::VpkEntry>;

PlainDirectory ReadPlainly() {
  std::ifstream file(TheSample().Path, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(file), {});
  PlainDirectory directory;
  size_t place = sizeof(archives::VpkHeader);
  const auto text = [&] {
    const std::string read = bytes.c_str() + place;
    place += read.size() + 1;
    return read;
  };
  for (std::string extension = text(); !extension.empty(); extension = text()) {
    for (std::string folder = text(); !folder.empty(); folder = text()) {
      for (std::string name = text(); !name.empty(); name = text()) {
        archives::VpkEntry entry;
        std::memcpy(&entry, bytes.data() + place, sizeof(entry));
        place += sizeof(entry) + entry.PreloadSize;
        directory.emplace(archives::FoldedText(folder + '/' + name + '.' + extension), entry);
      }
    }
  }
  return directory;
}

void OpenPlain(benchmark::State& state) {
  TheSample();
  for (auto _ : state) {
    if (ReadPlainly().size() != Files) state.SkipWithError("files are missing");
  }
}
BENCHMARK(OpenPlain)->Unit(benchmark::kMillisecond);

void OpenFast(benchmark::State& state) {
  TheSample();
  size_t memory = 0;
  for (auto _ : state) {
    const auto archive = Opened();
    if (archive == nullptr || archive->Files().Count() != Files) state.SkipWithError("files are missing");
    memory = archive->Files().MemoryBytes();
  }
  state.counters["bytes_a_file"] = static_cast<double>(memory) / Files;
}
BENCHMARK(OpenFast)->Unit(benchmark::kMillisecond);

/// Names to be looked for, as a game asks for them.
std::vector<std::string> Wanted() {
  std::mt19937 random(2);
  std::vector<std::string> names(1000);
  for (std::string& name : names) name = "Materials\\" + Name(static_cast<uint32_t>(random() % Files)).substr(10);
  return names;
}

void FindPlain(benchmark::State& state) {
  const PlainDirectory directory = ReadPlainly();
  const std::vector<std::string> names = Wanted();
  size_t i = 0;
  for (auto _ : state) {
    if (!directory.contains(archives::FoldedText(names[i++ % names.size()]))) state.SkipWithError("not found");
  }
}
BENCHMARK(FindPlain);

void FindFast(benchmark::State& state) {
  const auto archive = Opened();
  const std::vector<std::string> names = Wanted();
  size_t i = 0;
  for (auto _ : state) {
    if (!archive->Find(names[i++ % names.size()])) state.SkipWithError("not found");
  }
}
BENCHMARK(FindFast);

class NoTroubles : public core::TroubleSink {
  void Tell(const core::Trouble&) override {}
};

std::vector<uint32_t> FilesToTake(const Archive& archive) {
  std::vector<uint32_t> files;
  for (uint32_t i = 0; i < Taken; ++i) files.push_back(*archive.Find(Name(i)));
  return files;
}

/// Unpacks files, then reads them.
void ReadUnpacked(benchmark::State& state) {
  const auto archive = Opened();
  const auto files = FilesToTake(*archive);
  const std::filesystem::path out = TheSample().Folder / "out";
  for (auto _ : state) {
    NoTroubles troubles;
    for (const auto& file : archives::ExtractFiles(*archive, files, out.string(), troubles, {}, {}).Files) {
      if (!core::FileImage::Read(file.Path)) state.SkipWithError("not read");
    }
    state.PauseTiming();
    std::filesystem::remove_all(out);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * Taken);
}
BENCHMARK(ReadUnpacked)->Unit(benchmark::kMillisecond)->UseRealTime();

/// Reads the files where they lie.
void ReadInPlace(benchmark::State& state) {
  const auto archive = Opened();
  const auto files = FilesToTake(*archive);
  std::string reason;
  for (auto _ : state) {
    for (const uint32_t file : files) {
      if (!archive->Read(file, reason)) state.SkipWithError(reason.c_str());
    }
  }
  state.SetItemsProcessed(state.iterations() * Taken);
}
BENCHMARK(ReadInPlace)->Unit(benchmark::kMillisecond)->UseRealTime();

/// Reads the same files loose.
void ReadLoose(benchmark::State& state) {
  const auto archive = Opened();
  const std::filesystem::path out = TheSample().Folder / "loose";
  NoTroubles troubles;
  const auto done = archives::ExtractFiles(*archive, FilesToTake(*archive), out.string(), troubles, {}, {});
  for (auto _ : state) {
    for (const auto& file : done.Files) {
      if (!core::FileImage::Read(file.Path)) state.SkipWithError("not read");
    }
  }
  state.SetItemsProcessed(state.iterations() * Taken);
}
BENCHMARK(ReadLoose)->Unit(benchmark::kMillisecond)->UseRealTime();

std::shared_ptr<const archives::ContentIndex> Indexed() {
  const auto archive = Opened();
  return archives::ContentIndex::Of({{archive->Path(), archive}}, {});
}

void IndexAll(benchmark::State& state) {
  const auto archive = Opened();
  for (auto _ : state) {
    if (archives::ContentIndex::Of({{archive->Path(), archive}}, {})->Count() != Files) state.SkipWithError("missing");
  }
}
BENCHMARK(IndexAll)->Unit(benchmark::kMillisecond);

/// What is typed into the search box, from the first letter on.
constexpr const char* Typed[] = {"o",          "obj", "object_1", "object_199 mdl", "props_7 part.v", "set_4/object",
                                 "*_12?_*.mdl"};

/// The plain way: each whole name in small letters, looked through for each word.
void SearchPlain(benchmark::State& state) {
  std::vector<std::string> names(Files);
  for (uint32_t i = 0; i < Files; ++i) names[i] = Name(i);
  const std::string_view text = Typed[state.range(0)];
  const size_t blank = text.find(' ');
  for (auto _ : state) {
    std::vector<uint32_t> found;
    for (uint32_t i = 0; i < Files; ++i) {
      const std::string folded = archives::FoldedText(names[i]);
      if (folded.find(text.substr(0, blank)) == std::string::npos) continue;
      if (blank == std::string_view::npos || folded.find(text.substr(blank + 1)) != std::string::npos) {
        found.push_back(i);
      }
    }
    benchmark::DoNotOptimize(found);
  }
  state.SetLabel(Typed[state.range(0)]);
}
BENCHMARK(SearchPlain)->DenseRange(0, 5)->Unit(benchmark::kMillisecond);

void SearchIndex(benchmark::State& state) {
  const auto index = Indexed();
  for (auto _ : state) benchmark::DoNotOptimize(index->Search({.Words = Typed[state.range(0)]}, {}));
  state.SetLabel(Typed[state.range(0)]);
}
BENCHMARK(SearchIndex)->DenseRange(0, 6)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tarnwick::bench

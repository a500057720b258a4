// Converting an image to TGA: in the jailed worker, a process for each image, against the library in the same process.

#include <FreeImage.h>
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "images/conversion.h"
#include "support/silent_report.h"

namespace {

using namespace tarnwick;

/// A folder with one PNG image of noise, removed at the end.
class Images {
 public:
  explicit Images(int side) : m_folder(std::filesystem::temp_directory_path() / "tarnwick-image-bench") {
    std::filesystem::create_directories(m_folder);
    FIBITMAP* bitmap = FreeImage_Allocate(side, side, 24);
    unsigned noise = 1;
    for (int y = 0; y < side; ++y) {
      BYTE* line = FreeImage_GetScanLine(bitmap, y);
      for (int x = 0; x < side * 3; ++x) line[x] = static_cast<BYTE>((noise = noise * 1664525 + 1013904223) >> 26);
    }
    FreeImage_Save(FIF_PNG, bitmap, Source().c_str(), 0);
    FreeImage_Unload(bitmap);
  }
  ~Images() { std::filesystem::remove_all(m_folder); }
  Images(const Images&) = delete;
  Images& operator=(const Images&) = delete;

  std::string Folder() const { return (m_folder / "out").string(); }
  std::string Source() const { return (m_folder / "noise.png").string(); }
  std::string Target() const { return (m_folder / "out" / "noise.tga").string(); }

 private:
  std::filesystem::path m_folder;
};

void Worker(benchmark::State& state) {
  const Images images(static_cast<int>(state.range(0)));
  std::filesystem::create_directories(images.Folder());
  const images::ImageWorker worker;
  tests::SilentReport report;
  for (auto _ : state) images::ConvertToTga(images.Source(), images.Folder(), {report, worker, {}});
  if (report.Troubles > 0) state.SkipWithError("a conversion failed");
}

void InProcess(benchmark::State& state) {
  const Images images(static_cast<int>(state.range(0)));
  std::filesystem::create_directories(images.Folder());
  for (auto _ : state) {
    FIBITMAP* bitmap = FreeImage_Load(FIF_PNG, images.Source().c_str(), 0);
    FreeImage_Save(FIF_TARGA, bitmap, images.Target().c_str(), 0);
    FreeImage_Unload(bitmap);
  }
}

// Most of the worker's time passes in another process, so the clock counts.
BENCHMARK(InProcess)->Arg(64)->Arg(512)->Arg(2048)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Worker)->Arg(64)->Arg(512)->Arg(2048)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

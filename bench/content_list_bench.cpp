// The list of the window of game content with the 200,000 files of one archive: what the window's thread does before
// the rows are seen, and with all of them selected.

#include <benchmark/benchmark.h>

#include <QApplication>

#include "archives/content_index.h"
#include "bench/large_archive.h"
#include "pages/content_extraction_job.h"
#include "pages/content_list.h"

namespace tarnwick::bench {
namespace {

std::shared_ptr<const archives::ContentIndex> TheIndex() {
  static const LargeArchive sample;
  std::string reason;
  static const auto archive = archives::Archive::Open(sample.Path, reason);
  static const auto index = archives::ContentIndex::Of({{sample.Path, archive}}, {});
  return index;
}

/// A list on the (virtual) screen, and all numbers of the index.
struct Shown {
  Shown() {
    List.resize(1000, 700);
    List.ShowIndex(TheIndex(), {});
    All = *TheIndex()->Search({}, {});
    List.Rows().SetFiles(All);
    List.show();
    QApplication::processEvents();
  }

  pages::CContentList List;
  std::vector<uint32_t> All;
};

/// The found files are set and the rows in sight are painted.
void ShowRows(benchmark::State& state) {
  Shown shown;
  for (auto _ : state) {
    shown.List.Rows().SetFiles(shown.All);
    shown.List.viewport()->repaint();
  }
}
BENCHMARK(ShowRows)->Unit(benchmark::kMillisecond);

/// From the top to the middle of the list, painted.
void Jump(benchmark::State& state) {
  Shown shown;
  int row = 0;
  for (auto _ : state) {
    row = static_cast<int>(shown.All.size() / 2) - row;
    shown.List.scrollTo(shown.List.Rows().index(row, 0), QAbstractItemView::PositionAtTop);
    shown.List.viewport()->repaint();
  }
}
BENCHMARK(Jump)->Unit(benchmark::kMillisecond);

/// Select all, and what the window's status line needs of them.
void SelectAll(benchmark::State& state) {
  Shown shown;
  for (auto _ : state) {
    shown.List.selectAll();
    benchmark::DoNotOptimize(pages::BytesOf(*TheIndex(), shown.List.SelectedFiles()));
    shown.List.viewport()->repaint();
    shown.List.clearSelection();
  }
}
BENCHMARK(SelectAll)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tarnwick::bench

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}

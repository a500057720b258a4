#include "pages/thumbnail_loader.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include "support/scratch_folder.h"
#include "window_support/window_actions.h"

namespace tarnwick::pages {

namespace {

TEST(ThumbnailLoader, EndsAtOnceWhateverItsWorkersAreAt) {
  constexpr int Wanted = 300;
  const tests::ScratchFolder folder;
  const QString path = QString::fromStdString(folder.Path("large.png"));
  ASSERT_TRUE(QImage(3000, 3000, QImage::Format_RGB888).save(path));
  int answers = 0;
  QObject here;  // has its calls come on this thread
  auto loader = std::make_unique<ThumbnailLoader>();
  const auto count = [&] { ++answers; };
  QObject::connect(loader.get(), &ThumbnailLoader::Loaded, &here, count);
  QObject::connect(loader.get(), &ThumbnailLoader::Failed, &here, count);
  for (int i = 0; i < Wanted; ++i) loader->Load(path);
  ASSERT_TRUE(tests::WaitUntil([&] { return answers > 0; }));
  loader.reset();
  QCoreApplication::processEvents();  // what was answered until the end
  EXPECT_LT(answers, Wanted / 2) << "it did not wait for its workers";
}

}  // namespace

}  // namespace tarnwick::pages

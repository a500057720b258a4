#include "pages/thumbnail_loader.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QElapsedTimer>
#include <QTest>

#include "support/scratch_folder.h"

namespace tarnwick::pages {

namespace {

TEST(ThumbnailLoader, EndsAtOnceWhateverItsWorkersAreAt) {
  const tests::ScratchFolder folder;
  int answers = 0;
  qint64 took = 0;
  {
    auto loader = std::make_unique<ThumbnailLoader>();
    const auto count = [&] { ++answers; };
    QObject::connect(loader.get(), &ThumbnailLoader::Loaded, count);
    QObject::connect(loader.get(), &ThumbnailLoader::Failed, count);
    for (int i = 0; i < 6; ++i) {
      // Nobody writes into the pipe, so its reader waits for ever.
      const std::string pipe = folder.Path("never" + std::to_string(i) + ".png");
      ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
      loader->Load(QString::fromStdString(pipe));
    }
    QTest::qWait(300);
    EXPECT_EQ(answers, 0) << "the workers are at work";
    QElapsedTimer clock;
    clock.start();
    loader.reset();
    took = clock.elapsed();
  }
  EXPECT_LT(took, 1000);
}

}  // namespace

}  // namespace tarnwick::pages

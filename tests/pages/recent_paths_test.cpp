#include "pages/recent_paths.h"

#include <gmock/gmock.h>

#include "window_support/memory_settings.h"

namespace tarnwick::pages {

namespace {

TEST(RecentPaths, KeepTheLastOnesOnceAndNewestFirst) {
  using testing::ElementsAre;
  tests::MemorySettings settings;
  const core::TextSetting& value = core::setting::RecentModels;
  EXPECT_TRUE(RecentPaths(settings, value).empty());
  for (const char* path : {"/a", "/b c", "/a", "", "/two\nlines"}) RememberPath(settings, value, path);
  EXPECT_THAT(RecentPaths(settings, value), ElementsAre("/a", "/b c"));
  for (size_t i = 0; i < 2 * RecentPathLimit; ++i) RememberPath(settings, value, "/" + std::to_string(i));
  EXPECT_EQ(RecentPaths(settings, value).size(), RecentPathLimit);
  EXPECT_EQ(RecentPaths(settings, value).front(), "/" + std::to_string(2 * RecentPathLimit - 1));
}

}  // namespace

}  // namespace tarnwick::pages

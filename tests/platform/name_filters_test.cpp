#include <gmock/gmock.h>

#include "platform/desktop.h"

namespace tarnwick::platform {

namespace {

TEST(NameFilters, ShowTheTruePatternsOnce) {
  using testing::ElementsAre;
  EXPECT_THAT(NameFilters("MDL Files (*.mdl)|*.mdl|"), ElementsAre("MDL Files (*.mdl)"));
  EXPECT_THAT(NameFilters("TGA/LST Files (*.tga,*lst)|*.tga;*.lst|All Supported Files|*.tga;*.jpg|"),
              ElementsAre("TGA/LST Files (*.tga *.lst)", "All Supported Files (*.tga *.jpg)"));
  EXPECT_TRUE(NameFilters("").empty());
}

}  // namespace

}  // namespace tarnwick::platform

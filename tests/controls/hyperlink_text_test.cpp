#include <gtest/gtest.h>

#include "controls/hyperlink_fit.h"
#include "controls/link_address.h"

namespace tarnwick::controls {
namespace {

TEST(LinkAddress, FindsApplicationCommands) {
  for (const char* address : {"APP:Go On", "app:Go On", "\"App:Go On\"", "app:\"Go On\""}) {
    EXPECT_EQ(AppCommandName(address), "Go On") << address;
  }
  EXPECT_FALSE(AppCommandName("http://app:1"));
  EXPECT_FALSE(AppCommandName("\""));
}

TEST(LinkAddress, TakesTheQuotesOffAnAddress) {
  EXPECT_EQ(OpenableAddress("\"http://x/\""), "http://x/");
  EXPECT_EQ(OpenableAddress(" mailto:a@b "), "mailto:a@b");
  EXPECT_EQ(OpenableAddress("\"\""), "");
}

TEST(HyperlinkFit, PlacesTheTextInItsWindow) {
  const Rect window = {10, 20, 110, 50};
  const Extent text = {60, 15};
  EXPECT_EQ(FitToText(window, text, HorizontalPlace::Left, false), (Rect{10, 20, 70, 35}));
  EXPECT_EQ(FitToText(window, text, HorizontalPlace::Centre, true), (Rect{30, 27, 90, 42}));
  EXPECT_EQ(FitToText(window, text, HorizontalPlace::Right, false), (Rect{50, 20, 110, 35}));
  EXPECT_EQ(FitToText(window, {200, 15}, HorizontalPlace::Right, false), (Rect{-90, 20, 110, 35}));
}

}  // namespace
}  // namespace tarnwick::controls

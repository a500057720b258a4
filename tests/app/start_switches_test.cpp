#include "app/start_switches.h"

#include <gtest/gtest.h>

namespace tarnwick::app {

namespace {

TEST(StartSwitches, AreReadInAnyCaseAndPlace) {
  const struct {
    std::vector<std::string> Arguments;
    StartMode Mode;
  } cases[] = {
      {{}, StartMode::Window},
      {{"-RegServer"}, StartMode::Registration},
      {{"/UNREGSERVER"}, StartMode::Registration},
      {{"--regserver"}, StartMode::Registration},
      {{"x", "-unknown", "-REGSERVER"}, StartMode::Registration},
      {{"a-RegServer"}, StartMode::Registration},  // the mark may stand inside a word
      {{"-RegServer", "more"}, StartMode::Window},
      {{"RegServer"}, StartMode::Window},
      {{"/Embedding"}, StartMode::Embedded},
      {{"-automation", "more"}, StartMode::Embedded},
      {{"Embedding"}, StartMode::Window},
      {{"-Embeddings", "-"}, StartMode::Window},
      {{"-Embedding", "-RegServer"}, StartMode::Registration},
      {{"/home/ada/a.mdl"}, StartMode::Window},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(ReadStartSwitches(each.Arguments), each.Mode)
        << (each.Arguments.empty() ? "nothing" : each.Arguments.front());
  }
}

}  // namespace

}  // namespace tarnwick::app

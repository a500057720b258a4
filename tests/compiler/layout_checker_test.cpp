#include "support/layout_checker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "support/real_files.h"

namespace tarnwick::tests {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> RealModels() {
  std::vector<fs::path> models;
  const fs::path folder = fs::path(RealFilesFolder()) / "models";
  if (!fs::exists(folder)) return models;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.path().extension() == ".mdl") models.push_back(entry.path());
  }
  std::sort(models.begin(), models.end());
  return models;
}

TEST(LayoutChecker, FindsNothingWrongWithRealModels) {
  const auto models = RealModels();
  if (models.empty()) GTEST_SKIP() << "no real models beside the checkout";
  for (const fs::path& model : models) {
    EXPECT_THAT(CheckLayout(ReadLayoutFiles(model.string())), testing::IsEmpty()) << model;
  }
}

TEST(LayoutChecker, FindsOneByteThatIsWrong) {
  const auto models = RealModels();
  if (models.empty()) GTEST_SKIP() << "no real models beside the checkout";
  const LayoutFiles sound = ReadLayoutFiles(models.back().string());
  const auto damaged = [&](std::string LayoutFiles::*file, size_t offset, char value) {
    LayoutFiles files = sound;
    (files.*file)[offset] = static_cast<char>((files.*file)[offset] ^ value);
    return CheckLayout(files);
  };
  EXPECT_FALSE(damaged(&LayoutFiles::Mdl, 0x08, 1).empty()) << "checksum";
  EXPECT_FALSE(damaged(&LayoutFiles::Mdl, 0x4C, 1).empty()) << "length";
  EXPECT_FALSE(damaged(&LayoutFiles::Mdl, 0xDC, 1).empty()) << "skin references";
  EXPECT_FALSE(damaged(&LayoutFiles::Vvd, 0x10, 1).empty()) << "vertices of a level";
  EXPECT_FALSE(damaged(&LayoutFiles::Vvd, 0x40 + 0x0F, 3).empty()) << "weights of a vertex";
  EXPECT_FALSE(damaged(&LayoutFiles::Vtx, 0x14, 2).empty()) << "levels";
  EXPECT_FALSE(damaged(&LayoutFiles::Vtx, sound.Vtx.size() - 8, 1).empty()) << "material list";
  LayoutFiles shorter = sound;
  shorter.Vtx.pop_back();
  EXPECT_FALSE(CheckLayout(shorter).empty());
}

}  // namespace
}  // namespace tarnwick::tests

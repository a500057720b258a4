#include "model/anim_block_file.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <vector>

#include "animation_job.h"
#include "support/told_texts.h"

namespace tarnwick::decompiler {
namespace {

using namespace tests;
using testing::HasSubstr;

/// A header of `version` and two animation records, all of whose bytes from FrameCount on are ones; the second has no
/// sections and no zero frames.
struct BlockFile {
  explicit BlockFile(int32_t version) : Bytes(sizeof(StudioHeader) + 2 * sizeof(StudioAnimDesc)) {
    Header().Version = version;
    Header().AnimCount = 2;
    Header().AnimOffset = sizeof(StudioHeader);
    Header().ZeroFrameCacheIndex = 77;
    for (int i = 0; i < 2; ++i) std::memset(&Animation(i).FrameCount, 1, sizeof(StudioAnimDesc) - 0x10);
    Animation(1).SectionFrames = 0;
    Animation(1).ZeroFrameOffset = 0;
  }
  StudioHeader& Header() { return *reinterpret_cast<StudioHeader*>(Bytes.data()); }
  StudioAnimDesc& Animation(int i) { return reinterpret_cast<StudioAnimDesc*>(Bytes.data() + sizeof(StudioHeader))[i]; }
  std::vector<std::byte> Bytes;
};

TEST(AnimBlockFile, IsUpgradedFromEveryVersion) {
  for (const int32_t version : {44, 46, 47, 48, 49}) {
    SCOPED_TRACE(version);
    BlockFile file(version);
    ASSERT_TRUE(UpgradeAnimBlockHeader(file.Bytes));
    EXPECT_EQ(file.Header().Version, 48);
    EXPECT_EQ(file.Header().ZeroFrameCacheIndex, version < 47 ? 0 : 77);
    const StudioAnimDesc& sectioned = file.Animation(0);
    const StudioAnimDesc& plain = file.Animation(1);
    EXPECT_EQ(sectioned.FrameCount, version < 46 ? 1 : 0x01010101);
    EXPECT_EQ(sectioned.Block, version < 46 ? -1 : 0x01010101);
    EXPECT_EQ(sectioned.SectionOffset, version < 46 ? 0 : 0x01010101);
    EXPECT_EQ(sectioned.Unread60, version < 46 ? 0 : 0x01010101);
    EXPECT_EQ(sectioned.ZeroFrameOffset, version < 48 ? 0 : 0x01010101);
    EXPECT_EQ(sectioned.ZeroFrameSpan, version < 48 ? 0 : 0x0101);
    EXPECT_EQ(sectioned.ZeroFrameCount, version < 46 ? 0 : 0x0101);
    EXPECT_EQ(plain.FrameCount, 0x01010101);
    EXPECT_EQ(plain.ZeroFrameSpan, version < 47 ? 0 : 0x0101);
  }
  BlockFile damaged(44);
  damaged.Header().AnimCount = 3;
  EXPECT_FALSE(UpgradeAnimBlockHeader(damaged.Bytes));
  EXPECT_FALSE(UpgradeAnimBlockHeader(std::span(damaged.Bytes).first(100)));
}

ModelBuilder ModelWithBlocks() {
  ModelBuilder model;
  for (const int32_t block : {1, 2}) {
    model.Animations.push_back({.Data = {.Bones = {{.RawPosition = {{1, 2, 3}}}}, .Block = block}});
  }
  model.AnimBlockName = "models/props\\in.ani";
  return model;
}

TEST(AnimBlockFile, IsFoundBesideTheModelAndReadOnce) {
  AnimationJob job(ModelWithBlocks());
  const auto first = GetAnimBlockBase(job.Context(), 1);
  std::filesystem::remove(job.Folder.Path("in.ani"));
  const auto second = GetAnimBlockBase(job.Context(), 2);
  ASSERT_TRUE(first && second);
  EXPECT_LT(first->Offset, second->Offset);
  EXPECT_FALSE(GetAnimBlockBase(job.Context(), 1'000'000));
  EXPECT_EQ(job.Report.LogText, "");

  AnimationJob other(ModelWithBlocks());
  std::filesystem::rename(other.Folder.Path("in.ani"), other.Folder.Path("In.ANI"));
  EXPECT_TRUE(GetAnimBlockBase(other.Context(), 1));
#ifndef _WIN32  // there the two are one name
  EXPECT_THAT(other.Report.LogText, HasSubstr("In.ANI for in.ani\r\n"));
#endif
}

TEST(AnimBlockFile, IsMissedInOneError) {
  // Its own tables are not needed.
  ModelFiles files = ModelWithBlocks().Build();
  files.Ani.Record<StudioHeader>("header").Version = 45;
  files.Ani.Record<StudioHeader>("header").AnimCount = 1'000'000;
  AnimationJob odd(files);
  EXPECT_TRUE(GetAnimBlockBase(odd.Context(), 1));
  for (const char* name : {"gone.ani", "in.mDl", "folder/", ""}) {
    ModelBuilder model = ModelWithBlocks();
    model.AnimBlockName = name;
    AnimationJob job(model);
    EXPECT_FALSE(GetAnimBlockBase(job.Context(), 1));
    EXPECT_FALSE(GetAnimBlockBase(job.Context(), 2));
    const auto errors = TextsOf(job.Context().Result(), core::Severity::Error);
    ASSERT_EQ(errors.size(), 1u) << name;
    EXPECT_THAT(errors[0], HasSubstr(core::LastComponent(name)));
    EXPECT_THAT(errors[0], HasSubstr(job.Folder.Path()));
    EXPECT_THAT(errors[0], testing::StartsWith("No animation block file: ")) << "as a vertex file is missed";
  }
}

}  // namespace
}  // namespace tarnwick::decompiler

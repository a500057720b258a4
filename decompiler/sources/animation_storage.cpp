#include "decompiler/sources/animation_storage.h"

#include <algorithm>
#include <limits>
#include <set>
#include <vector>

#include "model/animation_data.h"

namespace tarnwick::decompiler::sources {

namespace {

constexpr int32_t UsualSectionFrames = 30;
constexpr int32_t UsualLeastSectioned = 120;
constexpr int64_t KiloByte = 1024;
constexpr int64_t LeastUsualSize = 4, MostUsualSize = 64;  // kilobytes
constexpr int64_t PieceAlignment = 4;

/// A block, and where the pieces in it begin, from its start on.
struct FilledBlock {
  int64_t Size;  // bytes
  std::set<int64_t> Starts = {};

  int64_t SizeOfFirstPiece() const { return (Starts.size() > 1 ? *std::next(Starts.begin()) : Size) - *Starts.begin(); }
};

/// All blocks but the unused first.
std::vector<FilledBlock> BlocksOf(JobContext& job, const std::vector<std::vector<StudioAnimSection>>& pieces) {
  const auto header = job.Model.Header();
  std::vector<FilledBlock> blocks;
  const auto table =
      job.Table<StudioAnimBlock>("animation block table", header->AnimBlockOffset, header->AnimBlockCount);
  if (!table || !job.Spend(table->Count() * RecordCost)) return blocks;
  for (int64_t i = 1; i < table->Count(); ++i) {
    blocks.push_back({int64_t{(*table)[i]->End} - (*table)[i]->Start});
  }
  for (const auto& animation : pieces) {
    for (const StudioAnimSection& piece : animation) {
      if (piece.Block < 1 || piece.Block > static_cast<int64_t>(blocks.size())) continue;
      FilledBlock& block = blocks[static_cast<size_t>(piece.Block) - 1];
      if (piece.DataOffset >= 0 && piece.DataOffset < block.Size) block.Starts.insert(+piece.DataOffset);
    }
  }
  return blocks;
}

/// The size in kilobytes that fills blocks so: a piece goes to the next block where it has no room, and one that is
/// larger than a block has one of its own.
int64_t SizeFilling(const std::vector<FilledBlock>& blocks) {
  int64_t least = 0, most = std::numeric_limits<int64_t>::max(), largest = 0;  // bytes
  for (size_t i = 0; i < blocks.size(); ++i) {
    const int64_t filled = (blocks[i].Size + PieceAlignment - 1) / PieceAlignment * PieceAlignment;
    largest = std::max(largest, blocks[i].Size);
    if (blocks[i].Starts.size() > 1) least = std::max(least, blocks[i].Size);
    if (i + 1 < blocks.size() && !blocks[i + 1].Starts.empty()) {
      most = std::min(most, filled + blocks[i + 1].SizeOfFirstPiece() - 1);
    }
  }
  for (int64_t size = LeastUsualSize; size <= MostUsualSize; size *= 2) {
    if (size * KiloByte >= least && size * KiloByte <= most) return size;
  }
  const int64_t whole = std::max((least + KiloByte - 1) / KiloByte, int64_t{1});
  if (whole * KiloByte <= most) return whole;
  // Filled in another way: what holds the largest.
  int64_t size = LeastUsualSize;
  while (size < MostUsualSize && size * KiloByte < largest) size *= 2;
  return size;
}

void WriteBlocks(JobContext& job, const core::RecordArray<StudioAnimDesc>& animations) {
  std::vector<std::vector<StudioAnimSection>> pieces;
  bool keepsFirst = false, movesFirst = false;
  for (const auto animation : animations) {
    if (!job.Spend(RecordCost)) break;
    pieces.push_back(StoredPieces(job, animation));
    const auto& own = pieces.back();
    const bool moves = std::ranges::any_of(own, [](const auto& piece) { return piece.Block > 0; });
    if (own.size() < 2 || !moves) continue;
    (own.front().Block == 0 ? keepsFirst : movesFirst) = true;
  }
  job.Script().Text("$animblocksize " + std::to_string(SizeFilling(BlocksOf(job, pieces))) +
                    (keepsFirst ? " nostall" : "") + "\n");
  if (keepsFirst && movesFirst) job.Lose("first sections of animations that stand in the block file, as not all do");
}

void WriteSections(JobContext& job, const core::RecordArray<StudioAnimDesc>& animations) {
  int32_t length = 0, least = 0;
  for (const auto animation : animations) {
    if (animation->SectionFrames <= 0) continue;
    if (least == 0 || animation->FrameCount < least) least = animation->FrameCount;
    length = animation->SectionFrames;
  }
  if (length == 0 || (length == UsualSectionFrames && least >= UsualLeastSectioned)) return;
  job.Script().Text("$sectionframes " + std::to_string(length) + " " + std::to_string(least) + "\n");
}

}  // namespace

void WriteStorageStatements(JobContext& job) {
  const auto header = job.Model.Header();
  const auto animations = job.Model.View().Array<StudioAnimDesc>(header->AnimOffset, header->AnimCount);
  if (!animations) return;
  if (HasAnimationBlocks(job)) WriteBlocks(job, *animations);
  WriteSections(job, *animations);
}

bool HasAnimationBlocks(const JobContext& job) {
  return job.Model.Header()->AnimBlockCount > 1;
}

bool IsKeptOutOfBlocks(JobContext& job, const core::Record<StudioAnimDesc>& animation) {
  if (!HasAnimationBlocks(job)) return false;
  const auto pieces = StoredPieces(job, animation);
  return !pieces.empty() && std::ranges::all_of(pieces, [](const auto& piece) { return piece.Block == 0; });
}

}  // namespace tarnwick::decompiler::sources

#include <algorithm>
#include <functional>

#include "support/model_builder.h"
#include "support/model_writer.h"

namespace tarnwick::tests {

namespace {

using namespace model;

/// Where the axes of a run triple are entered: the triple is written with the payload, the runs behind it.
void WriteRuns(const std::array<AxisRuns, 3>& axes, int64_t triple, FileBuilder& file) {
  for (size_t axis = 0; axis < axes.size(); ++axis) {
    if (axes[axis].empty()) continue;
    const auto offset = static_cast<int16_t>(file.Size() - triple);
    std::copy_n(reinterpret_cast<const char*>(&offset), sizeof(offset),
                file.Bytes().begin() + triple + static_cast<int64_t>(axis * sizeof(offset)));
    for (const RunDescription& run : axes[axis]) {
      file.AppendValue(StudioRunHead{static_cast<uint8_t>(run.Values.size()), run.Total});
      for (const int16_t value : run.Values) file.AppendValue(value);
    }
    file.AppendValue(StudioRunHead{0, 0});
  }
}

uint8_t FlagsOf(const BoneAnimDescription& bone) {
  int flags = 0;
  if (bone.RawPosition) flags |= AnimRawPosition;
  if (bone.Rotation48) flags |= AnimRawRotation48;
  if (bone.PositionRuns) flags |= AnimRunPosition;
  if (bone.RotationRuns) flags |= AnimRunRotation;
  if (bone.IsDelta) flags |= AnimIsDelta;
  if (bone.Rotation64) flags |= AnimRawRotation64;
  return static_cast<uint8_t>(flags);
}

/// The payload in the order rotation, position, runs. A raw rotation with position runs, or rotation runs with a raw
/// position, would share their bytes and are not to be described.
void WriteBoneAnim(const BoneAnimDescription& bone, FileBuilder& file) {
  const std::string_view emptyTriple("\0\0\0\0\0\0", sizeof(StudioRunOffsets));
  file.AppendValue(StudioAnim{bone.Bone, FlagsOf(bone), 0});
  int64_t rotationTriple = 0;
  int64_t positionTriple = 0;
  if (bone.Rotation48) file.AppendValue(*bone.Rotation48);
  if (bone.Rotation64) file.AppendValue(*bone.Rotation64);
  if (bone.RotationRuns) rotationTriple = file.Append(emptyTriple);
  if (bone.RawPosition) {
    for (const float value : *bone.RawPosition) file.AppendValue(HalfFloat(value));
  }
  if (bone.PositionRuns) positionTriple = file.Append(emptyTriple);
  if (bone.RotationRuns) WriteRuns(*bone.RotationRuns, rotationTriple, file);
  if (bone.PositionRuns) WriteRuns(*bone.PositionRuns, positionTriple, file);
}

/// Animation data that waits for its block, and what is done when its place is known.
struct BlockData {
  const AnimDataDescription* Data;
  std::string Name;
  std::function<void(int32_t block, int32_t offset)> Enter;
};

/// Puts each piece of data where its description says and enters the place in its owner's record.
class DataPlacer {
 public:
  DataPlacer(FileBuilder& mdl, FileBuilder& ani) : m_mdl(mdl), m_ani(ani) {}

  void Place(const AnimDataDescription& data, int32_t animation, std::string name,
             std::function<void(int32_t, int32_t)> enter) {
    if (data.Block > 0) {
      m_waiting.push_back({&data, std::move(name), std::move(enter)});
    } else if (data.Block < 0) {
      enter(data.Block, 0);
    } else {
      m_mdl.Mark(name);
      enter(0, WriteAnimData(data, m_mdl) - animation);
    }
  }

  /// Writes the data of the blocks, in the order of the blocks, and their table.
  void WriteBlocks() {
    int32_t last = 0;
    for (const BlockData& waiting : m_waiting) last = std::max(last, waiting.Data->Block);
    if (last == 0) return;
    const auto blocks = m_mdl.Reserve<StudioAnimBlock>(last + 1, "anim blocks");
    HeaderOf(m_mdl).AnimBlockCount = last + 1;
    HeaderOf(m_mdl).AnimBlockOffset = blocks.At(0);
    for (int32_t block = 1; block <= last; ++block) {
      m_ani.Align(16);
      m_ani.Mark(PlaceName("block", {static_cast<size_t>(block)}));
      blocks[block].Start = static_cast<int32_t>(m_ani.Size());
      for (const BlockData& waiting : m_waiting) {
        if (waiting.Data->Block != block) continue;
        m_ani.Mark(waiting.Name);
        waiting.Enter(block, WriteAnimData(*waiting.Data, m_ani) - blocks[block].Start);
      }
      blocks[block].End = static_cast<int32_t>(m_ani.Size());
    }
  }

 private:
  FileBuilder& m_mdl;
  FileBuilder& m_ani;
  std::vector<BlockData> m_waiting;
};

bool HasBlocks(const ModelBuilder& model) {
  return std::any_of(model.Animations.begin(), model.Animations.end(), [](const AnimationDescription& animation) {
    return animation.Data.Block > 0 ||
           std::any_of(animation.Sections.begin(), animation.Sections.end(), [](const auto& s) { return s.Block > 0; });
  });
}

void FillAnim(const AnimationDescription& animation, StudioAnimDesc& record) {
  record.Fps = animation.Fps;
  record.Flags = animation.Flags;
  record.FrameCount = animation.FrameCount;
  record.SectionFrames = animation.SectionFrames;
}

/// A block file begins with a header and animation records like those of the model.
void WriteBlockFileHead(const ModelBuilder& model, FileBuilder& ani) {
  const auto header = ani.Reserve<StudioHeader>(1, "header");
  std::copy_n("IDAG", 4, header[0].Id);
  header[0].Version = model.AnimBlockVersion;
  const auto anims = ani.Reserve<StudioAnimDesc>(static_cast<int64_t>(model.Animations.size()), "anims");
  header[0].AnimCount = static_cast<int32_t>(anims.Count);
  header[0].AnimOffset = anims.At(0);
  for (int64_t i = 0; i < anims.Count; ++i) FillAnim(model.Animations[static_cast<size_t>(i)], anims[i]);
}

}  // namespace

int32_t WriteAnimData(const AnimDataDescription& data, FileBuilder& file) {
  const auto place = static_cast<int32_t>(file.Size());
  int64_t previous = -1;
  for (const BoneAnimDescription& bone : data.Bones) {
    const int64_t record = file.Size();
    if (previous >= 0) {
      const auto step = static_cast<int16_t>(record - previous);
      std::copy_n(reinterpret_cast<const char*>(&step), sizeof(step),
                  file.Bytes().begin() + previous + static_cast<int64_t>(offsetof(StudioAnim, NextOffset)));
    }
    WriteBoneAnim(bone, file);
    previous = record;
  }
  if (data.Bones.empty()) file.AppendValue(StudioAnim{255, 0, 0});  // no bone of the model
  return place;
}

void WriteAnimations(const ModelBuilder& model, FileBuilder& mdl, FileBuilder& ani) {
  const auto anims = ReserveInHeader<StudioAnimDesc>(model.Animations, "anims", mdl, &StudioHeader::AnimCount,
                                                     &StudioHeader::AnimOffset);
  if (HasBlocks(model)) {
    WriteBlockFileHead(model, ani);
    const int32_t name = mdl.Text(model.AnimBlockName);
    HeaderOf(mdl).AnimBlockNameOffset = name;
    mdl.Align(4);
  }
  DataPlacer placer(mdl, ani);
  for (int64_t i = 0; i < anims.Count; ++i) {
    const AnimationDescription& animation = model.Animations[static_cast<size_t>(i)];
    const int32_t name = mdl.Text(animation.Name);
    anims[i].HeaderOffset = -anims.At(i);
    anims[i].NameOffset = anims.To(name, i);
    FillAnim(animation, anims[i]);
    mdl.Align(4);
    placer.Place(animation.Data, anims.At(i), "anim data " + std::to_string(i), [=](int32_t block, int32_t offset) {
      anims[i].Block = block;
      anims[i].DataOffset = offset;
    });
    mdl.Align(4);
    const size_t number = static_cast<size_t>(i);
    const int64_t movements = WriteRecords(animation.Movements, PlaceName("movements", {number}), mdl);
    const int64_t rules = WriteRecords(animation.IkRules, PlaceName("ik rules", {number}), mdl);
    anims[i].MovementCount = static_cast<int32_t>(animation.Movements.size());
    anims[i].MovementOffset = anims.To(movements, i);
    anims[i].IkRuleCount = static_cast<int32_t>(animation.IkRules.size());
    anims[i].IkRuleOffset = anims.To(rules, i);
    if (animation.Sections.empty()) continue;
    const auto sections = mdl.Reserve<StudioAnimSection>(static_cast<int64_t>(animation.Sections.size()),
                                                         PlaceName("anim sections", {static_cast<size_t>(i)}));
    anims[i].SectionOffset = anims.To(sections.Offset, i);
    for (size_t s = 0; s < animation.Sections.size(); ++s) {
      placer.Place(animation.Sections[s], anims.At(i), PlaceName("section data", {static_cast<size_t>(i), s}),
                   [=](int32_t block, int32_t offset) {
                     sections[static_cast<int64_t>(s)] = StudioAnimSection{block, offset};
                   });
    }
    mdl.Align(4);
  }
  placer.WriteBlocks();
}

}  // namespace tarnwick::tests

#include "compiler/files/animation_tables.h"

#include <algorithm>
#include <iterator>

#include "compiler/parallel.h"

namespace tarnwick::compiler {

using model::StudioAnimDesc;
using model::StudioSeqDesc;

namespace {

constexpr int32_t OldVersion = 44;
constexpr int32_t UsualSection = 30;

}  // namespace

AnimationTables::AnimationTables(CompileContext& context, const ModelParts& parts,
                                 const std::vector<BoneScales>& scales, ByteWriter& writer, TextPool& texts,
                                 model::StudioHeader& header, BlockFile& blocks)
    : m_context(context),
      m_parts(parts),
      m_writer(writer),
      m_texts(texts),
      m_header(header),
      m_blocks(blocks),
      m_scales(scales),
      m_new(context.Options.Version > OldVersion) {}

bool AnimationTables::Write() {
  if (!WriteAnimations()) return false;
  WriteSequences();
  WriteNodes();
  return true;
}

int32_t AnimationTables::SectionLength(const StudioAnimDesc& record) const {
  const int32_t length = m_context.Plan.SectionFrames;
  const bool cut =
      m_new && length > 0 && record.FrameCount >= m_context.Plan.LeastSectionedFrames && record.FrameCount > length;
  return cut ? length : 0;
}

/// Section k covers its first frame to that of the next, both included; the last entry the last frame alone.
std::vector<AnimationTables::Stretch> AnimationTables::SectionsOf(size_t animation, int32_t frames, int32_t length) {
  const auto count = static_cast<size_t>(frames / length) + 2;
  std::vector<Stretch> sections;
  sections.reserve(count);
  for (size_t i = 0; i < count; ++i) {
    const auto start = static_cast<int32_t>(std::min<int64_t>(static_cast<int64_t>(i) * length, frames - 1));
    const bool last = i + 1 == count;
    const int32_t first = last ? frames - 1 : start;
    sections.push_back({animation, first, last ? 1 : std::min(length + 1, frames - first), std::nullopt});
  }
  return sections;
}

void AnimationTables::Encode(std::vector<Stretch>& stretches) const {
  const auto& animations = m_parts.Motion.Animations;
  ForEachInParallel(m_context.Options, stretches.size(), [&](size_t i) {
    Stretch& stretch = stretches[i];
    stretch.Chain =
        EncodeChain(m_parts.Bones, m_scales, animations[stretch.Animation], stretch.First, stretch.Count, m_new);
  });
}

bool AnimationTables::WriteAnimations() {
  const auto& animations = m_parts.Motion.Animations;
  m_header.AnimCount = static_cast<int32_t>(animations.size());
  m_header.AnimOffset = static_cast<int32_t>(m_writer.Reserve<StudioAnimDesc>(animations.size()));
  const auto placeOf = [&](size_t i) { return m_header.AnimOffset + static_cast<int64_t>(i * sizeof(StudioAnimDesc)); };
  std::vector<StudioAnimDesc> records(animations.size());
  std::vector<Stretch> stretches;
  std::vector<size_t> firsts;
  firsts.reserve(animations.size() + 1);
  for (size_t i = 0; i < animations.size(); ++i) {
    records[i] = {};
    const int32_t frames = m_parts.Bones.Static ? 1 : animations[i].FrameCount;
    records[i].FrameCount = frames;
    records[i].SectionFrames = SectionLength(records[i]);
    firsts.push_back(stretches.size());
    if (records[i].SectionFrames > 0) {
      const int64_t sections = int64_t{frames / records[i].SectionFrames} + 2;
      if (!m_context.Spend(2 * sections * int64_t{sizeof(Stretch)}, animations[i].At)) return false;
      for (Stretch& section : SectionsOf(i, frames, records[i].SectionFrames)) stretches.push_back(std::move(section));
    } else {
      stretches.push_back({i, 0, frames, std::nullopt});
    }
  }
  firsts.push_back(stretches.size());
  Encode(stretches);
  if (m_context.Stopped()) return false;
  for (size_t i = 0; i < animations.size(); ++i) {
    const BuiltAnimation& animation = animations[i];
    StudioAnimDesc& record = records[i];
    record.HeaderOffset = static_cast<int32_t>(-placeOf(i));
    record.Fps = animation.Fps;
    record.Flags = (animation.Loops ? model::AnimFlagLooping : 0) | (animation.Delta ? model::AnimFlagDelta : 0);
    m_texts.Name(placeOf(i) + 4, placeOf(i), animation.Name);
    std::vector<Stretch> own(std::make_move_iterator(stretches.begin() + static_cast<ptrdiff_t>(firsts[i])),
                             std::make_move_iterator(stretches.begin() + static_cast<ptrdiff_t>(firsts[i + 1])));
    if (!WriteData(i, own, placeOf(i), record)) return false;
    record.IkRuleCount = static_cast<int32_t>(animation.IkRules.size());
    if (record.Block == 0 && record.IkRuleCount > 0) {
      record.IkRuleOffset = static_cast<int32_t>(m_writer.AppendBytes(IkRuleBytes(animation)) - placeOf(i));
    }
  }
  for (size_t i = 0; i < animations.size(); ++i) {
    records[i].MovementCount = static_cast<int32_t>(animations[i].Movements.size());
    if (!animations[i].Movements.empty()) {
      records[i].MovementOffset = static_cast<int32_t>(m_writer.Size() - placeOf(i));
    }
    for (const model::StudioMovement& movement : animations[i].Movements) m_writer.Append(movement);
    m_writer.Put(placeOf(i), records[i]);
  }
  return true;
}

bool AnimationTables::GoesToBlocks(size_t number) const {
  return m_blocks.IsWanted() && !m_parts.Bones.Static && !m_parts.Motion.Animations[number].InModelFile;
}

/// Rules stand in the block in which the tracks that they are for begin.
BlockFile::Place AnimationTables::AddToBlocks(size_t number, const std::string& chain, StudioAnimDesc& record) {
  const BuiltAnimation& animation = m_parts.Motion.Animations[number];
  if (animation.IkRules.empty()) return m_blocks.Add(chain);
  ByteWriter piece;
  piece.AppendBytes(chain);
  piece.Align(4);
  const int64_t rules = piece.AppendBytes(IkRuleBytes(animation));
  const BlockFile::Place place = m_blocks.Add(piece.Take());
  record.BlockIkRuleOffset = static_cast<int32_t>(place.Offset + rules);
  return place;
}

bool AnimationTables::WriteData(size_t number, std::vector<Stretch>& stretches, int64_t at, StudioAnimDesc& record) {
  if (record.SectionFrames > 0) return WriteSections(number, stretches, at, record);
  if (const auto& chain = stretches.front().Chain) {
    if (GoesToBlocks(number)) {
      const BlockFile::Place place = AddToBlocks(number, *chain, record);
      record.Block = place.Block;
      record.DataOffset = place.Offset;
      return true;
    }
    m_writer.Align(m_new ? 16 : 4);
    record.DataOffset = static_cast<int32_t>(m_writer.AppendBytes(*chain) - at);
    m_writer.Align(4);
    return true;
  }
  if (!m_new) {
    m_context.Error(m_parts.Motion.Animations[number].At, "the animation is too long for models of this version",
                    core::TroubleKind::Limit);
    return false;
  }
  // Too long to stand whole.
  record.SectionFrames = UsualSection;
  std::vector<Stretch> sections = SectionsOf(number, record.FrameCount, UsualSection);
  Encode(sections);
  return WriteSections(number, sections, at, record);
}

bool AnimationTables::WriteSections(size_t number, const std::vector<Stretch>& sections, int64_t at,
                                    StudioAnimDesc& record) {
  const int64_t table = m_writer.Reserve<model::StudioAnimSection>(sections.size());
  record.SectionOffset = static_cast<int32_t>(table - at);
  for (size_t i = 0; i < sections.size(); ++i) {
    const auto& chain = sections[i].Chain;
    if (!chain) {
      m_context.Error(m_parts.Motion.Animations[number].At, "a section of the animation is too long for the format",
                      core::TroubleKind::Limit);
      return false;
    }
    BlockFile::Place place;
    if (GoesToBlocks(number) && !(i == 0 && m_context.Plan.KeepFirstSections)) {
      place = i == 0 ? AddToBlocks(number, *chain, record) : m_blocks.Add(*chain);
    } else {
      m_writer.Align(i == 0 ? 16 : 4);
      place.Offset = static_cast<int32_t>(m_writer.AppendBytes(*chain) - at);
    }
    if (i == 0) {
      record.Block = place.Block;
      record.DataOffset = place.Offset;
    }
    m_writer.Put(table + static_cast<int64_t>(i * sizeof(model::StudioAnimSection)),
                 model::StudioAnimSection{place.Block, place.Offset});
  }
  m_writer.Align(4);
  return true;
}

/// The rules of an animation, which has some, and behind them their errors.
std::string AnimationTables::IkRuleBytes(const BuiltAnimation& animation) {
  ByteWriter bytes;
  bytes.Reserve<model::StudioIkRule>(animation.IkRules.size());
  for (size_t i = 0; i < animation.IkRules.size(); ++i) {
    const auto place = static_cast<int64_t>(i * sizeof(model::StudioIkRule));
    model::StudioIkRule rule = animation.IkRules[i].Record;
    const auto errors = animation.IkRules[i].Errors.empty() ? std::nullopt : EncodeErrors(animation.IkRules[i].Errors);
    if (errors) {
      rule.ErrorOffset = static_cast<int32_t>(bytes.AppendBytes(*errors) - place);
      bytes.Align(4);
    }
    bytes.Put(place, rule);
  }
  return bytes.Take();
}

void AnimationTables::WriteSequences() {
  const auto& sequences = m_parts.Motion.Sequences;
  m_header.SequenceCount = static_cast<int32_t>(sequences.size());
  m_header.SequenceOffset = static_cast<int32_t>(m_writer.Reserve<StudioSeqDesc>(sequences.size()));
  for (size_t i = 0; i < sequences.size(); ++i) {
    const BuiltSequence& sequence = sequences[i];
    const int64_t at = m_header.SequenceOffset + static_cast<int64_t>(i * sizeof(StudioSeqDesc));
    StudioSeqDesc record = {};
    record.HeaderOffset = static_cast<int32_t>(-at);
    record.Flags = sequence.Flags;
    record.Activity = -1;
    record.ActivityWeight = sequence.ActivityWeight;
    record.Minimum = sequence.Box[0];
    record.Maximum = sequence.Box[1];
    record.BlendCount = static_cast<int32_t>(sequence.Animations.size());
    for (size_t axis = 0; axis < 2; ++axis) {
      record.BlendSize[axis] = axis == 0 ? sequence.Columns : sequence.Rows;
      record.PoseParameter[axis] = sequence.PoseParameters[axis];
      record.PoseStart[axis] = sequence.PoseStart[axis];
      record.PoseEnd[axis] = sequence.PoseEnd[axis];
    }
    record.FadeIn = sequence.FadeIn;
    record.FadeOut = sequence.FadeOut;
    record.EntryNode = sequence.EntryNode;
    record.ExitNode = sequence.ExitNode;
    record.NodeFlags = sequence.NodeFlags;
    record.ExitPhase = sequence.ExitPhase;
    record.IkRuleCount = sequence.MostIkRules;
    record.CyclePose = sequence.CyclePose;
    m_texts.Name(at + static_cast<int64_t>(offsetof(StudioSeqDesc, LabelOffset)), at, sequence.Label);
    m_texts.Name(at + static_cast<int64_t>(offsetof(StudioSeqDesc, ActivityOffset)), at, sequence.Activity);
    WriteSequenceTables(sequence, at, record);
    m_writer.Put(at, record);
  }
}

void AnimationTables::WriteSequenceTables(const BuiltSequence& sequence, int64_t at, StudioSeqDesc& record) {
  const auto here = [&] { return static_cast<int32_t>(m_writer.Size() - at); };
  if (!sequence.Weights.empty()) {
    const auto known = std::ranges::find_if(m_weightLists, [&](const auto& l) { return l.first == sequence.Weights; });
    if (known != m_weightLists.end()) {
      record.WeightOffset = static_cast<int32_t>(known->second - at);
    } else {
      m_weightLists.emplace_back(sequence.Weights, m_writer.Size());
      record.WeightOffset = here();
      for (const float weight : sequence.Weights) m_writer.Append(weight);
    }
  }
  if (!sequence.PoseKeys.empty()) record.PoseKeyOffset = here();
  for (const float key : sequence.PoseKeys) m_writer.Append(key);
  record.EventCount = static_cast<int32_t>(sequence.Events.size());
  record.EventOffset = here();
  for (const BuiltEvent& event : sequence.Events) {
    constexpr int32_t TypeNamed = 0x400;
    model::StudioEvent out = {};
    out.Cycle = event.Cycle;
    out.Event = event.Number;
    out.Type = event.Name.empty() ? 0 : TypeNamed;
    std::memcpy(out.Options, event.Options.data(), std::min(event.Options.size(), sizeof out.Options - 1));
    const int64_t place = m_writer.Append(out);
    if (!event.Name.empty()) {
      m_texts.Name(place + static_cast<int64_t>(offsetof(model::StudioEvent, NameOffset)), place, event.Name);
    }
  }
  record.LayerCount = static_cast<int32_t>(sequence.Layers.size());
  record.LayerOffset = here();
  for (const model::StudioAutoLayer& layer : sequence.Layers) m_writer.Append(layer);
  record.IkLockCount = static_cast<int32_t>(sequence.IkLocks.size());
  record.IkLockOffset = here();
  for (const model::StudioIkLock& lock : sequence.IkLocks) m_writer.Append(lock);
  record.BlendOffset = here();
  for (const int32_t animation : sequence.Animations) m_writer.Append(static_cast<int16_t>(animation));
  m_writer.Align(4);
  record.KeyValueOffset = here();
  if (!sequence.KeyValues.empty()) {
    record.KeyValueSize = static_cast<int32_t>(sequence.KeyValues.size() + 1);
    m_writer.AppendBytes(sequence.KeyValues);
    m_writer.AppendBytes(std::string(1, '\0'));
    m_writer.Align(4);
  }
  record.ActivityModifierCount = static_cast<int32_t>(sequence.ActivityModifiers.size());
  if (!sequence.ActivityModifiers.empty()) record.ActivityModifierOffset = here();
  for (const std::string& modifier : sequence.ActivityModifiers) {
    const int64_t place = m_writer.Append(model::StudioOffset{});
    m_texts.Name(place, place, modifier);
  }
}

void AnimationTables::WriteNodes() {
  const auto& nodes = m_parts.Motion.Nodes;
  m_header.NodeCount = static_cast<int32_t>(nodes.size());
  m_header.NodeNameOffset = static_cast<int32_t>(m_writer.Size());
  for (const std::string& node : nodes) m_texts.Name(m_writer.Append(model::StudioOffset{}), 0, node);
  m_header.NodeOffset = static_cast<int32_t>(m_writer.Size());
  for (const uint8_t step : m_parts.Motion.NodeTable) m_writer.Append(step);
  m_writer.Align(4);
}

}  // namespace tarnwick::compiler

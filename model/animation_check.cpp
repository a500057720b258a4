#include "model/animation_check.h"

#include <algorithm>
#include <string>

namespace tarnwick::model {

namespace {

/// What is wrong, and where.
struct Problem {
  std::string What;
  int64_t Offset;
  std::string Text;
};

constexpr std::string_view PastTheEnd = "runs past the end of the file";

/// Checks the three streams whose offsets stand at `triple`, up to `lastFrame`.
std::optional<Problem> CheckRuns(const core::ImageView& image, int64_t triple, int32_t lastFrame) {
  if (!image.At<StudioRunOffsets>(triple)) return Problem{"offsets of the runs", triple, std::string(PastTheEnd)};
  for (int axis = 0; axis < 3; ++axis) {
    const auto stream = RunsOfAxis(image, triple, axis);
    if (!stream) continue;
    RunCursor cursor(stream->Offset);
    cursor.At(image, lastFrame);
    if (const auto at = cursor.DamagedAt()) {
      return Problem{"run", *at, "has no values inside the file"};
    }
  }
  return std::nullopt;
}

std::optional<Problem> CheckPayload(const AnimRecord& anim, int32_t lastFrame) {
  const core::ImageView& image = anim.Image;
  const uint8_t flags = anim->Flags;
  const bool raw48 = (flags & AnimRawRotation48) != 0, raw64 = (flags & AnimRawRotation64) != 0;
  if ((raw48 && !image.At<PackedQuat48>(anim.Payload())) || (raw64 && !image.At<PackedQuat64>(anim.Payload()))) {
    return Problem{"packed rotation", anim.Payload(), std::string(PastTheEnd)};
  }
  if (!raw48 && !raw64 && (flags & AnimRunRotation) != 0) {
    if (auto problem = CheckRuns(image, anim.Payload(), lastFrame)) return problem;
  }
  if ((flags & AnimRawPosition) != 0) {
    if (!image.At<PackedVec48>(anim.RawPosition())) {
      return Problem{"packed position", anim.RawPosition(), std::string(PastTheEnd)};
    }
  } else if ((flags & AnimRunPosition) != 0) {
    return CheckRuns(image, anim.PositionRuns(), lastFrame);
  }
  return std::nullopt;
}

/// Checks the chain of records at `data`, for the model's bones and up to `lastFrame`. A sound chain goes forward both
/// in the file and in the numbers of its bones, so it ends. A record of a bone that the model does not have ends what
/// is used of it.
std::optional<Problem> CheckChain(const AnimData& data, int64_t boneCount, int32_t lastFrame) {
  auto anim = AnimRecordAt(data);
  if (!anim) return Problem{"data", data.Offset, data.Offset < 0 ? "begin before the file" : "lie behind the file"};
  while ((*anim)->Bone < boneCount) {
    if (auto problem = CheckPayload(*anim, lastFrame)) return problem;
    const int16_t step = (*anim)->NextOffset;
    if (step == 0) return std::nullopt;
    const int64_t at = anim->Anim.Offset();
    if (step < 0) return Problem{"bone record", at, "leads back to an earlier one"};
    const auto next = NextAnimRecord(*anim);
    if (!next) return Problem{"bone record", at + step, std::string(PastTheEnd)};
    if ((*next)->Bone <= (*anim)->Bone) {
      return Problem{"bone record", at + step, "is for an earlier bone than the one before it"};
    }
    anim = next;
  }
  return std::nullopt;
}

class Checker {
 public:
  Checker(ModelReader& reader, const core::Record<StudioAnimDesc>& animation, std::string_view name)
      : m_reader(reader), m_name(name), m_result{animation, {}} {}

  std::optional<CheckedAnimation> Run() {
    if (!FindSections() || !CheckData()) return std::nullopt;
    return std::move(m_result);
  }

 private:
  const StudioAnimDesc& Animation() const { return *m_result.Description; }

  /// Finds the data of each section that a frame uses.
  bool FindSections() {
    if (Animation().SectionFrames < 0) {
      return Fail(m_reader.Model.Mdl,
                  {"record", m_result.Description.Offset(), "has a negative number of frames a section"});
    }
    if (Animation().SectionFrames == 0) return AddSection(Animation().Block, Animation().DataOffset);
    int32_t last = Animation().FrameCount - 1;
    const int64_t count = SectionOfFrame(Animation(), last) + 1;
    const int64_t offset = m_result.Description.Offset() + Animation().SectionOffset;
    const auto table = m_reader.Model.View().Array<StudioAnimSection>(offset, count);
    if (!table) {
      return Fail(m_reader.Model.Mdl, {"table of " + std::to_string(count) + " sections", offset,
                                       offset < 0 ? "begins before the file" : std::string(PastTheEnd)});
    }
    m_result.Sections.reserve(static_cast<size_t>(count));
    for (const auto section : *table) {
      if (!AddSection(section->Block, section->DataOffset)) return false;
    }
    return true;
  }

  bool AddSection(int32_t block, int32_t offset) {
    CheckedAnimation::Section section;
    if (block == 0) {
      section.Data = AnimData{&m_reader.Model.Mdl, m_result.Description.Offset() + offset};
    } else if (block != -1) {
      const auto base = GetAnimBlockBase(m_reader, block);
      if (base) {
        section.Data = AnimData{base->File, base->Offset + offset};
      } else if (m_reader.Model.AnimBlocks) {
        return Fail(m_reader.Model.Mdl,
                    {"record of animation block " + std::to_string(block),
                     m_reader.Model.Header()->AnimBlockOffset + int64_t{block} * int64_t{sizeof(StudioAnimBlock)},
                     "does not lie inside the file"});
      } else {
        section.Data = m_lastData;
        section.Stands = true;
      }
    }
    if (section.Data) m_lastData = section.Data;
    m_result.Sections.push_back(section);
    return true;
  }

  /// The highest frame within section `section` that some frame shows; negative for one that none shows. Sound streams
  /// need not be ended behind the last frame that is shown, so nothing may be asked of what follows.
  int32_t LastFrameOf(int64_t section) const {
    const int32_t frames = Animation().FrameCount, length = Animation().SectionFrames;
    if (length == 0 || frames <= length) return frames - 1;
    if (section == int64_t{frames / length} + 1) return 0;
    return static_cast<int32_t>(std::min<int64_t>(length - 1, frames - 2 - section * length));
  }

  bool CheckData() {
    const int64_t boneCount = m_reader.Model.Header()->BoneCount;
    std::optional<AnimData> checked;
    int32_t checkedFrame = -1;
    for (size_t i = 0; i < m_result.Sections.size(); ++i) {
      const CheckedAnimation::Section& section = m_result.Sections[i];
      const int32_t last = section.Stands ? Animation().SectionFrames - 1 : LastFrameOf(static_cast<int64_t>(i));
      if (!section.Data || last < 0 || (section.Data == checked && last <= checkedFrame)) continue;
      checked = section.Data;
      checkedFrame = last;
      if (auto problem = CheckChain(*checked, boneCount, last)) return Fail(*checked->File, *problem);
    }
    return true;
  }

  bool Fail(const core::FileImage& file, const Problem& problem) {
    TellAnimationDamage(m_reader, file.Path(), m_name, problem.What, problem.Offset, problem.Text);
    return false;
  }

  ModelReader& m_reader;
  std::string_view m_name;
  CheckedAnimation m_result;
  std::optional<AnimData> m_lastData;
};

}  // namespace

std::optional<AnimData> CheckedAnimation::Find(int32_t& frame) const {
  const Section& section = Sections[static_cast<size_t>(SectionOfFrame(*Description, frame))];
  if (section.Data && section.Stands) frame = Description->SectionFrames - 1;
  return section.Data;
}

void TellAnimationDamage(ModelReader& reader, const std::string& path, std::string_view name, std::string_view what,
                         int64_t offset, std::string_view problem) {
  reader.DamagedAnimation(path, std::string(what) + " of animation " + std::string(name), offset, problem);
}

std::optional<CheckedAnimation> CheckAnimation(ModelReader& reader, const core::Record<StudioAnimDesc>& animation,
                                               std::string_view name) {
  return Checker(reader, animation, name).Run();
}

}  // namespace tarnwick::model

// Options of animations and sequences.

#include <array>
#include <vector>

#include "core/paths.h"
#include "qc/option_tables.h"

namespace tarnwick::qc {

using enum Key;

namespace {

constexpr std::array<std::string_view, 14> MotionAxes = {"X",  "Y",  "Z",   "XR",  "YR",  "ZR", "LX",
                                                         "LY", "LZ", "LXR", "LYR", "LZR", "LM", "LQ"};

/// What follows a chain's name in an ikrule: its kind, and options.
const OptionTable& IkRuleOptions() {
  static const OptionRow Rows[] = {
      {"touch", Touch, "w"},
      {"footstep", Footstep, "?n"},
      {"attachment", Key::Attachment, "w"},
      {"release", Release},
      {"unlatch", Unlatch},
      {"autosteal", AutoSteal},
      {"autorelease", AutoRelease},
      {"range", Range, "oooo"},
      {"contact", Contact, "n"},
      {"height", Height, "n"},
      {"floor", Floor, "n"},
      {"pad", Pad, "n"},
      {"radius", Radius, "n"},
      {"usesource", UseSource},
      {"usesequence", UseSequence},
      {"fakeorigin", FakeOrigin, "nnn"},
      {"fakerotate", FakeRotate, "nnn"},
      {"bone", Bone, "w"},
      {"target", Target, "w"},
      {"slot", Slot, "w"},
  };
  static const OptionTable table(Rows);
  return table;
}

const OptionTable& LayerOptions() {
  static const OptionRow Rows[] = {{"spline", Spline},
                                   {"xfade", XFade},
                                   {"noblend", NoBlend},
                                   {"local", Local},
                                   {"poseparameter", Key::PoseParameter, "w"}};
  static const OptionTable table(Rows);
  return table;
}

std::vector<OptionRow> AnimationRows() {
  using enum Support;
  std::vector<OptionRow> rows = {
      {"fps", Fps, "n"},
      {"frame", Frames, "ii"},
      {"frames", Frames, "ii"},
      {"numframes", NumFrames, "i"},
      {"origin", Key::Origin, "nnn"},
      {"rotate", Rotate, "n?nn"},
      {"angles", Angles, "nnn"},
      {"scale", Key::Scale, "n"},
      {"reverse", Reverse},
      {"loop", Loop},
      {"startloop", StartLoop, "i"},
      {"fixuploop", FixupLoop, "ii"},
      {"fudgeloop", FudgeLoop},
      {"align", Align, "wx*ii"},
      {"alignto", AlignTo, "w"},
      {"alignboneto", AlignBoneTo, "L", nullptr, Block::None, NotBuilt},
      {"match", Match, "L", nullptr, Block::None, NotBuilt},
      {"matchblend", MatchBlend, "L", nullptr, Block::None, NotBuilt},
      {"rotateto", RotateTo, "n"},
      {"walkalign", WalkAlign, "L", nullptr, Block::None, NotBuilt},
      {"walkalignto", WalkAlignTo, "L", nullptr, Block::None, NotBuilt},
      {"subtract", Subtract, "wi"},
      {"presubtract", PreSubtract, "w?i"},
      {"lineardelta", LinearDelta},
      {"splinedelta", SplineDelta},
      {"worldspaceblend", WorldSpaceBlend, "L", nullptr, Block::None, NotBuilt},
      {"worldspaceblendloop", WorldSpaceBlendLoop, "L", nullptr, Block::None, NotBuilt},
      {"derivative", Derivative, "?n", nullptr, Block::None, NotBuilt},
      {"counterrotate", CounterRotate, "w"},
      {"counterrotateto", CounterRotateTo, "nnnw"},
      {"weightlist", Key::WeightList, "w"},
      {"noautoik", NoAutoIk},
      {"autoik", AutoIk},
      {"ikrule", IkRule, "w", &IkRuleOptions()},
      {"ikfixup", IkFixup, "w", &IkRuleOptions()},
      {"compress", Compress, "i", nullptr, Block::None, NotBuilt},
      {"noanimation", NoAnimation},
      {"noanimblock", NoAnimBlock},
      {"noanimblockstall", NoAnimBlockStall},
      {"motionrollback", MotionRollback, "n", nullptr, Block::None, NotBuilt},
      {"cmdlist", Key::CmdList, "w"},
      {"walkframe", WalkFrame, "ix*"},
  };
  for (const std::string_view axis : MotionAxes) rows.push_back({axis, Extract});
  return rows;
}

std::vector<OptionRow> SequenceRows() {
  std::vector<OptionRow> rows = AnimationRows();
  const OptionRow more[] = {
      {"activity", Activity, "w?i"},
      {"activitymodifier", ActivityModifier, "?w", nullptr, Block::Names},
      {"fadein", FadeIn, "n"},
      {"fadeout", FadeOut, "n"},
      {"snap", Snap},
      {"autoplay", Autoplay},
      {"realtime", Realtime},
      {"delta", Delta},
      {"predelta", PreDelta},
      {"worldspace", WorldSpace},
      {"post", Post},
      {"hidden", Hidden},
      {"node", Node, "w"},
      {"transition", Transition, "ww"},
      {"rtransition", RTransition, "ww"},
      {"exitphase", ExitPhase, "n"},
      {"blend", Blend, "wnn"},
      {"blendwidth", BlendWidth, "i"},
      {"blendcenter", BlendCenter, "w"},
      {"blendref", BlendRef, "w"},
      {"blendcomp", BlendComp, "w"},
      {"calcblend", CalcBlend, "wwx"},
      {"posecycle", PoseCycle, "w"},
      {"addlayer", AddLayer, "w"},
      {"blendlayer", BlendLayer, "wnnnn", &LayerOptions()},
      {"iklock", IkLock, "wnn"},
      {"keyvalues", Key::KeyValues, "", nullptr, Block::KeyValues},
      {"event", Event, "wn"},
  };
  rows.insert(rows.end(), std::begin(more), std::end(more));
  return rows;
}

}  // namespace

bool IsMotionAxis(std::string_view word) {
  for (const std::string_view axis : MotionAxes) {
    if (core::EqualIgnoringCase(axis, word)) return true;
  }
  return false;
}

const OptionTable& AnimationOptions() {
  static const std::vector<OptionRow> rows = AnimationRows();
  static const OptionTable table(rows);
  return table;
}

const OptionTable& SequenceOptions() {
  static const std::vector<OptionRow> rows = SequenceRows();
  static const OptionTable table(rows);
  return table;
}

}  // namespace tarnwick::qc

#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "model/animation_check.h"
#include "model/run_values.h"

namespace tarnwick::model {

/// Plays a checked animation forward: the values of pose_decoder.h to the last bit, in time that grows with what
/// really changes from frame to frame. Values that stand still are decoded once, and each run is looked at once.
class PosePlayer {
 public:
  /// The bones and the animation's files must outlive the player.
  PosePlayer(const core::RecordArray<StudioBone>& bones, const CheckedAnimation& animation);

  /// Goes to `frame`, which is at or behind the one before. False if no bone has another pose than it had before;
  /// the first call gives true.
  bool GoTo(int32_t frame);

  static constexpr uint8_t RotationBit = 1;
  static constexpr uint8_t PositionBit = 2;

  /// What of each bone the last GoTo changed: the bits above.
  std::span<const uint8_t> Changes() const { return m_changes; }

  /// Which of the bits come out of runs at the frame of the last GoTo; what else the bone has stands still.
  uint8_t Running(size_t bone) const { return m_running[bone]; }
  /// Whether the bone's rotation, which stands still, was read out of 48 or 64 bits.
  bool RotationPacked(size_t bone) const { return (m_running[bone] & PackedBit) != 0; }

  std::span<const Vec3> Positions() const { return m_positions; }
  std::span<const Quat> Rotations() const { return m_rotations; }

 private:
  static constexpr uint8_t PackedBit = 4;

  /// Values are taken from their runs for this many frames at a time: going through many runs by single frames is
  /// slower.
  static constexpr int32_t BlockFrames = 16;

  /// The stored values of the three axes at one frame, and a 0.
  using Stored = std::array<int16_t, 4>;

  /// The runs of the three axes of one bone's rotation or position.
  struct RunTrack {
    int32_t Bone;
    bool IsRotation;
    bool IsAligned;               // the rotation is to lie near that of the bone's alignment
    int32_t HeldUntil;            // first frame at which a value can differ
    int32_t BlockFirst;           // the frame of the first values in Block
    Stored Last;                  // values that were taken
    std::array<float, 4> Scales;  // of the stored values
    std::array<float, 4> Bases;   // what they are added to, of a delta -0, which changes nothing
    std::array<Stored, BlockFrames> Block;
    std::array<RunCursor, 3> Cursors;
  };

  struct Turn {
    int32_t Bone;
    bool IsAligned;
  };

  void Open(const std::optional<AnimData>& data, int32_t frame);
  void OpenBone(const AnimRecord& anim, int32_t frame);
  void AddTrack(const AnimRecord& anim, int64_t triple, bool isRotation, int32_t frame);
  void Advance(int32_t frame);
  /// Fills the track's block from `frame` on.
  void FillBlock(RunTrack& track, int32_t frame);
  /// Goes to `frame`. Takes the values if they differ, or come first.
  void Read(RunTrack& track, int32_t frame, bool first);
  void Take(RunTrack& track, const Stored& values);
  /// Turns the angles that Take has put aside into rotations, all at a time.
  void TurnAngles();
  void SetRotation(size_t bone, const Quat& rotation);
  void SetPosition(size_t bone, const Vec3& position);

  core::RecordArray<StudioBone> m_bones;
  const CheckedAnimation& m_animation;
  std::optional<AnimData> m_data;
  core::ImageView m_image;  // of m_data
  int32_t m_frame = -1;     // within m_data; -1 before the first pose
  int32_t m_heldUntil = 0;  // first frame at which any value can differ
  bool m_changed = false;
  std::vector<Vec3> m_positions;
  std::vector<Quat> m_rotations;
  std::vector<uint8_t> m_changes;
  std::vector<uint8_t> m_running;
  std::vector<RunTrack> m_tracks;
  size_t m_turningCount = 0;
  std::vector<Turn> m_turning;        // the bones whose new angles wait to become rotations are the first so many
  std::vector<EulerAngles> m_angles;  // of each of them
  std::vector<Quat> m_turned;
};

}  // namespace tarnwick::model

#pragma once

#include <list>
#include <memory>
#include <optional>

#include "core/trouble.h"
#include "model/animation_check.h"
#include "model/model_reader.h"
#include "model/pose_player.h"
#include "view/scene/frame_source.h"

namespace tarnwick::view {

/// Plays the animations of a loaded model. Each is checked when it is first played; some stay open.
class ModelFrames : public FrameSource {
 public:
  explicit ModelFrames(core::TroubleSink& troubles) : m_sink{&troubles}, m_reader(m_sink) {}

  /// The model; all that is loaded later is loaded through it.
  model::ModelReader& Reader() { return m_reader; }
  /// From here on nothing is told: an animation that is damaged keeps the default pose.
  void FallSilent() { m_sink.Target = nullptr; }

  void Read(int32_t animation, int32_t first, std::span<BonePose> poses) override;

 private:
  class Sink : public core::TroubleSink {
   public:
    explicit Sink(core::TroubleSink* target) : Target(target) {}
    void Tell(const core::Trouble& trouble) override {
      if (Target != nullptr) Target->Tell(trouble);
    }
    core::TroubleSink* Target;
  };

  /// An animation that has been played.
  struct Open {
    int32_t Animation = -1;
    bool IsDelta = false;
    std::optional<model::CheckedAnimation> Checked;  // nothing: damaged
    std::unique_ptr<model::PosePlayer> Player;       // of Checked
  };

  Open& OpenOf(int32_t animation);

  Sink m_sink;
  model::ModelReader m_reader;
  std::list<Open> m_open;  // the last one that was played first
};

}  // namespace tarnwick::view

#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

namespace tarnwick::decompiler {

struct AnimationSmdModel;

/// Which animations a job has exported, and under which names.
struct AnimationFiles {
  enum class Outcome {
    Written,  // begun; what becomes of it is told at the end of its stage
    NotOpened,
    NoFile,  // it has no frames, or its data do not fit; told
  };
  struct Export {
    std::string File;  // with its extension
    Outcome State = Outcome::Written;
  };

  std::unordered_map<int64_t, Export> Exports;  // by number of the animation
  /// The animation that was written last under each name, as FileKey has it: in the plain form one file can stand for
  /// several animations, and the last one is to stay.
  std::map<std::string, int64_t> LastWriters;

  std::shared_ptr<const AnimationSmdModel> Model;  // made at first need
  bool ModelSought = false;
  bool NoAnimationsTold = false;
  int DamageTold = 0;
};

}  // namespace tarnwick::decompiler

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "decompiler/job/job_context.h"
#include "model/animation_records.h"

namespace tarnwick::decompiler::sources {

/// The animations of a model as statements and files. An animation that one sequence makes from its own file, called
/// "@" and the sequence's label, belongs to that sequence; every other one has a $animation statement under its own
/// name, also where no sequence uses it. Files are begun in the order of the statements.
class Animations {
 public:
  Animations(JobContext& job, const core::RecordArray<StudioAnimDesc>& animations,
             const core::RecordArray<StudioSeqDesc>& sequences);

  /// The sequence to which animation `number` belongs; -1 for none.
  [[nodiscard]] int64_t OwnerOf(int64_t number) const { return m_owners[static_cast<size_t>(number)]; }

  /// Writes the statements of all animations below `number` that have one and were not written yet.
  void WriteUpTo(int64_t number);
  /// Writes animation `number` if it has a statement and was not written yet, and `WriteUpTo` of it.
  void Require(int64_t number);

  /// What stands behind the label of the sequence that animation `number` belongs to: the file and, a line each, the
  /// words of the animation. Nothing, told, if the animation cannot be read.
  struct Own {
    std::string File;
    std::string Words;
  };
  [[nodiscard]] std::optional<Own> WriteOwn(int64_t number, std::string_view label);

  /// The name under which statements use animation `number`; nothing if it could not be written.
  [[nodiscard]] std::optional<std::string_view> NameOf(int64_t number) const;

 private:
  struct State {
    bool Tried = false;
    bool Written = false;
  };

  void FindOwners(const core::RecordArray<StudioSeqDesc>& sequences);
  void CountLostOfStatic(int64_t number, std::string_view name);
  bool NeedDeltaBase(int64_t number);
  std::optional<Own> Write(int64_t number, std::string_view name);
  std::string Words(int64_t number, std::string_view name, bool ownBase);
  std::string TravelWords(const core::Record<StudioAnimDesc>& animation);
  std::string IkRuleWords(const core::Record<StudioAnimDesc>& animation);

  JobContext& m_job;
  core::RecordArray<StudioAnimDesc> m_animations;
  std::vector<int64_t> m_owners;
  std::vector<State> m_states;
  int64_t m_next = 0;
};

}  // namespace tarnwick::decompiler::sources

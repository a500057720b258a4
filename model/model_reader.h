#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/trouble.h"
#include "model/loaded_model.h"

namespace tarnwick::model {

/// What looking at one more record costs a reader, so that tables that overlap cannot hold it for ever.
inline constexpr int64_t RecordCost = 64;

/// A model that is being read, and what reading needs beside its files: somewhere to tell troubles, and a budget that
/// damaged tables cannot exceed. Used by one thread; what was checked may be walked by any.
class ModelReader {
 public:
  /// `troubles` and `files`, from which the model's files are read, must outlive the reader.
  explicit ModelReader(core::TroubleSink& troubles, const core::FileSource& files = core::DiskFiles())
      : m_troubles(troubles), m_files(files) {}

  /// Where the model's files come from.
  const core::FileSource& Files() const { return m_files; }

  /// The model's files; the .mdl is set before anything is read.
  LoadedModel Model;

  /// The array of `count` records at `offset` from the start of the .mdl file. Nothing, told as damage of `what` (such
  /// as "bone table"), if it does not lie inside the file.
  template <core::PackedRecord T>
  [[nodiscard]] std::optional<core::RecordArray<T>> Table(std::string_view what, int64_t offset, int64_t count) {
    auto table = Model.View().Array<T>(offset, count);
    if (!table) DamagedTable(Model.Mdl.Path(), what, offset, count, Model.View().Size());
    return table;
  }
  /// The name that `record` says stands `nameOffset` bytes behind its start. Nothing, told as damage of `what` (such as
  /// "bone name"), if there is none.
  template <core::PackedRecord T>
  [[nodiscard]] std::optional<std::string_view> NameOf(std::string_view what, const core::Record<T>& record,
                                                       int32_t nameOffset) {
    auto name = Model.NameOf(record, nameOffset);
    if (!name) DamagedName(what, record.Offset() + nameOffset);
    return name;
  }

  /// Tells that something in the file at `path` cannot be: which record, at which byte, and what is wrong with it.
  ///     hair.mdl: the bone table at byte 664 (4000000 records) runs past the end of the file (2064 bytes)
  void Damaged(const std::string& path, std::string_view what, int64_t offset, std::string_view problem);
  /// The same for a table of `count` records that does not lie inside its file of `size` bytes.
  void DamagedTable(const std::string& path, std::string_view what, int64_t offset, int64_t count, int64_t size);
  /// Tells that no name stands at `offset` of the .mdl file.
  void DamagedName(std::string_view what, int64_t offset);
  /// Tells damage of an animation. The first few of a model go to the user at once (they have a caption), the others
  /// are plain entries, since a damaged block file spoils animations by the hundred.
  void DamagedAnimation(const std::string& path, std::string_view what, int64_t offset, std::string_view problem);

  /// Takes `bytes` of output (or work worth as much) from what may be spent on this model: the limit that was set, else
  /// 256 MiB and 1,024 bytes for each byte read. No sound model comes near: a vertex line of at most 250 bytes stands
  /// for 2 bytes of index data and more, and an hour of animation for 60 bones is below 256 MiB at 15 frames a second.
  /// False, told once, when the bound is passed: the work then ends.
  [[nodiscard]] bool Spend(int64_t bytes);
  /// The bound in bytes, in place of the one that follows from the files; 0 for that one.
  void SetSpendLimit(int64_t bytes) { m_limit = bytes; }

  void Tell(const core::Trouble& trouble) { m_troubles.Tell(trouble); }
  /// Where troubles go, for readers that know no model.
  core::TroubleSink& Troubles() { return m_troubles; }
  /// Something worth knowing about the file at `path`.
  void Note(const std::string& path, std::string text);

 private:
  core::TroubleSink& m_troubles;
  const core::FileSource& m_files;
  int64_t m_limit = 0;
  int64_t m_spent = 0;
  bool m_limitTold = false;
  int m_animationsTold = 0;
};

/// The model's bones. Checked at the first call, which tells what is wrong; nothing for a damaged table.
[[nodiscard]] const Skeleton* GetSkeleton(ModelReader& reader);

}  // namespace tarnwick::model

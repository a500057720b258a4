#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "model/comparison/difference_list.h"
#include "model/model_reader.h"

namespace tarnwick::model {

/// Two models that are being compared: loaded, their skeletons and vertices to be had.
struct ComparedModels {
  ModelReader& First;
  ModelReader& Second;
  DifferenceList& Differences;
  const std::function<bool()>& Stopped;  // may be empty
  bool FirstHasPhysics = true;           // a .phy file lies beside the first

  /// Why a value that a compile takes from the collision model cannot come back; empty where it can.
  std::string_view LostWithPhysics() const { return FirstHasPhysics ? "" : "not known without the .phy file"; }

  bool IsStopped() const { return Stopped && Stopped(); }
};

/// Names a place: Place("bone", "hand") is "bone hand"; a name that is empty gives way to the number.
inline std::string Place(std::string_view kind, std::string_view name, int64_t number) {
  return std::string(kind) + " " + (name.empty() ? std::to_string(number) : std::string(name));
}

/// A path with forward slashes: either kind separates folders.
inline std::string WithSlashes(std::string_view path) {
  std::string text(path);
  std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

/// Compares the tables of `what` (in the plural) at those places of the two files: their numbers of records, then by
/// `compare(first, second, number)` each pair. A table that does not lie inside its file is told to its reader.
template <core::PackedRecord T, typename Where, typename Compare>
void CompareTables(const ComparedModels& models, ModelTable table, const std::string& what, const Where& where,
                   std::pair<int64_t, int64_t> first, std::pair<int64_t, int64_t> second, const Compare& compare) {
  models.Differences.Whole(table, "number of " + what, where, first.second, second.second);
  const auto a = models.First.Table<T>(what, first.first, first.second);
  const auto b = models.Second.Table<T>(what, second.first, second.second);
  if (!a || !b) return;
  const int64_t count = std::min(a->Count(), b->Count());
  if (!models.First.Spend(count * RecordCost)) return;
  for (int64_t i = 0; i < count; ++i) compare((*a)[i], (*b)[i], i);
}

/// The same for tables of the whole model, which stand at no place.
template <core::PackedRecord T, typename Compare>
void CompareTables(const ComparedModels& models, ModelTable table, const std::string& what,
                   std::pair<int64_t, int64_t> first, std::pair<int64_t, int64_t> second, const Compare& compare) {
  CompareTables<T>(
      models, table, what, [] { return std::string(); }, first, second, compare);
}

/// The text that `record` says stands `offset` bytes behind its start; empty for none and where it leads nowhere.
template <core::PackedRecord T>
std::string_view TextOf(const ModelReader& reader, const core::Record<T>& record, int32_t offset) {
  return offset == 0 ? std::string_view() : reader.Model.NameOf(record, offset).value_or("");
}

/// The .phy file that goes with a model in `files`, if there is one.
[[nodiscard]] std::optional<std::string> FindPhyFile(const core::FileSource& files, const std::string& mdl);

/// The words and braces of a text of keys and values, a blank between two. What stands between them does not count, nor
/// whether a word has quotes that it does not need.
[[nodiscard]] std::string KeyWords(std::string_view text);

// The tables, a kind each.
void CompareHeaders(const ComparedModels& models);
void CompareScriptTables(const ComparedModels& models);
void CompareBones(const ComparedModels& models);
void CompareMeshes(const ComparedModels& models);
void CompareAnimations(const ComparedModels& models);
void CompareSequences(const ComparedModels& models);
void CompareFaces(const ComparedModels& models);
void ComparePhysics(const ComparedModels& models);

}  // namespace tarnwick::model

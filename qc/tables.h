#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "qc/command.h"

namespace tarnwick::qc {

/// What a compile makes of a statement or an option that it knows.
enum class Support : uint8_t {
  Built,
  NotBuilt,  // what it does is not known; nothing is built from it, which a script's author is told
  NoEffect,  // of an older dialect, without meaning for this kind of model
};

/// What braces may follow a statement or an option, and what stands in them.
enum class Block : uint8_t {
  None,
  Options,          // the words of its table; the opening brace may stand on a later line
  SameLineOptions,  // the same; the opening brace stands on the statement's line
  KeyValues,        // nested keys and values
  Rows,             // rows of words, each in braces of its own
  Pairs,            // names and numbers; they may stand on the statement's line instead
  Names,            // words
};

struct OptionTable;

/// One option. The letters of `Arguments` are what follows it:
///   w a word      n a number     i a whole number     m a number; a word that is none counts as 0
///   o a number or `..`           x an axis of motion  f a mesh       a an animation's file
///   s a mesh or `blank`          v a shape file       d a procedural bone file
///   ? what follows may be missing      * any more of the kind before      L the rest of the line, whatever it is
struct OptionRow {
  std::string_view Name;
  Key Kind;
  std::string_view Arguments = {};
  const OptionTable* Options = nullptr;
  Block Braces = Block::None;
  Support State = Support::Built;
};

/// A row of names sorted without regard to case, found so.
class NameIndex {
 public:
  template <typename Row>
  explicit NameIndex(std::span<const Row> rows) {
    for (const Row& row : rows) m_names.push_back({row.Name, m_names.size()});
    Sort();
  }
  std::optional<size_t> Find(std::string_view name) const;

 private:
  struct Entry {
    std::string_view Name;
    size_t Row;
  };
  void Sort();
  std::vector<Entry> m_names;
};

/// The options of one kind of statement or block.
struct OptionTable {
  explicit OptionTable(std::span<const OptionRow> rows) : Rows(rows), m_index(rows) {}
  const OptionRow* Find(std::string_view name) const;

  std::span<const OptionRow> Rows;

 private:
  NameIndex m_index;
};

/// One statement; the fields are as an option's.
struct StatementRow {
  std::string_view Name;
  Command Kind;
  std::string_view Arguments = {};
  const OptionTable* Options = nullptr;
  Block Braces = Block::None;
  Support State = Support::Built;
};

/// All statements but those that the words are made by ($include, $definemacro, $definevariable).
std::span<const StatementRow> StatementRows();
/// The statement of that name in any case, or nothing.
const StatementRow* FindStatement(std::string_view name);

/// The options of $animation alone, of $sequence, and those that a $cmdlist may hold.
const OptionTable& AnimationOptions();
const OptionTable& SequenceOptions();
/// The lines of a collision block and of a $model block.
const OptionTable& CollisionOptions();
const OptionTable& FaceOptions();

}  // namespace tarnwick::qc

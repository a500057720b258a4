#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/file_store.h"
#include "qc/command.h"
#include "qc/expression.h"
#include "qc/messages.h"
#include "qc/script_files.h"
#include "qc/source_finder.h"
#include "qc/word_stream.h"

namespace tarnwick::qc {

/// One argument of a statement or an option, as typed.
struct Argument {
  std::string_view Text;
  Place At;
  double Number = 0;       // where a number is wanted; `..` is not a number (NaN)
  int32_t Source = -1;     // where a file is wanted: its place in Script::Sources, if it was found or looked for
  int32_t Statement = -1;  // where an animation is named: the statement that declares it
  bool Quoted = false;
};

/// A word of a statement's table with what belongs to it.
struct Option {
  Key Kind{};
  Place At;
  std::string_view Name;  // as typed
  std::vector<Argument> Arguments;
  std::vector<Option> Options;
  int32_t Rule = -1;  // Key::Rule: its place in Script::Rules
  int32_t Text = -1;  // Key::KeyValues: its place in Script::KeyValues

  /// The number of argument `i`; `missing` if there are fewer.
  double Number(size_t i, double missing = 0) const { return i < Arguments.size() ? Arguments[i].Number : missing; }
};

/// One statement, with its arguments in the order of its row in the table (`statement_table.cpp`) and its options in
/// script order. What a statement holds besides:
///   $weightlist, $defaultweightlist   `Rows`: a bone and its weight each
///   $texturegroup                     `Rows`: a skin's materials each, the first is the head
///   $keyvalues, $collisiontext        `Text`
///   $sequence                         Key::Source options: its animations and files; ACT_ words are Key::Activity
///   a $model's flexcontroller         arguments: its group, then its names
struct Statement {
  Command Kind{};
  Place At;
  std::string_view Name;  // as typed
  std::vector<Argument> Arguments;
  std::vector<Option> Options;
  std::vector<std::vector<Argument>> Rows;
  int32_t Text = -1;  // its place in Script::KeyValues

  double Number(size_t i, double missing = 0) const { return i < Arguments.size() ? Arguments[i].Number : missing; }
};

/// A key with its value, or with the keys in its braces.
struct KeyValue {
  std::string_view Key;
  std::string_view Value;
  Place At;
  bool IsBlock = false;
  std::vector<KeyValue> Children;
};

/// A file that the script names, once however often and however it is written.
struct Source {
  std::string Path;       // as it is opened; empty if it was not found
  std::string_view Name;  // as first typed
  SourceKind Kind = SourceKind::Mesh;
  Place At;
};

/// A script as read. All views lie in `Files`.
struct Script {
  ScriptFiles Files;
  std::vector<Statement> Statements;
  std::vector<std::vector<KeyValue>> KeyValues;
  std::vector<FlexRule> Rules;
  std::vector<Source> Sources;
  Messages Told;

  /// Whether nothing was wrong.
  bool Sound() const { return Told.ErrorCount() == 0; }
  /// The last statement of a kind, which is the one that counts; nothing if there is none.
  const Statement* Last(Command kind) const;
};

struct ReadOptions {
  /// Whether source files are looked for in `Files`; each that is not there is an error. Included scripts are in any
  /// case.
  bool FindSources = true;
  /// Has the scripts and the sources; nothing: the disk.
  const core::FileStore* Files = nullptr;
  /// Reads files in place of `Files`; included scripts are then taken by the names that they are given.
  FileReader Read;
  ScriptLimits Limits;
};

/// Reads the script at `path` with all that it includes. Every message that its author should see is in `Told`; what
/// could be read is there, whatever else was wrong. A script that cannot be opened has one message and nothing else.
Script ReadScript(const std::string& path, const ReadOptions& options = {});
/// The same for a script in memory; `path` tells its name and the folder that it is read as from.
Script ReadScriptText(std::string_view text, const std::string& path, const ReadOptions& options = {});

/// The model that the script at `path` makes: the word behind its last $modelname, with included scripts and variables
/// taken in. Nothing if the script cannot be read or names no model.
std::optional<std::string> FindModelName(const std::string& path);

}  // namespace tarnwick::qc

#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "qc/script.h"
#include "qc/source_finder.h"
#include "qc/tables.h"
#include "qc/word_stream.h"

namespace tarnwick::qc {

/// Turns the words of a script into its statements.
class ScriptReader {
 public:
  /// `finder` looks for source files; nothing: they are not looked for.
  ScriptReader(Script& script, WordStream& words, SourceFinder* finder)
      : m_script(script), m_words(words), m_finder(finder), m_told(script.Told) {}

  void ReadAll();

 private:
  /// What words are read for: messages name it, and its tables decide where it ends.
  struct Context {
    std::string_view Name;  // of the statement, as the table writes it
    const OptionTable* Options = nullptr;
    const OptionTable* Outer = nullptr;  // the table of the block around, for an option's own options
    bool InBlock = false;
    bool InGroup = false;  // in braces of their own inside of the block
  };
  enum class BlockEnd { NotYet, Closed, Lost };

  // script_reader.cpp: statements
  void ReadStatement(const Word& word, const StatementRow& row);
  void ReadRest(const StatementRow& row, Statement& statement, const Context& context);
  void ReadBraces(const StatementRow& row, Statement& statement, const Context& context);
  void TellState(Support state, std::string_view name, const Place& at);
  void TellNoMesh(const Statement& statement);
  bool Check(const Statement& statement);
  void Unknown(const Word& word);
  void SkipStatement(uint32_t column);
  void SkipExtraWords(const Context& context);
  void ActOnFolders(const Statement& statement);

  // name_checks.cpp
  void CheckNames();

  // option_reader.cpp: arguments and options
  bool ReadArguments(std::string_view letters, const Word& of, const Context& context, std::vector<Argument>& out);
  bool CanTake(const Context& context, char letter, bool optional, bool repeated);
  void TakeArgument(char letter, std::vector<Argument>& out);
  void SetNumber(char letter, Argument& argument);
  bool FollowsFile(const Context& context);
  bool NamesAnimation(const Context& context, const Word& word) const;
  bool ReadOption(const Context& context, std::vector<Option>& out);
  void ReadOptionBlock(const Place& open, Context context, std::vector<Option>& out);
  void ReadSubOptions(const OptionRow& row, const Context& context, Option& option);
  bool CheckJointValue(const OptionRow& row, Option& option);
  bool BelongsToEyelid(const std::vector<Option>& before);
  bool CheckConstraint(const Option& option);
  bool ReadChoice(const Context& context, std::vector<Option>& out);
  bool ReadEvent(const Context& context, Option& option);
  bool ReadController(const Context& context, Option& option);
  void ReadRule(std::vector<Option>& out);
  void ReadFreeWord(const Context& context, std::vector<Option>& out);
  void UnknownOption(const Context& context);
  bool EndsStatement(const Word& word) const;

  // block_reader.cpp: blocks that hold no options
  int32_t ReadKeyValues(const Place& open);
  void ReadRows(const Place& open, std::vector<std::vector<Argument>>& rows);
  void ReadPairs(const Context& context, bool braces, const Place& open, std::vector<std::vector<Argument>>& rows);
  void ReadNames(const Place& open, std::vector<Argument>& names);
  std::vector<KeyValue> ReadKeys(const Place& open, int depth);
  void SkipBlock();
  BlockEnd EndOfBlock(const Place& open);

  // source_reader.cpp: files and animations
  bool FindSource(SourceKind kind, Argument& argument, bool tell = true);
  void TellUnknownSource(const Context& context, const Argument& argument);
  void TellUnknownSources();
  int32_t FindAnimation(std::string_view name) const;
  void Declare(const Statement& statement);

  Argument AsArgument(const Word& word) const { return {word.Text, word.At, 0, -1, -1, word.Quoted}; }

  Script& m_script;
  WordStream& m_words;
  SourceFinder* m_finder;
  Messages& m_told;
  std::unordered_map<std::string, std::string> m_namedBefore;  // paths by names as typed, but for case and ending
  std::unordered_map<std::string, int32_t> m_sources;  // by kind and path, or by kind and name where there is none
  std::unordered_map<std::string_view, int32_t> m_animations;
  std::unordered_map<std::string, int32_t> m_animationsInSmall;
  std::vector<std::pair<std::string_view, Message>>
      m_unknown;  // sequences' words that were nothing when they were read
};

}  // namespace tarnwick::qc

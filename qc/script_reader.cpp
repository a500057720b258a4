#include "qc/script_reader.h"

#include <algorithm>
#include <utility>

#include "core/paths.h"

namespace tarnwick::qc {

using core::TroubleKind;

void ScriptReader::ReadAll() {
  bool lost = false;  // whether words that begin no statement were told since the last statement
  while (const Word* next = m_words.Peek()) {
    if (m_told.Full()) return;
    const Word word = *next;
    const StatementRow* row = FindStatement(word.Text);
    if (row != nullptr) {
      m_words.Take();
      ReadStatement(word, *row);
      lost = false;
    } else if (word.Is('}')) {
      m_words.Take();
      if (!lost) m_told.Error(TroubleKind::Damaged, word.At, "this } closes nothing");
      lost = true;
    } else if (word.Text.starts_with('$')) {
      m_words.Take();
      Unknown(word);
      SkipStatement(word.At.Column);
      lost = false;
    } else {
      if (!lost) {
        m_told.Error(TroubleKind::Unknown, word.At,
                     word.Is('{') ? "this { opens the block of no statement"
                                  : Shown(word.Text) + " stands where a statement should begin");
      }
      lost = true;
      SkipStatement(word.At.Column);
    }
  }
  CheckNames();
}

bool ScriptReader::EndsStatement(const Word& word) const {
  if (!word.Text.starts_with('$')) return false;
  return word.FirstOfLine || (!word.Quoted && FindStatement(word.Text) != nullptr);
}

/// Tells that a statement is not known.
void ScriptReader::Unknown(const Word& word) {
  if (CollisionOptions().Find(word.Text) != nullptr) {
    return m_told.Error(TroubleKind::Unknown, word.At,
                        Shown(word.Text) + " belongs into the braces of $collisionmodel or $collisionjoints");
  }
  NearName near(word.Text);
  for (const StatementRow& row : StatementRows()) near.Offer(row.Name);
  m_told.Error(TroubleKind::Unknown, word.At,
               "the statement " + Shown(word.Text) + " is not known" + DidYouMean(near.Best()));
}

/// Passes over words up to the line that begins the next statement. Within braces that is one that stands no further in
/// than `column`: their end is missing then, where what stands further in is a part of what is passed over.
void ScriptReader::SkipStatement(uint32_t column) {
  size_t depth = 0;
  while (const Word* word = m_words.Peek()) {
    if (word->FirstOfLine && word->Text.starts_with('$')) {
      if (depth == 0 || (word->At.Column <= column && FindStatement(word->Text) != nullptr)) return;
    }
    if (word->Is('{')) ++depth;
    if (word->Is('}') && depth > 0) --depth;
    m_words.Take();
  }
}

void ScriptReader::TellState(Support state, std::string_view name, const Place& at) {
  if (state == Support::NotBuilt) {
    m_told.Warning(TroubleKind::Lost, at, std::string(name) + " is known, but nothing is built from it");
  } else if (state == Support::NoEffect) {
    m_told.Note(TroubleKind::Lost, at, std::string(name) + " has no effect on this kind of model");
  }
}

void ScriptReader::ReadStatement(const Word& word, const StatementRow& row) {
  Statement statement{row.Kind, word.At, word.Text, {}, {}, {}, -1};
  Context context{row.Name, row.Options, nullptr, false, false};
  TellState(row.State, row.Name, word.At);
  bool whole = ReadArguments(row.Arguments, word, context, statement.Arguments);
  const StatementRow* as = &row;
  if (whole && (row.Kind == Command::Body || row.Kind == Command::Model) && statement.Arguments.size() == 1) {
    const Word* next = m_words.Peek();
    if (next != nullptr && next->Is('{')) {  // choices in braces: a group by another name
      as = FindStatement("$bodygroup");
      statement.Kind = as->Kind;
      context.Options = as->Options;
    } else {
      whole = ReadArguments("f", word, context, statement.Arguments);
    }
  }
  if (whole && row.Kind == Command::Sequence && FollowsFile(context)) ReadFreeWord(context, statement.Options);
  ReadRest(*as, statement, context);
  if (!whole) TellNoMesh(statement);
  if (!whole || !Check(statement)) return;
  ActOnFolders(statement);
  m_script.Statements.push_back(std::move(statement));
  Declare(m_script.Statements.back());
}

void ScriptReader::ReadRest(const StatementRow& row, Statement& statement, const Context& context) {
  bool closed = false;
  bool told = false;
  const bool takesFreeWords = row.Options == &SequenceOptions();
  while (const Word* word = m_words.Peek()) {
    if (word->Is('{') && row.Braces != Block::None) {
      if (closed && word->FirstOfLine) break;
      if (word->FirstOfLine && (row.Braces == Block::SameLineOptions || row.Braces == Block::Pairs)) {
        m_told.Error(TroubleKind::Refused, word->At,
                     "the { of " + std::string(row.Name) + " must stand on the line of the statement");
      }
      ReadBraces(row, statement, context);
      closed = true;
      continue;
    }
    if (word->Is('{') || word->Is('}') || EndsStatement(*word)) break;
    const bool pairs = row.Braces == Block::Pairs && !closed && !word->FirstOfLine;
    if (row.Options == nullptr && !pairs) break;
    if (word->FirstOfLine) {
      if (closed || (!takesFreeWords && row.Options->Find(word->Text) == nullptr)) break;
      if (!told) {
        m_told.Warning(TroubleKind::Refused, word->At,
                       "this line begins with no statement; it is taken as more of the " + std::string(row.Name) +
                           " of line " + std::to_string(statement.At.Line));
      }
      told = true;
    }
    if (pairs) {
      ReadPairs(context, false, statement.At, statement.Rows);
    } else if (!ReadOption(context, statement.Options)) {
      takesFreeWords ? ReadFreeWord(context, statement.Options) : UnknownOption(context);
    }
  }
  SkipExtraWords(context);
}

void ScriptReader::ReadBraces(const StatementRow& row, Statement& statement, const Context& context) {
  const Place open = m_words.Take().At;
  switch (row.Braces) {
    case Block::KeyValues:
      statement.Text = ReadKeyValues(open);
      break;
    case Block::Rows:
      ReadRows(open, statement.Rows);
      break;
    case Block::Pairs:
      ReadPairs(context, true, open, statement.Rows);
      break;
    default:
      ReadOptionBlock(open, context, statement.Options);
      break;
  }
}

/// Words behind a statement that is complete.
void ScriptReader::SkipExtraWords(const Context& context) {
  const Word* word = m_words.Peek();
  const auto extra = [&] {
    return word != nullptr && !word->FirstOfLine && !word->Is('{') && !word->Is('}') && !EndsStatement(*word);
  };
  if (!extra()) return;
  m_told.Warning(TroubleKind::Refused, word->At,
                 Shown(word->Text) + " is one word too many for " + std::string(context.Name) +
                     "; the rest of the line is passed over");
  for (; extra(); word = m_words.Peek()) m_words.Take();
}

/// Tells a body that names no mesh. It stands among the sources as one that is nowhere: what goes on without the body
/// would be another model.
void ScriptReader::TellNoMesh(const Statement& statement) {
  const bool isBody = statement.Kind == Command::Body || statement.Kind == Command::Model;
  if (!isBody || statement.Arguments.empty()) return;
  const Argument& name = statement.Arguments[0];
  m_script.Sources.push_back({"", "", SourceKind::Mesh, name.At});
  m_told.Error(TroubleKind::Missing, name.At,
               "the body " + Shown(name.Text) + " has no mesh; the name of one stands behind its own");
}

/// What a row's letters cannot say. False: the statement is not kept.
bool ScriptReader::Check(const Statement& statement) {
  if (statement.Kind == Command::DefineBone) {
    const size_t numbers = statement.Arguments.size() - 2;
    if (numbers != 6 && numbers != 9 && numbers != 12) {
      m_told.Error(TroubleKind::Refused, statement.At,
                   "$definebone takes 6, 9 or 12 numbers, " + std::to_string(numbers) + " are given");
      return false;
    }
  }
  if (statement.Kind == Command::Sequence) {
    const bool has = std::any_of(statement.Options.begin(), statement.Options.end(),
                                 [](const Option& option) { return option.Kind == Key::Source; });
    if (!has) {
      m_told.Error(TroubleKind::Refused, statement.At,
                   "the sequence " + Shown(statement.Arguments[0].Text) + " names no animation and no file");
      return false;
    }
  }
  const bool adds =
      statement.Kind == Command::Continue || statement.Kind == Command::Append || statement.Kind == Command::Prepend;
  if (adds && FindAnimation(statement.Arguments[0].Text) < 0) {
    NearName near(statement.Arguments[0].Text);
    for (const auto& [name, number] : m_animations) near.Offer(name);
    m_told.Error(
        TroubleKind::Missing, statement.Arguments[0].At,
        "no sequence or animation " + Shown(statement.Arguments[0].Text) + " stands above" + DidYouMean(near.Best()));
    return false;
  }
  return true;
}

/// Statements that change where files are looked for.
void ScriptReader::ActOnFolders(const Statement& statement) {
  if (m_finder == nullptr) return;
  bool found = true;
  switch (statement.Kind) {
    case Command::Cd:
      found = m_finder->SetFolder(statement.Arguments[0].Text);
      break;
    case Command::PushD:
      found = m_finder->Push(statement.Arguments[0].Text);
      break;
    case Command::AddSearchDir:
      found = m_finder->AddSearchFolder(statement.Arguments[0].Text);
      break;
    case Command::PopD:
      if (!m_finder->Pop()) {
        m_told.Warning(TroubleKind::Refused, statement.At, "there is no $pushd that this $popd could take back");
      }
      break;
    default:
      break;
  }
  if (!found) {
    m_told.Warning(TroubleKind::Missing, statement.Arguments[0].At,
                   "there is no folder " + Shown(statement.Arguments[0].Text) + "; files are looked for in " +
                       m_finder->ShownFolder());
  }
}

}  // namespace tarnwick::qc

// Arguments and options of statements.

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <utility>

#include "core/number_parse.h"
#include "core/paths.h"
#include "qc/option_tables.h"
#include "qc/script_reader.h"

namespace tarnwick::qc {

using core::TroubleKind;

namespace {

constexpr std::string_view OpenEnd = "..";

bool IsNumberLetter(char letter) {
  return letter == 'n' || letter == 'i' || letter == 'm' || letter == 'o';
}

bool LooksLikeNumber(std::string_view text) {
  if (text.empty()) return false;
  const size_t start = text[0] == '-' || text[0] == '+' ? 1 : 0;
  const char first = start < text.size() ? text[start] : '\0';
  const char second = start + 1 < text.size() ? text[start + 1] : '\0';
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  return isDigit(first) || (first == '.' && isDigit(second));
}

bool IsActivity(std::string_view text) {
  return text.size() > 4 && core::EqualIgnoringCase(text.substr(0, 4), "ACT_");
}

bool Knows(const OptionTable* table, std::string_view word) {
  return table != nullptr && table->Find(word) != nullptr;
}

std::string Count(size_t count) {
  return std::to_string(count) + (count == 1 ? " argument" : " arguments");
}

}  // namespace

/// Whether the next word may be an argument of that letter.
bool ScriptReader::CanTake(const Context& context, char letter, bool optional, bool repeated) {
  const Word* word = m_words.Peek();
  if (word == nullptr || word->Is('{') || word->Is('}') || EndsStatement(*word)) return false;
  if (word->FirstOfLine && (optional || (repeated && context.InBlock))) return false;
  const bool known = !word->Quoted && (Knows(context.Options, word->Text) || Knows(context.Outer, word->Text));
  if (IsNumberLetter(letter)) {
    if (LooksLikeNumber(word->Text) || (letter == 'o' && word->Text == OpenEnd)) return true;
    return !optional && !repeated && !known;
  }
  if (letter == 'x') return IsMotionAxis(word->Text);
  return !known || (!optional && !repeated);
}

void ScriptReader::SetNumber(char letter, Argument& argument) {
  if (letter == 'o' && argument.Text == OpenEnd) {
    argument.Number = std::numeric_limits<double>::quiet_NaN();
    return;
  }
  size_t length = 0;
  if (LooksLikeNumber(argument.Text)) argument.Number = core::ParseReal(argument.Text, &length);
  if (length == 0 && letter == 'm') {
    m_told.Warning(TroubleKind::Refused, argument.At, Shown(argument.Text) + " is no number; it counts as 0");
  } else if (length == 0) {
    m_told.Error(TroubleKind::Refused, argument.At, Shown(argument.Text) + " stands where a number should");
  } else if (std::abs(argument.Number) > double{FLT_MAX}) {
    m_told.Error(TroubleKind::Limit, argument.At, "the number " + Shown(argument.Text) + " is too large");
    argument.Number = 0;
  } else if (length < argument.Text.size()) {
    m_told.Warning(TroubleKind::Refused, argument.At,
                   "the number " + Shown(argument.Text) + " is read up to " + Shown(argument.Text.substr(length)));
  }
}

void ScriptReader::TakeArgument(char letter, std::vector<Argument>& out) {
  Argument argument = AsArgument(m_words.Take());
  if (IsNumberLetter(letter)) {
    SetNumber(letter, argument);
  } else if (letter == 'f' || (letter == 's' && !core::EqualIgnoringCase(argument.Text, "blank"))) {
    FindSource(SourceKind::Mesh, argument);
  } else if (letter == 'a') {
    FindSource(SourceKind::Animation, argument);
  } else if (letter == 'v') {
    FindSource(SourceKind::Shapes, argument);
  } else if (letter == 'd') {
    FindSource(SourceKind::ProceduralBones, argument);
  }
  out.push_back(argument);
}

/// Reads what the letters of a row ask for. False, and told, if something is missing.
bool ScriptReader::ReadArguments(std::string_view letters, const Word& of, const Context& context,
                                 std::vector<Argument>& out) {
  bool optional = false;
  char before = 'w';
  const size_t already = out.size();
  for (const char letter : letters) {
    if (letter == '?') {
      optional = true;
    } else if (letter == 'L') {
      while (const Word* word = m_words.Peek()) {
        if (word->FirstOfLine || !CanTake(context, 'w', true, false)) break;
        TakeArgument('w', out);
      }
    } else if (letter == '*') {
      while (CanTake(context, before, optional, true)) TakeArgument(before, out);
    } else if (CanTake(context, letter, optional, false)) {
      TakeArgument(letter, out);
      before = letter;
    } else if (optional) {
      break;
    } else {
      const std::string_view needed = letters.substr(0, letters.find('?'));
      const size_t count = already + needed.size() - static_cast<size_t>(std::count(needed.begin(), needed.end(), '*'));
      m_told.Error(TroubleKind::Refused, of.At,
                   std::string(of.Text) + " needs " + Count(std::max(count, out.size() + 1)) + ", " +
                       std::to_string(out.size()) + (out.size() == 1 ? " is given" : " are given"));
      return false;
    }
  }
  return true;
}

/// Whether a quoted word of a sequence that reads as an option is the name of an animation above.
bool ScriptReader::NamesAnimation(const Context& context, const Word& word) const {
  if (!word.Quoted || context.Options != &SequenceOptions()) return false;
  const auto found = m_animations.find(word.Text);
  return found != m_animations.end() &&
         m_script.Statements[static_cast<size_t>(found->second)].Kind == Command::Animation;
}

/// Whether the word behind a sequence's name, which reads as an option, is the sequence's file or animation all the
/// same ("$sequence idle post"), as one of that name is there.
bool ScriptReader::FollowsFile(const Context& context) {
  const Word* word = m_words.Peek();
  if (word == nullptr || word->FirstOfLine || !Knows(context.Options, word->Text)) return false;
  const auto found = m_animations.find(word->Text);
  if (found != m_animations.end() &&
      m_script.Statements[static_cast<size_t>(found->second)].Kind == Command::Animation) {
    return true;
  }
  return m_finder != nullptr && m_finder->Find(word->Text, SourceKind::Animation).Path.has_value();
}

/// Reads one option if the next word is one.
bool ScriptReader::ReadOption(const Context& context, std::vector<Option>& out) {
  const Word* next = m_words.Peek();
  if (context.Options == &FaceOptions() && next->Text.starts_with('%')) {
    ReadRule(out);
    return true;
  }
  const OptionRow* row = context.Options->Find(next->Text);
  if (row == nullptr || NamesAnimation(context, *next)) return false;
  const Word word = m_words.Take();
  TellState(row->State, word.Text, word.At);
  Option option;
  option.Kind = row->Kind;
  option.At = word.At;
  option.Name = word.Text;
  Context inner = context;
  inner.Outer = context.Options;
  inner.Options = row->Options;
  bool whole = true;
  if (row->Kind == Key::Event) {
    whole = ReadEvent(context, option);
  } else if (row->Kind == Key::FlexController) {
    whole = ReadController(inner, option);
  } else {
    std::string_view letters = row->Arguments;
    if (row->Kind == Key::Eyeball && context.Options == &FaceOptions() && CanTake(inner, letters[0], false, false)) {
      TakeArgument(letters[0], option.Arguments);
      letters.remove_prefix(1);
      if (BelongsToEyelid(out)) {
        out.back().Options.push_back(std::move(option));
        return true;
      }
    }
    whole = ReadArguments(letters, word, inner, option.Arguments);
    whole = whole && CheckJointValue(*row, option) && CheckConstraint(option);
    ReadSubOptions(*row, context, option);
    // Names stand behind the word or in a block; a block behind names is another option's, such as an event.
    const bool hasBlock = row->Braces != Block::None && (row->Braces != Block::Names || option.Arguments.empty());
    const Word* brace = hasBlock ? m_words.Peek() : nullptr;
    if (brace != nullptr && brace->Is('{')) {
      const Place open = m_words.Take().At;
      inner.Name = row->Name;
      inner.Outer = nullptr;
      if (row->Braces == Block::KeyValues) {
        option.Text = ReadKeyValues(open);
      } else if (row->Braces == Block::Names) {
        ReadNames(open, option.Arguments);
      } else {
        ReadOptionBlock(open, inner, option.Options);
      }
    }
  }
  if (whole) out.push_back(std::move(option));
  return true;
}

/// Whether `eyeball NAME`, which was read, is a word of the eyelid ahead of it: on a line of its own with nothing more,
/// behind a lid that names no eyeball yet.
bool ScriptReader::BelongsToEyelid(const std::vector<Option>& before) {
  if (before.empty() || before.back().Kind != Key::Eyelid) return false;
  const auto& words = before.back().Options;
  if (std::any_of(words.begin(), words.end(), [](const Option& option) { return option.Kind == Key::Eyeball; })) {
    return false;
  }
  const Word* next = m_words.Peek();
  return next == nullptr || next->FirstOfLine || next->Is('}');
}

/// A value of a joint stands behind its bone, or alone, for all of them. False, and told, if there is none.
bool ScriptReader::CheckJointValue(const OptionRow& row, Option& option) {
  const bool isJoint = row.Options == nullptr && row.Arguments == "w?m";
  if (!isJoint || option.Arguments.size() != 1) return true;
  if (LooksLikeNumber(option.Arguments[0].Text)) {
    SetNumber('m', option.Arguments[0]);
    return true;
  }
  m_told.Error(TroubleKind::Refused, option.At, std::string(row.Name) + " needs a number behind its bone");
  return false;
}

/// A limit of a joint names an axis and what the joint may do about it. False, and told, if it does not.
bool ScriptReader::CheckConstraint(const Option& option) {
  if (option.Kind != Key::JointConstrain) return true;
  const auto isOneOf = [&](const Argument& argument, std::initializer_list<std::string_view> words) {
    const auto same = [&](std::string_view word) { return core::EqualIgnoringCase(word, argument.Text); };
    return std::any_of(words.begin(), words.end(), same);
  };
  const Argument &axis = option.Arguments[1], &kind = option.Arguments[2];
  if (!isOneOf(axis, {"x", "y", "z"})) {
    m_told.Warning(TroubleKind::Refused, axis.At,
                   Shown(axis.Text) + " is no axis of a joint (x, y or z); the line is passed over");
    return false;
  }
  if (!isOneOf(kind, {"free", "fixed", "limit"})) {
    m_told.Warning(
        TroubleKind::Refused, kind.At,
        Shown(kind.Text) + " is nothing that a joint can be (free, fixed or limit); the line is passed over");
    return false;
  }
  if (isOneOf(kind, {"limit"}) && option.Arguments.size() < 5) {
    m_told.Warning(TroubleKind::Refused, kind.At, "a limit of a joint needs a least and a largest angle");
  }
  return true;
}

/// Options of an option: on its line, and in a block on later lines too while the block's own table has no such word.
void ScriptReader::ReadSubOptions(const OptionRow& row, const Context& context, Option& option) {
  if (row.Options == nullptr || row.Braces != Block::None) return;
  Context inner = context;
  inner.Options = row.Options;
  inner.Outer = context.Options;
  while (const Word* word = m_words.Peek()) {
    if (row.Options->Find(word->Text) == nullptr) return;
    if (word->FirstOfLine && (!context.InBlock || Knows(context.Options, word->Text))) return;
    ReadOption(inner, option.Options);
  }
}

/// The words of a block behind its brace, up to the brace that closes it.
void ScriptReader::ReadOptionBlock(const Place& open, Context context, std::vector<Option>& out) {
  context.InBlock = true;
  const bool takesFreeWords = context.Options == &SequenceOptions();
  std::vector<Place> opened = {open};
  while (!m_told.Full()) {
    const BlockEnd end = EndOfBlock(opened.back());
    if (end == BlockEnd::Lost) return;
    if (end == BlockEnd::Closed) {
      opened.pop_back();
      if (opened.empty()) return;
      continue;
    }
    context.InGroup = opened.size() > 1;
    const Word* word = m_words.Peek();
    if (word->Is('{')) {
      const Place at = m_words.Take().At;
      if (takesFreeWords && opened.size() == 1) {
        opened.push_back(at);
      } else {
        m_told.Error(TroubleKind::Damaged, at, "this { opens no block of " + std::string(context.Name));
        SkipBlock();
      }
    } else if (!ReadOption(context, out) && !(context.Options == &BodyGroupOptions() && ReadChoice(context, out))) {
      takesFreeWords ? ReadFreeWord(context, out) : UnknownOption(context);
    }
  }
}

/// A mesh of a group without the word ahead of it. False if the next word is no mesh that is there.
bool ScriptReader::ReadChoice(const Context& context, std::vector<Option>& out) {
  Argument mesh = AsArgument(*m_words.Peek());
  if (m_finder == nullptr || !FindSource(SourceKind::Mesh, mesh, false)) return false;
  const Word word = m_words.Take();
  const OptionRow& row = *context.Options->Find("studio");
  Option option;
  option.Kind = row.Kind;
  option.At = word.At;
  option.Name = word.Text;
  option.Arguments.push_back(mesh);
  ReadSubOptions(row, context, option);
  out.push_back(std::move(option));
  return true;
}

/// Tells that a word is no option here and passes over what may belong to it.
void ScriptReader::UnknownOption(const Context& context) {
  const Word word = m_words.Take();
  std::string text = Shown(word.Text) + " is no word of " + std::string(context.Name);
  if (context.Options == &AnimationOptions() && Knows(&SequenceOptions(), word.Text)) {
    text += "; it belongs to $sequence";
  } else {
    NearName near(word.Text);
    for (const OptionRow& row : context.Options->Rows) near.Offer(row.Name);
    text += DidYouMean(near.Best());
  }
  m_told.Error(TroubleKind::Unknown, word.At, std::move(text));
  while (const Word* next = m_words.Peek()) {
    if (next->FirstOfLine || next->Is('{') || !CanTake(context, 'w', true, false)) break;
    m_words.Take();
  }
  const Word* next = context.InBlock ? m_words.Peek() : nullptr;
  if (next != nullptr && next->Is('{')) {
    m_words.Take();
    SkipBlock();
  }
}

/// A word of a sequence that is no option: an activity, an animation or a file.
void ScriptReader::ReadFreeWord(const Context& context, std::vector<Option>& out) {
  const Word word = m_words.Take();
  Option option;
  option.Kind = Key::Source;
  option.At = word.At;
  option.Name = word.Text;
  option.Arguments.push_back(AsArgument(word));
  Argument& argument = option.Arguments.front();
  argument.Statement = FindAnimation(word.Text);
  const bool isAnimation = argument.Statement >= 0 &&
                           m_script.Statements[static_cast<size_t>(argument.Statement)].Kind == Command::Animation;
  if (IsActivity(word.Text) && !isAnimation) {
    option.Kind = Key::Activity;
    argument.Statement = -1;
    if (CanTake(context, 'i', true, false)) TakeArgument('i', option.Arguments);
  } else if (!isAnimation) {
    // A sequence may give its animation too, but a file of that name goes first.
    const int32_t sequence = std::exchange(argument.Statement, -1);
    const bool found = FindSource(SourceKind::Animation, argument, false);
    if (!found && sequence >= 0) {
      argument.Statement = sequence;
    } else if (!found && m_finder != nullptr) {
      TellUnknownSource(context, argument);
    }
  }
  out.push_back(std::move(option));
}

/// A sequence's word that is nothing: the name nearest to it of all that it could have been is offered.
void ScriptReader::TellUnknownSource(const Context& context, const Argument& argument) {
  if (m_unknown.size() > Messages::Most) return;  // more are not told
  NearName near(argument.Text);
  near.Offer(m_finder->Find(argument.Text, SourceKind::Animation).Nearest);
  for (const OptionRow& row : context.Options->Rows) near.Offer(row.Name);
  for (const auto& [name, number] : m_animations) near.Offer(name);
  m_unknown.push_back(
      {argument.Text,
       {core::Severity::Error, TroubleKind::Missing, argument.At,
        Shown(argument.Text) + " is no word of " + std::string(context.Name) +
            ", no animation declared above and no file in " + m_finder->ShownFolder() + DidYouMean(near.Best())}});
}

/// An animation that stands further down is told as that.
void ScriptReader::TellUnknownSources() {
  for (const auto& [name, message] : m_unknown) {
    const bool isBelow = FindAnimation(name) >= 0;
    m_told.Error(message.Kind, message.At,
                 isBelow
                     ? "the animation " + Shown(name) + " stands below the sequence that shows it; it must stand above"
                     : message.Text);
  }
}

/// `event NAME FRAME "options"`, most often in braces of its own.
bool ScriptReader::ReadEvent(const Context& context, Option& option) {
  Context inner = context;
  inner.Outer = nullptr;
  if (context.InGroup) inner.Options = nullptr;  // all words up to the brace are the event's
  while (option.Arguments.size() < 2 && CanTake(inner, option.Arguments.empty() ? 'w' : 'n', false, false)) {
    TakeArgument(option.Arguments.empty() ? 'w' : 'n', option.Arguments);
  }
  if (option.Arguments.size() < 2) {
    m_told.Error(TroubleKind::Refused, option.At, "an event needs a number or a name, and a frame");
    return false;
  }
  if (context.InGroup ? CanTake(inner, 'w', false, false) : CanTake(inner, 'w', true, false)) {
    TakeArgument('w', option.Arguments);
  }
  bool told = false;
  while (context.InGroup && CanTake(inner, 'w', false, false)) {
    const Word word = m_words.Take();
    if (!std::exchange(told, true)) {
      m_told.Warning(TroubleKind::Refused, word.At, Shown(word.Text) + " is one word too many for an event");
    }
  }
  return true;
}

/// `flexcontroller GROUP NAME... [range MIN MAX] [default V]`, the bracketed ahead of the names or behind them.
bool ScriptReader::ReadController(const Context& context, Option& option) {
  if (CanTake(context, 'w', false, false)) TakeArgument('w', option.Arguments);
  while (const Word* word = m_words.Peek()) {
    const bool known = Knows(context.Options, word->Text);
    if (word->FirstOfLine && option.Arguments.size() > 1 && !known) break;
    if (!word->Quoted && word->Text.starts_with('%')) break;
    if (known) {
      Context inner = context;
      ReadOption(inner, option.Options);
    } else if (!CanTake(context, 'w', false, false)) {
      break;
    } else if (!word->Quoted && LooksLikeNumber(word->Text) && !option.Arguments.empty()) {
      const Word number = m_words.Take();
      m_told.Warning(TroubleKind::Refused, number.At,
                     Shown(number.Text) +
                         " stands where the name of a flexcontroller should; a range is `range "
                         "MINIMUM MAXIMUM`");
    } else {
      TakeArgument('w', option.Arguments);
    }
  }
  if (option.Arguments.size() > 1) return true;
  m_told.Error(TroubleKind::Refused, option.At, "flexcontroller needs a group and a name");
  return false;
}

/// `%flex = expression` to the end of the line, or further while a parenthesis is open.
void ScriptReader::ReadRule(std::vector<Option>& out) {
  std::vector<Word> words = {m_words.Take()};
  int64_t open = 0;
  const auto count = [&](const Word& word) {
    if (word.Quoted) return;
    open += std::count(word.Text.begin(), word.Text.end(), '(');
    open -= std::count(word.Text.begin(), word.Text.end(), ')');
  };
  count(words.front());
  while (const Word* word = m_words.Peek()) {
    if (word->Is('{') || word->Is('}') || EndsStatement(*word)) break;
    if (word->FirstOfLine && (open <= 0 || word->Text.starts_with('%'))) break;
    words.push_back(m_words.Take());
    count(words.back());
  }
  Option option;
  option.Kind = Key::Rule;
  option.At = words.front().At;
  option.Rule = static_cast<int32_t>(m_script.Rules.size());
  m_script.Rules.push_back(ParseFlexRule(words, m_told));
  option.Name = m_script.Rules.back().Flex;
  out.push_back(std::move(option));
}

}  // namespace tarnwick::qc

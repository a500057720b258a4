// The files that a script names, the animations that it declares, and what can be judged when all is read.

#include <set>
#include <utility>

#include "core/paths.h"
#include "qc/script_reader.h"

namespace tarnwick::qc {

using core::TroubleKind;

/// Finds the file that an argument names and sets its number. False if there is none, which is told if `tell`.
bool ScriptReader::FindSource(SourceKind kind, Argument& argument, bool tell) {
  SourceFinder::Result found;
  std::string key;
  if (m_finder != nullptr) {
    found = m_finder->Find(argument.Text, kind);
    if (!found.Path && !tell) return false;
    key = found.Path ? *found.Path : '?' + m_finder->KeyOf(argument.Text);
  } else {
    key = core::LowerAscii(Below("", argument.Text));
    if (key.ends_with(".smd") || key.ends_with(".vta")) key.resize(key.size() - 4);
  }
  key += static_cast<char>('0' + (kind == SourceKind::Animation ? 0 : static_cast<int>(kind)));
  const auto [known, isNew] = m_sources.try_emplace(std::move(key), static_cast<int32_t>(m_script.Sources.size()));
  argument.Source = known->second;
  if (!isNew) return m_finder == nullptr || found.Path.has_value();
  m_script.Sources.push_back({found.Path.value_or(""), argument.Text, kind, argument.At});
  if (m_finder == nullptr) return true;
  if (found.FoundElsewhere) {
    m_told.Warning(TroubleKind::Missing, argument.At,
                   Shown(argument.Text) + " is not there; " + *found.Path + " is taken in its place");
  }
  if (found.Path) return true;
  std::string text = "the " + std::string(SourceKindName(kind)) + " " + Shown(argument.Text) + " was not found in " +
                     m_finder->ShownFolder() + DidYouMean(found.Nearest);
  if (kind == SourceKind::ProceduralBones) {
    m_told.Warning(TroubleKind::Missing, argument.At, std::move(text));
  } else {
    m_told.Error(TroubleKind::Missing, argument.At, std::move(text));
  }
  return false;
}

/// The statement that declares an animation or a sequence of that name: exactly so, or else in other case. -1 if none
/// does.
int32_t ScriptReader::FindAnimation(std::string_view name) const {
  if (const auto exact = m_animations.find(name); exact != m_animations.end()) return exact->second;
  const auto found = m_animationsInSmall.find(core::LowerAscii(name));
  return found == m_animationsInSmall.end() ? -1 : found->second;
}

void ScriptReader::Declare(const Statement& statement) {
  switch (statement.Kind) {
    case Command::Animation:
    case Command::Sequence:
    case Command::DeclareAnimation:
    case Command::DeclareSequence: {
      const auto number = static_cast<int32_t>(m_script.Statements.size() - 1);
      m_animations.try_emplace(statement.Arguments[0].Text, number);
      m_animationsInSmall.try_emplace(core::LowerAscii(statement.Arguments[0].Text), number);
      break;
    }
    default:
      break;
  }
}

namespace {

/// The names that a script's faces give, in small letters.
struct FaceNames {
  std::set<std::string> Controllers;
  std::set<std::string> Flexes;
  std::set<std::string> Eyelids;
  bool HasRules = false;
  bool Complete = true;  // whether no file brings more names
};

void AddName(std::set<std::string>& names, std::string_view name) {
  names.insert(core::LowerAscii(name));
}

void AddShapes(const Option& file, FaceNames& names) {
  for (const Option& shape : file.Options) {
    if (shape.Arguments.empty()) continue;
    const std::string name(shape.Arguments[0].Text);
    AddName(names.Flexes, name);
    if (shape.Kind != Key::FlexPair) continue;
    AddName(names.Flexes, name + "L");
    AddName(names.Flexes, name + "R");
  }
}

FaceNames NamesOf(const Script& script) {
  FaceNames names;
  for (const Statement& statement : script.Statements) {
    if (statement.Kind != Command::Model) continue;
    for (const Option& option : statement.Options) {
      switch (option.Kind) {
        case Key::FlexController:
          for (size_t i = 1; i < option.Arguments.size(); ++i) AddName(names.Controllers, option.Arguments[i].Text);
          break;
        case Key::LocalVar:
          for (const Argument& name : option.Arguments) AddName(names.Flexes, name.Text);
          break;
        case Key::FlexFile:
          AddShapes(option, names);
          break;
        case Key::Mouth:
          AddName(names.Flexes, option.Arguments[1].Text);
          break;
        case Key::Eyelid:
        case Key::DmxEyelid:
          AddName(names.Eyelids, option.Arguments[0].Text);
          break;
        case Key::VcaFile:
          names.Complete = false;
          break;
        case Key::Rule:
          names.HasRules = true;
          break;
        default:
          break;
      }
    }
  }
  return names;
}

bool KnowsFlex(const FaceNames& names, std::string_view name) {
  const std::string small = core::LowerAscii(name);
  if (names.Flexes.contains(small)) return true;
  for (const std::string& lid : names.Eyelids) {
    if (small == lid || small.starts_with(lid + "_")) return true;
  }
  return false;
}

std::string NearestOf(std::string_view wanted, const std::set<std::string>& names) {
  NearName near(wanted);
  for (const std::string& name : names) near.Offer(name);
  return DidYouMean(near.Best());
}

/// A rule may name what is declared behind it, so all are judged at the end.
void CheckRules(const Script& script, Messages& told) {
  const FaceNames names = NamesOf(script);
  if (!names.HasRules || !names.Complete) return;
  for (const FlexRule& rule : script.Rules) {
    if (rule.Nodes.empty()) continue;
    if (!KnowsFlex(names, rule.Flex)) {
      told.Warning(TroubleKind::Missing, rule.At,
                   "the rule is for " + Shown(rule.Flex) + ", which no flex and no localvar declares" +
                       NearestOf(rule.Flex, names.Flexes));
    }
    for (const ExpressionNode& node : rule.Nodes) {
      if (node.What == ExpressionNode::Kind::Controller && !names.Controllers.contains(core::LowerAscii(node.Name))) {
        told.Error(TroubleKind::Missing, node.At,
                   "there is no flexcontroller " + Shown(node.Name) + NearestOf(node.Name, names.Controllers));
      } else if (node.What == ExpressionNode::Kind::Flex && !KnowsFlex(names, node.Name)) {
        told.Warning(TroubleKind::Missing, node.At,
                     "no flex and no localvar declares " + Shown(node.Name) + NearestOf(node.Name, names.Flexes));
      }
    }
  }
}

}  // namespace

void ScriptReader::CheckNames() {
  if (m_script.Last(Command::ModelName) == nullptr) {
    m_told.Error(TroubleKind::Missing, {0, 1, 1, 0}, "the script names no model; it needs a $modelname");
  }
  if (m_finder != nullptr && m_finder->Pushed() > 0) {
    const Statement* push = m_script.Last(Command::PushD);
    m_told.Warning(TroubleKind::Refused, push == nullptr ? Place{0, 1, 1, 0} : push->At,
                   "a $pushd has no $popd that takes its folder back");
  }
  CheckRules(m_script, m_told);
}

}  // namespace tarnwick::qc

// What can be judged when all is read: names that are used and nowhere declared.

#include <map>
#include <set>
#include <string>

#include "core/paths.h"
#include "qc/script_reader.h"

namespace tarnwick::qc {

using core::TroubleKind;

namespace {

/// The names of one kind, in small letters, each with the statement that declares it first.
using DeclaredNames = std::map<std::string, size_t, std::less<>>;

struct Declared {
  DeclaredNames Animations;  // and sequences
  DeclaredNames WeightLists;
  DeclaredNames CmdLists;
  std::set<std::string> Meshes;  // as BaseOf gives them
};

/// A mesh's name without folder, ending and case: scripts name one mesh in many ways.
std::string BaseOf(std::string_view mesh) {
  const std::string last = core::LowerAscii(core::LastComponent(mesh));
  const size_t dot = last.rfind('.');
  return dot == std::string::npos || dot == 0 ? last : last.substr(0, dot);
}

Declared DeclaredIn(const Script& script) {
  Declared declared;
  for (size_t i = 0; i < script.Statements.size(); ++i) {
    const Statement& statement = script.Statements[i];
    if (statement.Arguments.empty()) continue;
    const std::string name = core::LowerAscii(statement.Arguments[0].Text);
    switch (statement.Kind) {
      case Command::Animation:
      case Command::Sequence:
      case Command::DeclareAnimation:
      case Command::DeclareSequence:
        declared.Animations.try_emplace(name, i);
        break;
      case Command::WeightList:
        declared.WeightLists.try_emplace(name, i);
        break;
      case Command::CmdList:
        declared.CmdLists.try_emplace(name, i);
        break;
      case Command::Body:
      case Command::Model:
        declared.Meshes.insert(BaseOf(statement.Arguments[1].Text));
        break;
      case Command::BodyGroup:
        for (const Option& entry : statement.Options) {
          if (entry.Kind == Key::Studio) declared.Meshes.insert(BaseOf(entry.Arguments[0].Text));
        }
        break;
      default:
        break;
    }
  }
  return declared;
}

/// Judges a name that statement `user` uses. What is nowhere is an error; what stands further down, a warning.
void CheckName(const Argument& name, size_t user, std::string_view what, const DeclaredNames& names, Messages& told) {
  const auto found = names.find(core::LowerAscii(name.Text));
  if (found != names.end() && found->second <= user) return;
  if (found != names.end()) {
    return told.Warning(TroubleKind::Refused, name.At,
                        "the " + std::string(what) + " " + Shown(name.Text) + " stands below the line that uses it");
  }
  NearName near(name.Text);
  for (const auto& [declared, number] : names) near.Offer(declared);
  told.Error(TroubleKind::Missing, name.At,
             "there is no " + std::string(what) + " " + Shown(name.Text) + DidYouMean(near.Best()));
}

void CheckOptions(const Statement& statement, size_t number, const Declared& declared, Messages& told) {
  for (const Option& option : statement.Options) {
    if (option.Arguments.empty()) continue;
    const Argument& name = option.Arguments[0];
    switch (option.Kind) {
      case Key::WeightList:
        CheckName(name, number, "weight list", declared.WeightLists, told);
        break;
      case Key::CmdList:
        CheckName(name, number, "command list", declared.CmdLists, told);
        break;
      case Key::Subtract:
      case Key::PreSubtract:
      case Key::Align:
      case Key::AlignTo:
      case Key::BlendCenter:
      case Key::BlendRef:
      case Key::BlendComp:
        CheckName(name, number, "sequence or animation", declared.Animations, told);
        break;
      case Key::AddLayer:
      case Key::BlendLayer:
        CheckName(name, number, "sequence", declared.Animations, told);
        break;
      case Key::ReplaceModel:
      case Key::RemoveModel:
        if (!declared.Meshes.contains(BaseOf(name.Text))) {
          NearName near(BaseOf(name.Text));
          for (const std::string& mesh : declared.Meshes) near.Offer(mesh);
          told.Warning(TroubleKind::Missing, name.At,
                       "no body has the mesh " + Shown(name.Text) + DidYouMean(near.Best()));
        }
        break;
      default:
        break;
    }
  }
}

void CheckUses(const Script& script, Messages& told) {
  const Declared declared = DeclaredIn(script);
  for (size_t i = 0; i < script.Statements.size(); ++i) CheckOptions(script.Statements[i], i, declared, told);
}

}  // namespace

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
  TellUnknownSources();
  if (m_script.Last(Command::ModelName) == nullptr) {
    m_told.Error(TroubleKind::Missing, {0, 1, 1, 0}, "the script names no model; it needs a $modelname");
  }
  if (m_finder != nullptr && m_finder->Pushed() > 0) {
    const Statement* push = m_script.Last(Command::PushD);
    m_told.Warning(TroubleKind::Refused, push == nullptr ? Place{0, 1, 1, 0} : push->At,
                   "a $pushd has no $popd that takes its folder back");
  }
  CheckUses(m_script, m_told);
  CheckRules(m_script, m_told);
}

}  // namespace tarnwick::qc

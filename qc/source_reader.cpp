// The files that a script names, and the animations that it declares.

#include <utility>

#include "core/paths.h"
#include "qc/script_reader.h"

namespace tarnwick::qc {

using core::TroubleKind;

/// Finds the file that an argument names and sets its number. False if there is none, which is told if `tell`.
bool ScriptReader::FindSource(SourceKind kind, Argument& argument, bool tell) {
  SourceFinder::Result found;
  std::string key;
  bool isElsewhere = false;
  if (m_finder != nullptr) {
    found = m_finder->Find(argument.Text, kind);
    std::string named = core::LowerAscii(Below("", argument.Text));
    if (named.ends_with(".smd")) named.resize(named.size() - 4);
    if (kind == SourceKind::Shapes || kind == SourceKind::ProceduralBones) named += ':';  // no mesh nor animation
    if (found.Path) {
      m_namedBefore.try_emplace(std::move(named), *found.Path);
    } else if (const auto before = m_namedBefore.find(named); before != m_namedBefore.end()) {
      found.Path = before->second;  // one name is one source, though another folder is the current one by now
    } else if (auto elsewhere = m_finder->FindElsewhere(argument.Text, kind)) {
      found.Path = std::move(elsewhere);
      isElsewhere = true;
    }
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
  if (isElsewhere) {
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

}  // namespace tarnwick::qc

#include "model/phy_values.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "core/number_parse.h"
#include "core/number_text.h"

namespace tarnwick::model {

namespace {

constexpr std::string_view AxisLetters = "xyz";

/// Reads the pairs of one block; what it has taken is known.
class Block {
 public:
  Block(const PhyEntry& entry, const std::string& file, core::TroubleSink& troubles)
      : m_entry(entry), m_file(file), m_troubles(troubles) {}

  void Take(std::string_view key, std::string& value) {
    if (const auto text = Find(key)) value = *text;
  }

  void Take(std::string_view key, float& value) {
    const auto text = Find(key);
    if (!text) return;
    if (const auto number = Number(*text)) {
      value = static_cast<float>(*number);
    } else {
      Warn("says \"" + std::string(*text) + "\" for " + std::string(key) + ", which is no number");
    }
  }

  /// A number of a solid; -1, told, for one that there is not.
  int32_t TakeSolid(std::string_view key, int64_t solidCount) {
    return SolidIn(Find(key).value_or("nothing"), solidCount);
  }

  int32_t SolidIn(std::string_view text, int64_t solidCount) {
    const auto number = Number(text);
    if (number && *number >= 0 && *number < static_cast<double>(solidCount)) return static_cast<int32_t>(*number);
    Warn("names solid \"" + std::string(text) + "\" of " + std::to_string(solidCount));
    return -1;
  }

  void Warn(const std::string& problem) {
    m_troubles.Tell({.Level = core::Severity::Warning,
                     .Kind = core::TroubleKind::Damaged,
                     .File = m_file,
                     .Text = m_file + ": its block " + std::string(m_entry.Key) + " " + problem});
  }

  /// Pairs that were not asked for.
  int64_t Unknown() const { return static_cast<int64_t>(m_entry.Entries.size()) - m_taken; }

  /// Gives `take` the value of every pair named `key`.
  template <typename TakeValue>
  void ForEach(std::string_view key, TakeValue take) {
    for (const PhyEntry& pair : m_entry.Entries) {
      if (pair.IsBlock || pair.Key != key) continue;
      ++m_taken;
      take(pair.Value);
    }
  }

 private:
  std::optional<std::string_view> Find(std::string_view key) {
    auto found = m_entry.Find(key);
    if (found) ++m_taken;
    return found;
  }

  static std::optional<double> Number(std::string_view text) {
    size_t length = 0;
    const double value = core::ParseReal(text, &length);
    if (length == 0 || !std::isfinite(static_cast<float>(value))) return std::nullopt;
    return value;
  }

  const PhyEntry& m_entry;
  const std::string& m_file;
  core::TroubleSink& m_troubles;
  int64_t m_taken = 0;
};

/// "a,b" as two texts; the second is empty without a comma.
std::pair<std::string_view, std::string_view> AtComma(std::string_view text) {
  const size_t comma = text.find(',');
  if (comma == std::string_view::npos) return {text, {}};
  return {text.substr(0, comma), text.substr(comma + 1)};
}

void TakeSolid(Block& block, PhyValues& values) {
  PhySolidValues solid;
  std::string index;
  block.Take("index", index);
  block.Take("name", solid.Name);
  block.Take("parent", solid.Parent);
  block.Take("mass", solid.Mass);
  block.Take("surfaceprop", solid.SurfaceProp);
  block.Take("damping", solid.Damping);
  block.Take("rotdamping", solid.RotationDamping);
  block.Take("inertia", solid.Inertia);
  block.Take("volume", solid.Volume);
  block.Take("massbias", solid.MassBias);
  values.Solids.push_back(std::move(solid));
}

void TakeConstraint(Block& block, PhyValues& values, int64_t solidCount) {
  PhyConstraint constraint{.Parent = block.TakeSolid("parent", solidCount),
                           .Child = block.TakeSolid("child", solidCount)};
  for (size_t axis = 0; axis < AxisLetters.size(); ++axis) {
    const std::string letter(1, AxisLetters[axis]);
    block.Take(letter + "min", constraint.Axes[axis].Minimum);
    block.Take(letter + "max", constraint.Axes[axis].Maximum);
    block.Take(letter + "friction", constraint.Axes[axis].Friction);
  }
  if (constraint.Parent >= 0 && constraint.Child >= 0) values.Constraints.push_back(constraint);
}

void TakeRules(Block& block, PhyValues& values, int64_t solidCount) {
  block.ForEach("collisionpair", [&](std::string_view pair) {
    const auto [first, second] = AtComma(pair);
    const int32_t a = block.SolidIn(first, solidCount);
    const int32_t b = block.SolidIn(second, solidCount);
    if (a >= 0 && b >= 0) values.CollisionPairs.emplace_back(a, b);
  });
  float selfCollisions = 1;
  block.Take("selfcollisions", selfCollisions);
  if (selfCollisions == 0) values.NoSelfCollisions = true;
}

void TakeFriction(Block& block, PhyValues& values) {
  PhyAnimatedFriction friction;
  block.Take("animfrictionmin", friction.Minimum);
  block.Take("animfrictionmax", friction.Maximum);
  block.Take("animfrictiontimein", friction.TimeIn);
  block.Take("animfrictiontimeout", friction.TimeOut);
  block.Take("animfrictiontimehold", friction.TimeHold);
  values.AnimatedFriction = friction;
}

void TakeEditParams(Block& block, PhyValues& values) {
  block.Take("rootname", values.RootName);
  block.Take("totalmass", values.TotalMass);
  float concave = 0;
  block.Take("concave", concave);
  values.IsConcave = concave != 0;
  block.ForEach("jointmerge", [&](std::string_view pair) {
    const auto [first, second] = AtComma(pair);
    if (second.empty()) {
      block.Warn("merges \"" + std::string(pair) + "\", which are not two bones");
    } else {
      values.JointMerges.emplace_back(first, second);
    }
  });
}

/// Appends blocks in the form that the text has.
class TextBuilder {
 public:
  std::string Text;

  void Begin(std::string_view name) { Text.append(name).append(" {\n"); }
  void End() { Text += "}\n"; }
  void Pair(std::string_view key, std::string_view value) {
    Text.append("\"").append(key).append("\" \"");
    // A quote would end the value early.
    std::copy_if(value.begin(), value.end(), std::back_inserter(Text), [](char c) { return c != '"'; });
    Text.append("\"\n");
  }
  void Pair(std::string_view key, float value) { Pair(key, core::FixedText(double{value}, 6)); }
  void Pair(std::string_view key, int64_t value) { Pair(key, std::to_string(value)); }
};

void FormatSolid(TextBuilder& text, const PhySolidValues& solid, size_t index) {
  text.Begin("solid");
  text.Pair("index", static_cast<int64_t>(index));
  text.Pair("name", solid.Name);
  if (!solid.Parent.empty()) text.Pair("parent", solid.Parent);
  text.Pair("mass", solid.Mass);
  text.Pair("surfaceprop", solid.SurfaceProp);
  text.Pair("damping", solid.Damping);
  text.Pair("rotdamping", solid.RotationDamping);
  text.Pair("inertia", solid.Inertia);
  text.Pair("volume", solid.Volume);
  if (solid.MassBias != 1) text.Pair("massbias", solid.MassBias);
  text.End();
}

void FormatConstraint(TextBuilder& text, const PhyConstraint& constraint) {
  text.Begin("ragdollconstraint");
  text.Pair("parent", int64_t{constraint.Parent});
  text.Pair("child", int64_t{constraint.Child});
  for (size_t axis = 0; axis < AxisLetters.size(); ++axis) {
    const std::string letter(1, AxisLetters[axis]);
    text.Pair(letter + "min", constraint.Axes[axis].Minimum);
    text.Pair(letter + "max", constraint.Axes[axis].Maximum);
    text.Pair(letter + "friction", constraint.Axes[axis].Friction);
  }
  text.End();
}

}  // namespace

PhyValues TakePhyValues(const std::vector<PhyEntry>& text, int64_t solidCount, const std::string& file,
                        core::TroubleSink& troubles) {
  PhyValues values;
  bool isBehind = false;  // the first `editparams`
  for (const PhyEntry& entry : text) {
    Block block(entry, file, troubles);
    if (!isBehind && entry.IsBlock && entry.Key == "solid") {
      TakeSolid(block, values);
    } else if (!isBehind && entry.IsBlock && entry.Key == "ragdollconstraint") {
      TakeConstraint(block, values, solidCount);
    } else if (!isBehind && entry.IsBlock && entry.Key == "collisionrules") {
      TakeRules(block, values, solidCount);
    } else if (!isBehind && entry.IsBlock && entry.Key == "animatedfriction" && !values.AnimatedFriction) {
      TakeFriction(block, values);
    } else if (!isBehind && entry.IsBlock && entry.Key == "editparams") {
      TakeEditParams(block, values);
      isBehind = true;
    } else {
      values.Others.push_back(entry);
      continue;
    }
    values.UnknownPairs += block.Unknown();
  }
  return values;
}

std::string FormatPhyText(const PhyValues& values, std::string_view tail) {
  TextBuilder text;
  for (size_t i = 0; i < values.Solids.size(); ++i) FormatSolid(text, values.Solids[i], i);
  for (const PhyConstraint& constraint : values.Constraints) FormatConstraint(text, constraint);
  if (!values.CollisionPairs.empty() || values.NoSelfCollisions) {
    text.Begin("collisionrules");
    if (values.NoSelfCollisions) text.Pair("selfcollisions", int64_t{0});
    for (const auto& [a, b] : values.CollisionPairs) {
      text.Pair("collisionpair", std::to_string(a) + "," + std::to_string(b));
    }
    text.End();
  }
  if (values.AnimatedFriction) {
    text.Begin("animatedfriction");
    text.Pair("animfrictionmin", values.AnimatedFriction->Minimum);
    text.Pair("animfrictionmax", values.AnimatedFriction->Maximum);
    text.Pair("animfrictiontimein", values.AnimatedFriction->TimeIn);
    text.Pair("animfrictiontimeout", values.AnimatedFriction->TimeOut);
    text.Pair("animfrictiontimehold", values.AnimatedFriction->TimeHold);
    text.End();
  }
  text.Begin("editparams");
  text.Pair("rootname", values.RootName);
  text.Pair("totalmass", values.TotalMass);
  for (const auto& [into, other] : values.JointMerges) {
    std::string pair = into;
    text.Pair("jointmerge", pair.append(",").append(other));
  }
  if (values.IsConcave) text.Pair("concave", int64_t{1});
  text.End();
  return text.Text.append(tail);
}

}  // namespace tarnwick::model

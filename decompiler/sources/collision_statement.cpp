#include "decompiler/sources/collision_statement.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

#include "core/paths.h"
#include "decompiler/sources/script_values.h"

namespace tarnwick::decompiler::sources {

namespace {

/// A compile multiplies the friction of a joint by this; it is supposed from the values that files hold, 0.2 and its
/// powers.
constexpr double FrictionFactor = 0.2;

/// A mass may miss what the rule gives by this part: texts hold six decimals of the volumes.
constexpr double MassTolerance = 0.01;

/// The value that most solids have; the first met of equally many.
float CommonValue(const std::vector<SourceSolid>& solids, float PhySolidValues::*value) {
  std::map<float, size_t> counts;
  for (const SourceSolid& solid : solids) ++counts[solid.Values.*value];
  float common = 0;
  size_t most = 0;
  for (const SourceSolid& solid : solids) {
    const size_t count = counts[solid.Values.*value];
    if (count > most) {
      most = count;
      common = solid.Values.*value;
    }
  }
  return common;
}

class Statement {
 public:
  Statement(JobContext& job, const Collision& collision) : m_job(job), m_collision(collision) {}

  void Write() {
    Text((m_collision.IsJoined ? "$collisionjoints " : "$collisionmodel ") + Quoted(m_job, m_collision.File) + " {\n");
    WriteWhole();
    if (m_collision.IsJoined) WriteJoints();
    if (const auto& friction = m_collision.Values.AnimatedFriction) {
      Line("$animatedfriction " + Number(m_job, friction->Minimum) + " " + Number(m_job, friction->Maximum) + " " +
           Number(m_job, friction->TimeIn) + " " + Number(m_job, friction->TimeOut) + " " +
           Number(m_job, friction->TimeHold));
    }
    Text("}\n");
    CountLost();
  }

 private:
  /// A value that the whole model has and a solid may have in another way.
  struct Scale {
    const char* Whole;
    const char* Joint;
    float PhySolidValues::*Value;
  };
  static constexpr Scale Scales[] = {
      {"$inertia ", "$jointinertia ", &PhySolidValues::Inertia},
      {"$damping ", "$jointdamping ", &PhySolidValues::Damping},
      {"$rotdamping ", "$jointrotdamping ", &PhySolidValues::RotationDamping},
  };

  const std::vector<SourceSolid>& Solids() const { return m_collision.Solids; }
  void Text(const std::string& text) { m_job.Script().Text(text); }
  void Line(const std::string& text) {
    if (m_job.ScriptWithinBounds()) Text("\t" + text + "\n");
  }
  std::string NameOf(int32_t solid) const { return Quoted(m_job, Solids()[static_cast<size_t>(solid)].Values.Name); }

  void WriteWhole() {
    const PhyValues& values = m_collision.Values;
    Line("$mass " + Number(m_job, values.TotalMass));
    if (m_collision.MassCentre) Line("$masscenter " + Numbers(m_job, *m_collision.MassCentre));
    for (const Scale& scale : Scales) Line(scale.Whole + Number(m_job, CommonValue(Solids(), scale.Value)));
    const bool severalPieces =
        std::any_of(Solids().begin(), Solids().end(), [](const SourceSolid& solid) { return solid.PieceCount > 1; });
    if (values.IsConcave) {
      Line("$concave");
    } else if (severalPieces && m_collision.IsJoined) {
      Line("$concaveperjoint");
    } else if (severalPieces) {
      m_job.Lose("pieces of physics solids that a compile makes one");
    }
    if (values.RootName.find_first_not_of(" \t") != std::string::npos) {
      Line("$rootbone " + Quoted(m_job, values.RootName));
    }
    if (values.NoSelfCollisions) Line("$noselfcollisions");
  }

  void WriteJoints() {
    const bool nameAll = !OrderComesBack();
    for (size_t i = 0; i < Solids().size(); ++i) {
      const SourceSolid& solid = Solids()[i];
      if (!solid.IsWritten) continue;
      const std::string name = Quoted(m_job, solid.Values.Name);
      if (solid.Values.MassBias != 1 || nameAll)
        Line("$jointmassbias " + name + " " + Number(m_job, solid.Values.MassBias));
      for (const Scale& scale : Scales) {
        const float value = solid.Values.*scale.Value;
        if (value != CommonValue(Solids(), scale.Value)) Line(scale.Joint + name + " " + Number(m_job, value));
      }
      for (const PhyConstraint& constraint : m_collision.Values.Constraints) {
        if (constraint.Child == static_cast<int32_t>(i)) WriteConstraint(constraint, name);
      }
    }
    for (const auto& [into, other] : m_collision.Values.JointMerges) {
      Line("$jointmerge " + Quoted(m_job, into) + " " + Quoted(m_job, other));
    }
    for (const auto& [a, b] : m_collision.Values.CollisionPairs) {
      Line("$jointcollide " + NameOf(a) + " " + NameOf(b));
    }
  }

  void WriteConstraint(const PhyConstraint& constraint, const std::string& name) {
    constexpr std::string_view Letters = "xyz";
    for (size_t axis = 0; axis < Letters.size(); ++axis) {
      const PhyAxisLimit& limit = constraint.Axes[axis];
      const auto friction = static_cast<float>(double{limit.Friction} / FrictionFactor);
      Line("$jointconstrain " + name + " " + Letters[axis] + " limit " + Number(m_job, limit.Minimum) + " " +
           Number(m_job, limit.Maximum) + " " + Number(m_job, friction));
    }
  }

  /// Whether a compile puts the solids in their order by itself: the root, those that statements name, in the order in
  /// which they are named first, then the others in the order of the bones.
  bool OrderComesBack() {
    std::vector<size_t> order = {RootSolid()};
    const auto add = [&](size_t solid) {
      if (std::find(order.begin(), order.end(), solid) == order.end()) order.push_back(solid);
    };
    for (size_t i = 0; i < Solids().size(); ++i) {
      if (IsNamed(i)) add(i);
    }
    for (const auto& [into, other] : m_collision.Values.JointMerges) {
      for (const std::string& name : {into, other}) {
        for (size_t i = 0; i < Solids().size(); ++i) {
          if (core::EqualIgnoringCase(Solids()[i].Values.Name, name)) add(i);
        }
      }
    }
    for (const auto& [a, b] : m_collision.Values.CollisionPairs) {
      add(static_cast<size_t>(a));
      add(static_cast<size_t>(b));
    }
    std::vector<size_t> byBone(Solids().size());
    std::iota(byBone.begin(), byBone.end(), size_t{0});
    std::stable_sort(byBone.begin(), byBone.end(),
                     [&](size_t a, size_t b) { return Solids()[a].Bone < Solids()[b].Bone; });
    for (const size_t solid : byBone) add(solid);
    if (order.front() != 0) m_job.Lose("places of a root among its physics solids");
    return std::is_sorted(order.begin(), order.end());
  }

  /// Whether the statements of solid `index` itself name it.
  bool IsNamed(size_t index) const {
    const SourceSolid& solid = Solids()[index];
    if (solid.Values.MassBias != 1) return true;
    for (const Scale& scale : Scales) {
      if (solid.Values.*scale.Value != CommonValue(Solids(), scale.Value)) return true;
    }
    const auto& constraints = m_collision.Values.Constraints;
    return std::any_of(constraints.begin(), constraints.end(),
                       [&](const PhyConstraint& c) { return c.Child == static_cast<int32_t>(index); });
  }

  /// The solid that has none above it; the first in the order of the bones.
  size_t RootSolid() const {
    size_t root = 0;
    for (size_t i = 0; i < Solids().size(); ++i) {
      const bool better =
          Solids()[i].Parent < 0 && (Solids()[root].Parent >= 0 || Solids()[i].Bone < Solids()[root].Bone);
      if (better) root = i;
    }
    return root;
  }

  void CountLost() {
    const PhyValues& values = m_collision.Values;
    m_job.Lose("pairs of the physics text that have no statement", values.UnknownPairs);
    CountMasses();
    const double mass = m_job.Model.Header()->Mass;
    if (!(std::fabs(mass - double{values.TotalMass}) <= MassTolerance * std::max(1.0, mass))) {
      m_job.Lose("masses of models that are not those of their physics");
    }
    if (m_collision.IsJoined) return CountJoints();
    const PhySolidValues& solid = Solids().front().Values;
    if (solid.MassBias != 1) m_job.Lose("mass biases of a single physics solid");
    if (!solid.Parent.empty()) m_job.Lose("parents of physics solids");
    m_job.Lose(
        "joints of a single physics solid",
        static_cast<int64_t>(values.Constraints.size() + values.CollisionPairs.size() + values.JointMerges.size()));
  }

  void CountMasses() {
    double sum = 0;
    for (const SourceSolid& solid : Solids()) sum += double{solid.Values.Volume} * double{solid.Values.MassBias};
    if (!(sum > 0)) return;
    for (const SourceSolid& solid : Solids()) {
      const double share = double{solid.Values.Volume} * double{solid.Values.MassBias} / sum;
      const double mass = std::max(1.0, double{m_collision.Values.TotalMass} * share);
      if (!(std::fabs(mass - double{solid.Values.Mass}) <= MassTolerance * mass)) {
        m_job.Lose("masses of physics solids that do not follow from their volumes");
      }
    }
  }

  void CountJoints() {
    std::map<int32_t, int32_t> parents;  // by the constraints
    for (const PhyConstraint& constraint : m_collision.Values.Constraints) {
      if (!parents.emplace(constraint.Child, constraint.Parent).second)
        m_job.Lose("second constraints of a physics solid");
    }
    std::map<int32_t, int> bones;
    for (size_t i = 0; i < Solids().size(); ++i) {
      const SourceSolid& solid = Solids()[i];
      const std::string parent = solid.Parent < 0 ? "" : Solids()[static_cast<size_t>(solid.Parent)].Values.Name;
      const auto constraint = parents.find(static_cast<int32_t>(i));
      const bool isOther = constraint != parents.end() && constraint->second != solid.Parent;
      if (isOther || !core::EqualIgnoringCase(solid.Values.Parent, parent)) m_job.Lose("parents of physics solids");
      if (i > 0 && solid.Parent >= 0 && constraint == parents.end()) m_job.Lose("physics solids without a constraint");
      if (++bones[solid.Bone] > 1) m_job.Lose("physics solids that share a bone");
    }
  }

  JobContext& m_job;
  const Collision& m_collision;
};

void WriteEntries(JobContext& job, const std::vector<PhyEntry>& entries, size_t depth) {
  const std::string indent(depth, '\t');
  for (const PhyEntry& entry : entries) {
    if (!job.ScriptWithinBounds()) return;
    if (entry.IsBlock) {
      job.Script().Text(indent + job.Word(entry.Key) + " {\n");
      WriteEntries(job, entry.Entries, depth + 1);
      job.Script().Text(indent + "}\n");
    } else {
      job.Script().Text(indent + Quoted(job, entry.Key) + " " + Quoted(job, entry.Value) + "\n");
    }
  }
}

}  // namespace

void WriteCollisionStatement(JobContext& job, const Collision& collision) {
  Statement(job, collision).Write();
}

void WriteCollisionText(JobContext& job, const std::vector<PhyEntry>& blocks) {
  if (blocks.empty()) return;
  job.Script().Text("$collisiontext {\n");
  WriteEntries(job, blocks, 1);
  job.Script().Text("}\n");
}

}  // namespace tarnwick::decompiler::sources

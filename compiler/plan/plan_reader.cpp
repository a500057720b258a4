#include "compiler/plan/plan_reader.h"

#include <algorithm>
#include <cmath>

#include "compiler/plan/body_plan.h"
#include "compiler/plan/bone_plan.h"
#include "compiler/plan/collision_plan.h"
#include "compiler/plan/key_value_text.h"
#include "compiler/plan/option_values.h"
#include "core/paths.h"
#include "model/studio_records.h"
#include "qc/tables.h"

namespace tarnwick::compiler {

using qc::Command;
using qc::Statement;

namespace {

constexpr size_t MostMaterialFolders = 32;

struct ContentsWord {
  std::string_view Word;
  int32_t Value;
};
constexpr ContentsWord ContentsWords[] = {{"solid", 1}, {"grate", 8}, {"notsolid", 0}};

class PlanReader {
 public:
  explicit PlanReader(CompilePlan& plan) : m_plan(plan) {}

  void Run() {
    for (const Statement& statement : m_plan.Script.Statements) Read(statement);
    // A level is chosen by its threshold; the shadow's stands behind all.
    std::stable_sort(m_plan.Lods.begin(), m_plan.Lods.end(), [](const PlanLod& a, const PlanLod& b) {
      return a.Shadow != b.Shadow ? b.Shadow : !a.Shadow && a.Threshold < b.Threshold;
    });
  }

 private:
  qc::Messages& Told() { return m_plan.Script.Told; }
  std::string Text(const Statement& s, size_t i) const {
    return i < s.Arguments.size() ? std::string(s.Arguments[i].Text) : std::string();
  }
  float Number(const Statement& s, size_t i) const { return static_cast<float>(s.Number(i)); }
  void NotBuilt(const Statement& s) {
    Told().Warning(core::TroubleKind::Lost, s.At, std::string(s.Name) + " is known, but nothing is built from it");
  }

  void Read(const Statement& s) {
    if (s.Arguments.empty() && NeedsArguments(s.Kind)) return;  // told by the script's reader
    if (ReadHeader(s) || ReadMotion(s) || ReadBodies(s)) return;
    if (ReadBoneStatement(s, m_plan)) {
      if (s.Kind == Command::Attachment) {
        m_plan.Attachments.back().Settings = m_use;
        m_plan.Attachments.back().Settings.YUp = false;  // which is for sources alone
      }
      return;
    }
    switch (s.Kind) {
      case Command::Cd:
      case Command::PushD:
      case Command::PopD:
      case Command::AddSearchDir:
      case Command::ExternalTextures:
      case Command::ClipToTextures:
      case Command::CdTexture:
      case Command::SequenceGroup:
      case Command::SequenceGroupSize:
      case Command::DeclareAnimation:
        break;
      case Command::BoneSaveFrame:
        Told().Note(core::TroubleKind::Lost, s.At,
                    "$bonesaveframe has no effect: first frames are not stored by themselves");
        break;
      default:
        if (const qc::StatementRow* row = qc::FindStatement(s.Name);
            row != nullptr && row->State == qc::Support::Built) {
          NotBuilt(s);  // the others were told when the script was read
        }
    }
  }

  static bool NeedsArguments(Command kind) {
    for (const qc::StatementRow& row : qc::StatementRows()) {
      if (row.Kind != kind) continue;
      return !row.Arguments.empty() && row.Arguments[0] != '?' && row.Arguments[0] != 'L';
    }
    return false;
  }

  // Name, place, flags

  bool ReadHeader(const Statement& s) {
    switch (s.Kind) {
      case Command::ModelName: {
        if (!m_plan.ModelName.empty()) {
          Told().Warning(core::TroubleKind::Refused, s.At, "a second $modelname takes the first one's place");
        }
        m_plan.ModelName = Text(s, 0);
        const std::string lower = core::LowerAscii(m_plan.ModelName);
        if (!lower.ends_with(".mdl")) m_plan.ModelName += ".mdl";
        return true;
      }
      case Command::InternalName:
        m_plan.InternalName = Text(s, 0);
        return true;
      case Command::Scale: {
        const float scale = Number(s, 0);
        if (std::isfinite(scale) && scale != 0) {
          m_use.Scale = scale;
        } else {
          Told().Warning(core::TroubleKind::Refused, s.At, "a scale of 0 leaves nothing; $scale is passed over");
        }
        return true;
      }
      case Command::Origin:
        m_use.Origin = VecAt(s, 0);
        m_use.OriginTurn = static_cast<float>(s.Number(3));
        return true;
      case Command::UpAxis:
        m_use.YUp = core::EqualIgnoringCase(Text(s, 0), "Y");
        return true;
      case Command::SurfaceProp:
        m_plan.SurfaceProp = Text(s, 0);
        return true;
      case Command::JointSurfaceProp:
        m_plan.BoneSurfaces.push_back({s.At, Text(s, 0), Text(s, 1)});
        return true;
      case Command::Contents:
        m_plan.Contents = ContentsOf(s, 0);
        return true;
      case Command::JointContents:
        m_plan.BoneContents.push_back({s.At, Text(s, 0), ContentsOf(s, 1)});
        return true;
      case Command::EyePosition:
        m_plan.EyePosition = VecAt(s, 0);
        return true;
      case Command::IllumPosition:
        m_plan.IllumPosition = VecAt(s, 0);
        m_plan.IllumBone = Text(s, 3);
        if (!m_plan.IllumBone.empty()) {
          Told().Warning(core::TroubleKind::Lost, s.At,
                         "the place of $illumposition is where the bone rests; it does not follow the bone");
        }
        return true;
      case Command::BBox:
        m_plan.HullBox = {VecAt(s, 0), VecAt(s, 3)};
        return true;
      case Command::CBox:
        m_plan.ViewBox = {VecAt(s, 0), VecAt(s, 3)};
        return true;
      case Command::MaxEyeDeflection:
        m_plan.MaxEyeDeflection = Number(s, 0);
        return true;
      case Command::KeyValues:
        if (s.Text >= 0) m_plan.KeyValues += KeyValueText(m_plan.Script.KeyValues[static_cast<size_t>(s.Text)]);
        return true;
      case Command::StaticProp:
        m_plan.StaticProp = true;
        m_plan.Flags |= model::ModelFlagStatic;
        return true;
      default:
        return ReadFlag(s);
    }
  }
  bool ReadFlag(const Statement& s) {
    switch (s.Kind) {
      case Command::Opaque:
        return Flag(model::ModelFlagOpaque);
      case Command::MostlyOpaque:
        return Flag(model::ModelFlagMostlyOpaque);
      case Command::AutoCenter:
        m_plan.AutoCenter = true;
        return true;
      case Command::BBoxOnlyVerts:
        m_plan.BoxOnlyVertices = true;
        return true;
      case Command::SkipBoneInBBox:
        m_plan.SkipBonesInBoxes = true;
        return true;
      default:
        return false;
    }
  }
  bool Flag(uint32_t flag) {
    m_plan.Flags |= flag;
    return true;
  }
  int32_t ContentsOf(const Statement& s, size_t first) {
    int32_t contents = 0;
    bool none = false;
    for (size_t i = first; i < s.Arguments.size(); ++i) {
      const auto* word = std::ranges::find_if(
          ContentsWords, [&](const ContentsWord& w) { return core::EqualIgnoringCase(w.Word, s.Arguments[i].Text); });
      if (word == std::end(ContentsWords)) {
        Told().Warning(core::TroubleKind::Unknown, s.Arguments[i].At,
                       "no contents are known by " + qc::Shown(s.Arguments[i].Text));
      } else {
        contents |= word->Value;
        none = none || word->Value == 0;
      }
    }
    return contents == 0 && !none ? 1 : contents;
  }

  // Bodies, materials, levels of detail, collision

  bool ReadBodies(const Statement& s) {
    switch (s.Kind) {
      case Command::CdMaterials:
        for (const qc::Argument& argument : s.Arguments) AddFolder(s, argument);
        return true;
      case Command::RenameMaterial:
        m_plan.RenamedMaterials.emplace_back(Text(s, 0), Text(s, 1));
        return true;
      case Command::TextureGroup: {
        PlanSkins& skins = m_plan.Skins.emplace_back(PlanSkins{s.At, {}});
        for (const auto& row : s.Rows) {
          std::vector<std::string>& names = skins.Rows.emplace_back();
          for (const qc::Argument& name : row) names.emplace_back(name.Text);
        }
        return true;
      }
      case Command::Body:
      case Command::Model:
      case Command::BodyGroup:
        m_plan.BodyParts.push_back(ReadBodyPart(s, m_use));
        if (m_plan.BodyParts.back().Models.empty()) {
          Told().Warning(core::TroubleKind::Refused, s.At,
                         "the body group " + qc::Shown(Text(s, 0)) + " offers nothing, not even a blank");
        }
        return true;
      case Command::AppendBlankBodyGroup:
        AppendBlank(s);
        return true;
      case Command::Lod:
      case Command::ShadowLod:
        m_plan.Lods.push_back(ReadLod(s, m_use));
        return true;
      case Command::MinLod:
        m_plan.LeastLod = Whole(s.Number(0));
        return true;
      case Command::AllowRootLods:
        m_plan.AllowedRootLods = 1;
        return true;
      case Command::SkinnedLods:
        m_plan.SkinnedLods = true;
        return true;
      case Command::CollisionModel:
      case Command::CollisionJoints:
        if (m_plan.Collision)
          Told().Warning(core::TroubleKind::Refused, s.At, "a second collision model takes the first one's place");
        m_plan.Collision = ReadCollision(s, m_use);
        return true;
      case Command::CollisionText:
        if (s.Text >= 0) m_plan.CollisionTexts.push_back(s.Text);
        return true;
      case Command::IncludeModel: {
        std::string name = Text(s, 0);
        if (!core::LowerAscii(name).starts_with("models/") && !core::LowerAscii(name).starts_with("models\\")) {
          name = "models/" + name;
        }
        m_plan.IncludedModels.push_back(name);
        return true;
      }
      default:
        return false;
    }
  }
  void AppendBlank(const Statement& s) {
    qc::NearName near(Text(s, 0));
    bool found = false;
    for (PlanBodyPart& part : m_plan.BodyParts) {
      near.Offer(part.Name);
      if (!core::EqualIgnoringCase(part.Name, Text(s, 0))) continue;
      part.Models.emplace_back();
      found = true;
    }
    if (found) return;
    Told().Warning(core::TroubleKind::Missing, s.At,
                   "no body group above is called " + qc::Shown(Text(s, 0)) + qc::DidYouMean(near.Best()));
  }
  void AddFolder(const Statement& s, const qc::Argument& argument) {
    std::string folder(argument.Text);
    std::replace(folder.begin(), folder.end(), '/', '\\');
    if (!folder.empty() && folder.back() != '\\') folder += '\\';
    if (m_plan.MaterialFolders.size() == MostMaterialFolders) {
      Told().Error(core::TroubleKind::Limit, s.At, "more than 32 material folders");
    }
    m_plan.MaterialFolders.push_back(std::move(folder));
  }
  // Animations

  bool ReadMotion(const Statement& s) {
    switch (s.Kind) {
      case Command::Animation:
      case Command::Sequence:
      case Command::CmdList:
      case Command::DeclareSequence:
      case Command::Continue:
      case Command::Append:
      case Command::Prepend:
        m_plan.Motions.push_back({&s, m_use});
        m_plan.Motions.back().Settings.At = s.At;
        return true;
      case Command::WeightList:
        m_plan.WeightLists.push_back(WeightsOf(s, Text(s, 0)));
        return true;
      case Command::DefaultWeightList:
        m_plan.DefaultWeights = WeightsOf(s, {});
        return true;
      case Command::CalcTransitions:
        m_plan.CalcTransitions = true;
        return true;
      case Command::LCaseAllSequences:
        m_plan.LowerCaseSequences = true;
        return true;
      case Command::AnimBlockSize:
        ReadBlocks(s);
        return true;
      case Command::SectionFrames:
        m_plan.SectionFrames = std::max(Whole(s.Number(0)), 0);
        m_plan.LeastSectionedFrames = std::max(Whole(s.Number(1)), 0);
        return true;
      default:
        return false;
    }
  }
  void ReadBlocks(const Statement& s) {
    constexpr double KiloByte = 1024, MostKiloBytes = 1 << 20;
    const double size = s.Number(0);
    m_plan.AnimBlockSize = size > 0 ? static_cast<int32_t>(std::min(size, MostKiloBytes) * KiloByte) : 0;
    for (const qc::Option& option : s.Options) {
      if (option.Kind == qc::Key::NoStall) {
        m_plan.KeepFirstSections = true;
      } else {
        Told().Note(
            core::TroubleKind::Lost, option.At,
            qc::Shown(option.Name) + " of $animblocksize has no effect: first frames are not stored by themselves");
      }
    }
  }
  static PlanWeightList WeightsOf(const Statement& s, std::string name) {
    PlanWeightList list{std::move(name), {}, s.At};
    for (const auto& row : s.Rows) {
      if (row.size() >= 2) list.Bones.emplace_back(std::string(row[0].Text), static_cast<float>(row[1].Number));
    }
    return list;
  }

  CompilePlan& m_plan;
  SourceUse m_use;  // what holds for the statements that follow
};

}  // namespace

std::unique_ptr<CompilePlan> ReadPlan(qc::Script script) {
  auto plan = std::make_unique<CompilePlan>();
  plan->Script = std::move(script);
  PlanReader(*plan).Run();
  return plan;
}

}  // namespace tarnwick::compiler

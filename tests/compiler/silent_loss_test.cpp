// Nothing is lost in silence: whatever value of a model is changed, the model that its sources make has the changed
// one, or the loss is told.

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <functional>

#include "compiled_files.h"
#include "compiler/compile_model.h"
#include "decompiler/decompile_job.h"
#include "model/animation_records.h"
#include "model/face_records.h"
#include "model/procedural_records.h"
#include "model/script_records.h"
#include "random_sources.h"
#include "support/recording_report.h"
#include "workshop.h"

namespace tarnwick::compiler {
namespace {

using namespace tests;
using model::StudioAnimDesc;
using model::StudioBone;
using model::StudioHeader;
using model::StudioModel;
using model::StudioSeqDesc;

StudioHeader HeaderOfFile(const std::string& mdl) {
  return RecordAt<StudioHeader>(mdl, 0);
}

/// The first place among `count` records at `at` that `wanted` gives for one of them; 0 for none.
template <typename Record>
int64_t FirstOf(const std::string& mdl, int64_t at, int64_t count,
                const std::function<int64_t(const Record&, int64_t)>& wanted) {
  for (int64_t i = 0; i < count; ++i) {
    const int64_t place = at + i * int64_t{sizeof(Record)};
    if (const int64_t found = wanted(RecordAt<Record>(mdl, place), place)) return found;
  }
  return 0;
}

int64_t InSequences(const std::string& mdl, int32_t StudioSeqDesc::*count, int32_t StudioSeqDesc::*offset) {
  const StudioHeader header = HeaderOfFile(mdl);
  return FirstOf<StudioSeqDesc>(mdl, header.SequenceOffset, header.SequenceCount, [&](const auto& record, int64_t at) {
    return (count == nullptr ? record.*offset : record.*count) != 0 ? at + record.*offset : 0;
  });
}

int64_t InAnimations(const std::string& mdl, int32_t StudioAnimDesc::*count, int32_t StudioAnimDesc::*offset) {
  const StudioHeader header = HeaderOfFile(mdl);
  return FirstOf<StudioAnimDesc>(mdl, header.AnimOffset, header.AnimCount, [&](const auto& record, int64_t at) {
    return record.*count != 0 && record.*offset != 0 ? at + record.*offset : 0;
  });
}

int64_t InModels(const std::string& mdl, const std::function<int64_t(const StudioModel&, int64_t)>& wanted) {
  const StudioHeader header = HeaderOfFile(mdl);
  return FirstOf<model::StudioBodyPart>(
      mdl, header.BodyPartOffset, header.BodyPartCount, [&](const auto& part, int64_t at) {
        return FirstOf<StudioModel>(mdl, at + part.ModelOffset, part.ModelCount, wanted);
      });
}

int64_t BoneMovedBy(const std::string& mdl, int32_t procedure) {
  const StudioHeader header = HeaderOfFile(mdl);
  return FirstOf<StudioBone>(mdl, header.BoneOffset, header.BoneCount, [&](const auto& bone, int64_t at) {
    return bone.ProceduralType == procedure ? at + bone.ProceduralOffset : 0;
  });
}

/// Where the first record of a table stands.
using Find = std::function<int64_t(const std::string&)>;

template <auto Offset>
int64_t InHeader(const std::string& mdl) {
  return HeaderOfFile(mdl).*Offset;
}

enum class Kind { Float, Whole, Short, Byte, Bit };

struct Field {
  const char* Name;
  int64_t Offset;
  Kind What;
  int Number = 0;  // of a bit
};
struct Table {
  const char* Name;
  Find First;
  std::vector<Field> Fields;
};

std::vector<Table> Tables() {
  using enum Kind;
  const Find hitbox = [](const std::string& mdl) {
    const int64_t set = HeaderOfFile(mdl).HitboxSetOffset;
    return set + RecordAt<model::StudioHitboxSet>(mdl, set).HitboxOffset;
  };
  const Find link = [](const std::string& mdl) {
    const int64_t chain = HeaderOfFile(mdl).IkChainOffset;
    return chain + RecordAt<model::StudioIkChain>(mdl, chain).LinkOffset;
  };
  const Find eyeball = [](const std::string& mdl) {
    return InModels(mdl, [](const auto& m, int64_t at) { return m.EyeballCount > 0 ? at + m.EyeballOffset : 0; });
  };
  const Find flex = [](const std::string& mdl) {
    return InModels(mdl, [&](const auto& m, int64_t at) {
      return FirstOf<model::StudioMesh>(mdl, at + m.MeshOffset, m.MeshCount, [](const auto& mesh, int64_t place) {
        return mesh.FlexCount > 0 ? place + mesh.FlexOffset : 0;
      });
    });
  };
  const Find operation = [](const std::string& mdl) {
    const int64_t rule = HeaderOfFile(mdl).FlexRuleOffset;
    return rule + RecordAt<model::StudioFlexRule>(mdl, rule).OpOffset;
  };
  const Find trigger = [](const std::string& mdl) {
    const int64_t driven = BoneMovedBy(mdl, model::BoneProcedureDriven);
    return driven == 0 ? 0 : driven + RecordAt<model::StudioDrivenBone>(mdl, driven).TriggerOffset;
  };
  const Find weights = [](const std::string& mdl) { return InSequences(mdl, nullptr, &StudioSeqDesc::WeightOffset); };
  return {
      {"header",
       [](const std::string&) { return 0; },
       {{"eye", 0x50, Float},
        {"illumination", 0x5C, Float},
        {"hull", 0x68, Float},
        {"view box", 0x80, Float},
        {"opaque", 0x98, Bit, 2},
        {"mostly opaque", 0x98, Bit, 3},
        {"unknown flag", 0x98, Bit, 12},
        {"mass", 0x148, Float},
        {"contents", 0x14C, Whole},
        {"light", 0x178, Byte},
        {"finest level", 0x179, Byte},
        {"levels", 0x17A, Byte}}},
      {"second header", InHeader<&StudioHeader::SecondHeaderOffset>, {{"illumination's attachment", 8, Whole}}},
      {"bone",
       InHeader<&StudioHeader::BoneOffset>,
       {{"position", 0x20, Float}, {"merge", 0xA0, Bit, 18}, {"alignment", 0xA0, Bit, 20}, {"contents", 0xB4, Whole}}},
      {"hit box", hitbox, {{"bone", 0, Whole}, {"group", 4, Whole}, {"least", 8, Float}, {"most", 0x14, Float}}},
      {"attachment",
       InHeader<&StudioHeader::AttachmentOffset>,
       {{"flags", 4, Bit, 0}, {"bone", 8, Whole}, {"place", 0x18, Float}}},
      {"pose parameter",
       InHeader<&StudioHeader::PoseParameterOffset>,
       {{"loop", 4, Bit, 0}, {"flags", 4, Bit, 1}, {"start", 8, Float}, {"end", 12, Float}, {"wrap", 16, Float}}},
      {"ik chain", InHeader<&StudioHeader::IkChainOffset>, {{"type", 4, Whole}}},
      {"ik link", link, {{"bone", 0, Whole}, {"knee", 4, Float}, {"next knee", 28 + 4, Float}}},
      {"autoplay lock",
       InHeader<&StudioHeader::IkLockOffset>,
       {{"chain", 0, Whole}, {"position", 4, Float}, {"rotation", 8, Float}, {"flags", 12, Whole}}},
      {"animation",
       InHeader<&StudioHeader::AnimOffset>,
       {{"fps", 8, Float}, {"loop", 12, Bit, 0}, {"flags", 12, Bit, 6}, {"hierarchy", 0x48, Whole}}},
      {"movement",
       [](const std::string& mdl) {
         return InAnimations(mdl, &StudioAnimDesc::MovementCount, &StudioAnimDesc::MovementOffset);
       },
       {{"axes", 4, Bit, 2}, {"other axes", 4, Bit, 3}, {"angle", 16, Float}, {"end", 0x20, Float}}},
      {"ik rule",
       [](const std::string& mdl) {
         return InAnimations(mdl, &StudioAnimDesc::IkRuleCount, &StudioAnimDesc::IkRuleOffset);
       },
       {{"type", 4, Whole},
        {"chain", 8, Whole},
        {"bone", 12, Whole},
        {"slot", 16, Whole},
        {"height", 20, Float},
        {"radius", 24, Float},
        {"floor", 28, Float},
        {"place", 32, Float},
        {"start", 0x4C, Float},
        {"peak", 0x50, Float},
        {"tail", 0x54, Float},
        {"drop", 0x5C, Float},
        {"contact", 0x60, Float},
        {"rest", 0x68, Float}}},
      {"sequence",
       InHeader<&StudioHeader::SequenceOffset>,
       {{"snap", 12, Bit, 1},
        {"autoplay", 12, Bit, 3},
        {"realtime", 12, Bit, 8},
        {"unknown flag", 12, Bit, 18},
        {"weight", 20, Whole},
        {"fade in", 0x68, Float},
        {"fade out", 0x6C, Float},
        {"entry phase", 0x7C, Float},
        {"exit phase", 0x80, Float}}},
      {"event",
       [](const std::string& mdl) { return InSequences(mdl, &StudioSeqDesc::EventCount, &StudioSeqDesc::EventOffset); },
       {{"cycle", 0, Float}, {"number", 4, Whole}, {"options", 12, Byte}}},
      {"layer",
       [](const std::string& mdl) { return InSequences(mdl, &StudioSeqDesc::LayerCount, &StudioSeqDesc::LayerOffset); },
       {{"sequence", 0, Short}, {"flags", 4, Bit, 2}, {"local", 4, Bit, 12}}},
      {"lock",
       [](const std::string& mdl) {
         return InSequences(mdl, &StudioSeqDesc::IkLockCount, &StudioSeqDesc::IkLockOffset);
       },
       {{"chain", 0, Whole}, {"position", 4, Float}, {"rotation", 8, Float}, {"flags", 12, Whole}}},
      {"weights", weights, {{"first", 0, Float}}},
      {"eyeball", eyeball, {{"bone", 4, Whole}, {"place", 8, Float}, {"radius", 0x18, Float}, {"iris", 0x3C, Float}}},
      {"flex", flex, {{"begin", 4, Float}, {"whole", 8, Float}, {"end", 16, Float}}},
      {"controller", InHeader<&StudioHeader::FlexControllerOffset>, {{"least", 12, Float}, {"most", 16, Float}}},
      {"mouth", InHeader<&StudioHeader::MouthOffset>, {{"bone", 0, Whole}, {"forward", 4, Float}, {"flex", 16, Whole}}},
      {"operation", operation, {{"kind", 0, Whole}, {"operand", 4, Whole}}},
      {"jiggle bone",
       [](const std::string& mdl) { return BoneMovedBy(mdl, model::BoneProcedureJiggle); },
       {{"length", 4, Float}, {"mass", 8, Float}, {"yaw stiffness", 12, Float}, {"yaw damping", 16, Float}}},
      {"trigger", trigger, {{"tolerance", 0, Float}, {"place", 0x14, Float}}},
  };
}

/// Puts another value where one stands.
void Change(std::string& mdl, int64_t at, const Field& field) {
  const auto put = [&](auto value) { std::memcpy(mdl.data() + at, &value, sizeof value); };
  if (field.What == Kind::Float) {
    const auto value = RecordAt<float>(mdl, at);
    put(value == 0 ? 0.25f : value * 1.25f);
  } else if (field.What == Kind::Short) {
    put(static_cast<int16_t>(RecordAt<int16_t>(mdl, at) + 1));
  } else if (field.What == Kind::Byte) {
    put(static_cast<uint8_t>(RecordAt<uint8_t>(mdl, at) + 1));
  } else if (field.What == Kind::Whole) {
    put(RecordAt<int32_t>(mdl, at) + 1);
  } else {
    put(RecordAt<uint32_t>(mdl, at) ^ 1U << field.Number);
  }
}

bool IsSame(const std::string& a, int64_t atA, const std::string& b, int64_t atB, const Field& field) {
  if (field.What == Kind::Float) {
    const double x = RecordAt<float>(a, atA), y = RecordAt<float>(b, atB);
    return std::abs(x - y) <= 2e-3 * std::max(1.0, std::abs(x));
  }
  if (field.What == Kind::Short) return RecordAt<int16_t>(a, atA) == RecordAt<int16_t>(b, atB);
  if (field.What == Kind::Byte) return RecordAt<uint8_t>(a, atA) == RecordAt<uint8_t>(b, atB);
  const uint32_t other = RecordAt<uint32_t>(a, atA) ^ RecordAt<uint32_t>(b, atB);
  return field.What == Kind::Whole ? other == 0 : (other >> field.Number & 1) == 0;
}

/// A model's sources: what is lost in them, and the model that they make.
struct TakenApart {
  bool Sound = false;  // else damage is told, which is no silence
  std::string Lost;
  std::optional<CompiledFiles> Again;

  explicit TakenApart(const CompiledFiles& files) {
    const ScratchFolder folder, sources;
    const decompiler::DecompileJob job{.ModelPath = WriteCompiled(folder, files),
                                       .OutputDirectory = sources.Path(),
                                       .Options = decompiler::DecompileOptionReadyToCompile};
    RecordingReport report;
    const auto result = decompiler::DecompileModel(job, report);
    Sound = result.Succeeded();
    for (const auto& lost : result.Lost) Lost += lost.Kind + " " + std::to_string(lost.Count) + "\n";
    CompileOptions options;
    options.NormalAngle = 0;
    options.KeepValues = true;
    CompileReport told;
    Again = CompileToMemory(sources.Path("ravelback.qc"), options, told);
  }
};

TEST(SilentLoss, EachValueComesBackOrIsTold) {
  const uint32_t things =
      ((1U << RandomThings) - 1) & ~uint32_t{RandomStatic | RandomOddMeshes | RandomBigSkeleton | RandomNames |
                                             RandomShape | RandomRepeats | RandomLongAnimations | RandomHeader};
  ScratchFolder authors;
  for (const auto& [name, text] : RandomSources(7, things)) WriteText(authors.Path(name), text);
  CompileReport told;
  const auto files = CompileToMemory(authors.Path("model.qc"), {}, told);
  ASSERT_TRUE(files);
  const TakenApart unchanged(*files);
  for (const Table& table : Tables()) {
    const int64_t first = table.First(files->Mdl);
    ASSERT_TRUE(first > 0 || std::string_view(table.Name) == "header") << table.Name;
    for (const Field& field : table.Fields) {
      SCOPED_TRACE(std::string(table.Name) + ": " + field.Name);
      CompiledFiles other = *files;
      std::string& mdl = other.Mdl;
      Change(mdl, first + field.Offset, field);
      const TakenApart changed(other);
      if (!changed.Sound || changed.Lost != unchanged.Lost) continue;
      ASSERT_TRUE(changed.Again) << "does not compile";
      const int64_t again = table.First(changed.Again->Mdl);
      EXPECT_TRUE(IsSame(mdl, first + field.Offset, changed.Again->Mdl, again + field.Offset, field))
          << "lost in silence";
    }
  }
}

}  // namespace
}  // namespace tarnwick::compiler

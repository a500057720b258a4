#include "model/comparison/compared_tables.h"
#include "model/comparison/record_fields.h"
#include "model/script_records.h"

namespace tarnwick::model {

namespace {

constexpr RecordField HitboxFields[] = {
    {"bone of a hit box", offsetof(StudioHitbox, Bone)},
    {"group of a hit box", offsetof(StudioHitbox, Group)},
    {"sides of a hit box", offsetof(StudioHitbox, Minimum), 6, 1e-4},
};
constexpr RecordField AttachmentFields[] = {
    {"flags", offsetof(StudioAttachment, Flags)},
    {"bone", offsetof(StudioAttachment, Bone)},
    {"placement", offsetof(StudioAttachment, Placement), 12, AngleGrain},
};
constexpr RecordField LinkFields[] = {
    {"bone of a link", offsetof(StudioIkLink, Bone)},
    {"knee direction of a link", offsetof(StudioIkLink, KneeDirection), 3, AngleGrain},
};
constexpr RecordField LockFields[] = {
    {"chain of a lock", offsetof(StudioIkLock, Chain)},
    {"weights of a lock", offsetof(StudioIkLock, PositionWeight), 2, TextGrain},
    {"flags of a lock", offsetof(StudioIkLock, Flags)},
};
constexpr RecordField PoseParameterFields[] = {
    {"flags", offsetof(StudioPoseParameter, Flags)},
    {"range", offsetof(StudioPoseParameter, Start), 2, TextGrain},
    {"loop", offsetof(StudioPoseParameter, Wrap), 1, TextGrain},
};

using Range = std::pair<int64_t, int64_t>;

/// Compares tables whose records hold a name first, and by `fields` what else they hold.
template <typename T>
void CompareNamed(const ComparedModels& models, ModelTable table, const std::string& kind, Range first, Range second,
                  std::span<const RecordField> fields) {
  CompareTables<T>(models, table, kind + "s", first, second,
                   [&](const core::Record<T>& a, const core::Record<T>& b, int64_t i) {
                     const std::string_view name = TextOf(models.First, a, a->NameOffset);
                     const auto where = [&] { return Place(kind, name, i); };
                     models.Differences.Text(table, "name", where, name, TextOf(models.Second, b, b->NameOffset));
                     CompareFields(models.Differences, table, fields, *a, *b, where);
                   });
}

void CompareHitboxes(const ComparedModels& models, const StudioHeader& a, const StudioHeader& b) {
  CompareTables<StudioHitboxSet>(
      models, ModelTable::Boxes, "hit box sets", {a.HitboxSetOffset, a.HitboxSetCount},
      {b.HitboxSetOffset, b.HitboxSetCount}, [&](const auto& first, const auto& second, int64_t set) {
        const std::string name = Place("hit box set", TextOf(models.First, first, first->NameOffset), set);
        const auto where = [&] { return std::string(name); };
        models.Differences.Text(ModelTable::Boxes, "name of a hit box set", where,
                                TextOf(models.First, first, first->NameOffset),
                                TextOf(models.Second, second, second->NameOffset));
        CompareTables<StudioHitbox>(
            models, ModelTable::Boxes, "hit boxes", where, {first.Offset() + first->HitboxOffset, first->HitboxCount},
            {second.Offset() + second->HitboxOffset, second->HitboxCount},
            [&](const auto& one, const auto& other, int64_t i) {
              const auto box = [&] { return name + ", box " + std::to_string(i); };
              CompareFields(models.Differences, ModelTable::Boxes, HitboxFields, *one, *other, box);
              models.Differences.Text(ModelTable::Boxes, "name of a hit box", box,
                                      TextOf(models.First, one, one->NameOffset),
                                      TextOf(models.Second, other, other->NameOffset));
            });
      });
}

void CompareChains(const ComparedModels& models, const StudioHeader& a, const StudioHeader& b) {
  CompareNamed<StudioIkChain>(models, ModelTable::IkChains, "chain", {a.IkChainOffset, a.IkChainCount},
                              {b.IkChainOffset, b.IkChainCount}, {});
  CompareTables<StudioIkChain>(
      models, ModelTable::IkChains, "chains", {a.IkChainOffset, a.IkChainCount}, {b.IkChainOffset, b.IkChainCount},
      [&](const auto& first, const auto& second, int64_t chain) {
        const auto where = [&] { return Place("chain", TextOf(models.First, first, first->NameOffset), chain); };
        CompareTables<StudioIkLink>(
            models, ModelTable::IkChains, "links", where, {first.Offset() + first->LinkOffset, first->LinkCount},
            {second.Offset() + second->LinkOffset, second->LinkCount},
            [&](const auto& one, const auto& other, int64_t) {
              CompareFields(models.Differences, ModelTable::IkChains, LinkFields, *one, *other, where);
            });
      });
  CompareTables<StudioIkLock>(models, ModelTable::IkChains, "locks", {a.IkLockOffset, a.IkLockCount},
                              {b.IkLockOffset, b.IkLockCount}, [&](const auto& one, const auto& other, int64_t i) {
                                CompareFields(models.Differences, ModelTable::IkChains, LockFields, *one, *other,
                                              [&] { return "lock " + std::to_string(i); });
                              });
}

void CompareMaterials(const ComparedModels& models, const StudioHeader& a, const StudioHeader& b) {
  CompareNamed<StudioTexture>(models, ModelTable::Materials, "texture", {a.TextureOffset, a.TextureCount},
                              {b.TextureOffset, b.TextureCount}, {});
  CompareTables<StudioOffset>(
      models, ModelTable::Materials, "folders", {a.MaterialDirectoryOffset, a.MaterialDirectoryCount},
      {b.MaterialDirectoryOffset, b.MaterialDirectoryCount}, [&](const auto& one, const auto& other, int64_t i) {
        const auto where = [&] { return "folder " + std::to_string(i); };
        const std::string first = WithSlashes(models.First.Model.Name(one->Offset).value_or(""));
        const std::string second = WithSlashes(models.Second.Model.Name(other->Offset).value_or(""));
        if (second == first + "/") {
          models.Differences.Add(ModelTable::Materials, "folder", where(), first, second, 0, false,
                                 "a compile ends all folders with a slash");
        } else {
          models.Differences.Text(ModelTable::Materials, "folder", where, first, second);
        }
      });
  const auto nowhere = [] { return std::string(); };
  models.Differences.Whole(ModelTable::Skins, "number of families", nowhere, a.SkinFamilyCount, b.SkinFamilyCount);
  models.Differences.Whole(ModelTable::Skins, "textures of a family", nowhere, a.SkinReferenceCount,
                           b.SkinReferenceCount);
  if (a.SkinFamilyCount != b.SkinFamilyCount || a.SkinReferenceCount != b.SkinReferenceCount) return;
  const int64_t count = int64_t{a.SkinFamilyCount} * a.SkinReferenceCount;
  CompareTables<StudioShort>(models, ModelTable::Skins, "entries", {a.SkinOffset, count}, {b.SkinOffset, count},
                             [&](const auto& one, const auto& other, int64_t i) {
                               models.Differences.Whole(
                                   ModelTable::Skins, "texture",
                                   [&] {
                                     return "skin " + std::to_string(i / a.SkinReferenceCount) + ", texture " +
                                            std::to_string(i % a.SkinReferenceCount);
                                   },
                                   one->Value, other->Value);
                             });
}

/// Nodes, and which of them sequences lead to from which.
void CompareNodes(const ComparedModels& models, const StudioHeader& a, const StudioHeader& b) {
  CompareTables<StudioOffset>(
      models, ModelTable::Sequences, "nodes", {a.NodeNameOffset, a.NodeCount}, {b.NodeNameOffset, b.NodeCount},
      [&](const auto& one, const auto& other, int64_t i) {
        models.Differences.Text(
            ModelTable::Sequences, "name of a node", [&] { return "node " + std::to_string(i); },
            models.First.Model.Name(one->Offset).value_or(""), models.Second.Model.Name(other->Offset).value_or(""));
      });
  if (a.NodeCount != b.NodeCount || a.NodeCount <= 0) return;
  const int64_t count = int64_t{a.NodeCount} * a.NodeCount;
  const auto first = models.First.Model.View().Bytes(a.NodeOffset, count);
  const auto second = models.Second.Model.View().Bytes(b.NodeOffset, count);
  if (!first || !second) return;
  for (size_t i = 0; i < first->size(); ++i) {
    models.Differences.Whole(
        ModelTable::Sequences, "transition",
        [&] {
          const auto nodes = static_cast<size_t>(a.NodeCount);
          return "node " + std::to_string(i / nodes) + " to node " + std::to_string(i % nodes);
        },
        std::to_integer<int64_t>((*first)[i]), std::to_integer<int64_t>((*second)[i]));
  }
}

}  // namespace

void CompareScriptTables(const ComparedModels& models) {
  const auto firstHeader = models.First.Model.Header();
  const auto secondHeader = models.Second.Model.Header();
  const StudioHeader& a = *firstHeader;
  const StudioHeader& b = *secondHeader;
  CompareHitboxes(models, a, b);
  CompareNamed<StudioAttachment>(models, ModelTable::Attachments, "attachment", {a.AttachmentOffset, a.AttachmentCount},
                                 {b.AttachmentOffset, b.AttachmentCount}, AttachmentFields);
  CompareChains(models, a, b);
  CompareNamed<StudioPoseParameter>(models, ModelTable::PoseParameters, "pose parameter",
                                    {a.PoseParameterOffset, a.PoseParameterCount},
                                    {b.PoseParameterOffset, b.PoseParameterCount}, PoseParameterFields);
  CompareMaterials(models, a, b);
  CompareNodes(models, a, b);
  CompareTables<StudioIncludeModel>(
      models, ModelTable::Header, "included models", {a.IncludeModelOffset, a.IncludeModelCount},
      {b.IncludeModelOffset, b.IncludeModelCount}, [&](const auto& one, const auto& other, int64_t i) {
        models.Differences.Text(
            ModelTable::Header, "included model", [&] { return "included model " + std::to_string(i); },
            WithSlashes(TextOf(models.First, one, one->NameOffset)),
            WithSlashes(TextOf(models.Second, other, other->NameOffset)));
      });
}

}  // namespace tarnwick::model

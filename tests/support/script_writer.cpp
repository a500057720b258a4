#include "support/model_builder.h"
#include "support/model_writer.h"

namespace tarnwick::tests {

namespace {

using namespace model;

void WriteHitboxes(const ModelBuilder& model, FileBuilder& mdl) {
  const auto sets = ReserveInHeader<StudioHitboxSet>(model.HitboxSets, "hitbox sets", mdl,
                                                     &StudioHeader::HitboxSetCount, &StudioHeader::HitboxSetOffset);
  for (int64_t i = 0; i < sets.Count; ++i) {
    const HitboxSetDescription& set = model.HitboxSets[static_cast<size_t>(i)];
    const auto boxes = mdl.Reserve<StudioHitbox>(static_cast<int64_t>(set.Hitboxes.size()),
                                                 PlaceName("hitboxes", {static_cast<size_t>(i)}));
    for (int64_t box = 0; box < boxes.Count; ++box) {
      const HitboxDescription& described = set.Hitboxes[static_cast<size_t>(box)];
      boxes[box].Bone = described.Bone;
      boxes[box].Group = described.Group;
      boxes[box].Minimum = described.Minimum;
      boxes[box].Maximum = described.Maximum;
    }
    const int32_t name = mdl.Text(set.Name);
    sets[i] = StudioHitboxSet{sets.To(name, i), static_cast<int32_t>(boxes.Count), sets.To(boxes.Offset, i)};
    mdl.Align(4);
  }
}

void WriteAttachments(const ModelBuilder& model, FileBuilder& mdl) {
  const auto table = ReserveInHeader<StudioAttachment>(model.Attachments, "attachments", mdl,
                                                       &StudioHeader::AttachmentCount, &StudioHeader::AttachmentOffset);
  for (int64_t i = 0; i < table.Count; ++i) {
    const AttachmentDescription& attachment = model.Attachments[static_cast<size_t>(i)];
    const int32_t name = mdl.Text(attachment.Name);
    table[i].NameOffset = table.To(name, i);
    table[i].Bone = attachment.Bone;
    table[i].Placement = attachment.Placement;
  }
  mdl.Align(4);
}

void WriteIkChains(const ModelBuilder& model, FileBuilder& mdl) {
  const auto chains = ReserveInHeader<StudioIkChain>(model.IkChains, "ik chains", mdl, &StudioHeader::IkChainCount,
                                                     &StudioHeader::IkChainOffset);
  for (int64_t i = 0; i < chains.Count; ++i) {
    const IkChainDescription& chain = model.IkChains[static_cast<size_t>(i)];
    const auto links = mdl.Reserve<StudioIkLink>(static_cast<int64_t>(chain.Links.size()),
                                                 PlaceName("ik links", {static_cast<size_t>(i)}));
    for (int64_t link = 0; link < links.Count; ++link) {
      const IkLinkDescription& described = chain.Links[static_cast<size_t>(link)];
      links[link] = StudioIkLink{described.Bone, described.KneeDirection, {}};
    }
    const int32_t name = mdl.Text(chain.Name);
    chains[i] = StudioIkChain{chains.To(name, i), 0, static_cast<int32_t>(links.Count), chains.To(links.Offset, i)};
    mdl.Align(4);
  }
  HeaderOf(mdl).IkLockCount = static_cast<int32_t>(model.AutoplayLocks.size());
  const auto locks = static_cast<int32_t>(WriteRecords(model.AutoplayLocks, "autoplay locks", mdl));
  HeaderOf(mdl).IkLockOffset = locks;
}

void WritePoseParameters(const ModelBuilder& model, FileBuilder& mdl) {
  const auto table =
      ReserveInHeader<StudioPoseParameter>(model.PoseParameters, "pose parameters", mdl,
                                           &StudioHeader::PoseParameterCount, &StudioHeader::PoseParameterOffset);
  for (int64_t i = 0; i < table.Count; ++i) {
    const PoseParameterDescription& pose = model.PoseParameters[static_cast<size_t>(i)];
    const int32_t name = mdl.Text(pose.Name);
    table[i] = StudioPoseParameter{table.To(name, i), 0, pose.Start, pose.End, pose.Wrap};
  }
  mdl.Align(4);
}

void WriteIncludes(const ModelBuilder& model, FileBuilder& mdl) {
  WriteNamesInHeader<StudioIncludeModel>(model.IncludedModels, "includes", mdl, &StudioHeader::IncludeModelCount,
                                         &StudioHeader::IncludeModelOffset);
}

}  // namespace

int32_t WriteTextTable(const std::vector<std::string>& texts, const std::string& name, FileBuilder& mdl) {
  const auto table = mdl.Reserve<StudioOffset>(static_cast<int64_t>(texts.size()), name);
  for (int64_t i = 0; i < table.Count; ++i) {
    const int32_t text = mdl.Text(texts[static_cast<size_t>(i)]);
    table[i].Offset = text;
  }
  mdl.Align(4);
  return table.At(0);
}

void WriteMaterials(const ModelBuilder& model, FileBuilder& mdl) {
  WriteNamesInHeader<StudioTexture>(model.Textures, "textures", mdl, &StudioHeader::TextureCount,
                                    &StudioHeader::TextureOffset);

  HeaderOf(mdl).MaterialDirectoryCount = static_cast<int32_t>(model.MaterialDirectories.size());
  const int32_t directories = WriteTextTable(model.MaterialDirectories, "material directories", mdl);
  HeaderOf(mdl).MaterialDirectoryOffset = directories;

  mdl.Mark("skins");
  HeaderOf(mdl).SkinFamilyCount = static_cast<int32_t>(model.SkinFamilies.size());
  HeaderOf(mdl).SkinReferenceCount =
      model.SkinFamilies.empty() ? 0 : static_cast<int32_t>(model.SkinFamilies.front().size());
  HeaderOf(mdl).SkinOffset = static_cast<int32_t>(mdl.Size());
  for (const auto& family : model.SkinFamilies) {
    for (const int16_t texture : family) mdl.AppendValue(texture);
  }
  mdl.Align(4);
}

void WriteScriptRecords(const ModelBuilder& model, FileBuilder& mdl) {
  WritePoseParameters(model, mdl);
  WriteHitboxes(model, mdl);
  WriteAttachments(model, mdl);
  WriteIncludes(model, mdl);
  WriteIkChains(model, mdl);

  HeaderOf(mdl).NodeCount = static_cast<int32_t>(model.Nodes.size());
  const int32_t nodes = WriteTextTable(model.Nodes, "nodes", mdl);
  HeaderOf(mdl).NodeNameOffset = nodes;
  const int32_t surfaceProp = mdl.Text(model.SurfaceProp);
  HeaderOf(mdl).SurfacePropOffset = surfaceProp;
  if (!model.KeyValues.empty()) {
    const int32_t keyValues = mdl.Text(model.KeyValues);
    HeaderOf(mdl).KeyValueOffset = keyValues;
    HeaderOf(mdl).KeyValueSize = static_cast<int32_t>(model.KeyValues.size()) + 1;
  }
}

}  // namespace tarnwick::tests

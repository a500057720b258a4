#include "decompiler/sources/face.h"

#include <algorithm>
#include <string>

#include "decompiler/sources/script_values.h"
#include "decompiler/stages/vta_file.h"

namespace tarnwick::decompiler::sources {

namespace {

constexpr std::string_view VtaStem = "ravelback_expressions";

constexpr float NeverEnds = 10, Ended = 11;

/// Writes the lines of a flexfile block. Shapes of one descriptor follow each other; where there are several, each has
/// the place from which the next one takes over.
class FlexLines {
 public:
  FlexLines(JobContext& job, const FaceShapes& shapes, FaceNames& names)
      : m_job(job), m_shapes(shapes), m_names(names) {}

  void Write(size_t number, int32_t frame) {
    const FaceShape& shape = m_shapes.Shapes[number];
    m_names.Declare(static_cast<int64_t>(shape.Descriptor));
    std::string line = "      ";
    if (shape.Partner == 0) {
      line += "flex " + NameOf(shape.Descriptor);
    } else {
      line += PairWords(shape);
    }
    line += " frame " + std::to_string(frame);
    const float whole = shape.Targets[1];
    if (whole != 1) line += " position " + Number(m_job, whole);
    if (const float decay = FindDecay(m_job, m_shapes, shape); decay != 1) line += " decay " + Number(m_job, decay);
    if (!FollowsFromPlaces(number)) m_job.Lose("flexes that come and go at other weights than their places say");
    m_job.Script().Text(line + "\n");
  }

 private:
  std::string NameOf(size_t descriptor) const { return Quoted(m_job, m_names.Descriptors[descriptor]); }

  /// A pair has one name, to which a compile adds R and L, the right one first.
  std::string PairWords(const FaceShape& shape) {
    const std::string_view name = m_names.Descriptors[shape.Descriptor];
    const bool held = m_names.Has(shape.Partner);
    const std::string_view other = held ? m_names.Descriptors[static_cast<size_t>(shape.Partner)] : std::string_view();
    const bool paired = name.size() > 1 && other.size() == name.size() &&
                        name.substr(0, name.size() - 1) == other.substr(0, name.size() - 1) &&
                        ((name.back() == 'R' && other.back() == 'L') || (name.back() == 'L' && other.back() == 'R'));
    if (!paired) {
      m_job.Lose("pairs of flexes whose names do not end in R and L");
      return "flex " + NameOf(shape.Descriptor);
    }
    m_names.Declare(shape.Partner);
    const bool leftFirst = name.back() == 'L';
    // A compile puts the left one first where its name was said first.
    if (leftFirst && static_cast<int64_t>(shape.Descriptor) > shape.Partner) {
      m_job.Lose("pairs of flexes that begin with the left one");
    }
    const PairSplit split = FindPairSplit(m_job, m_shapes, shape);
    if (split.IsMirrored != leftFirst) m_job.Lose("pairs of flexes whose sides are exchanged");
    if (!split.IsExact) m_job.Lose("pairs of flexes whose sides no split gives");
    return "flexpair " + Quoted(m_job, name.substr(0, name.size() - 1)) + " " + Number(m_job, split.Width);
  }

  /// Whether the weights are those of shapes that follow one another by their places: each begins where the one ahead
  /// is whole and ends where the next one is; the last stays.
  bool FollowsFromPlaces(size_t number) {
    const std::vector<FaceShape>& all = m_shapes.Shapes;
    const FaceShape& shape = all[number];
    size_t first = number, end = number + 1;
    while (first > 0 && all[first - 1].Descriptor == shape.Descriptor) --first;
    while (end < all.size() && all[end].Descriptor == shape.Descriptor) ++end;
    if (!m_job.Spend(static_cast<int64_t>(end - first))) return true;
    float before = 0, behind = Ended, behindWhole = NeverEnds;
    float nearestBefore = -1, nearestBehind = 2;
    for (size_t i = first; i < end; ++i) {
      const float place = all[i].Targets[1];
      if (place < shape.Targets[1] && place > nearestBefore) nearestBefore = before = place;
      if (place > shape.Targets[1] && place < nearestBehind) {
        nearestBehind = behind = place;
        behindWhole = shape.Targets[1];
      }
    }
    return shape.Targets[0] == before && shape.Targets[2] == behindWhole && shape.Targets[3] == behind;
  }

  JobContext& m_job;
  const FaceShapes& m_shapes;
  FaceNames& m_names;
};

/// Whether the lines of the model's block name their descriptors in the order in which the file has them, behind those
/// that blocks ahead of it named.
bool AreNamedInOrder(JobContext& job, const core::Record<StudioModel>& model, const FaceShapes& shapes,
                     const std::vector<bool>& ofLids, const FaceNames& names) {
  std::vector<bool> known = names.Known;
  int64_t next = std::find(known.begin(), known.end(), false) - known.begin();
  bool inOrder = true;
  const auto name = [&](int64_t descriptor) {
    if (!names.Has(descriptor) || known[static_cast<size_t>(descriptor)]) return;
    known[static_cast<size_t>(descriptor)] = true;
    inOrder = inOrder && descriptor == next++;
  };
  for (size_t i = 0; i < shapes.Shapes.size(); ++i) {
    if (ofLids[i]) continue;
    const FaceShape& shape = shapes.Shapes[i];
    const bool leftFirst = shape.Partner != 0 && names.Descriptors[shape.Descriptor].ends_with('L');
    if (leftFirst) name(shape.Partner);
    name(static_cast<int64_t>(shape.Descriptor));
    if (shape.Partner != 0) name(shape.Partner);
  }
  for (const int32_t descriptor : LidDescriptors(job, model)) name(descriptor);
  return inOrder;
}

/// Says all names that were not said yet ahead of the lines that use them, so that a compile numbers them as the file
/// does.
void WriteAllNames(JobContext& job, FaceNames& names) {
  for (size_t d = 0; d < names.Descriptors.size() && job.ScriptWithinBounds(); ++d) {
    if (names.Known[d]) continue;
    job.Script().Text("    localvar " + Quoted(job, names.Descriptors[d]) + "\n");
    names.Declare(static_cast<int64_t>(d));
  }
}

}  // namespace

std::optional<FaceNames> ReadFaceNames(JobContext& job) {
  const auto header = job.Model.Header();
  const auto table = job.Table<StudioFlexDesc>("flex descriptor table", header->FlexDescOffset, header->FlexDescCount);
  if (!table) return std::nullopt;
  FaceNames names;
  for (const auto descriptor : *table) {
    const auto name = job.NameOf("flex descriptor name", descriptor, descriptor->NameOffset);
    if (!name) return std::nullopt;
    names.Descriptors.push_back(*name);
  }
  names.Known.resize(names.Descriptors.size());
  return names;
}

void WriteModelFace(JobContext& job, const core::Record<StudioModel>& model, FaceNames& names) {
  const auto shapes = GatherFaceShapes(job, model, names.Descriptors.size());
  if (!shapes) return job.Lose("faces that cannot be read");
  if (!job.Spend(static_cast<int64_t>(names.Descriptors.size()))) return job.Lose("faces that cannot be read");
  const std::vector<bool> ofLids = FindLidShapes(job, model, *shapes);
  if (!AreNamedInOrder(job, model, *shapes, ofLids, names)) WriteAllNames(job, names);
  std::vector<int32_t> frames(shapes->Shapes.size());
  std::vector<VtaFrame> vta;
  for (size_t i = 0; i < frames.size(); ++i) {
    frames[i] = static_cast<int32_t>(i) + 1;
    vta.push_back({frames[i], names.Descriptors[shapes->Shapes[i].Descriptor], shapes->Shapes[i].Flexes});
  }
  // Eyes and lids without a shape need the file all the same: their lines name it.
  std::string file;
  if (!frames.empty() || model->EyeballCount > 0) {
    file = job.Names.Take(VtaStem, ".vta");
    if (!WriteVtaFile(job, model, shapes->Flexes, file, vta, static_cast<int32_t>(frames.size()))) {
      job.Script().Text("    // the face is left out, since its vertices cannot be read\n");
      return job.Lose("faces that cannot be read");
    }
    job.Script().Text("    flexfile " + Quoted(job, file) + " {\n      defaultflex frame 0\n");
    FlexLines lines(job, *shapes, names);
    for (size_t i = 0; i < frames.size() && job.ScriptWithinBounds(); ++i) {
      if (!ofLids[i]) lines.Write(i, frames[i]);
    }
    job.Script().Text("    }\n");
    CountLostOfShapes(job, *shapes);
  }
  WriteEyes(job, model, names, file, *shapes, frames);
}

void LoseModelFace(JobContext& job, const core::Record<StudioModel>& model) {
  job.Lose("eyes of models that a body group offers", std::max<int32_t>(+model->EyeballCount, 0));
  const auto meshes = job.Model.View().Array<StudioMesh>(model.Offset() + model->MeshOffset, model->MeshCount);
  if (!meshes) return;
  for (const auto mesh : *meshes) {
    job.Lose("flexes of models that a body group offers", std::max<int32_t>(+mesh->FlexCount, 0));
  }
}

}  // namespace tarnwick::decompiler::sources

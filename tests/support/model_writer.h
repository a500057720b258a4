#pragma once

#include <cstdint>
#include <vector>

#include "model/animation_records.h"
#include "model/face_records.h"
#include "model/script_records.h"
#include "model/studio_records.h"
#include "support/animation_description.h"
#include "support/file_builder.h"
#include "support/mesh_description.h"

namespace tarnwick::tests {

struct ModelBuilder;

// The parts of the model writer. Each adds its records behind what the file holds already and enters them in the
// header, which stands at the file's start.

/// The header of a file that begins with one.
inline model::StudioHeader& HeaderOf(FileBuilder& file) {
  return file.Record<model::StudioHeader>("header");
}

/// Adds a table with a record for each of `described` and enters it in the header, in the two fields that are named.
template <core::PackedRecord T, typename D>
FileBuilder::Table<T> ReserveInHeader(const std::vector<D>& described, const std::string& name, FileBuilder& file,
                                      int32_t model::StudioHeader::*count, int32_t model::StudioHeader::*offset) {
  const auto table = file.Reserve<T>(static_cast<int64_t>(described.size()), name);
  HeaderOf(file).*count = static_cast<int32_t>(table.Count);
  HeaderOf(file).*offset = table.At(0);
  return table;
}

/// Adds `records` as they stand; gives the place of the first.
template <typename T>
int64_t WriteRecords(const std::vector<T>& records, const std::string& name, FileBuilder& file) {
  const int64_t place = file.Size();
  file.Mark(name);
  for (const T& record : records) file.AppendValue(record);
  return place;
}

/// The same for records that hold no more than a name.
template <core::PackedRecord T>
void WriteNamesInHeader(const std::vector<std::string>& names, const std::string& table, FileBuilder& file,
                        int32_t model::StudioHeader::*count, int32_t model::StudioHeader::*offset) {
  const auto records = ReserveInHeader<T>(names, table, file, count, offset);
  for (int64_t i = 0; i < records.Count; ++i) {
    const int32_t name = file.Text(names[static_cast<size_t>(i)]);
    records[i].NameOffset = records.To(name, i);
  }
  file.Align(4);
}

void WriteBones(const ModelBuilder& model, FileBuilder& mdl);
void WriteBodyParts(const ModelBuilder& model, FileBuilder& mdl);
/// The faces of one model, whose records stand in the tables "models b" and "meshes b.m" already.
void WriteModelFace(const ModelDescription& model, size_t bodyPartIndex, size_t modelIndex, FileBuilder& mdl);
void WriteFace(const ModelBuilder& model, FileBuilder& mdl);
void WriteMaterials(const ModelBuilder& model, FileBuilder& mdl);
void WriteScriptRecords(const ModelBuilder& model, FileBuilder& mdl);
void WriteAnimations(const ModelBuilder& model, FileBuilder& mdl, FileBuilder& ani);
void WriteSequences(const ModelBuilder& model, FileBuilder& mdl);
void WriteVtx(const ModelBuilder& model, FileBuilder& vtx);
void WriteVvd(const ModelBuilder& model, FileBuilder& vvd);

/// Adds the chain of an animation's data and gives its place.
int32_t WriteAnimData(const AnimDataDescription& data, FileBuilder& file);

/// The half-float nearest to `value`; its sign and 65504 for what lies beyond.
uint16_t HalfFloat(float value);

/// Adds a table of offsets, from the file's start, of `texts`; gives its place.
int32_t WriteTextTable(const std::vector<std::string>& texts, const std::string& name, FileBuilder& mdl);

}  // namespace tarnwick::tests

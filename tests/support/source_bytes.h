#pragma once

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "smd/smd_reader.h"

namespace tarnwick::tests {

/// All that reading `text` gives and tells, as bytes, so that two ways of reading can be compared to the last bit.
inline std::string SourceBytes(std::string_view text, core::VectorLevel level) {
  smd::SmdSource source;
  const std::vector<smd::SourceMessage> messages = smd::ReadSource(text, "a.smd", source, level);
  std::string bytes;
  const auto add = [&bytes](const auto& values) {
    using Value = typename std::remove_cvref_t<decltype(values)>::value_type;
    bytes += std::to_string(values.size()) + ":";
    if (!values.empty()) bytes.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(Value));
  };
  for (const smd::SourceMessage& message : messages) {
    bytes += std::to_string(message.Line) + (message.IsError ? "! " : "  ") + message.Text + '\n';
  }
  for (const smd::SourceNode& node : source.Nodes) bytes += node.Name + std::to_string(node.Parent) + '\n';
  bytes += std::to_string(source.FrameCount);
  add(source.Poses);
  add(source.NodePosed);
  for (const std::string& material : source.Materials) bytes += material + '\n';
  add(source.TriangleMaterials);
  add(source.Corners);
  add(source.Links);
  for (const smd::SourceShape& shape : source.Shapes) {
    bytes += std::to_string(shape.Time);
    add(shape.Vertices);
  }
  return bytes;
}

}  // namespace tarnwick::tests

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "compiler/compile_context.h"
#include "compiler/face/built_face.h"
#include "qc/expression.h"

namespace tarnwick::compiler {

/// The descriptors and controllers of all faces, by name: exactly, then without regard to case.
class FaceNames {
 public:
  explicit FaceNames(BuiltFace& face) : m_face(face) {}

  /// The descriptor of that name; a new one if there is none.
  int32_t Descriptor(std::string_view name);
  /// The same; -1 if there is none.
  int32_t FindDescriptor(std::string_view name) const { return Find(m_descriptors, name); }
  /// Adds a controller. False if there is one of that name.
  bool AddController(BuiltFlexController controller);
  int32_t FindController(std::string_view name) const { return Find(m_controllers, name); }

 private:
  struct Table {
    std::unordered_map<std::string, int32_t> Exact, Lower;
  };
  static int32_t Find(const Table& table, std::string_view name);
  static void Add(Table& table, std::string_view name, size_t number);

  BuiltFace& m_face;
  Table m_descriptors, m_controllers;
};

/// The operations of a rule on a stack machine. What names no controller, and what no operation is known for, is told;
/// nothing is then added. A flex that nothing else names gets its descriptor here.
bool AddFlexRule(CompileContext& context, const qc::FlexRule& rule, FaceNames& names, BuiltFace& face);

/// The sliders of the controllers: one for each, or for two that follow each other and differ by `right_` and `left_`.
std::vector<BuiltFlexControl> ControlsOf(const std::vector<BuiltFlexController>& controllers);

}  // namespace tarnwick::compiler

#include "project/project_values.h"

#include <array>
#include <cstddef>
#include <utility>
#include <variant>

#include "core/number_text.h"

namespace tarnwick::project {

namespace {

std::string AsText(const std::string& value) {
  return value;
}
std::string AsText(int32_t value) {
  return std::to_string(value);
}
std::string AsText(bool value) {
  return value ? "1" : "0";
}
std::string AsText(double value) {
  return core::FixedText(value, 2);
}

/// Walks the values of one project.
class Walk {
 public:
  explicit Walk(const std::function<void(const ProjectValue&)>& take) : m_take(take) {}

  /// All fields of a record under `prefix`, which is empty or ends in "/". `needsName`: the first one must have text.
  template <typename Record, size_t Size>
  void Fields(const Record& record, const std::array<KeyedField<Record>, Size>& fields, const std::string& prefix,
              bool needsName, char quoteStandIn = 0) {
    for (const KeyedField<Record>& field : fields) {
      std::string text = std::visit([&](auto member) { return AsText(record.*member); }, field.Field);
      m_take({prefix + std::string(field.Key), field.Label, KindOf(field), std::move(text), quoteStandIn,
              needsName && &field == &fields.front()});
    }
  }

  template <typename List, typename Record, size_t Size>
  void Entries(const List& list, std::string_view group, const std::array<KeyedField<Record>, Size>& fields,
               bool needsName, char quoteStandIn = 0) {
    int32_t number = 0;
    for (const auto& entry : list) Fields(entry, fields, Numbered(group, number++) + '/', needsName, quoteStandIn);
  }

  void Sequence(const SequenceEntry& sequence, const std::string& prefix) {
    Fields(sequence, SequenceKeys, prefix, true);
    int32_t number = 0;
    for (const std::string& command : sequence.Commands()) {
      m_take(
          {prefix + Numbered(CommandKey, number++), "Command", ValueKind::Text, command, SequenceCommandQuote, true});
    }
    number = 0;
    for (const EventEntry& event : sequence.Events()) {
      Fields(event, EventKeys, prefix + Numbered(EventGroup, number++) + '/', false);
    }
  }

 private:
  const std::function<void(const ProjectValue&)>& m_take;
};

}  // namespace

void ForEachProjectValue(const ModelProject& project, const std::function<void(const ProjectValue&)>& take) {
  Walk walk(take);
  const std::string options = std::string(OptionsGroup) + '/';
  walk.Fields(project, FormKeys, "", false);
  walk.Fields(project, FormOptionKeys, options, false);
  walk.Fields(project.options, OptionKeys, options, false);
  int32_t number = 0;
  for (const SequenceEntry& sequence : project.Sequences) {
    walk.Sequence(sequence, Numbered(SequenceGroup, number++) + '/');
  }
  walk.Entries(project.Attachments, AttachmentGroup, AttachmentKeys, true);
  walk.Entries(project.Gibs, GibGroup, GibKeys, false);
  walk.Entries(project.QcCommands, QcCommandGroup, QcCommandKeys, false, QcCommandQuote);
  walk.Entries(project.Lods, LodGroup, LodKeys, true);
  walk.Entries(project.Skins, SkinGroup, SkinKeys, true);
}

}  // namespace tarnwick::project

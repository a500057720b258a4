#include "core/key_values.h"
#include "model/comparison/compared_tables.h"
#include "model/comparison/record_fields.h"

namespace tarnwick::model {

namespace {

constexpr RecordField HeaderFields[] = {
    {"eye position", offsetof(StudioHeader, EyePosition), 3, TextGrain},
    {"contents", offsetof(StudioHeader, Contents)},
};

constexpr uint32_t SayableFlags =
    ModelFlagGeneratedHitboxes | ModelFlagOpaque | ModelFlagMostlyOpaque | ModelFlagStatic | ModelFlagShadowLod;

constexpr RecordField SecondHeaderFields[] = {
    {"illumination attachment", offsetof(StudioSecondHeader, IllumAttachment)},
    {"eye deflection", offsetof(StudioSecondHeader, MaxEyeDeflection), 1, AngleGrain},
};

/// Boxes and what follows from them: their sides are sums over all vertices of all frames.
constexpr double BoxGrain = 0.02;

constexpr RecordField BoxFields[] = {
    {"illumination position", offsetof(StudioHeader, IllumPosition), 3, BoxGrain},
    {"hull", offsetof(StudioHeader, HullMinimum), 6, BoxGrain},
    {"view box", offsetof(StudioHeader, ViewMinimum), 6, TextGrain},
};

std::optional<core::Record<StudioSecondHeader>> SecondHeader(const ModelReader& reader) {
  const int32_t offset = reader.Model.Header()->SecondHeaderOffset;
  constexpr int32_t FirstVersion = 48;
  if (offset == 0 || reader.Model.Header()->Version < FirstVersion) return std::nullopt;
  return reader.Model.View().At<StudioSecondHeader>(offset);
}

std::string_view KeyValues(const ModelReader& reader) {
  const auto header = reader.Model.Header();
  if (header->KeyValueSize <= 0) return {};
  return reader.Model.View().Text(header->KeyValueOffset).value_or("");
}

}  // namespace

std::string KeyWords(std::string_view text) {
  std::string words;
  while (true) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    if (text.empty()) return words;
    size_t end = 1;
    if (text[0] == '"') {
      end = std::min(text.find('"', 1), text.size() - 1) + 1;
    } else if (text[0] != '{' && text[0] != '}') {
      end = std::min(text.find_first_of(" \t\r\n{}\""), text.size());
    }
    std::string_view word = text.substr(0, end);
    text.remove_prefix(end);
    const bool isQuoted = word.size() > 2 && word.front() == '"' && word.back() == '"';
    if (isQuoted && word.find_first_of(" \t\r\n{}") == std::string_view::npos) word = word.substr(1, word.size() - 2);
    words += words.empty() ? "" : " ";
    words += word;
  }
}

namespace {

void AddKeyWords(const std::vector<core::KeyValue>& keys, std::string& text) {
  for (const core::KeyValue& key : keys) {
    text.append("\"").append(key.Key).append("\" ");
    if (key.IsBlock) {
      text += "{ ";
      AddKeyWords(key.Children, text);
      text += "} ";
    } else {
      text.append("\"").append(key.Value).append("\" ");
    }
  }
}

/// The words that a compile of the text's blocks writes: each below the head that a compile has for it, closed at its
/// end, and nothing outside of them.
std::string CompiledKeyWords(std::string_view text) {
  std::string compiled;
  for (core::KeyValue& root : core::ReadKeyValues(text).Roots) {
    if (!root.IsBlock) continue;
    root.Key = "mdlkeyvalue";
    AddKeyWords({root}, compiled);
  }
  return KeyWords(compiled);
}

}  // namespace

void CompareHeaders(const ComparedModels& models) {
  const auto a = models.First.Model.Header();
  const auto b = models.Second.Model.Header();
  const auto nowhere = [] { return std::string(); };
  DifferenceList& differences = models.Differences;
  differences.Text(ModelTable::Header, "name", nowhere, WithSlashes(core::FixedText(a->Name)),
                   WithSlashes(core::FixedText(b->Name)));
  CompareFields(differences, ModelTable::Header, HeaderFields, *a, *b, nowhere);
  if (a->Version != b->Version) {
    const bool isWritten = a->Version == 44 || a->Version == 48 || a->Version == 49;
    differences.Add(ModelTable::Header, "version", "", std::to_string(a->Version), std::to_string(b->Version), 0, false,
                    isWritten ? "" : "a version that is not written");
  }
  differences.Flags(ModelTable::Header, "flags", nowhere, a->Flags, b->Flags, SayableFlags);
  CompareFields(differences, ModelTable::Boxes, BoxFields, *a, *b, nowhere);
  const float mass = a->Mass, otherMass = b->Mass;
  if (mass != otherMass) {
    const double amount = std::abs(double{mass} - double{otherMass});
    const bool isRounding = amount <= TextGrain * std::max(1.0, std::abs(double{mass}));
    differences.Add(ModelTable::Header, "mass", "", DifferenceList::NumberText({&mass, 1}),
                    DifferenceList::NumberText({&otherMass, 1}), amount, isRounding, models.LostWithPhysics());
  }
  differences.Text(ModelTable::Header, "surface property", nowhere, TextOf(models.First, a, a->SurfacePropOffset),
                   TextOf(models.Second, b, b->SurfacePropOffset));
  const std::string keys = KeyWords(KeyValues(models.First)), otherKeys = KeyWords(KeyValues(models.Second));
  if (keys != otherKeys && CompiledKeyWords(KeyValues(models.First)) == otherKeys) {
    differences.Add(ModelTable::Header, "key values", "", keys, otherKeys, 0, false,
                    "a compile writes whole blocks with a head of its own");
  } else {
    differences.Text(ModelTable::Header, "key values", nowhere, keys, otherKeys);
  }
  differences.Whole(ModelTable::Header, "constant light", nowhere, a->ConstantLight, b->ConstantLight);
  differences.Whole(ModelTable::Header, "root level of detail", nowhere, a->RootLod, b->RootLod);
  differences.Whole(ModelTable::Header, "allowed root levels", nowhere, a->AllowedRootLods, b->AllowedRootLods);
  const auto one = SecondHeader(models.First);
  const auto other = SecondHeader(models.Second);
  if (one && other) CompareFields(differences, ModelTable::Header, SecondHeaderFields, **one, **other, nowhere);
}

}  // namespace tarnwick::model

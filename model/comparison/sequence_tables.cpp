#include "model/animation_records.h"
#include "model/comparison/compared_tables.h"
#include "model/comparison/record_fields.h"
#include "model/script_records.h"

namespace tarnwick::model {

namespace {

/// Sides are sums over all vertices of all frames.
constexpr double BoxGrain = 0.02;

constexpr RecordField SequenceFields[] = {
    {"activity weight", offsetof(StudioSeqDesc, ActivityWeight)},
    {"size of the grid", offsetof(StudioSeqDesc, BlendSize), 2},
    {"pose parameters", offsetof(StudioSeqDesc, PoseParameter), 2},
    {"range of the grid", offsetof(StudioSeqDesc, PoseStart), 4, TextGrain},
    {"fades", offsetof(StudioSeqDesc, FadeIn), 2, TextGrain},
    {"nodes", offsetof(StudioSeqDesc, EntryNode), 3},
    {"phases", offsetof(StudioSeqDesc, EntryPhase), 2, TextGrain},
    {"cycle's pose parameter", offsetof(StudioSeqDesc, CyclePose)},
};
constexpr uint32_t SayableFlags = SequenceFlagLooping | SequenceFlagSnap | SequenceFlagDelta | SequenceFlagAutoplay |
                                  SequenceFlagLayered | SequenceFlagRealtime | SequenceFlagHidden |
                                  SequenceFlagDeclared | SequenceFlagWorldSpace;

constexpr RecordField EventFields[] = {
    {"cycle", offsetof(StudioEvent, Cycle), 1, 1e-4},
    {"number", offsetof(StudioEvent, Event)},
    {"type", offsetof(StudioEvent, Type)},
};
constexpr RecordField LayerFields[] = {
    {"range", offsetof(StudioAutoLayer, Start), 4, 1e-4},
};
constexpr RecordField LockFields[] = {
    {"chain of a lock", offsetof(StudioIkLock, Chain)},
    {"weights of a lock", offsetof(StudioIkLock, PositionWeight), 2, TextGrain},
};

#pragma pack(push, 1)
struct PackedFloat {
  float Value;
};
#pragma pack(pop)

using SequenceRecord = core::Record<StudioSeqDesc>;

std::string_view KeyValues(const ModelReader& reader, const SequenceRecord& sequence) {
  if (sequence->KeyValueSize <= 0) return {};
  return reader.Model.View().Text(sequence.Offset() + sequence->KeyValueOffset).value_or("");
}

class SequenceComparison {
 public:
  SequenceComparison(const ComparedModels& models, const SequenceRecord& first, const SequenceRecord& second,
                     int64_t number)
      : m_models(models),
        m_first(first),
        m_second(second),
        m_number(number),
        m_place(Place("sequence", TextOf(models.First, first, first->LabelOffset), number)) {}

  void Compare() {
    const auto where = [&] { return m_place; };
    Text("label", m_first->LabelOffset, m_second->LabelOffset);
    Text("activity", m_first->ActivityOffset, m_second->ActivityOffset);
    CompareFields(m_models.Differences, ModelTable::Sequences, SequenceFields, *m_first, *m_second, where);
    m_models.Differences.Flags(ModelTable::Sequences, "flags", where, m_first->Flags, m_second->Flags, SayableFlags);
    CompareBoxes();
    m_models.Differences.Text(ModelTable::Sequences, "key values", where, KeyWords(KeyValues(m_models.First, m_first)),
                              KeyWords(KeyValues(m_models.Second, m_second)));
    CompareEvents();
    Table<StudioAutoLayer>(
        ModelTable::Layers, "layers", {m_first->LayerOffset, m_first->LayerCount},
        {m_second->LayerOffset, m_second->LayerCount}, [&](const auto& a, const auto& b) {
          m_models.Differences.Whole(ModelTable::Layers, "sequence", where, a->Sequence, b->Sequence);
          m_models.Differences.Whole(ModelTable::Layers, "pose parameter", where, a->PoseParameter, b->PoseParameter);
          CompareFields(m_models.Differences, ModelTable::Layers, LayerFields, *a, *b, where);
          m_models.Differences.Flags(ModelTable::Layers, "flags", where, a->Flags, b->Flags, LayerFlagLocal);
        });
    Table<StudioIkLock>(ModelTable::Sequences, "ik locks", {m_first->IkLockOffset, m_first->IkLockCount},
                        {m_second->IkLockOffset, m_second->IkLockCount}, [&](const auto& a, const auto& b) {
                          CompareFields(m_models.Differences, ModelTable::Sequences, LockFields, *a, *b, where);
                        });
    CompareGrid();
    CompareWeights();
  }

 private:
  void Text(std::string_view what, int32_t first, int32_t second) {
    m_models.Differences.Text(
        ModelTable::Sequences, what, [&] { return m_place; }, TextOf(m_models.First, m_first, first),
        TextOf(m_models.Second, m_second, second));
  }

  template <typename T, typename Compare>
  void Table(ModelTable table, const std::string& what, std::pair<int32_t, int32_t> first,
             std::pair<int32_t, int32_t> second, const Compare& compare) {
    CompareTables<T>(
        m_models, table, what, [&] { return m_place; }, {m_first.Offset() + first.first, first.second},
        {m_second.Offset() + second.first, second.second},
        [&](const auto& a, const auto& b, int64_t) { compare(a, b); });
  }

  /// No statement holds the box of a sequence: a compile makes it of the vertices, bones and hit boxes that it knows,
  /// some of which it drops, and the first one's of the collision model too. Of two boxes that lie one in the other the
  /// model says nothing more; any others are a difference.
  void CompareBoxes() {
    const auto box = [](const SequenceRecord& sequence) {
      const Vec3 least = sequence->Minimum, most = sequence->Maximum;
      return std::array<float, 6>{least.x, least.y, least.z, -most.x, -most.y, -most.z};
    };
    const auto a = box(m_first), b = box(m_second);
    double largest = 0;
    bool isRounding = true, holds = true, isHeld = true;
    for (size_t i = 0; i < a.size(); ++i) {
      const double amount = double{a[i]} - double{b[i]};
      const double grain = BoxGrain * std::max(1.0, std::abs(double{a[i]}));
      isRounding = isRounding && std::abs(amount) <= grain;
      holds = holds && amount <= grain;
      isHeld = isHeld && -amount <= grain;
      if (std::isfinite(amount)) largest = std::max(largest, std::abs(amount));
    }
    if (a == b) return;
    std::string_view derived;
    if (m_number == 0 && holds) derived = m_models.LostWithPhysics();
    if (derived.empty() && (holds || isHeld)) derived = "no source holds it";
    const auto text = [](std::array<float, 6> numbers) {
      for (size_t i = 3; i < numbers.size(); ++i) numbers[i] = -numbers[i];
      return DifferenceList::NumberText(numbers);
    };
    m_models.Differences.Add(ModelTable::Boxes, "sequence's box", m_place, text(a), text(b), largest, isRounding,
                             derived);
  }

  void CompareEvents() {
    CompareTables<StudioEvent>(
        m_models, ModelTable::Events, "events", [&] { return m_place; },
        {m_first.Offset() + m_first->EventOffset, m_first->EventCount},
        {m_second.Offset() + m_second->EventOffset, m_second->EventCount},
        [&](const auto& a, const auto& b, int64_t i) {
          const auto where = [&] { return m_place + ", event " + std::to_string(i); };
          CompareFields(m_models.Differences, ModelTable::Events, EventFields, *a, *b, where);
          m_models.Differences.Text(ModelTable::Events, "options", where, core::FixedText(a->Options),
                                    core::FixedText(b->Options));
          m_models.Differences.Text(ModelTable::Events, "name", where, TextOf(m_models.First, a, a->NameOffset),
                                    TextOf(m_models.Second, b, b->NameOffset));
        });
  }

  /// The animations of the grid by their numbers, and where they stand on its axes.
  void CompareGrid() {
    const auto where = [&] { return m_place; };
    Table<StudioShort>(ModelTable::Sequences, "animations", {m_first->BlendOffset, Cells(*m_first)},
                       {m_second->BlendOffset, Cells(*m_second)}, [&](const auto& a, const auto& b) {
                         m_models.Differences.Whole(ModelTable::Sequences, "animation of the grid", where, a->Value,
                                                    b->Value);
                       });
    const bool a = m_first->PoseKeyOffset != 0;
    const bool b = m_second->PoseKeyOffset != 0;
    m_models.Differences.Whole(ModelTable::Sequences, "pose keys", where, a ? 1 : 0, b ? 1 : 0);
    if (!a || !b) return;
    m_models.Differences.Whole(ModelTable::Sequences, "number of pose keys", where, Keys(*m_first), Keys(*m_second));
    if (!m_models.First.Spend((int64_t{Keys(*m_first)} + Keys(*m_second)) * RecordCost)) return;
    const auto keys = PoseKeys(m_models.First, m_first), others = PoseKeys(m_models.Second, m_second);
    for (size_t i = 0; i < std::min(keys.size(), others.size()); ++i) {
      if (keys[i] == others[i]) continue;
      const float amount = std::abs(keys[i] - others[i]);
      // A compile spreads keys evenly, or measures them of animations in a way that is not known.
      m_models.Differences.Add(ModelTable::Sequences, "pose key", m_place, DifferenceList::NumberText({&keys[i], 1}),
                               DifferenceList::NumberText({&others[i], 1}), double{amount},
                               amount <= KeyGrain * std::max(1.0f, std::abs(keys[i])),
                               IsEven(keys) ? "" : "measured of animations");
    }
  }

  static constexpr float KeyGrain = 1e-4f;

  /// The keys of both axes; none that do not lie inside the file.
  static std::vector<float> PoseKeys(const ModelReader& reader, const SequenceRecord& sequence) {
    std::vector<float> keys;
    const auto table =
        reader.Model.View().Array<PackedFloat>(sequence.Offset() + sequence->PoseKeyOffset, Keys(*sequence));
    if (!table) return keys;
    for (const auto key : *table) keys.push_back(key->Value);
    return keys;
  }

  /// Whether the keys of each axis lie evenly from its start to its end.
  bool IsEven(const std::vector<float>& keys) const {
    size_t at = 0;
    for (size_t axis = 0; axis < 2; ++axis) {
      const auto count = static_cast<size_t>(std::max(int32_t{m_first->BlendSize[axis]}, 0));
      const float start = m_first->PoseStart[axis], end = m_first->PoseEnd[axis];
      for (size_t i = 0; i < count && at < keys.size(); ++i, ++at) {
        const float part = count <= 1 ? 0 : static_cast<float>(i) / static_cast<float>(count - 1);
        const float even = start + (end - start) * part;
        if (!(std::abs(keys[at] - even) <= KeyGrain * std::max(1.0f, std::abs(even)))) return false;
      }
    }
    return true;
  }

  void CompareWeights() {
    const int32_t bones = m_models.First.Model.Header()->BoneCount;
    const int32_t otherBones = m_models.Second.Model.Header()->BoneCount;
    if (bones != otherBones || m_first->WeightOffset == 0 || m_second->WeightOffset == 0) return;
    CompareTables<PackedFloat>(
        m_models, ModelTable::Sequences, "bone weights", [&] { return m_place; },
        {m_first.Offset() + m_first->WeightOffset, bones}, {m_second.Offset() + m_second->WeightOffset, bones},
        [&](const auto& a, const auto& b, int64_t bone) {
          Floats(ModelTable::Sequences, "weight", a->Value, b->Value, TextGrain,
                 m_place + ", bone " + std::to_string(bone));
        });
  }

  void Floats(ModelTable table, std::string_view what, float a, float b, double grain, const std::string& place) {
    m_models.Differences.Numbers(
        table, what, [&] { return place; }, {&a, 1}, {&b, 1}, grain);
  }

  /// Sizes come from the file; what they ask for is refused where it does not lie inside.
  static int32_t Cells(const StudioSeqDesc& sequence) {
    return static_cast<int32_t>(
        std::clamp<int64_t>(int64_t{sequence.BlendSize[0]} * sequence.BlendSize[1], 0, INT16_MAX));
  }
  static int32_t Keys(const StudioSeqDesc& sequence) {
    return static_cast<int32_t>(
        std::clamp<int64_t>(int64_t{sequence.BlendSize[0]} + sequence.BlendSize[1], 0, INT16_MAX));
  }

  const ComparedModels& m_models;
  const SequenceRecord& m_first;
  const SequenceRecord& m_second;
  const int64_t m_number;
  const std::string m_place;
};

}  // namespace

void CompareSequences(const ComparedModels& models) {
  const auto a = models.First.Model.Header();
  const auto b = models.Second.Model.Header();
  CompareTables<StudioSeqDesc>(models, ModelTable::Sequences, "sequences", {a->SequenceOffset, a->SequenceCount},
                               {b->SequenceOffset, b->SequenceCount},
                               [&](const SequenceRecord& first, const SequenceRecord& second, int64_t i) {
                                 SequenceComparison(models, first, second, i).Compare();
                               });
}

}  // namespace tarnwick::model

#include "qc/vrd_file.h"

#include <cfloat>
#include <cmath>
#include <span>
#include <utility>

#include "core/number_parse.h"
#include "core/paths.h"

namespace tarnwick::qc {

using core::TroubleKind;

namespace {

class VrdReader {
 public:
  explicit VrdReader(VrdFile& file) : m_file(file), m_told(file.Told) {}
  void ReadAll();

 private:
  void Line();
  void BeginBone(VrdBone::Kind kind);
  void Trigger(VrdBone& bone);
  bool Numbers(std::span<double> out);
  bool Is(std::string_view tag) const { return core::EqualIgnoringCase(m_words[0].Text, tag); }

  VrdFile& m_file;
  Messages& m_told;
  std::vector<Word> m_words;  // of the line
};

/// The words behind the line's tag as numbers. False, and told, if they are not just as many numbers as asked for.
bool VrdReader::Numbers(std::span<double> out) {
  const Word& tag = m_words[0];
  if (m_words.size() - 1 != out.size()) {
    m_told.Error(TroubleKind::Damaged, tag.At,
                 std::string(tag.Text) + " takes " + std::to_string(out.size()) + " numbers, " +
                     std::to_string(m_words.size() - 1) + " stand on the line");
    return false;
  }
  for (size_t i = 0; i < out.size(); ++i) {
    const Word& word = m_words[i + 1];
    size_t length = 0;
    out[i] = core::ParseReal(word.Text, &length);
    if (length == word.Text.size() && length > 0 && std::abs(out[i]) <= double{FLT_MAX}) continue;
    m_told.Error(TroubleKind::Damaged, word.At, Shown(word.Text) + " stands where a number should");
    return false;
  }
  return true;
}

void VrdReader::BeginBone(VrdBone::Kind kind) {
  const size_t names = kind == VrdBone::Kind::Helper ? 4 : 3;
  VrdBone bone;
  bone.What = kind;
  bone.At = m_words[0].At;
  if (m_words.size() != names + 1) {
    m_told.Error(TroubleKind::Damaged, bone.At,
                 std::string(m_words[0].Text) +
                     (kind == VrdBone::Kind::Helper ? " takes the bone, its parent, the driver's parent and the driver"
                                                    : " takes the bone, its parent and the attachment") +
                     "; " + std::to_string(m_words.size() - 1) + " names stand on the line");
  }
  m_words.resize(5);
  bone.Name = m_words[1].Text;
  bone.Parent = m_words[2].Text;
  if (kind == VrdBone::Kind::Helper) {
    bone.DriverParent = m_words[3].Text;
    bone.Driver = m_words[4].Text;
  } else {
    bone.Driver = m_words[3].Text;
  }
  m_file.Bones.push_back(std::move(bone));
}

void VrdReader::Trigger(VrdBone& bone) {
  std::array<double, 10> numbers{};
  if (!Numbers(numbers)) return;
  if (bone.Triggers.size() == VrdFile::MostTriggers) {
    return m_told.Error(
        TroubleKind::Limit, m_words[0].At,
        "the bone " + Shown(bone.Name) + " has more than " + std::to_string(VrdFile::MostTriggers) + " triggers");
  }
  VrdTrigger trigger;
  trigger.At = m_words[0].At;
  trigger.ConeAngle = numbers[0];
  for (size_t i = 0; i < 3; ++i) {
    trigger.Driver[i] = numbers[1 + i];
    trigger.Rotation[i] = numbers[4 + i];
    trigger.Position[i] = numbers[7 + i];
  }
  bone.Triggers.push_back(trigger);
}

void VrdReader::Line() {
  const Word tag = m_words[0];
  if (Is("<helper>")) return BeginBone(VrdBone::Kind::Helper);
  if (Is("<aimconstraint>")) return BeginBone(VrdBone::Kind::Aim);
  if (!tag.Text.starts_with('<')) {
    return m_told.Error(TroubleKind::Unknown, tag.At,
                        Shown(tag.Text) + " stands where a line should begin with its <tag>");
  }
  if (m_file.Bones.empty()) {
    return m_told.Error(TroubleKind::Damaged, tag.At, std::string(Shown(tag.Text)) + " stands ahead of every bone");
  }
  VrdBone& bone = m_file.Bones.back();
  std::array<double, 3> numbers{};
  if (Is("<basepos>")) {
    if (Numbers(numbers)) bone.BasePosition = numbers;
  } else if (Is("<aimvector>")) {
    if (Numbers(numbers)) bone.AimVector = numbers;
  } else if (Is("<upvector>")) {
    if (Numbers(numbers)) bone.UpVector = numbers;
  } else if (Is("<trigger>")) {
    Trigger(bone);
  } else if (Is("<display>") || Is("<rotateaxis>") || Is("<jointorient>")) {
    VrdLine line{tag.At, tag.Text, {}};
    for (size_t i = 1; i < m_words.size(); ++i) line.Words.push_back(m_words[i].Text);
    bone.Others.push_back(std::move(line));
  } else {
    NearName near(tag.Text);
    for (const std::string_view known : {"<helper>", "<aimconstraint>", "<basepos>", "<aimvector>", "<upvector>",
                                         "<trigger>", "<display>", "<rotateaxis>", "<jointorient>"}) {
      near.Offer(known);
    }
    m_told.Error(TroubleKind::Unknown, tag.At,
                 "the tag " + Shown(tag.Text) + " is not known" + DidYouMean(near.Best()));
  }
}

void VrdReader::ReadAll() {
  WordScanner scanner(m_file.Files.Text(0), 0, WordScanner::Dialect::Vrd);
  Word word;
  bool more = scanner.Next(word);
  while (more && !m_told.Full()) {
    m_words.clear();
    do {
      m_words.push_back(word);
      more = scanner.Next(word);
    } while (more && !word.FirstOfLine);
    Line();
  }
}

VrdFile ReadImage(core::FileImage image, const std::string& path) {
  VrdFile file;
  file.Files.Files.push_back({path, std::string(core::LastComponent(path)), std::move(image)});
  VrdReader(file).ReadAll();
  return file;
}

}  // namespace

VrdFile ReadVrd(const std::string& path) {
  std::string reason;
  auto image = core::FileImage::Read(path, &reason);
  if (image) return ReadImage(std::move(*image), path);
  VrdFile file = ReadVrdText("", path);
  file.Told.Error(TroubleKind::Unreadable, {0, 1, 1, 0}, "the file cannot be read: " + reason);
  return file;
}

VrdFile ReadVrdText(std::string_view text, const std::string& path) {
  return ReadImage(core::FileImage::FromBytes(path, std::as_bytes(std::span(text.data(), text.size()))), path);
}

}  // namespace tarnwick::qc

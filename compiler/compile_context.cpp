#include "compiler/compile_context.h"

#include <algorithm>
#include <utility>

namespace tarnwick::compiler {

const smd::SmdSource* CompileContext::Source(int32_t number) const {
  const auto at = static_cast<size_t>(number);
  return number >= 0 && at < m_sources.size() && m_haveSource[at] ? &m_sources[at] : nullptr;
}

std::optional<core::FileImage> CompileContext::Read(const std::string& path, const qc::Place& at) {
  std::string reason;
  auto image = Options.Read ? Options.Read(path, reason) : FilesOf(Options).Read(path, &reason);
  if (!image) Error(at, qc::Shown(path) + " cannot be read: " + reason, core::TroubleKind::Unreadable);
  return image;
}

const std::deque<VrdSource>& CompileContext::VrdSources() {
  if (m_vrdSources) return *m_vrdSources;
  m_vrdSources.emplace();
  for (const int32_t number : Plan.VrdSources) {
    const qc::Source& source = Plan.Script.Sources[static_cast<size_t>(number)];
    const auto image = source.Path.empty() ? std::nullopt : Read(source.Path, source.At);
    if (!image) continue;
    const auto bytes = image->Bytes();
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const VrdSource& read = m_vrdSources->emplace_back(VrdSource{source.At, qc::ReadVrdText(text, source.Path)});
    for (qc::Message message : read.File.Told.All()) {
      message.Level = std::min(message.Level, core::Severity::Warning);
      Tell(qc::MessageTrouble(read.File.Files, message));
    }
  }
  return *m_vrdSources;
}

void CompileContext::SetSource(int32_t number, smd::SmdSource source) {
  const auto at = static_cast<size_t>(number);
  if (at >= m_sources.size()) {
    m_sources.resize(at + 1);
    m_haveSource.resize(at + 1);
  }
  m_sources[at] = std::move(source);
  m_haveSource[at] = true;
}

void CompileContext::Tell(core::Trouble trouble) {
  if (trouble.Level == core::Severity::Error) ++m_errors;
  if (m_troubles.size() < 2 * qc::Messages::Most) m_troubles.push_back(std::move(trouble));
}

void CompileContext::Error(const qc::Place& at, std::string text, core::TroubleKind kind) {
  Tell(qc::MessageTrouble(Plan.Script.Files, {core::Severity::Error, kind, at, std::move(text)}));
}

void CompileContext::Warning(const qc::Place& at, std::string text, core::TroubleKind kind) {
  Tell(qc::MessageTrouble(Plan.Script.Files, {core::Severity::Warning, kind, at, std::move(text)}));
}

void CompileContext::WarnOfUnknown(std::string_view name, const qc::Place& at, std::string text) {
  const std::string shown = qc::Shown(name);  // as the reader's messages have it
  const auto tellsIt = [&](const qc::Message& message) {
    return message.Kind == core::TroubleKind::Missing && message.At.File == at.File && message.At.Line == at.Line &&
           message.Text.find(shown) != std::string::npos;
  };
  if (std::ranges::none_of(Plan.Script.Told.All(), tellsIt)) Warning(at, std::move(text));
}

bool CompileContext::Spend(int64_t bytes, const qc::Place& at) {
  if (m_overspent) return false;
  if (bytes >= 0 && bytes <= Options.MemoryLimit - m_spent) {
    m_spent += bytes;
    return true;
  }
  m_overspent = true;
  Error(at, "this asks for more memory than a compile may take", core::TroubleKind::Limit);
  return false;
}

bool CompileContext::Stopped() {
  if (!m_stopped && Options.Stop.stop_requested()) {
    m_stopped = true;
    ++m_errors;
    m_troubles.push_back(
        {.Level = core::Severity::Error, .Kind = core::TroubleKind::Stopped, .Text = "the compile was stopped"});
  }
  return m_stopped;
}

std::vector<core::Trouble> CompileContext::TakeTroubles() {
  return std::exchange(m_troubles, {});
}

}  // namespace tarnwick::compiler

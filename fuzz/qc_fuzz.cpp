// Reads any bytes as a script, which may include itself and a second text that begins behind a byte 1, and as a VRD
// file.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

#include "qc/script.h"
#include "qc/tables.h"
#include "qc/vrd_file.h"

using namespace tarnwick;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

void CheckPlace(const qc::ScriptFiles& files, const qc::Place& at) {
  Require(at.File < files.Files.size() && at.Line >= 1 && at.Column >= 1 && at.From <= files.Origins.size());
  Require(at.Column <= files.Text(at.File).size() + 1 && at.Line <= files.Text(at.File).size() + 1);
}

void CheckMessages(const qc::ScriptFiles& files, const qc::Messages& told) {
  Require(told.All().size() <= qc::Messages::Most + 1);
  for (const qc::Message& message : told.All()) {
    CheckPlace(files, message.At);
    Require(!qc::MessageText(files, message).empty());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const size_t cut = std::min(size, text.find('\1'));
  qc::ReadOptions options;
  options.FindSources = false;
  options.Limits.MadeWords = 20'000;
  options.Limits.MadeBytes = 1 << 20;
  options.Limits.IncludedBytes = 1 << 20;
  options.Limits.Includes = 100;
  options.Read = [&](const std::string& path, std::string& reason) -> std::optional<core::FileImage> {
    reason = "not here";
    if (path.size() > 64) return std::nullopt;
    return core::FileImage::FromBytes(path, std::as_bytes(std::span(data, size)).subspan(cut));
  };
  const qc::Script script = qc::ReadScriptText(text.substr(0, cut), "a.qc", options);
  for (const qc::Statement& statement : script.Statements) {
    CheckPlace(script.Files, statement.At);
    const qc::StatementRow* row = qc::FindStatement(statement.Name);
    Require(row != nullptr);
    // Choices in braces make a group of a body.
    const bool isBody = row->Kind == qc::Command::Body || row->Kind == qc::Command::Model;
    Require(statement.Kind == row->Kind || (isBody && statement.Kind == qc::Command::BodyGroup));
    for (const qc::Argument& argument : statement.Arguments) {
      CheckPlace(script.Files, argument.At);
      Require(argument.Source < static_cast<int32_t>(script.Sources.size()));
    }
  }
  for (const qc::FlexRule& rule : script.Rules) {
    for (size_t i = 0; i < rule.Nodes.size(); ++i) {
      for (const uint32_t operand : rule.Nodes[i].Operands) Require(operand < i);
    }
  }
  CheckMessages(script.Files, script.Told);

  const qc::VrdFile vrd = qc::ReadVrdText(text, "a.vrd");
  for (const qc::VrdBone& bone : vrd.Bones) Require(bone.Triggers.size() <= qc::VrdFile::MostTriggers);
  CheckMessages(vrd.Files, vrd.Told);
  return 0;
}

#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qc/script.h"

namespace tarnwick::tests {

/// Reads a script in memory that names its model; source files are not looked for.
inline qc::Script ReadPlain(std::string_view text) {
  qc::ReadOptions options;
  options.FindSources = false;
  return qc::ReadScriptText(std::string(text) + "\n$modelname \"end.mdl\"\n", "a.qc", options);
}

/// All messages, each as it is printed.
inline std::vector<std::string> Told(const qc::Script& script) {
  std::vector<std::string> lines;
  for (const qc::Message& message : script.Told.All()) lines.push_back(qc::MessageText(script.Files, message));
  return lines;
}

inline std::string TextOf(std::span<const qc::Argument> arguments) {
  std::string text;
  for (size_t i = 0; i < arguments.size(); ++i) text += (i == 0 ? "" : "|") + std::string(arguments[i].Text);
  return text;
}

/// Options in one line: `name a|b` each, options of their own in parentheses.
inline std::string TextOf(std::span<const qc::Option> options) {
  std::string text;
  for (const qc::Option& option : options) {
    text += (text.empty() ? "" : ", ") + std::string(option.Name);
    if (!option.Arguments.empty()) text += " " + TextOf(option.Arguments);
    if (!option.Options.empty()) text += " (" + TextOf(option.Options) + ")";
  }
  return text;
}

/// All statements but the last, which is ReadPlain's: `name a|b: options {row}` each.
inline std::vector<std::string> StatementsOf(const qc::Script& script) {
  std::vector<std::string> lines;
  for (size_t i = 0; i + 1 < script.Statements.size(); ++i) {
    const qc::Statement& statement = script.Statements[i];
    std::string line(statement.Name);
    if (!statement.Arguments.empty()) line += " " + TextOf(statement.Arguments);
    if (!statement.Options.empty()) line += ": " + TextOf(statement.Options);
    for (const auto& row : statement.Rows) line += " {" + TextOf(row) + "}";
    lines.push_back(line);
  }
  return lines;
}

}  // namespace tarnwick::tests

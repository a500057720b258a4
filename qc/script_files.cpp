#include "qc/script_files.h"

namespace tarnwick::qc {

namespace {

std::string PlaceText(const ScriptFiles& files, const Place& at) {
  return files.Files[at.File].Shown + ":" + std::to_string(at.Line) + ":" + std::to_string(at.Column);
}

}  // namespace

std::string MessageText(const ScriptFiles& files, const Message& message) {
  std::string text = PlaceText(files, message.At);
  switch (message.Level) {
    case core::Severity::Error:
      text += ": error: ";
      break;
    case core::Severity::Warning:
      text += ": warning: ";
      break;
    case core::Severity::Note:
      text += ": note: ";
      break;
  }
  text += message.Text;
  for (uint32_t from = message.At.From; from != 0;) {
    const Origin& origin = files.Origins[from - 1];
    text += "\n" + PlaceText(files, origin.At) +
            (origin.Macro.empty() ? ": note: included here"
                                  : ": note: in the macro " + Shown(origin.Macro) + ", used here");
    from = origin.At.From;
  }
  return text;
}

core::Trouble MessageTrouble(const ScriptFiles& files, const Message& message) {
  return {
      message.Level, message.Kind, files.Files[message.At.File].Path, std::nullopt, MessageText(files, message), ""};
}

}  // namespace tarnwick::qc

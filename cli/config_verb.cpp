#include "cli/config_verb.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "core/paths.h"
#include "core/settings_table.h"
#include "settings/documents_folder.h"
#include "settings/qt_settings_store.h"

namespace tarnwick::cli {

namespace {

namespace setting = core::setting;
using settings::QtSettingsStore;

constexpr const char* Examples = R"(Examples:
  tarnwick-cli config list
  tarnwick-cli config get GameDirectory
  tarnwick-cli config set GameDirectory "$HOME/.steam/steam/steamapps/common/Half-Life 2/hl2")";

struct Options {
  std::string File;  // empty: the user's store
  std::string Name;
  std::string Value;
  bool Json = false;
  bool Stored = false;
};

/// A value of the table: one of the two is set.
struct KnownValue {
  const core::TextSetting* Text = nullptr;
  const core::IntSetting* Number = nullptr;

  std::string_view Section() const { return Text != nullptr ? Text->Section : Number->Section; }
  std::string_view Name() const { return Text != nullptr ? Text->Name : Number->Name; }
  std::string FullName() const { return std::string(Section()) + '/' + std::string(Name()); }

  std::string Read(const QtSettingsStore& store) const {
    if (Number != nullptr) return std::to_string(Number->Read(store));
    if (Text != &setting::OutputDirectory) return Text->Read(store);
    return store.GetString(Text->Section, Text->Name, settings::DocumentsFolder());
  }
};

std::vector<KnownValue> KnownValues() {
  std::vector<KnownValue> values;
  for (const core::TextSetting* text : setting::TextValues) values.push_back({.Text = text, .Number = nullptr});
  for (const core::IntSetting* number : setting::IntValues) values.push_back({.Text = nullptr, .Number = number});
  return values;
}

/// The value of that name, with its section in front or without; the case of letters plays no part.
std::optional<KnownValue> FindValue(const std::string& name, Invocation& invocation) {
  for (const KnownValue& value : KnownValues()) {
    if (core::EqualIgnoringCase(name, value.Name()) || core::EqualIgnoringCase(name, value.FullName())) return value;
  }
  invocation.Err << "Error: there is no setting " << name << "; `config list` names them all\n";
  return std::nullopt;
}

QtSettingsStore OpenStore(const Options& options, Invocation& invocation) {
  const auto tell = [&invocation](const std::string& text) { invocation.Err << "Warning: " << text << '\n'; };
  return options.File.empty() ? QtSettingsStore(tell) : QtSettingsStore(options.File, tell);
}

int List(const Options& options, Invocation& invocation) {
  const QtSettingsStore store = OpenStore(options, invocation);
  auto list = nlohmann::json::array();
  for (const KnownValue& value : KnownValues()) {
    const bool isStored = store.Holds(value.Section(), value.Name());
    if (options.Stored && !isStored) continue;
    if (!options.Json) {
      invocation.Out << value.FullName() << '=' << value.Read(store) << '\n';
      continue;
    }
    nlohmann::json entry = {{"section", value.Section()}, {"name", value.Name()}, {"stored", isStored}};
    if (value.Number != nullptr) {
      entry["value"] = value.Number->Read(store);
    } else {
      entry["value"] = value.Read(store);
    }
    list.push_back(std::move(entry));
  }
  if (options.Json) {
    invocation.Out << list.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
  }
  return ExitSuccess;
}

int Get(const Options& options, Invocation& invocation) {
  const auto value = FindValue(options.Name, invocation);
  if (!value) return ExitUsage;
  invocation.Out << value->Read(OpenStore(options, invocation)) << '\n';
  return ExitSuccess;
}

int Set(const Options& options, Invocation& invocation) {
  const auto value = FindValue(options.Name, invocation);
  if (!value) return ExitUsage;
  QtSettingsStore store = OpenStore(options, invocation);
  if (value->Text != nullptr) {
    value->Text->Write(store, options.Value);
    return value->Read(store) == options.Value ? ExitSuccess : ExitFailure;
  }
  int32_t number = 0;
  const char* end = options.Value.data() + options.Value.size();
  const auto read = std::from_chars(options.Value.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end) {
    invocation.Err << "Error: " << value->FullName() << " is a whole number, not \"" << options.Value << "\"\n";
    return ExitUsage;
  }
  value->Number->Write(store, number);
  return value->Number->Read(store) == number ? ExitSuccess : ExitFailure;
}

}  // namespace

void AddConfigVerb(CLI::App& program, Invocation& invocation) {
  CLI::App* verb = program.add_subcommand("config", "Show and change the settings that the window works with");
  auto options = std::make_shared<Options>();
  verb->require_subcommand(1);
  verb->footer(Examples);
  verb->add_option("--file", options->File, "A settings file in place of the user's own")->type_name("FILE");
  const auto add = [&](const char* name, const char* what, int (*run)(const Options&, Invocation&)) {
    CLI::App* action = verb->add_subcommand(name, what)->fallthrough();  // --file may stand behind it too
    action->callback([options, &invocation, run] {
      invocation.Run = [options, &invocation, run] { return run(*options, invocation); };
    });
    return action;
  };
  CLI::App* list =
      add("list", "Print every setting as SECTION/NAME=VALUE, with the default where none is stored", List);
  list->add_flag("--json", options->Json, "Print one array of objects with section, name, value and stored");
  list->add_flag("--stored", options->Stored, "Only what is stored");
  CLI::App* get = add("get", "Print the value of one setting", Get);
  get->add_option("NAME", options->Name, "The setting, with or without its section")->required();
  CLI::App* set = add("set", "Store a value", Set);
  set->add_option("NAME", options->Name, "The setting, with or without its section")->required();
  set->add_option("VALUE", options->Value, "The text or whole number")->required();
}

}  // namespace tarnwick::cli

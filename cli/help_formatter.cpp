#include "cli/help_formatter.h"

#include <algorithm>

#include "cli/option_choices.h"

namespace tarnwick::cli {

namespace {

constexpr size_t NameIndent = 2;
constexpr size_t DescriptionIndent = 24;
constexpr size_t NarrowIndent = 8;     // where there is no room for descriptions beside the names
constexpr size_t NarrowTerminal = 64;  // columns
constexpr size_t WidestText = 100;     // columns; longer lines are hard to read

/// What stands for an option's value: its type's name, or the words that it can be ("tga|png").
std::string ValueName(const CLI::Option& option) {
  const std::vector<std::string> choices = ChoicesOf(option);
  if (!choices.empty()) return CLI::detail::join(choices, "|");
  const std::string type = option.get_type_name();
  return type.substr(0, type.find(':'));  // behind it is what is checked
}

std::string OptionNames(const CLI::Option& option) {
  std::string names;
  const auto add = [&names](const std::string& name) { names += (names.empty() ? "" : ", ") + name; };
  for (const std::string& name : option.get_snames()) add("-" + name);
  for (const std::string& name : option.get_lnames()) add("--" + name);
  return names;
}

std::string NamesOf(const std::set<CLI::Option*>& options) {
  std::string names;
  for (const CLI::Option* option : options) names += (names.empty() ? "" : ", ") + option->get_name();
  return names;
}

/// The description, and behind it the default and the options that it goes with or not.
std::string Described(const CLI::Option& option) {
  std::string notes;
  const auto add = [&notes](const std::string& note) { notes += (notes.empty() ? " (" : "; ") + note; };
  if (option.nonpositional() && option.get_required()) add("required");
  if (!option.get_default_str().empty()) add("default: " + option.get_default_str());
  if (!option.get_needs().empty()) add("only with " + NamesOf(option.get_needs()));
  if (!option.get_excludes().empty()) add("not with " + NamesOf(option.get_excludes()));
  return option.get_description() + notes + (notes.empty() ? "" : ")");
}

}  // namespace

std::string Wrapped(std::string_view text, size_t columns, size_t indent) {
  std::string wrapped;
  size_t column = indent;
  while (!text.empty()) {
    const size_t length = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, length);
    if (column > indent && column + 1 + word.size() > columns) {
      wrapped += '\n' + std::string(indent, ' ');
      column = indent;
    } else if (column > indent) {
      wrapped += ' ';
      ++column;
    }
    wrapped += word;
    column += word.size();
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  return wrapped;
}

HelpFormatter::HelpFormatter(size_t columns) : m_columns(std::min(columns, WidestText)) {
  label("Positionals", "Arguments");
  label("SUBCOMMAND", "VERB");
}

std::string HelpFormatter::make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const {
  if (mode == CLI::AppFormatMode::Sub) return make_expanded(app);
  const std::string footer = make_footer(app);
  return make_usage(app, name) + Wrapped(app->get_description(), m_columns, 0) + "\n" + make_positionals(app) +
         make_groups(app, mode) + make_subcommands(app, mode) + (footer.empty() ? "" : "\n" + footer);
}

std::string HelpFormatter::make_usage(const CLI::App* app, std::string name) const {
  std::string usage = Formatter::make_usage(app, std::move(name));
  usage.erase(usage.find_last_not_of('\n') + 1);
  return Wrapped(usage, m_columns, NarrowIndent) + '\n';
}

std::string HelpFormatter::make_option(const CLI::Option* option, bool isPositional) const {
  if (isPositional) return Entry(option->get_name(true, false), Described(*option));
  const bool takesValue = option->get_items_expected_max() > 0;
  return Entry(OptionNames(*option) + (takesValue ? " " + ValueName(*option) : ""), Described(*option));
}

std::string HelpFormatter::make_option_usage(const CLI::Option* option) const {
  const std::string name = option->get_name(true, false);
  return name.find("...") != std::string::npos ? name : Formatter::make_option_usage(option);
}

std::string HelpFormatter::make_subcommands(const CLI::App* app, CLI::AppFormatMode mode) const {
  constexpr std::string_view ParsersWord = "\nSubcommands:\n";
  std::string verbs = Formatter::make_subcommands(app, mode);
  if (verbs.starts_with(ParsersWord)) verbs.replace(0, ParsersWord.size(), "\nVerbs:\n");
  return verbs;
}

std::string HelpFormatter::make_subcommand(const CLI::App* verb) const {
  return Entry(verb->get_display_name(true), verb->get_description());
}

std::string HelpFormatter::Entry(const std::string& name, const std::string& description) const {
  const size_t indent = m_columns < NarrowTerminal ? NarrowIndent : DescriptionIndent;
  std::string entry = std::string(NameIndent, ' ') + name;
  // Two blanks part the columns at least, else the description has lines of its own.
  if (entry.size() + 2 > indent) entry += '\n' + std::string(indent, ' ');
  entry.append(entry.find('\n') == std::string::npos ? indent - entry.size() : 0, ' ');
  return entry + Wrapped(description, m_columns, indent) + '\n';
}

}  // namespace tarnwick::cli

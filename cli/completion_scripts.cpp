#include "cli/completion_scripts.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "cli/option_choices.h"

namespace tarnwick::cli {

namespace {

std::string FirstLine(const std::string& text) {
  return text.substr(0, text.find('\n'));
}

void AddCommand(const CLI::App& app, const std::string& path, std::vector<CompletedCommand>& commands) {
  CompletedCommand command{path, {}, {}};
  const std::vector<const CLI::App*> verbs = app.get_subcommands([](const CLI::App*) { return true; });
  for (const CLI::App* verb : verbs) {
    command.Verbs.push_back({verb->get_name(), FirstLine(verb->get_description()), false, {}});
  }
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_group().empty()) continue;  // hidden
    const std::vector<std::string> choices = ChoicesOf(*option);
    if (option->get_positional()) {  // mostly a file
      for (const std::string& choice : choices) command.Verbs.push_back({choice, "", false, {}});
      continue;
    }
    const bool takesValue = option->get_items_expected_max() > 0;
    const std::string description = FirstLine(option->get_description());
    for (const std::string& name : option->get_snames())
      command.Options.push_back({"-" + name, description, takesValue, choices});
    for (const std::string& name : option->get_lnames()) {
      command.Options.push_back({"--" + name, description, takesValue, choices});
    }
  }
  commands.push_back(std::move(command));
  for (const CLI::App* verb : verbs) {
    AddCommand(*verb, path.empty() ? verb->get_name() : path + " " + verb->get_name(), commands);
  }
}

// `text` as one word of a Bourne-like shell, and of fish, whose quotes know a backslash too.
std::string Quoted(const std::string& text, bool fish = false) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') {
      quoted += fish ? "\\'" : "'\\''";
    } else if (c == '\\' && fish) {
      quoted += "\\\\";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

// The statements that find the verbs on the line into `command`; the words of the line are `words`.
std::string FindCommand(const std::vector<CompletedCommand>& commands, const std::string& words) {
  std::string text = "  local command= word\n  for word in " + words + "; do\n    case \"$command $word\" in\n";
  for (const CompletedCommand& command : commands) {
    if (command.Path.empty()) continue;
    const size_t last = command.Path.rfind(' ');
    std::string verbs = last == std::string::npos ? "" : command.Path.substr(0, last);
    verbs += ' ';
    verbs += last == std::string::npos ? command.Path : command.Path.substr(last + 1);
    text.append("      ").append(Quoted(verbs)).append(") command=").append(Quoted(command.Path)).append(" ;;\n");
  }
  return text + "    esac\n  done\n";
}

// A description where a colon parts it from its word.
std::string ForDescribe(const CompletedWord& word) {
  std::string description = word.Description;
  std::replace(description.begin(), description.end(), ':', ',');
  return Quoted(word.Text + ":" + description);
}

// The cases of "command option" whose word behind it is one of a few, each with the statement `offer` and the words.
std::string ChoiceCases(const std::vector<CompletedCommand>& commands, const std::string& offer,
                        const std::string& behind) {
  std::string cases;
  for (const CompletedCommand& command : commands) {
    for (const CompletedWord& option : command.Options) {
      if (option.Choices.empty()) continue;
      cases += "    " + Quoted(command.Path + ' ' + option.Text) + ") " + offer;
      for (const std::string& choice : option.Choices) cases += ' ' + choice;
      cases += behind + "; return ;;\n";
    }
  }
  return cases;
}

}  // namespace

std::vector<CompletedCommand> CompletedCommands(const CLI::App& program) {
  std::vector<CompletedCommand> commands;
  AddCommand(program, "", commands);
  return commands;
}

std::string BashCompletion(const std::vector<CompletedCommand>& commands) {
  std::string text =
      "# Completes the verbs and options of tarnwick-cli in bash, and file names everywhere else.\n"
      "_tarnwick_cli() {\n"
      "  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n" +
      FindCommand(commands, "\"${COMP_WORDS[@]:1:COMP_CWORD-1}\"") +
      "  local verbs= options= valued=\n  case $command in\n";
  for (const CompletedCommand& command : commands) {
    std::string verbs, options, valued;
    for (const CompletedWord& word : command.Verbs) verbs += " " + word.Text;
    for (const CompletedWord& word : command.Options) (word.TakesValue ? valued : options) += " " + word.Text;
    text += "    " + Quoted(command.Path) + ") verbs=" + Quoted(verbs) + " options=" + Quoted(options) +
            " valued=" + Quoted(valued) + " ;;\n";
  }
  return text +
         "  esac\n"
         "  COMPREPLY=()\n"
         "  case \"$command $previous\" in\n" +
         ChoiceCases(commands, "COMPREPLY=($(compgen -W '", "' -- \"$current\"))") +
         "  esac\n"
         "  [[ \" $valued \" == *\" $previous \"* ]] && return  # a value, mostly a file\n"
         "  if [[ $current == -* ]]; then\n"
         "    COMPREPLY=($(compgen -W \"$options $valued\" -- \"$current\"))\n"
         "  elif [[ -n $verbs ]]; then\n"
         "    COMPREPLY=($(compgen -W \"$verbs\" -- \"$current\"))\n"
         "  fi\n"
         "}\n"
         "complete -o bashdefault -o default -F _tarnwick_cli tarnwick-cli\n";
}

std::string ZshCompletion(const std::vector<CompletedCommand>& commands) {
  std::string text =
      "#compdef tarnwick-cli\n"
      "# Completes the verbs and options of tarnwick-cli in zsh, and file names everywhere else.\n"
      "_tarnwick_cli() {\n" +
      FindCommand(commands, "\"${(@)words[2,CURRENT-1]}\"") + "  local -a verbs options valued\n  case $command in\n";
  for (const CompletedCommand& command : commands) {
    text += "    " + (command.Path.empty() ? std::string("''") : Quoted(command.Path)) + ")\n      verbs=(";
    for (const CompletedWord& word : command.Verbs) text += " " + ForDescribe(word);
    text += ")\n      options=(";
    for (const CompletedWord& word : command.Options) text += " " + ForDescribe(word);
    text += ")\n      valued=(";
    for (const CompletedWord& word : command.Options) {
      if (word.TakesValue) text += " " + Quoted(word.Text);
    }
    text += ") ;;\n";
  }
  return text +
         "  esac\n"
         "  case \"$command ${words[CURRENT-1]}\" in\n" +
         ChoiceCases(commands, "compadd --", "") +
         "  esac\n"
         "  if (( ${valued[(Ie)${words[CURRENT-1]}]} )); then\n"
         "    _files\n"
         "  elif [[ ${words[CURRENT]} == -* ]]; then\n"
         "    _describe option options\n"
         "  elif (( $#verbs )); then\n"
         "    _describe command verbs\n"
         "  else\n"
         "    _files\n"
         "  fi\n"
         "}\n"
         "_tarnwick_cli \"$@\"\n";
}

std::string FishCompletion(const std::vector<CompletedCommand>& commands) {
  std::string text = "# Completes the verbs and options of tarnwick-cli in fish, and file names everywhere else.\n";
  for (const CompletedCommand& command : commands) {
    const size_t last = command.Path.rfind(' ');
    std::string condition = "__fish_use_subcommand";
    if (!command.Path.empty()) {
      condition = "__fish_seen_subcommand_from " + command.Path.substr(last == std::string::npos ? 0 : last + 1);
      if (last != std::string::npos) {
        condition += "; and __fish_seen_subcommand_from " + command.Path.substr(0, command.Path.find(' '));
      } else {
        for (const CompletedWord& verb : command.Verbs)
          condition += "; and not __fish_seen_subcommand_from " + verb.Text;
      }
    }
    const std::string start = "complete -c tarnwick-cli -n " + Quoted(condition, true);
    for (const CompletedWord& verb : command.Verbs) {
      text += start + " -f -a " + Quoted(verb.Text, true) + " -d " + Quoted(verb.Description, true) + "\n";
    }
    for (const CompletedWord& option : command.Options) {
      const bool isLong = option.Text.rfind("--", 0) == 0;
      text += start + (isLong ? " -l " + option.Text.substr(2) : " -s " + option.Text.substr(1)) +
              (!option.Choices.empty() ? " -x -a " + Quoted(CLI::detail::join(option.Choices, " "), true)
               : option.TakesValue     ? " -r"
                                       : "") +
              " -d " + Quoted(option.Description, true) + "\n";
    }
  }
  return text;
}

}  // namespace tarnwick::cli

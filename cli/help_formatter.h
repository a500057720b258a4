#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

namespace tarnwick::cli {

/// `text` in lines of at most `columns`, broken at blanks, each line but the first behind `indent` blanks. A word that
/// is longer stays whole.
std::string Wrapped(std::string_view text, size_t columns, size_t indent);

/// How `--help` looks: usage first, an option's value by what it is (`-o, --output DIR`), its default and what it goes
/// with behind the description, all wrapped to the terminal.
class HelpFormatter : public CLI::Formatter {
 public:
  /// `columns`: of the terminal in which the help is read.
  explicit HelpFormatter(size_t columns);

  std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
  std::string make_usage(const CLI::App* app, std::string name) const override;
  std::string make_option(const CLI::Option* option, bool isPositional) const override;
  std::string make_option_usage(const CLI::Option* option) const override;
  std::string make_subcommands(const CLI::App* app, CLI::AppFormatMode mode) const override;
  std::string make_subcommand(const CLI::App* verb) const override;

 private:
  std::string Entry(const std::string& name, const std::string& description) const;

  size_t m_columns;
};

}  // namespace tarnwick::cli

#pragma once

#include "cli/commands/CommandSet.h"

#include <CLI/CLI.hpp>

#include <string>

/// The help page of one command: usage, purpose, arguments, examples, exit statuses; 80 columns wide.
class CommandHelp : public CLI::Formatter {
public:
    explicit CommandHelp(CommandText text) : text_(std::move(text)) {}
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;

private:
    CommandText text_;
};

/// The help page of the program: what it is for and its commands.
class ProgramHelp : public CLI::Formatter {
public:
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
};

/// The text broken into lines of at most `width` characters, each behind `indent` blanks; line ends in the
/// text stay.
std::string WrapText(const std::string& text, std::size_t indent, std::size_t width = 80);

#ifndef TOOLS_COMMON_USAGETEXT_H
#define TOOLS_COMMON_USAGETEXT_H

#include <CLI/CLI.hpp>

#include <string>

/** What is wrong with a command line that could not be parsed, in one line. */
std::string usageText(const CLI::App& app, const CLI::ParseError& error);

/** The message with the hint behind it how to get the chosen command's help. */
std::string withHint(const CLI::App& app, const std::string& message);

#endif

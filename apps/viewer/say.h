#pragma once

#include <string>

namespace viewer {

/// The text with a question mark for each control character, which names of files may hold.
std::string in_one_line(std::string text);

/// One line to stdout, at once.
void say(const std::string& line);

/// One line to stderr that names the program.
void print_problem(const std::string& line);

}  // namespace viewer

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orv::detail {

enum class LSystemOp : std::uint8_t {
  CONNECT,   ///< joins the last ring to the frame
  SHAPE,     ///< adds the piece `target` of LSystemProgram::pieces
  CALL,      ///< invokes a rule of the name `target` of LSystemProgram::names
  ROTATE_X,  ///< by `value` degrees
  ROTATE_Y,
  ROTATE_Z,
  TRANSLATE_X,  ///< by `value`
  TRANSLATE_Y,
  TRANSLATE_Z,
  SCALE_X,  ///< by `value`
  SCALE_Y,
  SCALE_Z,
  SCALE_ALL
};

struct LSystemStatement {
  LSystemOp op;
  std::uint32_t target = 0;
  double value = 0.0;
};

/// Statements `begin` to `end` - 1 of the program.
struct LSystemRule {
  double weight = 1.0;
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
};

/// A program in a form that can be run.
struct LSystemProgram {
  static constexpr std::uint32_t NO_NAME = 0xFFFFFFFFu;

  std::vector<LSystemStatement> statements;
  std::vector<std::string> names;               ///< of rules, without dot and weight
  std::vector<std::vector<LSystemRule>> rules;  ///< those of each name
  std::vector<std::string> pieces;              ///< names of shapes
  std::uint32_t entry = NO_NAME;                ///< name where the program starts
};

/// Reads a program text. Words that are no statement are passed over. A text that ends within a
/// statement is reported on the standard output; that statement is left out and the rest stands.
LSystemProgram parse_lsystem(std::string_view text);

}  // namespace orv::detail

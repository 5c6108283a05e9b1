#include "geometry/shapes/lsystem_program.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <unordered_map>

namespace orv::detail {

namespace {

constexpr std::string_view BLANKS = " \t\r\n\v\f";

/// Numbers texts in the order of their first appearance.
class TextTable {
 public:
  explicit TextTable(std::vector<std::string>& texts) : texts_(texts) {}

  std::uint32_t index_of(std::string_view text) {
    const auto added =
        indices_.emplace(std::string(text), static_cast<std::uint32_t>(texts_.size()));
    if (added.second) texts_.emplace_back(text);
    return added.first->second;
  }

 private:
  std::vector<std::string>& texts_;
  std::unordered_map<std::string, std::uint32_t> indices_;
};

/// 0 for what is no number and for what is not finite.
double number_of(std::string_view token) {
  double value = 0.0;
  if (token.front() == '+') token.remove_prefix(1);
  std::from_chars(token.data(), token.data() + token.size(), value);
  return std::isfinite(value) ? value : 0.0;
}

struct WeightedName {
  std::string_view base;
  double weight = 1.0;
};

/// The number behind the last dot is a weight, when it is one.
WeightedName split_name(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos) return {name};
  unsigned int weight = 0;
  const char* end = name.data() + name.size();
  const auto read = std::from_chars(name.data() + dot + 1, end, weight);
  if (read.ec != std::errc() || read.ptr != end) return {name};
  return {name.substr(0, dot), static_cast<double>(weight)};
}

struct Transform {
  std::string_view word;
  LSystemOp op;
};

constexpr Transform TRANSFORMS[] = {{"rx", LSystemOp::ROTATE_X},    {"ry", LSystemOp::ROTATE_Y},
                                    {"rz", LSystemOp::ROTATE_Z},    {"tx", LSystemOp::TRANSLATE_X},
                                    {"ty", LSystemOp::TRANSLATE_Y}, {"tz", LSystemOp::TRANSLATE_Z},
                                    {"sx", LSystemOp::SCALE_X},     {"sy", LSystemOp::SCALE_Y},
                                    {"sz", LSystemOp::SCALE_Z},     {"sa", LSystemOp::SCALE_ALL}};

class Parser {
 public:
  explicit Parser(std::string_view text)
      : rest_(text), names_(program_.names), pieces_(program_.pieces) {}

  LSystemProgram parse() {
    std::string_view word;
    while (!ended_ && next(&word)) read_statement(word);
    close_rule();
    if (ended_) std::fputs("lsystem error: unexpected end of program.", stdout);
    program_.rules.resize(program_.names.size());
    return std::move(program_);
  }

 private:
  bool next(std::string_view* token) {
    const std::size_t begin = rest_.find_first_not_of(BLANKS);
    if (begin == std::string_view::npos) return false;
    rest_.remove_prefix(begin);
    *token = rest_.substr(0, rest_.find_first_of(BLANKS));
    rest_.remove_prefix(token->size());
    return true;
  }

  /// A token that the statement needs.
  bool need(std::string_view* token) {
    if (next(token)) return true;
    ended_ = true;
    return false;
  }

  /// A number, its sign as a token of its own or not.
  bool need_number(double* value) {
    std::string_view token;
    if (!need(&token)) return false;
    const bool sign = token == "-";
    if (sign && !need(&token)) return false;
    *value = sign ? -number_of(token) : number_of(token);
    return true;
  }

  void read_statement(std::string_view word) {
    std::string_view name;
    if (word == "rule") {
      if (need(&name)) open_rule(name);
    } else if (word == "shape") {
      if (!need(&name)) return;
      const bool connect = name == "connect";
      add({connect ? LSystemOp::CONNECT : LSystemOp::SHAPE, connect ? 0 : pieces_.index_of(name)});
    } else if (word == "call") {
      if (need(&name)) add({LSystemOp::CALL, names_.index_of(split_name(name).base)});
    } else {
      read_transform(word);
    }
  }

  void read_transform(std::string_view word) {
    for (const Transform& transform : TRANSFORMS) {
      if (transform.word != word) continue;
      double value = 0.0;
      if (need_number(&value)) add({transform.op, 0, value});
      return;
    }
  }

  void add(const LSystemStatement& statement) {
    // Statements in front of the first rule make up the entry.
    if (open_ == LSystemProgram::NO_NAME) open_rule("entry");
    program_.statements.push_back(statement);
  }

  void open_rule(std::string_view name) {
    close_rule();
    const WeightedName weighted = split_name(name);
    open_ = names_.index_of(weighted.base);
    if (weighted.base == "entry") program_.entry = open_;
    rule_.weight = weighted.weight;
    rule_.begin = static_cast<std::uint32_t>(program_.statements.size());
  }

  void close_rule() {
    if (open_ == LSystemProgram::NO_NAME) return;
    rule_.end = static_cast<std::uint32_t>(program_.statements.size());
    program_.rules.resize(program_.names.size());
    program_.rules[open_].push_back(rule_);
    open_ = LSystemProgram::NO_NAME;
  }

  std::string_view rest_;
  LSystemProgram program_;
  TextTable names_;
  TextTable pieces_;
  std::uint32_t open_ = LSystemProgram::NO_NAME;
  LSystemRule rule_;
  bool ended_ = false;
};

}  // namespace

LSystemProgram parse_lsystem(std::string_view text) { return Parser(text).parse(); }

}  // namespace orv::detail

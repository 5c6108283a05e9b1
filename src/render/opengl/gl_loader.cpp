#include "render/opengl/gl_loader.h"

#include <orv/core/log_mgr.h>

#include <cstring>
#include <string>
#include <string_view>

namespace orv::detail {
namespace {

constexpr std::string_view FIXED = "fixed:";

/// One promise of a grants text.
struct Grant {
  std::string_view condition;
  std::string name;  ///< of the function under this grant
  bool fixed = false;
};

// Takes the first grant off the text; false at its end.
bool take_grant(std::string_view* text, const char* row_name, Grant* grant) {
  while (!text->empty() && text->front() == ' ') text->remove_prefix(1);
  if (text->empty()) return false;
  std::string_view word = text->substr(0, text->find(' '));
  text->remove_prefix(word.size());
  grant->fixed = word.substr(0, FIXED.size()) == FIXED;
  if (grant->fixed) word.remove_prefix(FIXED.size());
  const std::size_t equals = word.find('=');
  grant->condition = word.substr(0, equals);
  grant->name = equals == std::string_view::npos ? std::string(row_name)
                                                 : std::string(word.substr(equals + 1));
  return true;
}

bool holds(const Grant& grant, const GlFacts& facts) {
  if (grant.fixed && facts.core_context) return false;
  const std::string_view condition = grant.condition;
  if (condition.size() == 3 && condition[1] == '.') {
    return facts.is_version_at_least(condition[0] - '0', condition[2] - '0');
  }
  return facts.extensions.count(std::string(condition)) != 0;
}

void log_entry_point(const char* name, bool available) {
  if (available) {
    LogMgr::get().tracef("OpenGL function pointer - %s FETCHED OK.", name);
  } else {
    LogMgr::get().tracef("OpenGL function pointer - %s NOT AVAILABLE!", name);
  }
}

}  // namespace

GlProc find_granted(const GlProcAddress& source, const GlFacts& facts, const char* name,
                    const char* grants) {
  if (!source || !name || !grants) return nullptr;
  std::string_view rest = grants;
  Grant grant;
  while (take_grant(&rest, name, &grant)) {
    if (!holds(grant, facts)) continue;
    if (const GlProc function = source(grant.name.c_str())) return function;
  }
  return nullptr;
}

void fetch_core_functions(const GlProcAddress& source, GlCoreTable* table) {
  if (!source) return;
#define ORV_GL(result, name, parameters, arguments, grants) \
  table->name = reinterpret_cast<decltype(table->name)>(source(#name));
#include "render/opengl/gl_core_functions.inc"
}

void drop_ungranted_core_functions(const GlFacts& facts, GlCoreTable* table) {
  if (!facts.core_context) return;
#define ORV_GL(result, name, parameters, arguments, grants) \
  if (std::strncmp(grants, FIXED.data(), FIXED.size()) == 0) table->name = nullptr;
#include "render/opengl/gl_core_functions.inc"
}

void fetch_entry_points(const GlProcAddress& source, const GlFacts& facts, bool log,
                        GlTable* table) {
#define ORV_GL(result, name, parameters, arguments, grants)                                \
  table->name =                                                                            \
      reinterpret_cast<decltype(table->name)>(find_granted(source, facts, #name, grants)); \
  if (log) log_entry_point(#name, table->name != nullptr);
#include "render/opengl/gl_entry_points.inc"
}

}  // namespace orv::detail

/// @file
/// Fills the tables of functions for one context.
#pragma once

#include <functional>

#include "render/opengl/gl_facts.h"
#include "render/opengl/gl_table.h"

namespace orv {

using GlProc = void (*)();
/// Gives a function of OpenGL by its exact name, or null. Window systems also give functions that
/// the context lacks, and some that do not exist at all.
using GlProcAddress = std::function<GlProc(const char*)>;

namespace detail {

/// Fetches OpenGL 1.1 whole, before anything is known of the context.
void fetch_core_functions(const GlProcAddress& source, GlCoreTable* table);
/// Takes away the functions that the context lacks.
void drop_ungranted_core_functions(const GlFacts& facts, GlCoreTable* table);
/// Fetches what the version and the extensions of the context promise. With log, tells of each.
void fetch_entry_points(const GlProcAddress& source, const GlFacts& facts, bool log,
                        GlTable* table);

/// Function that one of the grants gives in this context, or null. The form of grants is told in
/// gl_entry_points.inc.
GlProc find_granted(const GlProcAddress& source, const GlFacts& facts, const char* name,
                    const char* grants);

}  // namespace detail
}  // namespace orv

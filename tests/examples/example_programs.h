#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/read_picture.h"

namespace orv::test {

/// A generation of OpenGL, and the profile that an example is to ask for.
struct Generation {
  const char* name;
  const char* version;  ///< as MESA_GL_VERSION_OVERRIDE takes it
  const char* profile;
};

constexpr Generation generations[] = {
    {"core", "4.5", "core"}, {"compat", "4.5COMPAT", "compat"}, {"gl2", "2.1", "compat"}};

/// Where a run of an example leaves its picture.
inline std::string example_output(const std::string& example, const Generation& generation) {
  return std::string(ORV_TEST_OUTPUT_DIR) + "/example_" + example + "_" + generation.name + ".png";
}

/// The program of an example, quoted for the shell.
inline std::string example_program(const std::string& example) {
  return "'" EXAMPLE_PROGRAMS + example + "'";
}

/// Runs an example once, for a picture. The exit code, or -1 when a signal ended it.
inline int run_example(const std::string& environment, const std::string& example,
                       const Generation& generation, const std::string& size) {
  const std::string picture = example_output(example, generation);
  std::remove(picture.c_str());
  const int status =
      std::system(("env " + environment + " MESA_GL_VERSION_OVERRIDE=" + generation.version + " " +
                   example_program(example) + " --output '" + picture + "' --profile " +
                   generation.profile + " --size " + size)
                      .c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace orv::test

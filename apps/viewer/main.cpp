// Shows models, in a window or as a picture; see options.cpp and keys.cpp.
#include <orv/orv.h>

#include <cstdio>
#include <string>

#include "viewer/options.h"
#include "viewer/run_modes.h"
#include "viewer/say.h"
#include "viewer/viewer.h"

namespace {

using namespace viewer;

bool run(const Options& options, LogTap& log, std::string* reason) {
  Viewer shown(options, log);
  bool done = shown.load_first(reason);
  if (done) {
    orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
    renderer->initialize();
    done = options.headless ? run_headless(renderer, shown, options, reason)
                            : run_in_window(renderer, shown, options, reason);
  }
  shown.stop(nullptr);
  return done;
}

}  // namespace

int main(int argc, char** argv) {
  const ParsedOptions parsed = parse_options(argc, argv);
  if (!parsed.run) {
    if (parsed.exit_code == EXIT_DONE) {
      std::fputs(parsed.text.c_str(), stdout);
    } else {
      print_problem(parsed.text);
    }
    return parsed.exit_code;
  }
  LogTap log;
  log.start(parsed.options.verbose);
  std::string reason;
  const bool done = run(parsed.options, log, &reason);
  orv::core::stop(nullptr);
  if (done) return EXIT_DONE;
  print_problem(reason);
  return EXIT_CANNOT_SHOW;
}

#include "ostrel/LoadFailure.h"

#include "graphics/LoadFailureReport.h"

namespace ostrel {

namespace {

struct Failures {
  LoadFailure last;
  LoadFailureHook hook;
};

Failures& failures() {
  thread_local Failures state;
  return state;
}

}  // namespace

LoadFailureHook setLoadFailureHook(LoadFailureHook hook) {
  std::swap(failures().hook, hook);
  return hook;
}

LoadFailure lastLoadFailure() {
  return failures().last;
}

namespace graphics {

void reportLoadFailure(const std::string& file, const std::string& cause) {
  Failures& state = failures();
  state.last = LoadFailure{file, cause};
  // A host's hook that throws must not take the load's message box with it.
  try {
    if (state.hook) state.hook(state.last);
  } catch (...) {
  }
}

}  // namespace graphics
}  // namespace ostrel

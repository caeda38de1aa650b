#pragma once
// Why a model or image did not load. The control's message box names only the file ("Model load
// failed: " and the path); a host that wants the cause asks here. Kept per thread, like the
// graphics state that the loads run in.

#include <functional>
#include <string>

namespace ostrel {

struct LoadFailure {
  std::string file;   // the path as the message box names it; empty: no failure
  std::string cause;  // where and what, e.g. "line 12: face 3 names vertex 9 of a mesh with 8
                      // vertices", "byte 80: a string longer than the data"
};

// Called for every failed model or image load on this thread, just before its message box. An
// empty function removes the hook. Gives the hook it replaces.
using LoadFailureHook = std::function<void(const LoadFailure&)>;
LoadFailureHook setLoadFailureHook(LoadFailureHook hook);

// The last failed load on this thread; an empty file when there was none.
LoadFailure lastLoadFailure();

}  // namespace ostrel

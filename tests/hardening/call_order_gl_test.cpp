// The random call-order run, bounded so that it fits the suite (also under the sanitizers). A
// longer run takes its size from the environment: OSTREL_CALL_ORDER_SEEDS seeds from
// OSTREL_CALL_ORDER_FIRST_SEED on, OSTREL_CALL_ORDER_OPERATIONS operations each
// (scripts/call-order.sh).

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/CallOrder.h"

namespace ostrel::testing {
namespace {

long fromEnvironment(const char* name, long fallback) {
  const char* text = std::getenv(name);
  if (text == nullptr || *text == 0) return fallback;
  char* end = nullptr;
  const long value = std::strtol(text, &end, 10);
  return *end == 0 && value >= 0 ? value : fallback;
}

TEST(CallOrder, RandomRunsKeepEveryInvariant) {
  const auto seeds = fromEnvironment("OSTREL_CALL_ORDER_SEEDS", 3);
  const auto first = fromEnvironment("OSTREL_CALL_ORDER_FIRST_SEED", 1);
  const auto operations = fromEnvironment("OSTREL_CALL_ORDER_OPERATIONS", 600);

  CallOrderFigures all;
  for (long seed = first; seed < first + seeds; ++seed) {
    all.add(runCallOrder(static_cast<uint32_t>(seed), static_cast<int>(operations)));
  }
  std::printf(
      "call order: seeds %ld..%ld, %llu operations (+%llu from handlers), %llu controls made, "
      "%llu inits (%llu true), %llu frames, %llu accepted drops, %llu device errors caught, "
      "%llu message boxes, %zu findings\n",
      first, first + seeds - 1, all.operations, all.nestedCalls, all.controlsMade, all.inits,
      all.initsTrue, all.frames, all.movesDone, all.deviceErrors, all.messageBoxes,
      all.findings.size());
  for (const std::string& f : all.findings) ADD_FAILURE() << f;

  // A run that never started a control or drew a frame tested nothing.
  EXPECT_EQ(all.operations, static_cast<unsigned long long>(seeds * operations));
  if (seeds * operations >= 300) {
    EXPECT_GT(all.initsTrue, 0u);
    EXPECT_GT(all.frames, 0u);
    EXPECT_GT(all.nestedCalls, 0u);
  }
}

}  // namespace
}  // namespace ostrel::testing

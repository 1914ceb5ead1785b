// Every test starts from the state a fresh process has: ctest runs each in
// its own process, and a run of the whole binary must agree with it.
#include <gtest/gtest.h>

#include "core/message.h"
#include "startup/startup.h"

namespace {
struct Isolation : testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override {
    messages = Messages{};
    vocab = Vocabulaire{};
    for (int e = 0; e < 8; ++e) {
      etats[e] = nullptr;
      nb_etats[e] = 0;
    }
    memoire.mal = nullptr;
    memoire.mal_dim = memoire.mal_haut = 0;
  }
};

const bool inscrite = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new Isolation);
  return true;
}();
}  // namespace

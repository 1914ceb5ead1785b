// Cost of an allocate-and-release pair of a small Bloc.
#include <chrono>
#include <cstdio>

#include "core/bloc.h"

int main() {
  tas::init();
  constexpr long N = 10'000'000;
  mot* garde[16] = {};
  auto t0 = std::chrono::steady_clock::now();
  for (long i = 0; i < N; ++i) {
    mot* b = bloc_alloue(8);
    b[1] = BLOC_REEL;
    // Keep a few alive so that the allocator cannot just hand back one slot.
    mot*& g = garde[i & 15];
    bloc_libere(g);
    g = b;
  }
  auto t1 = std::chrono::steady_clock::now();
  double ns = std::chrono::duration<double, std::nano>(t1 - t0).count() / N;
  std::printf("bloc_alloue + bloc_libere (8 words): %.1f ns per pair (goal < 50)\n", ns);
  return 0;
}

// Timing shared by the benchmarks.
#pragma once
#include <algorithm>
#include <chrono>
#include <vector>

// The median wall time of `fois` runs of f, in milliseconds.
template <class F>
double mediane_ms(int fois, F f) {
  std::vector<double> t;
  for (int k = 0; k < fois; ++k) {
    auto t0 = std::chrono::steady_clock::now();
    f();
    t.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count());
  }
  std::sort(t.begin(), t.end());
  return t[t.size() / 2];
}

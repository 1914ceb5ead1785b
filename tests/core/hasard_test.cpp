// The table of draws is filled at its first use, not at start: it must hold
// the same draws whichever comes first, the table, a draw or a new seed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "core/bloc.h"

namespace {
constexpr int N = 40;

float attendu(int d) { return static_cast<float>(static_cast<double>(d % 32767) / 32767.0); }

// The stream of seed 11 as the C library gives it: N for the table, then more.
std::vector<int> flot(unsigned graine, int n) {
  std::srand(graine);
  std::vector<int> v(n);
  for (int& d : v) d = std::rand();
  return v;
}

void table_egale(const std::vector<int>& f) {
  int n;
  const float* t = hasard_table(&n);
  ASSERT_EQ(n, N);
  for (int i = 0; i < N; ++i) ASSERT_EQ(t[i], attendu(f[i])) << i;
}
}  // namespace

TEST(Hasard, TheTableHoldsTheFirstDrawsWhateverComesFirst) {
  int n0;
  float* avant = const_cast<float*>(hasard_table(&n0));  // given back at the end
  const std::vector<int> f = flot(11, N + 2), g = flot(5, 1);
  static float a[N], b[N], c[N];

  std::srand(11);
  hasard_table_prevue(a, N);
  EXPECT_EQ(hasard(), f[N]);  // a draw first: behind the table's
  table_egale(f);
  EXPECT_EQ(hasard(), f[N + 1]);

  std::srand(11);
  hasard_table_prevue(b, N);
  table_egale(f);  // the table first
  EXPECT_EQ(hasard(), f[N]);

  std::srand(11);
  hasard_table_prevue(c, N);
  hasard_graine(5);  // a new seed first: the table keeps the old seed's draws
  table_egale(f);
  EXPECT_EQ(hasard(), g[0]);

  hasard_table_prevue(avant, n0);
}

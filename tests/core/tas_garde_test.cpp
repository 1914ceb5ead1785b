// The checked build's guards inside the arena: an access past either end of
// a Bloc, or after its release, stops the process at that access; memory
// that has left the quarantine serves again without false alarms.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "core/bloc.h"

#if defined(__SANITIZE_ADDRESS__)
namespace {
// Through a volatile pointer, so that the compiler keeps the access.
mot lit(mot* b, long i) {
  volatile mot* v = b;
  return v[i];
}
void ecrit(mot* b, long i, mot x) {
  volatile mot* v = b;
  v[i] = x;
}
}  // namespace

TEST(GardeTasDeathTest, OverrunUnderrunAndUseAfterReleaseAreReportedWhereTheyHappen) {
  ASSERT_TRUE(tas::init());
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  // Odd lengths: the end of the Bloc falls inside a granule of the shadow.
  for (mot n : {1, 5, 37, 4099}) {
    EXPECT_DEATH(
        {
          mot* b = bloc_alloue(n);
          for (mot i = 0; i < n; ++i) ecrit(b, i, i);
          ecrit(b, n, 1);
        },
        "use-after-poison")
        << n;
    EXPECT_DEATH(
        {
          mot* b = bloc_alloue(n);
          (void)lit(b, n + 3);
        },
        "use-after-poison")
        << n;
    EXPECT_DEATH(
        {
          mot* b = bloc_alloue(n);
          (void)lit(b, -1);
        },
        "use-after-poison")
        << n;
  }
  EXPECT_DEATH(
      {
        mot* b = bloc_alloue(12);
        b[1] = BLOC_REEL;
        bloc_libere(b);
        (void)lit(b, 4);
      },
      "use-after-poison");
  // A write into a released Bloc long after, once many others came and went.
  EXPECT_DEATH(
      {
        mot* b = bloc_alloue(9);
        b[1] = BLOC_REEL;
        bloc_libere(b);
        for (int i = 0; i < 5000; ++i) bloc_libere(bloc_alloue(7 + i % 300));
        ecrit(b, 8, 0);
      },
      "use-after-poison");
  EXPECT_DEATH(
      {
        void* p = tas::alloue(100);
        tas::libere(p);
        tas::libere(p);
      },
      "second release");
}

TEST(GardeTas, RecycledMemoryServesWholeAfterTheQuarantine) {
  ASSERT_TRUE(tas::init());
  std::mt19937 g(90417);
  std::uniform_int_distribution<int> taille(2, 70000);
  std::vector<mot*> vivants;
  // Far more than the quarantine holds, in bytes and in count, so that the
  // allocator hands out again memory that was held and poisoned.
  long total = 0;
  for (int i = 0; total < (600L << 20) || i < 150000; ++i) {
    mot n = i % 7 == 0 ? taille(g) : 2 + i % 41;
    mot* b = bloc_alloue(n);
    ASSERT_NE(b, nullptr);
    for (mot k = 1; k < n; ++k) ecrit(b, k, k ^ i);
    ASSERT_EQ(lit(b, n - 1), (n - 1) ^ i);
    total += n * 4L;
    vivants.push_back(b);
    if (vivants.size() > 50) {
      std::size_t k = g() % vivants.size();
      bloc_libere(vivants[k]);
      vivants[k] = vivants.back();
      vivants.pop_back();
    }
  }
  for (mot* b : vivants) bloc_libere(b);
}
#endif

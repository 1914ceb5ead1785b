// Object lookup by number in a full table, and attribute lookup in a list
// of 100: the two searches every command makes.
#include <chrono>
#include <cstdio>

#include "core/bloc.h"
#include "core/objet.h"

namespace {
template <class F>
double ns_par_appel(long n, F f) {
  auto t0 = std::chrono::steady_clock::now();
  for (long i = 0; i < n; ++i) f(i);
  auto t1 = std::chrono::steady_clock::now();
  return std::chrono::duration<double, std::nano>(t1 - t0).count() / n;
}
}  // namespace

int main() {
  constexpr int OBJ = 20000;
  if (!tas::init() || piles_alloue(1000, 100000, OBJ, 10000) != 0) return 1;
  for (int i = 1; i <= OBJ; ++i)
    if (!objet_cree(1, i % 2 ? B_VOL : B_LUM, 0, nullptr, nullptr, i)) return 1;

  // Worst case: the last entry, or a number that no entry has.
  Objet* volatile puits = nullptr;
  double dernier = ns_par_appel(2000, [&](long) { puits = objet_trouve(B_LUM, 0, OBJ, nullptr); });
  double absent =
      ns_par_appel(2000, [&](long) { puits = objet_trouve(B_VOL, 0, OBJ + 1, nullptr); });
  std::printf(
      "objet_trouve by number, table of %d full: last %.2f us, absent %.2f us (goal < 20 us)\n",
      OBJ, dernier / 1000, absent / 1000);

  // A list of 100 two-pair attributes; the one looked for is the last.
  Objet* o = piles.obj_base;
  const reel v[3] = {1, 2, 3};
  for (int k = 1; k <= 100; ++k)
    if (!attribut_ecrit_2(o, 1, 32, 1, k, v, 3, 0)) return 1;
  mot* volatile a = nullptr;
  double attr =
      ns_par_appel(2000000, [&](long) { a = attribut_trouve_2(o->donnees, 1, 32, 1, 100); });
  const mot cle[] = {1, 32, 1, 100};
  double disp = ns_par_appel(2000000, [&](long) { a = attribut_trouve(o->donnees, 2, cle); });
  std::printf(
      "attribut_trouve, last of 100: %.1f ns per-count form, %.1f ns dispatcher (goal < 200 ns)\n",
      attr, disp);
  return puits == nullptr && a == nullptr;
}

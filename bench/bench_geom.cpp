// Geometry timings: rotx of a million vertices, by the kernel and through
// the command dispatch as a typed `vol(1) rotx(0.57) som(0,1,-2)` reaches
// it, and the vertex normals of a 1000 x 1000 grid after its vertices
// moved. The last line is for bench/geom_numpy.py, which sets the first
// against numpy.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <vector>

#include "core/bloc.h"
#include "core/objet.h"
#include "geom/geom.h"
#include "mesure.h"

int commande(mot* bloc, const mot* limite, mot* valeur);

namespace {
// An element with a float vector argument: [length, env, ordinal, value].
mot* element(mot* p, int env, int ord, std::initializer_list<float> v) {
  mot n = static_cast<mot>(v.size());
  p[0] = 7 + n, p[1] = env, p[2] = ord;
  p[3] = 4 + n, p[4] = BLOC_REEL, p[5] = n, p[6] = 1;
  mot* q = p + 7;
  for (float x : v) ecrit_reel(q++, x);
  return q;
}

}  // namespace

int main() {
  tas::init();
  if (piles_alloue(10, 1000, 10, 100)) return 1;
  constexpr int N = 1'000'000;
  std::vector<float> v(3 * N);
  std::mt19937 g(1);
  std::uniform_real_distribution<float> u(-100, 100);
  for (float& x : v) x = u(g);
  Objet* o = objet_cree(1, B_VOL, 0, nullptr, nullptr, 1);
  if (!o || vol_som_ecrit(o, v.data(), N, 3)) return 1;
  Transfo r;
  r.op = B_ROTX;
  r.angle = 0.01f;
  r.pivot[1] = 1, r.pivot[2] = -2;
  r.pivot_donne = true;
  double rot = mediane_ms(21, [&] { transformer_vol(o, &r, nullptr, false); });
  std::printf("rotx of %d vertices: %.2f ms (median of 21)\n", N, rot);
  // The same through the dispatch: the phrase is built again each time,
  // since the handler leaves no value in its place.
  double cmd = mediane_ms(21, [&] {
    mot* b = piles.eva_base;
    mot* p = element(b + 4, 1, B_VOL, {1});
    p = element(p, 1, B_ROTX, {0.57295776f});
    p = element(p, 1, B_SOM, {0, 1, -2});
    b[0] = static_cast<mot>(p - b), b[1] = BLOC_PHRASE, b[2] = 3, b[3] = 0;
    if (commande(b, piles.eva_limite, nullptr)) std::printf("commande failed\n");
  });
  std::printf("the same through commande: %.2f ms (median of 21)\n", cmd);

  Objet* gr = objet_cree(1, B_VOL, 0, nullptr, nullptr, 2);
  if (!gr || vol_grille(gr, 999, 999, 0, 0, 1, 1, 0)) return 1;
  Transfo z;
  z.op = B_ROTX;
  z.angle = 0.001f;
  z.pivot_donne = true;
  double nor = mediane_ms(7, [&] {
    transformer_vol(gr, &z, nullptr, false);  // stale normals, refilled in place
    gen_normale_som(gr, nullptr, 0);
  });
  double seule = mediane_ms(7, [&] {
    invalider_vol(gr, 0);
    gen_normale_som(gr, nullptr, 0);
  });
  std::printf("gen_normale_som of a 1000 x 1000 grid: %.2f ms with the move, %.2f ms alone "
              "(face normals included; goal < 100)\n", nor, seule);
  std::printf("RESULTATS rotx_ms=%.4f normales_ms=%.4f commande_ms=%.4f\n", rot, seule, cmd);
  return 0;
}

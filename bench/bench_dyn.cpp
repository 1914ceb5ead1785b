// The dynamics' timings: the vertex step of a 100 x 100 spring grid (edge
// springs and torsion on, 10,000 vertices) and the body step of 100 bodies
// in a binary tree; the Bloc allocations made by the timed steps. The
// lines "grille_ms", "corps_us" and "allocations" are read by
// bench/dynamique.sh, which sets the first against numpy.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "anim/dyn.h"
#include "core/bloc.h"
#include "core/objet.h"
#include "geom/geom.h"
#include "mesure.h"

int main() {
  tas::init();
  if (piles_alloue(10, 1000, 1000, 100)) return 1;
  constexpr int N = 100;
  std::vector<float> s;
  for (int j = 0; j < N; ++j)
    for (int i = 0; i < N; ++i) s.insert(s.end(), {static_cast<float>(i), 0, static_cast<float>(j)});
  std::vector<mot> fac{0, BLOC_LISTE, (N - 1) * (N - 1), 0};
  for (int j = 0; j + 1 < N; ++j)
    for (int i = 0; i + 1 < N; ++i)
      fac.insert(fac.end(), {8, BLOC_ENTIER, 1, 4, j * N + i + 1, (j + 1) * N + i + 1, (j + 1) * N + i + 2, j * N + i + 2});
  fac[0] = static_cast<mot>(fac.size());
  Objet* o = objet_cree(1, B_VOL, 0, nullptr, nullptr, 1);
  if (!o || vol_som_ecrit(o, s.data(), N * N, 3) || vol_fac_ecrit(o, fac.data())) return 1;
  const float m = 1, res[2] = {0.2f, -0.05f}, tor[2] = {0.01f, 0}, f[3] = {0, -0.01f, 0};
  attribut_ecrit_1(o, 1, dyn::B_MAS, &m, 1, 1);
  attribut_ecrit_1(o, 1, dyn::B_RESSORT, res, 2, 1);
  attribut_ecrit_2(o, 1, dyn::B_RESSORT, 1, dyn::B_ROTAK, tor, 2, 1);
  attribut_ecrit_1(o, 1, dyn::B_FOR, f, 3, 1);
  dyn::pas_sommets(o, 1, 1, false);  // the first step makes its blocks
  long a0 = memoire.appels;
  double g = mediane_ms(21, [&] { dyn::pas_sommets(o, 1, 1, false); });
  long a1 = memoire.appels;
  // 100 bodies: record i hangs from record (i - 1) / 2.
  std::vector<Vol_inter*> r;
  for (int i = 0; i < 100; ++i) {
    Objet* b = objet_cree(1, B_VOL, 0, nullptr, nullptr, 10 + i);
    const float t[9] = {0, 0, 0, 1, 0, 0, 0, 1, 0}, fr[4] = {0, 0.3f, 0, -0.01f}, rj[2] = {0.01f, -0.1f};
    vol_som_ecrit(b, t, 3, 3);
    attribut_ecrit_1(b, 1, dyn::B_MAS, &m, 1, 1);
    attribut_ecrit_1(b, 1, dyn::B_FOR, f, 3, 1);
    attribut_ecrit_2(b, 1, dyn::B_FOR, 1, dyn::B_ROTAK, fr, 4, 1);
    attribut_ecrit_2(b, 1, dyn::B_RESSORT, 1, dyn::B_JOI, rj, 2, 1);
    auto* v = new Vol_inter;
    v->objet = b, v->num = b->numero, v->bras = 2;
    if (i > 0) {
      Vol_inter* p = r[static_cast<std::size_t>((i - 1) / 2)];
      v->lead = p, v->lead_num = p->num;
      p->suiv[p->nb_suiv++] = v;
      r.back()->suivant = v;
    } else {
      inter.liste_inter = v;
    }
    r.push_back(v);
  }
  dyn::pas_corps(nullptr, 1, 1);
  long a2 = memoire.appels;
  double c = mediane_ms(101, [&] { dyn::pas_corps(nullptr, 1, 1); });
  long a3 = memoire.appels;
  std::printf("grille_ms %.3f\n", g);
  std::printf("corps_us %.2f\n", c * 1000);
  std::printf("allocations %ld\n", (a1 - a0) + (a3 - a2));
  return 0;
}

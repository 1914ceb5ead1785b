// What trajectories and anchors add to a frame: 1000 looping trajectories
// (rotation, position and axis paths) played back over 100 records in a
// binary tree of leaders, then the tree's matrices and the anchor check
// over all 100 volumes of 8 vertices. Prints the median time of that part
// of a frame ("frame_us") and the Bloc allocations the timed frames made
// ("allocations", which must be 0); exits 1 above 200 microseconds.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "anim/trajet.h"
#include "core/bloc.h"
#include "core/objet.h"
#include "geom/geom.h"

int main() {
  tas::init();
  if (piles_alloue(10, 1000, 1000, 100)) return 1;
  constexpr int NV = 100, NT = 1000;
  std::vector<Vol_inter*> r;
  for (int i = 0; i < NV; ++i) {
    Objet* o = objet_cree(1, B_VOL, 0, nullptr, nullptr, i + 1);
    if (!o || vol_cube(o, 10)) return 1;
    auto* v = new Vol_inter;
    v->objet = o, v->num = i + 1;
    int d = 3;
    v->som = vol_som(o, &v->nb_som, &d);
    v->stride = d;
    if (!r.empty()) r.back()->suivant = v;
    else inter.liste_inter = v;
    inter.fin_inter = v;
    r.push_back(v);
    if (i > 0 && arbre_lie(v, r[static_cast<std::size_t>((i - 1) / 2)], 1 + i % 8, 1) < 0) return 1;
  }
  // Ten nodes a record, each on its own path, looping for ever.
  const int chemins[] = {B_ROTA_, B_ROTX_, B_ROTY_, B_ROTZ_, B_POS_, B_AXE_, B_FOR_, B_ROTA_, B_POS_, B_ROTY_};
  for (int k = 0; k < NT; ++k) {
    Vol_inter* v = r[static_cast<std::size_t>(k % NV)];
    auto* t = new Trajet;
    t->nb_cles = 1, t->env1 = 1, t->cle1 = chemins[k / NV % 10], t->nb = 50 + k % 37, t->boucle = 1;
    const float cles[9] = {0.1f * static_cast<float>(k % 7), 1.3f, -0.7f, 4, 5, 6, 7, 8, 9.5f};
    t->cles = bloc_alloue(13);
    t->cles[1] = BLOC_REEL, t->cles[2] = 3, t->cles[3] = 3;
    for (int j = 0; j < 9; ++j) ecrit_reel(t->cles + 4 + j, cles[j]);
    t->suivant = static_cast<Trajet*>(v->trajets);
    v->trajets = t;
    if (trajet_echantillonne(t, v, LOI_ACD, nullptr, true) < 0) return 1;
  }
  auto* a = new Ancre;
  a->nb = NV;
  a->vols = new Vol_inter*[NV];
  for (int i = 0; i < NV; ++i) a->vols[i] = r[static_cast<std::size_t>(i)];
  liste_anc = a;
  auto image = [] {
    trajets_pas();
    arbre_evalue();
    arbre_evalue();
    for (Ancre* x = liste_anc; x; x = x->suivant) ancre_verifie(x);
  };
  for (int k = 0; k < 20; ++k) image();  // the first frames make the velocity blocks
  const long a0 = memoire.appels;
  std::vector<double> t;
  for (int k = 0; k < 401; ++k) {
    auto t0 = std::chrono::steady_clock::now();
    image();
    t.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - t0).count());
  }
  const long allocations = memoire.appels - a0;
  std::sort(t.begin(), t.end());
  const double us = t[t.size() / 2];
  std::printf("trajectoires %d volumes %d\nframe_us %.1f\nallocations %ld\n", NT, NV, us, allocations);
  ancres_libere();
  for (Vol_inter* v : r) {
    trajets_libere(v);
    delete v;
  }
  inter.liste_inter = inter.fin_inter = nullptr;
  return us < 200 && allocations == 0 ? 0 : 1;
}

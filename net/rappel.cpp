// Recall and search: the answer of a trained network to an input, and the
// pattern whose wanted output is nearest to an asked one.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "core/message.h"
#include "net/interne.h"
#include "startup/startup.h"

namespace {
float distance2(const std::vector<float>& a, const float* b, int nb) {
  const int n = std::min(static_cast<int>(a.size()), nb);
  float d = 0;
  for (int i = 0; i < n; ++i) d += (a[i] - b[i]) * (a[i] - b[i]);
  return d;
}

int largeur_entree(Objet* o, int* l) {
  std::vector<std::vector<int>> c;
  if (res_couches(o, &c) < 0) return -1;
  *l = static_cast<int>(c[0].size());
  return 0;
}
}  // namespace

int res_rappel(Objet* o, const std::vector<float>& x, const OptionsRes& opt, std::vector<float>* y) {
  Reseau r;
  Tirage t;
  t.mode = TIRAGE_AUCUN;
  if (res_charge(o, &r, t, false) < 0) return -1;
  const int ni = r.taille(0);
  if (static_cast<int>(x.size()) != ni) {
    res_nomme(o);
    const char* m = mot_nom(1, RB_MOTIF);
    std::printf("%s(%d) != %d\a\n", m ? m : "?", 1, ni);
    return -1;
  }
  for (float v : x)
    if (!std::isfinite(v)) {
      res_nomme(o);
      message(1, MES_RES_NAN);
      return -1;
    }
  res_avant(&r, x.data());
  const int c = r.couches(), h = r.debut[c - 1], no = r.taille(c - 1);
  y->assign(r.sortie.begin() + h, r.sortie.begin() + h + no);
  // The windows clip the outputs they have; extra pairs are not used.
  for (int j = 0; j < no && 2 * j + 1 < static_cast<int>(opt.fenetres.size()); ++j)
    (*y)[j] = std::clamp((*y)[j], opt.fenetres[2 * j], std::max(opt.fenetres[2 * j], opt.fenetres[2 * j + 1]));
  if (opt.gagnant) {
    int k = static_cast<int>(std::max_element(y->begin(), y->end()) - y->begin());
    float v = (*y)[k];
    *y = {static_cast<float>(r.neurone[h + k] + 1), v};
  }
  return res_range(&r);
}

// Recall over several networks: the one whose patterns hold the nearest to
// the input, or a chain when a81 is given.
int res_rappel_liste(const std::vector<Objet*>& nets, const OptionsRes& opt, std::vector<float>* y) {
  if (nets.empty()) {
    y->clear();
    return 0;
  }
  if (nets.size() == 1) return res_rappel(nets[0], opt.entree, opt, y);
  if (opt.chaine) {
    std::vector<float> x = opt.entree;
    for (Objet* o : nets) {
      if (res_rappel(o, x, opt, y) < 0) return -1;
      x = *y;
    }
    return 0;
  }
  Objet* proche = nullptr;
  float dmin = 1000000.f;
  for (Objet* o : nets) {
    int l = 0;
    if (largeur_entree(o, &l) < 0) return -1;
    Motifs m;
    if (res_motifs(o, RB_MOTIF, l, &m) < 0) return -1;
    for (int k = 0; k < m.nb; ++k) {
      float d = distance2(opt.entree, m.motif(k), l);
      if (d < dmin) {
        dmin = d;
        proche = o;
      }
    }
  }
  if (!proche) {
    y->clear();
    return 0;
  }
  return res_rappel(proche, opt.entree, opt, y);
}

int res_cherche(const std::vector<Objet*>& nets, const std::vector<float>& v, std::vector<float>* y) {
  Objet* proche = nullptr;
  int indice = -1;
  float dmin = 1000000.f;
  for (Objet* o : nets) {
    std::vector<std::vector<int>> c;
    if (res_couches(o, &c) < 0) return -1;
    Motifs s;
    if (res_motifs(o, RB_SORTIE, static_cast<int>(c.back().size()), &s) < 0) return -1;
    for (int k = 0; k < s.nb; ++k) {
      float d = distance2(v, s.motif(k), s.largeur);
      if (d < dmin) {
        dmin = d;
        proche = o;
        indice = k;
      }
    }
  }
  y->clear();
  if (!proche) return 0;
  std::vector<std::vector<int>> c;
  res_couches(proche, &c);
  Motifs x;
  if (res_motifs(proche, RB_MOTIF, static_cast<int>(c[0].size()), &x) < 0) return -1;
  if (indice >= x.nb) {
    res_nomme(proche);
    std::printf("%d: ", indice + 1);
    message(0, MES_INDICE);
    return -1;
  }
  y->assign(x.motif(indice), x.motif(indice) + x.largeur);
  return 0;
}

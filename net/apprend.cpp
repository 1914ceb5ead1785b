// The training loop, the same for both kinds: P passes from the start pass,
// the rate by ramp or by curve, the map's shrinking neighbourhood, and the
// copy of the best pass that the network keeps at the end.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>

#include "core/message.h"
#include "interp/interp.h"
#include "net/interne.h"
#include "startup/startup.h"

namespace {
// The curve read at t: triples (t, rate, unused) with t rising, linear
// between them, flat beyond the ends.
float courbe_lit(const std::vector<float>& c, float t) {
  const std::size_t nb = c.size() / 3;
  if (t <= c[0]) return c[1];
  for (std::size_t k = 1; k < nb; ++k)
    if (t <= c[3 * k]) {
      float t0 = c[3 * k - 3], t1 = c[3 * k];
      float u = (t - t0) / (t1 - t0);
      return c[3 * k - 2] + u * (c[3 * k + 1] - c[3 * k - 2]);
    }
  return c[3 * nb - 2];
}

// The perceptron's evaluation after training: bad values and the largest
// error over all the patterns, the lines of the verbose mode.
void evalue(Reseau* r, const Motifs& x, const Motifs& y, float e, bool bavard, float* maxi, int* mauvais) {
  const int c = r->couches(), h = r->debut[c - 1], no = r->taille(c - 1);
  *maxi = 0;
  *mauvais = 0;
  for (int p = 0; p < x.nb; ++p) {
    res_avant(r, x.motif(p));
    const float* v = y.motif(p);
    if (bavard) {
      for (int j = 0; j < no; ++j) std::printf("%f ", static_cast<double>(v[j]));
      std::printf("\n");
      for (int j = 0; j < no; ++j) std::printf("%f ", static_cast<double>(r->sortie[h + j]));
      std::printf("\n");
    }
    for (int j = 0; j < no; ++j) {
      float d = v[j] - r->sortie[h + j];
      r->erreur[h + j] = d;
      float a = std::fabs(d);
      if (a > e) ++*mauvais;
      *maxi = std::max(*maxi, a);
      if (bavard) std::printf("%s%f ", a > e ? "******** " : "         ", static_cast<double>(d));
    }
    if (bavard) std::printf("\n");
  }
  if (bavard) {
    const char* t = mot_nom(0, RA_CONT);
    const char* m = mot_nom(0, RA_MAX);
    std::printf("%s: %d, %s: %f\n", t ? t : "?", *mauvais, m ? m : "?", static_cast<double>(*maxi));
  }
}
}  // namespace

int res_apprend(Objet* o, const OptionsRes& opt, float res[3]) {
  // The function to run before training.
  if (o->donnees) {
    mot* f = attribut_valeur_1(o->donnees, 0, RA_FONC_AVANT);
    if (f && f[0] > 4 && f[1] == BLOC_CHAINE && executer_texte(bloc_texte(f)) < 0) return -1;
  }
  Reseau r;
  Tirage t = opt.tirage_donne ? opt.tirage : Tirage{};
  if (res_charge(o, &r, t, opt.ini) < 0) return -1;
  r.borne = opt.borne;
  r.bavard = opt.bavard;
  Motifs x, y;
  if (res_motifs(o, RB_MOTIF, r.taille(0), &x) < 0) return -1;
  if (r.sorte == RES_PERCEPTRON) {
    if (res_motifs(o, RB_SORTIE, r.taille(r.couches() - 1), &y) < 0) return -1;
    if (y.nb != x.nb) {
      res_nomme(o);
      const char* m = mot_nom(1, RB_SORTIE);
      std::printf("%s(%d) != %d\a\n", m ? m : "?", y.nb, x.nb);
      return -1;
    }
  }
  const int P = std::max(1, opt.passes);
  const int s = std::clamp(opt.depart, 0, P);
  const float e = opt.tolerance;
  const std::vector<float> copie0 = r.w;
  std::vector<float> copie = r.w;
  float taux = opt.r0;
  const float dtaux = P > 1 ? (opt.r1 - opt.r0) / static_cast<float>(P - 1) : 0.f;
  float V = RES_VOISINS;
  const float dV = P > 1 ? static_cast<float>(RES_VOISINS) / static_cast<float>(P - 1) : 0.f;
  int meilleur = INT_MAX, utilisees = 0, converge = 0;
  float ecart = e;
  if (s >= P) o->f1 = 1;  // a start at the end marks the network as done
  for (int p = 1; p <= P; ++p) {
    int v = std::max(1, static_cast<int>(V));
    if (r.sorte == RES_CARTE && r.bavard) std::printf("*** passe %d vois %d ***\n", p, v);
    if (!(s != 0 && p < s)) {
      if (opt.avec_courbe) taux = courbe_lit(opt.courbe, P > 1 ? static_cast<float>(p - 1) / static_cast<float>(P - 1) : 0.f);
      int nb = r.sorte == RES_CARTE ? res_passe_carte(&r, x, taux, e, v, &ecart)
                                    : res_passe_perceptron(&r, x, y, taux, e);
      utilisees = p;
      if (nb == 0) {
        converge = 1;
        break;
      }
      if (nb < meilleur) copie = r.w;
      meilleur = nb;
      if (s != 0) break;
    }
    taux += dtaux;
    V -= dV;
  }
  // The network keeps the weights of its best pass; a converged one the
  // copy it kept last.
  r.w = copie;
  (void)copie0;
  float maxi = ecart;
  if (r.sorte == RES_PERCEPTRON) {
    int mauvais;
    evalue(&r, x, y, e, r.bavard, &maxi, &mauvais);
  }
  if (res_range(&r) < 0) return -1;
  res[0] = static_cast<float>(utilisees);
  res[1] = maxi;
  res[2] = static_cast<float>(converge);
  return 0;
}

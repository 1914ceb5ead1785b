// The passes over the patterns: forward, back-propagation, the map's winner
// and neighbourhood. Everything they touch was sized when the record was
// loaded, so a pass allocates nothing.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "core/message.h"
#include "net/interne.h"

namespace {
// A dot product with eight running sums: the loop vectorises, and the
// order of the sums is fixed, so a result does not depend on the build.
inline float produit(const float* __restrict a, const float* __restrict b, int n) {
  float s[8] = {};
  int i = 0;
  for (; i + 8 <= n; i += 8)
    for (int k = 0; k < 8; ++k) s[k] += a[i + k] * b[i + k];
  float t = ((s[0] + s[4]) + (s[1] + s[5])) + ((s[2] + s[6]) + (s[3] + s[7]));
  for (; i < n; ++i) t += a[i] * b[i];
  return t;
}

inline float active(int code, float p, float s) {
  if (code == 0) return s >= p ? 1.f : 0.f;
  return 1.f / (1.f + std::exp(-p * s));
}
}  // namespace

void res_avant(Reseau* r, const float* x) {
  const int c = r->couches();
  std::copy(x, x + r->taille(0), r->sortie.data());
  for (int k = 1; k < c; ++k) {
    const int nb = r->taille(k), nd = r->taille(k - 1), b = r->debut[k];
    const float* m = r->matrice(k);
    const float* bas = r->sortie.data() + r->debut[k - 1];
    for (int j = 0; j < nb; ++j) {
      float s = produit(m + static_cast<long>(j) * nd, bas, nd);
      r->net[b + j] = s;
      r->sortie[b + j] = active(r->code[b + j], r->param[b + j], s);
    }
  }
}

int res_passe_perceptron(Reseau* r, const Motifs& entrees, const Motifs& voulues, float taux, float e) {
  const int c = r->couches();
  const int h = r->debut[c - 1], no = r->taille(c - 1);
  const float borne = r->borne;
  std::fill(r->delta.begin(), r->delta.end(), 0.f);
  float* out = r->sortie.data();
  float* err = r->erreur.data();
  float* del = r->delta.data();
  int mauvais = 0;
  for (int p = 0; p < entrees.nb; ++p) {
    res_avant(r, entrees.motif(p));
    const float* y = voulues.motif(p);
    bool bon = true;
    for (int j = 0; j < no; ++j) {
      err[h + j] = y[j] - out[h + j];
      if (std::fabs(err[h + j]) >= e) bon = false;
    }
    if (bon) continue;
    ++mauvais;
    for (int k = c - 1; k >= 1; --k) {
      const int bu = r->debut[k], nu = r->taille(k), bd = r->debut[k - 1], nd = r->taille(k - 1);
      float* m = r->matrice(k);
      float* __restrict ed = err + bd;
      const float* __restrict od = out + bd;
      // The errors below are needed only above the inputs.
      const bool propage = k > 1;
      if (propage) std::fill(ed, ed + nd, 0.f);
      for (int j = 0; j < nu; ++j) {
        const float o = out[bu + j];
        const float d = o * (1 - o) * err[bu + j];
        del[bu + j] = d;
        float* __restrict ligne = m + static_cast<long>(j) * nd;
        const float rd = taux * d;
        // The error goes down through the weight as it was before this
        // update, then the weight moves.
        if (propage)
          for (int i = 0; i < nd; ++i) ed[i] += d * ligne[i];
        for (int i = 0; i < nd; ++i) ligne[i] = std::clamp(ligne[i] + rd * od[i], -borne, borne);
      }
    }
  }
  return mauvais;
}

int res_passe_carte(Reseau* r, const Motifs& entrees, float taux, float e, int v, float* ecart) {
  const int ni = r->taille(0), nc = r->taille(1), b = r->debut[1];
  float* m = r->matrice(1);
  const float borne = r->borne;
  float g = e;
  int nb = 0;
  for (int p = 0; p < entrees.nb; ++p) {
    const float* x = entrees.motif(p);
    if (r->bavard) std::printf("motif %d\n", p + 1);
    float meilleur = 1000000.f;
    int gagnant = -1;
    for (int j = 0; j < nc; ++j) {
      const float* w = m + static_cast<long>(j) * ni;
      float s = 0;
      for (int i = 0; i < ni; ++i) {
        float t = std::fabs(x[i] - w[i]);
        if (t > g) {
          g = t;
          ++nb;
        }
        s += t;
      }
      r->net[b + j] = s;
      if (s < meilleur) {
        meilleur = s;
        gagnant = j;
      }
    }
    if (gagnant < 0) {
      std::printf("%d: ", p + 1);
      message(1, MES_RES_VAINQUEUR);
      *ecart = g;
      return 1;
    }
    if (r->bavard) std::printf("\tvainqueur %d\n", r->neurone[b + gagnant] + 1);
    const int* rang = r->voisins.data() + static_cast<long>(gagnant) * RES_VOISINS;
    int faits = 0;
    for (int q = 0; q < RES_VOISINS && faits < v; ++q) {
      const int k = rang[q];
      if (k == -1) continue;
      ++faits;
      if (k < 0) continue;  // a neuron outside the grid counts but has no weights here
      float* w = m + static_cast<long>(k) * ni;
      for (int i = 0; i < ni; ++i) {
        const float d = x[i] - w[i];
        if (!(std::fabs(d) > e)) continue;
        const float avant = w[i];
        w[i] = std::clamp(w[i] + taux * d, -borne, borne);
        if (r->bavard) std::printf("correction %d->%d %f->%f\n", r->neurone[i] + 1, r->neurone[b + k] + 1, avant, w[i]);
      }
    }
  }
  *ecart = g;
  return nb;
}

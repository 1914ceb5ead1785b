// A network's attributes read into a working record and written back.
//
// Invariants of the stored form: a112 is a BLOC_REEL of n rows of n columns,
// n the count of neurons (the highest neuron number of the layers); b162 is a
// block of tag 162 with n rows of 8 words, record j for neuron j + 1; b46 is a
// BLOC_REEL of n rows of 9 neuron numbers (0 for none).
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "geom/geom.h"
#include "net/interne.h"
#include "startup/startup.h"

namespace {
// The largest n whose n x n weights a Bloc can hold.
constexpr long N_MAX = 32767;

mot* valeur_1(Objet* o, int e, int ord) { return o->donnees ? attribut_valeur_1(o->donnees, e, ord) : nullptr; }
}  // namespace

void res_nomme(const Objet* o) {
  const char* r = mot_nom(1, B_RES);
  if (o->nom) std::printf("%s(\"%s\") ", r ? r : "res", o->nom);
  else std::printf("%s(%d) ", r ? r : "res", o->numero);
}

int res_absent(const Objet* o, int env, int ord) {
  const char* m = mot_nom(env, ord);
  std::printf("%s ", m ? m : "?");
  res_nomme(o);
  message(0, MES_ABSENT);
  return -1;
}

bool res_reels(const mot* v, std::vector<float>* x) {
  x->clear();
  if (!v) return false;
  if (v[0] == BLOC_REEL) {
    x->push_back(lit_reel(v + 1));
    return true;
  }
  if (v[0] <= 4) return v[0] == 4 && (v[1] == BLOC_REEL || v[1] == BLOC_ENTIER);
  if (v[1] == BLOC_REEL) {
    x->assign(reels(v + 4), reels(v + 4) + (v[0] - 4));
    return true;
  }
  if (v[1] == BLOC_ENTIER) {
    for (mot k = 4; k < v[0]; ++k) x->push_back(static_cast<float>(v[k]));
    return true;
  }
  return false;
}

bool res_rangs(const mot* v, int largeur, std::vector<std::vector<float>>* rangs) {
  rangs->clear();
  if (!v) return false;
  if (v[0] > 0 && v[1] == BLOC_LISTE) {
    const mot* p = v + 4;
    const mot* fin = v + v[0];
    for (mot k = 0; k < v[2] && p < fin; ++k) {
      std::vector<float> x;
      if (!res_reels(p, &x)) return false;
      rangs->push_back(std::move(x));
      p += p[0] > 0 ? p[0] : 2;
    }
    return true;
  }
  if (v[0] > 4 && v[1] == BLOC_REEL && v[3] == 0) {
    // Ragged rows: a length word, then the row; holes skipped.
    const mot* p = v + 4;
    const mot* fin = v + v[0];
    while (p < fin) {
      mot l = p[0];
      if (l > 0 && p + l <= fin) rangs->emplace_back(reels(p + 1), reels(p + l));
      p += l > 0 ? l : (l < 0 ? -l : 1);
    }
    return true;
  }
  if (v[0] > 4 && v[1] == BLOC_REEL && v[2] > 1 && v[3] > 1 && 4L + v[2] * v[3] <= v[0]) {
    for (mot k = 0; k < v[2]; ++k)
      rangs->emplace_back(reels(v + 4) + static_cast<long>(k) * v[3], reels(v + 4) + static_cast<long>(k + 1) * v[3]);
    return true;
  }
  std::vector<float> x;
  if (!res_reels(v, &x)) return false;
  if (largeur <= 0 || x.empty()) {
    rangs->push_back(std::move(x));
    return true;
  }
  for (std::size_t k = 0; k < x.size(); k += largeur)
    rangs->emplace_back(x.begin() + k, x.begin() + std::min(x.size(), k + largeur));
  return true;
}

int res_motifs(Objet* o, int ord, int largeur, Motifs* m) {
  mot* v = valeur_1(o, 1, ord);
  std::vector<std::vector<float>> rangs;
  if (!v || !res_rangs(v, largeur, &rangs) || rangs.empty()) return res_absent(o, 1, ord);
  m->nb = static_cast<int>(rangs.size());
  m->largeur = largeur;
  m->x.assign(static_cast<long>(m->nb) * largeur, 0.f);
  for (int k = 0; k < m->nb; ++k) {
    if (static_cast<int>(rangs[k].size()) != largeur) {
      res_nomme(o);
      const char* nom = mot_nom(1, ord);
      std::printf("%s(%d) != %d\a\n", nom ? nom : "?", k + 1, largeur);
      return -1;
    }
    for (int i = 0; i < largeur; ++i) {
      if (!std::isfinite(rangs[k][i])) {
        res_nomme(o);
        const char* nom = mot_nom(1, ord);
        std::printf("%s(%d): ", nom ? nom : "?", k + 1);
        message(1, MES_RES_NAN);
        return -1;
      }
      m->x[static_cast<long>(k) * largeur + i] = rangs[k][i];
    }
  }
  return 0;
}

int res_couches(Objet* o, std::vector<std::vector<int>>* c) {
  c->clear();
  mot* v = valeur_1(o, 1, RB_FAC);
  std::vector<std::vector<float>> rangs;
  if (v && res_rangs(v, 0, &rangs)) {
    // One flat row: the layers are separated by numbers below 1.
    if (rangs.size() == 1 && !(v[0] > 0 && v[1] == BLOC_LISTE)) {
      std::vector<std::vector<float>> coupe(1);
      for (float x : rangs[0]) {
        if (x < 1) {
          if (!coupe.back().empty()) coupe.emplace_back();
        } else {
          coupe.back().push_back(x);
        }
      }
      if (coupe.back().empty()) coupe.pop_back();
      rangs = std::move(coupe);
    }
    for (auto& r : rangs) {
      if (r.empty()) continue;
      std::vector<int> l;
      for (float x : r) {
        mot k = 0;
        if (!reel_entier(x, &k, 1, static_cast<mot>(N_MAX)) ) {
          res_nomme(o);
          std::printf("%g: ", static_cast<double>(x));
          // A number past what a weight block can hold asks for too much
          // memory; one below 1 or no number names no neuron.
          if (x >= 1 && x == x) message(0, MES_ALLOCATION);
          else message(1, MES_RES_NEURONE);
          return -1;
        }
        l.push_back(k);
      }
      c->push_back(std::move(l));
    }
  }
  if (c->size() < 2) return res_absent(o, 1, RB_FAC);
  return 0;
}

void res_tire(float* w, int n, const std::vector<std::vector<int>>& couches, int sorte, const Tirage& t) {
  auto tire = [&t]() -> float {
    float u;
    if (t.mode == -3) return t.a;
    if (t.mode == -2) u = static_cast<float>(hasard() % 32767) / 32767.f;
    else u = alea_suivant();
    return t.a + (t.b - t.a) * u;
  };
  auto zone = [&t](float x) {
    // The dead zone's negative side is lifted to the positive side too.
    if (x >= 0 && x < t.d) return t.d;
    if (x <= 0 && x > -t.d) return t.d;
    return x;
  };
  const long nn = static_cast<long>(n) * n;
  if (couches.size() < 2) {
    for (long k = 0; k < nn; ++k) w[k] = zone(tire());
    return;
  }
  std::fill(w, w + nn, 0.f);
  auto pose = [&](int j, int i) {
    float& x = w[static_cast<long>(j - 1) * n + (i - 1)];
    x = zone(tire());
  };
  if (sorte == RES_CARTE) {
    for (std::size_t k = 1; k < couches.size(); ++k)
      for (int i : couches[0])
        for (int j : couches[k]) pose(j, i);
    for (std::size_t k = 1; k < couches.size(); ++k)
      for (int j : couches[k])
        for (int i : couches[k])
          if (i != j) pose(j, i);
    return;
  }
  for (std::size_t k = 1; k < couches.size(); ++k)
    for (int i : couches[k - 1])
      for (int j : couches[k]) pose(j, i);
}

void res_dimensionne(Reseau* v) {
  const int nc = v->couches();
  v->wdebut.assign(nc > 0 ? nc : 0, 0);
  long taille = 0;
  for (int k = 1; k < nc; ++k) {
    v->wdebut[k] = taille;
    taille += static_cast<long>(v->taille(k)) * v->taille(k - 1);
  }
  v->w.assign(taille, 0.f);
  const std::size_t p = v->neurone.size();
  v->net.assign(p, 0.f);
  v->sortie.assign(p, 0.f);
  v->delta.assign(p, 0.f);
  v->erreur.assign(p, 0.f);
  v->code.assign(p, 1);
  v->param.assign(p, 1.f);
  v->fonction.assign(p, 0);
}

void res_prepare(Reseau* r, std::span<const int> tailles, int sorte) {
  Reseau v;
  v.sorte = sorte;
  v.debut.push_back(0);
  for (int t : tailles) {
    for (int k = 0; k < t; ++k) v.neurone.push_back(static_cast<int>(v.neurone.size()));
    v.debut.push_back(static_cast<int>(v.neurone.size()));
  }
  v.n = static_cast<int>(v.neurone.size());
  res_dimensionne(&v);
  *r = std::move(v);
  if (sorte == RES_CARTE && tailles.size() >= 2) res_voisins_grille(r);
}

float* res_poids(Reseau* r, int j, int i) {
  for (int k = 1; k < r->couches(); ++k) {
    int pj = -1, pi = -1;
    for (int q = r->debut[k]; q < r->debut[k + 1]; ++q)
      if (r->neurone[q] == j) pj = q - r->debut[k];
    for (int q = r->debut[k - 1]; q < r->debut[k]; ++q)
      if (r->neurone[q] == i) pi = q - r->debut[k - 1];
    if (pj >= 0 && pi >= 0) return r->matrice(k) + static_cast<long>(pj) * r->taille(k - 1) + pi;
  }
  return nullptr;
}

void res_voisins_grille(Reseau* r) {
  const int nc = r->taille(1);
  int cote = static_cast<int>(std::ceil(std::sqrt(static_cast<double>(nc))));
  if (cote < 1) cote = 1;
  r->voisins.assign(static_cast<long>(nc) * RES_VOISINS, -1);
  static constexpr int dx[RES_VOISINS] = {0, 0, -1, 1, 0, -1, 1, -1, 1};
  static constexpr int dy[RES_VOISINS] = {0, -1, 0, 0, 1, -1, -1, 1, 1};
  for (int j = 0; j < nc; ++j) {
    int x = j % cote, y = j / cote;
    for (int q = 0; q < RES_VOISINS; ++q) {
      int u = x + dx[q], v = y + dy[q];
      if (u < 0 || u >= cote || v < 0) continue;
      int k = v * cote + u;
      if (k < nc) r->voisins[static_cast<long>(j) * RES_VOISINS + q] = k;
    }
  }
}

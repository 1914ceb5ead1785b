// Loading a network's record from its attributes, and writing it back.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "core/message.h"
#include "net/interne.h"
#include "startup/startup.h"

namespace {
mot* valeur_1(Objet* o, int e, int ord) { return o->donnees ? attribut_valeur_1(o->donnees, e, ord) : nullptr; }

// Replaces (or adds) the attribute of the path by one whose tail has
// `mots` words, filled by the caller; null after message 0:28.
mot* attribut_neuf(Objet* o, int n, const mot* paires, long mots) {
  mot h = 4 + 2 * n;
  mot* a = mots + h < 0x3fffffff ? bloc_alloue(static_cast<mot>(h + mots)) : nullptr;
  if (!a) {
    message(0, MES_ALLOCATION);
    return nullptr;
  }
  a[0] = static_cast<mot>(h + mots);
  phrase_paires(a, n, paires);
  int pos;
  mot* ancien = attribut_trouve_pos(o, &pos, n, paires);
  if (ancien) {
    o->donnees[pos] = ptr_vers_mot(a);
    bloc_supprime(ancien);
    attributs_bougent();
  } else if (liste_ajoute(o, a) < 0) {
    bloc_libere(a);
    message(0, MES_ALLOCATION);
    return nullptr;
  }
  return a + h;
}

bool poids_valides(const mot* v, long nn) { return v && v[0] > 0 && v[1] == BLOC_REEL && v[0] - 4 == nn; }
bool table_valide(const mot* v, int n) {
  return v && v[0] == 4 + RES_MOT_NEURONE * n && v[1] == BLOC_NEURONES;
}
}  // namespace

int res_charge(Objet* o, Reseau* r, const Tirage& t, bool tirer) {
  std::vector<std::vector<int>> c;
  if (res_couches(o, &c) < 0) return -1;
  int n = 0;
  for (auto& l : c)
    for (int k : l) n = std::max(n, k);
  const long nn = static_cast<long>(n) * n;
  Reseau v;
  v.objet = o;
  v.sorte = o->sous_type == RES_CARTE ? RES_CARTE : RES_PERCEPTRON;
  v.n = n;
  mot* poids = valeur_1(o, 0, RA_POIDS);
  if (t.mode == TIRAGE_AUCUN && !poids_valides(poids, nn)) return res_absent(o, 0, RA_POIDS);
  try {
    if (tirer || !poids_valides(poids, nn)) {
      v.plein.resize(nn);
      res_tire(v.plein.data(), n, c, v.sorte, t);
    }
    v.debut.push_back(0);
    for (auto& l : c) {
      for (int k : l) v.neurone.push_back(k - 1);
      v.debut.push_back(static_cast<int>(v.neurone.size()));
    }
    res_dimensionne(&v);
  } catch (const std::bad_alloc&) {
    message(0, MES_ALLOCATION);
    return -1;
  }
  const reel* plein = v.plein.empty() ? reels(poids + 4) : v.plein.data();
  for (int k = 1; k < v.couches(); ++k) {
    float* m = v.matrice(k);
    const int nd = v.taille(k - 1);
    for (int j = 0; j < v.taille(k); ++j)
      for (int i = 0; i < nd; ++i)
        m[static_cast<long>(j) * nd + i] = plein[static_cast<long>(v.neurone[v.debut[k] + j]) * n + v.neurone[v.debut[k - 1] + i]];
  }
  // Activations: the neuron table, else the list of functions per neuron;
  // the network's common a6 before either.
  mot* table = valeur_1(o, 1, RB_NEU);
  mot* fonctions = o->donnees ? attribut_valeur_2(o->donnees, 0, RA_FONC, 1, RB_NEU) : nullptr;
  std::vector<std::vector<float>> liste;
  if (fonctions) res_rangs(fonctions, 2, &liste);
  for (std::size_t q = 0; q < v.neurone.size(); ++q) {
    const int j = v.neurone[q];
    if (table_valide(table, n)) {
      const mot* e = table + 4 + RES_MOT_NEURONE * j;
      v.code[q] = static_cast<std::int8_t>(e[2] == 0 ? 0 : 1);
      v.param[q] = lit_reel(e + 3);
      v.fonction[q] = e[4];
    } else if (static_cast<std::size_t>(j) < liste.size() && liste[j].size() >= 2) {
      v.code[q] = static_cast<std::int8_t>(liste[j][0] == 0 ? 0 : 1);
      v.param[q] = liste[j][1];
    }
  }
  std::vector<float> commun;
  if (res_reels(valeur_1(o, 0, RA_FONC), &commun) && commun.size() >= 2) {
    std::fill(v.code.begin(), v.code.end(), static_cast<std::int8_t>(commun[0] == 0 ? 0 : 1));
    std::fill(v.param.begin(), v.param.end(), commun[1]);
  }
  if (v.sorte == RES_CARTE) {
    // The neighbour rows: b46 when it has one row per neuron, else the grid.
    mot* vo = valeur_1(o, 1, RB_VOISIN);
    if (vo && vo[0] > 0 && vo[1] == BLOC_REEL && vo[0] - 4 == static_cast<long>(n) * RES_VOISINS) {
      const int nc = v.taille(1);
      std::vector<int> rang(n, -2);
      for (int q = 0; q < nc; ++q) rang[v.neurone[v.debut[1] + q]] = q;
      v.voisins.assign(static_cast<long>(nc) * RES_VOISINS, -1);
      for (int q = 0; q < nc; ++q) {
        const reel* row = reels(vo + 4) + static_cast<long>(v.neurone[v.debut[1] + q]) * RES_VOISINS;
        for (int e = 0; e < RES_VOISINS; ++e) {
          mot k = 0;
          if (!reel_entier(row[e], &k, 0, n) || k == 0) continue;
          v.voisins[static_cast<long>(q) * RES_VOISINS + e] = rang[k - 1];
        }
      }
    } else {
      res_voisins_grille(&v);
      v.voisins_neufs = true;
    }
  }
  *r = std::move(v);
  return 0;
}

int res_range(Reseau* r) {
  Objet* o = r->objet;
  const int n = r->n;
  const long nn = static_cast<long>(n) * n;
  mot* poids = valeur_1(o, 0, RA_POIDS);
  if (!poids_valides(poids, nn)) {
    const mot cle[2] = {0, RA_POIDS};
    poids = attribut_neuf(o, 1, cle, 4 + nn);
    if (!poids) return -1;
    poids[0] = static_cast<mot>(4 + nn);
    poids[1] = BLOC_REEL;
    poids[2] = n;
    poids[3] = n;
    if (!r->plein.empty()) std::memcpy(poids + 4, r->plein.data(), sizeof(float) * nn);
    else std::memset(poids + 4, 0, sizeof(float) * nn);
  } else if (!r->plein.empty()) {
    std::memcpy(poids + 4, r->plein.data(), sizeof(float) * nn);
  }
  r->plein.clear();
  reel* w = reels(poids + 4);
  for (int k = 1; k < r->couches(); ++k) {
    const float* m = r->matrice(k);
    const int nd = r->taille(k - 1);
    for (int j = 0; j < r->taille(k); ++j)
      for (int i = 0; i < nd; ++i)
        w[static_cast<long>(r->neurone[r->debut[k] + j]) * n + r->neurone[r->debut[k - 1] + i]] = m[static_cast<long>(j) * nd + i];
  }
  mot* table = valeur_1(o, 1, RB_NEU);
  if (!table_valide(table, n)) {
    const mot cle[2] = {1, RB_NEU};
    table = attribut_neuf(o, 1, cle, 4L + RES_MOT_NEURONE * n);
    if (!table) return -1;
    table[0] = 4 + RES_MOT_NEURONE * n;
    table[1] = BLOC_NEURONES;
    table[2] = n;
    table[3] = RES_MOT_NEURONE;
    std::memset(table + 4, 0, sizeof(mot) * RES_MOT_NEURONE * n);
    for (int j = 0; j < n; ++j) {
      mot* e = table + 4 + RES_MOT_NEURONE * j;
      e[0] = j + 1;
      e[2] = 1;
      ecrit_reel(e + 3, 1.f);
    }
  }
  for (std::size_t q = 0; q < r->neurone.size(); ++q) {
    mot* e = table + 4 + RES_MOT_NEURONE * r->neurone[q];
    e[0] = r->neurone[q] + 1;
    ecrit_reel(e + 1, r->net[q]);
    e[2] = r->code[q];
    ecrit_reel(e + 3, r->param[q]);
    e[4] = r->fonction[q];
    ecrit_reel(e + 5, r->sortie[q]);
    ecrit_reel(e + 6, r->delta[q]);
    ecrit_reel(e + 7, r->erreur[q]);
  }
  if (r->voisins_neufs) {
    const mot cle[2] = {1, RB_VOISIN};
    mot* vo = attribut_neuf(o, 1, cle, 4L + static_cast<long>(n) * RES_VOISINS);
    if (!vo) return -1;
    vo[0] = static_cast<mot>(4 + n * RES_VOISINS);
    vo[1] = BLOC_REEL;
    vo[2] = n;
    vo[3] = RES_VOISINS;
    reel* x = reels(vo + 4);
    std::fill(x, x + static_cast<long>(n) * RES_VOISINS, 0.f);
    const int b = r->debut[1];
    for (int q = 0; q < r->taille(1); ++q)
      for (int e = 0; e < RES_VOISINS; ++e) {
        int k = r->voisins[static_cast<long>(q) * RES_VOISINS + e];
        if (k >= 0) x[static_cast<long>(r->neurone[b + q]) * RES_VOISINS + e] = static_cast<float>(r->neurone[b + k] + 1);
      }
    r->voisins_neufs = false;
  }
  // The layers in reverse order, output layer first, made once.
  if (!(o->donnees && attribut_valeur_2(o->donnees, 0, RA_CHERCHE, 1, RB_FAC))) {
    std::vector<float> inv;
    for (int k = r->couches() - 1; k >= 0; --k) {
      for (int q = r->debut[k]; q < r->debut[k + 1]; ++q) inv.push_back(static_cast<float>(r->neurone[q] + 1));
      if (k) inv.push_back(0.f);
    }
    const mot cle[4] = {0, RA_CHERCHE, 1, RB_FAC};
    mot* l = attribut_neuf(o, 2, cle, 4L + static_cast<long>(inv.size()));
    if (!l) return -1;
    l[0] = static_cast<mot>(4 + inv.size());
    l[1] = BLOC_REEL;
    l[2] = 1;
    l[3] = static_cast<mot>(inv.size());
    std::memcpy(l + 4, inv.data(), sizeof(float) * inv.size());
  }
  return 0;
}

std::vector<Objet*> res_tous() {
  std::vector<Objet*> v;
  for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o)
    if (o->type == B_RES && o->env == 1) v.push_back(o);
  return v;
}

// The phrases of the tree inside a running scene: `lead` and `suiv` with
// a value link, without one they read the links back; with `sommet` they
// set the vertex that carries a record, or its barycentric points; with
// `edi` they print the table of the tree. `origine` re-roots a figure.
#include <cstdio>
#include <cstring>
#include <vector>

#include "anim/trajet.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
const mot* valeur(const mot* e) { return e[0] > 3 ? e + 3 : nullptr; }

std::vector<float> nombres(const mot* v, bool* mauvais) {
  *mauvais = false;
  if (!v) return {};
  int n = 0;
  if (v[0] == BLOC_REEL || v[0] == BLOC_ENTIER) n = 1;
  else if (v[0] >= 4 && (v[1] == BLOC_REEL || v[1] == BLOC_ENTIER)) n = v[0] - 4;
  else if (!(v[0] >= 4 && v[1] == BLOC_NIL)) *mauvais = true;
  std::vector<float> x(static_cast<std::size_t>(n));
  if (n > 0) bloc_nombres(v, x.data(), n);
  return x;
}

// The records of the phrase's `vol`; unknown numbers are named.
std::vector<Vol_inter*> vols(mot* bloc) {
  std::vector<Vol_inter*> l;
  const mot* e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0]) {
    if (e[1] != 1 || e[2] != B_VOL) continue;
    bool m = false;
    for (float f : nombres(valeur(e), &m)) {
      Vol_inter* r = vol_inter_de(static_cast<int>(f));
      if (r) l.push_back(r);
      else std::printf("%d ", static_cast<int>(f)), message(0, MES_ABSENT);
    }
  }
  return l;
}

bool a46(mot* bloc) {
  const mot* e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0])
    if (e[1] == 0 && e[2] == A_RELANCE) return true;
  return false;
}

const mot* cle(mot* bloc, int env, int ord) {
  const mot* e = bloc + 4;
  for (int i = 0; i < bloc[2]; ++i, e += e[0])
    if (e[1] == env && e[2] == ord) return e;
  return nullptr;
}

// `edi`: the table of the listed records, or of all.
int liste(mot* bloc) {
  std::vector<Vol_inter*> l = vols(bloc);
  arbre_liste(cle(bloc, 1, B_VOL) ? l.data() : nullptr, static_cast<int>(l.size()));
  bloc[0] = 0;
  return 0;
}

// `lead som(b, v) vol(a)`: a stands on vertex v of b; `som(0)` lets it go;
// `som` alone gives each one's (b, v).
int porte(mot* bloc, const mot* s, const mot* limite) {
  bool m = false;
  std::vector<float> y = nombres(valeur(s), &m);
  if (m || (!y.empty() && y[0] != 0 && y.size() < 2)) return mot_imprime(1, B_SOM_), message(0, MES_VALEUR), -1;
  std::vector<Vol_inter*> l = vols(bloc);
  if (y.empty()) {
    std::vector<float> res;
    for (Vol_inter* r : l) res.push_back(static_cast<float>(r->taches[1])), res.push_back(static_cast<float>(r->taches[2]));
    return resultat_vecteur(bloc, limite, res);
  }
  for (Vol_inter* r : l)
    if (tache_som(r, static_cast<int>(y[0]), y.size() > 1 ? static_cast<int>(y[1]) : 0) < 0) return -1;
  arbre_evalue();
  bloc[0] = 0;
  return 0;
}

// `suiv som(k, b, s1, s2, s3, w1, w2, w3 ...) vol(a)`: vertex k of a
// follows the triangle s1 s2 s3 of b with the weights w.
int barycentres(mot* bloc, const mot* s) {
  bool m = false;
  std::vector<float> y = nombres(valeur(s), &m);
  if (m || y.empty() || y.size() % 8 != 0) return mot_imprime(1, B_SOM_), message(0, MES_VALEUR), -1;
  std::vector<Vol_inter*> l = vols(bloc);
  for (std::size_t k = 0; k < y.size(); k += 8) {
    const int num = static_cast<int>(y[k + 1]);
    Vol_inter* b = vol_inter_de(num);
    if (!b) return std::printf("%d ", num), message(0, MES_ABSENT), -1;
    const int tri[3] = {static_cast<int>(y[k + 2]), static_cast<int>(y[k + 3]), static_cast<int>(y[k + 4])};
    for (Vol_inter* r : l)
      if (tache_bary(r, static_cast<int>(y[k]), b, tri, &y[k + 5]) < 0) return -1;
  }
  arbre_evalue();
  bloc[0] = 0;
  return 0;
}
}  // namespace

int lead_commande(mot* bloc, const mot* e, const mot* limite) {
  if (cle(bloc, 0, A_EDITION)) return liste(bloc);
  if (const mot* s = cle(bloc, 1, B_SOM_)) return porte(bloc, s, limite);
  bool m = false;
  std::vector<float> x = nombres(valeur(e), &m);
  if (m) return mot_imprime(1, B_LEAD_), message(0, MES_VALEUR), -1;
  std::vector<Vol_inter*> l = vols(bloc);
  if (x.empty()) {
    const bool haut = a46(bloc);
    std::vector<float> res;
    for (Vol_inter* r : l) {
      Vol_inter* p = haut ? arbre_racine(r) : r->lead;
      res.push_back(p ? static_cast<float>(p->num) : 0.f);
    }
    return resultat_vecteur(bloc, limite, res);
  }
  const int b = static_cast<int>(x[0]);
  if (b != 0 && x.size() < 2) return mot_imprime(1, B_LEAD_), message(0, MES_VALEUR), -1;
  Vol_inter* p = nullptr;
  if (b != 0 && !(p = vol_inter_de(b))) return std::printf("%d ", b), message(0, MES_ABSENT), -1;
  for (Vol_inter* r : l)
    if (arbre_lie(r, p, b ? static_cast<int>(x[1]) : 0, 0) < 0) return -1;
  arbre_evalue();
  bloc[0] = 0;
  return 0;
}

int suiv_commande(mot* bloc, const mot* e, const mot* limite) {
  if (cle(bloc, 0, A_EDITION)) return liste(bloc);
  if (const mot* s = cle(bloc, 1, B_SOM_)) return barycentres(bloc, s);
  bool m = false;
  std::vector<float> x = nombres(valeur(e), &m);
  if (m) return mot_imprime(1, B_SUIV_), message(0, MES_VALEUR), -1;
  std::vector<Vol_inter*> l = vols(bloc);
  if (x.empty()) {
    std::vector<float> res;
    for (Vol_inter* r : l)
      for (int k = 0; k < r->nb_suiv; ++k)
        if (r->suiv[k]) res.push_back(static_cast<float>(r->suiv[k]->num));
    return resultat_vecteur(bloc, limite, res);
  }
  if (x.size() < 2) return mot_imprime(1, B_SUIV_), message(0, MES_VALEUR), -1;
  Vol_inter* f = vol_inter_de(static_cast<int>(x[0]));
  if (!f) return std::printf("%d ", static_cast<int>(x[0])), message(0, MES_ABSENT), -1;
  // b hangs from a at a's vertex v, by b's own anchor vertex.
  for (Vol_inter* r : l)
    if (arbre_lie(f, r, static_cast<int>(x[1]), 0) < 0) return -1;
  arbre_evalue();
  bloc[0] = 0;
  return 0;
}

int origine_commande(mot* bloc, const mot* e, const mot* limite) {
  (void)e, (void)limite;
  for (Vol_inter* r : vols(bloc))
    if (arbre_origine(r) < 0) return -1;
  bloc[0] = 0;
  return 0;
}

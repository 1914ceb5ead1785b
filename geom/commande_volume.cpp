// Vertices and faces from the language, written and read as flat lists:
//   vol(1) som = 0,0,0, 1,0,0, 1,1,0     three vertices, replacing all
//   vol(1) som                            0 0 0 1 0 0 1 1 0
//   vol(1) som(2) = 5,5,5                 vertex 2 alone; vol(1) som(2) reads it
//   vol(1) som top                        the displayed vertices (with the matrix)
//   vol(1) fac = 1,2,3, 0, 1,3,4          faces separated by 0
//   vol(1) fac = 1,2,3,4, -1, 5,6,7       -1 separates the contours of a face
//   vol(1) fac(2) = 1,4,3                 face 2 alone (one past the last appends)
// A write replaces the attribute whole, whatever the keyword's declared
// width, and marks what follows from it stale. Any other keyword in the
// phrase leaves it to the attribute routine (vol(1) fac(2) coul(1,0,0)).
#include <algorithm>
#include <climits>
#include <cstring>

#include "core/message.h"
#include "geom/commande_interne.h"

namespace {
struct Phrase {
  Cibles cibles;
  mot* e = nullptr;  // the som or fac element
  bool affiches = false;
  bool autre = false;
};

Phrase lit(mot* bloc, int ord, int ord2 = -1) {
  Phrase p;
  pour_elements(bloc, [&](mot* e) {
    if (cible_lit(p.cibles, e)) return;
    if (e[1] == 1 && (e[2] == ord || e[2] == ord2) && !p.e)
      p.e = e;
    else if (e[1] == 0 && e[2] == A_TOP)
      p.affiches = true;
    else
      p.autre = true;
  });
  return p;
}

bool pour_nous(const Phrase& p) { return p.e && !p.autre && p.cibles.donne && p.cibles.genre == B_VOL; }

// Calls f(o) for each volume named; -1 at the first failure. `trouves`
// counts the volumes that exist.
template <class F>
int pour_cibles(const Cibles& c, long* trouves, F f) {
  *trouves = 0;
  for (long i = 1, n = nb_ids(c.ids); i <= n; ++i) {
    Objet* o = cible(c, i);
    if (!o) continue;
    ++*trouves;
    if (f(o) < 0) return -1;
  }
  return 0;
}

// ---- vertices ---------------------------------------------------------------------
int verifie(const std::vector<int>& sel, int n) {
  for (int k : sel)
    if (k < 1 || k > n) return geom_erreur_valeur(k, MES_INDICE);
  return 0;
}

// The highest vertex number of a face list, to see whether new vertices
// still serve it.
int plus_haut(const mot* fac) {
  int m = 0;
  pour_contours(fac, [&](int, const mot* c, int k) {
    for (int j = 0; j < k; ++j) m = std::max<int>(m, c[j]);
  });
  return m;
}

int lit_sommets(const Phrase& p, const std::vector<int>& sel, mot* bloc, const mot* limite) {
  std::vector<float> out;
  long trouves;
  int r = pour_cibles(p.cibles, &trouves, [&](Objet* o) {
    int n, d;
    reel* s;
    if (p.affiches) {
      mot* a = gen_som_affiche(o, 0);
      if (!a) return -1;
      s = reels(valeur_de(a) + 4);
      n = valeur_de(a)[2];
      d = valeur_de(a)[3];
    } else if (!(s = vol_som(o, &n, &d))) {
      return 0;  // no vertices: nothing to add
    }
    if (verifie(sel, n)) return -1;
    auto ajoute = [&](int i) { out.insert(out.end(), s + static_cast<long>(i) * d, s + static_cast<long>(i) * d + 3); };
    if (sel.empty())
      for (int i = 0; i < n; ++i) ajoute(i);
    else
      for (int k : sel) ajoute(k - 1);
    return 0;
  });
  if (r) return r;
  return rend_reels(bloc, limite, out.data(), static_cast<long>(out.size()));
}

int ecrit_sommets(const Phrase& p, const std::vector<int>& sel, const mot* valeur) {
  Nombres x;
  if (!lit_nombres(valeur, &x)) return mauvais_argument(p.e, MES_VALEUR);
  if (sel.empty() ? x.n % 3 != 0 || x.n / 3 > INT_MAX / 4 : x.n != 3 && x.n != 3L * static_cast<long>(sel.size()))
    return geom_erreur_valeur(x.n, MES_INDICE);
  long trouves;
  int r = pour_cibles(p.cibles, &trouves, [&](Objet* o) {
    if (sel.empty()) {
      int n = static_cast<int>(x.n / 3);
      if (vol_som_ecrit(o, x.x, n, 3)) return -1;
      // Faces that name vertices no longer there go: they are written again
      // after the vertices.
      if (mot* f = vol_fac(o); f && plus_haut(f) > n) {
        attribut_supprime(o, 1, CLE_FAC);
        vol_fac_change(o);
      }
      return 0;
    }
    int n, d;
    reel* s = vol_som(o, &n, &d);
    if (!s) return geom_erreur_valeur(o->numero, MES_NUL);
    if (verifie(sel, n)) return -1;
    for (std::size_t k = 0; k < sel.size(); ++k)
      std::memcpy(s + static_cast<long>(sel[k] - 1) * d, x.x + (x.n == 3 ? 0 : 3 * k), 3 * sizeof(float));
    vol_som_change(o);
    return 0;
  });
  if (r) return r;
  return trouves ? 0 : introuvable(p.cibles);
}

// ---- faces --------------------------------------------------------------------------
// Faces of a flat list into the words of a BLOC_LISTE: 0 ends a face, -1 a
// contour; a face of several contours is a composite face.
int faces_de(const Nombres& x, std::vector<mot>& l) {
  l.assign({4, BLOC_LISTE, 0, 0});
  std::vector<std::vector<mot>> contours(1);
  auto fin_face = [&] {
    if (contours.back().empty()) contours.pop_back();
    if (contours.size() == 1) {
      auto& c = contours[0];
      l.insert(l.end(), {static_cast<mot>(4 + c.size()), BLOC_ENTIER, 1, static_cast<mot>(c.size())});
      l.insert(l.end(), c.begin(), c.end());
      ++l[2];
    } else if (contours.size() > 1) {
      std::size_t debut = l.size();
      l.insert(l.end(), {0, BLOC_LISTE, static_cast<mot>(contours.size()), 0});
      for (auto& c : contours) {
        l.insert(l.end(), {static_cast<mot>(4 + c.size()), BLOC_ENTIER, 1, static_cast<mot>(c.size())});
        l.insert(l.end(), c.begin(), c.end());
      }
      l[debut] = static_cast<mot>(l.size() - debut);
      ++l[2];
    }
    contours.assign(1, {});
  };
  for (long k = 0; k < x.n; ++k) {
    float v = x[k];
    if (v == 0) {
      fin_face();
    } else if (v == -1) {
      if (!contours.back().empty()) contours.emplace_back();
    } else if (mot n; reel_entier(v, &n, 1) && v == static_cast<float>(n)) {
      contours.back().push_back(n);
    } else {
      // What no vertex number can be is a bad value, and said so.
      return entier_de(v, &n) < 0 ? -1 : geom_erreur_valeur(n, MES_INDICE);
    }
  }
  fin_face();
  if (l.size() > 0x7fffffff) return geom_erreur_valeur(static_cast<long>(l.size()), MES_DEBORDEMENT);
  l[0] = static_cast<mot>(l.size());
  return 0;
}

// A face in the flat form: its contours separated by -1.
void face_plate(const mot* p, std::vector<float>& out) {
  if (p[3] != 0) {
    out.insert(out.end(), p + 4, p + 4 + p[3]);
    return;
  }
  const mot* c = p + 4;
  for (int j = 0; j < p[2]; ++j, c += c[0]) {
    if (j) out.push_back(-1);
    out.insert(out.end(), c + 4, c + 4 + c[3]);
  }
}

std::vector<const mot*> debuts(const mot* fac) {
  std::vector<const mot*> d(fac[2]);
  const mot* p = fac + 4;
  for (int i = 0; i < fac[2]; ++i, p = face_suivante(p)) d[i] = p;
  return d;
}

int lit_faces(const Phrase& p, const std::vector<int>& sel, mot* bloc, const mot* limite) {
  std::vector<float> out;
  long trouves;
  int r = pour_cibles(p.cibles, &trouves, [&](Objet* o) {
    mot* fac = vol_fac(o);
    if (!fac) return 0;
    auto d = debuts(fac);
    if (verifie(sel, fac[2])) return -1;
    auto ajoute = [&](int i) {
      if (!out.empty()) out.push_back(0);
      face_plate(d[i], out);
    };
    if (sel.empty())
      for (int i = 0; i < fac[2]; ++i) ajoute(i);
    else
      for (int k : sel) ajoute(k - 1);
    return 0;
  });
  if (r) return r;
  return rend_reels(bloc, limite, out.data(), static_cast<long>(out.size()));
}

int ecrit_faces(const Phrase& p, const std::vector<int>& sel, const mot* valeur) {
  Nombres x;
  if (!lit_nombres(valeur, &x)) return mauvais_argument(p.e, MES_VALEUR);
  std::vector<mot> neuves;
  if (faces_de(x, neuves)) return -1;
  if (!sel.empty() && (sel.size() != 1 || neuves[2] != 1)) return geom_erreur_valeur(neuves[2], MES_INDICE);
  long trouves;
  int r = pour_cibles(p.cibles, &trouves, [&](Objet* o) {
    if (sel.empty()) return vol_fac_ecrit(o, neuves.data());
    // One face replaced, or added after the last.
    mot* fac = vol_fac(o);
    int nf = fac ? fac[2] : 0, i = sel[0];
    if (i < 1 || i > nf + 1) return geom_erreur_valeur(i, MES_INDICE);
    std::vector<mot> l{0, BLOC_LISTE, static_cast<mot>(i > nf ? nf + 1 : nf), 0};
    const mot* face = neuves.data() + 4;
    auto d = fac ? debuts(fac) : std::vector<const mot*>{};
    for (int k = 1; k <= nf; ++k) {
      const mot* src = k == i ? face : d[k - 1];
      l.insert(l.end(), src, src + src[0]);
    }
    if (i > nf) l.insert(l.end(), face, face + face[0]);
    l[0] = static_cast<mot>(l.size());
    return vol_fac_ecrit(o, l.data());
  });
  if (r) return r;
  return trouves ? 0 : introuvable(p.cibles);
}
}  // namespace

int sommets_commande(mot* bloc, mot* valeur, const mot* limite) {
  Phrase p = lit(bloc, B_SOM, B_SEQ);
  if (p.e && p.e[2] == B_SEQ) {
    // The mouse sequence of the interaction loop has no route here yet.
    return p.cibles.donne ? route_absente(bloc, 1, B_SEQ) : POUR_ATTRIBUT;
  }
  if (!pour_nous(p)) return POUR_ATTRIBUT;
  std::vector<int> sel;
  if (lit_numeros(p.e, sel) < 0) return -1;
  if (!valeur) return lit_sommets(p, sel, bloc, limite);
  if (p.affiches) return mauvais_argument(p.e, MES_USAGE);
  int r = ecrit_sommets(p, sel, valeur);
  return r ? r : rend_valeur(bloc, limite, valeur);
}

int faces_commande(mot* bloc, mot* valeur, const mot* limite) {
  Phrase p = lit(bloc, B_FAC);
  if (!pour_nous(p) || p.affiches) return POUR_ATTRIBUT;
  std::vector<int> sel;
  if (lit_numeros(p.e, sel) < 0) return -1;
  if (!valeur) return lit_faces(p, sel, bloc, limite);
  int r = ecrit_faces(p, sel, valeur);
  return r ? r : rend_valeur(bloc, limite, valeur);
}

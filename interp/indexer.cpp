// Ramps, indices and views. A view holds the addresses of elements inside
// the indexed value, so that x[1,3] can be assigned; it is materialised
// before anything else touches the value.
#include <cmath>
#include <cstdio>
#include <cstring>

#include "interp/interne.h"
#include "interp/noyaux.h"

namespace {
// Word separators of data: NUL, tab, newline, blank and comma.
inline bool separateur(char c) { return c == 0 || c == '\t' || c == '\n' || c == ' ' || c == ','; }

// Start of the k-th word of a text (0-based), or null; *nb gets the count.
const char* debut_mot(const char* t, long k, long* nb) {
  long i = 0;
  const char* trouve = nullptr;
  while (*t) {
    while (*t && separateur(*t)) ++t;
    if (!*t) break;
    if (i == k) trouve = t;
    ++i;
    while (!separateur(*t)) ++t;
  }
  *nb = i;
  return trouve;
}

int hors_limites(long i) {
  std::printf("%ld: ", i);
  message(0, M_INDICE);
  return ECHEC;
}

// The value that an index reads, as a block: the variable's own block, or a
// plain value made at the top of the stack.
mot* valeur_indexee(mot* v, mot** haut, bool* temporaire) {
  *temporaire = false;
  if (v[0] < 0) {
    if (Objet* o = variable_de(v)) {
      if (!o->donnees) {
        std::printf("%s", nom_variable(o));
        message(0, M_SANS_VALEUR);
        return nullptr;
      }
      return o->donnees;
    }
  }
  if (v[0] < 0 || v[1] == BLOC_PHRASE || v[1] == VAL_VUE || v[1] == VAL_VUE3 || v[1] == IT_BRUT_ERR) {
    mot* c = *haut;
    int r = pose(c, v);
    if (r == 0) r = copie_valeur(c, piles.eva_limite);
    if (r < 0) {
      interp.code = r;
      return nullptr;
    }
    *haut = c + taille_item(c);
    *temporaire = true;
    return c;
  }
  *temporaire = true;
  return v;
}
}  // namespace

int rampe(mot* dest, mot* valeur, mot fermant) {
  Valeur v;
  if (decrire(valeur, &v) < 0) return ECHEC;
  if (v.type != BLOC_REEL && v.type != BLOC_NIL) {
    message(0, M_RAMPE);
    return ECHEC;
  }
  const reel* x = reels(v.donnees);
  double a = v.n > 0 ? x[0] : 0.0;
  double b = v.n > 1 ? x[1] : a;
  double c = v.n > 2 ? x[2] : 1.0;
  if (c == 0) c = 1;
  if ((a > b && c > 0) || (a < b && c < 0)) c = -c;
  double n = std::round((b - a) / c + 1);
  if (!(n >= 1)) {
    message(0, M_RAMPE);
    return ECHEC;
  }
  if (!place(dest, 4) || n > static_cast<double>(piles.eva_limite - dest - 4)) return PILE_PLEINE;
  long m = static_cast<long>(n);
  reel* r = reels(dest + 4);
  for (long k = 0; k < m; ++k) r[k] = static_cast<float>(a + static_cast<double>(k) * c);
  dest[0] = static_cast<mot>(4 + m);
  dest[1] = BLOC_REEL;
  dest[2] = static_cast<mot>(m);
  dest[3] = fermant;
  piles.eva_haut = dest + 4 + m;
  return 0;
}

int materialiser(mot* dest, const mot* vue, const mot* limite) {
  long n = vue[2];
  const mot* adr = vue + 4;
  if (vue[3] != BLOC_CHAINE) {
    long m = vue[1] == VAL_VUE ? n : 3 * n;
    if (dest + 4 + m > limite) return PILE_PLEINE;
    reel* r = reels(dest + 4);
    if (vue[1] == VAL_VUE)
      for (long k = 0; k < n; ++k) r[k] = *reels(bloc_pointe(adr[k]));
    else
      for (long k = 0; k < n; ++k)
        for (int c = 0; c < 3; ++c) r[3 * k + c] = reels(bloc_pointe(adr[k]))[c];
    dest[0] = static_cast<mot>(4 + m);
    dest[1] = BLOC_REEL;
    dest[2] = static_cast<mot>(m);
    dest[3] = 1;
    return 0;
  }
  // Bytes, or whole words separated by a blank.
  char* t = bloc_texte(dest);
  const char* fin = reinterpret_cast<const char*>(limite) - 1;
  long lg = 0;
  for (long k = 0; k < n; ++k) {
    const char* c = static_cast<const char*>(mot_vers_ptr(adr[k]));
    if (vue[1] == VAL_VUE) {
      if (t + lg >= fin) return PILE_PLEINE;
      t[lg++] = *c;
      continue;
    }
    if (k > 0) {
      if (t + lg >= fin) return PILE_PLEINE;
      t[lg++] = ' ';
    }
    for (; !separateur(*c); ++c) {
      if (t + lg >= fin) return PILE_PLEINE;
      t[lg++] = *c;
    }
  }
  t[lg] = 0;
  dest[0] = long_chaine(static_cast<std::size_t>(lg));
  dest[1] = BLOC_CHAINE;
  dest[2] = 1;
  dest[3] = 1;
  return 0;
}

int indexer(mot* base, mot* rp, mot* haut) {
  long ni = rp[0] - 4;
  mot fermant = rp[3];
  const reel* idx = reels(rp + 4);
  bool temporaire;
  mot* fin = haut;
  mot* b = valeur_indexee(base, &fin, &temporaire);
  if (!b) return interp.code < 0 ? interp.code : ECHEC;
  mot* vue = fin;
  if (!place(vue, 4 + ni)) return PILE_PLEINE;
  mot tag = b[0] > 0 ? b[1] : 0;
  if (tag == BLOC_LISTE) {
    // A list gives its elements copied into a new list.
    vue[0] = 4;
    vue[1] = BLOC_LISTE;
    vue[2] = 0;
    vue[3] = 0;
    for (long k = 0; k < ni; ++k) {
      long i = entier_sature(idx[k]);
      if (i < 0 || i >= b[2]) return hors_limites(i);
      mot* e = b + 4;
      for (long j = 0; j < i; ++j) e += taille_item(e);
      mot n = taille_item(e);
      if (!place(vue + vue[0], n)) return PILE_PLEINE;
      std::memcpy(vue + vue[0], e, static_cast<std::size_t>(n) * sizeof(mot));
      vue[0] += n;
      ++vue[2];
    }
    std::memmove(base, vue, static_cast<std::size_t>(vue[0]) * sizeof(mot));
    piles.eva_haut = base + base[0];
    return 0;
  }
  vue[0] = static_cast<mot>(4 + ni);
  vue[1] = fermant == '}' ? VAL_VUE3 : VAL_VUE;
  vue[2] = static_cast<mot>(ni);
  if (tag == BLOC_REEL) {
    long n = (b[0] < 0 ? -b[0] : b[0]) - 4;
    long lim = fermant == '}' ? n / 3 : n;
    long pas = fermant == '}' ? 3 : 1;
    vue[3] = BLOC_REEL;
    for (long k = 0; k < ni; ++k) {
      long i = entier_sature(idx[k]);
      if (i < 0 || i >= lim) return hors_limites(i);
      vue[4 + k] = ptr_vers_mot(b + 4 + pas * i);
    }
  } else if (tag == BLOC_CHAINE) {
    char* t = bloc_texte(b);
    long lg = static_cast<long>(std::strlen(t));
    vue[3] = BLOC_CHAINE;
    for (long k = 0; k < ni; ++k) {
      long i = entier_sature(idx[k]);
      if (fermant == '}') {
        long nb;
        const char* w = debut_mot(t, i, &nb);
        if (i < 0 || !w) return hors_limites(i);
        vue[4 + k] = ptr_vers_mot(w);
      } else {
        if (i < 0 || i >= lg) return hors_limites(i);
        vue[4 + k] = ptr_vers_mot(t + i);
      }
    }
  } else {
    message(0, M_TYPE);
    return ECHEC;
  }
  if (temporaire) {
    // The value indexed lives on the stack: the elements are taken now.
    mot* r = vue + vue[0];
    int e = materialiser(r, vue, piles.eva_limite);
    if (e < 0) return e;
    vue = r;
  }
  std::memmove(base, vue, static_cast<std::size_t>(vue[0]) * sizeof(mot));
  piles.eva_haut = base + base[0];
  return 0;
}

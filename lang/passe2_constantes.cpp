// Pass 2, the constants: numbers, strings, quoted vectors, the values of
// cas, and the raw text of aide and a108.
#include <cstdlib>

#include "lang/passe2.h"

namespace p2 {
int nombre(Etat& e) {
  const char* d = e.p;
  const char* f = fin_nombre(d);
  float v;
  bool octal = d[0] == '0' && d[1] >= '0' && d[1] <= '9';
  for (const char* q = d; octal && q < f; ++q) octal = *q >= '0' && *q <= '7';
  if (d[0] == '0' && (d[1] == 'x' || d[1] == 'X')) {
    v = static_cast<float>(std::strtoll(d + 2, nullptr, 16));
  } else if (octal) {
    v = static_cast<float>(std::strtoll(d, nullptr, 8));
  } else {
    v = std::strtof(d, nullptr);
  }
  paire(e, CEL_REEL, reel_mot(v));
  e.p = f;
  e.operande = false;
  return 0;
}

int chaine(Etat& e) {
  const char* d = e.p + 1;
  const char* f = d;
  while (*f && *f != '"') ++f;
  if (!*f) {
    message(0, M_CHAINE);
    return -1;
  }
  long n = f - d;
  mot* b = bloc(e, long_chaine(n), BLOC_CHAINE);
  if (b) {
    b[2] = 1;
    b[3] = static_cast<mot>(n);
    char* t = bloc_texte(b);
    for (long i = 0; i < n; ++i) t[i] = d[i] == 1 ? '"' : d[i];
  }
  e.p = f + 1;
  e.operande = false;
  return 0;
}

// 'abc': one float per character, its code.
int vecteur(Etat& e) {
  const char* q = e.p + 1;
  long n = 0;
  for (const char* r = q; *r && *r != '\'' && *r != MARQUE_LIGNE; ++r, ++n)
    if (*r == '\\' && r[1] && r[1] != MARQUE_LIGNE) ++r;
  mot* b = bloc(e, 4 + n, BLOC_REEL);
  long i = 0;
  while (*q && *q != '\'' && *q != MARQUE_LIGNE) {
    unsigned char ch = *q++;
    if (ch == '\\' && *q && *q != MARQUE_LIGNE) {
      ch = *q++;
      if (ch == 'n') ch = '\n';
      if (ch == 't') ch = '\t';
    }
    if (b) ecrit_reel(b + 4 + i, ch);
    ++i;
  }
  if (b) {
    b[2] = static_cast<mot>(n);
    b[3] = 1;
  }
  e.p = *q == '\'' ? q + 1 : q;
  e.operande = false;
  return 0;
}

// cas: ":" then a quoted character, or a number when it is the whole case.
int cas(Etat& e) {
  if (e.p[1] == ':') {
    paire(e, CEL_DEFAUT, 0);
    e.p += 2;
    e.operande = true;
    return 0;
  }
  const char* q = sauter_blancs(e.p + 1);
  mot v = 0;
  if (*q == '\'') {
    const char* r = q + 1;
    unsigned char ch = *r;
    if (ch == '\\' && r[1]) {
      ch = *++r;
      if (ch == 'n') ch = '\n';
      if (ch == 't') ch = '\t';
    }
    if (ch && ch != MARQUE_LIGNE) {
      v = ch;
      ++r;
      if (*r == '\'') ++r;
      q = r;
    }
  } else if (debut_nombre(q) || (*q == '-' && debut_nombre(q + 1))) {
    const char* f = fin_nombre(*q == '-' ? q + 1 : q);
    if (*sauter_blancs(f) == ';') {
      v = reel_mot(std::strtof(q, nullptr));
      q = f;
    }
  }
  paire(e, CEL_CAS, v);
  e.p = q;
  e.operande = true;
  return 0;
}

// The rest of the statement as raw text, for aide and a108.
void texte_brut(Etat& e, mot ord) {
  const char* d = e.p;
  if (est_blanc(*d)) ++d;
  const char* f = d;
  while (*f && *f != ';' && *f != MARQUE_LIGNE && *f != '}') ++f;
  long n = f - d;
  mot* b = bloc(e, long_chaine(n), ord);
  if (b) std::memcpy(bloc_texte(b), d, n);
  e.p = f;
}
}  // namespace p2

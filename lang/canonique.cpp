// The canonical stage of pass 1: statements get the forms that pass 2 reads
// with one cursor. Statement level and the inside of brackets are walked by
// two routines: the keyword forms (cas, labels, aller, si, ...) only mean
// something at statement level.
#include <cstdio>
#include <cstdlib>

#include "lang/interne.h"

namespace {
struct Canon {
  Compil& c;
  const char* p;
  Octets& o;
  int niveau = 0;
};

int groupe(Canon& k);

inline bool debut_nom(const char* p) {
  return *p && !fin_nom_lang(static_cast<unsigned char>(*p)) && !debut_nombre(p) && *p != '\'' &&
         *p != MARQUE_NOM;
}
// "@" and "$" stand alone in front of a name.
inline const char* fin_nom_texte(const char* p) {
  if (*p == '@' || *p == '$') return p + 1;
  while (!fin_nom_lang(static_cast<unsigned char>(*p))) ++p;
  return p;
}

void copie_marque(Canon& k) {
  if (int n = lire_marque(k.p)) k.c.ligne = n;
  const char* f = saute_marque(k.p);
  met_n(k.o, k.p, f - k.p);
  k.p = f;
}

// A string with its escapes resolved: a quote becomes byte 1, which pass 2
// turns back into the quote character.
int chaine(Canon& k) {
  const char* p = k.p + 1;
  met(k.o, '"');
  while (*p && *p != '"') {
    if (*p != '\\' || !p[1]) {
      met(k.o, *p++);
      continue;
    }
    char e = p[1];
    p += 2;
    switch (e) {
      case '"': met(k.o, 1); break;
      case '\\': met(k.o, '\\'); break;
      case 'n': met(k.o, '\n'); break;
      case 't': met(k.o, '\t'); break;
      case 'b': met(k.o, '\b'); break;
      default:
        if (e >= '0' && e <= '9') {
          int v = e - '0';
          while (*p >= '0' && *p <= '9' && v < 1000) v = v * 10 + (*p++ - '0');
          v &= 255;
          // The bytes that mark the text can't stand in it.
          if (v != 0 && v != MARQUE_NOM && v != MARQUE_LIGNE) met(k.o, static_cast<char>(v));
        } else {
          met(k.o, e);
        }
    }
  }
  if (!*p) {
    message(0, M_CHAINE);
    return -1;
  }
  met(k.o, '"');
  k.p = p + 1;
  return 0;
}

void vecteur(Canon& k) {
  const char* f = saute_vecteur(k.p);
  met_n(k.o, k.p, f - k.p);
  k.p = f;
}

void nombre(Canon& k) {
  const char* f = fin_nombre(k.p);
  met_n(k.o, k.p, f - k.p);
  k.p = f;
}

// "++name" and "--name" become "(++name)", with a group that follows the
// name; true when it was such a form.
int prefixe(Canon& k, bool* fait) {
  const char* p = k.p;
  *fait = false;
  if (!((p[0] == '+' || p[0] == '-') && p[1] == p[0] && debut_nom(p + 2))) return 0;
  *fait = true;
  const char* f = fin_nom_texte(p + 2);
  met(k.o, '(');
  met_n(k.o, p, f - p);
  k.p = f;
  if (*k.p == '(' || *k.p == '[' || *k.p == '{') {
    met(k.o, *k.p++);
    if (int r = groupe(k); r < 0) return r;
  }
  met(k.o, ')');
  return 0;
}

// A name out of the keyword forms: "name++" becomes "(name++)"; a group
// directly behind the name is copied with it; else a blank follows.
int nom_simple(Canon& k, const char* d, const char* f) {
  if ((k.p[0] == '+' || k.p[0] == '-') && k.p[1] == k.p[0] && *d != '$' && *d != '@') {
    met(k.o, '(');
    met_n(k.o, d, f - d);
    met_n(k.o, k.p, 2);
    met(k.o, ')');
    k.p += 2;
    return 0;
  }
  met_n(k.o, d, f - d);
  if (*k.p == '(' || *k.p == '[' || *k.p == '{') {
    met(k.o, *k.p++);
    return groupe(k);
  }
  met(k.o, ' ');
  return 0;
}

// The inside of a bracket, up to and with whatever closing bracket comes:
// pass 2 checks that the brackets match.
// Tokens read alike among statements and inside a group: line marks, name
// fields, strings, vectors, directives, numbers and prefix ++/--. True when
// the cursor stood on one of them; *r below 0 after a failure.
bool jeton_commun(Canon& k, int* r) {
  const char* p = k.p;
  char ch = *p;
  *r = 0;
  if (ch == MARQUE_LIGNE) {
    copie_marque(k);
  } else if (ch == MARQUE_NOM) {
    const char* f = saute_champ(p);
    met_n(k.o, p, f - p);
    k.p = f;
  } else if (ch == '"') {
    *r = chaine(k);
  } else if (ch == '\'') {
    vecteur(k);
  } else if (ch == '#') {
    while (*k.p && *k.p != MARQUE_LIGNE) ++k.p;
  } else if (debut_nombre(p)) {
    nombre(k);
  } else {
    bool fait = false;
    *r = prefixe(k, &fait);
    return *r < 0 || fait;
  }
  return true;
}

int groupe(Canon& k) {
  if (++k.niveau > IMBRICATION_MAX) {
    message(0, M_LONG);
    return -1;
  }
  for (;;) {
    const char* p = k.p;
    char ch = *p;
    if (ch == 0) {
      message(0, M_GROUPE);
      return -1;
    }
    if (ch == ')' || ch == ']' || ch == '}') {
      met(k.o, ch);
      ++k.p;
      --k.niveau;
      return 0;
    }
    int r = 0;
    if (ch == '(' || ch == '[' || ch == '{') {
      met(k.o, ch);
      ++k.p;
      r = groupe(k);
    } else if (jeton_commun(k, &r)) {
    } else if (debut_nom(p)) {
      const char* f = fin_nom_texte(p);
      k.p = f;
      r = nom_simple(k, p, f);
    } else {
      met(k.o, ch);
      ++k.p;
    }
    if (r < 0) return r;
  }
}

// ---- statement level -------------------------------------------------------------
int numero_etiquette(Compil& c, const char* d, const char* f) {
  char nom[TAILLE_NOM];
  long lg = f - d;
  if (lg >= TAILLE_NOM) return 0;
  std::memcpy(nom, d, lg);
  nom[lg] = 0;
  long e = sym_cherche(c, SYM_ETIQUETTE, nom);
  return e ? 1 - sym_entree(c, e)[2] : 0;
}

void met_nombre(Octets& o, int n) {
  char t[16];
  int lg = std::snprintf(t, sizeof t, "%d", n);
  met_n(o, t, lg);
}

void saute_blancs_marques(Canon& k) {
  for (;;) {
    if (est_blanc(*k.p)) {
      ++k.p;
    } else if (*k.p == MARQUE_LIGNE) {
      if (int n = lire_marque(k.p)) k.c.ligne = n;
      k.p = saute_marque(k.p);
    } else {
      return;
    }
  }
}

// cas expression : becomes : expression ;
int forme_cas(Canon& k) {
  met(k.o, ':');
  k.p = sauter_blancs(k.p);
  for (;;) {
    char ch = *k.p;
    if (ch == 0 || ch == MARQUE_LIGNE || ch == ';') {
      message(0, M_CAS);
      return -1;
    }
    if (ch == ':') {
      met(k.o, ';');
      ++k.p;
      return 0;
    }
    if (ch == '"') {
      if (chaine(k) < 0) return -1;
    } else if (ch == '\'') {
      vecteur(k);
    } else {
      met(k.o, ch);
      ++k.p;
    }
  }
}

int forme_aller(Canon& k, const char* d, const char* f) {
  met_n(k.o, d, f - d);
  met(k.o, ' ');
  k.p = sauter_blancs(k.p);
  const char* n = k.p;
  const char* e = debut_nom(n) || debut_nombre(n) ? fin_nom_texte(n) : n;
  int num = e > n ? numero_etiquette(k.c, n, e) : 0;
  if (!num) {
    if (e > n) std::printf("%.*s: ", static_cast<int>(e - n), n);
    message(0, M_ETIQUETTE);
    return -1;
  }
  met_nombre(k.o, num);
  k.p = e;
  return 0;
}

// aide, ? and a108 keep the rest of their statement as raw text.
void forme_brute(Canon& k, const char* d, const char* f) {
  met_n(k.o, d, f - d);
  met(k.o, ' ');
  k.p = sauter_blancs(k.p);
  while (*k.p && *k.p != ';' && *k.p != MARQUE_LIGNE && *k.p != '}') met(k.o, *k.p++);
}

// si, tantque, pour, selon: the keyword and its bracket; what stands between
// the bracket and the body goes.
int forme_controle(Canon& k, const char* d, const char* f) {
  met_n(k.o, d, f - d);
  const char* q = sauter_blancs(k.p);
  if (*q != '(') {
    met(k.o, ' ');
    return 0;
  }
  k.p = q + 1;
  met(k.o, '(');
  if (groupe(k) < 0) return -1;
  saute_blancs_marques(k);
  return 0;
}

// var a, b = 2, c  becomes  a=0;b=2;c=0
int forme_var(Canon& k) {
  for (;;) {
    const char* d = k.p;
    const char* f = fin_nom_texte(d);
    met_n(k.o, d, f - d);
    k.p = sauter_blancs(f);
    if (*k.p == '=') {
      met(k.o, '=');
      ++k.p;
      for (;;) {
        char ch = *k.p;
        if (ch == 0 || ch == ';' || ch == ',' || ch == '}' || ch == MARQUE_LIGNE) break;
        int r = 0;
        if (ch == '"') {
          r = chaine(k);
        } else if (ch == '\'') {
          vecteur(k);
        } else if (ch == '(' || ch == '[' || ch == '{') {
          met(k.o, ch);
          ++k.p;
          r = groupe(k);
        } else {
          met(k.o, ch);
          ++k.p;
        }
        if (r < 0) return r;
      }
    } else {
      met_n(k.o, "=0", 2);
    }
    if (*k.p != ',') return 0;
    const char* n = sauter_blancs(k.p + 1);
    if (!debut_nom(n)) return 0;
    met(k.o, ';');
    k.p = n;
  }
}

int nom_instruction(Canon& k, const char* d, const char* f) {
  int lg = static_cast<int>(f - d);
  int ord = ordinal_a(mot_lang(d, lg));
  switch (ord) {
    case A_CAS: return forme_cas(k);
    case A_DEFAUT: {
      const char* q = sauter_blancs(k.p);
      if (*q == ':') {
        met_n(k.o, "::", 2);
        k.p = q + 1;
        return 0;
      }
      break;
    }
    case A_ALLER: return forme_aller(k, d, f);
    case A_AIDE:
    case A_AIDE_MOT:
    case A_ERR: forme_brute(k, d, f); return 0;
    case A_POUR:
    case A_SI:
    case A_TANTQUE:
    case A_SELON: return forme_controle(k, d, f);
    case A_SINON:
      met_n(k.o, d, lg);
      met(k.o, ' ');
      saute_blancs_marques(k);
      return 0;
  }
  if (*k.p == ':' && k.p[1] != ':') {
    if (int n = numero_etiquette(k.c, d, f)) {
      met(k.o, 'E');
      met_nombre(k.o, n);
      met(k.o, ':');
      ++k.p;
      return 0;
    }
  }
  if (nom_de_a(d, lg, A_VAR_LISTE)) {
    const char* q = sauter_blancs(k.p);
    const char* e = fin_nom_texte(q);
    if (debut_nom(q) && *q != '@' && *q != '$' && !mot_lang(q, static_cast<int>(e - q))) {
      k.p = q;
      return forme_var(k);
    }
  }
  return nom_simple(k, d, f);
}

// The head of a function: its name field, then the list of formals, copied
// as it stands for pass 2 to read. The list holds names, commas and line
// ends; a brace, a ";" or the end of the text ahead of its ")" leaves it
// unclosed.
int tete(Canon& k) {
  const char* f = saute_champ(k.p);
  met_n(k.o, k.p, f - k.p);
  k.p = f;
  while (est_blanc(*k.p)) met(k.o, *k.p++);
  if (*k.p != '(') return 0;
  met(k.o, *k.p++);
  for (;;) {
    char ch = *k.p;
    if (ch == ')') {
      met(k.o, ch);
      ++k.p;
      return 0;
    }
    if (ch == 0 || ch == '{' || ch == '}' || ch == ';') {
      message(0, M_TETE);
      return -1;
    }
    if (ch == MARQUE_LIGNE) {
      copie_marque(k);
    } else {
      met(k.o, ch);
      ++k.p;
    }
  }
}

// Statements, up to the closing brace of the body (fermant '}'), or to the
// end of the text at the top.
int instructions(Canon& k, char fermant) {
  if (++k.niveau > IMBRICATION_MAX) {
    message(0, M_LONG);
    return -1;
  }
  for (;;) {
    const char* p = k.p;
    char ch = *p;
    if (ch == 0) break;
    if (ch == '}' && fermant == '}') break;
    int r = 0;
    if (ch == ';') {
      // One ";" for a run of them; one blank kept, line marks kept.
      met(k.o, ';');
      ++k.p;
      bool blanc = false;
      for (;;) {
        if (*k.p == ';') {
          ++k.p;
        } else if (est_blanc(*k.p)) {
          if (!blanc) met(k.o, ' ');
          blanc = true;
          ++k.p;
        } else if (*k.p == MARQUE_LIGNE) {
          copie_marque(k);
        } else {
          break;
        }
      }
    } else if (ch == '{') {
      met(k.o, '{');
      ++k.p;
      r = instructions(k, '}');
      if (r >= 0 && *k.p == '}') {
        met(k.o, '}');
        ++k.p;
      }
    } else if (ch == '(' || ch == '[') {
      met(k.o, ch);
      ++k.p;
      r = groupe(k);
    } else if (ch == MARQUE_NOM && k.c.fonction) {
      r = tete(k);
    } else if (jeton_commun(k, &r)) {
    } else if (debut_nom(p)) {
      const char* f = fin_nom_texte(p);
      k.p = f;
      r = nom_instruction(k, p, f);
    } else {
      met(k.o, ch);
      ++k.p;
    }
    if (r < 0) return r;
  }
  --k.niveau;
  return 0;
}
}  // namespace

int etape_canonique(Compil& c, const char* src, Octets& dst) {
  Canon k{c, src, dst};
  int r = instructions(k, 0);
  termine(dst);
  return r;
}

// Pass 2: the normalised text read with one cursor into a flat list of
// items, names classified through the keyword table and the symbol run.
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "lang/interne.h"

namespace {
constexpr mot ZERO_UNAIRE = static_cast<mot>(0x80000000u);  // -0.0: the 0 of a unary minus
constexpr mot BITS_PI = 0x40490FDB;

struct Etat {
  Compil& c;
  const char* p;
  Mots& s;
  int accolades = 0;
  char pile[IMBRICATION_MAX + 1] = {};  // open brackets, braces inside the body too
  int haut = 0;
  int parentheses = 0;
  int crochets = 0;
  bool tete_pour = false;
  // The bracket of a control keyword: behind its ")" a statement begins, so
  // a "-" there is a unary minus.
  bool tete_attendue = false;
  int tete_niveau = -1;
  bool ref = false;
  bool operande = true;  // an operand is expected
  long dernier = -1;     // offset of the previous item
  char jeton = ';';      // last character of the previous token
};

inline mot* item(Etat& e, long off) { return e.s.debut + off; }
inline bool dernier_est(Etat& e, mot k) { return e.dernier >= 0 && item(e, e.dernier)[0] == k; }

void paire(Etat& e, mot a, mot b) {
  e.dernier = e.s.p - e.s.debut;
  met_paire(e.s, a, b);
}

// A block of n words whose header is filled here; the caller fills the rest.
mot* bloc(Etat& e, long n, mot tag) {
  if (!mots_place(e.s, n)) return nullptr;
  e.dernier = e.s.p - e.s.debut;
  mot* b = e.s.p;
  std::memset(b, 0, sizeof(mot) * n);
  b[0] = static_cast<mot>(n);
  b[1] = tag;
  e.s.p += n;
  return b;
}

void op(Etat& e, mot code, char dernier_car) {
  paire(e, CEL_OP, code);
  e.jeton = dernier_car;
}

// A statement may end at a line's end: when what stands before the mark
// closes an operand and what follows it opens one.
bool fin_operande(Etat& e) {
  if (e.dernier < 0) return false;
  const mot* d = item(e, e.dernier);
  if (d[0] > 0)
    return d[1] == BLOC_CHAINE || d[1] == BLOC_REEL || d[1] == BLOC_TEXTE_AIDE || d[1] == BLOC_TEXTE_ERR;
  switch (d[0]) {
    case CEL_OP: return d[1] == ')' || d[1] == ']' || d[1] == '}' || d[1] == OP_INCR || d[1] == OP_DECR;
    case CEL_REEL: case CEL_MOT: case CEL_NIL: case CEL_PI: case CEL_SORTIR: case CEL_ALLER:
    case CEL_AIDE: case CEL_RC: return true;
  }
  return est_variable(d[0]);
}

bool debut_operande(const char* p) {
  while (est_blanc(*p) || *p == MARQUE_LIGNE) p = *p == MARQUE_LIGNE ? saute_marque(p) : p + 1;
  char ch = *p;
  // A line that begins with "(" (the form of "++x"), "[" or "!" begins a
  // statement too; one that begins with an operator goes on with the last.
  if (ch == '"' || ch == '\'' || ch == '@' || ch == '$' || ch == '(' || ch == '[' || ch == '!' ||
      debut_nombre(p))
    return true;
  if (!ch || fin_nom_lang(static_cast<unsigned char>(ch)) || ch == MARQUE_NOM) return false;
  const char* f = p;
  while (!fin_nom_lang(static_cast<unsigned char>(*f))) ++f;
  return ordinal_a(mot_lang(p, static_cast<int>(f - p))) != A_SINON;
}

void marque(Etat& e) {
  int n = lire_marque(e.p);
  bool ouverts = e.parentheses > 0 || e.crochets > 0;
  if (e.accolades > 0 && !ouverts && !e.tete_pour && fin_operande(e) &&
      debut_operande(saute_marque(e.p))) {
    paire(e, CEL_OP, ';');
    e.jeton = ';';
    e.operande = true;
  }
  e.p = saute_marque(e.p);
  if (!n) return;  // an included line has no number of its own
  e.c.ligne = n;
  if (dernier_est(e, CEL_LIGNE)) {
    item(e, e.dernier)[1] = n;
  } else {
    paire(e, CEL_LIGNE, n);
  }
}

bool pousse(Etat& e, char o) {
  if (e.haut >= IMBRICATION_MAX) {
    message(0, M_LONG);
    return false;
  }
  e.pile[e.haut++] = o;
  if (o == '(') ++e.parentheses;
  if (o == '[') ++e.crochets;
  return true;
}

// A closing bracket: it must close the last one opened.
int ferme(Etat& e, char o) {
  if (e.haut == 0 || e.pile[e.haut - 1] != o) {
    message(0, e.parentheses > 0 ? M_PARENTHESE : M_FERMANT);
    return -1;
  }
  --e.haut;
  if (o == '(' && --e.parentheses == 0) e.tete_pour = false;
  if (o == '[') --e.crochets;
  return 0;
}

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
  e.jeton = f[-1];
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
  e.jeton = '"';
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
  e.jeton = '\'';
  e.operande = false;
  return 0;
}

// cas: ":" then a quoted character, or a number when it is the whole case.
int cas(Etat& e) {
  if (e.p[1] == ':') {
    paire(e, CEL_DEFAUT, 0);
    e.p += 2;
    e.operande = true;
    e.jeton = ':';
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
  e.jeton = ':';
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

int variable(Etat& e, const char* nom, bool appel) {
  Compil& c = e.c;
  bool ref = e.ref;
  e.ref = false;
  if (appel) {
    long s = sym_cherche(c, SYM_FORMEL_FONC, nom);
    mot tag = s ? BLOC_APPEL_FORMEL : BLOC_APPEL;
    if (!s && !(s = sym_cherche(c, SYM_APPEL, nom)) && (s = sym_ajoute(c, SYM_APPEL, nom, nullptr, 0)) < 0)
      return -1;
    mot index = sym_entree(c, s)[2];
    if (mot* b = bloc(e, 4, tag)) b[2] = index;
    return 0;
  }
  // A line typed at a step prompt sees the running function's names.
  if (lang.fonction_pas && !c.fonction && lang.fonction_pas->code) {
    const mot* code = lang.fonction_pas->code;
    for (const mot* s = code + code[0] + 1; s[0] > 0; s += s[0]) {
      if (std::strcmp(sym_nom(s), nom) != 0) continue;
      if (s[1] == SYM_LOCAL || s[1] == SYM_FORMEL_FONC) {
        paire(e, ref ? CEL_REF_LOCAL : CEL_LOCAL, s[2]);
        return 0;
      }
      if (s[1] == SYM_STATIQUE && s[3]) {
        long n = sym_cherche(c, SYM_STATIQUE, nom);
        if (!n && (n = sym_ajoute(c, SYM_STATIQUE, nom, nullptr, 0)) < 0) return -1;
        sym_entree(c, n)[3] = s[3];  // already linked to its Objet
        paire(e, ref ? CEL_REF_STATIQUE : CEL_STATIQUE, sym_entree(c, n)[2]);
        return 0;
      }
    }
  }
  long s;
  if (c.fonction) {
    if ((s = sym_cherche(c, SYM_GLOBAL, nom))) {
      paire(e, ref ? CEL_REF_GLOBAL : CEL_GLOBAL, sym_entree(c, s)[2]);
    } else if ((s = sym_cherche(c, SYM_STATIQUE, nom))) {
      paire(e, ref ? CEL_REF_STATIQUE : CEL_STATIQUE, sym_entree(c, s)[2]);
    } else {
      if (!(s = sym_cherche(c, SYM_LOCAL, nom)) && !(s = sym_cherche(c, SYM_FORMEL_FONC, nom)) &&
          (s = sym_ajoute(c, SYM_LOCAL, nom, nullptr, 0)) < 0)
        return -1;
      paire(e, ref ? CEL_REF_LOCAL : CEL_LOCAL, sym_entree(c, s)[2]);
    }
    return 0;
  }
  if (!(s = sym_cherche(c, SYM_GLOBAL, nom)) && (s = sym_ajoute(c, SYM_GLOBAL, nom, nullptr, 0)) < 0)
    return -1;
  paire(e, ref ? CEL_REF_GLOBAL : CEL_GLOBAL, sym_entree(c, s)[2]);
  return 0;
}

int mot_cle(Etat& e, MotCle* m) {
  mot ptr = ptr_vers_mot(m);
  e.ref = false;
  e.operande = false;
  if (m->env != 0) {
    paire(e, CEL_MOT, ptr);
    return 0;
  }
  switch (m->ordinal) {
    case A_AIDE:
    case A_ERR: texte_brut(e, m->ordinal); return 0;
    case A_EXTERNE:
    case A_STATIQUE: {
      bool seul = false;
      if (lire_declarations(e.c, &e.p, m->ordinal == A_EXTERNE ? SYM_GLOBAL : SYM_STATIQUE, &seul) < 0)
        return -1;
      if (seul && m->ordinal == A_STATIQUE) paire(e, CEL_MOT, ptr);
      e.operande = true;
      return 0;
    }
    case A_POUR:
      bloc(e, 20, BLOC_POUR);
      e.tete_pour = true;
      e.tete_attendue = true;
      return 0;
    case A_ALLER: {
      const char* q = sauter_blancs(e.p);
      if (*q < '0' || *q > '9') {
        message(0, M_ETIQUETTE);
        return -1;
      }
      long n = std::strtol(q, nullptr, 10);
      while (*q >= '0' && *q <= '9') ++q;
      paire(e, CEL_ALLER, static_cast<mot>(n > 1000000 ? 1000000 : n));
      e.p = q;
      return 0;
    }
    case A_SI:
    case A_TANTQUE:
    case A_SELON:
      bloc(e, m->ordinal == A_SI ? 13 : m->ordinal == A_TANTQUE ? 9 : 3, m->ordinal);
      e.tete_attendue = true;
      return 0;
    case A_SINON:
      paire(e, CEL_OP, OP_SINON);
      e.operande = true;
      return 0;
    case A_NIL: paire(e, CEL_NIL, 0); return 0;
    case A_PI: paire(e, CEL_PI, BITS_PI); return 0;
    case A_SORTIR: paire(e, CEL_SORTIR, ptr); return 0;
    case A_RC: paire(e, CEL_RC, ptr); return 0;
    case A_AIDE_MOT: {
      const char* q = sauter_blancs(e.p);
      const char* f = q;
      while (!fin_nom_lang(static_cast<unsigned char>(*f))) ++f;
      MotCle* s = f > q ? mot_lang(q, static_cast<int>(f - q)) : nullptr;
      paire(e, CEL_AIDE, ptr_vers_mot(s));
      while (*f && *f != ';' && *f != MARQUE_LIGNE && *f != '}') ++f;
      e.p = f;
      return 0;
    }
  }
  paire(e, CEL_MOT, ptr);
  return 0;
}

int nom(Etat& e) {
  const char* d = e.p;
  const char* f = d;
  while (!fin_nom_lang(static_cast<unsigned char>(*f))) ++f;
  long lg = f - d;
  if (lg >= TAILLE_NOM) {
    std::printf("%.40s: ", d);
    message(0, M_LONG);
    return -1;
  }
  e.p = f;
  e.jeton = f[-1];
  // The label form "E<number>:" of pass 1.
  if (*f == ':' && f[1] != ':' && d[0] == 'E' && lg > 1) {
    const char* q = d + 1;
    while (q < f && *q >= '0' && *q <= '9') ++q;
    if (q == f) {
      paire(e, CEL_ETIQUETTE, static_cast<mot>(std::strtol(d + 1, nullptr, 10)));
      e.p = f + 1;
      e.operande = true;
      e.jeton = ':';
      return 0;
    }
  }
  if (MotCle* m = mot_lang(d, static_cast<int>(lg))) return mot_cle(e, m);
  char n[TAILLE_NOM];
  std::memcpy(n, d, lg);
  n[lg] = 0;
  e.operande = false;
  return variable(e, n, *f == '(');
}

int champ_nom(Etat& e) {
  const char* n = e.p + 1;
  long lg = long_nom_champ(e.p);
  mot* b = bloc(e, 2 + lg / 4 + 1, BLOC_NOM_FONCTION);
  if (b) std::memcpy(b + 2, n, lg);
  e.p = saute_champ(e.p);
  return 0;
}

// One token; 1 when the closing brace of the body ends the scan.
int jeton(Etat& e) {
  const char* p = e.p;
  char ch = *p;
  char n1 = p[1];
  switch (ch) {
    case '{':
      ++e.p;
      e.operande = true;
      e.jeton = '{';
      if (e.accolades++ == 0) return 0;
      if (!pousse(e, '{')) return -1;
      paire(e, CEL_OP, '{');
      return 0;
    case '}':
      ++e.p;
      if (e.accolades == 0) {
        message(0, M_ACCOLADES);
        return -1;
      }
      if (--e.accolades == 0) {
        if (e.haut > 0) {
          message(0, e.parentheses > 0 ? M_PARENTHESE : M_FERMANT);
          return -1;
        }
        return 1;
      }
      if (ferme(e, '{') < 0) return -1;
      op(e, '}', '}');
      e.operande = false;
      return 0;
    case '(':
    case '[':
      ++e.p;
      if (!pousse(e, ch)) return -1;
      if (ch == '(' && e.tete_attendue) e.tete_niveau = e.haut;
      e.tete_attendue = false;
      op(e, ch, ch);
      e.operande = true;
      return 0;
    case ')':
    case ']':
      ++e.p;
      if (ferme(e, ch == ')' ? '(' : '[') < 0) return -1;
      op(e, ch, ch);
      e.operande = e.haut + 1 == e.tete_niveau;
      if (e.operande) e.tete_niveau = -1;
      return 0;
    case ';':
      ++e.p;
      if (e.parentheses > 0 && !e.tete_pour) {
        message(0, M_PARENTHESE);
        return -1;
      }
      if (e.crochets > 0) {
        message(0, M_FERMANT);
        return -1;
      }
      op(e, ';', ';');
      e.operande = true;
      return 0;
    case ',':
      if (n1 == '=') {
        e.p += 2;
        op(e, OP_VIRG_AFF, '=');
        e.operande = true;
        return 0;
      }
      if (e.operande) {
        std::printf("%c %c: ", e.jeton == MARQUE_LIGNE || !e.jeton ? ' ' : e.jeton, ',');
        message(0, M_VIRGULE);
        return -1;
      }
      ++e.p;
      op(e, ',', ',');
      e.operande = true;
      return 0;
    case '-':
      if (n1 == '=') {
        e.p += 2;
        op(e, OP_MOINS_AFF, '=');
      } else if (n1 == '-') {
        e.p += 2;
        op(e, OP_DECR, '-');
        return 0;  // the operand state is that of the operand it changes
      } else {
        ++e.p;
        if (e.operande) paire(e, CEL_REEL, ZERO_UNAIRE);  // unary minus is 0 - x
        op(e, '-', '-');
      }
      e.operande = true;
      return 0;
    case '+':
      if (n1 == '=') {
        e.p += 2;
        op(e, OP_PLUS_AFF, '=');
      } else if (n1 == '+') {
        e.p += 2;
        op(e, OP_INCR, '+');
        return 0;
      } else {
        ++e.p;
        op(e, '+', '+');
      }
      e.operande = true;
      return 0;
    case '<':
    case '>': {
      bool deux = n1 == ch;
      const char* q = p + (deux ? 2 : 1);
      mot code = ch;
      if (deux && *q == '=') {
        code = ch == '<' ? OP_DECAL_G_AFF : OP_DECAL_D_AFF;
        ++q;
      } else if (deux) {
        code = ch == '<' ? OP_DECAL_G : OP_DECAL_D;
      } else if (*q == '=') {
        code = ch == '<' ? OP_INF_EGAL : OP_SUP_EGAL;
        ++q;
      }
      e.p = q;
      op(e, code, q[-1]);
      e.operande = true;
      return 0;
    }
    case '&':
    case '|': {
      mot code = ch;
      e.p += 1;
      if (n1 == ch) {
        code = ch == '&' ? OP_ET : OP_OU;
        ++e.p;
      } else if (n1 == '=') {
        code = ch == '&' ? OP_ET_AFF : OP_OU_AFF;
        ++e.p;
      }
      op(e, code, e.p[-1]);
      e.operande = true;
      return 0;
    }
    case '=': case '!': case '%': case '*': case '/': case '^': {
      mot code = ch;
      e.p += 1;
      if (n1 == '=') {
        switch (ch) {
          case '=': code = OP_EGAL_EGAL; break;
          case '!': code = OP_DIFF; break;
          case '%': code = OP_MOD_AFF; break;
          case '*': code = OP_MUL_AFF; break;
          case '/': code = OP_DIV_AFF; break;
          case '^': code = OP_PUIS_AFF; break;
        }
        ++e.p;
      }
      op(e, code, e.p[-1]);
      e.operande = true;
      return 0;
    }
    case '~':
      ++e.p;
      op(e, OP_TILDE, '~');
      e.operande = true;
      return 0;
    case '$': {
      ++e.p;
      MotCle* m = mot_entree(0, A_IMPRIME);
      if (m) paire(e, CEL_MOT, ptr_vers_mot(m));
      e.jeton = '$';
      e.operande = false;
      return 0;
    }
    case '@':
      ++e.p;
      e.ref = true;
      return 0;
    case ':': return cas(e);
    case '"': return chaine(e);
    case '\'': return vecteur(e);
    case MARQUE_NOM: return champ_nom(e);
  }
  if (debut_nombre(p)) return nombre(e);
  if (!fin_nom_lang(static_cast<unsigned char>(ch))) return nom(e);
  ++e.p;  // anything else stands for nothing
  return 0;
}

// Outside the body (before its first "{") nothing is compiled: a token is
// only stepped over.
void saute_jeton(Etat& e) {
  const char* p = e.p;
  if (*p == '"') {
    e.p = saute_chaine_norm(p);
  } else if (*p == '\'') {
    e.p = saute_vecteur(p);
  } else if (*p == MARQUE_NOM) {
    e.p = saute_champ(p);
  } else {
    ++e.p;
  }
}

int lire_tete_fonction(Etat& e) {
  Compil& c = e.c;
  // Blanks and line marks of the head; the mark item follows the lines.
  auto blancs = [&](bool points_virgules) {
    while (est_blanc(*e.p) || *e.p == MARQUE_LIGNE || (points_virgules && *e.p == ';')) {
      if (*e.p == MARQUE_LIGNE) {
        if (int n = lire_marque(e.p)) {
          c.ligne = n;
          if (dernier_est(e, CEL_LIGNE)) item(e, e.dernier)[1] = n;
        }
        e.p = saute_marque(e.p);
      } else {
        ++e.p;
      }
    }
  };
  blancs(false);
  if (*e.p == MARQUE_NOM) {
    const char* n = e.p + 1;
    int lg = long_nom_champ(e.p);
    if (!(lg == 4 && std::strncmp(n, "menu", 4) == 0) && mot_lang(n, lg)) {
      std::printf("%.*s: ", lg, n);
      message(0, M_NOM_MOT);
      return -1;
    }
    champ_nom(e);
  }
  paire(e, CEL_LIGNE, c.ligne);
  blancs(false);
  if (*e.p != '(') {
    message(0, M_TETE);
    return -1;
  }
  ++e.p;
  for (;;) {
    blancs(false);
    if (*e.p == ')') {
      ++e.p;
      break;
    }
    const char* d = e.p;
    while (!fin_nom_lang(static_cast<unsigned char>(*e.p))) ++e.p;
    long lg = e.p - d;
    if (lg == 0 || lg >= TAILLE_NOM || debut_nombre(d)) {
      message(0, M_TETE);
      return -1;
    }
    char n[TAILLE_NOM];
    std::memcpy(n, d, lg);
    n[lg] = 0;
    if (!sym_cherche(c, SYM_LOCAL, n)) {
      if (sym_ajoute(c, SYM_LOCAL, n, nullptr, 0) < 0) return -1;
      ++c.nb_formels;
    }
    blancs(false);
    if (*e.p == ',') {
      ++e.p;
    } else if (*e.p != ')') {
      message(0, M_TETE);
      return -1;
    }
  }
  // "fonc f, g;": formals that hold the name of a function.
  for (;;) {
    blancs(true);
    const char* d = e.p;
    const char* f = d;
    while (!fin_nom_lang(static_cast<unsigned char>(*f))) ++f;
    if (f == d || ordinal_a(mot_lang(d, static_cast<int>(f - d))) != A_FONC) return 0;
    e.p = f;
    for (;;) {
      while (est_blanc(*e.p) || *e.p == ',') ++e.p;
      const char* a = e.p;
      while (!fin_nom_lang(static_cast<unsigned char>(*e.p))) ++e.p;
      long lg = e.p - a;
      if (lg == 0) break;
      if (lg >= TAILLE_NOM) {
        message(0, M_LONG);
        return -1;
      }
      char n[TAILLE_NOM];
      std::memcpy(n, a, lg);
      n[lg] = 0;
      if (long s = sym_cherche(c, SYM_LOCAL, n)) {
        mot* en = sym_entree(c, s);
        en[3] = en[2];
        en[1] = SYM_FORMEL_FONC;
      } else if (!sym_cherche(c, SYM_FORMEL_FONC, n) && sym_ajoute(c, SYM_FORMEL_FONC, n, nullptr, 0) < 0) {
        return -1;
      }
    }
  }
}
}  // namespace

int passe2(Compil& c) {
  mot* debut = c.B;
  Mots s{debut, debut + 4, debut + c.moitie - MARGE};
  Etat e{c, reinterpret_cast<const char*>(c.A), s};
  c.ligne = 1;
  if (c.fonction) {
    if (lire_tete_fonction(e) < 0) return -1;
  } else {
    paire(e, CEL_LIGNE, 1);
  }
  for (;;) {
    if (s.deborde) return DEBORDE;
    char ch = *e.p;
    if (ch == 0) {
      if (e.accolades != 0) {
        message(0, M_ACCOLADES);
        return -1;
      }
      break;
    }
    if (est_blanc(ch)) {
      ++e.p;
      continue;
    }
    if (ch == MARQUE_LIGNE) {
      marque(e);
      continue;
    }
    if (e.accolades == 0 && ch != '{' && ch != '}') {
      saute_jeton(e);
      continue;
    }
    int r = jeton(e);
    if (r < 0) return r;
    if (r == 1) break;
  }
  // The end: a ";" if the last statement has none, then what a fall off the
  // end does: a function returns, other code just ends.
  long dernier = -1;
  for (mot* q = debut + 4; q < s.p; q += taille_item(q))
    if (q[0] != CEL_LIGNE) dernier = q - debut;
  if (dernier < 0 || !est_op(debut + dernier, ';')) {
    // Ahead of the line marks that trail: they belong to what follows.
    mot* q = dernier < 0 ? s.p : debut + dernier + taille_item(debut + dernier);
    if (mots_place(s, 2)) {
      std::memmove(q + 2, q, sizeof(mot) * (s.p - q));
      q[0] = CEL_OP;
      q[1] = ';';
      s.p += 2;
    }
  }
  mot retour = c.fonction ? entree_mot(0, A_RETOUR) : 0;
  if (retour) {
    met_paire(s, CEL_MOT, retour);
  } else {
    met_paire(s, CEL_FIN, 0);
  }
  if (!mots_place(s, 1)) return DEBORDE;
  *s.p++ = 0;
  if (s.deborde) return DEBORDE;
  debut[0] = static_cast<mot>(s.p - debut);
  debut[1] = CODE_BLOC;
  debut[2] = 0;
  debut[3] = c.nb_formels;
  c.derniers = debut;
  if (lang.liste_passes) {
    std::fputs("PASSE 2\n-------\n", stdout);
    lister_mots(debut);
  }
  return 0;
}

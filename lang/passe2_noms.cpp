// Pass 2, the names: keywords by the table, variables and calls by the
// symbol run, and the head of a function.
#include <cstdio>
#include <cstdlib>

#include "lang/passe2.h"

namespace p2 {
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

namespace {
constexpr int A_CHA_TEXTE = 13, B_CHAMP = 122, A_FONC_CHAMP = 101, A_NUMERO = 57, A_NOM_OBJ = 82;

// True when a keyword phrase goes on behind the text at p: an optional
// bracket (strings inside it skipped whole), then a keyword of the graphic
// list, the field's function keyword or an object's number or name clause.
bool suivi_de_phrase(const char* p) {
  p = sauter_blancs(p);
  if (*p == '(') {
    int prof = 0;
    for (; *p; ++p) {
      if (*p == '"') {
        for (++p; *p && *p != '"'; ++p) {
        }
        if (!*p) return false;
      } else if (*p == '(') {
        ++prof;
      } else if (*p == ')' && --prof == 0) {
        ++p;
        break;
      }
    }
    if (prof != 0) return false;
    p = sauter_blancs(p);
  }
  const char* f = p;
  while (!fin_nom_lang(static_cast<unsigned char>(*f))) ++f;
  if (f == p) return false;
  const MotCle* m = mot_lang(p, static_cast<int>(f - p));
  return m && (m->env != 0 || m->ordinal == A_FONC_CHAMP || m->ordinal == A_NUMERO || m->ordinal == A_NOM_OBJ);
}
}  // namespace

int mot_cle(Etat& e, MotCle* m) {
  // The text function and the field object share a spelling: a phrase
  // behind it makes it the field object's keyword.
  if (m->env == 0 && m->ordinal == A_CHA_TEXTE && suivi_de_phrase(e.p))
    if (MotCle* c = mot_entree(1, B_CHAMP)) m = c;
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
  // The label form "E<number>:" of pass 1.
  if (*f == ':' && f[1] != ':' && d[0] == 'E' && lg > 1) {
    const char* q = d + 1;
    while (q < f && *q >= '0' && *q <= '9') ++q;
    if (q == f) {
      paire(e, CEL_ETIQUETTE, static_cast<mot>(std::strtol(d + 1, nullptr, 10)));
      e.p = f + 1;
      e.operande = true;
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
}  // namespace p2

// Pass 2: the normalised text read with one cursor into a flat list of
// items, names classified through the keyword table and the symbol run.
#include <cstdio>

#include "lang/passe2.h"

namespace p2 {
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

void op(Etat& e, mot code) { paire(e, CEL_OP, code); }
}  // namespace p2

namespace {
using namespace p2;

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
    e.jeton = ";";
    e.jeton_lg = 1;
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

// One token; 1 when the closing brace of the body ends the scan.
int jeton(Etat& e) {
  const char* p = e.p;
  char ch = *p;
  char n1 = p[1];
  switch (ch) {
    case '{':
      ++e.p;
      e.operande = true;
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
      op(e, '}');
      e.operande = false;
      return 0;
    case '(':
    case '[':
      ++e.p;
      if (!pousse(e, ch)) return -1;
      if (ch == '(' && e.tete_attendue) e.tete_niveau = e.haut;
      e.tete_attendue = false;
      op(e, ch);
      e.operande = true;
      return 0;
    case ')':
    case ']':
      ++e.p;
      if (ferme(e, ch == ')' ? '(' : '[') < 0) return -1;
      op(e, ch);
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
      op(e, ';');
      e.operande = true;
      return 0;
    case ',':
      if (n1 == '=') {
        e.p += 2;
        op(e, OP_VIRG_AFF);
        e.operande = true;
        return 0;
      }
      if (e.operande) {
        std::printf("%.*s ,: ", static_cast<int>(e.jeton_lg > 40 ? 40 : e.jeton_lg), e.jeton);
        message(0, M_VIRGULE);
        return -1;
      }
      ++e.p;
      op(e, ',');
      e.operande = true;
      return 0;
    case '-':
      if (n1 == '=') {
        e.p += 2;
        op(e, OP_MOINS_AFF);
      } else if (n1 == '-') {
        e.p += 2;
        op(e, OP_DECR);
        return 0;  // the operand state is that of the operand it changes
      } else {
        ++e.p;
        if (e.operande) paire(e, CEL_REEL, ZERO_UNAIRE);  // unary minus is 0 - x
        op(e, '-');
      }
      e.operande = true;
      return 0;
    case '+':
      if (n1 == '=') {
        e.p += 2;
        op(e, OP_PLUS_AFF);
      } else if (n1 == '+') {
        e.p += 2;
        op(e, OP_INCR);
        return 0;
      } else {
        ++e.p;
        op(e, '+');
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
      op(e, code);
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
      op(e, code);
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
      op(e, code);
      e.operande = true;
      return 0;
    }
    case '~':
      ++e.p;
      op(e, OP_TILDE);
      e.operande = true;
      return 0;
    case '$': {
      ++e.p;
      MotCle* m = mot_entree(0, A_IMPRIME);
      if (m) paire(e, CEL_MOT, ptr_vers_mot(m));
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
}  // namespace

int passe2(Compil& c) {
  mot* debut = c.B;
  Mots s{debut, debut + 4, debut + c.moitie - MARGE};
  p2::Etat e{c, reinterpret_cast<const char*>(c.A), s};
  c.ligne = 1;
  if (c.fonction) {
    if (p2::lire_tete_fonction(e) < 0) return -1;
  } else {
    p2::paire(e, CEL_LIGNE, 1);
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
    const char* avant = e.p;
    int r = jeton(e);
    if (r < 0) return r;
    if (r == 1) break;
    e.jeton = avant;
    e.jeton_lg = e.p - avant;
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

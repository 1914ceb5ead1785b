// Pass 3, first sweep: statements take their shape. Every plain statement
// is enclosed in one pair of brackets; si, tantque, both pour forms and
// selon get their headers, and their bodies are framed by the begin and end
// items that link turns into jumps.
#include <cstdio>

#include "lang/interne.h"

const mot* fin_groupe(const mot* p, const mot* fin) {
  int prof = 0;
  for (; p < fin && p[0] != 0; p += taille_item(p)) {
    if (est_ouvrant(p)) {
      ++prof;
    } else if (est_fermant(p) && --prof <= 0) {
      return p + 2;
    }
  }
  return fin;
}

namespace {
struct Formes {
  Compil& c;
  const mot* fin;
  Mots& s;
  int niveau = 0;
};

inline void op(Formes& f, mot v) { met_paire(f.s, CEL_OP, v); }
inline void nops(Formes& f, int n) {
  for (int i = 0; i < n; ++i) op(f, OP_NOP);
}

bool est_controle(const mot* p) {
  return p[0] > 0 && (p[1] == BLOC_SI || p[1] == BLOC_TANTQUE || p[1] == BLOC_POUR || p[1] == BLOC_SELON);
}

int message_de(const mot* p) {
  switch (p[1]) {
    case BLOC_SI: return M_SI;
    case BLOC_TANTQUE: return M_TANTQUE;
    case BLOC_POUR: return M_POUR;
  }
  return M_SELON;
}

// Where a plain statement ends, at its own depth.
bool arret(const mot* p) {
  if (p[0] == 0 || est_controle(p)) return true;
  switch (p[0]) {
    case CEL_FIN: case CEL_ETIQUETTE: case CEL_ALLER: case CEL_SORTIR: case CEL_CAS: case CEL_DEFAUT:
      return true;
    case CEL_OP:
      return p[1] == ';' || p[1] == ')' || p[1] == ']' || p[1] == '}' || p[1] == OP_SINON ||
             p[1] == OP_FIN || p[1] == OP_DEBUT;
  }
  return false;
}

// Copies items without their line marks: inside a statement a mark would
// reach the evaluator. A control keyword there is misplaced.
int copie_sans_marques(Formes& f, const mot* d, const mot* e) {
  for (const mot* q = d; q < e; q += taille_item(q)) {
    if (q[0] == CEL_LIGNE) continue;
    if (est_controle(q)) {
      message(0, message_de(q));
      return -1;
    }
    met_mots(f.s, q, taille_item(q));
  }
  return 0;
}

bool vide(const mot* d, const mot* e) {
  for (const mot* q = d; q < e; q += taille_item(q))
    if (q[0] != CEL_LIGNE) return false;
  return true;
}

int groupe_entoure(Formes& f, const mot* d, const mot* e) {
  op(f, '(');
  if (int r_ = copie_sans_marques(f, d, e); r_ < 0) return r_;
  op(f, ')');
  return 0;
}

// A plain statement, enclosed; the line marks behind it stay outside.
int instruction(Formes& f, const mot*& p) {
  const mot* d = p;
  const mot* q = p;
  const mot* utile = p;
  while (q < f.fin && !arret(q)) {
    if (est_ouvrant(q)) {
      q = fin_groupe(q, f.fin);
      utile = q;
      continue;
    }
    if (q[0] != CEL_LIGNE) utile = q + taille_item(q);
    q += taille_item(q);
  }
  if (utile == d) return 0;
  p = utile;
  return groupe_entoure(f, d, utile);
}

int sequence(Formes& f, const mot*& p, bool accolade, bool selon);
int controle(Formes& f, const mot*& p);

int une_instruction(Formes& f, const mot*& p, int erreur) {
  // Line marks and labels stand ahead of the statement they belong to.
  while (p < f.fin && (p[0] == CEL_LIGNE || p[0] == CEL_ETIQUETTE)) {
    met_mots(f.s, p, 2);
    p += 2;
  }
  if (p >= f.fin || p[0] == 0 || p[0] == CEL_FIN || p[0] == CEL_CAS || p[0] == CEL_DEFAUT ||
      est_fermant(p) || est_op(p, OP_SINON) || est_op(p, OP_FIN)) {
    message(0, erreur);
    return -1;
  }
  if (est_controle(p)) return controle(f, p);
  if (est_op(p, ';')) {
    met_mots(f.s, p, 2);
    p += 2;
    return 0;
  }
  if (p[0] == CEL_ALLER || p[0] == CEL_SORTIR) {
    met_mots(f.s, p, 2);
    p += 2;
  } else {
    const mot* avant = p;
    if (int r_ = instruction(f, p); r_ < 0) return r_;
    if (p == avant) {
      message(0, erreur);
      return -1;
    }
  }
  if (p < f.fin && est_op(p, ';')) {
    met_mots(f.s, p, 2);
    p += 2;
  }
  return 0;
}

// A body: a brace group, or the next statement, framed by begin and end.
int corps(Formes& f, const mot*& p, int erreur) {
  op(f, OP_DEBUT);
  if (p < f.fin && est_op(p, '{')) {
    p += 2;
    if (int r_ = sequence(f, p, true, false); r_ < 0) return r_;
    if (!(p < f.fin && est_op(p, '}'))) {
      message(0, erreur);
      return -1;
    }
    p += 2;
  } else if (une_instruction(f, p, erreur) < 0) {
    return -1;
  }
  op(f, OP_FIN);
  return 0;
}

// The bracket that follows a control keyword, copied as it is.
int condition(Formes& f, const mot*& p, int erreur) {
  if (!(p < f.fin && est_op(p, '('))) {
    message(0, erreur);
    return -1;
  }
  const mot* g = fin_groupe(p, f.fin);
  if (int r_ = copie_sans_marques(f, p, g); r_ < 0) return r_;
  p = g;
  return 0;
}

// The parts of a pour head, split at its top-level separators.
int parties(const mot* d, const mot* e, mot sep, const mot** bornes, int max) {
  int n = 0;
  bornes[n++] = d;
  for (const mot* q = d; q < e;) {
    if (est_ouvrant(q)) {
      q = fin_groupe(q, e);
      continue;
    }
    if (est_op(q, sep)) {
      if (n > max) return -1;
      bornes[n++] = q + 2;
    }
    q += taille_item(q);
  }
  bornes[n] = e + 2;  // as if a separator stood at the end
  return n;
}

int forme_pour(Formes& f, const mot*& p) {
  p += p[0];
  if (!(p < f.fin && est_op(p, '('))) {
    message(0, M_POUR);
    return -1;
  }
  const mot* g = fin_groupe(p, f.fin);
  if (!est_op(g - 2, ')')) {
    message(0, M_POUR);
    return -1;
  }
  const mot* d = p + 2;
  const mot* e = g - 2;
  const mot* b[5];
  int n = parties(d, e, ';', b, 3);
  if (n == 1) {  // pour(i = start, limit [, step])
    n = parties(d, e, ',', b, 3);
    if (n < 2 || n > 3) {
      message(0, M_POUR);
      return -1;
    }
    for (int i = 0; i < n; ++i)
      if (vide(b[i], b[i + 1] - 2)) {
        message(0, M_POUR);
        return -1;
      }
    bool pas = n == 3;
    op(f, OP_BOUCLE);
    mot tete[12] = {12, BLOC_POUR_COMPTE, 0, 0, 0, 0, pas ? 1 : 0, pas ? 0 : reel_mot(1.0f), 0, 0, 0, 0};
    met_mots(f.s, tete, 12);
    nops(f, 3);
    for (int i = 0; i < n; ++i)
      if (int r_ = groupe_entoure(f, b[i], b[i + 1] - 2); r_ < 0) return r_;
  } else if (n == 3) {  // pour(init; condition; step)
    if (int r_ = groupe_entoure(f, b[0], b[1] - 2); r_ < 0) return r_;
    mot tete[12] = {12, BLOC_POUR_TROIS, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    met_mots(f.s, tete, 12);
    nops(f, 4);
    if (int r_ = groupe_entoure(f, b[1], b[2] - 2); r_ < 0) return r_;
    if (int r_ = groupe_entoure(f, b[2], b[3] - 2); r_ < 0) return r_;
  } else {
    message(0, M_POUR);
    return -1;
  }
  p = g;
  return corps(f, p, M_POUR);
}

// The cas and defaut items directly inside the braces of a selon.
int compte_cas(const mot* p, const mot* fin, bool* defaut) {
  int n = 0, prof = 0, defauts = 0;
  for (const mot* q = p; q < fin && q[0] != 0;) {
    if (est_op(q, '(') || est_op(q, '[')) {
      q = fin_groupe(q, fin);
      continue;
    }
    if (est_op(q, '{')) ++prof;
    if (est_op(q, '}') && --prof == 0) break;
    if (prof == 1 && (q[0] == CEL_CAS || q[0] == CEL_DEFAUT)) {
      ++n;
      if (q[0] == CEL_DEFAUT) ++defauts;
    }
    q += taille_item(q);
  }
  *defaut = defauts > 0;
  return defauts > 1 ? -1 : n;
}

int forme_selon(Formes& f, const mot*& p) {
  p += p[0];
  const mot* sel = p;
  if (!(p < f.fin && est_op(p, '('))) {
    message(0, M_SELON);
    return -1;
  }
  const mot* g = fin_groupe(p, f.fin);
  if (!(g < f.fin && est_op(g, '{'))) {
    message(0, M_SELON);
    return -1;
  }
  bool defaut;
  int n = compte_cas(g, f.fin, &defaut);
  if (n < 0) {
    message(0, M_CAS);
    return -1;
  }
  if (!defaut) ++n;
  long lg = 3 + 2L * n;
  if (mots_place(f.s, lg)) {
    std::memset(f.s.p, 0, sizeof(mot) * lg);
    f.s.p[0] = static_cast<mot>(lg);
    f.s.p[1] = BLOC_SELON;
    f.s.p[2] = n;
    f.s.p += lg;
  }
  if (int r_ = condition(f, sel, M_SELON); r_ < 0) return r_;
  p = g + 2;
  op(f, '{');
  if (int r_ = sequence(f, p, true, true); r_ < 0) return r_;
  if (!(p < f.fin && est_op(p, '}'))) {
    message(0, M_SELON);
    return -1;
  }
  op(f, '}');
  p += 2;
  return 0;
}

int controle(Formes& f, const mot*& p) {
  if (++f.niveau > IMBRICATION_MAX) {
    message(0, M_LONG);
    return -1;
  }
  int r = 0;
  switch (p[1]) {
    case BLOC_SI: {
      p += p[0];
      mot tete[5] = {5, BLOC_SI, 0, 0, 0};
      met_mots(f.s, tete, 5);
      nops(f, 4);
      if (int r_ = condition(f, p, M_SI); r_ < 0) return r_;
      if (int r_ = corps(f, p, M_SI); r_ < 0) return r_;
      const mot* q = p;
      while (q < f.fin && (q[0] == CEL_LIGNE || est_op(q, ';'))) q += 2;
      if (q < f.fin && est_op(q, OP_SINON)) {
        met_mots(f.s, p, q - p);
        op(f, OP_SINON);
        p = q + 2;
        r = corps(f, p, M_SI);
      }
      break;
    }
    case BLOC_TANTQUE: {
      p += p[0];
      mot tete[5] = {5, BLOC_TANTQUE, 0, 0, 0};
      met_mots(f.s, tete, 5);
      nops(f, 2);
      r = condition(f, p, M_TANTQUE) < 0 ? -1 : corps(f, p, M_TANTQUE);
      break;
    }
    case BLOC_POUR: r = forme_pour(f, p); break;
    default: r = forme_selon(f, p);
  }
  --f.niveau;
  return r;
}

int sequence(Formes& f, const mot*& p, bool accolade, bool selon) {
  if (++f.niveau > IMBRICATION_MAX) {
    message(0, M_LONG);
    return -1;
  }
  for (;;) {
    if (f.s.deborde) return DEBORDE;
    if (p >= f.fin || p[0] == 0) break;
    if (est_op(p, '}')) {
      if (accolade) break;
      message(0, M_ACCOLADES);
      return -1;
    }
    if (p[0] == CEL_LIGNE) f.c.ligne = p[1];
    int r = 0;
    switch (p[0]) {
      case CEL_CAS:
      case CEL_DEFAUT:
        if (!selon) {
          message(0, M_CAS);
          return -1;
        }
        [[fallthrough]];
      case CEL_LIGNE: case CEL_ETIQUETTE: case CEL_ALLER: case CEL_SORTIR: case CEL_FIN:
        met_mots(f.s, p, 2);
        p += 2;
        continue;
    }
    if (p[0] > 0 && p[1] == BLOC_NOM_FONCTION) {
      met_mots(f.s, p, p[0]);
      p += p[0];
      continue;
    }
    if (p[0] == CEL_OP) {
      switch (p[1]) {
        case ';': case OP_NOP: case OP_DEBUT: case OP_FIN:
          met_mots(f.s, p, 2);
          p += 2;
          continue;
        case '{':
          op(f, '{');
          p += 2;
          if (int r_ = sequence(f, p, true, false); r_ < 0) return r_;
          if (p < f.fin && est_op(p, '}')) {
            op(f, '}');
            p += 2;
          }
          continue;
        case OP_SINON:
          message(0, M_SI);
          return -1;
        case ')':
        case ']':
          message(0, M_FERMANT);
          return -1;
      }
    }
    if (est_controle(p)) {
      r = controle(f, p);
    } else {
      const mot* avant = p;
      r = instruction(f, p);
      if (r >= 0 && p == avant) {  // nothing a statement can hold: pass it on
        met_mots(f.s, p, taille_item(p));
        p += taille_item(p);
      }
    }
    if (r < 0) return r;
  }
  --f.niveau;
  return 0;
}

// The sweeps that copy a code run from one half to the other: the header,
// the items, the closing 0.
int balaye(Compil& c, mot* de, mot* vers, int (*balayage)(Compil&, const mot*, const mot*, Mots&)) {
  const mot* fin = de + de[0] - 1;
  Mots s{vers, vers + 4, vers + c.moitie - MARGE};
  int r = balayage(c, de + 4, fin, s);
  // A failure met once the output was full may stem from the overflow:
  // the compilation starts again with more room and decides then.
  if (r < 0) return s.deborde ? DEBORDE : r;
  if (!mots_place(s, 1)) return DEBORDE;
  *s.p++ = 0;
  if (s.deborde) return DEBORDE;
  vers[0] = static_cast<mot>(s.p - vers);
  vers[1] = de[1];
  vers[2] = de[2];
  vers[3] = de[3];
  c.derniers = vers;
  return 0;
}
}  // namespace

int balayage_formes(Compil& c, const mot* in, const mot* fin, Mots& s) {
  Formes f{c, fin, s};
  const mot* p = in;
  int r = sequence(f, p, false, false);
  if (r < 0) return r;
  return s.deborde ? DEBORDE : 0;
}

int passe3(Compil& c) {
  if (int r = balaye(c, c.B, c.A, balayage_formes); r < 0) return r;
  if (int r = balaye(c, c.A, c.B, balayage_mots); r < 0) return r;
  if (int r = balaye(c, c.B, c.A, balayage_operateurs); r < 0) return r;
  c.code_lg = c.A[0];
  if (lang.liste_passes) {
    std::fputs("PASSE 3\n-------\n", stdout);
    lister_mots(c.A);
  }
  return 0;
}

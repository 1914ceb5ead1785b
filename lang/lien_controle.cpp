// Link, control flow: every header gets the offsets of its groups and body,
// the begin and end items of the loops become jumps, sortir jumps out, and
// aller jumps behind its label. Offsets are in words, relative to the item
// that holds them.
#include <cstdio>
#include <utility>

#include "lang/interne.h"

namespace {
enum Sorte { SI, TANTQUE, POUR, SELON, BLOC };

struct Niveau {
  Sorte sorte;
};

struct Lien {
  mot* code = nullptr;
  mot* fin = nullptr;
  int ligne = 0;
  std::vector<Niveau> cadres;
  std::vector<std::pair<mot*, int>> sortirs;  // item, the frame it leaves
  int erreur = 0;
};

inline void saut(mot* p, long distance) {
  p[0] = CEL_SAUT;
  p[1] = static_cast<mot>(distance);
}

int echec(Lien& l, int m) {
  if (!l.erreur) {
    l.erreur = m;
    message(0, m);
  }
  return -1;
}

const mot* saute_nops(const mot* p) {
  while (est_op(p, OP_NOP)) p += 2;
  return p;
}

int suite(Lien& l, mot*& p, std::vector<mot*>* cas);

// The frame of a body closes at its end item: the sortirs that leave it
// jump behind that item, or onto it for a selon.
void ferme(Lien& l, mot* fermeture) {
  int k = static_cast<int>(l.cadres.size()) - 1;
  Sorte s = l.cadres[k].sorte;
  for (auto& [item, cadre] : l.sortirs)
    if (cadre == k && item) {
      mot* cible = s == SELON ? fermeture : fermeture + 2;
      saut(item, cible - item);
      item = nullptr;
    }
  l.cadres.pop_back();
}

// A body framed by begin and end items; gives both.
int corps(Lien& l, mot*& p, Sorte s, mot** debut, mot** fin, int m) {
  if (!(p < l.fin && est_op(p, OP_DEBUT))) return echec(l, m);
  *debut = p;
  p += 2;
  l.cadres.push_back({s});
  if (suite(l, p, nullptr) < 0) return -1;
  if (!(p < l.fin && est_op(p, OP_FIN))) return echec(l, M_ACCOLADES);
  *fin = p;
  ferme(l, p);
  p += 2;
  return 0;
}

mot* groupe(Lien& l, mot*& p, int m) {
  p = const_cast<mot*>(saute_nops(p));
  if (!(p < l.fin && est_op(p, '('))) {
    echec(l, m);
    return nullptr;
  }
  mot* g = p;
  p = const_cast<mot*>(fin_groupe(p, l.fin));
  return g;
}

int si(Lien& l, mot*& p) {
  mot* h = p;
  p += h[0];
  mot *d, *f;
  mot* cond = groupe(l, p, M_SI);
  if (!cond || corps(l, p, SI, &d, &f, M_SI) < 0) return -1;
  h[1] = BLOC_TEST;
  h[2] = static_cast<mot>(cond - h);
  h[3] = static_cast<mot>(d + 2 - h);
  h[4] = static_cast<mot>(p - h);
  mot* q = p;
  while (q < l.fin && (q[0] == CEL_LIGNE || est_op(q, ';'))) q += 2;
  if (q < l.fin && est_op(q, OP_SINON)) {
    h[4] = static_cast<mot>(q + 2 - h);
    p = q + 2;
    mot *d2, *f2;
    if (corps(l, p, SI, &d2, &f2, M_SI) < 0) return -1;
    bool vide = true;
    for (mot* r = d2 + 2; r < f2; r += taille_item(r))
      if (r[0] != CEL_LIGNE && !est_op(r, ';') && !est_op(r, OP_NOP)) vide = false;
    if (vide) {
      q[1] = OP_NOP;
    } else {
      saut(q, p - q);
    }
  }
  return 0;
}

int tantque(Lien& l, mot*& p) {
  mot* h = p;
  p += h[0];
  mot *d, *f;
  mot* cond = groupe(l, p, M_TANTQUE);
  if (!cond || corps(l, p, TANTQUE, &d, &f, M_TANTQUE) < 0) return -1;
  h[1] = BLOC_TEST;
  h[2] = static_cast<mot>(cond - h);
  h[3] = static_cast<mot>(d + 2 - h);
  h[4] = static_cast<mot>(f + 2 - h);
  saut(f, h - f);
  return 0;
}

// (-1001, -1026), then the header of the counting pour.
int pour_compte(Lien& l, mot*& p) {
  mot* h = p + 2;
  if (!(h < l.fin && h[0] == 12 && h[1] == BLOC_POUR_COMPTE)) return echec(l, M_POUR);
  p = h + h[0];
  mot* depart = groupe(l, p, M_POUR);
  mot* limite = depart ? groupe(l, p, M_POUR) : nullptr;
  mot* pas = limite && h[6] ? groupe(l, p, M_POUR) : nullptr;
  if (!limite || (h[6] && !pas)) return -1;
  mot *d, *f;
  if (corps(l, p, POUR, &d, &f, M_POUR) < 0) return -1;
  h[1] = BLOC_POUR_COMPTE_LIE;
  h[2] = static_cast<mot>(depart - h);
  h[3] = 0;
  h[4] = static_cast<mot>(limite - h);
  h[5] = 0;
  h[6] = pas ? static_cast<mot>(pas - h) : 0;
  h[7] = pas ? 0 : reel_mot(1.0f);
  h[8] = static_cast<mot>(d + 2 - h);
  h[9] = static_cast<mot>(f + 2 - h);
  saut(d, h - d);
  saut(f, h - f);
  return 0;
}

int pour_trois(Lien& l, mot*& p) {
  mot* h = p;
  p += h[0];
  mot* cond = groupe(l, p, M_POUR);
  mot* pas = cond ? groupe(l, p, M_POUR) : nullptr;
  if (!pas) return -1;
  mot *d, *f;
  if (corps(l, p, POUR, &d, &f, M_POUR) < 0) return -1;
  h[1] = BLOC_POUR_TROIS_LIE;
  h[2] = static_cast<mot>(cond - h);
  h[3] = static_cast<mot>(d + 2 - h);
  h[4] = static_cast<mot>(f + 2 - h);
  saut(d, h - d);
  saut(f, pas - f);
  return 0;
}

// The table of a selon: one pair per cas or defaut of its first level, the
// defaut last; without one, the last pair leads to the end of the body.
int selon(Lien& l, mot*& p) {
  mot* h = p;
  mot n = h[2];
  p += h[0];
  if (!groupe(l, p, M_SELON)) return -1;
  if (!(p < l.fin && est_op(p, '{'))) return echec(l, M_SELON);
  mot* debut = p;
  p += 2;
  std::vector<mot*> cas;
  l.cadres.push_back({SELON});
  if (suite(l, p, &cas) < 0) return -1;
  if (!(p < l.fin && est_op(p, '}'))) return echec(l, M_ACCOLADES);
  mot* fin = p;
  ferme(l, fin);
  p += 2;
  mot* defaut = nullptr;
  int k = 0;
  for (mot* c : cas) {
    if (c[0] == CEL_DEFAUT) {
      defaut = c;
      continue;
    }
    if (k >= n - 1) return echec(l, M_SELON);
    mot* e = h + 3 + 2 * k++;
    mot* suivant = c + 2;
    if (est_op(suivant, '(')) {
      const mot* g = fin_groupe(suivant, l.fin);
      e[0] = -static_cast<mot>(g - h);
      e[1] = static_cast<mot>(suivant - h);
    } else {
      e[0] = static_cast<mot>(c - h);
      e[1] = c[1];
    }
  }
  if (k != n - 1) return echec(l, M_SELON);
  mot* dernier = h + 3 + 2 * k;
  dernier[0] = static_cast<mot>((defaut ? defaut : fin) - h);
  dernier[1] = 0;
  h[1] = BLOC_SELON_LIE;
  debut[1] = OP_DEBUT;
  fin[1] = OP_FIN;
  return 0;
}

void sortir(Lien& l, mot* p) {
  int k = static_cast<int>(l.cadres.size()) - 1;
  while (k >= 0 && l.cadres[k].sorte == BLOC) --k;
  if (k < 0) {
    echec(l, M_SORTIR);
    return;
  }
  switch (l.cadres[k].sorte) {
    case POUR:
    case SELON: l.sortirs.push_back({p, k}); return;
    case SI:
      // Behind the second closing brace: the si's body and the one around it.
      if (k == 0) {
        echec(l, M_SORTIR);
        return;
      }
      l.sortirs.push_back({p, k - 1});
      return;
    default: return;  // straight in a tantque: left as it is
  }
}

int suite(Lien& l, mot*& p, std::vector<mot*>* cas) {
  if (l.cadres.size() > static_cast<std::size_t>(IMBRICATION_MAX) * 2) return echec(l, M_LONG);
  while (p < l.fin && p[0] != 0 && !l.erreur) {
    if (est_op(p, OP_FIN) || est_op(p, '}')) return 0;
    int r = 0;
    if (p[0] == CEL_LIGNE) {
      l.ligne = p[1];
      p += 2;
    } else if (est_op(p, '(')) {
      p = const_cast<mot*>(fin_groupe(p, l.fin));
    } else if (est_op(p, OP_BOUCLE)) {
      r = pour_compte(l, p);
    } else if (est_op(p, '{')) {
      // A brace group among statements only groups them: its braces become
      // the begin and end items that the walk steps over.
      mot* ouvre = p;
      p += 2;
      l.cadres.push_back({BLOC});
      if (suite(l, p, nullptr) < 0) return -1;
      if (!(p < l.fin && est_op(p, '}'))) return echec(l, M_ACCOLADES);
      ferme(l, p);
      ouvre[1] = OP_DEBUT;
      p[1] = OP_FIN;
      p += 2;
    } else if (p[0] == CEL_SORTIR) {
      sortir(l, p);
      p += 2;
    } else if (p[0] == CEL_CAS || p[0] == CEL_DEFAUT) {
      if (cas) cas->push_back(p);
      p += 2;
    } else if (p[0] > 0 && p[1] == BLOC_SI) {
      r = si(l, p);
    } else if (p[0] > 0 && p[1] == BLOC_TANTQUE) {
      r = tantque(l, p);
    } else if (p[0] > 0 && p[1] == BLOC_POUR_TROIS) {
      r = pour_trois(l, p);
    } else if (p[0] > 0 && p[1] == BLOC_SELON) {
      r = selon(l, p);
    } else {
      p += taille_item(p);
    }
    if (r < 0) return -1;
  }
  return l.erreur ? -1 : 0;
}

// A block whose control items are linked already has one of these.
bool deja_lie(const mot* code) {
  const mot* fin = code + code[0];
  for (const mot* p = code + 4; p < fin && p[0] != 0; p += taille_item(p)) {
    if (p[0] == CEL_SAUT) return true;
    if (p[0] > 0 && (p[1] == BLOC_TEST || p[1] == BLOC_SELON_LIE || p[1] == BLOC_POUR_COMPTE_LIE ||
                     p[1] == BLOC_POUR_TROIS_LIE))
      return true;
  }
  return false;
}

int etiquettes(Lien& l) {
  std::vector<std::pair<mot, mot*>> definies;
  for (mot* p = l.code + 4; p < l.fin && p[0] != 0; p += taille_item(p))
    if (p[0] == CEL_ETIQUETTE) definies.push_back({p[1], p});
  for (mot* p = l.code + 4; p < l.fin && p[0] != 0; p += taille_item(p)) {
    if (p[0] == CEL_LIGNE) l.ligne = p[1];
    if (p[0] != CEL_ALLER) continue;
    mot* cible = nullptr;
    for (auto& [n, q] : definies)
      if (n == p[1]) {
        cible = q;
        break;
      }
    if (!cible) return echec(l, M_ETIQUETTE);
    saut(p, cible + 2 - p);
  }
  return 0;
}
}  // namespace

int lier_controle(Objet* o, mot* code) {
  if (deja_lie(code)) return 0;
  Lien l;
  l.code = code;
  l.fin = code + code[0] - 1;
  mot* p = code + 4;
  int r = suite(l, p, nullptr);
  if (r == 0 && p < l.fin && p[0] != 0) r = echec(l, M_ACCOLADES);
  if (r == 0) r = etiquettes(l);
  if (r < 0) {
    echec_contexte(o, l.ligne);
    return -2;
  }
  return 0;
}

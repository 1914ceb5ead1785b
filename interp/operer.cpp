// Binary and unary operators on the values of the stack.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include "interp/interne.h"
#include "interp/noyaux.h"

// Compound assignment codes to the operator they apply; 0 for the others.
mot operateur_compose(mot op) {
  switch (op) {
    case OP_PLUS_EGAL: return '+';
    case OP_MOINS_EGAL: return '-';
    case OP_FOIS_EGAL: return '*';
    case OP_DIVISE_EGAL: return '/';
    case OP_MODULO_EGAL: return '%';
    case OP_PUISSANCE_EGAL: return '^';
    case OP_GAUCHE_EGAL: return OP_GAUCHE;
    case OP_DROITE_EGAL: return OP_DROITE;
    case OP_ET_BITS_EGAL: return '&';
    case OP_OU_BITS_EGAL: return '|';
    case OP_VIRGULE_EGAL: return ',';
  }
  return 0;
}

namespace {

float tolerance() {
  static float t = -1;
  if (t < 0) {
    int n = 0;
    reel* v = mot_entree(0, A_OPT) ? mot_defaut(0, A_OPT, &n) : nullptr;
    t = v && n > 0 ? v[0] : 0.0f;
  }
  return t;
}


void imprime_operateur(mot op) {
  switch (op) {
    case OP_EGAL: std::fputs("==", stdout); break;
    case OP_DIFFERENT: std::fputs("!=", stdout); break;
    case OP_INF_EGAL: std::fputs("<=", stdout); break;
    case OP_SUP_EGAL: std::fputs(">=", stdout); break;
    case OP_ET: std::fputs("&&", stdout); break;
    case OP_OU: std::fputs("||", stdout); break;
    case OP_GAUCHE: std::fputs("<<", stdout); break;
    case OP_DROITE: std::fputs(">>", stdout); break;
    case OP_TILDE: std::fputs("~", stdout); break;
    default:
      if (op > 0 && op < 128) std::putchar(static_cast<char>(op));
      else std::printf("%d", op);
  }
  std::fputs(": ", stdout);
}

int refuse(mot op) {
  imprime_operateur(op);
  message(0, M_OPERATEUR);
  return ECHEC;
}

// Both operands printed, then the operator that has no meaning on them.
int refuse_operandes(mot* g, mot* d, mot op) {
  if (g) imprimer(g, nullptr);
  if (d) imprimer(d, nullptr);
  return refuse(op);
}

// A phrase runs, a view is materialised, before an operator reads them:
// both on a copy at the top, so the items behind stay where they are.
mot* lisible(mot* v, mot** haut) {
  if (!v || v[0] <= 0) return v;
  if (v[1] != BLOC_PHRASE && v[1] != VAL_VUE && v[1] != VAL_VUE3) return v;
  mot* c = *haut;
  int r;
  if (v[1] == BLOC_PHRASE) {
    if (!place(c, v[0])) return nullptr;
    std::memcpy(c, v, static_cast<std::size_t>(v[0]) * sizeof(mot));
    r = executer_phrase(c);
    if (r >= 0 && c[0] < 0) r = copie_valeur(c, piles.eva_limite);
  } else {
    r = materialiser(c, v, piles.eva_limite);
  }
  if (r < 0) {
    interp.code = r;
    return nullptr;
  }
  *haut = c + taille_item(c);
  return c;
}

// Does a source of ns floats at s, read element k at step k, survive the
// writing of n results from dest + 4 on?
inline bool source_sure(const mot* s, long ns, const mot* dest, long n) {
  if (ns <= 1 || !sur_pile(s)) return true;
  if (s >= dest + 4 && ns == n) return true;
  return s >= dest + 4 + n || s + ns <= dest;
}

int divise_garde(const Valeur& b, bool modulo) {
  const reel* y = reels(b.donnees);
  for (long k = 0; k < b.n; ++k)
    if ((y[k] > -0.0001f && y[k] < 0.0001f) || (modulo && std::trunc(y[k]) == 0)) {
      message(0, M_DIVISION);
      return ECHEC;
    }
  return 0;
}

// The float operators; r has room for max(na, nb) floats.
int calcule(mot op, reel* r, const Valeur& a, const Valeur& b) {
  const reel* x = reels(a.donnees);
  const reel* y = reels(b.donnees);
  long na = a.n, nb = b.n;
  using noyau::applique;
  switch (op) {
    case '+': applique(r, x, na, y, nb, [](float u, float v) { return u + v; }); break;
    case '-': applique(r, x, na, y, nb, [](float u, float v) { return u - v; }); break;
    case '*': applique(r, x, na, y, nb, [](float u, float v) { return u * v; }); break;
    case '/':
      if (divise_garde(b, false) < 0) return ECHEC;
      applique(r, x, na, y, nb, [](float u, float v) { return u / v; });
      break;
    case '%':
      if (divise_garde(b, true) < 0) return ECHEC;
      // The remainder of the truncated values, exact for every float
      // (no integer type holds them all); + 0 makes a -0 remainder plain 0.
      applique(r, x, na, y, nb, [](float u, float v) { return std::fmod(std::trunc(u), std::trunc(v)) + 0.0f; });
      break;
    case '&':
      applique(r, x, na, y, nb, [](float u, float v) { return static_cast<float>(entier_sature(u) & entier_sature(v)); });
      break;
    case '|':
      applique(r, x, na, y, nb, [](float u, float v) { return static_cast<float>(entier_sature(u) | entier_sature(v)); });
      break;
    case OP_GAUCHE:
      applique(r, x, na, y, nb,
               [](float u, float v) { return static_cast<float>(entier_sature(u) << (entier_sature(v) & 31)); });
      break;
    case OP_DROITE:
      applique(r, x, na, y, nb,
               [](float u, float v) { return static_cast<float>(entier_sature(u) >> (entier_sature(v) & 31)); });
      break;
    case '<': applique(r, x, na, y, nb, [](float u, float v) { return u < v ? 1.0f : 0.0f; }); break;
    case '>': applique(r, x, na, y, nb, [](float u, float v) { return u > v ? 1.0f : 0.0f; }); break;
    case OP_INF_EGAL: applique(r, x, na, y, nb, [](float u, float v) { return u <= v ? 1.0f : 0.0f; }); break;
    case OP_SUP_EGAL: applique(r, x, na, y, nb, [](float u, float v) { return u >= v ? 1.0f : 0.0f; }); break;
    case OP_EGAL: applique(r, x, na, y, nb, [](float u, float v) { return u == v ? 1.0f : 0.0f; }); break;
    case OP_DIFFERENT: applique(r, x, na, y, nb, [](float u, float v) { return u != v ? 1.0f : 0.0f; }); break;
    case OP_TILDE: {
      const float t = tolerance();
      applique(r, x, na, y, nb, [t](float u, float v) { return std::fabs(u - v) <= t ? 1.0f : 0.0f; });
      break;
    }
    case '^':
      if (na == nb || na == 1 || nb == 1)
        applique(r, x, na, y, nb, noyau::puissance);
      else
        noyau::puissance_cyclique(r, x, na, y, nb);
      break;
    case OP_ET: noyau::logique<true>(r, x, na, y, nb); break;
    case OP_OU: noyau::logique<false>(r, x, na, y, nb); break;
    default:
      return refuse(op);
  }
  return 0;
}

// Float operator into dest, directly when the sources survive it, otherwise
// at the top and then moved down.
// The assigned variable's block when the result may go there (see Vers):
// an operator that reads each element at its own index only (&& and ||
// move their right cursor apart), and a source that is that block read
// whole or lies outside it.
mot* bloc_vers(const mot* dest, mot op, const Valeur& a, const Valeur& b, long n) {
  mot* c = vers.bloc;
  const Objet* o = vers.variable;
  if (dest != vers.base || op == OP_ET || op == OP_OU || o->donnees != c || !possede(o) || c[0] != 4 + n ||
      c[1] != BLOC_REEL || !place(dest, 2))
    return nullptr;
  auto sure = [c, n](const mot* s, long ns) { return (s == c + 4 && ns == n) || s + ns <= c || s >= c + 4 + n; };
  return sure(a.donnees, a.n) && sure(b.donnees, b.n) ? c : nullptr;
}

int flottants(mot* dest, mot op, const Valeur& a, const Valeur& b, mot* haut, bool vers_permis = false) {
  long n = a.n > b.n ? a.n : b.n;
  if (a.n == 0 || b.n == 0) {
    // An empty side computes nothing: the other side's length stays; on the
    // left the values are what the left operand held, on the right they are
    // undefined and given as zeros.
    mot* r = haut;
    if (!place(r, 4 + n)) return PILE_PLEINE;
    if (b.n == 0 && a.n > 0)
      std::memmove(r + 4, a.donnees, static_cast<std::size_t>(n) * sizeof(mot));
    else
      std::memset(r + 4, 0, static_cast<std::size_t>(n) * sizeof(mot));
    ecrit_scalaire(r, 0);
    r[0] = static_cast<mot>(4 + n);
    r[2] = static_cast<mot>(n);
    std::memmove(dest, r, static_cast<std::size_t>(4 + n) * sizeof(mot));
    piles.eva_haut = dest + 4 + n;
    return 0;
  }
  // Power on unlike lengths leaves part of its result unwritten: it is
  // given as zeros, so it is computed apart from its sources.
  bool trous = op == '^' && a.n != b.n && a.n > 1 && b.n > 1;
  if (mot* c = !trous && vers_permis ? bloc_vers(dest, op, a, b, n) : nullptr) {
    int e = calcule(op, reels(c + 4), a, b);
    if (e < 0) return e;
    c[2] = static_cast<mot>(n);
    c[3] = 1;
    dest[0] = IT_GLOBAL;
    dest[1] = ptr_vers_mot(vers.variable);
    piles.eva_haut = dest + 2;
    vers.fait = true;
    return 0;
  }
  bool direct = !trous && source_sure(a.donnees, a.n, dest, n) && source_sure(b.donnees, b.n, dest, n);
  mot* r = direct ? dest : haut;
  if (!place(r, 4 + n)) return PILE_PLEINE;
  if (trous) std::memset(r + 4, 0, static_cast<std::size_t>(n) * sizeof(mot));
  int e = calcule(op, reels(r + 4), a, b);
  if (e < 0) return e;
  r[0] = static_cast<mot>(4 + n);
  r[1] = BLOC_REEL;
  r[2] = static_cast<mot>(n);
  r[3] = 1;
  if (r != dest) std::memmove(dest, r, static_cast<std::size_t>(4 + n) * sizeof(mot));
  piles.eva_haut = dest + 4 + n;
  return 0;
}

// ---- concatenation -----------------------------------------------------------
struct Liste {
  mot* l;
  mot* dernier = nullptr;
};

int ajoute_element(Liste& L, const mot* e) {
  mot* fin = L.l + L.l[0];
  mot* d = L.dernier;
  if (d && d[1] == e[1] && e[1] == BLOC_REEL) {
    mot n = e[0] - 4;
    if (!place(fin, n)) return PILE_PLEINE;
    // The element may have been made right there, at the list's end.
    std::memmove(fin, e + 4, static_cast<std::size_t>(n) * sizeof(mot));
    d[0] += n;
    d[2] += n;
    L.l[0] += n;
    return 0;
  }
  if (d && d[1] == e[1] && e[1] == BLOC_CHAINE) {
    std::size_t l1 = std::strlen(bloc_texte(d)), l2 = std::strlen(reinterpret_cast<const char*>(e + 4));
    mot nouveau = long_chaine(l1 + l2);
    if (!place(d, nouveau)) return PILE_PLEINE;
    std::memmove(bloc_texte(d) + l1, e + 4, l2 + 1);
    L.l[0] += nouveau - d[0];
    d[0] = nouveau;
    return 0;
  }
  mot n = taille_item(e);
  if (!place(fin, n)) return PILE_PLEINE;
  std::memmove(fin, e, static_cast<std::size_t>(n) * sizeof(mot));
  L.dernier = fin;
  L.l[0] += n;
  ++L.l[2];
  return 0;
}

// One operand of a concatenation: a list gives its elements one by one.
int ajoute_operande(Liste& L, const Valeur& v) {
  if (v.type == BLOC_LISTE) {
    mot* b = v.donnees;
    mot* e = b + 4;
    for (mot k = 0; k < b[2]; ++k) {
      int r = ajoute_element(L, e);
      if (r < 0) return r;
      e += taille_item(e);
    }
    return 0;
  }
  mot* fin = L.l + L.l[0];
  if (v.type == BLOC_REEL) {
    if (!place(fin, 4 + v.n)) return PILE_PLEINE;
    mot tete[4] = {static_cast<mot>(4 + v.n), BLOC_REEL, static_cast<mot>(v.n), 1};
    std::memcpy(fin + 4, v.donnees, static_cast<std::size_t>(v.n) * sizeof(mot));
    std::memcpy(fin, tete, sizeof tete);
    return ajoute_element(L, fin);
  }
  if (v.type == BLOC_CHAINE) {
    mot n = long_chaine(static_cast<std::size_t>(v.n));
    if (!place(fin, n)) return PILE_PLEINE;
    std::memmove(fin + 4, v.donnees, static_cast<std::size_t>(v.n) + 1);
    fin[0] = n;
    fin[1] = BLOC_CHAINE;
    fin[2] = 1;
    fin[3] = 1;
    return ajoute_element(L, fin);
  }
  return 0;
}

// The value of a side copied as a plain block at r.
int pose_valeur(mot* r, mot* v, const Valeur& d) {
  if (d.variable) return pose(r, d.variable->donnees ? d.variable->donnees : v);
  return pose(r, v);
}

int concatene(mot* dest, mot* g, const Valeur& a, mot* d, const Valeur& b, mot* haut) {
  if (b.type == BLOC_NIL || a.type == BLOC_NIL) {
    mot* src = b.type == BLOC_NIL ? g : d;
    const Valeur& v = b.type == BLOC_NIL ? a : b;
    if (v.type == BLOC_NIL) {
      if (!place(dest, 4)) return PILE_PLEINE;
      ecrit_nil(dest);
      piles.eva_haut = dest + 4;
      return 0;
    }
    int r = pose_valeur(haut, src, v);
    if (r < 0) return r;
    r = evaluer_valeur(haut, piles.eva_limite);
    if (r < 0) return r;
    std::memmove(dest, haut, static_cast<std::size_t>(taille_item(haut)) * sizeof(mot));
    piles.eva_haut = dest + taille_item(dest);
    return 0;
  }
  mot* r = haut;
  if (a.type == BLOC_REEL && b.type == BLOC_REEL) {
    long n = a.n + b.n;
    if (!place(r, 4 + n)) return PILE_PLEINE;
    std::memmove(r + 4, a.donnees, static_cast<std::size_t>(a.n) * sizeof(mot));
    std::memmove(r + 4 + a.n, b.donnees, static_cast<std::size_t>(b.n) * sizeof(mot));
    r[0] = static_cast<mot>(4 + n);
    r[1] = BLOC_REEL;
    r[2] = static_cast<mot>(n);
    r[3] = 1;
  } else if (a.type == BLOC_CHAINE && b.type == BLOC_CHAINE) {
    mot n = long_chaine(static_cast<std::size_t>(a.n + b.n));
    if (!place(r, n)) return PILE_PLEINE;
    char* t = bloc_texte(r);
    std::memmove(t, a.donnees, static_cast<std::size_t>(a.n));
    std::memmove(t + a.n, b.donnees, static_cast<std::size_t>(b.n) + 1);
    r[0] = n;
    r[1] = BLOC_CHAINE;
    r[2] = 1;
    r[3] = 1;
  } else {
    if (!place(r, 4)) return PILE_PLEINE;
    r[0] = 4;
    r[1] = BLOC_LISTE;
    r[2] = 0;
    r[3] = 0;
    Liste L{r};
    // The elements go behind the header while the operands stay readable:
    // the operands lie below r or in the heap.
    int e = ajoute_operande(L, a);
    if (e == 0) e = ajoute_operande(L, b);
    if (e < 0) return e;
  }
  std::memmove(dest, r, static_cast<std::size_t>(r[0]) * sizeof(mot));
  piles.eva_haut = dest + dest[0];
  return 0;
}

// Operators on values that are not both floats give one float.
int autres_types(mot* dest, mot op, mot* g, const Valeur& a, mot* d, const Valeur& b) {
  float r;
  bool chaines = a.type == BLOC_CHAINE && b.type == BLOC_CHAINE;
  bool egales = chaines && a.n == b.n && std::memcmp(a.donnees, b.donnees, static_cast<std::size_t>(a.n)) == 0;
  bool nils = a.type == BLOC_NIL && b.type == BLOC_NIL;
  if (op == OP_EGAL) {
    r = egales || nils ? 1.0f : 0.0f;
  } else if (op == OP_DIFFERENT) {
    r = chaines ? (egales ? 0.0f : 1.0f) : (nils ? 0.0f : 1.0f);
  } else {
    return refuse_operandes(g, d, op);
  }
  if (!place(dest, 5)) return PILE_PLEINE;
  ecrit_scalaire(dest, r);
  piles.eva_haut = dest + 5;
  return 0;
}

// A variable read by an arithmetic operator must have a value.
bool sans_valeur(const Valeur& v, mot op) {
  if (!v.variable || v.variable->donnees || op == ',' || op == OP_EGAL || op == OP_DIFFERENT) return false;
  std::printf("%s", nom_variable(v.variable));
  message(0, M_SANS_VALEUR);
  return true;
}

// Where a compound operator puts its result back.
int rend(mot* cible, const Valeur& v, mot* resultat) {
  if (cible[0] > 0 && (cible[1] == VAL_VUE || cible[1] == VAL_VUE3)) return affecter(cible, resultat);
  if (!v.variable) {
    message(0, M_AFFECTATION);
    return ECHEC;
  }
  return stocke(v.variable, resultat);
}

// ---- ++, --, ! ------------------------------------------------------------------
// ++ and -- on a view of floats (x[1]++, ++x{0}) change the elements it
// addresses. They change at once, postfix too: a view's addresses hold only
// while nothing else runs, and nothing does between a postfix and the end
// of its group, every operator having brackets of its own; the old value
// is the postfix's result all the same.
int incremente_vue(mot* g, float pas, int prefixe) {
  const long n = g[2];
  const int largeur = g[1] == VAL_VUE3 ? 3 : 1;
  auto change = [&] {
    for (long k = 0; k < n; ++k) {
      reel* x = reels(bloc_pointe(g[4 + k]));
      for (int c = 0; c < largeur; ++c) x[c] += pas;
    }
  };
  if (prefixe) change();
  mot* r = piles.eva_haut;
  int e = materialiser(r, g, piles.eva_limite);
  if (e < 0) return e;
  if (!prefixe) change();
  std::memmove(g, r, static_cast<std::size_t>(r[0]) * sizeof(mot));
  piles.eva_haut = g + g[0];
  return 0;
}

int incremente(mot* g, mot op, int prefixe, Differes* differes) {
  if (g[0] > 0 && (g[1] == VAL_VUE || g[1] == VAL_VUE3) && g[3] == BLOC_REEL)
    return incremente_vue(g, op == OP_INCR ? 1.0f : -1.0f, prefixe);
  mot* haut = piles.eva_haut;
  mot* v = lisible(g, &haut);
  if (!v) return interp.code;
  Valeur a;
  if (decrire(v, &a) < 0) return ECHEC;
  if (a.type != BLOC_REEL) return refuse_operandes(g, nullptr, op == OP_INCR ? '+' : '-');
  const float pas = op == OP_INCR ? 1.0f : -1.0f;
  if (prefixe && a.variable) {
    reel* x = reels(a.donnees);
    for (long k = 0; k < a.n; ++k) x[k] += pas;
  }
  // The value: the variable's (new or old) elements as a block at g.
  mot* r = haut;
  if (!place(r, 4 + a.n)) return PILE_PLEINE;
  std::memmove(r + 4, a.donnees, static_cast<std::size_t>(a.n) * sizeof(mot));
  if (prefixe && !a.variable) {
    reel* x = reels(r + 4);
    for (long k = 0; k < a.n; ++k) x[k] += pas;
  }
  r[0] = static_cast<mot>(4 + a.n);
  r[1] = BLOC_REEL;
  r[2] = static_cast<mot>(a.n);
  r[3] = 1;
  if (!prefixe && a.variable) {
    if (!differes || differes->n >= MAX_DIFFERES) {
      message(0, M_DIFFERES);
      return ECHEC;
    }
    differes->d[differes->n++] = Differe{op, a.variable};
  }
  std::memmove(g, r, static_cast<std::size_t>(r[0]) * sizeof(mot));
  piles.eva_haut = g + g[0];
  return 0;
}

int non_logique(mot* g) {
  mot* haut = piles.eva_haut;
  mot* v = lisible(g, &haut);
  if (!v) return interp.code;
  Valeur a;
  if (decrire(v, &a) < 0) return ECHEC;
  if (a.type != BLOC_REEL) return refuse('!');
  mot* r = haut;
  if (!place(r, 4 + a.n)) return PILE_PLEINE;
  const reel* x = reels(a.donnees);
  reel* y = reels(r + 4);
  for (long k = 0; k < a.n; ++k) y[k] = x[k] == 0 ? 1.0f : 0.0f;
  r[0] = static_cast<mot>(4 + a.n);
  r[1] = BLOC_REEL;
  r[2] = static_cast<mot>(a.n);
  r[3] = 1;
  std::memmove(g, r, static_cast<std::size_t>(r[0]) * sizeof(mot));
  piles.eva_haut = g + g[0];
  return 0;
}
}  // namespace

void differes_execute(Differes* differes) {
  for (int k = 0; k < differes->n; ++k) {
    Objet* o = differes->d[k].variable;
    mot* b = o->donnees;
    if (!b || b[0] <= 4 || b[1] != BLOC_REEL) continue;
    const float pas = differes->d[k].op == OP_INCR ? 1.0f : -1.0f;
    reel* x = reels(b + 4);
    for (long i = 0, n = b[0] - 4; i < n; ++i) x[i] += pas;
  }
  differes->n = 0;
}

int operer(mot* g, mot op, mot* d, int prefixe, Differes* differes) {
  if (op == '=') return affecter(g, d);
  if (op == OP_INCR || op == OP_DECR) return incremente(g, op, prefixe, differes);
  if (op == '!') return non_logique(g);
  mot compose = operateur_compose(op);
  mot base_op = compose ? compose : op;
  // Only a plain operator's result may go to the assigned variable (Vers).
  const bool vers_permis = vers.actif && !compose;
  vers.actif = false;
  mot* haut = piles.eva_haut;
  mot* gv = lisible(g, &haut);
  if (!gv) return interp.code;
  mot* dv = lisible(d, &haut);
  if (!dv) return interp.code;
  Valeur a, b;
  if (decrire(gv, &a) < 0 || decrire(dv, &b) < 0) return ECHEC;
  if (sans_valeur(a, base_op) || sans_valeur(b, base_op)) return ECHEC;
  // A compound operator on a view keeps the view until the store.
  bool vue = compose && g[0] > 0 && (g[1] == VAL_VUE || g[1] == VAL_VUE3);
  mot* dest = vue ? haut : g;
  int r;
  if (base_op == ',') {
    r = concatene(dest, gv, a, dv, b, haut);
  } else if (a.type == BLOC_REEL && b.type == BLOC_REEL) {
    r = flottants(dest, base_op, a, b, haut, vers_permis);
  } else {
    r = autres_types(dest, base_op, gv, a, dv, b);
  }
  if (r < 0 || !compose) return r;
  if (vue) {
    mot* res = dest;
    piles.eva_haut = res + taille_item(res);
    return rend(g, a, res);
  }
  return rend(g, a, g);
}

// The walk of one bracket group: operands and operators are pushed, inner
// groups recurse, and the closing bracket reduces what stands on the stack.
#include <cstdio>
#include <cstring>

#include "interp/interne.h"

namespace {
mot* echec(int code) {
  interp.code = code;
  return nullptr;
}

// ---- the common shapes of scalar code, taken without the stack -------------
// (a op b) on two scalars: the value at base. False when the shape or the
// values are not those, or when the operator has a failure to report.
TOUJOURS_EN_LIGNE bool binaire_scalaire(const mot* p, mot* base) {
  if (p[2] != IT_OP || p[6] != IT_OP || p[7] != ')') return false;
  float a, b, r;
  if (!scalaire_item(p, &a) || !scalaire_item(p + 4, &b) || !calcul_scalaire(p[3], a, b, &r)) return false;
  if (!place(base, 5)) return false;
  ecrit_scalaire(base, r);
  piles.eva_haut = base + 5;
  return true;
}

// A view holds addresses into its base, good only until the base changes:
// one that is read, not written through, becomes its elements before any
// other code runs (an argument, the operand of an operator).
int vue_en_valeur(mot* v) {
  mot* t = piles.eva_haut > v + v[0] ? piles.eva_haut : v + v[0];
  int r = materialiser(t, v, piles.eva_limite);
  if (r < 0) return r;
  std::memmove(v, t, static_cast<std::size_t>(t[0]) * sizeof(mot));
  piles.eva_haut = v + v[0];
  return 0;
}

// Does an operator that follows a view only read it?
inline bool lit_seulement(const mot* p) {
  if (p[0] != IT_OP) return false;
  mot op = p[1];
  return !fermant(op) && op != '=' && op != OP_INCR && op != OP_DECR && !operateur_compose(op);
}

// A call: its header, then each argument evaluated behind it; it runs as
// soon as its arguments are there, and its value takes its place.
TOUJOURS_EN_LIGNE mot* appel(mot* p, mot* haut, int* etat) {
  if (!place(haut, 4)) return echec(PILE_PLEINE);
  mot argc = p[3];
  mot* a = haut;
  a[0] = 4;
  a[1] = p[1];
  a[2] = p[2];
  a[3] = argc;
  mot* q = a + 4;
  p += p[0];
  // A call without arguments carries an empty pair of brackets.
  if (argc == 0 && p[0] == IT_OP && p[1] == '(' && p[2] == IT_OP && p[3] == ')') p += 4;
  mot k = 0;
  for (; k < argc; ++k) {
    if (p[0] != IT_OP || !ouvrant(p[1])) break;
    float x;
    if (const mot* f = p[1] == '(' ? expression_scalaire(p, &x, true) : nullptr; f && place(q, 5)) {
      // An argument's view is read at once: a plain value is the same.
      ecrit_scalaire(q, x);
      p = const_cast<mot*>(f);
      q += 5;
      continue;
    }
    p = evaluer_groupe(p, q, etat);
    if (!p) return nullptr;
    if (est_vue(q)) {
      // The later arguments may change what it looks at.
      int r = vue_en_valeur(q);
      if (r < 0) return echec(r);
    }
    // An assignment as argument leaves its variable: the value is wanted.
    if (q[0] == IT_GLOBAL || q[0] == IT_LOCAL || q[0] == IT_STATIQUE) {
      int r = evaluer_valeur(q, piles.eva_limite);
      if (r < 0) return echec(r);
    }
    q += taille_item(q);
  }
  a[0] = static_cast<mot>(q - a);
  a[3] = k;  // the arguments actually there
  piles.eva_haut = q;
  int r = appeler_fonction(a, true);
  if (r < 0) return echec(r);
  return p;
}

// The first item behind the group that opens at p.
mot* fin_groupe(mot* p) {
  int profondeur = 0;
  for (;;) {
    mot w = p[0];
    if (w == 0) return p;
    if (w > 0) {
      p += w;
      continue;
    }
    if (w == IT_OP) {
      if (ouvrant(p[1])) ++profondeur;
      else if (fermant(p[1]) && --profondeur <= 0) return p + 2;
    }
    p += 2;
  }
}
}  // namespace

mot* groupe_suivant(mot* p) { return fin_groupe(p); }

namespace {
// The variable of an assignment's target item, when it owns a scalar block.
inline mot* cible_scalaire(const mot* it) {
  Objet* o;
  switch (it[0]) {
    case IT_LOCAL:
      if (!cadre.locaux) return nullptr;
      o = cadre.locaux + it[1];
      if (o->type != OBJ_LOCAL || !o->f1) return nullptr;
      break;
    case IT_GLOBAL:
    case IT_STATIQUE:
      o = static_cast<Objet*>(mot_vers_ptr(it[1]));
      break;
    default:
      return nullptr;
  }
  mot* b = o->donnees;
  return b && b != bloc_nil && b[0] == 5 && b[1] == BLOC_REEL ? b : nullptr;
}

// ((v[i]) op (...)) with op = or a compound assignment: the right group,
// where the ( ) behind the target's closes the whole group, or null.
inline mot* droite_de_cible_indexee(mot* p) {
  const mot* v = p + 2;
  if (v[0] != IT_LOCAL && v[0] != IT_GLOBAL && v[0] != IT_STATIQUE) return nullptr;
  if (v[2] != IT_OP || (v[3] != '[' && v[3] != '{')) return nullptr;
  mot* f = fin_groupe(p + 4);
  if (f[0] != IT_OP || f[1] != ')') return nullptr;
  mot* o = f + 2;
  if (o[0] != IT_OP || (o[1] != '=' && !operateur_compose(o[1]))) return nullptr;
  mot* d = o + 2;
  if (d[0] != IT_OP || d[1] != '(') return nullptr;
  mot* e = fin_groupe(d);
  return e[-2] == IT_OP && e[-1] == ')' && e[0] == IT_OP && e[1] == ')' ? d : nullptr;
}

// ((V[A]) = (...)) or a compound assignment, the right side a scalar
// expression: the element is written in place, and the value left is the
// element's new value, as on the general way. Null, with nothing done, when
// the shapes or values are not those.
mot* affecte_element(mot* p, mot* base) {
  if (!forme_element(p) || p[12] != IT_OP || fermant(p[13]) || p[14] != IT_OP || p[15] != '(') return nullptr;
  mot op = p[13], c = 0;
  if (op != '=' && !(c = operateur_compose(op))) return nullptr;
  float v, r;
  const mot* q = expression_scalaire(p + 14, &v, true);
  if (!q || q[0] != IT_OP || q[1] != ')') return nullptr;
  reel* e = element_direct(p, true);
  if (!e || !place(base, 5)) return nullptr;
  r = v;
  if (c && !calcul_scalaire(c, *e, v, &r)) return nullptr;
  *e = r;
  ecrit_scalaire(base, r);
  piles.eva_haut = base + 5;
  return const_cast<mot*>(q + 2);
}

// Writing through an index, the right side runs first, then the target is
// indexed: the view then looks at the block that the variable holds after
// whatever the right side did to it (a call may well have replaced it).
mot* affecte_indexee(mot* p, mot* droite, mot* base, int* etat) {
  mot* q = evaluer_groupe(droite, base, etat);
  if (!q || *etat == 2) return q;
  int r = copie_valeur(base, piles.eva_limite);
  if (r < 0) return echec(r);
  mot* cible = base + taille_item(base);
  piles.eva_haut = cible;
  if (!evaluer_groupe(p, cible, etat)) return nullptr;
  r = operer(cible, droite[-1], base, 0, nullptr);
  if (r < 0) return echec(r);
  mot n = taille_item(cible);
  std::memmove(base, cible, static_cast<std::size_t>(n) * sizeof(mot));
  piles.eva_haut = base + n;
  return q + 2;
}

// The right side of ( x = ( ... ) ), computed into x's block by its last
// operator when it can be (see Vers); `fait` says whether it was. x's
// variable is looked for without a word: the store says what is wrong.
mot* droite_vers(mot* p, mot* base, int* etat, bool* fait) {
  Objet* o = nullptr;
  if (interp.raccourcis) {
    if (p[0] == IT_LOCAL) o = cadre.locaux ? cadre.locaux + p[1] : nullptr;
    else o = static_cast<Objet*>(mot_vers_ptr(p[1]));
    if (o && o->type == CADRE_REFERENCE) o = reinterpret_cast<Objet*>(o->donnees);
  }
  mot* b = o ? o->donnees : nullptr;
  const mot* f;
  if (!b || b == bloc_nil || b[1] != BLOC_REEL || b[0] < 6 || !possede(o) ||
      (f = fin_groupe(p + 4))[0] != IT_OP || f[1] != ')')
    return evaluer_groupe(p + 4, base, etat);
  const Vers avant = vers;
  vers = {f - 2, base, o, b, false, false};
  mot* q = evaluer_groupe(p + 4, base, etat);
  *fait = vers.fait;
  vers = avant;
  return q;
}
}  // namespace

mot* evaluer_groupe(mot* item, mot* base, int* etat) {
  if (pile_c_epuisee()) {
    message(0, M_EVALUATION);
    return echec(ECHEC);
  }
  const mot ouvre = item[1];
  mot* haut = base;
  mot* p = item + 2;
  if (ouvre == '(' && (p[0] == IT_LOCAL || p[0] == IT_GLOBAL || p[0] == IT_STATIQUE || p[0] == IT_REEL)) {
    if (binaire_scalaire(p, base)) return p + 8;
    float x;
    if (p[2] == IT_OP && p[3] == ')' && scalaire_item(p, &x) && place(base, 5)) {
      // (x): a scalar's value.
      ecrit_scalaire(base, x);
      piles.eva_haut = base + 5;
      return p + 4;
    }
    if (p[2] == IT_OP && p[3] == '=' && p[4] == IT_OP && p[5] == '(' && p[0] != IT_REEL) {
      // x = (...): the right side first; a scalar into a variable that owns
      // a scalar is stored in place. (a op b) on scalars needs no walk.
      mot* q;
      float y;
      const mot* f;
      if (binaire_scalaire(p + 6, base)) q = p + 14;
      else if ((f = expression_scalaire(p + 4, &y, false)) && place(base, 5)) {
        // Operands that are built-ins on scalars, or elements, read at once.
        ecrit_scalaire(base, y);
        piles.eva_haut = base + 5;
        q = const_cast<mot*>(f);
      }
      else if (item == interp.instruction && interp.raccourcis && forme_ajout(item) &&
               (q = ajout_en_place(item, base)))
        return q;  // s = s, t as a whole statement: appended in place
      else if (bool fait = false; (q = droite_vers(p, base, etat, &fait)), fait) {
        // The value is in the variable's block already.
        return q && *etat != 2 ? q + 2 : q;
      }
      if (!q || *etat == 2) return q;
      if (q[0] == IT_OP && q[1] == ')' && est_scalaire(base)) {
        if (mot* b = cible_scalaire(p)) {
          b[4] = base[4];
          piles.eva_haut = base + 5;
          return q + 2;
        }
      }
      if (q[0] == IT_OP && q[1] == ')') {
        // Any value into the variable; the value stays where it is.
        Objet* o = variable_de(p);
        if (!o) return echec(ECHEC);
        int r = copie_valeur(base, piles.eva_limite);
        if (r < 0) return echec(r);
        if (stocke(o, base) < 0) return echec(ECHEC);
        piles.eva_haut = base + taille_item(base);
        return q + 2;
      }
      // Otherwise the general way, the value already evaluated.
      mot n = taille_item(base);
      if (!place(base, 4 + n)) return echec(PILE_PLEINE);
      std::memmove(base + 4, base, static_cast<std::size_t>(n) * sizeof(mot));
      base[0] = p[0];
      base[1] = p[1];
      base[2] = IT_OP;
      base[3] = '=';
      haut = base + 4 + n;
      p = q;
    }
  }
  else if (ouvre == '(' && p[0] == IT_OP && p[1] == '(') {
    if (mot* f = affecte_element(p, base)) return f;
    float x;
    if (const mot* f = expression_scalaire(item, &x, false); f && place(base, 5)) {
      ecrit_scalaire(base, x);
      piles.eva_haut = base + 5;
      return const_cast<mot*>(f);
    }
    if (mot* droite = droite_de_cible_indexee(p)) return affecte_indexee(p, droite, base, etat);
  }
  else if (ouvre == '(' && p[0] > 0 && (p[1] == BLOC_OBJET || p[1] == BLOC_NOM)) {
    // (f(...)): the call's value is the group's.
    mot* q = appel(p, base, etat);
    if (!q) return nullptr;
    if (q[0] == IT_OP && q[1] == ')') return q + 2;
    // (f(...) op g(...)), the way recursion adds up: the second call goes
    // behind the operator, and two scalars are reduced here.
    mot op = q[1];
    if (q[0] == IT_OP && q[2] > 0 && (q[3] == BLOC_OBJET || q[3] == BLOC_NOM) && est_scalaire(base) &&
        (op == '+' || op == '-' || op == '*' || op == '<' || op == '>' || op == OP_EGAL) && place(base, 7)) {
      base[5] = IT_OP;
      base[6] = op;
      mot* b2 = base + 7;
      mot* r = appel(q + 2, b2, etat);
      if (!r) return nullptr;
      float x;
      if (r[0] == IT_OP && r[1] == ')' && est_scalaire(b2) &&
          calcul_scalaire(op, lit_reel(base + 4), lit_reel(b2 + 4), &x)) {
        ecrit_scalaire(base, x);
        piles.eva_haut = base + 5;
        return r + 2;
      }
      return evaluer_suite(r, base, piles.eva_haut, ')', etat);
    }
    haut = piles.eva_haut;
    p = q;
  }
  return evaluer_suite(p, base, haut, ouvre == '[' ? ']' : ouvre == '{' ? '}' : ')', etat);
}

mot* evaluer_suite(mot* p, mot* base, mot* haut, mot ferme, int* etat) {
  Differes differes;
  for (;;) {
    mot w = p[0];
    if (w < 0) {
      switch (w) {
        case IT_OP: {
          mot op = p[1];
          if (op == '(' || op == '[' || op == '{') {
            if (op == '(' && forme_element(p) && lit_seulement(p + 12) && place(haut, 5)) {
              // An element only read is its value.
              if (const reel* e = element_direct(p, false)) {
                ecrit_scalaire(haut, *e);
                haut += 5;
                piles.eva_haut = haut;
                p += 12;
                continue;
              }
            }
            mot* q = evaluer_groupe(p, haut, etat);
            if (!q) return nullptr;
            if (*etat == 2) {
              // A retour ran inside: its value is the group's.
              mot n = taille_item(haut);
              std::memmove(base, haut, static_cast<std::size_t>(n) * sizeof(mot));
              piles.eva_haut = base + n;
              return q;
            }
            p = q;
            if (est_vue(haut) && lit_seulement(p)) {
              // Its operand, on the right, may change the view's base.
              int r = vue_en_valeur(haut);
              if (r < 0) return echec(r);
            }
            haut = piles.eva_haut;
            continue;
          }
          if (op == ')' || op == ']' || op == '}') {
            if (op != ferme) {
              std::printf("%c: ", static_cast<char>(op));
              message(0, M_OPERATEUR);
              return echec(ECHEC);
            }
            piles.eva_haut = haut;
            // Two scalars and an operator: done here.
            float a, b, x;
            if (op == ')' && !differes.n && base[0] > 0 && haut == base + 12 && base[5] == IT_OP &&
                scalaire_item(base, &a) && scalaire_item(base + 7, &b) && calcul_scalaire(base[6], a, b, &x)) {
              ecrit_scalaire(base, x);
              piles.eva_haut = base + 5;
              return p + 2;
            }
            vers.actif = p == vers.fin && base == vers.base && !differes.n;
            int r = reduire(base, haut, &differes);
            vers.actif = false;
            if (r < 0) return echec(r);
            if (r == 2) *etat = 2;
            if (op != ')') {
              r = rampe(base, base, op);
              if (r < 0) return echec(r);
            }
            if (differes.n) differes_execute(&differes);
            return p + 2;
          }
          if (op == OP_NOP || op == OP_DEBUT || op == OP_FIN) {
            p += 2;
            continue;
          }
          break;
        }
        case IT_MOT: {
          if (haut == base && p[1] == mot_retour() && p[2] == IT_OP && p[3] == '(') {
            // retour (v): the value goes straight to the group's place.
            mot* q = evaluer_groupe(p + 2, base, etat);
            if (!q) return nullptr;
            if (base[0] < 0) {
              int r = copie_valeur(base, piles.eva_limite);
              if (r < 0) return echec(r);
            }
            if (q[0] == IT_OP && q[1] == ')') {
              *etat = 2;
              piles.eva_haut = base + taille_item(base);
              if (differes.n) differes_execute(&differes);
              return q + 2;
            }
            // More follows: the phrase is made as construire_phrase would.
            mot n = taille_item(base);
            if (!place(base, 7 + n)) return echec(PILE_PLEINE);
            std::memmove(base + 7, base, static_cast<std::size_t>(n) * sizeof(mot));
            mot tete[7] = {7 + n, BLOC_PHRASE, 1, 0, 3 + n, 0, A_RETOUR};
            std::memcpy(base, tete, sizeof tete);
            haut = base + 7 + n;
            p = q;
            continue;
          }
          float y;
          if (const mot* f = appel_maths(p, &y); f && place(haut, 5)) {
            // A built-in on one scalar: its value, without its phrase.
            ecrit_scalaire(haut, y);
            haut += 5;
            piles.eva_haut = haut;
            p = const_cast<mot*>(f);
            continue;
          }
          piles.eva_haut = haut;
          mot* q = construire_phrase(p, haut);
          if (!q) return nullptr;
          p = q;
          haut = piles.eva_haut;
          continue;
        }
        case IT_LIGNE:
          interp.ligne = p[1];
          p += 2;
          continue;
        case IT_RC:
          std::putchar('\n');
          p += 2;
          continue;
        case IT_AIDE_MOT:
          aide_mot(static_cast<MotCle*>(mot_vers_ptr(p[1])));
          p += 2;
          continue;
        case IT_SAUT:
        case IT_FIN: {
          // The walk of this group ends here; what it holds is its value.
          piles.eva_haut = haut;
          int r = reduire(base, haut, &differes);
          if (r < 0) return echec(r);
          if (differes.n) differes_execute(&differes);
          return w == IT_SAUT ? p + p[1] : p;
        }
        case IT_REF_LOCAL:
        case IT_REF_STATIQUE: {
          // A reference is carried as the variable it names.
          Objet* o = variable_de(p);
          if (!o) return echec(ECHEC);
          if (!place(haut, 2)) return echec(PILE_PLEINE);
          haut[0] = IT_REF_GLOBAL;
          haut[1] = ptr_vers_mot(o);
          haut += 2;
          p += 2;
          continue;
        }
      }
      if (!place(haut, 2)) return echec(PILE_PLEINE);
      haut[0] = w;
      haut[1] = p[1];
      haut += 2;
      p += 2;
      continue;
    }
    if (w == 0) {
      piles.eva_haut = haut;
      int r = reduire(base, haut, &differes);
      if (r < 0) return echec(r);
      if (differes.n) differes_execute(&differes);
      return p;
    }
    switch (p[1]) {
      case BLOC_OBJET:
      case BLOC_NOM:
      case IT_APPEL:
      case IT_FORMEL: {
        mot* q = appel(p, haut, etat);
        if (!q) return nullptr;
        p = q;
        haut = piles.eva_haut;
        continue;
      }
      case IT_NOM:
        p += w;
        continue;
    }
    if (!place(haut, w)) return echec(PILE_PLEINE);
    std::memcpy(haut, p, static_cast<std::size_t>(w) * sizeof(mot));
    haut += w;
    p += w;
  }
}

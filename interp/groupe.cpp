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

// A call: its header, then each argument evaluated behind it; it runs as
// soon as its arguments are there, and its value takes its place.
mot* appel(mot* p, mot* haut, int* etat) {
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
  for (mot k = 0; k < argc; ++k) {
    if (p[0] != IT_OP || !ouvrant(p[1])) break;
    p = evaluer_groupe(p, q, etat);
    if (!p) return nullptr;
    // An assignment as argument leaves its variable: the value is wanted.
    if (q[0] == IT_GLOBAL || q[0] == IT_LOCAL || q[0] == IT_STATIQUE) {
      int r = evaluer_valeur(q, piles.eva_limite);
      if (r < 0) return echec(r);
    }
    q += taille_item(q);
  }
  a[0] = static_cast<mot>(q - a);
  a[3] = static_cast<mot>(argc);
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

mot* evaluer_groupe(mot* item, mot* base, int* etat) {
  if (pile_c_epuisee()) {
    message(0, M_EVALUATION);
    return echec(ECHEC);
  }
  const mot ouvre = item[1];
  const mot ferme = ouvre == '[' ? ']' : ouvre == '{' ? '}' : ')';
  Differes differes;
  mot* haut = base;
  mot* p = item + 2;
  for (;;) {
    mot w = p[0];
    if (w < 0) {
      switch (w) {
        case IT_OP: {
          mot op = p[1];
          if (op == '(' || op == '[' || op == '{') {
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
            int r = reduire(base, haut, &differes);
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

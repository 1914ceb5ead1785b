// Keyword phrases: built with their arguments evaluated, then run by the
// statement dispatch of list "a" or handed to the command dispatch.
#include <cstdio>
#include <cstring>

#include "interp/interne.h"

namespace {
mot* echec(int code) {
  interp.code = code;
  return nullptr;
}

// A keyword whose entry is flagged takes its group as code, not as value:
// the words are kept in a list block that its handler runs when it wants.
mot* copie_brute(mot* p, mot* dest) {
  mot* fin = groupe_suivant(p);
  mot n = static_cast<mot>(fin - p);
  if (!place(dest, 4 + n)) return echec(PILE_PLEINE);
  std::memcpy(dest + 4, p, static_cast<std::size_t>(n) * sizeof(mot));
  dest[0] = 4 + n;
  dest[1] = BLOC_LISTE;
  dest[2] = 0;
  dest[3] = 0;
  return fin;
}
}  // namespace

mot* construire_phrase(mot* p, mot* base) {
  if (!place(base, 4)) return echec(PILE_PLEINE);
  mot* b = base;
  b[1] = BLOC_PHRASE;
  b[2] = 0;
  b[3] = 0;
  mot* q = b + 4;
  for (;;) {
    mot w = p[0];
    if (w == IT_LIGNE) {
      interp.ligne = p[1];
      p += 2;
      continue;
    }
    if (w != IT_MOT && w != IT_AIDE_MOT) break;
    if (!place(q, 6)) return echec(PILE_PLEINE);
    MotCle* m = static_cast<MotCle*>(mot_vers_ptr(p[1]));
    if (w == IT_AIDE_MOT) {
      // ? adds its own element and the keyword that follows.
      q[0] = 3;
      q[1] = 0;
      q[2] = A_AIDE_MOT;
      q += 3;
      ++b[2];
      p += 2;
      if (!m) continue;
    } else {
      p += 2;
    }
    if (!m) return echec(ECHEC);
    q[0] = 3;
    q[1] = m->env;
    q[2] = m->ordinal;
    ++b[2];
    if (p[0] == IT_OP && p[1] == '(') {
      mot* v = q + 3;
      if (m->e1 < 0) {
        p = copie_brute(p, v);
      } else {
        int etat = 0;
        piles.eva_haut = v;
        p = evaluer_groupe(p, v, &etat);
        // An assignment as argument leaves its variable: the value is wanted.
        if (p && (v[0] == IT_GLOBAL || v[0] == IT_LOCAL || v[0] == IT_STATIQUE)) {
          int r = evaluer_valeur(v, piles.eva_limite);
          if (r < 0) return echec(r);
        }
      }
      if (!p) return nullptr;
      q[0] = 3 + taille_item(v);
    }
    q += q[0];
  }
  b[0] = static_cast<mot>(q - b);
  piles.eva_haut = q;
  return p;
}

int executer_phrase(mot* bloc) {
  mot* e = bloc + 4;
  int r = 1;
  piles.eva_haut = bloc + bloc[0];
  if (bloc[2] > 0 && e[1] == 0 && e[2] <= A_DERNIER_INSTRUCTION) r = instruction(bloc, e[2]);
  if (r == 1) r = commande(bloc, piles.eva_limite, nullptr);
  if (r < 0) {
    // A failing command stops the text only when cont is on.
    if (r == PILE_PLEINE && etat_a(A_CONT) == 0) message(0, M_EVALUATION);
    ecrit_nil(bloc);
    piles.eva_haut = bloc + 4;
    if (etat_a(A_CONT) != 0) return r;
    int n = 0;
    if (mot_entree(0, A_ERR)) {
      reel* v = mot_valeur(0, A_ERR, &n);
      if (v && n > 0) v[0] = -1.0f;
    }
    return 0;
  }
  if (bloc[0] == 0) {
    ecrit_nil(bloc);
  } else if (bloc[0] > 0 && bloc[1] == BLOC_ENTIER) {
    // Integers end the statement as floats.
    long n = static_cast<long>(bloc[2]) * bloc[3];
    for (long k = 0; k < n; ++k) ecrit_reel(bloc + 4 + k, static_cast<float>(bloc[4 + k]));
    bloc[0] = static_cast<mot>(4 + n);
    bloc[1] = BLOC_REEL;
    bloc[2] = static_cast<mot>(n);
    bloc[3] = 1;
  }
  piles.eva_haut = bloc + taille_item(bloc);
  return r;
}

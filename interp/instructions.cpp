// The statement keywords of list "a" that the interpreter runs itself.
// Any other ordinal answers 1 (not handled) and goes to the command
// dispatch.
#include <time.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "interp/interne.h"

namespace {
constexpr int NON_TRAITE = 1;

inline mot* element(mot* bloc) { return bloc + 4; }
inline mot* argument(mot* bloc) { return bloc[4] > 3 ? bloc + 7 : nullptr; }
inline bool seul(const mot* bloc) { return bloc[2] == 1; }
constexpr int B_COLONNE = 78;  // values a line of affiche

void pose_resultat(mot* bloc, mot* v) {
  mot n = taille_item(v);
  std::memmove(bloc, v, static_cast<std::size_t>(n) * sizeof(mot));
  piles.eva_haut = bloc + n;
}

void pose_reel(mot* bloc, float x) {
  ecrit_scalaire(bloc, x);
  piles.eva_haut = bloc + 5;
}

// The value a keyword works on: its argument, or else the phrase of the
// keywords behind it, run in place of the first element.
mot* valeur_de(mot* bloc, int* r) {
  *r = 0;
  if (mot* v = argument(bloc)) {
    *r = copie_valeur(v, piles.eva_limite);
    return *r < 0 ? nullptr : v;
  }
  if (bloc[2] < 2) return nullptr;
  mot* sous = bloc + 3;
  mot n = bloc[0] - 3, nb = bloc[2] - 1;
  sous[0] = n;
  sous[1] = BLOC_PHRASE;
  sous[2] = nb;
  sous[3] = 0;
  *r = executer_phrase(sous);
  if (*r >= 0 && sous[0] < 0) *r = copie_valeur(sous, piles.eva_limite);
  return *r < 0 ? nullptr : sous;
}

int retour(mot* bloc) {
  int r;
  mot* v = valeur_de(bloc, &r);
  if (r < 0) return r;
  if (v) pose_resultat(bloc, v);
  else {
    ecrit_nil(bloc);
    piles.eva_haut = bloc + 4;
  }
  return 2;
}

int imprime(mot* bloc) {
  int r;
  mot* v = valeur_de(bloc, &r);
  if (r < 0) return r;
  if (v) imprimer(v, nullptr);
  std::putchar('\n');
  std::fflush(stdout);
  bloc[0] = 0;
  return 0;
}

// affiche x, affiche(x): three values a line, rows numbered from 0.
// affiche(x) colonne(k): k values a line (0: all on one line).
int affiche(mot* bloc) {
  int r;
  reel options[1];
  int n = 0;
  if (argument(bloc) && bloc[2] >= 2) {
    mot* e = element(bloc);
    for (mot k = 1; k < bloc[2]; ++k) {
      e += e[0];
      if (e[1] != 1 || e[2] != B_COLONNE || e[0] <= 3) continue;
      Valeur o;
      if (decrire(e + 3, &o) < 0) return ECHEC;
      if (o.type != BLOC_REEL || o.n < 1) {
        mot_imprime(1, B_COLONNE);
        message(0, M_VALEUR);
        return ECHEC;
      }
      options[0] = reels(o.donnees)[0];
      n = 1;
    }
  }
  mot* v = valeur_de(bloc, &r);
  if (r < 0) return r;
  if (v) afficher(v, n ? options : nullptr, n);
  std::fflush(stdout);
  bloc[0] = 0;
  return 0;
}

// pas, pas(n): the step mode; 0 leaves it.
int commande_pas(mot* bloc) {
  Valeur v;
  float n = 1;
  if (mot* a = argument(bloc)) {
    if (decrire(a, &v) < 0) return ECHEC;
    if (v.type == BLOC_REEL && v.n > 0) n = reels(v.donnees)[0];
  }
  if (etats[0]) etats[0][A_PAS] = entier_sature(n);
  bloc[0] = 0;
  return 0;
}

// debug and nodebug: the keywords behind them, or the ordinals of list "a"
// given as numbers, are the options switched on or off.
int commande_debug(mot* bloc, bool pose) {
  bool tout = true;
  auto change = [&](int env, int ord) {
    tout = false;
    for (int k = 0; k < debug.n; ++k)
      if (debug.paires[k][0] == env && debug.paires[k][1] == ord) {
        if (!pose) {
          debug.paires[k][0] = debug.paires[debug.n - 1][0];
          debug.paires[k][1] = debug.paires[debug.n - 1][1];
          --debug.n;
        }
        return;
      }
    if (pose && debug.n < 64) {
      debug.paires[debug.n][0] = env;
      debug.paires[debug.n][1] = ord;
      ++debug.n;
    }
  };
  if (mot* a = argument(bloc)) {
    Valeur v;
    if (decrire(a, &v) < 0) return ECHEC;
    if (v.type == BLOC_REEL)
      for (long k = 0; k < v.n; ++k) change(0, entier_sature(reels(v.donnees)[k]));
  }
  mot* e = element(bloc);
  for (mot k = 1; k < bloc[2]; ++k) {
    e += e[0];
    change(e[1], e[2]);
  }
  if (pose) debug.drapeau = 1;
  else if (tout) debug.drapeau = 0, debug.n = 0;
  debug_applique();
  bloc[0] = 0;
  return 0;
}

// sor(lines): the breakpoints of the step mode; sor alone clears them.
int commande_sor(mot* bloc) {
  debug.nb_arrets = 0;
  if (mot* a = argument(bloc)) {
    Valeur v;
    if (decrire(a, &v) < 0) return ECHEC;
    if (v.type == BLOC_REEL)
      for (long k = 0; k < v.n && debug.nb_arrets < 64; ++k)
        debug.arrets[debug.nb_arrets++] = entier_sature(reels(v.donnees)[k]);
  }
  bloc[0] = 0;
  return 0;
}

int systeme(mot* bloc) {
  mot* a = argument(bloc);
  const char* t = a ? texte_de(a) : nullptr;
  if (!t) {
    mot_imprime(0, A_SYSTEME);
    message(0, M_TYPE);
    return ECHEC;
  }
  std::fflush(stdout);
  int r = std::system(t);
  if (r < 0) return ECHEC;
  pose_reel(bloc, static_cast<float>(r));
  return 0;
}

// demande("%s ..."): a line of the console as a string; demande(prompt):
// the prompt, then a line run by the shell, whose value is the result.
int demande(mot* bloc) {
  mot* a = argument(bloc);
  const char* t = a ? texte_de(a) : nullptr;
  if (t && std::strncmp(t, "%s", 2) == 0) {
    std::fputs(t + 2, stdout);
    char ligne[800];
    bool reprise;
    int n = console_lit(ligne, sizeof ligne, &reprise);
    if (reprise) return ECHEC;
    if (n < 0) {
      ecrit_nil(bloc);
      piles.eva_haut = bloc + 4;
      return 0;
    }
    mot lg = long_chaine(static_cast<std::size_t>(n));
    if (!place(bloc, lg)) return PILE_PLEINE;
    std::memcpy(bloc_texte(bloc), ligne, static_cast<std::size_t>(n) + 1);
    bloc[0] = lg;
    bloc[1] = BLOC_CHAINE;
    bloc[2] = 1;
    bloc[3] = 1;
    piles.eva_haut = bloc + lg;
    return 0;
  }
  if (a) imprimer(a, nullptr);
  mot* pile = bloc + bloc[0] + 1;
  int r = shell(0, 48, pile, 0);
  if (reprise_demandee) return ECHEC;
  if (r < 0 || pile[0] == 0) {
    ecrit_nil(bloc);
    piles.eva_haut = bloc + 4;
    return 0;
  }
  if (copie_valeur(pile, piles.eva_limite) < 0) return ECHEC;
  pose_resultat(bloc, pile);
  return 0;
}

// var: the names of the globals; var("x"): the value of the global x;
// var fonc("f"): the symbols of f.
int commande_var(mot* bloc) {
  if (bloc[2] > 1) {
    mot* e = element(bloc) + bloc[4];
    if (e[1] != 0 || e[2] != A_FONC) return NON_TRAITE;
    if (imprimer_symboles(bloc) < 0) return ECHEC;
    bloc[0] = 0;
    return 0;
  }
  mot* a = argument(bloc);
  if (!a) {
    imprimer_symboles(bloc);
    bloc[0] = 0;
    return 0;
  }
  const char* nom = texte_de(a);
  if (!nom) {
    message(0, M_TYPE);
    return ECHEC;
  }
  for (Objet* o = piles.obj_base; o < piles.obj_haut; ++o)
    if (o->type == OBJ_GLOBAL && o->nom && std::strcmp(o->nom, nom) == 0) {
      if (!o->donnees) {
        std::printf("%s", nom);
        message(0, M_SANS_VALEUR);
        return ECHEC;
      }
      if (!place(bloc, taille_item(o->donnees))) return PILE_PLEINE;
      pose_resultat(bloc, o->donnees);
      return 0;
    }
  std::printf("%s: ", nom);
  message(0, M_INTROUVABLE);
  return ECHEC;
}

// num systeme: seconds since the first time it was asked, to the
// microsecond while it stays below a few seconds.
int temps(mot* bloc) {
  static long debut = -1;
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  long us = t.tv_sec * 1000000L + t.tv_nsec / 1000L;
  if (debut < 0) debut = us;
  pose_reel(bloc, static_cast<float>(static_cast<double>(us - debut) / 1e6));
  return 0;
}

// exec("text") runs a text; exec(n) runs line n of the history.
int commande_exec(mot* bloc) {
  mot* a = argument(bloc);
  if (!a) return NON_TRAITE;
  Valeur v;
  if (decrire(a, &v) < 0) return ECHEC;
  // A text that failed has said so already.
  if (v.type == BLOC_CHAINE) {
    int r = executer_texte(reinterpret_cast<const char*>(v.donnees));
    bloc[0] = 0;
    return r < 0 ? ECHEC_CLOS : 0;
  }
  int r = histoire(1, bloc);
  bloc[0] = 0;
  return r < 0 ? r : 0;
}

// ali("name=value"): one more line of the alias table.
int alias(mot* bloc) {
  mot* a = argument(bloc);
  const char* t = a ? texte_de(a) : nullptr;
  if (!t || !std::strchr(t, '=')) {
    mot_imprime(0, A_ALI);
    message(0, M_VALEUR);
    return ECHEC;
  }
  Objet* o = nullptr;
  for (Objet* x = piles.obj_base; x < piles.obj_haut; ++x)
    if (x->type == A_ALI && x->env == 0) o = x;
  std::size_t ancien = o && o->donnees ? std::strlen(bloc_texte(o->donnees)) : 0;
  std::size_t lg = ancien + std::strlen(t) + 1;
  mot* b = bloc_alloue(long_chaine(lg));
  if (!b) return ECHEC;
  b[1] = BLOC_CHAINE;
  b[2] = 1;
  b[3] = 1;
  char* s = bloc_texte(b);
  if (ancien) std::memcpy(s, bloc_texte(o->donnees), ancien);
  std::strcpy(s + ancien, t);
  std::strcat(s, "\n");
  if (!o) o = objet_cree(0, A_ALI, 0, nullptr, nullptr, 0);
  if (!o) {
    bloc_libere(b);
    return ECHEC;
  }
  bloc_libere(o->donnees);
  o->donnees = b;
  bloc[0] = 0;
  return 0;
}

// vecteur(n): n zeros; remplir(n, v): n times v (0 by default). On a
// variable's assignment the variable's block is reused instead.
int vecteur(mot* bloc, bool remplir) {
  mot* a = argument(bloc);
  Valeur v;
  mot m;
  if (!a || decrire(a, &v) < 0 || v.type != BLOC_REEL || v.n < 1 || !reel_entier(reels(v.donnees)[0], &m, 1)) {
    mot_imprime(0, remplir ? A_REMPLIR : A_VECTEUR);
    message(0, M_VALEUR);
    return ECHEC;
  }
  float x = remplir && v.n > 1 ? reels(v.donnees)[1] : 0.0f;
  if (m > piles.eva_limite - bloc - 4) return PILE_PLEINE;
  reel* r = reels(bloc + 4);
  for (long k = 0; k < m; ++k) r[k] = x;
  bloc[0] = static_cast<mot>(4 + m);
  bloc[1] = BLOC_REEL;
  bloc[2] = static_cast<mot>(m);
  bloc[3] = 1;
  piles.eva_haut = bloc + bloc[0];
  return 0;
}

int compile(mot* bloc) {
  mot* a = argument(bloc);
  pose_reel(bloc, static_cast<float>(compiler_noms(a)));
  return 0;
}
}  // namespace

int instruction(mot* bloc, int ord) {
  switch (ord) {
    case A_RETOUR: return retour(bloc);
    case A_IMPRIME: return imprime(bloc);
    case A_PAS: return commande_pas(bloc);
    case A_DEMANDE: return demande(bloc);
    case A_VAR: return commande_var(bloc);
    case A_LIER: pose_reel(bloc, static_cast<float>(lier_tout())); return 0;
    case A_SYSTEME: return systeme(bloc);
    case A_EDI:
      if (!argument(bloc)) {
        option_debug(nullptr, 0, -1, -1, 0, 0, 0, 0);
        bloc[0] = 0;
        return 0;
      }
      return affiche(bloc);
    case A_AFFICHE: return affiche(bloc);
    case A_NUM:
      if (bloc[2] == 2 && bloc[4 + bloc[4] + 1] == 0 && bloc[4 + bloc[4] + 2] == A_SYSTEME) return temps(bloc);
      return NON_TRAITE;
    case A_COM: return seul(bloc) ? compile(bloc) : NON_TRAITE;
    case A_AIDE_MOT: {
      mot* e = element(bloc);
      MotCle* m = bloc[2] > 1 ? mot_entree(e[e[0] + 1], e[e[0] + 2]) : nullptr;
      aide_mot(m);
      bloc[0] = 0;
      return 0;
    }
    case A_EXEC: return seul(bloc) ? commande_exec(bloc) : NON_TRAITE;
    case A_MES: {
      int r = messages_utilisateur(bloc, piles.eva_limite);
      return r > 0 ? 0 : r;
    }
    case A_DEBUG: return commande_debug(bloc, true);
    case A_NODEBUG: return commande_debug(bloc, false);
    case A_SOR: return commande_sor(bloc);
    case A_QUITTER:
      std::fflush(stdout);
      std::exit(0);
    case A_HIS: {
      int r = histoire(0, bloc);
      bloc[0] = 0;
      return r < 0 ? r : 0;
    }
    case A_ALI: return alias(bloc);
    case A_VECTEUR:
    case A_REMPLIR: return seul(bloc) ? vecteur(bloc, ord == A_REMPLIR) : NON_TRAITE;
  }
  return NON_TRAITE;
}

int executer_texte(const char* texte) { return execute_ligne(texte); }

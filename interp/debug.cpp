// Debug options, the step mode with its breakpoints, and the guard of the
// machine stack.
#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "interp/interne.h"

Debug debug;

void interp_init() {
  char ici;
  interp.pile_c_base = &ici;
  interp.raccourcis = std::getenv("ORVANE_LENT") == nullptr;
  rlimit r{};
  long taille = 8L << 20;
  if (getrlimit(RLIMIT_STACK, &r) == 0 && r.rlim_cur != RLIM_INFINITY) taille = static_cast<long>(r.rlim_cur);
  if (taille > (256L << 20)) taille = 256L << 20;
  // A margin for what runs below the last check: printing, the compiler,
  // the system's own calls.
  interp.pile_c_budget = taille - (taille > (4L << 20) ? (1L << 20) : taille / 4);
  if (debug.drapeau == 0 && dem.debug) debug.drapeau = 1;
  // Declarations whose value is an expression run through the engine.
  lang.executer = [](Objet* ligne) -> mot* {
    mot* pile = piles.eva_haut;
    if (!ligne || !ligne->code || executer(ligne->code, pile) < 0) return nullptr;
    if (pile[0] == 0) ecrit_nil(pile);
    if (pile[0] < 0 && copie_valeur(pile, piles.eva_limite) < 0) return nullptr;
    return pile;
  };
}

void debug_applique() {
  lang.liste_passes = debug_option(0, A_COM);
  lang.liste_lien = debug_option(0, A_LIER);
}

bool debug_option(int env, int ordinal) {
  if (!debug.drapeau) return false;
  for (int k = 0; k < debug.n; ++k)
    if (debug.paires[k][0] == env && debug.paires[k][1] == ordinal) return true;
  return false;
}

int option_debug(const char* texte, int sens, int env, int ordinal, int n, float a, float b, float c) {
  if (env < 0) {
    // The debug list itself: the flag, then the options by name.
    std::printf("debug %d:", debug.drapeau);
    for (int k = 0; k < debug.n; ++k)
      if (const char* nom = mot_nom(debug.paires[k][0], debug.paires[k][1])) std::printf(" %s", nom);
    std::putchar('\n');
    return 0;
  }
  if (!debug_option(env, ordinal)) return 0;
  if (debug.drapeau < 0) {
    // A negative flag stops once at a pause, errors not stopping it.
    debug.drapeau = 0;
    mot garde = etat_a(A_CONT);
    Objet* fonction_pas = lang.fonction_pas;
    if (etats[0]) etats[0][A_CONT] = 0;
    lang.fonction_pas = interp.fonction;
    shell(0, 79, piles.eva_haut, 1);
    lang.fonction_pas = fonction_pas;
    if (etats[0]) etats[0][A_CONT] = garde;
  }
  if (ordinal == A_FONC && env == 0) {
    std::printf("%s\n", nom_fonction(interp.fonction));
    return 0;
  }
  if (sens < 0) std::printf("[%s ", texte ? texte : "");
  else if (sens > 0) std::printf("%s ->", texte ? texte : "");
  const float x[3] = {a, b, c};
  for (int k = 0; k < n && k < 3; ++k) std::printf(" %f", static_cast<double>(x[k]));
  if (sens < 0) std::putchar(']');
  if (sens != 0) std::putchar('\n');
  return 1;
}

namespace {
// The source text of a function or of the line being run.
const char* texte_source(const Objet* f) {
  if (!f || !f->donnees || f->donnees[0] <= 4) return nullptr;
  mot tag = f->donnees[1];
  if (tag != BLOC_CHAINE && tag != BLOC_FONCTION && tag != BLOC_LIGNE) return nullptr;
  return reinterpret_cast<const char*>(f->donnees + 4);
}

void imprime_ligne_source(int ligne) {
  const Objet* f = interp.fonction ? interp.fonction : interp.source;
  if (f) {
    lister_ligne(f, ligne);
    return;
  }
  std::printf("%s %d: ", nom_fonction(f), ligne);
  if (const char* t = texte_source(f)) {
    for (int l = 1; l < ligne && *t; ++t)
      if (*t == '\n') ++l;
    while (*t && *t != '\n') std::putchar(*t++);
  }
  std::putchar('\n');
}

bool est_arret(int ligne) {
  for (int k = 0; k < debug.nb_arrets; ++k)
    if (debug.arrets[k] == ligne) return true;
  return false;
}

// Only statements stop: not their separators, marks and jumps.
bool est_instruction(const mot* p) {
  if (p[0] == IT_OP) return p[1] == '(' || p[1] == '[' || p[1] == OP_BOUCLE;
  if (p[0] == IT_MOT) return true;
  return p[0] > 0 && p[1] != IT_NOM && p[1] != IT_POUR;
}
}  // namespace

int pas_a_pas(const mot* code, mot* p) {
  if (!est_instruction(p)) return 0;
  if (debug_option(0, A_EDI)) {
    imprime_ligne_source(interp.ligne);
    return 0;
  }
  if (debug.nb_arrets && !est_arret(interp.ligne)) return 0;
  imprime_ligne_source(interp.ligne);
  if (debug_option(0, A_PAS)) {
    lister_item(code, p);
    std::putchar('\n');
  }
  etats[0][A_PAS] = 2;
  // Lines typed at the pause see the running function's variables.
  Objet* fonction_pas = lang.fonction_pas;
  lang.fonction_pas = interp.fonction;
  int r;
  do {
    r = shell(0, 79, piles.eva_haut, 0);
  } while (r <= 0 && !reprise_demandee);
  lang.fonction_pas = fonction_pas;
  if (etats[0][A_PAS] == 2) etats[0][A_PAS] = 1;
  return reprise_demandee ? ECHEC : 0;
}

// Phrases that begin with an object type: alone, or with the clauses that
// say its kind, number or name, they create (or replace) the object; with
// any other keyword they read or write its attributes. And the keywords that
// are values of the configuration.
#include <cstring>

#include "core/message.h"
#include "interp/commande_interne.h"
#include "startup/startup.h"

namespace {
// Clauses that generic creation reads: the type, the kinds of volume, f4,
// and the number and name clauses. After the first element a clause creates
// only when it carries its value (`vol nom("tete")`, `vol(1) b118(2)`):
// without one it is a read (`vol(1) nom`, `vol(1) b117`), which must leave
// the object as it is.
// A field (b122) has no transformations: its kind, b34 to b37 (the axis it
// swirls about), is a creation clause too, as `cha(1) rotz`.
constexpr int B_CHAMP = 122, B_ROTA = 34, B_ROTZ = 37;

bool clause_de_creation(mot* e, bool premier, bool champ) {
  if (champ && e[1] == 1 && e[2] >= B_ROTA && e[2] <= B_ROTZ && !argument(e)) return true;
  if (e[1] == 0) return (e[2] == A_NUM || e[2] == A_NOM) && argument(e);
  if (e[1] != 1) return false;
  switch (e[2]) {
    case B_SORTE_14: case B_SORTE_117: case B_SORTE_118: case B_SORTE_133: case B_F4:
      return premier || argument(e);
  }
  return premier;
}
}  // namespace

int creation(mot* bloc, mot* valeur, const mot* limite) {
  // vol(1) rotx(30), vol(1) som = ..., vol(1) cube(2): the keyword that acts
  // takes the phrase.
  mot* e = premier_element(bloc);
  const bool champ = e[1] == 1 && e[2] == B_CHAMP;
  if (!champ)
    if (Gestionnaire g = gestionnaire_suite(bloc)) return g(bloc, valeur, limite);
  bool cree = valeur == nullptr;
  for (mot k = 0; k < bloc[2] && cree; ++k, e = element_suivant(e)) cree = clause_de_creation(e, k == 0, champ);
  if (!cree) return attribut(bloc, valeur, limite);
  int r = objet_cree_phrase(bloc);
  if (r == POUR_ATTRIBUT) return attribut(bloc, valeur, limite);
  if (r >= 0) bloc[0] = 0;  // creation leaves no value
  return r;
}

// The value of a configuration keyword: its current values, which an
// argument or an assigned value overwrites (the first min(n, declared)
// floats; the rest cleared). The result has the declared size.
int valeur_cle(mot* bloc, mot* valeur, const mot* limite) {
  mot* e = premier_element(bloc);
  int nv = 0;
  reel* v = mot_valeur(e[1], e[2], &nv);
  if (!v) return -1;
  const mot* source = valeur ? valeur : argument(e);
  if (source && source[0] > 0 && source[1] == BLOC_REEL) {
    long n = source[0] - 4;
    const reel* x = reels(source + 4);
    for (int k = 0; k < nv; ++k) v[k] = k < n ? x[k] : 0.f;
  } else if (source && source[0] == BLOC_REEL) {  // a scalar pair
    for (int k = 0; k < nv; ++k) v[k] = k == 0 ? lit_reel(source + 1) : 0.f;
  }
  if (bloc + 4 + nv >= limite) return PILE_PLEINE;
  // The values are read before the header overwrites the element.
  std::memmove(bloc + 4, v, sizeof(float) * nv);
  bloc[0] = 4 + nv;
  bloc[1] = BLOC_REEL;
  bloc[2] = nv;
  bloc[3] = 1;
  return 0;
}

// Alone, a configuration value; on a selected object, an attribute.
int configuration_seul(mot* bloc, mot* valeur, const mot* limite) {
  return bloc[2] == 1 ? valeur_cle(bloc, valeur, limite) : attribut(bloc, valeur, limite);
}

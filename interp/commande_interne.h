// Private to the command dispatch: the handler signature, the walk over a
// phrase's elements, and the handlers the table names.
#pragma once
#include "core/bloc.h"
#include "core/objet.h"
#include "geom/geom.h"

// A handler gets the phrase on the evaluation stack, the value of an
// assignment `phrase = v` (null for a read), and the stack limit. It writes
// its value over the phrase (or sets word 0 to 0 for none) and returns < 0
// on failure (-12: stack full), 0 when done, > 0 when not handled.
using Gestionnaire = int (*)(mot* bloc, mot* valeur, const mot* limite);

// Elements of a phrase: [length, env, ordinal, value...].
inline mot* premier_element(mot* bloc) { return bloc + 4; }
inline mot* element_suivant(mot* e) { return e + e[0]; }
inline mot* argument(mot* e) { return e[0] > 3 ? e + 3 : nullptr; }

// Ordinals of list "b" with a meaning in the dispatch.
// (The geometry's, B_FAC, B_SOMMET, B_SOM, B_NORMALE..., come with its header.)
constexpr int B_IMA = 28, B_BRO = 120, B_ALP = 152, B_TAB = 160, B_NEU = 162, B_SUBST = 65, B_PARAM = 92,
              B_DYN = 150;
constexpr int A_OUI = 4, A_NON = 5, A_NOMMER = 58, A_DETRUIRE = 79, A_POIDS = 112, A_ECRIRE = 33;

int attribut(mot* bloc, mot* valeur, const mot* limite);
int valeur_cle(mot* bloc, mot* valeur, const mot* limite);
int non_implemente(mot* bloc, mot* valeur, const mot* limite);
int creation(mot* bloc, mot* valeur, const mot* limite);
int interne(mot* bloc, mot* valeur, const mot* limite);
int listes_oui_non(mot* bloc, mot* valeur, const mot* limite);
int nommer(mot* bloc, mot* valeur, const mot* limite);
int detruire(mot* bloc, mot* valeur, const mot* limite);
int configuration_seul(mot* bloc, mot* valeur, const mot* limite);
// The handler of the first keyword after a phrase's first element that has
// one of its own (written), a transformation before any other; null when
// none has.
Gestionnaire gestionnaire_suite(mot* bloc);

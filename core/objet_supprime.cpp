// Deletion of objects, each type releasing what it owns.
#include <cstring>

#include "core/interne.h"

namespace {
inline void libere_nom(Objet* o) { bloc_libere_force(reinterpret_cast<mot*>(o->nom)); }
}  // namespace

void objet_supprime(Objet* o) {
  if (!o) return;
  switch (o->type) {
    case 0:
    case OBJ_MARQUE1:
    case OBJ_MARQUE2:
      break;
    case OBJ_LOCAL:
    case OBJ_GLOBAL:
    case OBJ_TRANSITOIRE:
    case OBJ_LIGNE:
    case A_FONC:
    case A_STATIQUE:
      // Values and texts are flat: no walk of what they hold.
      libere_nom(o);
      bloc_libere_force(o->donnees);
      if (o->type == A_FONC) code_libere(o->code);
      else bloc_libere_force(o->code);
      if (o->type == A_FONC) objet_supprime_ss(OBJ_STATIQUE, 0, o->numero);  // its statics
      break;
    case OBJ_ALIAS:
    case OBJ_REFERENCE:
    case OBJ_REF_LOCAL:
      // donnees points to another object, which is not ours to delete.
      libere_nom(o);
      bloc_libere_force(o->code);
      break;
    default:
      libere_nom(o);
      bloc_supprime(o->donnees);  // recursive: sub-objects go too
      bloc_libere_force(o->code);
      attributs_bougent();
  }
  o->nom = nullptr;
  o->donnees = o->code = nullptr;
  o->marque = 0;
  o->type = 0;
  entree_liberee(o);
}

void objet_supprime_type(int env, int type) {
  for (Objet* o = objets_debut(); o < objets_fin(); ++o)
    if (o->type == type && o->env == env) objet_supprime(o);
}

void objet_supprime_num(int type, int numero) {
  for (Objet* o = objets_debut(); o < objets_fin(); ++o)
    if (o->type == type && o->numero == numero) objet_supprime(o);
}

void objet_supprime_ss(int type, int sous_type, int numero) {
  for (Objet* o = objets_debut(); o < objets_fin(); ++o)
    if (o->type == type && o->sous_type == sous_type && o->numero == numero) objet_supprime(o);
}

void objet_supprime_sel(int env, int type, int numero, const char* nom) {
  for (Objet* o = objets_debut(); o < objets_fin(); ++o) {
    if (o->type != type || o->env != env) continue;
    bool choisi = numero ? o->numero == numero : (nom && o->nom && std::strcmp(o->nom, nom) == 0);
    if (choisi) objet_supprime(o);
  }
}

void objets_vide() {
  for (Objet* o = objets_debut(); o < objets_fin(); ++o) objet_supprime(o);
  piles.obj_haut = piles.obj_base;
  table_objets.libre = 0;
}

// Stand-ins for the two searches of the object table that the compiler
// calls and that the object branch has not delivered yet; they go when it
// lands. Linear, as the real ones are.
#include <cstring>

#include "core/objet.h"

Objet* objet_trouve(int type, int sous_type, int numero, const char* nom) {
  for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o) {
    if (o->type != type || (sous_type && o->sous_type != sous_type)) continue;
    bool nom_ok = nom && *nom && o->nom && std::strcmp(o->nom, nom) == 0;
    if (nom && *nom && numero ? nom_ok && o->numero == numero : nom && *nom ? nom_ok : o->numero == numero)
      return o;
  }
  return nullptr;
}

Objet* fonction_trouve(const char* nom) {
  for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o)
    if (o->type == 6 && o->sous_type == 0 && o->nom && std::strcmp(o->nom, nom) == 0) return o;
  return nullptr;
}

#include "core/objet.h"

#include <cstring>

#include "core/message.h"

namespace {
char* copie_nom(const char* nom) {
  std::size_t n = std::strlen(nom) + 1;
  // A name is a bare run of characters: one allocation counted like a Bloc.
  mot* b = bloc_alloue(static_cast<mot>((n + 3) / 4));
  if (!b) return nullptr;
  std::memcpy(b, nom, n);
  return reinterpret_cast<char*>(b);
}

Objet* entree_libre() {
  for (Objet* o = piles.obj_base; o < piles.obj_haut; ++o)
    if (o->type == 0) return o;
  if (piles.obj_haut >= piles.obj_fin) {
    message(0, 15);
    return nullptr;
  }
  return piles.obj_haut++;
}
}  // namespace

Objet* objet_cree(int env, int type, int sous_type, const mot* donnees, const char* nom, int numero) {
  Objet* o = entree_libre();
  if (!o) return nullptr;
  *o = Objet{};
  o->env = static_cast<std::int16_t>(env);
  o->type = static_cast<std::int16_t>(type);
  o->sous_type = static_cast<std::uint16_t>(sous_type);
  o->numero = numero;
  if (donnees && donnees[0] != 0) {
    mot n = donnees[0] < 0 ? 2 : donnees[0];
    o->donnees = bloc_alloue(n);
    if (o->donnees) bloc_copie(o->donnees, donnees);
  }
  if (nom && *nom) {
    o->nom = copie_nom(nom);
    if (!o->nom) return nullptr;
  }
  return o;
}

Objet* objet_duplique(const Objet* o) {
  mot* d = o->donnees ? bloc_duplique(o->donnees) : nullptr;
  if (o->donnees && !d) return nullptr;
  Objet* c = objet_cree(o->env, o->type, o->sous_type, nullptr, o->nom, o->numero);
  if (!c) {
    bloc_supprime(d);
    return nullptr;
  }
  c->donnees = d;
  return c;
}

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
    case 6:
    case 45:
      bloc_libere_force(reinterpret_cast<mot*>(o->nom));
      bloc_libere_force(o->donnees);
      bloc_libere_force(o->code);
      if (o->type == 6)
        for (Objet* s = piles.obj_base; s < piles.obj_haut; ++s)
          if (s->type == OBJ_STATIQUE && s->sous_type == 0 && s->numero == o->numero)
            objet_supprime(s);
      break;
    default:
      bloc_libere_force(reinterpret_cast<mot*>(o->nom));
      bloc_supprime(o->donnees);
      bloc_libere_force(o->code);
  }
  o->nom = nullptr;
  o->donnees = o->code = nullptr;
  o->marque = 0;
  o->type = 0;
}

// The table itself: taking an entry, creating and duplicating objects.
#include "core/objet.h"

#include <cstring>

#include "core/interne.h"
#include "core/message.h"

Objet* objet_courant = nullptr;
Cadre cadre;
TableObjets table_objets;

namespace {
// A name is a bare run of characters, allocated like a Bloc.
char* copie_nom(const char* nom) {
  std::size_t n = std::strlen(nom) + 1;
  mot* b = bloc_alloue(static_cast<mot>((n + 3) / 4));
  if (!b) return nullptr;
  std::memcpy(b, nom, n);
  return reinterpret_cast<char*>(b);
}

// First free entry from the start, else the one at the high-water mark.
Objet* entree_libre() {
  long taken = piles.obj_haut - piles.obj_base;
  long i = table_objets.libre < taken ? table_objets.libre : taken;
  for (Objet* o = piles.obj_base + i; o < piles.obj_haut; ++o)
    if (o->type == 0) {
      table_objets.libre = o - piles.obj_base + 1;
      return o;
    }
  if (piles.obj_haut >= piles.obj_fin) {
    table_objets.libre = taken;
    message(0, MES_TABLE_PLEINE);
    return nullptr;
  }
  table_objets.libre = taken + 1;
  return piles.obj_haut++;
}
}  // namespace

void entree_liberee(const Objet* o) {
  long i = o - piles.obj_base;
  if (i >= 0 && o < piles.obj_haut && i < table_objets.libre) table_objets.libre = i;
}

Objet* objet_cree(int env, int type, int sous_type, const mot* donnees, const char* nom, int numero) {
  mot* d = nullptr;
  if (donnees && donnees[0] != 0) {
    d = bloc_alloue(donnees[0] < 0 ? 2 : donnees[0]);
    if (!d) return nullptr;
    bloc_copie(d, donnees);
  }
  Objet* o = entree_libre();
  if (!o) {
    bloc_libere_force(d);
    return nullptr;
  }
  *o = Objet{};
  o->env = static_cast<std::int16_t>(env);
  o->type = static_cast<std::int16_t>(type);
  o->sous_type = static_cast<std::uint16_t>(sous_type);
  o->numero = numero;
  o->donnees = d;
  if (nom && *nom) {
    // On failure the entry stays taken, as a nameless object.
    o->nom = copie_nom(nom);
    if (!o->nom) return nullptr;
    // The name counts twice in the allocation counter, and the memory
    // report shows the counter as it stands.
    ++memoire.compteur;
  }
  return o;
}

Objet* objet_cree_arg(int env, int type, mot* args, int i) {
  if (!args || i < 1 || i > args[2])
    return objet_cree(env, type, 0, nullptr, nullptr, numero_max(env, type) + 1);
  Designation d = designation(args, i);
  mot n;
  if (!d.ok && d.tag == BLOC_REEL) entier_de(d.reel, &n, -NUMERO_MAX, NUMERO_MAX);
  // A list never names an object to create; checked before anything is
  // deleted, so that a bad argument loses nothing.
  if (!d.ok || d.liste || d.tag == BLOC_ENTIER) return nullptr;
  objet_supprime(objet_trouve_arg(env, type, args, i));
  return objet_cree(env, type, 0, nullptr, d.nom, d.nom ? 0 : d.numero);
}

Objet* objet_duplique(const Objet* o) {
  if (!o) return nullptr;
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

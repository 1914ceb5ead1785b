// Arguments of the image commands: numbers and names out of a phrase
// element's value, and values written in place of the phrase.
#include <cstring>

#include "core/message.h"
#include "image/commande.h"
#include "interp/interp.h"
#include "startup/startup.h"

namespace {
void ajoute_nombres(const mot* v, Args* a) {
  if (v[1] == BLOC_REEL) {
    const reel* x = reels(v + 4);
    a->x.insert(a->x.end(), x, x + (v[0] - 4));
  } else {
    for (mot k = 4; k < v[0]; ++k) a->x.push_back(static_cast<float>(v[k]));
  }
}
}  // namespace

bool lit_args(const mot* e, Args* a) { return lit_valeur(e[0] > 3 ? e + 3 : nullptr, a); }

bool lit_valeur(const mot* v, Args* a) {
  a->x.clear();
  a->nom.clear();
  a->present = v != nullptr;
  if (!v) return true;
  // A scalar stands as a pair: the tag, then the value.
  if (v[0] == BLOC_REEL) {
    a->x.push_back(lit_reel(v + 1));
    return true;
  }
  if (v[0] == BLOC_ENTIER) {
    a->x.push_back(static_cast<float>(v[1]));
    return true;
  }
  if (v[0] < 4) return false;
  switch (v[1]) {
    case BLOC_REEL:
    case BLOC_ENTIER: ajoute_nombres(v, a); return true;
    case BLOC_CHAINE: a->nom = bloc_texte(const_cast<mot*>(v)); return true;
    case BLOC_LISTE:
      // A name and numbers: ("vue.png", 1, 20).
      for (const mot *c = v + 4, *fin = v + v[0]; c < fin && c[0] >= 4; c += c[0]) {
        if (c[1] == BLOC_CHAINE && a->nom.empty()) a->nom = bloc_texte(const_cast<mot*>(c));
        else if (c[1] == BLOC_REEL || c[1] == BLOC_ENTIER) ajoute_nombres(c, a);
        else return false;
      }
      return true;
  }
  return false;
}

int arg_mauvais(const mot* e) {
  const char* nom = mot_nom(e[1], e[2]);
  std::printf("%s: ", nom ? nom : "?");
  message(0, MES_IMA_VALEUR);
  return -1;
}


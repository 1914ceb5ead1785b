// Commands of list "a" that work on keywords and objects: the lists of
// keywords on and off, naming and numbering objects, deleting them.
#include <cstdio>
#include <cstring>
#include <string>

#include "core/message.h"
#include "interp/commande_interne.h"
#include "interp/fonctions_interne.h"
#include "startup/startup.h"

namespace {
// The first type keyword of the phrase after its first element.
mot* element_type(mot* bloc) {
  mot* e = premier_element(bloc);
  for (mot k = 1; k < bloc[2]; ++k) {
    e = element_suivant(e);
    if (e[1] == 1) return e;
  }
  return nullptr;
}

long nombre_ids(const mot* a) {
  if (!a) return 0;
  if (a[1] == BLOC_CHAINE) return 1;
  return a[2];
}

// Alphabetical list of the keywords in that state, at the page width.
void liste_etat(int etat) {
  int n;
  reel* page = mot_valeur(0, 36, &n);
  int largeur = page && n > 0 && page[0] > 0 ? entier_sature(page[0]) : 80;
  for (int env = 0; env < vocab.nb_env; ++env) {
    message(0, 1);
    const TableMots& t = vocab.tables[env];
    int col = 0;
    for (int i = 0; i < t.nb; ++i) {
      int o = t.index[i];
      const char* nom = t.mots[o].noms;
      if (!*nom || *nom == '?' || (etat ? t.etats[o] < 1 : t.etats[o] != 0)) continue;
      int lg = static_cast<int>(std::strlen(nom)) + 1;
      if (col > 0 && col + lg > largeur) {
        std::putchar('\n');
        col = 0;
      }
      std::printf("%s ", nom);
      col += lg;
    }
    if (col > 0) std::putchar('\n');
  }
}
}  // namespace

// oui, non: alone they list the keywords that are on (or off); followed by
// keywords they switch those on (or off).
int listes_oui_non(mot* bloc, mot*, const mot*) {
  mot* e = premier_element(bloc);
  int etat = e[2] == A_OUI ? 1 : 0;
  if (bloc[2] == 1) {
    liste_etat(etat);
  } else {
    for (mot k = 1; k < bloc[2]; ++k) {
      e = element_suivant(e);
      if (mot_entree(e[1], e[2])) vocab.tables[e[1]].etats[e[2]] = etat;
    }
  }
  bloc[0] = 0;
  return 0;
}

// nommer vol(1) nom("tete") num(7): renames and renumbers the object.
// nom vol(1) or num vol("tete"): gives the name or the number.
int nommer(mot* bloc, mot*, const mot* limite) {
  mot* e = premier_element(bloc);
  mot* t = element_type(bloc);
  if (!t || !argument(t)) {
    mot_imprime(0, e[2]);
    message(0, 14);
    return -1;
  }
  Objet* o = objet_trouve_arg(1, t[2], argument(t), 1);
  if (!o) {
    mot_imprime(t[1], t[2]);
    message(0, 9);
    return -1;
  }
  if (e[2] == A_NUM) return resultat_scalaire(bloc, limite, static_cast<float>(o->numero));
  if (e[2] == A_NOM) {
    const char* n = o->nom ? o->nom : "";
    return resultat_chaine(bloc, limite, n, std::strlen(n));
  }
  for (mot k = 1; k < bloc[2]; ++k) {
    e = element_suivant(e);
    mot* a = argument(e);
    if (e[1] != 0 || !a) continue;
    if (e[2] == A_NUM && a[0] > 0 && a[1] == BLOC_REEL && a[0] > 4) {
      if (entier_de(lit_reel(a + 4), &o->numero, -NUMERO_MAX, NUMERO_MAX) < 0) return -1;
    } else if (e[2] == A_NOM && a[0] > 0 && a[1] == BLOC_CHAINE) {
      const char* nom = bloc_texte(a);
      std::size_t lg = std::strlen(nom) + 1;
      mot* b = bloc_alloue(static_cast<mot>((lg + 3) / 4));
      if (!b) return -1;
      std::memcpy(b, nom, lg);
      bloc_libere_force(reinterpret_cast<mot*>(o->nom));
      o->nom = reinterpret_cast<char*>(b);
    }
  }
  bloc[0] = 0;
  return 0;
}

// detruire vol(1,2): those objects; detruire vol: every volume.
int detruire(mot* bloc, mot*, const mot*) {
  mot* e = premier_element(bloc);
  for (mot k = 1; k < bloc[2]; ++k) {
    e = element_suivant(e);
    if (e[1] != 1) continue;
    mot* a = argument(e);
    if (!a) {
      objet_supprime_type(1, e[2]);
      continue;
    }
    for (long i = nombre_ids(a); i >= 1; --i) objet_supprime(objet_trouve_arg(1, e[2], a, static_cast<int>(i)));
  }
  bloc[0] = 0;
  return 0;
}

// Link: the names of a code block become pointers. Slots get their number,
// statics and globals their Objet (created with the symbol's value when
// missing), calls their function or, when none bears the name yet, a
// pointer to the name for the call to resolve.
#include <cstdint>
#include <cstdio>
#include <utility>

#include "lang/interne.h"

namespace {
mot* premiere_entree(mot* code) { return code + code[0] + 1; }

mot* entree(mot* code, mot sorte, mot index) {
  for (mot* e = premiere_entree(code); e[0] > 0; e += e[0])
    if (e[1] == sorte && e[2] == index) return e;
  return nullptr;
}

const char* nom_de(const Objet* o, char* t) { return nom_objet(o, t, TAILLE_NOM); }

// A function of the caller's file group first, then any function.
Objet* fonction_par_nom(const Objet* appelant, const char* nom) {
  if (appelant && appelant->type == TYPE_FONCTION && (appelant->f2 || appelant->f3)) {
    char t[TAILLE_NOM];
    for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o)
      if (o->type == TYPE_FONCTION && o->f2 == appelant->f2 && o->f3 == appelant->f3 &&
          std::strcmp(nom_de(o, t), nom) == 0)
        return o;
  }
  return fonction_trouve(nom);
}

// The value block of a symbol; a static carries two, the second one is for
// its Objet.
const mot* valeur_symbole(mot* e) {
  mot* v = sym_valeur(e);
  if (!v) return nullptr;
  if (e[1] == SYM_STATIQUE && e + e[0] > v + taille_item(v)) return v + taille_item(v);
  return v;
}

int lie_variable(Objet* f, mot* e) {
  mot sorte = e[1];
  const char* nom = sym_nom(e);
  int numero = sorte == SYM_STATIQUE && f ? f->numero : 0;
  bool premier = e[3] == 0;
  const mot* valeur = valeur_symbole(e);
  Objet* v = objet_trouve(sorte, 0, numero, nom);
  if (!v) {
    v = objet_cree(0, sorte, 0, valeur, nom, numero);
    if (!v) return -1;
  } else if (premier && valeur) {
    mot n = taille_item(valeur);
    mot* d = bloc_alloue(n);
    if (!d) return -1;
    bloc_copie(d, valeur);
    bloc_libere_force(v->donnees);
    v->donnees = d;
  }
  e[3] = ptr_vers_mot(v);
  return 0;
}

struct Ancien {
  mot ptr;
  mot* e;
};

int lie_symboles(Objet* f, mot* code, int* ligne) {
  // Entries first: each names its object once, and an item already linked
  // finds its new pointer through the old one.
  std::vector<Ancien> anciens;
  for (mot* e = premiere_entree(code); e[0] > 0; e += e[0]) {
    if (e[1] == SYM_GLOBAL || e[1] == SYM_STATIQUE) {
      mot avant = e[3];
      if (lie_variable(f, e) < 0) return -1;
      if (avant) anciens.push_back({avant, e});
    } else if (e[1] == SYM_APPEL) {
      mot avant = e[3];
      e[3] = ptr_vers_mot(fonction_par_nom(f, sym_nom(e)));
      if (avant) anciens.push_back({avant, e});
    }
  }
  auto retrouve = [&](mot ptr, mot sorte) -> mot* {
    for (const Ancien& a : anciens)
      if (a.ptr == ptr && (a.e[1] == sorte)) return a.e;
    return nullptr;
  };
  const mot* fin = code + code[0];
  for (mot* p = code + 4; p < fin && p[0] != 0; p += taille_item(p)) {
    switch (p[0]) {
      case CEL_LIGNE: *ligne = p[1]; continue;
      case CEL_LOCAL:
      case CEL_REF_LOCAL:
        if (p[1] < 0) p[1] = -p[1];
        continue;
      case CEL_STATIQUE: case CEL_REF_STATIQUE: case CEL_GLOBAL: case CEL_REF_GLOBAL: {
        mot sorte = p[0] == CEL_STATIQUE || p[0] == CEL_REF_STATIQUE ? SYM_STATIQUE : SYM_GLOBAL;
        mot* e = p[1] <= 0 ? entree(code, sorte, p[1]) : retrouve(p[1], sorte);
        if (!e && p[1] <= 0) {
          std::printf("%d: ", p[1]);
          message(0, M_SYMBOLE);
          return -1;
        }
        if (e) p[1] = e[3];
        continue;
      }
    }
    if (p[0] <= 0) continue;
    mot* e = nullptr;
    if (p[1] == BLOC_APPEL && p[2] < 1) {
      e = entree(code, SYM_APPEL, p[2]);
      if (!e) {
        std::printf("%d: ", p[2]);
        message(0, M_FONCTION);
        return -1;
      }
    } else if (p[1] == BLOC_OBJET) {
      e = retrouve(p[2], SYM_APPEL);
    } else if (p[1] == BLOC_NOM) {
      // The name points into this block's own run: its entry is 5 words ahead.
      auto n = reinterpret_cast<std::uintptr_t>(mot_vers_ptr(p[2]));
      auto d = reinterpret_cast<std::uintptr_t>(premiere_entree(code));
      auto f = reinterpret_cast<std::uintptr_t>(code + code[0] + code[code[0]]);
      if (n >= d + 5 * sizeof(mot) && n < f) {
        mot* m = reinterpret_cast<mot*>(n) - 5;
        if (m[1] == SYM_APPEL) e = m;
      }
    } else if (p[1] == BLOC_APPEL_FORMEL) {
      if (p[2] < 0) p[2] = -p[2];
    }
    if (e) {
      p[1] = e[3] ? BLOC_OBJET : BLOC_NOM;
      p[2] = e[3] ? e[3] : ptr_vers_mot(e + 5);
    }
  }
  return 0;
}
}  // namespace

int lier(Objet* o) {
  if (!o) return -1;
  if (!o->code && compiler(o) < 0) {
    lang.lie = -1;
    return -1;
  }
  int ligne = 0;
  int r = lie_symboles(o, o->code, &ligne);
  if (r == 0) r = lier_controle(o, o->code);
  if (r < 0) {
    if (r != -2) echec_contexte(o, ligne);
    lang.lie = -1;
    return -1;
  }
  lang.lie = 1;
  if (lang.liste_lien) {
    std::fputs("LINK\n----\n", stdout);
    lister_mots(o->code);
  }
  return 0;
}

void fonctions_modifiees() { ++lang.generation; }

int lier_tout() {
  if (lang.generation_liee == lang.generation) return lang.resultat_lie;
  int r = 0;
  for (int tour = 0; tour < 2; ++tour) {
    r = 0;
    for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o)
      if (o->type == TYPE_FONCTION && lier(o) < 0) r = -1;
    if (r == 0) break;
  }
  lang.generation_liee = lang.generation;
  lang.resultat_lie = r;
  return r;
}

// Reports that name an object: the object first, then the context, and the
// numbered message last, which completes the line.
#include <cstdio>

#include "core/message.h"
#include "core/objet.h"
#include "startup/startup.h"

namespace {
// A keyword's first or last name; nothing for an ordinal the tables lack.
const char* nom_mot(int env, int ord, bool long_) {
  MotCle* m = mot_entree(env, ord);
  if (!m || !*m->noms) return nullptr;
  if (!long_) return m->noms;
  return mot_nom_long(env, ord);
}

void imprime_mot(int env, int ord) {
  if (const char* n = nom_mot(env, ord, false)) std::printf("%s ", n);
}

void imprime_valeurs(const mot* b);

// Row or element at p of a Bloc of that tag and column count.
void imprime_rangee(mot tag, mot nc, const mot* p) {
  switch (tag) {
    case BLOC_ENTIER:
    case BLOC_REEL: {
      // A strided row begins with its status word, a ragged one with its
      // length.
      mot n = nc > 0 ? nc : (nc < 0 ? -nc - 1 : p[0] - 1);
      if (nc <= 0) ++p;
      for (mot k = 0; k < n; ++k)
        if (tag == BLOC_ENTIER) std::printf("%d ", p[k]);
        else std::printf("%f ", static_cast<double>(lit_reel(p + k)));
      break;
    }
    case BLOC_CHAINE:
      std::printf("%s ", reinterpret_cast<const char*>(p));
      break;
    case BLOC_LISTE:
      imprime_valeurs(p);
      break;
  }
}

void imprime_element(mot* b, int i) {
  mot tag, nc;
  const mot* p = bloc_element(b, i, &tag, &nc);  // "%d: " and 0:66 when out of range
  if (!p) return;
  // The i-th string of a vector is a whole Bloc; a single string is its
  // characters.
  if (tag == BLOC_CHAINE && nc == 0) p += 4;
  imprime_rangee(tag, nc, p);
}

void imprime_valeurs(const mot* b) {
  if (b[0] < 4) return;
  if (b[1] == BLOC_CHAINE && b[3] != 0) {
    std::printf("%s ", reinterpret_cast<const char*>(b + 4));
    return;
  }
  for (mot i = 1; i <= b[2]; ++i) imprime_element(const_cast<mot*>(b), i);
}
}  // namespace

void objet_imprime(const Objet* o) {
  if (!o) return;
  switch (o->type) {
    case 0:
    case OBJ_TRANSITOIRE:
    case OBJ_LIGNE:
    case OBJ_MARQUE1:
    case OBJ_MARQUE2:
      return;
    case OBJ_LOCAL:
      if (const char* n = objet_nom(o)) std::printf("%s ", n);
      else std::printf("LOC%d ", o->numero < 0 ? -o->numero : o->numero);
      return;
    case OBJ_STATIQUE:
      imprime_mot(0, A_STATIQUE);
      if (o->nom) std::printf("%s ", o->nom);
      return;
    case OBJ_GLOBAL:
      imprime_mot(0, A_VAR);
      if (o->nom) std::printf("%s ", o->nom);
      return;
    case OBJ_ALIAS:
    case OBJ_REFERENCE:
    case OBJ_REF_LOCAL: {
      const Objet* cible = reinterpret_cast<const Objet*>(o->donnees);
      if (cible != o) objet_imprime(cible);
      return;
    }
  }
  // An object of a keyword type: the keyword, then its name or number.
  imprime_mot(o->env, o->type);
  if (o->nom) std::printf("%s ", o->nom);
  else std::printf("%d ", o->numero);
}

void erreur_objet(const Objet* o, int n, const char* s, mot* bloc, int i, int env, int num) {
  objet_imprime(o);
  if (n) std::printf("%d: ", n);
  if (s) std::printf("%s: ", s);
  if (bloc) {
    if (i < 1) imprime_valeurs(bloc);
    else imprime_element(bloc, i);
  }
  message(env, num);
}

void erreur_nom(const Objet* o, int env, int num, const char* texte) {
  objet_imprime(o);
  if (o) {
    if (const char* t = nom_mot(o->env, o->type, true)) std::printf(" %s", t);
    if (o->sous_type)
      if (const char* t = nom_mot(o->env, o->sous_type, true)) std::printf(" %s", t);
  }
  std::putchar(' ');
  if (env >= 0) message(env, num);
  if (texte) std::fputs(texte, stdout);
  std::fflush(stdout);
}

void erreur_nul(const Objet* o) {
  objet_imprime(o);
  message(0, MES_NUL);
}

void erreur_usage(const Objet* o) {
  objet_imprime(o);
  message(0, MES_USAGE);
}

void erreur_element(mot* bloc, int i) {
  if (bloc) imprime_element(bloc, i);
  message(0, MES_ABSENT);
}

// Calls of functions: the frame on the stack of locals, the run, the value.
//
// A frame is one record per slot, then a marker whose count is the slot
// count. An argument is not copied: its slot points at its value on the
// evaluation stack, which stays put behind the call block for the whole
// call, and the slot becomes the owner of a block of its own only when the
// callee assigns it.
#include <cstdio>
#include <cstring>

#include "interp/interne.h"
#include "interp/pur.h"

namespace {
int introuvable(const char* nom) {
  std::printf("%s: ", nom);
  message(0, M_FONCTION);
  return ECHEC;
}


const char* nom_local(int numero) {
  const char* n = nom_slot(interp.fonction, numero);
  return *n ? n : nullptr;
}

// A formal that holds a function name: the named function, or a keyword
// whose phrase takes the arguments.
int appel_formel(mot* appel, Objet** f, bool copier) {
  mot i = appel[2] < 0 ? -appel[2] : appel[2];
  if (!cadre.locaux) {
    message(0, M_TYPE);
    return ECHEC;
  }
  Objet* s = cadre.locaux + i;
  if (s->type == CADRE_REFERENCE) s = reinterpret_cast<Objet*>(s->donnees);
  const char* nom = s->donnees && s->donnees[0] > 0 && s->donnees[1] == BLOC_CHAINE ? bloc_texte(s->donnees) : nullptr;
  if (!nom) {
    message(0, M_FORMEL);
    return ECHEC;
  }
  if ((*f = fonction_trouve(nom))) return 0;
  MotCle* m = mot_cherche(nom);
  if (!m) {
    // Not a keyword: a function read from its file, or message 41.
    *f = fonction_appel(nom);
    return *f ? 0 : ECHEC;
  }
  // The arguments become the argument of the keyword's phrase.
  mot* fin = appel + appel[0];
  mot nargs = static_cast<mot>(fin - appel - 4);
  if (!place(fin, 4)) return PILE_PLEINE;
  std::memmove(appel + 7, appel + 4, static_cast<std::size_t>(nargs) * sizeof(mot));
  mot* e = appel + 4;
  e[0] = 3 + nargs;
  e[1] = m->env;
  e[2] = m->ordinal;
  appel[0] = 7 + nargs;
  appel[1] = BLOC_PHRASE;
  appel[2] = 1;
  appel[3] = 0;
  piles.eva_haut = appel + appel[0];
  int r = executer_phrase(appel);
  if (r >= 0 && copier) piles.eva_haut = appel + taille_item(appel);
  return r < 0 ? r : 1;
}
}  // namespace

namespace {
// The function of a call that is not already linked to its object: by name,
// or through a formal. 1 when a keyword's phrase ran in its place.
int fonction_de(mot* appel, Objet** f, bool copier) {
  switch (appel[1]) {
    case BLOC_OBJET:
      message(0, M_FONCTION);
      return ECHEC;
    case BLOC_NOM: {
      const char* nom = static_cast<const char*>(mot_vers_ptr(appel[2]));
      if (!nom) return introuvable("");
      *f = fonction_trouve(nom);
      if (!*f) *f = fonction_appel(nom);  // read from its file, or message 41
      return *f ? 0 : ECHEC;
    }
    case IT_FORMEL:
      return appel_formel(appel, f, copier);
  }
  message(0, M_NON_LIE);
  return ECHEC;
}
}  // namespace

int appeler_fonction(mot* appel, bool copier) {
  Objet* f = static_cast<Objet*>(mot_vers_ptr(appel[2]));
  if (__builtin_expect(appel[1] != BLOC_OBJET || !f || f->type != A_FONC, 0)) {
    int r = fonction_de(appel, &f, copier);
    if (r != 0) return r < 0 ? r : 0;
  }
  // The first call after any change of the functions links them all.
  if (__builtin_expect(lang.generation != lang.generation_liee, 0)) lier_tout();
  mot* code = f->code;
  if (__builtin_expect(!code, 0)) {
    if (lier(f) < 0) return ECHEC;
    code = f->code;
  }
  if (!code || code[1] != IT_CODE) return ECHEC;
  // A function that only computes on scalars runs on floats; when that run
  // gives up, the call runs below from its start as if it never had.
  if (copier && !(interrompu | reprise_demandee | debug.drapeau) && etat_a(A_PAS) != 1)
    if (const Pur* pu = pur_de(f)) {
      float v;
      if (place(appel, 5) && pur_appel(pu, appel, &v)) {
        ecrit_scalaire(appel, v);
        piles.eva_haut = appel + 5;
        interp.passes += 2;  // the statements of the call and the one after it
        return 0;
      }
    }
  const mot nslots = code[2], nformels = code[3];
  Objet* slots = piles.loc_haut;
  if (__builtin_expect(slots + nslots + 1 >= piles.loc_fin, 0)) {
    message(0, M_LOCALES);
    return ECHEC;
  }
  // The machine's stack running out says the same wherever it is seen: which
  // check sees it first depends on nothing the user wrote.
  if (__builtin_expect(pile_c_epuisee(), 0)) {
    message(0, M_EVALUATION);
    return ECHEC;
  }
  // Formals take the arguments (missing ones read as nil), other slots
  // start without value.
  mot* arg = appel + 4;
  mot* const fin_args = appel + appel[0];
  Objet* s = slots;
  mot i = 0;
  const mot nargs = nformels < appel[3] ? nformels : appel[3];
  for (; i < nargs; ++i, ++s) {
    s->numero = i;
    s->nom = nullptr;
    s->code = nullptr;
    s->f1 = 0;
    if (arg[0] == IT_REF_GLOBAL) {
      s->type = CADRE_REFERENCE;
      s->donnees = reinterpret_cast<mot*>(variable_de(arg));
      arg += 2;
    } else {
      s->type = OBJ_LOCAL;
      s->donnees = arg;
      arg += taille_item(arg);
    }
  }
  for (; i < nslots; ++i, ++s) {
    s->numero = i;
    s->nom = nullptr;
    s->code = nullptr;
    s->f1 = 0;
    s->type = OBJ_LOCAL;
    s->donnees = i < nformels ? bloc_nil : nullptr;
  }
  Objet* marque = slots + nslots;
  marque->numero = nslots;
  marque->type = CADRE_MARQUE;
  marque->nom = nullptr;
  marque->donnees = nullptr;
  marque->code = code;  // what this frame runs, kept while it runs
  piles.loc_haut = marque + 1;

  Objet* appelant = interp.fonction;
  const Cadre cadre_appelant = cadre;
  int ligne = interp.ligne;
  interp.fonction = f;
  cadre.locaux = slots;
  cadre.nb = nslots;
  cadre.nom_local = nom_local;
  if (__builtin_expect(debug.drapeau != 0, 0) && debug_option(0, A_FONC)) option_debug(nom_fonction(f), 1, 0, A_FONC, 0, 0, 0, 0);
  mot* res = fin_args + 1;
  fin_args[0] = 0;
  int r = executer(code, res);
  // The value must not name a slot of the frame that is going away.
  if (r >= 0 && copier && res[0] < 0) r = copie_valeur(res, piles.eva_limite);

  // After a restart from the interruption menu the records below may have
  // been reused by the line run there: nothing is released then.
  if (__builtin_expect(!reprise_demandee, 1)) {
    Objet* x = slots;
    for (mot k = nslots; k > 0; --k, ++x)
      if (x->f1 && x->type == OBJ_LOCAL) bloc_libere(x->donnees);
  }
  piles.loc_haut = slots;
  if (__builtin_expect(table_objets.codes_retenus != 0, 0)) codes_retenus_libere();
  interp.fonction = appelant;
  cadre = cadre_appelant;
  interp.ligne = ligne;
  if (r < 0) return ECHEC_CLOS;
  if (copier) {
    mot n = res[0] == 0 ? 0 : taille_item(res);
    if (n == 0) {
      ecrit_nil(appel);
      n = 4;
    } else {
      if (n == 5) {
        // A scalar, the common value: five words, forward, without a loop.
        mot a = res[0], b = res[1], c = res[2], d = res[3], e = res[4];
        appel[0] = a, appel[1] = b, appel[2] = c, appel[3] = d, appel[4] = e;
      } else {
        copie_mots(appel, res, n);
      }
    }
    piles.eva_haut = appel + n;
  }
  return 0;
}

// Values as the operators see them, variables and their blocks.
#include <cstdio>
#include <cstring>

#include "interp/interne.h"

Interp interp;
Vers vers;

namespace {
// The value of PI when no keyword table gives one.
mot pi_secours = 0x40490FDB;

mot* valeur_pi() {
  MotCle* m = mot_entree(0, A_PI);
  return m && m->nv > 0 ? m->courant + 4 : &pi_secours;
}

void nil_de(Valeur* d) {
  d->type = BLOC_NIL;
  d->n = 0;
  d->donnees = nullptr;
}
}  // namespace

const char* nom_slot(const Objet* f, int i) {
  if (!f || !f->code) return "";
  const mot* c = f->code;
  const mot* s = c + c[0] + 1;
  while (s[0] > 0) {
    mot kind = s[1];
    mot idx = kind == IT_FORMEL ? s[3] : s[2];
    if ((kind == IT_LOCAL || kind == IT_FORMEL) && (idx <= 0 ? -idx : idx) == i)
      return reinterpret_cast<const char*>(s + 5);
    s += s[0];
  }
  return "";
}

const char* nom_fonction(const Objet* f) {
  if (!f) return "";
  if (f->nom) return f->nom;
  static char nom[80];
  const mot* t = f->donnees;
  nom[0] = 0;
  if (t && t[0] > 4) {
    const char* p = reinterpret_cast<const char*>(t + 4);
    while (*p == ' ' || *p == '\t' || *p == '\n') ++p;
    int k = 0;
    while (k < 79 && !fin_de_nom(static_cast<unsigned char>(p[k]))) nom[k] = p[k], ++k;
    nom[k] = 0;
  }
  return nom;
}

const char* nom_variable(const Objet* o) {
  if (!o) return "";
  if (o->nom) return o->nom;
  if (o->type == OBJ_LOCAL && cadre.locaux && o >= cadre.locaux && o < piles.loc_haut)
    return nom_slot(interp.fonction, static_cast<int>(o - cadre.locaux));
  return "";
}

namespace {
void sans_valeur(const Objet* o) {
  std::printf("%s", nom_variable(o));
  message(0, M_SANS_VALEUR);
}
}  // namespace

Objet* variable_de(const mot* v) {
  Objet* o;
  switch (v[0]) {
    case IT_LOCAL:
    case IT_REF_LOCAL:
      if (!cadre.locaux) {
        message(0, M_TYPE);
        return nullptr;
      }
      o = cadre.locaux + v[1];
      break;
    case IT_GLOBAL:
    case IT_STATIQUE:
    case IT_REF_GLOBAL:
    case IT_REF_STATIQUE:
      o = static_cast<Objet*>(mot_vers_ptr(v[1]));
      if (!o) {
        message(0, M_TYPE);
        return nullptr;
      }
      break;
    default:
      return nullptr;
  }
  // A frame record of an @ argument stands for the variable it names.
  if (o->type == CADRE_REFERENCE) o = reinterpret_cast<Objet*>(o->donnees);
  return o;
}

int stocke(Objet* o, const mot* val) {
  mot n = taille_item(val);
  mot vide[4] = {4, BLOC_NIL, 0, 1};
  // An empty float vector is stored as nil.
  if (val[0] < 0 || (val[1] == BLOC_REEL && n == 4)) {
    if (val[0] == IT_REEL) {
      mot s[5] = {5, BLOC_REEL, 1, 1, val[1]};
      return stocke(o, s);
    }
    val = vide;
    n = 4;
  }
  mot* b = o->donnees;
  bool propre = b && b != bloc_nil && possede(o);
  if (!propre || b[0] != n) {
    mot* c = bloc_alloue(n);
    if (!c) return ECHEC;
    if (propre) bloc_libere(b);
    o->donnees = b = c;
    if (o->type == OBJ_LOCAL) o->f1 = 1;
  }
  std::memcpy(b, val, static_cast<std::size_t>(n) * sizeof(mot));
  if (b[1] == BLOC_REEL) {
    b[2] = n - 4;
    b[3] = 1;
  }
  return 0;
}

int decrire(mot* v, Valeur* d) {
  d->variable = nullptr;
  mot* b = v;
  if (v[0] < 0) {
    switch (v[0]) {
      case IT_REEL:
        d->type = BLOC_REEL;
        d->n = 1;
        d->donnees = v + 1;
        return 0;
      case IT_NIL:
        nil_de(d);
        return 0;
      case IT_PI:
        d->type = BLOC_REEL;
        d->n = 1;
        d->donnees = valeur_pi();
        return 0;
      case IT_LOCAL:
      case IT_STATIQUE:
      case IT_GLOBAL:
      case IT_REF_GLOBAL:
      case IT_REF_LOCAL:
      case IT_REF_STATIQUE: {
        Objet* o = variable_de(v);
        if (!o) return ECHEC;
        d->variable = o;
        b = o->donnees;
        // A variable without value reads as a fresh nil.
        if (!b) {
          nil_de(d);
          return 0;
        }
        break;
      }
      default:
        message(0, M_TYPE);
        return ECHEC;
    }
  }
  if (b[0] == 0) {
    nil_de(d);
    return 0;
  }
  switch (b[1]) {
    case BLOC_REEL:
      d->type = BLOC_REEL;
      d->n = (b[0] < 0 ? -b[0] : b[0]) - 4;
      d->donnees = b + 4;
      return 0;
    case BLOC_CHAINE:
      d->type = BLOC_CHAINE;
      d->donnees = b + 4;
      d->n = static_cast<long>(std::strlen(bloc_texte(b)));
      return 0;
    case BLOC_NIL:
      nil_de(d);
      return 0;
    case BLOC_LISTE:
    case VAL_VUE:
    case VAL_VUE3:
      d->type = b[1];
      d->n = b[0] - 4;
      d->donnees = b;
      return 0;
  }
  message(0, M_TYPE);
  return ECHEC;
}

int evaluer_valeur(mot* v, const mot* limite) {
  if (v[0] < 0) {
    switch (v[0]) {
      case IT_LOCAL:
      case IT_STATIQUE:
      case IT_GLOBAL: {
        Objet* o = variable_de(v);
        if (!o) return ECHEC;
        mot* b = o->donnees;
        if (!b) {
          sans_valeur(o);
          return ECHEC;
        }
        mot n = b[0] < 0 ? 2 : b[0];
        if (v + n > limite) return PILE_PLEINE;
        std::memcpy(v, b, static_cast<std::size_t>(n) * sizeof(mot));
        if (n == 2) return evaluer_valeur(v, limite);
        return 0;
      }
      case IT_PI:
        if (v + 5 > limite) return PILE_PLEINE;
        ecrit_scalaire(v, std::bit_cast<float>(mot{0x40490FDB}));
        return 0;
      case IT_REEL: {
        if (v + 5 > limite) return PILE_PLEINE;
        mot x = v[1];
        ecrit_scalaire(v, 0);
        v[4] = x;
        return 0;
      }
      case IT_NIL:
        if (v + 4 > limite) return PILE_PLEINE;
        ecrit_nil(v);
        return 0;
      case IT_REF_GLOBAL:
      case IT_REF_LOCAL:
      case IT_REF_STATIQUE:
        return 0;  // a reference is a value
      case IT_OP:
        if (v[1] > 0 && v[1] < 128) std::printf("%c: ", static_cast<char>(v[1]));
        message(0, M_OPERATEUR);
        return ECHEC;
    }
    message(0, M_TYPE);
    return ECHEC;
  }
  if (v[0] == 0) {
    if (v + 4 > limite) return PILE_PLEINE;
    ecrit_nil(v);
    return 0;
  }
  switch (v[1]) {
    case BLOC_CHAINE:
    case BLOC_REEL:
      v[3] = 1;
      return 0;
    case BLOC_PHRASE:
      return executer_phrase(v);
    case BLOC_OBJET:
    case BLOC_NOM:
    case IT_FORMEL:
      return appeler_fonction(v, true);
    case IT_APPEL:
      message(0, M_NON_LIE);
      return ECHEC;
    case VAL_VUE:
    case VAL_VUE3: {
      // Built behind the view, then moved down over it.
      mot* tmp = v + v[0];
      int r = materialiser(tmp, v, limite);
      if (r < 0) return r;
      std::memmove(v, tmp, static_cast<std::size_t>(tmp[0]) * sizeof(mot));
      return 0;
    }
    case IT_AIDE:
    case IT_BRUT_ERR:
      return evaluer_brut(v, limite);
  }
  return 0;
}

int copie_valeur(mot* v, const mot* limite) {
  if (v[0] == IT_REF_GLOBAL || v[0] == IT_REF_LOCAL || v[0] == IT_REF_STATIQUE) {
    Objet* o = variable_de(v);
    if (!o) return ECHEC;
    if (!o->donnees) {
      sans_valeur(o);
      return ECHEC;
    }
    int r = pose(v, o->donnees);
    if (r < 0) return r;
    return evaluer_valeur(v, limite);
  }
  int r = evaluer_valeur(v, limite);
  if (r < 0) return r;
  // A phrase or a call may leave a variable or a reference as its value.
  if (v[0] < 0 && v[0] != IT_NIL) return copie_valeur(v, limite);
  return r;
}

const char* texte_de(mot* v) {
  Valeur d;
  if (v[0] > 0 && v[1] == BLOC_LISTE) {
    mot* e = v + 4;
    return e[0] > 0 && e[1] == BLOC_CHAINE ? bloc_texte(e) : nullptr;
  }
  if (v[0] == 0 || decrire(v, &d) < 0 || d.type != BLOC_CHAINE) return nullptr;
  return reinterpret_cast<const char*>(d.donnees);
}

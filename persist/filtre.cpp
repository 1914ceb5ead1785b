// What a save keeps of an object, and the checks a Bloc read from a file
// passes before it may enter the table.
//
// An attribute is a form A phrase [L, validity, H, n, n pairs, tail] with
// H = 4 + 2n; the tail, when L > H, is one Bloc [T, tag, nl, nc, ...].
#include <cstdio>

#include "persist/interne.h"
#include "startup/startup.h"

namespace {
bool une_paire(const mot* a, int e, int o) { return a[3] == 1 && a[4] == e && a[5] == o; }

bool dynamique(const mot* a) {
  if (a[3] != 1 || a[4] != 1) return false;
  switch (a[5]) {
    case 89: case 111: case 112: case 113: case 151: return true;
  }
  return false;
}

bool entete_sain(const mot* a) {
  return a[0] >= 6 && a[0] <= MOTS_MAX && a[3] >= 1 && a[3] <= 6 && a[2] == 4 + 2 * a[3] && a[2] <= a[0];
}
}  // namespace

bool tail_pointeurs(const mot* a) {
  if (a[0] < a[2] + 4) return false;
  mot t = a[a[2] + 1];
  return t == BLOC_BLOCS || t == BLOC_OBJETS || t == BLOC_OBJET || t == CELLULE_OBJET || t == BLOC_LIGNE;
}

void cle_imprime(const mot* a) {
  for (mot k = 0; k < a[3] && k < 6; ++k) {
    const char* n = mot_nom(a[4 + 2 * k], a[5 + 2 * k] < 0 ? -a[5 + 2 * k] : a[5 + 2 * k]);
    std::printf("%s%s ", a[5 + 2 * k] < 0 ? "-" : "", n ? n : "?");
  }
}

std::vector<const mot*> attributs_gardes(const Objet* o, const OptionsFichier& opt, int forme, bool scene) {
  std::vector<const mot*> garde;
  const mot* l = o->donnees;
  if (!l || l[0] < 4 || l[1] != BLOC_BLOCS) return garde;
  bool tout = opt.filtre == FILTRE_TOUT;
  for (mot k = 4; k < l[0]; ++k) {
    const mot* a = bloc_pointe(l[k]);
    if (!a) continue;
    if (a[0] < 0 || a[0] > MOTS_MAX || !entete_sain(a)) {
      objet_imprime(o);
      message(0, M_CORROMPU);
      continue;
    }
    bool memoire = une_paire(a, 1, B_MEM_TYPE);
    if (tail_pointeurs(a) && !memoire) continue;
    if (!tout) {
      if (a[5] < 0 && !(a[4] == 0 && a[5] == -98 && o->sous_type == 132)) continue;
      if (opt.filtre == FILTRE_GEOMETRIE && !une_paire(a, 1, 86) && !une_paire(a, 1, 15)) continue;
      if (opt.filtre == FILTRE_NEGATIF && dynamique(a)) continue;
      if (a[3] > 1 && a[4] == 1 && (a[5] == 46 || a[5] == 51 || a[5] == 63)) continue;
      if (une_paire(a, 1, 93)) continue;
      if (a[3] > 1 && a[2 + 2 * a[3]] == 1 && a[3 + 2 * a[3]] == 93) continue;
    }
    if (forme == FORME_ASCII) {
      if (!tout && (une_paire(a, 1, 46) || une_paire(a, 1, 51))) continue;
      if (scene && une_paire(a, 1, 60)) continue;
      if (!scene && !tout && une_paire(a, 1, 63)) continue;
    }
    garde.push_back(a);
  }
  return garde;
}

namespace {
bool sain(const mot* b, long n, int profondeur) {
  if (n < 4 || b[0] != n || profondeur > 32) return false;
  switch (b[1]) {
    case BLOC_BLOCS:
    case BLOC_OBJETS:
    case BLOC_OBJET:
    case CELLULE_OBJET:
    case BLOC_LIGNE:
    case BLOC_PHRASE:
      return false;
    case BLOC_CHAINE:
      // The text must end inside its Bloc.
      for (const char *p = reinterpret_cast<const char*>(b + 4), *f = reinterpret_cast<const char*>(b + n); p < f; ++p)
        if (!*p) return true;
      return false;
    case BLOC_LISTE: {
      // Elements end to end, each a sound Bloc, filling the body exactly.
      long pos = 4, k = 0;
      while (pos < n) {
        mot l = b[pos];
        if (l < 4 || l > n - pos || !sain(b + pos, l, profondeur + 1)) return false;
        pos += l;
        ++k;
      }
      return pos == n && k == b[2];
    }
  }
  return true;
}
}  // namespace

bool bloc_sain(const mot* b, long n) { return sain(b, n, 0); }

bool type_objet(int type) {
  switch (type) {
    case 4: case 8: case 24: case 25: case 49: case 59: case 69: case 88: case 114: case 120: case 148:
    case 152: case 161:
      return true;
  }
  return false;
}

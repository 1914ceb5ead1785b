// Allocation and release of Blocs, with the debug table of live Blocs.
#include <cstdio>
#include <cstdlib>

#include "core/bloc.h"
#include "core/message.h"
#include "core/objet.h"

Memoire memoire;
mot* etats[8];
int nb_etats[8];

namespace {
// With the switch a34 off the program deliberately never gives memory back.
inline bool liberation_permise() { return etat_ou(0, 34, 1) >= 1; }

void mal_note(void* p) {
  if (!memoire.mal) return;
  for (long i = 0; i < memoire.mal_haut; ++i)
    if (!memoire.mal[i]) {
      memoire.mal[i] = p;
      return;
    }
  if (memoire.mal_haut >= memoire.mal_dim) {
    std::fputs("Debordement de Pile_alloc\x07\n", stdout);
    return;
  }
  memoire.mal[memoire.mal_haut++] = p;
}

// False when the pointer is not live: a double release is reported and
// survives.
bool mal_oublie(void* p) {
  if (!memoire.mal) return true;
  for (long i = 0; i < memoire.mal_haut; ++i)
    if (memoire.mal[i] == p) {
      if (i == memoire.mal_haut - 1)
        --memoire.mal_haut;
      else
        memoire.mal[i] = nullptr;
      return true;
    }
  std::printf("%ld: Deja libere\x07\n", static_cast<long>(ptr_vers_mot(p)));
  return false;
}

void relache(mot* b) {
  if (!mal_oublie(b)) return;
  tas::libere(b);
  --memoire.compteur;
}
}  // namespace

bool mal_init(long dim) {
  memoire.mal = static_cast<void**>(std::calloc(dim, sizeof(void*)));
  if (!memoire.mal) return false;
  memoire.mal_dim = dim;
  memoire.mal_haut = 0;
  return true;
}

mot* bloc_essaie(mot n) {
  ++memoire.appels;
  long taille = n < 0 ? -static_cast<long>(n) : n;
  mot* b = n ? static_cast<mot*>(tas::alloue(taille * sizeof(mot))) : nullptr;
  if (!b) return nullptr;
  b[0] = n;
  ++memoire.compteur;
  mal_note(b);
  return b;
}

mot* bloc_alloue(mot n) {
  mot* b = bloc_essaie(n);
  if (!b) {
    std::printf("%ld: ", n < 0 ? -static_cast<long>(n) : static_cast<long>(n));
    message(0, 28);
  }
  return b;
}

void bloc_libere(mot* b) {
  if (b && b[0] >= 1 && liberation_permise()) relache(b);
}

void bloc_libere_force(mot* b) {
  if (b && liberation_permise()) relache(b);
}

namespace {
// Calls f on every pointer word of a BLOC_BLOCS or BLOC_OBJETS body, over
// the three row layouts.
template <class F>
void pour_chaque_pointeur(mot* b, F f) {
  mot nl = b[2], nc = b[3];
  mot* p = b + 4;
  mot* fin = b + b[0];
  if (nc > 0) {
    for (long i = 0, n = static_cast<long>(nl) * nc; i < n && p + i < fin; ++i) f(p[i]);
  } else if (nc < 0) {
    for (mot r = 0; r < nl && p < fin; ++r, p -= nc)
      if (p[0] > 0)
        for (mot k = 1; k < -nc; ++k) f(p[k]);
  } else {
    for (mot r = 0; r < nl && p < fin; ++r) {
      mot l = p[0];
      if (l > 0)
        for (mot k = 1; k < l; ++k) f(p[k]);
      p += l > 0 ? l : (l < 0 ? -l : 1);
    }
  }
}

void supprime_possedes(mot* b) {
  if (b[1] == BLOC_BLOCS)
    pour_chaque_pointeur(b, [](mot w) { bloc_supprime(bloc_pointe(w)); });
  else if (b[1] == BLOC_OBJETS)
    pour_chaque_pointeur(b, [](mot w) { objet_supprime(static_cast<Objet*>(mot_vers_ptr(w))); });
}
}  // namespace

int bloc_supprime(mot* b) {
  if (!b || b[0] < 1) return 0;
  switch (b[1]) {
    case BLOC_LIGNE:
    case BLOC_OBJET:
      return 0;  // never on the heap, or not owned
    case BLOC_BLOCS:
    case BLOC_OBJETS:
      if (liberation_permise()) supprime_possedes(b);
      break;
    case BLOC_PHRASE:
    {
      mot h = b[2];
      if (h < 0 || h >= 1001) {
        message(0, 105);
        return -1;
      }
      // Form A owns the Blocs or objects of its tail; form B owns nothing.
      if (b[3] > 0 && h + 4 <= b[0] && liberation_permise()) supprime_possedes(b + h);
      break;
    }
  }
  bloc_libere(b);
  return 0;
}

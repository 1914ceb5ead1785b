// The four areas sized at start-up: stack of locals, evaluation stack,
// object table and command stack.
#include <cstdio>

#include "core/bloc.h"
#include "core/message.h"
#include "core/objet.h"

Piles piles;

namespace {
template <class T>
T* zone(long n) {
  return n > 0 ? static_cast<T*>(tas::alloue(static_cast<std::size_t>(n) * sizeof(T))) : nullptr;
}
constexpr mot EMP_TETE[4] = {4, BLOC_PHRASE, 0, 0};
}  // namespace

int piles_alloue(long loc, long eva, long obj, long emp) {
  piles.dim_loc = loc;
  piles.dim_eva = eva;
  piles.dim_obj = obj;
  piles.dim_emp = emp;
  piles.loc_base = zone<Objet>(loc);
  if (!piles.loc_base) return 1;
  piles.loc_fin = piles.loc_base + loc;
  // Nine words of room per word of limit: pushes only ever test the first
  // ninth, which is how the key has always sized the stack.
  piles.eva_base = zone<mot>(eva * 9);
  if (!piles.eva_base) return 2;
  piles.eva_limite = piles.eva_base + eva;
  piles.obj_base = zone<Objet>(obj);
  if (!piles.obj_base) return 3;
  piles.obj_fin = piles.obj_base + obj;
  piles.emp = zone<mot>(emp);
  if (!piles.emp || emp < 4) return 4;
  piles.emp_fin = piles.emp + emp;
  for (int k = 0; k < 4; ++k) piles.emp[k] = EMP_TETE[k];
  piles.emp_haut = piles.emp + 4;
  piles.obj_haut = piles.obj_base;
  piles.loc_base[0] = Objet{};
  piles.obj_base[0] = Objet{};
  piles_reset();
  return 0;
}

void piles_reset() {
  piles.eva_haut = piles.eva_base;
  piles.loc_haut = piles.loc_base;
}

void emp_vide() {
  piles.emp[2] = 0;
  piles.emp_haut = piles.emp + 4;
}

int emp_empile(const mot* phrase) {
  mot n = phrase[0] < 0 ? 2 : phrase[0];
  if (piles.emp_haut + n > piles.emp_fin) {
    // A full stack forgets everything it held.
    emp_vide();
    return -16;
  }
  bloc_copie(piles.emp_haut, phrase);
  piles.emp_haut += n;
  ++piles.emp[2];
  return 0;
}

int emp_reserve(mot n) {
  if (piles.emp_haut + n <= piles.emp_fin) return 0;
  long ancien = piles.emp_fin - piles.emp;
  long nouveau = ancien + n + piles.dim_emp;
  std::printf("REALLOCATION_EMP %ld\n", nouveau);
  mot* e = zone<mot>(nouveau);
  if (!e) {
    erreur_memoire(nouveau, 1);
    return -1;
  }
  long utilise = piles.emp_haut - piles.emp;
  for (long k = 0; k < utilise; ++k) e[k] = piles.emp[k];
  tas::libere(piles.emp);
  piles.emp = e;
  piles.emp_haut = e + utilise;
  piles.emp_fin = e + nouveau;
  return 0;
}

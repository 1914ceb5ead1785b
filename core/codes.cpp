// Code blocks replaced while they run: kept aside until no frame runs them.
//
// Invariant: every block in `retenus` was a function's code block and is
// named by no Objet any more; table_objets.codes_retenus is its count.
#include <vector>

#include "core/objet.h"

namespace {
std::vector<mot*> retenus;  // no word points here: the ordinary heap
}

bool code_en_cours(const mot* code) {
  if (!code) return false;
  for (const Objet* o = piles.loc_base; o && o < piles.loc_haut; ++o)
    if (o->type == OBJ_MARQUE1 && o->code == code) return true;
  return false;
}

void code_libere(mot* code) {
  if (!code) return;
  if (!code_en_cours(code)) {
    bloc_libere_force(code);
    return;
  }
  retenus.push_back(code);
  table_objets.codes_retenus = static_cast<long>(retenus.size());
}

void codes_retenus_libere() {
  std::size_t garde = 0;
  for (mot* c : retenus) {
    if (code_en_cours(c)) retenus[garde++] = c;
    else bloc_libere_force(c);
  }
  retenus.resize(garde);
  table_objets.codes_retenus = static_cast<long>(retenus.size());
}

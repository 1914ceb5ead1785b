// Code blocks replaced while a frame runs them stay until no frame does.
#include "tests/core/outils.h"

using namespace outils;

namespace {
// Pushes a frame marker that runs `code`, as a call does.
Objet* marque(mot* code) {
  Objet* m = piles.loc_haut++;
  *m = Objet{};
  m->type = OBJ_MARQUE1;
  m->code = code;
  return m;
}
}  // namespace

TEST(Codes, KeptWhileAFrameRunsThemThenReleased) {
  environnement();
  long avant = memoire.compteur;
  mot* libre = bloc_alloue(40);
  mot* exterieur = bloc_alloue(40);
  mot* interieur = bloc_alloue(40);
  ASSERT_TRUE(libre && exterieur && interieur);
  // Two frames deep: an outer call runs `exterieur`, a recursive one
  // `interieur`; a slot record between them holds no code.
  marque(exterieur);
  Objet* slot = piles.loc_haut++;
  *slot = Objet{};
  slot->type = OBJ_LOCAL;
  Objet* m2 = marque(interieur);
  code_libere(libre);  // nobody runs it: released at once
  EXPECT_EQ(memoire.compteur, avant + 2);
  code_libere(interieur);
  code_libere(exterieur);
  EXPECT_EQ(table_objets.codes_retenus, 2);
  EXPECT_EQ(memoire.compteur, avant + 2);
  // Still readable where the frames walk them.
  interieur[39] = 12345;
  codes_retenus_libere();  // both frames still there
  EXPECT_EQ(table_objets.codes_retenus, 2);
  piles.loc_haut = m2;  // the inner call returns
  codes_retenus_libere();
  EXPECT_EQ(table_objets.codes_retenus, 1);
  EXPECT_EQ(memoire.compteur, avant + 1);
  piles.loc_haut = piles.loc_base;  // and the outer one
  codes_retenus_libere();
  EXPECT_EQ(table_objets.codes_retenus, 0);
  EXPECT_EQ(memoire.compteur, avant);
  code_libere(nullptr);
  EXPECT_FALSE(code_en_cours(nullptr));
}

// Attributes keyed by keyword pairs: exact keys, removal that keeps order,
// writes that never run past a tail, restore of saved copies, and the
// allocation failures that must leave the list as it was.
#include <cstring>

#include "tests/core/outils.h"

using namespace outils;

namespace {
const reel* flottants(const std::vector<mot>& v) { return reels(v.data() + 4); }

// Pointers of the object's list, in order.
std::vector<mot*> elements(const Objet* o) {
  std::vector<mot*> r;
  for (mot i = 0; i < o->donnees[2]; ++i) r.push_back(bloc_pointe(o->donnees[4 + i]));
  return r;
}
}  // namespace

TEST(Attribut, KeysOfDifferentLengthsNeverMatch) {
  environnement();
  Objet* o = objet_cree(1, B_VOL, 0, nullptr, nullptr, 1);
  auto v = reels_({1, 2, 3});
  mot* court = attribut_ecrit_1(o, 1, 17, flottants(v), 3, 0);
  mot* long2 = attribut_ecrit_2(o, 1, 17, 1, 86, flottants(v), 1, 0);
  mot* long6 = attribut_ecrit_6(o, 1, 17, 1, 86, 1, 2, 1, 3, 1, 4, 1, 5, flottants(v), 2, 0);
  ASSERT_TRUE(court && long2 && long6);
  EXPECT_EQ(attribut_trouve_1(o->donnees, 1, 17), court);
  EXPECT_EQ(attribut_trouve_2(o->donnees, 1, 17, 1, 86), long2);
  EXPECT_EQ(attribut_trouve_2(o->donnees, 1, 17, 1, 2), nullptr);
  EXPECT_EQ(attribut_trouve_3(o->donnees, 1, 17, 1, 86, 1, 2), nullptr);
  EXPECT_EQ(attribut_trouve_6(o->donnees, 1, 17, 1, 86, 1, 2, 1, 3, 1, 4, 1, 5), long6);
  EXPECT_EQ(attribut_trouve_1(o->donnees, 0, 17), nullptr);  // env counts
  // The dispatcher by count agrees, and ignores counts beyond 4.
  const mot k2[] = {1, 17, 1, 86};
  EXPECT_EQ(attribut_trouve(o->donnees, 2, k2), long2);
  EXPECT_EQ(attribut_valeur(o->donnees, 1, k2), court + 6);
  const mot k6[] = {1, 17, 1, 86, 1, 2, 1, 3, 1, 4, 1, 5};
  EXPECT_EQ(attribut_trouve(o->donnees, 6, k6), nullptr);
  // The chain dispatcher reads the keys of sentence clauses.
  Phrase p;
  p.clause(1, 17, reels_({9})).clause(1, 86);
  EXPECT_EQ(attribut_trouve_chaine(o->donnees, 2, *p + 4), long2);
  EXPECT_EQ(attribut_trouve_chaine(o->donnees, 1, *p + 4), court);
  int pos = 0;
  EXPECT_EQ(attribut_trouve_pos_2(o, &pos, 1, 17, 1, 86), long2);
  EXPECT_EQ(pos, 5);
  EXPECT_EQ(attribut_trouve_pos_chaine(o, &pos, 1, *p + 4), court);
  EXPECT_EQ(pos, 4);
  // A list of another tag, or none, finds nothing.
  EXPECT_EQ(attribut_trouve_1(nullptr, 1, 17), nullptr);
  EXPECT_EQ(attribut_trouve_1(v.data(), 1, 17), nullptr);
}

TEST(Attribut, RemovalKeepsOrderAndAbsentKeyChangesNothing) {
  environnement();
  Objet* o = objet_cree(1, B_VOL, 0, nullptr, nullptr, 1);
  auto v = reels_({1});
  mot* a = attribut_ecrit_1(o, 1, 15, flottants(v), 1, 0);
  attribut_ecrit_1(o, 1, 86, flottants(v), 1, 0);
  mot* c = attribut_ecrit_2(o, 1, 86, 1, 17, flottants(v), 1, 0);
  mot* liste = o->donnees;
  std::vector<mot> avant(liste, liste + liste[0]);
  long compteur = memoire.compteur;
  EXPECT_EQ(attribut_enleve_1(o, true, 1, 17), 0);
  EXPECT_EQ(attribut_enleve_2(o, true, 1, 17, 1, 86), 0);
  EXPECT_EQ(o->donnees, liste);
  EXPECT_TRUE(std::equal(avant.begin(), avant.end(), o->donnees));
  EXPECT_EQ(memoire.compteur, compteur);

  std::string s = sortie_de([&] { EXPECT_EQ(attribut_enleve_1(o, true, 1, 86), 1); });
  EXPECT_EQ(s, "b86 \n");
  EXPECT_EQ(elements(o), (std::vector<mot*>{a, c}));
  EXPECT_EQ(o->donnees[0], 6);
  EXPECT_EQ(memoire.compteur, compteur - 1);  // old list and b gone, new list made
  Phrase p;
  p.clause(1, 86).clause(1, 17);
  s = sortie_de([&] { EXPECT_EQ(attribut_enleve_chaine(o, true, 2, *p + 4), 1); });
  EXPECT_EQ(s, "-b86 b17 \n");
  EXPECT_EQ(elements(o), (std::vector<mot*>{a}));
  EXPECT_EQ(attribut_enleve_1(o, false, 1, 15), 1);
  EXPECT_EQ(o->donnees[0], 4);
  EXPECT_EQ(o->donnees[2], 0);
}

TEST(Attribut, WriteModesAndLongerVectors) {
  environnement();
  Objet* o = objet_cree(1, B_VOL, 0, nullptr, nullptr, 1);
  auto deux = reels_({1, 2});
  auto autres = reels_({7, 8});
  mot* a = attribut_ecrit_1(o, 1, 17, flottants(deux), 2, 0);
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a[0], 6 + 4 + 2);
  EXPECT_EQ(a[2], 6);
  EXPECT_EQ(a[7], BLOC_REEL);
  EXPECT_EQ(attribut_ecrit_1(o, 1, 17, flottants(autres), 2, 0), a);  // mode 0: left alone
  EXPECT_EQ(lit_reel(a + 10), 1.f);
  EXPECT_EQ(attribut_ecrit_1(o, 1, 17, flottants(autres), 1, 1), a);  // v's count only
  EXPECT_EQ(lit_reel(a + 10), 7.f);
  EXPECT_EQ(lit_reel(a + 11), 2.f);
  // A longer vector is not written past the tail: the attribute grows in
  // its place in the list.
  auto quatre = reels_({1, 2, 3, 4});
  mot* b = attribut_ecrit_1(o, 1, 17, flottants(quatre), 4, 1);
  ASSERT_NE(b, nullptr);
  EXPECT_EQ(b[0], 6 + 4 + 4);
  EXPECT_EQ(b[8], 4);
  EXPECT_EQ(lit_reel(b + 13), 4.f);
  EXPECT_EQ(elements(o), (std::vector<mot*>{b}));
  EXPECT_EQ(attribut_valeur_1(o->donnees, 1, 17), b + 6);
}

TEST(Attribut, RestoreCopiesTheSavedAttributeBack) {
  environnement();
  Objet* o = objet_cree(1, B_VOL, 0, nullptr, nullptr, 1);
  auto actuel = reels_({5, 6});
  auto sauve = reels_({1, 2});
  mot* a = attribut_ecrit_1(o, 1, 86, flottants(actuel), 2, 0);
  EXPECT_EQ(attribut_restaure(o, 1, 86), nullptr);  // no saved copy
  mot* s = attribut_ecrit_1(o, 1, -86, flottants(sauve), 2, 0);
  EXPECT_TRUE(attribut_oppose(a, s));
  EXPECT_FALSE(attributs_egaux(a, s));
  EXPECT_EQ(attribut_restaure(o, 1, 86), a);
  EXPECT_EQ(a[5], 86);
  EXPECT_EQ(lit_reel(a + 10), 1.f);
  EXPECT_EQ(s[5], -86);
  // Different sizes are refused.
  auto trois = reels_({1, 2, 3});
  attribut_enleve_1(o, false, 1, -86);
  attribut_ecrit_1(o, 1, -86, flottants(trois), 3, 0);
  EXPECT_EQ(attribut_restaure(o, 1, 86), nullptr);
  EXPECT_EQ(lit_reel(a + 10), 1.f);
}

TEST(Attribut, PairBuildersAndKeyComparisons) {
  mot a[20] = {}, b[20] = {}, c[20] = {};
  EXPECT_EQ(phrase_3(a, 1, 15, 1, 32, 1, 17), 10);
  EXPECT_EQ(a[1], BLOC_PHRASE);
  EXPECT_EQ(a[3], 3);
  EXPECT_EQ(a[9], 17);
  Phrase p;
  p.clause(1, 15, reels_({1, 2})).clause(1, 32).clause(1, 17, reels_({3}));
  EXPECT_EQ(phrase_chaine(b, 3, *p + 4), 10);
  EXPECT_TRUE(attributs_egaux(a, b));
  phrase_3(c, 1, -15, 1, 32, 1, 17);
  EXPECT_TRUE(attribut_oppose(a, c));
  c[9] = 18;
  EXPECT_FALSE(attribut_oppose(a, c));
  phrase_2(c, 1, 15, 1, 32);
  EXPECT_FALSE(attributs_egaux(a, c));
}

TEST(Liste, AppendCreateAndRefuseOtherData) {
  environnement();
  Objet* o = objet_cree(1, B_VOL, 0, nullptr, nullptr, 1);
  mot* x = bloc_alloue(4);
  EXPECT_EQ(liste_ajoute(o, x), 4);
  EXPECT_EQ(o->donnees[0], 5);
  EXPECT_EQ(o->donnees[1], BLOC_BLOCS);
  EXPECT_EQ(liste_ajoute(o, x), 5);
  EXPECT_EQ(o->donnees[2], 2);
  mot* l = liste_cree(o, 3);
  EXPECT_EQ(o->donnees, l);
  EXPECT_EQ(l[2], 3);
  EXPECT_EQ(l[6], 0);
  auto v = reels_({1});
  Objet* g = objet_cree(1, B_VOL, 0, v.data(), nullptr, 2);
  int r = 0;
  EXPECT_EQ(sortie_de([&] { r = liste_ajoute(g, x); }), "b4 2 [14]");
  EXPECT_EQ(r, -1);
  EXPECT_EQ(g->donnees[1], BLOC_REEL);
}

TEST(Liste, FailedAllocationLeavesTheListAsItWas) {
  environnement();
  Objet* o = objet_cree(1, B_VOL, 0, nullptr, nullptr, 1);
  auto v = reels_({1});
  attribut_ecrit_1(o, 1, 15, flottants(v), 1, 0);
  mot* liste = o->donnees;
  mot* r = reinterpret_cast<mot*>(1);
  // More words than the arena can give.
  std::string s = sortie_de([&] { r = attribut_nouveau(o, 0x7fffffff); });
  EXPECT_EQ(s, "2147483647: [28]");
  EXPECT_EQ(r, nullptr);
  EXPECT_EQ(o->donnees, liste);
  EXPECT_EQ(liste[2], 1);
  EXPECT_NE(attribut_trouve_1(o->donnees, 1, 15), nullptr);
}

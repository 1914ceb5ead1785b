// The Bloc rules that later code leans on: copy of odd word 0s, protected
// Blocs, ragged rows, the append cases, release guards and the debug table.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/bloc.h"
#include "core/message.h"
#include "tests/outils/sortie.h"

namespace {
std::vector<mot> reels_bloc(std::initializer_list<float> v, mot nc = 1) {
  std::vector<mot> b{static_cast<mot>(4 + v.size()), BLOC_REEL, static_cast<mot>(nc == 1 ? v.size() : 1), nc};
  for (float x : v) b.push_back(reel_mot(x));
  return b;
}
}  // namespace

TEST(Allocation, ZeroReportsAndNegativeIsProtected) {
  EXPECT_EQ(sortie_de([] { EXPECT_EQ(bloc_alloue(0), nullptr); }), "0: erreur allocation\a\n");
  long avant = memoire.compteur;
  mot* b = bloc_alloue(-5);
  ASSERT_NE(b, nullptr);
  EXPECT_EQ(b[0], -5);
  bloc_libere(b);  // guarded: refuses it
  EXPECT_EQ(memoire.compteur, avant + 1);
  bloc_libere_force(b);
  EXPECT_EQ(memoire.compteur, avant);
}

TEST(Allocation, SwitchA34OffKeepsEverything) {
  mot table[40] = {};
  etats[0] = table;
  nb_etats[0] = static_cast<int>(std::size(table));
  long avant = memoire.compteur;
  mot* b = bloc_alloue(8);
  bloc_libere(b);
  bloc_libere_force(b);
  EXPECT_EQ(memoire.compteur, avant + 1);
  table[34] = 1;
  bloc_libere(b);
  EXPECT_EQ(memoire.compteur, avant);
  etats[0] = nullptr;
  nb_etats[0] = 0;
}

TEST(Allocation, DebugTableReportsDoubleRelease) {
  ASSERT_TRUE(mal_init(16));
  mot* a = bloc_alloue(6);
  mot* b = bloc_alloue(6);
  a[0] = 6;
  b[0] = 6;
  bloc_libere(a);
  EXPECT_EQ(memoire.mal_haut, 2);  // a hole, not the top
  std::string s = sortie_de([&] { bloc_libere_force(a); });
  EXPECT_NE(s.find(": Deja libere\a\n"), std::string::npos) << s;
  bloc_libere(b);
  EXPECT_EQ(memoire.mal_haut, 1);
  mot* c = bloc_alloue(6);  // reuses the first empty slot
  EXPECT_EQ(memoire.mal[0], c);
}

TEST(Copie, NegativeAndZeroWordZero) {
  mot src[6] = {-1, 77, 5, 5, 5, 5};
  mot dst[6] = {9, 9, 9, 9, 9, 9};
  bloc_copie(dst, src);
  EXPECT_EQ(dst[0], -1);
  EXPECT_EQ(dst[1], 77);
  EXPECT_EQ(dst[2], 9);
  mot vide[4] = {0, 1, 2, 3};
  mot d2[4] = {9, 9, 9, 9};
  bloc_copie(d2, vide);
  EXPECT_EQ(d2[0], 0);
  EXPECT_EQ(d2[1], 9);
}

TEST(Copie, DuplicateCellsAndOwnedLists) {
  mot nil[2] = {BLOC_NIL, 1234};
  mot* n = bloc_duplique(nil);
  ASSERT_NE(n, nullptr);
  EXPECT_EQ(n[0], 4);
  EXPECT_EQ(n[1], BLOC_NIL);

  // A list with a null slot: the copy is deep and packed.
  auto v = reels_bloc({1, 2});
  mot* e = bloc_alloue(v[0]);
  std::copy(v.begin(), v.end(), e);
  mot* l = bloc_alloue(7);
  mot tete[7] = {7, BLOC_BLOCS, 3, 1, 0, ptr_vers_mot(e), 0};
  std::copy(tete, tete + 7, l);
  mot* c = bloc_duplique(l);
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(c[2], 1);
  mot* ce = bloc_pointe(c[4]);
  ASSERT_NE(ce, nullptr);
  EXPECT_NE(ce, e);
  EXPECT_EQ(lit_reel(ce + 5), 2.f);
  EXPECT_EQ(c[5], 0);
}

TEST(Liberation, ProtectedBlocSurvivesListRelease) {
  mot* p = bloc_alloue(-6);
  p[1] = BLOC_REEL;
  p[2] = 2;
  p[3] = 1;
  mot* e = bloc_alloue(4);
  e[1] = BLOC_NIL;
  mot* l = bloc_alloue(6);
  mot tete[6] = {6, BLOC_BLOCS, 2, 1, ptr_vers_mot(p), ptr_vers_mot(e)};
  std::copy(tete, tete + 6, l);
  long avant = memoire.compteur;
  EXPECT_EQ(bloc_supprime(l), 0);
  EXPECT_EQ(memoire.compteur, avant - 2);  // the list and e, not p
  EXPECT_EQ(p[0], -6);
}

TEST(Liberation, ImplausiblePhraseHeaderIsRefused) {
  mot* b = bloc_alloue(10);
  mot tete[10] = {10, BLOC_PHRASE, 2000, 1, 1, 15, 0, 0, 0, 0};
  std::copy(tete, tete + 10, b);
  long avant = memoire.compteur;
  int r = 0;
  // Before the tables exist message 105 prints nothing; the result tells.
  sortie_de([&] { r = bloc_supprime(b); });
  EXPECT_EQ(r, -1);
  EXPECT_EQ(memoire.compteur, avant);
}

TEST(Liberation, PhraseTailOwnsItsBlocs) {
  mot* e = bloc_alloue(4);
  e[1] = BLOC_NIL;
  // Form A (1, 86) with a BLOC_BLOCS tail of one pointer.
  mot* b = bloc_alloue(11);
  mot tete[11] = {11, BLOC_PHRASE, 6, 1, 1, 86, 5, BLOC_BLOCS, 1, 1, ptr_vers_mot(e)};
  std::copy(tete, tete + 11, b);
  long avant = memoire.compteur;
  EXPECT_EQ(bloc_supprime(b), 0);
  EXPECT_EQ(memoire.compteur, avant - 2);
}

TEST(Acces, RaggedRowsAndHoles) {
  // Row 1 is a hole of 5 words, row 2 holds 7 and 8.
  mot b[4 + 5 + 3] = {12, BLOC_REEL, 2, 0, -5, 0, 0, 0, 0, 3, reel_mot(7), reel_mot(8)};
  mot tag, nc;
  EXPECT_EQ(bloc_element(b, 1, &tag, &nc), b + 4);
  EXPECT_EQ(bloc_element(b, 2, &tag, &nc), b + 9);
  int n = -1;
  EXPECT_EQ(bloc_ligne(b, 1, &n), nullptr);
  mot* r = bloc_ligne(b, 2, &n);
  ASSERT_NE(r, nullptr);
  EXPECT_EQ(n, 2);
  EXPECT_EQ(lit_reel(r + 1), 8.f);
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(bloc_element(b, 3, &tag, &nc), nullptr); }), "3: ");
}

TEST(Acces, StridedRowsAndVectors) {
  // Two rows of stride 3: a status word then two values; row 2 absent.
  mot b[4 + 6] = {10, BLOC_REEL, 2, -3, 1, reel_mot(1), reel_mot(2), 0, reel_mot(3), reel_mot(4)};
  int n;
  mot* r = bloc_ligne(b, 1, &n);
  ASSERT_NE(r, nullptr);
  EXPECT_EQ(n, 2);
  EXPECT_EQ(bloc_ligne(b, 2, &n), nullptr);
  auto v = reels_bloc({5, 6, 7});
  mot* p = bloc_vecteur(v.data(), &n);
  EXPECT_EQ(n, 3);
  EXPECT_EQ(lit_reel(p + 2), 7.f);
  EXPECT_EQ(vecteur_cherche(v.data(), 6), 2);
  EXPECT_EQ(vecteur_cherche(v.data(), 9), 0);
  EXPECT_EQ(vecteur_cherche(nullptr, 9), 1);
}

TEST(Acces, StringVectorHopsByWordZero) {
  // Two adjacent strings, "ab" then "cdefg".
  mot b[5 + 6] = {5, BLOC_CHAINE, 2, 0, 0, 6, BLOC_CHAINE, 1, 1, 0, 0};
  std::memcpy(b + 4, "ab", 3);
  std::memcpy(b + 9, "cdefg", 6);
  mot tag, nc;
  mot* e = bloc_element(b, 2, &tag, &nc);
  EXPECT_STREQ(reinterpret_cast<char*>(e + 4), "cdefg");
}

TEST(Ajoute, NumericCases) {
  mot acc[64] = {4, 0, 0, 0};
  const mot* lim = acc + 64;
  auto m = reels_bloc({1, 2, 3});
  EXPECT_EQ(bloc_ajoute(acc, lim, m.data(), 0), 0);
  EXPECT_EQ(acc[2], 3);
  EXPECT_EQ(bloc_ajoute(acc, lim, m.data(), 2), 0);  // row 2 alone
  EXPECT_EQ(acc[2], 4);
  EXPECT_EQ(lit_reel(acc + 7), 2.f);

  mot ragged[4 + 4 + 2] = {10, BLOC_REEL, 2, 0, -4, 0, 0, 0, 2, reel_mot(9)};
  EXPECT_EQ(bloc_ajoute(acc, lim, ragged, 0), 0);  // the hole is skipped
  EXPECT_EQ(acc[2], 5);
  EXPECT_EQ(lit_reel(acc + 8), 9.f);

  mot ent[4 + 2] = {6, BLOC_ENTIER, 2, 1, 5, -6};
  mot acc2[16] = {4, 0, 0, 0};
  EXPECT_EQ(bloc_ajoute(acc2, acc2 + 16, ent, 0), 0);
  EXPECT_EQ(acc2[1], BLOC_REEL);
  EXPECT_EQ(lit_reel(acc2 + 5), -6.f);

  // A list: child 2 appended whole.
  mot liste[4 + 5 + 6] = {15, BLOC_LISTE, 2, 0, 5, BLOC_REEL, 1, 1, reel_mot(1), 6, BLOC_REEL, 2, 1,
                          reel_mot(4), reel_mot(5)};
  mot acc3[16] = {4, 0, 0, 0};
  EXPECT_EQ(bloc_ajoute(acc3, acc3 + 16, liste, 2), 0);
  EXPECT_EQ(acc3[2], 2);
  EXPECT_EQ(lit_reel(acc3 + 5), 5.f);
}

TEST(Ajoute, OverflowAndMismatch) {
  mot acc[8] = {4, 0, 0, 0};
  auto m = reels_bloc({1, 2, 3, 4, 5});
  EXPECT_EQ(bloc_ajoute(acc, acc + 8, m.data(), 0), -12);

  mot r[8] = {4, 0, 0, 0};
  auto un = reels_bloc({1});
  bloc_ajoute(r, r + 8, un.data(), 0);
  mot s[6] = {6, BLOC_CHAINE, 1, 1, 0, 0};
  std::memcpy(s + 4, "abc", 4);
  mot copie[8];
  std::copy(r, r + 8, copie);
  EXPECT_EQ(bloc_ajoute(r, r + 8, s, 0), -1);
  EXPECT_TRUE(std::equal(r, r + 8, copie));

  mot petit[6] = {4, 0, 0, 0};
  EXPECT_EQ(bloc_ajoute(petit, petit + 4, s, 0), -1);  // strings say -1, not -12
}

TEST(Ajoute, StringsConcatenate) {
  mot acc[32] = {4, 0, 0, 0};
  mot s[6] = {6, BLOC_CHAINE, 1, 1, 0, 0};
  std::memcpy(s + 4, "abcd", 5);
  mot t[5] = {5, BLOC_CHAINE, 1, 1, 0};
  std::memcpy(t + 4, "xy", 3);
  EXPECT_EQ(bloc_ajoute(acc, acc + 32, s, 0), 0);
  EXPECT_EQ(bloc_ajoute(acc, acc + 32, t, 0), 0);
  EXPECT_STREQ(reinterpret_cast<char*>(acc + 4), "abcdxy");
  EXPECT_EQ(acc[0], 4 + 2 + 1);
}

TEST(Ajoute, BlocsElementReplacesAccumulator) {
  auto v = reels_bloc({8, 9});
  mot* e = bloc_alloue(v[0]);
  std::copy(v.begin(), v.end(), e);
  mot l[6] = {6, BLOC_BLOCS, 2, 1, 0, ptr_vers_mot(e)};
  mot acc[16] = {4, 0, 0, 0};
  EXPECT_EQ(bloc_ajoute(acc, acc + 16, l, 2), 0);
  EXPECT_EQ(acc[1], BLOC_REEL);
  EXPECT_EQ(lit_reel(acc + 5), 9.f);
}

TEST(Conversion, RealsToIntegersAndRefusal) {
  auto v = reels_bloc({1.9f, -2.5f});
  mot d[8] = {0, BLOC_ENTIER, 0, 0};
  EXPECT_EQ(bloc_convertit(d, v.data()), 0);
  EXPECT_EQ(d[2], 1);
  EXPECT_EQ(d[3], 2);
  EXPECT_EQ(d[4], 1);
  EXPECT_EQ(d[5], -2);
  mot s[6] = {6, BLOC_CHAINE, 1, 1, 0, 0};
  int r = 0;
  EXPECT_EQ(sortie_de([&] { r = bloc_convertit(d, s); }), "-1048 -1000: ");
  EXPECT_EQ(r, -1);
  mot a[5] = {5, BLOC_REEL, 1, 1, reel_mot(1)};
  mot b[5] = {5, BLOC_REEL, 1, 1, reel_mot(2)};
  EXPECT_EQ(bloc_compare_cle(a, b), 1);
  EXPECT_EQ(bloc_compare_cle(a, a), 0);
  EXPECT_EQ(bloc_compare_cle(a, s), 0);
}

TEST(Agrandit, KeepsContentAndReleasesOld) {
  mot* b = bloc_alloue(5);
  mot t[5] = {5, BLOC_REEL, 1, 1, reel_mot(3)};
  std::copy(t, t + 5, b);
  long avant = memoire.compteur;
  mot* c = bloc_agrandit(b, 20);
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(c[0], 20);
  EXPECT_EQ(lit_reel(c + 4), 3.f);
  EXPECT_EQ(memoire.compteur, avant);
}

TEST(Piles, CommandStackDropsWhenFullAndGrowsOnReservation) {
  ASSERT_EQ(piles_alloue(10, 100, 10, 20), 0);
  mot phrase[7] = {7, BLOC_PHRASE, 1, 0, 3, 1, 4};
  EXPECT_EQ(emp_empile(phrase), 0);
  EXPECT_EQ(emp_empile(phrase), 0);
  EXPECT_EQ(piles.emp[2], 2);
  EXPECT_EQ(emp_empile(phrase), -16);  // 4 + 21 > 20: all forgotten
  EXPECT_EQ(piles.emp[2], 0);
  EXPECT_EQ(piles.emp_haut, piles.emp + 4);
  EXPECT_EQ(emp_empile(phrase), 0);
  std::string s = sortie_de([] { EXPECT_EQ(emp_reserve(30), 0); });
  EXPECT_EQ(s, "REALLOCATION_EMP 70\n");
  EXPECT_EQ(piles.emp[2], 1);
  EXPECT_EQ(piles.emp[4], 7);
  EXPECT_EQ(piles.emp_fin - piles.emp, 70);
  // The evaluation limit: a ninth of the stack's bytes, in words.
  ASSERT_EQ(piles_alloue(10, 900, 10, 20), 0);
  EXPECT_EQ(piles.eva_limite - piles.eva_base, 900);
  EXPECT_EQ(piles_alloue(0, 900, 10, 20), 1);
}

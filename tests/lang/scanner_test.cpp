// The scanner's primitives: where names end, how comments and marks are
// stepped over, numbers as text.
#include <gtest/gtest.h>

#include "lang/lang.h"
#include "tests/lang/aide_lang.h"
#include "tests/outils/sortie.h"

namespace {
std::string nom(const char* texte, const char** fin = nullptr, int* r = nullptr) {
  char t[TAILLE_NOM];
  const char* p = texte;
  int n = lire_nom(t, &p, TAILLE_NOM);
  if (fin) *fin = p;
  if (r) *r = n;
  return t;
}
}  // namespace

TEST(Scanner, NamesEndAtTerminators) {
  prepare_lang();
  const char* fin;
  int r;
  EXPECT_EQ(nom(";x", &fin, &r), "");
  EXPECT_EQ(r, 0);
  EXPECT_EQ(*fin, ';');
  EXPECT_EQ(nom("  a.b+c", &fin, &r), "a.b");
  EXPECT_EQ(r, 4);
  EXPECT_EQ(*fin, '+');
  EXPECT_EQ(nom("a-b"), "a");
  EXPECT_EQ(nom("x=1"), "x");
  EXPECT_EQ(nom("x$'?@~ y"), "x$'?@~");
  EXPECT_EQ(nom("3x:"), "3x");
  EXPECT_STREQ(fin_nom("ab~c"), "~c");
  // The buffer holds 255 characters and the NUL.
  std::string long_nom(255, 'n');
  EXPECT_EQ(nom(long_nom.c_str()), long_nom);
  long_nom += 'n';
  testing::internal::CaptureStdout();
  EXPECT_EQ(nom(long_nom.c_str(), nullptr, &r), "");
  EXPECT_EQ(r, -1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "M2\n");

  char t[TAILLE_NOM];
  const char* p = "  fichier.h;x";
  EXPECT_EQ(lire_mot(t, &p, TAILLE_NOM), 12);  // length + 1
  EXPECT_STREQ(t, "fichier.h;x");
  p = "{x";
  EXPECT_EQ(lire_mot(t, &p, TAILLE_NOM), 0);
  p = " un,deux";
  EXPECT_EQ(lire_champ(t, &p), 3);
  EXPECT_STREQ(t, "un");
  EXPECT_EQ(*p, ',');
}

TEST(Scanner, TypedAndStoredNamesCompare) {
  EXPECT_EQ(comparer_noms("rotx", "rotx("), 0);
  EXPECT_EQ(comparer_noms("rotx(30)", "rotx"), 0);
  EXPECT_EQ(comparer_noms("rotx=3", "rotx values"), 0);
  EXPECT_NE(comparer_noms("rot", "rotx"), 0);
  EXPECT_NE(comparer_noms("rotx", "rot"), 0);
  EXPECT_NE(comparer_noms("rotx.a", "rotx"), 0);
}

TEST(Scanner, CommentsHeadersAndData) {
  prepare_lang();
  int lignes = 0;
  const char* p = sauter_commentaires(" \n /* a\n b */\t x", &lignes);
  EXPECT_STREQ(p, "x");
  EXPECT_EQ(lignes, 2);
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(sauter_commentaires("/* ouvert", &lignes), nullptr); }), "M64\n");
  lignes = 0;
  EXPECT_STREQ(sauter_entete("#define A 1\n/* c */\n#x\nf()", &lignes), "f()");
  EXPECT_EQ(lignes, 3);

  std::vector<float> v;
  int n;
  p = lire_flottants(&n, v, "1,[2]=3\t[1],\\ suite ignoree\n4 . 5");
  EXPECT_EQ(v, (std::vector<float>{1, 3, 3, 0, 4}));
  EXPECT_EQ(n, 5);
  EXPECT_STREQ(p, ". 5");
  EXPECT_STREQ(lire_entier(&n, "42 suite"), "suite");
  EXPECT_EQ(n, 42);
  EXPECT_EQ(compter_mots(" a, b  c\t"), 3);
  EXPECT_EQ(compter_mots(""), 0);
  EXPECT_STREQ(mot_suivant("abc,def"), "def");
}

TEST(Scanner, NumbersAsText) {
  char t[80];
  auto f = [&](float x) {
    flottant_texte(t, x);
    return std::string(t);
  };
  EXPECT_EQ(f(1.5f), "1.5");
  EXPECT_EQ(f(2), "2");
  EXPECT_EQ(f(-0.25f), "-0.25");
  EXPECT_EQ(f(1.f / 3), "0.333333");
  EXPECT_EQ(f(-1e-9f), "0");
  auto e = [&](const char* fmt, int x) {
    format_entier(t, fmt, x);
    return std::string(t);
  };
  EXPECT_EQ(e("4h", 255), "00ff");
  EXPECT_EQ(e("H", 255), "FF");
  EXPECT_EQ(e("8b", 5), "00000101");
  EXPECT_EQ(e("3o", 8), "010");
  EXPECT_EQ(e("", -3), "-3");
  EXPECT_EQ(e("5", 42), "00042");
  EXPECT_EQ(entier_texte(t, -120), 4);
}

TEST(Scanner, CleaningKeepsStringsMarksAndLines) {
  prepare_lang();
  std::string s = "a = 1 /* x\n y */  \nb = \"/* s */\"\t\n\3\2\1\1\1c";
  int lignes = 0;
  ASSERT_EQ(nettoyer_texte(s.data(), &lignes), 0);
  EXPECT_STREQ(s.c_str(), "a = 1\n\nb = \"/* s */\"\n\3\2\1\1\1c");
  EXPECT_EQ(lignes, 4);
  std::string ouverte = "x = \"abc\ny";
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(nettoyer_texte(ouverte.data(), &lignes), -1); }), "M83\n");
}

TEST(Scanner, LineMarks) {
  char t[32] = "xx";
  char* p = marquer_ligne(t + 2, t, 1234);
  EXPECT_EQ(p - t, 2 + LONG_MARQUE);
  EXPECT_EQ(t[2], MARQUE_LIGNE);
  EXPECT_EQ(t[3], '1' + 1);
  EXPECT_EQ(lire_marque(t + 2), 1234);
  // A mark just ahead is rewritten from line 3 on; no byte is ever 0.
  char* q = marquer_ligne(p, t, 7);
  EXPECT_EQ(q, p);
  EXPECT_EQ(lire_marque(t + 2), 7);
  EXPECT_EQ(t[4], 1);
  EXPECT_EQ(marquer_ligne(p, t, 2), p + LONG_MARQUE);
  EXPECT_EQ(lire_marque(p), 2);
}

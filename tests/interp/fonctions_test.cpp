// The built-in functions on phrases built by hand, with the real vocabulary:
// what the console transcripts cannot reach (the factorial of every whole
// number, row lengths, a result past the stack, 257 open files).
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "core/message.h"
#include "interp/fonctions_interne.h"
#include "startup/startup.h"

namespace {
struct Interne : testing::Test {
  void SetUp() override {
    tas::init();
    kom_charge(ORVANE_SOURCE "/env/koma.h", 0);
    mes_charge(ORVANE_SOURCE "/env/mesa.h", 0);
    messages.charges = true;
    ASSERT_EQ(piles_alloue(100, 100000, 100, 100), 0);
  }

  // The phrase ord(v...) on the evaluation stack.
  mot* phrase(int ord, std::vector<float> v) {
    mot* b = piles.eva_base;
    mot n = static_cast<mot>(v.size());
    mot t[] = {4 + 3 + 4 + n, BLOC_PHRASE, 1, 0, 3 + 4 + n, 0, ord, 4 + n, BLOC_REEL, n, 1};
    std::copy(std::begin(t), std::end(t), b);
    for (mot i = 0; i < n; ++i) ecrit_reel(b + 11 + i, v[i]);
    return b;
  }

  mot* phrase_texte(int ord, const std::string& s) {
    mot* b = piles.eva_base;
    mot l = long_chaine(s.size());
    mot t[] = {4 + 3 + l, BLOC_PHRASE, 1, 0, 3 + l, 0, ord, l, BLOC_CHAINE, 1, static_cast<mot>(s.size())};
    std::copy(std::begin(t), std::end(t), b);
    std::memcpy(b + 11, s.c_str(), s.size() + 1);
    return b;
  }

  std::vector<float> valeurs(const mot* b) {
    EXPECT_EQ(b[1], BLOC_REEL);
    return std::vector<float>(reels(b + 4), reels(b + 4) + b[2]);
  }

  int appelle(mot* b, std::string* sortie = nullptr) {
    testing::internal::CaptureStdout();
    int r = fonction_interne(b, piles.eva_limite);
    std::string s = testing::internal::GetCapturedStdout();
    if (sortie) *sortie = s;
    return r;
  }
};
}  // namespace

TEST_F(Interne, FactorialOfWholeNumbersIsTheNearestFloat) {
  std::vector<float> n;
  for (int i = 0; i <= 35; ++i) n.push_back(static_cast<float>(i));
  n.push_back(2.5f);
  mot* b = phrase(F_FACT, n);
  ASSERT_EQ(appelle(b), 0);
  std::vector<float> f = valeurs(b);
  double exact = 1;  // exact in a double up to 22!
  for (int i = 0; i <= 22; ++i) {
    if (i > 1) exact *= i;
    EXPECT_EQ(f[i], static_cast<float>(exact)) << i << "!";
  }
  // Past 22! the nearest float of the decimal integer, read by strtof.
  const std::pair<int, const char*> grands[] = {
      {23, "25852016738884976640000"},
      {25, "15511210043330985984000000"},
      {27, "10888869450418352160768000000"},
      {30, "265252859812191058636308480000000"},
      {33, "8683317618811886495518194401280000000"},
      {34, "295232799039604140847618609643520000000"}};
  for (auto [i, texte] : grands) EXPECT_EQ(f[i], std::strtof(texte, nullptr)) << i << "!";
  EXPECT_TRUE(std::isinf(f[35]));
  EXPECT_NEAR(f[36], 3.323350970f, 1e-6f);  // gamma(3.5) between the integers
}

TEST_F(Interne, ShapesThatChangeTheLength) {
  mot* b = phrase(F_GENERER, {2, 10, 11, 12, 13, 14});
  appelle(b);
  EXPECT_EQ(valeurs(b), (std::vector<float>{10, 12, 14}));
  b = phrase(F_MODULE_C, {3, 4, 6, 8});
  appelle(b);
  EXPECT_EQ(valeurs(b), (std::vector<float>{5, 10}));
  b = phrase(F_TRANSPOSE, {1, 2, 3, 4, 5, 6});
  b[10] = 3;  // two rows of three
  appelle(b);
  EXPECT_EQ(valeurs(b), (std::vector<float>{1, 4, 2, 5, 3, 6}));
  EXPECT_EQ(b[3], 2);
}

TEST_F(Interne, CommandsAreNotHandledAndTheLimitHolds) {
  // cos(1) vol: a second keyword of list b makes it a command.
  mot* b = phrase(F_COS, {1});
  b[0] += 3;
  b[2] = 2;
  mot* e = b + 4 + b[4];
  e[0] = 3, e[1] = 1, e[2] = 4;
  EXPECT_EQ(appelle(b), 1);
  // A result that does not fit below the limit.
  b = phrase(F_COS, std::vector<float>(50, 1.f));
  EXPECT_EQ(fonction_interne(b, b + 40), PILE_PLEINE);
}

TEST_F(Interne, FilesWrittenThenReadBack) {
  char modele[] = "/tmp/orvane_fXXXXXX";
  int fd = mkstemp(modele);
  ASSERT_GE(fd, 0);
  close(fd);
  mot* b = phrase_texte(F_FOPEN, std::string(modele) + " w");
  appelle(b);
  float f = valeurs(b)[0];
  ASSERT_GE(f, 0);
  b = phrase(F_FWRITE, {f, 104, 105, 33});
  appelle(b);
  EXPECT_EQ(valeurs(b), (std::vector<float>{3}));
  appelle(phrase(F_FCLOSE, {f}));
  b = phrase_texte(F_FOPEN, std::string(modele) + " r");
  appelle(b);
  f = valeurs(b)[0];
  b = phrase(F_FREAD, {f, 10});
  appelle(b);
  EXPECT_STREQ(bloc_texte(b), "hi!");
  appelle(phrase(F_FCLOSE, {f}));
  std::string s;
  EXPECT_EQ(appelle(phrase(F_FREAD, {f, 1}), &s), -1);  // closed slot: no message
  EXPECT_EQ(s, "");
  EXPECT_EQ(appelle(phrase(F_FWRITE, {f, 65}), &s), -1);
  EXPECT_EQ(s, "");
  EXPECT_EQ(appelle(phrase_texte(F_FREAD, "x"), &s), -1);  // no number: the usage
  EXPECT_EQ(s, "fread fwrite(pf,datas)\a\n");
  unlink(modele);
}

TEST_F(Interne, The257thOpenIsRefused) {
  std::string s;
  mot* b;
  for (int i = 0; i < 256; ++i) {
    b = phrase_texte(F_FOPEN, "/dev/null r");
    appelle(b);
    ASSERT_EQ(valeurs(b)[0], static_cast<float>(i));
  }
  b = phrase_texte(F_FOPEN, "/dev/null r");
  appelle(b, &s);
  EXPECT_EQ(s, "TROP DE FICHIERS OUVERTS 256\a\n");
  EXPECT_EQ(valeurs(b), (std::vector<float>{-1}));
}

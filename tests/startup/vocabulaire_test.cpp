// The readers of keyword and message files, and the table built from them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/catalogue.h"
#include "core/message.h"
#include "startup/startup.h"
#include "tests/outils/sortie.h"

namespace {
constexpr const char* KOM =
    "liste de test: tout ce qui precede la premiere barre est commentaire\n"
    "|0: zz\n"
    "0 1 0 0 .\n"
    "|1: vol volume Volume\n"
    "0 1 0 0 .\n"
    "|2: lum\n"
    "0 0 0 0 1,[2]=3,[1]\n"
    "|3: a b  c\n"
    "7,2,8\t9 4,\\ la suite est ignoree\n"
    "5,6\n"
    "|4: ?4\n"
    "0 0 0 0 .\n"
    "|5: vo\n"
    "0 3 0 0 .\n";

void charge() {
  vocab = Vocabulaire{};
  ASSERT_EQ(kom_analyse(KOM, 0), 0);
}

std::vector<float> valeurs(int ord) {
  int n = -1;
  reel* v = mot_valeur(0, ord, &n);
  return std::vector<float>(v, v + n);
}
}  // namespace

TEST(Kom, ValueListsAndStates) {
  charge();
  EXPECT_EQ(vocab.tables[0].nb, 6);
  EXPECT_TRUE(valeurs(0).empty());
  EXPECT_EQ(valeurs(2), (std::vector<float>{1, 3, 3, 0}));
  EXPECT_EQ(valeurs(3), (std::vector<float>{4, 5, 6}));  // "\" goes on
  MotCle* m = mot_entree(0, 3);
  EXPECT_EQ(m->e1, 7);
  EXPECT_EQ(m->etat, 2);
  EXPECT_EQ(m->e3, 8);
  EXPECT_EQ(m->e4, 9);
  EXPECT_EQ(vocab.tables[0].etats[5], 3);
  EXPECT_EQ(mot_dim(0, 2), 4);
  // Defaults and current values are separate copies.
  int n;
  mot_valeur(0, 2, &n)[0] = 42;
  EXPECT_EQ(mot_defaut(0, 2, &n)[0], 1.f);
  mots_reinit();
  EXPECT_EQ(valeurs(2)[0], 1.f);
}

TEST(Kom, NamesEndAtDoubleBlankAndMatchAtWordBoundary) {
  charge();
  EXPECT_STREQ(mot_nom(0, 3), "a");
  EXPECT_STREQ(mot_nom_long(0, 3), "b");
  EXPECT_STREQ(mot_nom_long(0, 1), "Volume");
  EXPECT_STREQ(mot_nom_long(0, 2), "lum");
  EXPECT_EQ(mot_cherche("c"), nullptr);
  EXPECT_EQ(mot_cherche("vol(1)"), mot_entree(0, 1));
  EXPECT_EQ(mot_cherche("volume 2"), mot_entree(0, 1));
  EXPECT_EQ(mot_cherche("volx"), nullptr);
  EXPECT_EQ(mot_cherche("Volume"), nullptr);  // capitalised words never match
  EXPECT_EQ(mot_cherche_long("Volume"), mot_entree(0, 1));
  EXPECT_EQ(mot_cherche_long("vol"), nullptr);  // the primary name is not tested
  EXPECT_EQ(mot_cherche("vo=3"), mot_entree(0, 5));
  EXPECT_EQ(mot_cherche("zz;"), mot_entree(0, 0));
  // A capitalised primary name is still a name of the language.
  ASSERT_EQ(kom_analyse("|0: NIL Nil\n0 0 0 0 .\n", 1), 0);
  EXPECT_EQ(mot_cherche("NIL;"), mot_entree(1, 0));
  EXPECT_EQ(mot_cherche("Nil;"), nullptr);
}

TEST(Kom, IndexIsTheExchangeSortsOrderOnRandomNames) {
  // Twice the same name keeps the order the exchange sort leaves, which is
  // not always the file's: names long and short, shared prefixes of more
  // than eight bytes, bytes above 127 (negative when signed).
  std::srand(7);
  const char alphabet[] = {'a', 'b', '_', '\xe9', '\x81', 'z', '0'};
  for (int essai = 0; essai < 20; ++essai) {
    std::vector<std::string> noms;
    std::string texte;
    int nb = 1 + std::rand() % 200;
    for (int i = 0; i < nb; ++i) {
      std::string n;
      if (i > 0 && std::rand() % 4 == 0) n = noms[std::rand() % i];
      else {
        if (std::rand() % 3 == 0) n = "commun_prefixe";
        for (int k = 1 + std::rand() % 12; k > 0; --k) n += alphabet[std::rand() % 7];
      }
      noms.push_back(n);
      texte += "|" + std::to_string(i) + ": " + n + "\n0 0 0 0 .\n";
    }
    vocab = Vocabulaire{};
    ASSERT_EQ(kom_analyse(texte, 0), 0);
    std::vector<int> ordre(nb);
    for (int i = 0; i < nb; ++i) ordre[i] = i;
    // The end of a name counts as the byte 0: it sorts after bytes above 127.
    auto plus_grand = [&](int a, int b) {
      const char *x = noms[a].c_str(), *y = noms[b].c_str();
      for (;; ++x, ++y) {
        if (*x != *y) return static_cast<signed char>(*x) > static_cast<signed char>(*y);
        if (!*x) return false;
      }
    };
    for (int i = 0; i < nb; ++i)
      for (int j = i + 1; j < nb; ++j)
        if (plus_grand(ordre[i], ordre[j])) std::swap(ordre[i], ordre[j]);
    for (int i = 0; i < nb; ++i) ASSERT_EQ(vocab.tables[0].index[i], ordre[i]) << essai << " " << i;
  }
}

TEST(Kom, BadPairsReportAndPartialResets) {
  charge();
  EXPECT_EQ(mot_entree(0, 99), nullptr);
  EXPECT_EQ(mot_entree(3, 0), nullptr);
  EXPECT_EQ(sortie_de([&] {
    int n;
    EXPECT_EQ(mot_valeur(0, 99, &n), nullptr);
  }), "0 99: ");
  mot* e = vocab.tables[0].etats;
  e[1] = 0;  // default 1
  e[2] = 5;  // default 0
  mots_reinit_etats(true);
  EXPECT_EQ(e[1], 1);
  EXPECT_EQ(e[2], 5);
  mots_reinit_etats(false);
  EXPECT_EQ(e[2], 0);
}

TEST(Kom, FileCutShortLeavesTheCodesOrdinalsOff) {
  // Cut in the middle of a record, and after it: the states the code reads
  // by ordinal stay inside the table and read 0.
  for (const char* texte : {"|0: zz\n0 1 0 0 .\n|1: vol\n0 2 0 0 1,2", "|0: zz\n0 1 0 0 .\n|1: vol\n0 2",
                            "|0: zz\n0 1 0 0 .\n|1: vol volume"}) {
    vocab = Vocabulaire{};
    ASSERT_EQ(kom_analyse(texte, 0), 0) << texte;
    const TableMots& t = vocab.tables[0];
    ASSERT_EQ(t.nb, 2);
    EXPECT_EQ(nb_etats[0], 2);
    EXPECT_EQ(t.etats[0], 1);
    for (int o = t.nb; o < ORDINAUX_CODE; ++o) ASSERT_EQ(t.etats[o], 0) << o;
    EXPECT_EQ(mot_entree(0, 105), nullptr);
    EXPECT_EQ(etat_ou(0, 105, 7), 7);
    // A state written past the file's keywords goes back to 0 with the rest.
    t.etats[ORDINAUX_CODE - 1] = 2;
    t.etats[0] = 0;
    mots_reinit();
    EXPECT_EQ(t.etats[ORDINAUX_CODE - 1], 0);
    EXPECT_EQ(t.etats[0], 1);
    EXPECT_EQ(t.index[0] + t.index[1], 1);  // the index is whole
  }
}

TEST(Kom, RepeatCountsAreBoundedByTheZone) {
  // Counts far past the zone end at once, with a message; nothing is
  // allocated for them.
  for (const char* n : {"1000000000", "2147483647", "99999999999999999999", "25001", "24991]=3.5,[9"}) {
    vocab = Vocabulaire{};
    std::string texte = std::string("|0: zz\n0 1 0 0 .\n|1: grand\n0 0 0 0 1,[") + n + "]\n";
    testing::internal::CaptureStdout();
    EXPECT_EQ(kom_analyse(texte, 0), -1) << n;
    std::string s = testing::internal::GetCapturedStdout();
    EXPECT_NE(s.find("1: trop de valeurs"), std::string::npos) << s;
  }
  // A count that fits is kept whole, and so is a long plain list.
  vocab = Vocabulaire{};
  ASSERT_EQ(kom_analyse("|0: zz\n0 1 0 0 .\n|1: grand\n0 0 0 0 1,[20011]=-2.5,7\n", 0), 0);
  int nv = 0;
  reel* v = mot_valeur(0, 1, &nv);
  ASSERT_EQ(nv, 20013);
  EXPECT_EQ(v[0], 1.f);
  EXPECT_EQ(v[20011], -2.5f);
  EXPECT_EQ(v[20012], 7.f);
  std::string liste = "|0: longue\n0 0 0 0 ";
  for (int i = 0; i < 30000; ++i) liste += "3,";
  vocab = Vocabulaire{};
  EXPECT_NE(sortie_de([&] { EXPECT_EQ(kom_analyse(liste, 0), -1); }).find("trop de valeurs"), std::string::npos);
}

TEST(Mes, EscapesAndMessageBoundaries) {
  messages = Messages{};
  ASSERT_EQ(mes_analyse("commentaire |0:\n"
                        "|1:\\n\n"
                        "|2:deux\nlignes\\7\\e\n"
                        "|3:code \\x65 \\t.\n"
                        "|4:dernier sans barre\n",
                        0),
            0);
  messages.charges = true;
  EXPECT_EQ(messages.tables[0].nb, 5);
  EXPECT_STREQ(message_texte(0, 0), "");
  EXPECT_STREQ(message_texte(0, 1), "\n");
  EXPECT_STREQ(message_texte(0, 2), "deux\nlignes\a ");
  EXPECT_STREQ(message_texte(0, 3), "code A \t.");
  EXPECT_STREQ(message_texte(0, 4), "dernier sans barre\n");
  EXPECT_EQ(sortie_de([&] {
    EXPECT_EQ(message_texte(0, 5), nullptr);
    EXPECT_EQ(message(1, 0), -1);
  }), "MESSAGE 0 5 ILLEGAL\a\nMESSAGE 1 0 ILLEGAL\a\n");
}

TEST(Mes, BellFollowsA52AndFallbackBeforeTables) {
  messages = Messages{};
  testing::internal::CaptureStdout();
  message(0, 28);
  message(0, 3);  // not one of the five: nothing
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "erreur allocation\a\n");
  mes_analyse("|0:a\\7b", 0);
  messages.charges = true;
  mot table[60] = {};
  etats[0] = table;
  nb_etats[0] = static_cast<int>(std::size(table));
  testing::internal::CaptureStdout();
  message(0, 0);
  table[52] = 1;
  message(0, 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "ab" "a\ab");
  etats[0] = nullptr;
  nb_etats[0] = 0;
}

TEST(Kom, ListingWrapsAtPageWidthAndHidesReservedNames) {
  vocab = Vocabulaire{};
  messages = Messages{};
  mes_analyse("|0:> \n|1:\\n", 0);
  messages.charges = true;
  // edi (ordinal 0 here stands in for a36 at its place below) sets width 20.
  std::string kom = "|0: aaaa\n0 0 0 0 .\n|1: bbbb bb Bbbb\n0 0 0 0 .\n|2: ?2\n0 0 0 0 .\n";
  for (int i = 3; i < 36; ++i) kom += "|" + std::to_string(i) + ": ?" + std::to_string(i) + "\n0 0 0 0 .\n";
  kom += "|36: edi\n0 0 0 0 20,50\n|37: cccccccc\n0 0 0 0 .\n";
  ASSERT_EQ(kom_analyse(kom, 0), 0);
  EXPECT_EQ(sortie_de([&] { EXPECT_EQ(mots_liste(), 0); }), "\naaaa bbbb(bb) edi \ncccccccc \n");
}

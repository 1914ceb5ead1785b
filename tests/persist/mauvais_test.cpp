// Bad files of every kind: each load gives its numbered message and -1,
// and the table is exactly as it was (no object changed, none half made).
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "tests/persist/outils.h"

namespace {
struct Mauvais : Monde {
  std::vector<Image> avant;
  std::mt19937 g{31};
  int essais = 0;
  void SetUp() override {
    Monde::SetUp();
    for (int k = 1; k <= 3; ++k) objet_hasard(4, k, g);
    OptionsFichier opt;
    ASSERT_GT(objets_ecrit(4, "bon", {}, opt), 0);
    opt.forme = FORME_ASCII;
    ASSERT_GT(objets_ecrit(4, "bon", {}, opt), 0);
    opt.forme = FORME_BINAIRE;
    opt.compresse = true;
    ASSERT_GT(objets_ecrit(4, "bon", {}, opt), 0);
    // The table the bad loads must leave alone differs from the file's.
    objet_supprime_num(4, 2);
    objet_hasard(4, 9, g);
    avant = cliche({4, 24, 114});
  }
  // Loads the bytes as the form's file; the message printed.
  std::string charge(const std::vector<char>& v, int forme = FORME_BINAIRE, bool z = false) {
    OptionsFichier opt;
    opt.forme = forme;
    opt.compresse = z;
    // A new name each time: ext4 flushes a file rewritten in place at its close.
    std::string racine = "m" + std::to_string(++essais);
    ecrit_octets(racine + "." + extension_type(4, forme) + (z ? ".Z" : ""), v);
    int r = 0;
    std::string s = sortie_de([&] { r = objets_lit(4, racine, opt); });
    EXPECT_EQ(r, -1) << s;
    EXPECT_EQ(cliche({4, 24, 114}), avant) << s;
    return s;
  }
  std::string texte(std::string t) { return charge(std::vector<char>(t.begin(), t.end()), FORME_ASCII); }
};

bool dit(const std::string& s, const char* m) { return s.find(m) != std::string::npos; }

TEST_F(Mauvais, TruncatedAtEveryPlace) {
  auto bon = octets_de("bon.vol");
  // Every cut that is not on an object's boundary; a cut inside a word too.
  for (std::size_t n = 1; n < bon.size(); n += (n < 200 ? 1 : 37)) {
    auto v = bon;
    v.resize(n);
    OptionsFichier opt;
    std::string racine = "t" + std::to_string(n);
    ecrit_octets(racine + ".vol", v);
    int r = 0;
    std::string s = sortie_de([&] { r = objets_lit(4, racine, opt); });
    // A cut exactly between two objects is a shorter good file.
    if (r >= 0) continue;
    EXPECT_TRUE(dit(s, "tronque") || dit(s, "corrompu")) << n << s;
    ASSERT_EQ(cliche({4, 24, 114}), avant) << n;
  }
}

TEST_F(Mauvais, LyingLengths) {
  auto bon = octets_de("bon.vol");
  // The first attribute's length word sits behind the 8-word head.
  for (std::int32_t mensonge : {-5, 0, 3, 5, 10000001, 0x7fffffff, static_cast<std::int32_t>(bon.size())}) {
    auto v = bon;
    std::memcpy(v.data() + 32, &mensonge, 4);
    EXPECT_TRUE(dit(charge(v), "corrompu")) << mensonge;
  }
  // A tail whose own length passes its attribute, and an attribute count
  // past what the file holds.
  auto v = bon;
  std::int32_t h;
  std::memcpy(&h, v.data() + 40, 4);
  std::int32_t grand = 1 << 20;
  std::memcpy(v.data() + 32 + 4 * h, &grand, 4);
  EXPECT_TRUE(dit(charge(v), "corrompu"));
  v = bon;
  std::int32_t n = 99999;
  std::memcpy(v.data() + 8, &n, 4);
  charge(v);
  n = -1;
  std::memcpy(v.data() + 8, &n, 4);
  charge(v);
}

TEST_F(Mauvais, OtherEndiannessAndRandomBytes) {
  auto bon = octets_de("bon.vol");
  auto v = bon;
  for (std::size_t k = 0; k + 4 <= v.size(); k += 4) std::reverse(v.begin() + static_cast<long>(k), v.begin() + static_cast<long>(k) + 4);
  charge(v);
  std::mt19937 h(77);
  for (int essai = 0; essai < 200; ++essai) {
    std::vector<char> r(1 + h() % 3000);
    for (char& c : r) c = static_cast<char>(h());
    charge(r);
  }
  // A good file of another type: message 0:111.
  objets_vide();
  objet_hasard(24, 1, g);
  OptionsFichier opt;
  ASSERT_GT(objets_ecrit(24, "l", {}, opt), 0);
  objets_vide();
  for (int k = 1; k <= 3; ++k) objet_hasard(4, k, g);
  avant = cliche({4, 24, 114});
  EXPECT_TRUE(dit(charge(octets_de("l.lum")), "autre type"));
}

TEST_F(Mauvais, AsciiFaults) {
  std::string bon;
  for (char c : octets_de("bon.ascii.vol")) bon += c;
  EXPECT_TRUE(dit(texte(bon + "/* pas ferme"), "Commentaire non ferme"));
  EXPECT_TRUE(dit(texte(bon.substr(0, bon.rfind('}'))), "accolades"));
  EXPECT_TRUE(dit(texte(bon + "Volume Numero(4) {\n\tCoordonnees\t{\n"), "Objet abandonne"));
  EXPECT_TRUE(dit(texte(bon + std::string(300, 'x')), "Depassement"));
  EXPECT_TRUE(dit(texte(bon + "Volume Numero(4) {\n\tPasUnMot\t{\n\t\t}\n}\n"), "PasUnMot: "));
  EXPECT_TRUE(dit(texte(bon + "Lumiere Numero(4)\n"), "Lumiere: "));
  // 20001 values in one attribute: over the limit of the work Bloc.
  std::string gros = "Volume Numero(4) {\n\tCouleur\t{\n\t\t-1039 reel 20001 1 20001\n";
  for (int k = 0; k < 20001; ++k) gros += "1 ";
  EXPECT_TRUE(dit(texte(gros + "\n\t\t}\n}\n"), "Depassement"));
  // Values that do not read as their kind, and a string not closed.
  texte("Volume Numero(4) {\n\tCouleur\t{\n\t\t-1039 reel 1 1 1\n\t\tabc\n\t\t}\n}\n");
  texte("Volume Numero(4) {\n\tCouleur\t{\n\t\t-1039 entier 1 1 1\n\t\t99999999999\n\t\t}\n}\n");
  texte("Volume Numero(4) Nom(\"abc\n) {\n}\n");
  texte("Volume Numero(99999999999)\n");
  texte("Volume Numero(4) {\n\tCouleur\t{\n\t\t-1039 mots -1013 1 1 1\n\t\t5\n\t\t}\n}\n");
  // The writer keeps an attribute of more than 20000 words out, and says so.
  Objet* o = objet_trouve(4, 0, 1, nullptr);
  for (Objet* p = piles.obj_base; p < piles.obj_haut; ++p)
    if (p->type == 4 && p->numero == 1) o = p;
  attribut_de(o, {1, 17}, queue_reels(std::vector<float>(20001, 0.5f), 20001, 1));
  OptionsFichier opt;
  opt.forme = FORME_ASCII;
  opt.demande = -3;
  std::string s = sortie_de([&] { EXPECT_GT(objets_ecrit(4, "gros", {}, opt), 0); });
  EXPECT_TRUE(dit(s, "Depassement"));
}

TEST_F(Mauvais, GzipCutShortDirectoryAndPermission) {
  auto z = octets_de("bon.vol.Z");
  for (std::size_t n : {z.size() - 1, z.size() - 9, z.size() / 2, std::size_t{11}}) {
    auto v = z;
    v.resize(n);
    std::string s = charge(v, FORME_BINAIRE, true);
    EXPECT_TRUE(dit(s, "tronque") || dit(s, "corrompu")) << n << s;
  }
  // A directory under the file's name.
  std::filesystem::create_directory("d.vol");
  std::string s = sortie_de([&] { EXPECT_EQ(objets_lit(4, "d", OptionsFichier{}), -1); });
  EXPECT_TRUE(dit(s, "Ouverture du fichier impossible"));
  EXPECT_EQ(cliche({4, 24, 114}), avant);
  // No read permission (root reads anyway: then it is a good file).
  std::filesystem::copy_file("bon.vol", "p.vol");
  chmod("p.vol", 0);
  int r = 0;
  s = sortie_de([&] { r = objets_lit(4, "p", OptionsFichier{}); });
  if (geteuid() != 0) {
    EXPECT_EQ(r, -1);
    EXPECT_TRUE(dit(s, "Ouverture du fichier impossible"));
    EXPECT_EQ(cliche({4, 24, 114}), avant);
  }
}
}  // namespace

namespace {
// A table with room for fewer objects than the file holds: the load is
// refused before anything is deleted or made.
TEST_F(Mauvais, TableTooSmallForTheFile) {
  while (piles.obj_fin - piles.obj_haut > 1) objet_cree(1, 49, 0, nullptr, nullptr, 7);
  auto plein = cliche({4, 49});
  OptionsFichier opt;
  opt.remplace = false;
  opt.decalage = 50;
  std::string s = sortie_de([&] { EXPECT_EQ(objets_lit(4, "bon", opt), -1); });
  EXPECT_TRUE(dit(s, "Table des objets pleine")) << s;
  EXPECT_EQ(cliche({4, 49}), plein);
  // Replacing the volumes frees their entries: then it fits.
  EXPECT_EQ(objets_lit(4, "bon", OptionsFichier{}), 3);
}
}  // namespace

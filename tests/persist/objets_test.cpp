// Round trips of every type of the extension table through the binary and
// ASCII forms, the packed geometry, gzip streams, scenes with their eye,
// the filters of a save and the search of a file by name.
#include <sys/stat.h>
#include <zlib.h>

#include "tests/persist/outils.h"

namespace {
constexpr int TYPES[] = {4, 24, 25, 49, 59, 69, 88, 114, 120, 148, 152, 161};

using Objets = Monde;

// Every type: random objects with large and odd numbers, saved, deleted,
// read back, equal word for word (floats bit for bit, in ASCII through
// their nine printed digits, which give the same bits back).
TEST_F(Objets, EveryTypeRoundTripsInBinaryAndAscii) {
  std::mt19937 g(1717);
  for (int forme : {FORME_BINAIRE, FORME_ASCII}) {
    for (int type : TYPES) {
      objets_vide();
      for (int k = 0; k < 3; ++k) {
        int numero = k == 0 ? 1 : k == 1 ? -NUMERO_MAX : static_cast<int>(g() % 100000000);
        Objet* o = objet_hasard(type, numero, g, k != 2);
        if (type == 148) memoire_hasard(o, 1 + k, g);
      }
      auto avant = cliche({type});
      OptionsFichier opt;
      opt.forme = forme;
      opt.filtre = FILTRE_TOUT;
      opt.demande = -3;  // alpha images overwrite the volumes' file
      std::string sortie = sortie_de([&] { EXPECT_GT(objets_ecrit(type, "f", {}, opt), 0); });
      objet_supprime_type(1, type);
      ASSERT_TRUE(cliche({type}).empty());
      sortie += sortie_de([&] { EXPECT_EQ(objets_lit(type, "f", opt), 3); });
      auto apres = cliche({type});
      ASSERT_EQ(apres.size(), 3u) << type << " " << forme << sortie;
      for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_EQ(apres[k].numero, avant[k].numero);
        EXPECT_EQ(apres[k].nom, avant[k].nom);
        EXPECT_EQ(apres[k].sous_type, avant[k].sous_type);
        EXPECT_EQ(apres[k].f4, avant[k].f4);
        ASSERT_EQ(apres[k].attributs.size(), avant[k].attributs.size());
        for (std::size_t j = 0; j < avant[k].attributs.size(); ++j)
          EXPECT_EQ(apres[k].attributs[j], avant[k].attributs[j]) << "type " << type << " forme " << forme << " attr " << j;
      }
    }
  }
  // Alpha images lie under the volumes' extension and keep their type.
  EXPECT_TRUE(std::filesystem::exists("f.vol"));
  EXPECT_TRUE(std::filesystem::exists("f.ascii.vol"));
  EXPECT_FALSE(std::filesystem::exists("f.alp"));
}

// The short form halves the geometry and truncates coordinates toward 0;
// faces come back as they were.
TEST_F(Objets, PackedGeometryLosesFractionsOnly) {
  std::mt19937 g(8);
  Objet* o = objet_cree(1, 4, 0, nullptr, nullptr, 5);
  std::vector<float> som;
  for (int k = 0; k < 3003; ++k) som.push_back(static_cast<float>(static_cast<int>(g() % 65000) - 32500) + 0.75f * (k % 2 ? 1 : -1));
  som[0] = 1.75f, som[1] = -1.75f, som[2] = 32767.9f;
  attribut_de(o, {1, 86}, queue_reels(som, 1001, 3));  // 3003 values: an odd count
  std::vector<std::vector<int>> fac;
  for (int k = 0; k < 777; ++k) fac.push_back({1 + k, 2 + k, 3 + k, 32767});
  attribut_de(o, {1, 15}, faces(fac));
  auto avant = cliche({4});
  OptionsFichier opt;
  opt.court = true;
  int n_court = objets_ecrit(4, "c", {}, opt);
  opt.court = false;
  int n_plein = objets_ecrit(4, "p", {}, opt);
  EXPECT_LT(n_court, n_plein * 0.55);
  objets_vide();
  ASSERT_EQ(objets_lit(4, "c", opt), 1);
  auto apres = cliche({4});
  const auto& a = apres[0].attributs;
  ASSERT_EQ(a.size(), 2u);
  EXPECT_EQ(a[1], avant[0].attributs[1]);  // faces exactly
  ASSERT_EQ(a[0].size(), avant[0].attributs[0].size());
  EXPECT_EQ(a[0][7], BLOC_REEL);
  for (std::size_t k = 0; k < som.size(); ++k) EXPECT_EQ(lit_reel(a[0].data() + 10 + k), std::trunc(som[k])) << k;
  EXPECT_EQ(lit_reel(a[0].data() + 10), 1.f);
  EXPECT_EQ(lit_reel(a[0].data() + 11), -1.f);
}

// "Z" writes a gzip stream that gzip itself opens, with the very bytes of
// the plain save inside; the reader takes it back.
TEST_F(Objets, CompressedFileIsAGzipStreamReadBack) {
  std::mt19937 g(99);
  for (int k = 1; k <= 4; ++k) objet_hasard(4, k, g);
  auto avant = cliche({4});
  OptionsFichier opt;
  ASSERT_GT(objets_ecrit(4, "plein", {}, opt), 0);
  opt.compresse = true;
  ASSERT_GT(objets_ecrit(4, "z", {}, opt), 0);
  auto z = octets_de("z.vol.Z");
  ASSERT_GT(z.size(), 2u);
  EXPECT_EQ(static_cast<unsigned char>(z[0]), 0x1f);
  EXPECT_EQ(static_cast<unsigned char>(z[1]), 0x8b);
  ASSERT_EQ(std::system("gzip -dc < z.vol.Z > z.brut"), 0);
  EXPECT_EQ(octets_de("z.brut"), octets_de("plein.vol"));
  objets_vide();
  ASSERT_EQ(objets_lit(4, "z", opt), 4);
  EXPECT_EQ(cliche({4}), avant);
  // A gzip stream under the plain name is read as well.
  std::filesystem::rename("z.vol.Z", "y.vol");
  objets_vide();
  opt.compresse = false;
  ASSERT_EQ(objets_lit(4, "y", opt), 4);
  EXPECT_EQ(cliche({4}), avant);
}

// A scene: three volumes, two lights and a view, restored into an empty
// table, and the eye comes back from the view.
TEST_F(Objets, SceneComesBackWithItsEye) {
  std::mt19937 g(3);
  for (int k = 1; k <= 3; ++k) objet_hasard(4, k * 11, g);
  for (int k = 1; k <= 2; ++k) objet_hasard(24, k, g, false);
  objet_hasard(88, 1, g);  // not a scene's
  oeil_courant = Oeil{};
  oeil_courant.oeil[0] = 12.5f, oeil_courant.vise[1] = -3.f, oeil_courant.foc = 0.7f, oeil_courant.roul = 0.25f;
  oeil_courant.proche = 2.f, oeil_courant.loin = 5000.f, oeil_courant.projection = 63;
  ASSERT_NE(vue_depuis_oeil(7), nullptr);
  Oeil vu = oeil_courant;
  auto avant = cliche({4, 24, 114});
  ASSERT_EQ(avant.size(), 6u);
  ASSERT_GT(objets_ecrit(B_SCENE, "s", {}, OptionsFichier{}), 0);
  objets_vide();
  oeil_courant = Oeil{};
  ASSERT_EQ(objets_lit(B_SCENE, "s", OptionsFichier{}), 6);
  EXPECT_EQ(cliche({4, 24, 114}), avant);
  EXPECT_TRUE(cliche({88}).empty());
  EXPECT_EQ(std::memcmp(&oeil_courant, &vu, sizeof vu), 0);
  // With no view in the table, the file still carries the current eye.
  objet_supprime_type(1, 114);
  oeil_courant.oeil[2] = -77.f;
  ASSERT_GT(objets_ecrit(B_VUE, "v", {}, OptionsFichier{}), 0);
  EXPECT_TRUE(cliche({114}).empty());
  oeil_courant = Oeil{};
  ASSERT_EQ(objets_lit(B_VUE, "v", OptionsFichier{}), 1);
  EXPECT_EQ(oeil_courant.oeil[2], -77.f);
}

// A load replaces the type's objects, shifts numbers, or replaces only
// the vertices of objects that exist.
TEST_F(Objets, LoadModes) {
  std::mt19937 g(5);
  objet_hasard(4, 1, g);
  objet_hasard(4, 2, g);
  ASSERT_GT(objets_ecrit(4, "m", {std::vector<int>{2}}, OptionsFichier{}), 0);  // only number 2
  auto deux = cliche({4})[1];
  OptionsFichier dec;
  dec.remplace = false;
  dec.decalage = 100;
  ASSERT_EQ(objets_lit(4, "m", dec), 1);
  auto v = cliche({4});
  ASSERT_EQ(v.size(), 3u);
  EXPECT_EQ(v[2].numero, 102);
  EXPECT_EQ(v[2].attributs, deux.attributs);
  // seul: the vertices of 2 replaced in place, nothing else touched.
  Objet* o = objet_trouve(4, 0, 2, nullptr);
  for (Objet* p = piles.obj_base; p < piles.obj_haut; ++p)
    if (p->type == 4 && p->numero == 2) o = p;
  attribut_enleve_1(o, false, 1, 86);
  attribut_de(o, {1, 86}, queue_reels({1, 2, 3}, 1, 3));
  auto avant = cliche({4});
  OptionsFichier seul;
  seul.seul = true;
  ASSERT_EQ(objets_lit(4, "m", seul), 1);
  auto apres = cliche({4});
  ASSERT_EQ(apres.size(), 3u);
  EXPECT_EQ(apres[1].attributs.back(), deux.attributs[0]);
  EXPECT_EQ(apres[0], avant[0]);
  // seul on a missing object: nothing changes.
  OptionsFichier seul_dec = seul;
  seul_dec.decalage = 5000;
  std::string s = sortie_de([&] { EXPECT_EQ(objets_lit(4, "m", seul_dec), -1); });
  EXPECT_EQ(cliche({4}), apres);
  // The replacing load: only what the file holds stays.
  ASSERT_EQ(objets_lit(4, "m", OptionsFichier{}), 1);
  EXPECT_EQ(cliche({4}).size(), 1u);
}

// What a save leaves out, by its options.
TEST_F(Objets, FiltersOfASave) {
  std::mt19937 g(11);
  Objet* o = objet_hasard(4, 1, g);
  attribut_de(o, {1, -86}, queue_reels({1, 2, 3}, 1, 3));      // a saved copy
  attribut_de(o, {1, 111}, queue_reels({4, 5, 6}, 1, 3));      // speed
  attribut_de(o, {1, 93}, queue_reels({1}, 1, 1));             // animation
  attribut_de(o, {1, 46, 1, 15}, queue_reels({1}, 1, 1));      // neighbours
  objet_cree(1, 4, 0, nullptr, nullptr, 2);                    // no data: not written
  auto compte = [&](int filtre) {
    OptionsFichier opt;
    opt.filtre = filtre;
    opt.demande = -3;
    objets_ecrit(4, "x", {std::vector<int>{1, 2}}, opt);
    objet_supprime_type(1, 4);
    objets_lit(4, "x", OptionsFichier{});
    auto v = cliche({4});
    objets_vide();
    return v;
  };
  auto tout = compte(FILTRE_TOUT);
  ASSERT_EQ(tout.size(), 1u);
  EXPECT_EQ(tout[0].attributs.size(), 10u);
  // Rebuild and try the others.
  auto refait = [&] {
    objets_vide();
    std::mt19937 g2(11);
    o = objet_hasard(4, 1, g2);
    attribut_de(o, {1, -86}, queue_reels({1, 2, 3}, 1, 3));
    attribut_de(o, {1, 111}, queue_reels({4, 5, 6}, 1, 3));
    attribut_de(o, {1, 93}, queue_reels({1}, 1, 1));
    attribut_de(o, {1, 46, 1, 15}, queue_reels({1}, 1, 1));
  };
  refait();
  EXPECT_EQ(compte(FILTRE_NORMAL)[0].attributs.size(), 7u);
  refait();
  EXPECT_EQ(compte(FILTRE_NEGATIF)[0].attributs.size(), 6u);
  refait();
  EXPECT_EQ(compte(FILTRE_GEOMETRIE)[0].attributs.size(), 2u);
}

// A file opens from the current, then the user, then the environment
// directory; ".x" only in the current one; -1 only in the environment.
TEST_F(Objets, SearchOrderCurrentUserEnvironment) {
  std::filesystem::create_directories("uti");
  std::filesystem::create_directories("envd");
  std::snprintf(dem.chemin_uti, sizeof dem.chemin_uti, "%s/uti/", dossier.c_str());
  std::snprintf(dem.chemin_env, sizeof dem.chemin_env, "%s/envd/", dossier.c_str());
  std::mt19937 g(2);
  auto ecrit_dans = [&](const char* ou, int numero) {
    objets_vide();
    objet_hasard(4, numero, g);
    ASSERT_GT(objets_ecrit(4, std::string(ou) + "/t", {}, OptionsFichier{}), 0);
  };
  ecrit_dans("envd", 3);
  ecrit_dans("uti", 2);
  auto numero_lu = [&](const char* nom, int demande_env = 0) {
    objets_vide();
    OptionsFichier o;
    int r = demande_env ? -1 : objets_lit(4, nom, o);
    if (demande_env) {
      std::string c;
      if (ouvre("vol", nom, false, -1, &c) == 1) r = objets_lit_chemin(4, c, o);
    }
    auto v = cliche({4});
    return r == 1 && v.size() == 1 ? v[0].numero : -1;
  };
  EXPECT_EQ(numero_lu("t"), 2);
  EXPECT_EQ(numero_lu("t", 1), 3);
  std::filesystem::remove("uti/t.vol");
  EXPECT_EQ(numero_lu("t"), 3);
  ecrit_dans(".", 1);
  EXPECT_EQ(numero_lu("t"), 1);
  EXPECT_EQ(numero_lu(".t"), 1);
  std::filesystem::remove("t.vol");
  std::string s = sortie_de([&] { EXPECT_EQ(numero_lu(".t"), -1); });
  EXPECT_NE(s.find("Ouverture du fichier impossible"), std::string::npos);
  std::string c;
  EXPECT_EQ(ouvre("vol", "absent", false, 33, &c), -1);
  EXPECT_EQ(ouvre("vol", "t", false, 33, &c), 1);
  EXPECT_EQ(c, std::string(dem.chemin_env) + "t.vol");
}

TEST_F(Objets, NamesByTypeAndForm) {
  EXPECT_EQ(extension_type(4, FORME_BINAIRE), "vol");
  EXPECT_EQ(extension_type(114, FORME_ASCII), "ascii.vue");
  EXPECT_EQ(extension_type(8, FORME_EXEC), "exec.aff");
  EXPECT_EQ(extension_type(152, FORME_BINAIRE), "vol");
  EXPECT_EQ(extension_type(7, FORME_ASCII), "ascii");
  EXPECT_EQ(extension_texte(6), "fon");
  EXPECT_EQ(extension_texte(22), "");
  EXPECT_EQ(extension_texte(161), "res");
}
}  // namespace

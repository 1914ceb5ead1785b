// The command aff and the eye through the command dispatch, on phrases built
// as the engine builds them, with the real vocabulary and no window: what
// the walk decides for each volume (route, mode, method, type, lights), the
// test pass and its projected vertices, the working volume of a list of
// points, and bad input of every kind ending in a message or a no-op.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "core/message.h"
#include "core/objet.h"
#include "display/aff_interne.h"
#include "display/display.h"
#include "display/oeil.h"
#include "geom/geom.h"
#include "image/image.h"
#include "interp/interp.h"
#include "startup/startup.h"
#include "tests/outils/blocs.h"
#include "tests/outils/phrase.h"
#include "tests/outils/vocabulaire.h"

namespace {
using namespace aff_b;

El b(int ord) { return el(1, ord); }
El b(int ord, std::vector<float> v) { return el(1, ord, std::move(v)); }

struct Aff : testing::Test, Lanceur {
  Oeil oeil_depart;

  void SetUp() override {
    vocabulaire_charge();
    ASSERT_EQ(piles_alloue(100, 400000, 12000, 2000), 0);
    objets_vide();
    ecran.image_ecran = nullptr;
    geom = Geom{};
    aff_bilan = Aff_bilan{};
    oeil_depart = oeil_courant = Oeil{};
    aff_enregistre();
  }

  Objet* volume(int n) { return objet_trouve(B_VOL, 0, n, nullptr); }
  Objet* cube(int n, float cote = 2) {
    Objet* o = objet_cree(1, B_VOL, 0, nullptr, nullptr, n);
    EXPECT_EQ(vol_cube(o, cote), 0);
    return o;
  }
  Objet* volume_de(int n, const std::vector<float>& som, std::vector<mot> fac) {
    Objet* o = objet_cree(1, B_VOL, 0, nullptr, nullptr, n);
    EXPECT_EQ(vol_som_ecrit(o, som.data(), static_cast<int>(som.size() / 3), 3), 0);
    if (!fac.empty()) {
      EXPECT_EQ(vol_fac_ecrit(o, fac.data()), 0);
    }
    return o;
  }
  const mot* projetes(Objet* o) {
    const mot cle[4] = {1, PROJ, 1, SOMMET};
    return vol_valeur(o, 2, cle);
  }
};

TEST_F(Aff, ModesMethodsAndFlagsRouteEachVolume) {
  cube(1);
  cube(2);
  // aff alone: every volume, shaded by the illumination flag, to the
  // software engine (no window), type from the volume's default illum.
  lance({b(AFF)});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(aff_bilan.logiciel, 2);
  EXPECT_EQ(aff_bilan.mode, 1);
  EXPECT_EQ(aff_bilan.type, 1);
  EXPECT_FALSE(aff_bilan.rapide);
  // Wire by illum(0) in the phrase: the fast path unless flag [69] is off.
  lance({b(AFF), vol({1}), b(ILLUM, {0})});
  EXPECT_EQ(aff_bilan.mode, 0);
  EXPECT_TRUE(aff_bilan.rapide);
  etats[1][RAPIDE] = 0;
  lance({b(AFF), vol({1}), b(ILLUM, {0})});
  EXPECT_FALSE(aff_bilan.rapide);
  etats[1][RAPIDE] = 1;
  // Numbered points, points, the volume's own smooth type, both sides.
  lance({b(AFF), vol({1}), el(0, aff_a::NUM)});
  EXPECT_EQ(aff_bilan.mode, MODE_NUMEROS);
  lance({b(AFF), vol({1}), b(SOMMET)});
  EXPECT_EQ(aff_bilan.mode, MODE_POINTS);
  const float lisse[5] = {-2, 1, 0.5f, 10, 0};
  ASSERT_EQ(vol_illum_ecrit(volume(2), lisse, 5), 0);
  lance({b(AFF), vol({2})});
  EXPECT_EQ(aff_bilan.type, -2);
  // Illumination type 0 turns a shaded display into wire.
  const float fil[1] = {0};
  ASSERT_EQ(vol_illum_ecrit(volume(2), fil, 1), 0);
  lance({b(AFF), vol({2})});
  EXPECT_EQ(aff_bilan.mode, 0);
  // gl with no window: the software engine draws it, method 1 recorded.
  long avant = aff_bilan.logiciel;
  lance({b(AFF), vol({1}), b(GL)});
  EXPECT_EQ(aff_bilan.logiciel, avant + 1);
  EXPECT_EQ(aff_bilan.gl, 0);
  EXPECT_EQ(aff_bilan.methode, METHODE_GL);
  // The box: by the phrase, or forced by flag [141].
  lance({b(AFF), vol({1}), b(BOITE)});
  EXPECT_EQ(aff_bilan.boites, 1);
  etats[1][BOITE] = 1;
  lance({b(AFF), vol({1})});
  EXPECT_EQ(aff_bilan.boites, 2);
  EXPECT_EQ(aff_bilan.methode, METHODE_BOITE);
  etats[1][BOITE] = 0;
  // Flag [8] off: nothing is displayed, but the test pass still runs.
  etats[1][AFF] = 0;
  avant = aff_bilan.logiciel;
  lance({b(AFF), vol({1})});
  EXPECT_EQ(aff_bilan.logiciel, avant);
  lance({b(AFF), vol({1}), el(0, aff_a::GENERER)});
  EXPECT_EQ(aff_bilan.test, 1);
  etats[1][AFF] = 1;
  // A margin: a volume wholly outside the screen grown by it is not drawn,
  // one that reaches into it is; behind the eye is outside too.
  const float marge[1] = {10};
  Objet* loin = cube(3);
  attribut_ecrit_1(loin, 1, MARGE, marge, 1, 1);
  avant = aff_bilan.logiciel;
  lance({b(AFF), vol({3})});
  EXPECT_EQ(aff_bilan.logiciel, avant + 1);
  for (float dx : {1e5f, -1e5f}) {
    Transfo t;
    t.op = B_DEP;
    t.v[0] = dx;
    ASSERT_EQ(transformer_vol(loin, &t, nullptr, false), 0);
    lance({b(AFF), vol({3})});
    EXPECT_EQ(aff_bilan.logiciel, avant + 1);
    t.v[0] = -dx;
    transformer_vol(loin, &t, nullptr, false);
  }
  Transfo derriere;
  derriere.op = B_DEP;
  derriere.v[2] = -5000;
  transformer_vol(loin, &derriere, nullptr, false);
  lance({b(AFF), vol({3})});
  EXPECT_EQ(aff_bilan.hors_ecran, 3);
  // The caller's faces, numbers out of range dropped.
  lance({b(AFF), vol({2}), b(FAC, {2, 5, 99, 7, 0, -4, 1e12f})});
  EXPECT_EQ(aff_bilan.n_liste, 2);
  lance({b(AFF), vol({2})});
  EXPECT_EQ(aff_bilan.n_liste, -1);
  // Volume 1 shown with the attributes of volume 2 (b65), unless the flag
  // is off.
  const float deux[1] = {2};
  const float lisse3[1] = {3};
  ASSERT_EQ(vol_illum_ecrit(volume(2), lisse3, 1), 0);
  attribut_ecrit_1(volume(1), 1, SUBST, deux, 1, 1);
  lance({b(AFF), vol({1})});
  EXPECT_EQ(aff_bilan.type, 3);
  etats[1][SUBST] = 0;
  lance({b(AFF), vol({1})});
  EXPECT_EQ(aff_bilan.type, 1);
  etats[1][SUBST] = 1;
  attribut_enleve_1(volume(1), false, 1, SUBST);
  // The volume's own method (b108).
  const float g[1] = {2};
  attribut_ecrit_1(volume(1), 1, GL, g, 1, 1);
  lance({b(AFF), vol({1})});
  EXPECT_EQ(aff_bilan.methode, METHODE_BOITE);
  EXPECT_EQ(r, 0);
}

TEST_F(Aff, TestPassMakesProjectedVerticesAndDrawsNothing) {
  // A vertex on the point looked at lands in the middle of the working
  // image; a pair symmetric about the line of sight lands symmetric.
  Objet* o = volume_de(1, {0, 0, 0, 50, 20, 0, -50, -20, 0}, faces({{1, 2, 3}}));
  lance({b(AFF), vol({1}), el(0, aff_a::GENERER)});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(aff_bilan.test, 1);
  EXPECT_EQ(aff_bilan.logiciel, 0);
  const mot* p = projetes(o);
  ASSERT_NE(p, nullptr);
  ASSERT_EQ(p[2], 3);
  ASSERT_EQ(p[3], PROJ_PAS);
  mot* im = ima_ecran();
  const float* q = reels(p + 4);
  EXPECT_NEAR(q[4], ima_l(im) / 2.f, 1e-3);
  EXPECT_NEAR(q[5], ima_h(im) / 2.f, 1e-3);
  EXPECT_NEAR(q[7 + 4] + q[14 + 4], static_cast<float>(ima_l(im)), 1e-2);
  EXPECT_NEAR(q[7 + 5] + q[14 + 5], static_cast<float>(ima_h(im)), 1e-2);
  // Vertices far out, odd and random: the projection stays finite for
  // points in front of the eye, whatever their size.
  std::mt19937 g(20261123);
  std::uniform_real_distribution<float> u(-1e6f, 1e6f);
  std::vector<float> s;
  for (int i = 0; i < 3000; ++i) s.insert(s.end(), {u(g), u(g), std::fabs(u(g))});
  std::vector<std::vector<int>> f;
  for (int i = 1; i + 2 <= 3000; i += 3) f.push_back({i, i + 1, i + 2});
  Objet* grand = volume_de(2, s, faces(f));
  lance({b(AFF), vol({2}), el(0, aff_a::GENERER)});
  ASSERT_EQ(r, 0) << sortie;
  p = projetes(grand);
  ASSERT_NE(p, nullptr);
  ASSERT_EQ(p[2], 3000);
  for (int i = 0; i < 3000 * PROJ_PAS; ++i) ASSERT_TRUE(std::isfinite(lit_reel(p + 4 + i))) << i;
}

TEST_F(Aff, WorkingVolumeOfPointsIsMadeShownAndDeleted) {
  std::vector<float> tri{0, 0, 0, 100, 0, 0, 0, 100, 0, 7};  // a spare float is dropped
  Objet* courant = objet_courant = cube(9);
  lance({b(AFF, tri), b(COUL, {1, 0, 0})});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(objet_courant, courant);
  EXPECT_EQ(aff_bilan.logiciel, 1);
  // It was drawn in wire (the phrase's first element was replaced) and is
  // gone.
  EXPECT_EQ(aff_bilan.mode, 0);
  EXPECT_EQ(volume(VOL_TEMPORAIRE), nullptr);
  // Shaded, a negative number ends at once; empty: no volume, no failure.
  lance({b(AFF, tri), b(ILLUM, {1})});
  EXPECT_EQ(aff_bilan.logiciel, 1);
  lance({b(AFF, {})});
  EXPECT_EQ(r, 0);
  lance({b(AFF, {1, 2})});
  EXPECT_EQ(r, 0);
  EXPECT_EQ(aff_bilan.logiciel, 1);
  // aff = points, and points marked from sommet(...).
  std::vector<float> pts{1, 2, 3, 4, 5, 6, 7, 8, 10};
  lance({b(AFF)}, &pts);
  EXPECT_EQ(aff_bilan.logiciel, 2);
  lance({b(AFF), b(SOMMET, pts)});
  EXPECT_EQ(aff_bilan.mode, MODE_POINTS);
  EXPECT_EQ(volume(VOL_TEMPORAIRE), nullptr);
  // A long list: one face of 100,000 vertices, without trouble.
  std::vector<float> long_(300000);
  for (std::size_t i = 0; i < long_.size(); ++i) long_[i] = static_cast<float>(i % 977);
  lance({b(AFF, long_)});
  EXPECT_EQ(r, 0);
  EXPECT_EQ(volume(VOL_TEMPORAIRE), nullptr);
}

TEST_F(Aff, BadVolumesEndInAMessageOrANoOp) {
  // Numbers that name no volume: no effect, no message, huge ones too.
  cube(1);
  lance({b(AFF), vol({99, -7, 3e9f, 1})});
  EXPECT_EQ(r, 0);
  EXPECT_EQ(sortie, "");
  EXPECT_EQ(aff_bilan.logiciel, 1);
  // Vertices and no faces: not drawn; a cloud is shown as points.
  volume_de(2, {0, 0, 0, 1, 1, 1}, {});
  lance({b(AFF), vol({2})});
  EXPECT_EQ(r, 0);
  EXPECT_EQ(aff_bilan.sans_faces, 1);
  EXPECT_EQ(aff_bilan.logiciel, 1);
  // No vertices at all: success, nothing drawn.
  objet_cree(1, B_VOL, 0, nullptr, nullptr, 3);
  lance({b(AFF), vol({3})});
  EXPECT_EQ(r, 0);
  // A face naming a missing vertex: the geometry's message and failure.
  Objet* o = volume_de(4, {0, 0, 0, 1, 0, 0, 0, 1, 0}, faces({{1, 2, 3}}));
  mot* f = vol_fac(o);
  f[4 + 4 + 2] = 9;
  lance({b(AFF), vol({4})});
  EXPECT_LT(r, 0);
  EXPECT_NE(sortie, "");
  // A vertex that is not finite: message 1:111, the volume is skipped and
  // the walk goes on with the next.
  for (float mauvais : {NAN, INFINITY, -INFINITY}) {
    volume_de(5, {0, 0, 0, mauvais, 0, 0, 0, 1, 0}, faces({{1, 2, 3}}));
    long avant = aff_bilan.logiciel;
    lance({b(AFF), vol({5, 1})});
    EXPECT_EQ(r, 0);
    EXPECT_NE(sortie.find("vol 5 sommet 2: "), std::string::npos) << sortie;
    EXPECT_EQ(aff_bilan.logiciel, avant + 1);
    objet_supprime(volume(5));
  }
  // Zero-area faces and faces of one or two vertices reach the engine.
  volume_de(6, {1, 1, 1, 1, 1, 1, 1, 1, 1}, faces({{1, 2, 3}, {1}, {2, 3}}));
  lance({b(AFF), vol({6})});
  EXPECT_EQ(r, 0) << sortie;
  // Volumes standing for each other in a loop stop at a bounded depth.
  const float autre[1] = {7};
  const float celui[1] = {8};
  Objet* a = cube(7);
  Objet* c = cube(8);
  attribut_ecrit_1(a, 1, VOL, celui, 1, 1);
  attribut_ecrit_1(c, 1, VOL, autre, 1, 1);
  lance({b(AFF), vol({7})});
  EXPECT_EQ(r, 0);
}

TEST_F(Aff, LightsOfTheSceneOrOfTheVolume) {
  cube(1);
  cube(2);
  // 10,000 lights: all of them count for a volume without (b24).
  for (int i = 1; i <= 10000; ++i) ASSERT_NE(objet_cree(1, B_LUM, 0, nullptr, nullptr, i), nullptr);
  lance({b(AFF), vol({1})});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(aff_bilan.nlum, 10000);
  // A light that names volume 2 in its (b4) leaves volume 1 alone.
  const float deux[1] = {2};
  attribut_ecrit_1(objet_trouve(B_LUM, 0, 5, nullptr), 1, VOL, deux, 1, 1);
  lance({b(AFF), vol({1})});
  EXPECT_EQ(aff_bilan.nlum, 9999);
  // The volume's own list, filtered the same way; missing lights dropped.
  const float liste[4] = {5, 6, 123456, 7};
  attribut_ecrit_1(volume(1), 1, LUM, liste, 4, 1);
  attribut_ecrit_1(volume(2), 1, LUM, liste, 4, 1);
  lance({b(AFF), vol({1})});
  EXPECT_EQ(aff_bilan.nlum, 2);
  lance({b(AFF), vol({2})});
  EXPECT_EQ(aff_bilan.nlum, 3);
}

TEST_F(Aff, TheEyeIsSetWholeOrNotAtAll) {
  std::vector<float> x{10, -20, -300};
  lance({b(OEIL)}, &x);
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(lance({b(OEIL)}), x);
  lance({b(VISE, {1, 2, 3}), b(FOC, {1.5f}), b(ROUL, {0.25f}), b(PROCHE, {0.5f}), b(LOIN, {7e5f}),
         b(FUI, {333}), b(PROJ, {63})});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(lance({b(FOC)}), std::vector<float>{1.5f});
  EXPECT_EQ(lance({b(PROJ)}), std::vector<float>{63});
  EXPECT_EQ(oeil_courant.loin, 7e5f);
  EXPECT_EQ(oeil_courant.fui, 333);
  int nv;
  EXPECT_EQ(mot_valeur(1, FOC, &nv)[0], 1.5f);
  // Each value that would break the matrices is refused with 1:110 after
  // its keyword, and the eye stays as it was, even when other elements of
  // the phrase were good.
  Oeil avant = oeil_courant;
  struct Cas {
    std::vector<El> es;
    const char* mot;
  };
  std::vector<Cas> cas = {
      {{b(FOC, {0})}, "foc "},
      {{b(FOC, {-1})}, "foc "},
      {{b(FOC, {NAN})}, "foc "},
      {{b(PROCHE, {0})}, "proche "},
      {{b(LOIN, {0.1f})}, "loin "},
      {{b(PROCHE, {8e5f})}, "loin "},
      {{b(LOIN, {INFINITY})}, "loin "},
      {{b(OEIL, {1, 2, 3})}, "oeil "},
      {{b(OEIL, {0, 0, -9}), b(ROUL, {NAN})}, "roul "},
      {{b(VISE, {-INFINITY, 0, 0})}, "vise "},
      {{b(FUI, {INFINITY})}, "fui "},
  };
  for (const auto& c : cas) {
    lance(c.es);
    EXPECT_EQ(r, ECHEC) << c.mot;
    EXPECT_EQ(sortie.rfind(c.mot, 0), 0u) << sortie;
    EXPECT_NE(sortie.find("Oeil illegal"), std::string::npos) << sortie;
    EXPECT_EQ(std::memcmp(&oeil_courant, &avant, sizeof avant), 0) << c.mot;
  }
  // Too few values, or no numbers: message 0:81.
  lance({b(OEIL, {1, 2})});
  EXPECT_EQ(r, ECHEC);
  // A view gives the eye its attributes, the others are kept.
  Objet* v = objet_cree(1, B_VUE, 0, nullptr, nullptr, 2);
  const float p[3] = {0, 0, -50};
  const float f[1] = {2};
  attribut_ecrit_1(v, 1, OEIL, p, 3, 1);
  attribut_ecrit_1(v, 1, FOC, f, 1, 1);
  lance({b(OEIL), b(VUE, {2})});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(oeil_courant.oeil[2], -50);
  EXPECT_EQ(oeil_courant.foc, 2);
  EXPECT_EQ(oeil_courant.loin, 7e5f);
  lance({b(OEIL), b(VUE, {3})});
  EXPECT_EQ(r, ECHEC);
  // aff ecran: views made again, view 1 on the diagonal's default distance.
  lance({b(AFF), b(ECRAN)});
  ASSERT_EQ(r, 0) << sortie;
  EXPECT_EQ(objet_trouve(B_VUE, 0, 2, nullptr), nullptr);
  Objet* un = objet_trouve(B_VUE, 0, 1, nullptr);
  ASSERT_NE(un, nullptr);
  EXPECT_NEAR(lit_reel(attribut_valeur_1(un->donnees, 1, OEIL) + 6), -577.35f, 0.01f);
  EXPECT_NEAR(oeil_courant.oeil[2], -577.35f, 0.01f);
}
}  // namespace

// Laws, trajectories, the tree of leaders and the anchors on hand-computed
// cases: each law at the start, the middle and the end of its run, a
// position path sampled to 10 rows and played forward, relative and in a
// loop, a sinusoid's sample, the re-rooting of a chain of three volumes,
// the lowest point between two feet; and the bad cases (a deleted volume,
// a loop of leaders, a vertex that does not exist).
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

#include "outils.h"
#include "anim/trajet.h"

namespace {
constexpr double PI = 3.14159265358979323846;

Objet* loi(int numero, int sorte) {
  Objet* o = objet_cree(1, B_CIN_, 0, nullptr, nullptr, numero);
  o->sous_type = static_cast<std::uint16_t>(sorte);
  return o;
}

void table(Objet* o, std::vector<float> v, int ord = B_CLEF) {
  ASSERT_NE(attribut_ecrit_1(o, 1, ord, v.data(), static_cast<int>(v.size()), 1), nullptr);
}

mot* bloc_de(const std::vector<float>& v, int rangs, int cols) {
  mot* b = bloc_alloue(4 + static_cast<mot>(v.size()));
  b[1] = BLOC_REEL, b[2] = rangs, b[3] = cols;
  std::memcpy(b + 4, v.data(), sizeof(float) * v.size());
  return b;
}

struct Traj : Enregistrements {
  void TearDown() override {
    ancres_libere();
    for (Vol_inter* v : recs) trajets_libere(v);
    Enregistrements::TearDown();
  }
  Trajet* noeud(Vol_inter* r, int cle1, std::vector<float> cles, int n, bool brut = true, int env1 = 1) {
    auto* t = new Trajet;
    t->nb_cles = 1, t->env1 = env1, t->cle1 = cle1, t->nb = n;
    t->cles = bloc_de(cles, static_cast<int>(cles.size()) / 3, 3);
    t->suivant = static_cast<Trajet*>(r->trajets);
    r->trajets = t;
    EXPECT_EQ(trajet_echantillonne(t, r, 0, nullptr, brut), 0);
    return t;
  }
};

TEST_F(Traj, LoisAuDebutAuMilieuEtAlaFin) {
  const double v = 7.3;
  // Images 1, 2, 3 of 3 with the start at 1: t = 0, 0.5, 1.
  struct Cas {
    int sorte;
    double milieu;
  } cas[] = {{LOI_ACC, v - v * std::cos(PI / 4)}, {LOI_DEC, v * std::sin(PI / 4)}, {LOI_ACD, v / 2}, {LOI_CIN, v / 2}};
  for (const Cas& c : cas) {
    Objet* o = loi(c.sorte, c.sorte);
    EXPECT_EQ(cin_loi(o), c.sorte);
    EXPECT_EQ(cin_valeur(o, v, 1, 3, 1), 0.0) << c.sorte;
    EXPECT_NEAR(cin_valeur(o, v, 2, 3, 1), c.milieu, 1e-9) << c.sorte;
    EXPECT_EQ(cin_valeur(o, v, 3, 3, 1), v) << c.sorte;
    // The end rules hold outside the run too: before the start 0, past the end v.
    EXPECT_EQ(cin_valeur(o, v, 0, 3, 1), 0.0);
    EXPECT_EQ(cin_valeur(o, v, 9, 3, 1), v);
  }
  // The law named by an attribute when the object has no kind of its own.
  Objet* a = loi(20, 0);
  table(a, {1}, LOI_DEC);
  EXPECT_EQ(cin_loi(a), LOI_DEC);
  // A curve law with a table (0,0) (2,1) (4,5): at t = 0.5, u = 2 gives y 1
  // of a total 5, scaled to v.
  Objet* c = loi(21, 0);
  table(c, {0, 0, 2, 1, 4, 5});
  EXPECT_NEAR(cin_valeur(c, v, 2, 3, 1), v * 1 / 5, 1e-6);
  EXPECT_NEAR(cin_valeur(c, 1000.5, 7, 21, 1), 1000.5 * 0.6 / 5, 1e-3);  // t = 0.3: u = 1.2, y = 0.6
  // A total y within 0.0001 of 0 gives 0; a table of one pair reads as that pair.
  Objet* z = loi(22, 0);
  table(z, {0, 0, 4, 0.00005f});
  EXPECT_EQ(cin_valeur(z, v, 2, 3, 1), 0.0);
  Objet* u = loi(23, 0);
  table(u, {3, 2});
  EXPECT_NEAR(cin_valeur(u, v, 2, 3, 1), v, 1e-6);
  // Without a table, v t; the tabled law 130 skips the end rules.
  Objet* t = loi(24, LOI_TABLE);
  table(t, {0, 0.25f, 1, 1});
  EXPECT_NEAR(cin_valeur(t, v, 1, 3, 1), v * 0.25, 1e-6);
  // A table too short to hold a pair is no table: v t, and the end rules.
  Objet* e = loi(25, 0);
  table(e, {5});
  EXPECT_NEAR(cin_valeur(e, v, 2, 3, 1), v / 2, 1e-9);
  EXPECT_NEAR(cin_valeur(e, -123456.5, 5, 9, 1), -123456.5 / 2, 1e-6);
  EXPECT_EQ(cin_valeur(e, v, 3, 3, 1), v);
  // The tabled law with no table at all gives a number, whatever i and n.
  Objet* f = loi(26, LOI_TABLE);
  for (int i : {-7, 0, 1, 2, 3, 1000001}) EXPECT_TRUE(std::isfinite(cin_valeur(f, v, i, 3, 1))) << i;
  EXPECT_TRUE(std::isfinite(cin_valeur(f, v, 2, 1, 1)));
}

TEST_F(Traj, AnimationHorsLigne) {
  // Rows (x, y, z, time): times 0, 1, 4. Image 3 of 5 with the straight law:
  // u = 4 x 0.5 = 2, a third of the way from the second row to the third.
  mot* k = bloc_de({0, 0, 0, 0, 10, 20, 30, 1, 40, 0, 60, 4}, 3, 4);
  float s[3];
  ASSERT_EQ(anim_valeur(k, nullptr, 3, 5, 1, false, s), 0);
  proche(s, {20, 40.f / 3, 40});
  // The ends are exact, scaled.
  ASSERT_EQ(anim_valeur(k, nullptr, 5, 5, 2.5f, false, s), 0);
  EXPECT_EQ(s[0], 100);
  EXPECT_EQ(s[2], 150);
  // The change since image 2: at image 2, u = 1, the second row exactly.
  ASSERT_EQ(anim_valeur(k, nullptr, 3, 5, 1, true, s), 0);
  EXPECT_NEAR(s[0], 10, 1e-5);
  EXPECT_NEAR(s[1], 40.f / 3 - 20, 1e-5);
  // Under an accelerating law the same image lies earlier.
  Objet* acc = loi(1, LOI_ACC);
  ASSERT_EQ(anim_valeur(k, acc, 3, 5, 1, false, s), 0);
  const double u = 4 - 4 * std::cos(PI / 4);
  EXPECT_NEAR(s[0], 10 * u, 1e-4);
  // A tabled law gives the row position, from 1: 1.5 is half way from the
  // first row to the second.
  Objet* tab = loi(2, LOI_TABLE);
  table(tab, {0, 1, 1, 2});  // at t = 0.5: 1.5
  ASSERT_EQ(anim_valeur(k, tab, 2, 3, 1, false, s), 0);
  EXPECT_NEAR(s[0], 5, 1e-4);
  bloc_libere(k);
  // No keys, no value.
  EXPECT_EQ(anim_valeur(nullptr, nullptr, 1, 2, 1, false, s), -1);
}

TEST_F(Traj, PositionEchantillonneeJoueeRelativeEtEnBoucle) {
  Objet* o = volume_de({0, 0, 0, 1, 0, 0, 0, 1, 0}, {{1, 2, 3}});
  Vol_inter* r = record(o);
  // Three keys, a path of length 30, sampled to 10 rows at equal steps of 30 / 9.
  Trajet* t = noeud(r, B_POS_, {0, 0, 0, 10, 0, 0, 10, 20, 0}, 10);
  ASSERT_EQ(t->nb, 10);
  const reel* s = reels(t->val + 4);
  const float attendu[10][2] = {{0, 0},           {10.f / 3, 0}, {20.f / 3, 0}, {10, 0},          {10, 10.f / 3},
                                {10, 20.f / 3}, {10, 10},      {10, 40.f / 3}, {10, 50.f / 3}, {10, 20}};
  for (int j = 0; j < 10; ++j) {
    EXPECT_NEAR(s[3 * j], attendu[j][0], 1e-4) << j;
    EXPECT_NEAR(s[3 * j + 1], attendu[j][1], 1e-4) << j;
  }
  for (int f = 0; f < 4; ++f) trajet_joue(t, r);
  EXPECT_NEAR(r->pos[0], 10, 1e-5);
  EXPECT_EQ(t->indice, 4);
  for (int f = 0; f < 20; ++f) trajet_joue(t, r);
  // Played out: the last sample stays.
  EXPECT_EQ(r->pos[1], 20);
  EXPECT_EQ(t->indice, 10);
  // Relative: each sample adds to the place.
  t->relatif = 1, t->indice = 0;
  r->pos[0] = r->pos[1] = r->pos[2] = 0;
  for (int f = 0; f < 3; ++f) trajet_joue(t, r);
  EXPECT_NEAR(r->pos[0], 10, 1e-4);
  // In a loop it plays backward after the end, and forward again: never stops.
  t->relatif = 0, t->boucle = 1, t->indice = 0;
  for (int f = 0; f < 10; ++f) trajet_joue(t, r);
  trajet_joue(t, r);
  EXPECT_NEAR(r->pos[1], 20, 1e-5);
  trajet_joue(t, r);
  EXPECT_NEAR(r->pos[1], 50.f / 3, 1e-4);
  for (int f = 0; f < 8; ++f) trajet_joue(t, r);
  EXPECT_EQ(r->pos[1], 0);
  trajet_joue(t, r);
  trajet_joue(t, r);
  EXPECT_NEAR(r->pos[0], 10.f / 3, 1e-4);
  // Without brut the present place is the first key.
  r->pos[0] = 100, r->pos[1] = -50, r->pos[2] = 7;
  Trajet* p = noeud(r, B_POS_, {0, 0, 0, 100, 50, 7}, 3, false);
  EXPECT_EQ(reels(p->val + 4)[1], -50);
  EXPECT_NEAR(reels(p->val + 4)[4], 0, 1e-4);
  EXPECT_EQ(reels(p->val + 4)[7], 50);
  // nb = 0 in a loop idles.
  Trajet* vide = noeud(r, B_POS_, {1, 2, 3}, 0);
  vide->boucle = 1;
  r->pos[0] = 4;
  trajet_joue(vide, r);
  EXPECT_EQ(r->pos[0], 4);
}

TEST_F(Traj, SinusoideEtRotations) {
  Objet* o = volume_de({0, 0, 0, 1, 0, 0, 0, 1, 0}, {{1, 2, 3}});
  Vol_inter* r = record(o);
  // Sample j of n: (lo + hi + (hi - lo) sin(j period / (n - 1) + phase)) x 57.295776 / 2.
  const float lo = 0.2f, hi = 1.4f, per = 3.7f, ph = 0.3f;
  Trajet* t = noeud(r, A_SIN, {lo, hi, per, ph}, 11, true, 0);
  for (int j : {0, 4, 10}) {
    const double a = (lo + hi + (hi - lo) * std::sin(j * per / 10.0 + ph)) * 57.295776 * 0.5;
    EXPECT_NEAR(reels(t->val + 4)[3 * j + 2], a, 1e-3) << j;
    EXPECT_EQ(reels(t->val + 4)[3 * j], j);
  }
  trajet_joue(t, r);
  EXPECT_NEAR(r->angle, reels(t->val + 4)[2], 1e-6);
  // One key keeps the present angle.
  r->angle = 33.5f;
  Trajet* un = noeud(r, B_ROTA_, {1.0f}, 7, false);
  for (int j = 0; j < 7; ++j) EXPECT_EQ(reels(un->val + 4)[3 * j + 2], 33.5f);
  // Keys in radians, raw: the first key is the start, the last the end.
  Trajet* rx = noeud(r, B_ROTX_, {0.5f, 1.0f, -2.0f}, 9, true);
  EXPECT_NEAR(reels(rx->val + 4)[2], 0.5f * DEG_, 1e-3);
  EXPECT_NEAR(reels(rx->val + 4)[3 * 8 + 2], -2.0f * DEG_, 1e-3);
  for (int j = 0; j < 9; ++j) trajet_joue(rx, r);
  EXPECT_NEAR(r->rotx, -2.0f * DEG_, 1e-3);
  // An axis path is normalised row by row.
  Trajet* ax = noeud(r, B_AXE_, {0, 3, 0, 4, 0, 0}, 5, true);
  for (int j = 0; j < 5; ++j) {
    const reel* q = reels(ax->val + 4) + 3 * j;
    EXPECT_NEAR(q[0] * q[0] + q[1] * q[1] + q[2] * q[2], 1, 1e-5) << j;
  }
}

TEST_F(Traj, VolumeDetruitPendantLeJeu) {
  Objet* o = volume_de({0, 0, 0, 1, 0, 0, 0, 1, 0}, {{1, 2, 3}});
  Vol_inter* r = record(o);
  ASSERT_NE(attribut_ecrit_2(o, 1, B_FOR_, 1, B_ROTA_, std::array<float, 4>{0, 0, 0, 0}.data(), 4, 1), nullptr);
  Trajet* t = noeud(r, B_ROTA_, {0.1f, 0.9f}, 6, true);
  t->gain = 2, t->lim = 5, t->friction = 0.5f;
  trajet_joue(t, r);
  // Driven by a torque: the tip force, limited, along the axis.
  int n = 0;
  const mot k[4] = {1, B_FOR_, 1, B_ROTA_};
  const reel* f = reels(vol_valeur(o, 2, k) + 4);
  n = vol_valeur(o, 2, k)[0] - 4;
  ASSERT_EQ(n, 4);
  EXPECT_NEAR(f[1], 5, 1e-5);
  EXPECT_NEAR(f[3], 0.5f + 5 * 0.5f / 180, 1e-6);
  objet_supprime(o);
  // The volume is gone: the node plays on the record alone, and touches nothing.
  for (int j = 0; j < 10; ++j) trajet_joue(t, r);
  Trajet* p = noeud(r, B_POS_, {1, 2, 3, 4, 5, 6}, 4, true);
  for (int j = 0; j < 4; ++j) trajet_joue(p, r);
  EXPECT_EQ(r->pos[2], 6);
  arbre_evalue();
  float w[3];
  EXPECT_FALSE(som_monde(r, 1, w));
}

// A chain of three segments along y: each hangs by its vertex 1 from the
// vertex 2 of the one before.
struct Chaine : Traj {
  Vol_inter* v[3] = {};
  void SetUp() override {
    Traj::SetUp();
    for (int i = 0; i < 3; ++i) v[i] = record(volume_de({0, 0, 0, 0, 10, 0, 1, 5, 0}, {{1, 2, 3}}, i + 1));
  }
};

TEST_F(Chaine, ArbreLiensCyclesEtSommetsInconnus) {
  ASSERT_EQ(arbre_lie(v[1], v[0], 2, 1), 0);
  ASSERT_EQ(arbre_lie(v[2], v[1], 2, 1), 0);
  // Twice the same follower changes nothing.
  ASSERT_EQ(arbre_lie(v[2], v[1], 2, 1), 0);
  EXPECT_EQ(v[1]->nb_suiv, 1);
  EXPECT_EQ(arbre_racine(v[2]), v[0]);
  v[0]->pos[0] = 3.25f;
  v[1]->angle = 90;  // about z: y turns to -x
  v[1]->axe[0] = 0, v[1]->axe[1] = 0, v[1]->axe[2] = 1;
  arbre_evalue();
  float w[3];
  // The follower's anchor sits on its leader's vertex 2.
  ASSERT_TRUE(som_monde(v[1], 1, w));
  proche(w, {3.25f, 10}, 1e-4f);
  // Turned 90 degrees about z, its far end goes along -x, and so does the
  // next one's.
  ASSERT_TRUE(som_monde(v[1], 2, w));
  proche(w, {3.25f - 10, 10}, 1e-4f);
  ASSERT_TRUE(som_monde(v[2], 2, w));
  EXPECT_NEAR(w[0], 3.25f - 20, 1e-4);
  // A leader that hangs from its follower is refused; so is a vertex that is not there.
  std::string s = sortie_de([&] { EXPECT_EQ(arbre_lie(v[0], v[2], 2, 1), -1); });
  EXPECT_NE(s.find("3: "), std::string::npos);
  EXPECT_EQ(v[0]->lead, nullptr);
  s = sortie_de([&] { EXPECT_EQ(arbre_lie(v[2], v[0], 77, 1), -1); });
  EXPECT_NE(s.find("77: "), std::string::npos);
  EXPECT_EQ(v[2]->lead, v[1]);
  // No leader: only the link goes.
  ASSERT_EQ(arbre_lie(v[2], nullptr, 0, 0), 0);
  EXPECT_EQ(v[1]->nb_suiv, 0);
  EXPECT_EQ(v[2]->lead_num, 0);
}

TEST_F(Chaine, ReenracinementAnglesInverses) {
  ASSERT_EQ(arbre_lie(v[1], v[0], 2, 1), 0);
  ASSERT_EQ(arbre_lie(v[2], v[1], 2, 1), 0);
  for (auto* r : v) r->axe[0] = 0, r->axe[1] = 0, r->axe[2] = 1;
  v[0]->angle = 11, v[1]->angle = 23, v[2]->angle = -37;
  v[0]->pos[1] = 4;
  arbre_evalue();
  float avant[3], c[3];
  matrice_applique(v[2]->mat, v[2]->centre, avant);
  ASSERT_EQ(arbre_origine(v[2]), 0);
  // The leaf is the root; each former ancestor hangs from its former child,
  // by the vertices swapped, and takes minus that child's angle.
  EXPECT_EQ(v[2]->lead, nullptr);
  EXPECT_EQ(v[1]->lead, v[2]);
  EXPECT_EQ(v[0]->lead, v[1]);
  EXPECT_EQ(v[1]->som_lead, 1);
  EXPECT_EQ(v[1]->som_suiv, 2);
  EXPECT_EQ(v[1]->angle, 37);
  EXPECT_EQ(v[0]->angle, -23);
  EXPECT_EQ(v[2]->angle, 11 + 23 - 37);
  EXPECT_EQ(v[0]->pos[1], 0);
  EXPECT_EQ(v[1]->suiv[0], v[0]);
  // The new root keeps its place in the world.
  matrice_applique(v[2]->mat, v[2]->centre, c);
  for (int x = 0; x < 3; ++x) EXPECT_NEAR(c[x], avant[x], 1e-3) << x;
}

TEST_F(Chaine, LePointLePlusBasPorteEtNeGlissePas) {
  // A body (1) with two legs (2, 3) hanging from its vertex 1.
  ASSERT_EQ(arbre_lie(v[1], v[0], 1, 1), 0);
  ASSERT_EQ(arbre_lie(v[2], v[0], 1, 1), 0);
  for (auto* r : v) r->axe[0] = 0, r->axe[1] = 0, r->axe[2] = 1;
  v[2]->angle = 20;  // the second leg lifts: its end is higher (smaller y)
  arbre_evalue();
  auto* a = new Ancre;
  a->nb = 3;
  a->vols = new Vol_inter*[3]{v[0], v[1], v[2]};
  a->trace = 1;
  liste_anc = a;
  std::string s = sortie_de([&] { ancre_verifie(a); });
  // The first leg's vertex 2, at y = 10, wins over the second's (cos 20 x 10 + 10).
  EXPECT_EQ(a->vol, v[1]);
  EXPECT_EQ(a->som, 2);
  EXPECT_NEAR(a->haut, 10, 1e-4);
  EXPECT_NE(s.find("REANC 2,2:"), std::string::npos);
  float pin[3] = {a->pos[0], a->pos[1], a->pos[2]};
  // The supporting leg swings: the body moves, the foot stays.
  v[1]->angle = -15;
  arbre_evalue();
  s = sortie_de([&] { ancre_verifie(a); });
  EXPECT_NE(s.find("meme anc num=2 s=2"), std::string::npos);
  float w[3];
  ASSERT_TRUE(som_monde(v[1], 2, w));
  for (int x = 0; x < 3; ++x) EXPECT_NEAR(w[x], pin[x], 1e-3) << x;
  EXPECT_NEAR(v[0]->pos[0], -10 * std::sin(15 * PI / 180), 1e-3);
  // The other leg comes down below: it takes the support, pinned where it is.
  v[2]->angle = 0;
  v[1]->angle = 40;
  arbre_evalue();
  s = sortie_de([&] { ancre_verifie(a); });
  EXPECT_NE(s.find("reanc num=3 s=2"), std::string::npos);
  EXPECT_EQ(a->vol, v[2]);
  // With the root not a candidate and alone, there is nothing to hold.
  Ancre seul;
  Vol_inter* un[1] = {v[0]};
  seul.nb = 1, seul.vols = un;
  ancre_verifie(&seul);
  EXPECT_EQ(seul.vol, nullptr);
}
// The order of the Euler turns: set together, refused out of range, and
// the one undoes the other whatever the angles.
TEST_F(Chaine, OrdreDesRotationsEtSonInverse) {
  EXPECT_EQ(ordre_rot, 213);
  EXPECT_EQ(ordre_rot_inv, 312);
  ASSERT_EQ(arbre_ordre(132), 0);
  EXPECT_EQ(ordre_rot_inv, 231);
  for (int o : {99, 322})
    EXPECT_NE(sortie_de([&] { EXPECT_EQ(arbre_ordre(o), -1); }).find(std::to_string(o) + ": "), std::string::npos);
  EXPECT_EQ(ordre_rot, 132);
  // y then x turns (1, 0, 0) to (0, 0, -1); x then y to (0, 1, 0); digits
  // that are not one of the six orders turn nothing.
  Vol_inter* r = v[0];
  r->rotx = 90, r->roty = 90, r->rotz = 0;
  const float un[3] = {1, 0, 0};
  float m[16], w[3];
  const struct {
    int ordre;
    std::array<float, 3> w;
  } tours[] = {{213, {0, 0, -1}}, {123, {0, 1, 0}}, {112, {1, 0, 0}}, {200, {1, 0, 0}},
               {333, {1, 0, 0}},  {1321, {1, 0, 0}}, {-213, {1, 0, 0}}};
  for (const auto& t : tours) {
    SCOPED_TRACE(t.ordre);
    matrice_identite(m);
    tourne_euler(m, t.ordre, r, 1);
    matrice_applique(m, un, w);
    proche(w, {t.w[0], t.w[1], t.w[2]});
  }
  // Each of the six orders, followed by its reverse turned back, is the
  // identity, for large and odd angles.
  std::srand(1234);
  const float p[3] = {3.5f, -71.25f, 1e3f};
  for (int o : {123, 132, 213, 231, 312, 321})
    for (int k = 0; k < 20; ++k) {
      r->rotx = static_cast<float>(std::rand() % 72000) / 100 - 360;
      r->roty = static_cast<float>(std::rand() % 72000) / 100 - 360;
      r->rotz = static_cast<float>(std::rand() % 2000000) / 100 - 10000;
      ASSERT_EQ(arbre_ordre(o), 0);
      matrice_identite(m);
      tourne_euler(m, ordre_rot_inv, r, 1);
      tourne_euler(m, ordre_rot, r, -1);
      matrice_applique(m, p, w);
      for (int x = 0; x < 3; ++x) EXPECT_NEAR(w[x], p[x], 2e-2) << o << " " << r->rotz;
    }
  // A follower turns in the order given. Its far end (0, 10, 0): turned
  // about z first, then x, it goes to (-10, 0, 0); about x first, then z,
  // to (0, 0, 10); plus the leader's vertex 2 at (0, 10, 0).
  ASSERT_EQ(arbre_lie(v[1], v[0], 2, 1), 0);
  v[0]->rotx = v[0]->roty = v[0]->rotz = 0;
  v[1]->rotx = 90, v[1]->roty = 0, v[1]->rotz = 90;
  ASSERT_EQ(arbre_ordre(321), 0);  // placed by the calls x, then z
  arbre_evalue();
  ASSERT_TRUE(som_monde(v[1], 2, w));
  proche(w, {-10, 10, 0}, 1e-4f);
  ASSERT_EQ(arbre_ordre(123), 0);  // the calls z, then x
  arbre_evalue();
  ASSERT_TRUE(som_monde(v[1], 2, w));
  proche(w, {0, 10, 10}, 1e-4f);
  ASSERT_EQ(arbre_ordre(213), 0);
}

// A record carried by a vertex of another, barycentric points following a
// triangle, the table of the tree, and the bad cases.
TEST_F(Chaine, PorteParUnSommetEtPointsBarycentriques) {
  v[0]->pos[0] = 100, v[0]->pos[1] = -7.5f, v[0]->pos[2] = 0.125f;
  v[2]->axe[0] = 0, v[2]->axe[1] = 0, v[2]->axe[2] = 1;
  v[2]->angle = 90;
  ASSERT_EQ(tache_som(v[2], 1, 3), 0);
  EXPECT_EQ(v[2]->taches[0], TACHE_SOM);
  arbre_evalue();
  float w[3];
  // Its origin sits on vertex 3 of volume 1, (1, 5, 0) shifted; turned
  // 90 degrees about z, its vertex 2 (0, 10, 0) lies 10 along -x.
  ASSERT_TRUE(som_monde(v[2], 1, w));
  proche(w, {101, -2.5f, 0.125f}, 1e-4f);
  ASSERT_TRUE(som_monde(v[2], 2, w));
  proche(w, {91, -2.5f}, 1e-4f);
  // The carrier moves: the carried record follows in the same frame.
  v[0]->pos[0] = -3333;
  arbre_evalue();
  ASSERT_TRUE(som_monde(v[2], 1, w));
  EXPECT_NEAR(w[0], -3332, 1e-3);
  // Bad carriers: an unknown volume, a vertex that is not there, itself.
  const struct {
    int vol, som;
    const char* dit;
  } mauvais[] = {{77, 1, "77 "}, {1, 4, "4: "}, {3, 1, "3: "}};
  std::string s;
  for (const auto& m : mauvais) {
    s = sortie_de([&] { EXPECT_EQ(tache_som(v[2], m.vol, m.som), -1); });
    EXPECT_NE(s.find(m.dit), std::string::npos) << m.vol;
  }
  EXPECT_EQ(v[2]->taches[1], 1);
  EXPECT_EQ(v[2]->taches[2], 3);
  ASSERT_EQ(tache_som(v[2], 0, 0), 0);
  EXPECT_EQ(v[2]->taches[0], 0);

  // Vertex 3 of record 2 follows the triangle of record 1 with weights
  // that do not add to 1; record 2 is itself moved and turned.
  v[1]->pos[0] = 7, v[1]->pos[1] = -3, v[1]->pos[2] = 11;
  v[1]->axe[0] = 0, v[1]->axe[1] = 1, v[1]->axe[2] = 0;
  v[1]->angle = 33;
  const int tri[3] = {1, 2, 3};
  const float poids[3] = {1.5f, -0.25f, 2};
  ASSERT_EQ(tache_bary(v[1], 3, v[0], tri, poids), 0);
  EXPECT_EQ(v[1]->taches[3], 1);
  arbre_evalue();
  auto attendu = [&](const float* q, float* e) {
    float a[3];
    e[0] = e[1] = e[2] = 0;
    for (int k = 0; k < 3; ++k) {
      ASSERT_TRUE(som_monde(v[0], tri[k], a));
      for (int x = 0; x < 3; ++x) e[x] += q[k] * a[x];
    }
  };
  float e[3];
  attendu(poids, e);
  ASSERT_TRUE(som_monde(v[1], 3, w));
  for (int x = 0; x < 3; ++x) EXPECT_NEAR(w[x], e[x], 1e-2) << x;
  // Random weights and places, the same vertex given a new triangle.
  std::srand(99);
  for (int k = 0; k < 25; ++k) {
    float q[3];
    for (float& f : q) f = static_cast<float>(std::rand() % 20001) / 1000 - 10;
    v[0]->pos[0] = static_cast<float>(std::rand() % 200001) / 10 - 10000;
    v[0]->angle = static_cast<float>(std::rand() % 720);
    v[1]->angle = static_cast<float>(std::rand() % 3600) / 7;
    ASSERT_EQ(tache_bary(v[1], 3, v[0], tri, q), 0);
    arbre_evalue();
    attendu(q, e);
    ASSERT_TRUE(som_monde(v[1], 3, w));
    for (int x = 0; x < 3; ++x) EXPECT_NEAR(w[x], e[x], 5e-2) << k << " " << x;
  }
  EXPECT_EQ(v[1]->taches[3], 1);
  // Bad points change nothing.
  const int hors[3] = {1, 2, 9};
  EXPECT_NE(sortie_de([&] { EXPECT_EQ(tache_bary(v[1], 3, v[0], hors, poids), -1); }).find("9: "), std::string::npos);
  EXPECT_NE(sortie_de([&] { EXPECT_EQ(tache_bary(v[1], -1, v[0], tri, poids), -1); }).find("-1: "), std::string::npos);
  const float nan[3] = {std::nanf(""), 0, 0};
  EXPECT_EQ(tache_bary(v[1], 3, v[0], tri, nan), -1);
  EXPECT_EQ(v[1]->taches[3], 1);

  // The table: a leader's anchor, local and in the world, and its followers.
  ASSERT_EQ(arbre_lie(v[2], v[1], 2, 1), 0);
  arbre_evalue();
  s = sortie_de([&] { arbre_liste(nullptr, 0); });
  EXPECT_NE(s.find("2     *       suiv = 3 \n"), std::string::npos);
  EXPECT_NE(s.find("3 lead = 2 \n(sl = 0.000000 10.000000 0.000000) (2 "), std::string::npos);
  Vol_inter* un[1] = {v[0]};
  s = sortie_de([&] { arbre_liste(un, 1); });
  EXPECT_EQ(s.find("lead ="), std::string::npos);

  // The volume of a source is deleted: the point stays where it was.
  ASSERT_TRUE(som_monde(v[1], 3, e));
  objet_supprime(v[0]->objet);
  arbre_evalue();
  ASSERT_TRUE(som_monde(v[1], 3, w));
  for (int x = 0; x < 3; ++x) EXPECT_NEAR(w[x], e[x], 1e-3);
  taches_libere();
}
}  // namespace

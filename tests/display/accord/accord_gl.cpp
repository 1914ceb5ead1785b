// The software renderer against Mesa's OpenGL given the state the OpenGL
// engine sets for the same scene: the two pictures must agree. Run under an
// Xvfb server of its own (sous_xvfb.sh), one GLUT window for every case.
#include <gtest/gtest.h>
#include <GL/freeglut.h>
#include <GL/glu.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "core/bloc.h"
#include "core/objet.h"
#include "display/moteurs.h"
#include "display/oeil.h"
#include "image/image.h"
#include "startup/startup.h"

namespace {
constexpr int L = 160, H = 120;

struct Scene {
  std::vector<float> som, nsom, nfac;
  std::vector<std::vector<int>> faces;
  float coul[3] = {0.9f, 0.6f, 0.3f};
  float illum[5] = {1, 1, 0.4f, 12, 0};
  int type = 1;
  float lum[3] = {0, 0, 0};
  bool lum_pos = false;  // without a position: the last one held (at first, at infinity toward the eye)
};

void fenetre_gl() {
  static bool fait = false;
  if (fait) return;
  fait = true;
  int argc = 1;
  char nom[] = "accord_gl";
  char* argv[] = {nom, nullptr};
  glutInit(&argc, argv);
  glutInitDisplayMode(GLUT_RGBA | GLUT_DEPTH | GLUT_SINGLE);
  glutInitWindowSize(L, H);
  glutCreateWindow("accord_gl");
  glutDisplayFunc([] {});
  for (int k = 0; k < 20; ++k) glutMainLoopEvent();
}

// The state of the OpenGL engine: projection from the eye, lights in eye
// space with the y and z of the world turned, both sides lit, material on
// the front (both faces for negative types).
std::vector<unsigned char> image_gl(const Scene& s) {
  fenetre_gl();
  const Oeil& o = oeil_courant;
  glViewport(0, 0, L, H);
  glClearColor(0, 0, 0, 0);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LESS);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  glEnable(GL_LIGHTING);
  glEnable(GL_LIGHT0);
  glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
  // A light without a position keeps the one it last held, in both.
  if (s.lum_pos) {
    float pos[4] = {s.lum[0], -s.lum[1], o.oeil[2] - s.lum[2], 1};
    glLightfv(GL_LIGHT0, GL_POSITION, pos);
  }
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  if (o.projection == 13) {
    gluPerspective(o.foc * 57.75, static_cast<double>(L) / H, o.proche, o.loin);
    glMatrixMode(GL_MODELVIEW);
    // The up vector (0, -1, 0) turned by roul about the line of sight.
    double a[3] = {o.vise[0] - o.oeil[0], o.vise[1] - o.oeil[1], o.vise[2] - o.oeil[2]};
    double n = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
    for (double& x : a) x /= n;
    double u[3] = {0, -1, 0}, c = std::cos(o.roul), sn = std::sin(o.roul);
    double d = a[1] * u[1];
    double x[3] = {a[1] * u[2] - a[2] * u[1], a[2] * u[0] - a[0] * u[2], a[0] * u[1] - a[1] * u[0]};
    double h[3];
    for (int k = 0; k < 3; ++k) h[k] = u[k] * c + x[k] * sn + a[k] * d * (1 - c);
    gluLookAt(o.oeil[0], o.oeil[1], o.oeil[2], o.vise[0], o.vise[1], o.vise[2], h[0], h[1], h[2]);
  } else {
    glOrtho(0, L - 1, 0, H - 1, o.proche, o.loin);
    glMatrixMode(GL_MODELVIEW);
    gluLookAt(-L / 2.0, H / 2.0, -1000, -L / 2.0, H / 2.0, 0, 0, -1, 0);
  }
  // A fresh context's back material: what a positive type leaves there.
  const float dif0[4] = {0.8f, 0.8f, 0.8f, 1}, spe0[4] = {0, 0, 0, 1};
  glMaterialfv(GL_BACK, GL_DIFFUSE, dif0);
  glMaterialfv(GL_BACK, GL_SPECULAR, spe0);
  glMaterialf(GL_BACK, GL_SHININESS, 0);
  GLenum face = s.type < 1 ? GL_FRONT_AND_BACK : GL_FRONT;
  float t = s.illum[4];
  float dif[4] = {s.illum[1] * s.coul[0], s.illum[1] * s.coul[1], s.illum[1] * s.coul[2], t == 0 ? 1 : 1 - t};
  float spe[4] = {s.illum[2], s.illum[2], s.illum[2], 1};
  glMaterialfv(face, GL_DIFFUSE, dif);
  glMaterialfv(face, GL_SPECULAR, spe);
  glMaterialf(face, GL_SHININESS, s.illum[3]);
  if (t != 0) {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
  } else {
    glDisable(GL_BLEND);
  }
  for (std::size_t f = 0; f < s.faces.size(); ++f) {
    glBegin(GL_POLYGON);
    if (std::abs(s.type) == 1) glNormal3fv(&s.nfac[3 * f]);
    for (int v : s.faces[f]) {
      if (std::abs(s.type) >= 2) glNormal3fv(&s.nsom[3 * (v - 1)]);
      glVertex3fv(&s.som[3 * (v - 1)]);
    }
    glEnd();
  }
  glFinish();
  std::vector<unsigned char> px(3 * L * H);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, L, H, GL_RGB, GL_UNSIGNED_BYTE, px.data());
  return px;
}

// The same scene through the renderer, in the GL's pixel order.
std::vector<unsigned char> image_logiciel(const Scene& s) {
  if (!piles.obj_base) piles_alloue(100, 10000, 200, 1000);
  objets_vide();
  ecran.largeur = L;
  ecran.hauteur = H;
  ima_ecran_retaille(L, H);
  mot* im = ima_ecran();
  std::fill(ima_octets(im), ima_octets(im) + 3 * L * H, octet{0});
  Objet* l = objet_cree(1, B_LUM, 0, nullptr, nullptr, 1);
  if (s.lum_pos) attribut_ecrit_1(l, 1, 86, s.lum, 3, 1);
  std::vector<mot> fac = {0, BLOC_LISTE, static_cast<mot>(s.faces.size()), 0};
  for (auto& f : s.faces) {
    fac.insert(fac.end(), {4 + static_cast<mot>(f.size()), BLOC_ENTIER, 1, static_cast<mot>(f.size())});
    fac.insert(fac.end(), f.begin(), f.end());
  }
  fac[0] = static_cast<mot>(fac.size());
  Vol_aff v;
  v.som = s.som.data();
  v.ns = static_cast<int>(s.som.size() / 3);
  v.fac = fac.data();
  v.nf = fac[2];
  v.n_fac = s.nfac.empty() ? nullptr : s.nfac.data();
  v.n_som = s.nsom.empty() ? nullptr : s.nsom.data();
  v.coul = s.coul;
  v.illum = s.illum;
  v.type = s.type;
  v.zbu = 2;
  v.tri = false;
  init_zbuf(1);
  EXPECT_EQ(rendu_vol(v), 0);
  std::vector<unsigned char> px(3 * L * H);
  for (int y = 0; y < H; ++y)
    for (int x = 0; x < L; ++x)
      for (int c = 0; c < 3; ++c) px[3 * (y * L + x) + c] = ima_rouge(im, y)[x + c * L];
  return px;
}

void compare(const Scene& s, double ecart_max = 0.5, double part_max = 0.01) {
  auto a = image_gl(s), b = image_logiciel(s);
  double somme = 0;
  long loin = 0, allumes = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    int d = std::abs(a[i] - b[i]);
    somme += d;
    loin += d > 8;
    allumes += a[i] > 0;
  }
  std::printf("mean difference %.3f levels, %.3f%% of samples over 8\n", somme / a.size(),
              100.0 * loin / a.size());
  EXPECT_GT(allumes, static_cast<long>(a.size() / 20)) << "the scene shows";
  EXPECT_LT(somme / a.size(), ecart_max);
  EXPECT_LT(static_cast<double>(loin) / a.size(), part_max);
}

// A sphere of nu x nv quads, radius r, about c, outward normals.
void sphere(Scene& s, int nu, int nv, float r, float cx, float cy, float cz) {
  int b = static_cast<int>(s.som.size() / 3) + 1;
  for (int j = 0; j <= nv; ++j)
    for (int i = 0; i <= nu; ++i) {
      double t = M_PI * j / nv, p = 2 * M_PI * i / nu;
      float n[3] = {static_cast<float>(std::sin(t) * std::cos(p)), static_cast<float>(std::cos(t)),
                    static_cast<float>(std::sin(t) * std::sin(p))};
      s.som.insert(s.som.end(), {cx + r * n[0], cy + r * n[1], cz + r * n[2]});
      s.nsom.insert(s.nsom.end(), n, n + 3);
    }
  for (int j = 0; j < nv; ++j)
    for (int i = 0; i < nu; ++i) {
      int a = b + j * (nu + 1) + i;
      std::vector<int> f = {a, a + 1, a + nu + 2, a + nu + 1};
      s.faces.push_back(f);
      float n[3] = {0, 0, 0};
      for (int v : f)
        for (int k = 0; k < 3; ++k) n[k] += s.nsom[3 * (v - 1) + k] / 4;
      float m = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
      for (float& x : n) x /= m;
      s.nfac.insert(s.nfac.end(), n, n + 3);
    }
}

TEST(AccordGl, PerspectivePlatEtLisse) {
  oeil_courant = Oeil{};
  Scene s;
  sphere(s, 24, 16, 300, -150, 0, 100);
  sphere(s, 16, 12, 200, 250, 50, -100);
  s.type = 1;
  compare(s);
  s.type = 2;
  s.lum_pos = true;
  s.lum[0] = -400, s.lum[1] = -300, s.lum[2] = -600;
  compare(s);
}

TEST(AccordGl, RoulisEtOeilDeCote) {
  oeil_courant = Oeil{};
  oeil_courant.oeil[0] = 500, oeil_courant.oeil[1] = -300, oeil_courant.oeil[2] = -700;
  oeil_courant.vise[0] = 40;
  oeil_courant.roul = 0.9f;
  oeil_courant.foc = 0.8f;
  Scene s;
  sphere(s, 20, 14, 250, 0, 0, 0);
  sphere(s, 10, 8, 120, 300, 200, 200);
  s.type = 2;
  s.lum_pos = true;
  s.lum[0] = 300, s.lum[1] = -200, s.lum[2] = -500;
  compare(s);
}

TEST(AccordGl, ParalleleDeuxCotesEtTransparence) {
  oeil_courant = Oeil{};
  oeil_courant.projection = 63;
  Scene s;
  // An open half sphere: its inside shows, lit only with both sides.
  sphere(s, 24, 16, 50, 0, 0, 0);
  s.faces.resize(s.faces.size() / 2 + 12);
  s.nfac.resize(3 * s.faces.size());
  s.type = -1;
  compare(s);
  s.type = -2;
  compare(s);
  s.type = 2;
  s.illum[4] = 0.4f;
  compare(s, 1.0, 0.02);
}
}  // namespace

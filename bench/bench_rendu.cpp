// The software renderer against Mesa's own OpenGL on the same machine, in
// one run: a lit sphere of 100,352 triangles, smooth shaded, at 768 x 576
// with the depth buffer. OpenGL draws it from vertex buffers with one
// glDrawElements per frame (glFinish closes each frame); the renderer
// draws the same mesh into the working image with the 16-bit z-buffer.
// Prints the median time of a frame of each, their ratio, the allocations made by the
// renderer's frames (0 expected once the first frame has sized its
// workspaces) and the mean difference between the two pictures. Run under
// an X server (bench/rendu.sh starts Xvfb).
#define GL_GLEXT_PROTOTYPES
#include <GL/freeglut.h>
#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "core/bloc.h"
#include "core/objet.h"
#include "display/moteurs.h"
#include "display/oeil.h"
#include "image/image.h"
#include "startup/startup.h"

// Every operator new of the process is counted, so that a frame that
// allocates shows.
static std::atomic<long> nb_new{0};
void* operator new(std::size_t n) {
  ++nb_new;
  if (void* p = std::malloc(n ? n : 1)) return p;
  throw std::bad_alloc();
}
void* operator new[](std::size_t n) {
  ++nb_new;
  if (void* p = std::malloc(n ? n : 1)) return p;
  throw std::bad_alloc();
}
void* operator new(std::size_t n, const std::nothrow_t&) noexcept { ++nb_new; return std::malloc(n ? n : 1); }
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept { ++nb_new; return std::malloc(n ? n : 1); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

namespace {
constexpr int L = 768, H = 576, NU = 224, NV = 224, IMAGES = 30;
constexpr float RAYON = 420;
const float COUL[3] = {0.9f, 0.7f, 0.5f};
const float ILLUM[5] = {2, 1, 0.5f, 20, 0};
const float LUM[3] = {-600, -500, -900};  // world position of the light

struct Maillage {
  std::vector<float> som, nor;
  std::vector<unsigned> tri;
  std::vector<mot> fac;
};

Maillage sphere() {
  Maillage m;
  for (int j = 0; j <= NV; ++j)
    for (int i = 0; i <= NU; ++i) {
      double t = M_PI * j / NV, p = 2 * M_PI * i / NU;
      float n[3] = {static_cast<float>(std::sin(t) * std::cos(p)), static_cast<float>(std::cos(t)),
                    static_cast<float>(std::sin(t) * std::sin(p))};
      for (int k = 0; k < 3; ++k) m.som.push_back(RAYON * n[k]), m.nor.push_back(n[k]);
    }
  m.fac = {0, BLOC_LISTE, 0, 0};
  for (int j = 0; j < NV; ++j)
    for (int i = 0; i < NU; ++i) {
      unsigned a = j * (NU + 1) + i, b = a + 1, c = a + NU + 2, d = a + NU + 1;
      unsigned t[2][3] = {{a, b, c}, {a, c, d}};
      for (auto& f : t) {
        m.fac.insert(m.fac.end(), {7, BLOC_ENTIER, 1, 3});
        for (unsigned v : f) m.tri.push_back(v), m.fac.push_back(static_cast<mot>(v + 1));
      }
    }
  m.fac[0] = static_cast<mot>(m.fac.size());
  m.fac[2] = static_cast<mot>(m.tri.size() / 3);
  return m;
}

double maintenant_ms() {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// The median time of IMAGES frames: other work on the machine weighs less
// than in a mean.
double temps[IMAGES];
template <class F>
double mediane(F f) {
  double* t = temps;
  for (int k = 0; k < IMAGES; ++k) {
    double t0 = maintenant_ms();
    f();
    t[k] = maintenant_ms() - t0;
  }
  std::nth_element(t, t + IMAGES / 2, t + IMAGES);
  return t[IMAGES / 2];
}

// The OpenGL state the OpenGL engine sets for this scene.
void etat_gl() {
  glViewport(0, 0, L, H);
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  gluPerspective(57.75, static_cast<double>(L) / H, 1, 100000);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  float pos[4] = {LUM[0], -LUM[1], -1000 - LUM[2], 1};
  glLightfv(GL_LIGHT0, GL_POSITION, pos);
  glEnable(GL_LIGHTING);
  glEnable(GL_LIGHT0);
  glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
  gluLookAt(0, 0, -1000, 0, 0, 0, 0, -1, 0);
  float d[4] = {ILLUM[1] * COUL[0], ILLUM[1] * COUL[1], ILLUM[1] * COUL[2], 1};
  float s[4] = {ILLUM[2], ILLUM[2], ILLUM[2], 1};
  glMaterialfv(GL_FRONT, GL_DIFFUSE, d);
  glMaterialfv(GL_FRONT, GL_SPECULAR, s);
  glMaterialf(GL_FRONT, GL_SHININESS, ILLUM[3]);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LESS);
  glShadeModel(GL_SMOOTH);
  glClearColor(0, 0, 0, 0);
}
}  // namespace

int main(int argc, char** argv) {
  if (!tas::init() || piles_alloue(100, 10000, 200, 1000)) return 1;
  Maillage m = sphere();
  std::printf("sphere: %zu triangles, %zu vertices, %d x %d\n", m.tri.size() / 3, m.som.size() / 3, L, H);

  // ---- Mesa's OpenGL ----
  glutInit(&argc, argv);
  glutInitDisplayMode(GLUT_RGBA | GLUT_DEPTH | GLUT_SINGLE);
  glutInitWindowSize(L, H);
  glutCreateWindow("bench_rendu");
  glutDisplayFunc([] {});
  for (int k = 0; k < 20; ++k) glutMainLoopEvent();
  std::printf("OpenGL: %s\n", reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
  etat_gl();
  GLuint tampons[3];
  glGenBuffers(3, tampons);
  glBindBuffer(GL_ARRAY_BUFFER, tampons[0]);
  glBufferData(GL_ARRAY_BUFFER, m.som.size() * 4, m.som.data(), GL_STATIC_DRAW);
  glVertexPointer(3, GL_FLOAT, 0, nullptr);
  glBindBuffer(GL_ARRAY_BUFFER, tampons[1]);
  glBufferData(GL_ARRAY_BUFFER, m.nor.size() * 4, m.nor.data(), GL_STATIC_DRAW);
  glNormalPointer(GL_FLOAT, 0, nullptr);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, tampons[2]);
  glBufferData(GL_ELEMENT_ARRAY_BUFFER, m.tri.size() * 4, m.tri.data(), GL_STATIC_DRAW);
  glEnableClientState(GL_VERTEX_ARRAY);
  glEnableClientState(GL_NORMAL_ARRAY);
  auto image_gl = [&] {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(m.tri.size()), GL_UNSIGNED_INT, nullptr);
    glFinish();
  };
  for (int k = 0; k < 3; ++k) image_gl();
  double ms_gl = mediane(image_gl);
  std::vector<unsigned char> lu(3L * L * H);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, L, H, GL_RGB, GL_UNSIGNED_BYTE, lu.data());

  // ---- the software renderer ----
  ecran.largeur = L;
  ecran.hauteur = H;
  if (ima_ecran_retaille(L, H) < 0) return 1;
  mot* im = ima_ecran();
  Objet* lum = objet_cree(1, B_LUM, 0, nullptr, nullptr, 1);
  attribut_ecrit_1(lum, 1, 86, LUM, 3, 1);
  Vol_aff v;
  v.som = m.som.data();
  v.ns = static_cast<int>(m.som.size() / 3);
  v.fac = m.fac.data();
  v.nf = m.fac[2];
  v.n_som = m.nor.data();
  v.coul = COUL;
  v.illum = ILLUM;
  v.type = 2;
  v.zbu = 1;
  oeil_courant = Oeil{};
  auto image_log = [&] {
    std::fill(ima_octets(im), ima_octets(im) + 3L * L * H, octet{0});
    init_zbuf(1);
    rendu_vol(v);
  };
  for (int k = 0; k < 3; ++k) image_log();
  long avant = nb_new.load();
  double ms_log = mediane(image_log);
  long allocations = nb_new.load() - avant;

  // The two pictures, pixel by pixel.
  double somme = 0, clair_gl = 0, clair_log = 0;
  long differents = 0;
  for (int y = 0; y < H; ++y) {
    const octet* r = ima_rouge(im, y);
    for (int x = 0; x < L; ++x)
      for (int c = 0; c < 3; ++c) {
        int d = std::abs(static_cast<int>(r[x + c * L]) - lu[(static_cast<long>(y) * L + x) * 3 + c]);
        somme += d;
        clair_log += r[x + c * L];
        clair_gl += lu[(static_cast<long>(y) * L + x) * 3 + c];
        differents += d > 8;
      }
  }
  // With an argument: both pictures saved there, renderer's then OpenGL's.
  if (argc > 1) {
    std::string d = argv[1];
    ima_ecrit_fichier(im, d + "/logiciel.png");
    for (int y = 0; y < H; ++y) {
      octet* r = ima_rouge(im, y);
      for (int x = 0; x < L; ++x)
        for (int c = 0; c < 3; ++c) r[x + c * L] = lu[(static_cast<long>(y) * L + x) * 3 + c];
    }
    ima_ecrit_fichier(im, d + "/mesa.png");
  }
  std::printf("mesa_gl_ms %.2f\nlogiciel_ms %.2f\nratio %.2f (goal <= 2)\n", ms_gl, ms_log, ms_log / ms_gl);
  std::printf("allocations in %d frames: %ld\n", IMAGES, allocations);
  std::printf("pictures: mean level %.2f (OpenGL) %.2f (renderer)\n", clair_gl / (3.0 * L * H), clair_log / (3.0 * L * H));
  std::printf("pictures: mean difference %.3f levels, %.3f%% of samples differ by more than 8\n",
              somme / (3.0 * L * H), 100.0 * differents / (3.0 * L * H));
  return 0;
}

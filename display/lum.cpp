// The lights of a frame: every `lum` object of the table, in table order,
// becomes the next GL light. The table of lights pairs the object's number
// with its GL identifier; it holds at most 100 entries.
//
// The world's y axis points down while OpenGL's points up, so a position
// goes to GL as (x, -y, oeil.z - z, 1) under an identity model matrix: the
// place the default eye would see it at.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>

#include <cstdio>

#include "core/objet.h"
#include "display/display.h"
#include "display/moteurs.h"
#include "display/oeil.h"

namespace {
constexpr int NB_LUM = 100;
// The bound of the identifiers: the enumerant GL_MAX_LIGHTS taken as a
// number, so that no query is needed to know it.
constexpr int BORNE_ID = GL_MAX_LIGHTS;  // 3377
constexpr int B_SOM = 86, B_DIR = 10, B_CONE = 26, B_COUL = 17, B_ATT = 42;

struct Lumieres {
  int nb = 0;
  int table[NB_LUM][2] = {};  // number of the object, GL identifier
  int max_gl = -1;            // lights this GL really has, asked once
};
Lumieres lums;

// GL refuses identifiers past its own lights; they are kept in the table
// like the others but not sent, so the GL error state stays clean.
bool reel_gl(int id) {
  if (lums.max_gl < 0) {
    GLint m = 8;
    glGetIntegerv(GL_MAX_LIGHTS, &m);
    lums.max_gl = m;
  }
  return id >= GL_LIGHT0 && id < GL_LIGHT0 + lums.max_gl;
}

// Up to n floats of an attribute's value (floats or integers); the count.
int lit(Objet* o, int ord, float* x, int n) {
  if (!o->donnees) return 0;
  const mot* v = attribut_valeur_1(o->donnees, 1, ord);
  if (!v || v[0] < 4 || (v[1] != BLOC_REEL && v[1] != BLOC_ENTIER)) return 0;
  int k = static_cast<int>(v[0] - 4);
  if (k > n) k = n;
  for (int i = 0; i < k; ++i) x[i] = v[1] == BLOC_REEL ? lit_reel(v + 4 + i) : static_cast<float>(v[4 + i]);
  return k;
}
}  // namespace

int lum_id(int i) { return i >= 0 && i < BORNE_ID ? GL_LIGHT0 + i : -1; }

void lum_eteindre() {
  for (int i = 0; i < BORNE_ID; ++i)
    if (int id = lum_id(i); reel_gl(id)) glDisable(id);
  lums.nb = 0;
}

int lum_gl() {
  lum_eteindre();
  glEnable(GL_LIGHTING);
  glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
  // Positions are taken under the identity, whatever the frame left.
  glMatrixMode(GL_MODELVIEW);
  glPushMatrix();
  glLoadIdentity();
  int r = 0;
  for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o) {
    if (o->type != B_LUM || o->env != 1) continue;
    if (lums.nb >= NB_LUM) {
      std::printf("Trop de lumieres\x07\n");
      r = -1;
      break;
    }
    int id = lum_id(lums.nb);
    if (id < 0) {
      std::printf("%s: %d > %d\x07\n", objet_nom(o), GL_LIGHT0 + lums.nb, BORNE_ID - 1);
      r = -1;
      break;
    }
    lums.table[lums.nb][0] = o->numero;
    lums.table[lums.nb][1] = id;
    ++lums.nb;
    if (!reel_gl(id)) continue;
    glEnable(id);
    float p[3], d[3], c[3], cone[2], a;
    if (lit(o, B_SOM, p, 3) == 3) {
      const float pos[4] = {p[0], -p[1], oeil_courant.oeil[2] - p[2], 1};
      glLightfv(id, GL_POSITION, pos);
      if (lit(o, B_DIR, d, 3) == 3) {
        const float dir[3] = {-d[0], -d[1], -d[2]};
        glLightfv(id, GL_SPOT_DIRECTION, dir);
      }
      if (lit(o, B_CONE, cone, 2) == 2) glLightf(id, GL_SPOT_CUTOFF, 57.295776f * cone[1]);
    }
    if (lit(o, B_COUL, c, 3) == 3) {
      const float dif[4] = {c[0], c[1], c[2], 1};
      glLightfv(id, GL_DIFFUSE, dif);
    }
    // The same value to the three terms, as the system always did.
    if (lit(o, B_ATT, &a, 1) == 1) {
      glLightf(id, GL_CONSTANT_ATTENUATION, a);
      glLightf(id, GL_LINEAR_ATTENUATION, a);
      glLightf(id, GL_QUADRATIC_ATTENUATION, a);
    }
  }
  glPopMatrix();
  std::fflush(stdout);
  return r;
}

int lum_nb() { return lums.nb; }
const int* lum_table(int i) { return i >= 0 && i < lums.nb ? lums.table[i] : nullptr; }

void lum_voir() {
  GLint m = 8;
  glGetIntegerv(GL_MAX_LIGHTS, &m);
  for (int i = 0; i < m; ++i) {
    int id = GL_LIGHT0 + i;
    GLboolean on = GL_FALSE;
    glGetBooleanv(id, &on);
    std::printf("%d: ", i);
    if (!on) {
      std::printf("off\n");
      continue;
    }
    float p[4], c, l, q;
    glGetLightfv(id, GL_POSITION, p);
    glGetLightfv(id, GL_CONSTANT_ATTENUATION, &c);
    glGetLightfv(id, GL_LINEAR_ATTENUATION, &l);
    glGetLightfv(id, GL_QUADRATIC_ATTENUATION, &q);
    std::printf("\tPOSITION %f %f %f %f\n", p[0], p[1], p[2], p[3]);
    std::printf("\tCONSTANT_ATTENUATION %f\n", c);
    std::printf("\tLINEAR_ATTENUATION %f\n", l);
    std::printf("\tQUADRATIC_ATTENUATION %f\n", q);
  }
  std::fflush(stdout);
}

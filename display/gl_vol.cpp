// Method 1 of aff: a volume's polygons into the current draw buffer, one at
// a time, with the material rules the real-time frame uses too, so that
// one volume looks the same by either road.
#include <GL/freeglut.h>

#include <cstdio>
#include <vector>

#include "display/display.h"
#include "display/moteurs.h"
#include "geom/geom.h"
#include "startup/startup.h"

namespace {
constexpr float BLANC[3] = {1, 1, 1};
constexpr float ILLUM_DEFAUT[5] = {1, 1, 0, 0, 0};
constexpr int B_RAYON_ = 68;

std::vector<const mot*> faces_par_numero;  // kept between calls: no allocation once grown

const float* sommet(const Vol_aff& v, int k) { return v.som + static_cast<long>(k - 1) * v.dim; }
bool dans(const Vol_aff& v, int k) { return k >= 1 && k <= v.ns; }

void points(const Vol_aff& v) {
  int n = 0;
  const float* r = mot_valeur(1, B_RAYON_, &n);
  float taille = r && n > 0 && r[0] >= 1 ? r[0] : 3;
  glDisable(GL_LIGHTING);
  glPointSize(taille);
  glBegin(GL_POINTS);
  for (int k = 1; k <= v.ns; ++k) glVertex3fv(sommet(v, k));
  glEnd();
  glPointSize(1);
  if (v.mode != -10) return;
  char t[16];
  for (int k = 1; k <= v.ns; ++k) {
    const float* p = sommet(v, k);
    glRasterPos3f(p[0], p[1], p[2]);
    std::snprintf(t, sizeof t, " %d", k);
    for (const char* c = t; *c; ++c) glutBitmapCharacter(GLUT_BITMAP_8_BY_13, *c);
  }
}

// Edges as separate pairs; without stored edges, the contours of the faces.
void aretes(const Vol_aff& v) {
  glDisable(GL_LIGHTING);
  glBegin(GL_LINES);
  if (v.aretes && v.aretes[1] == BLOC_ENTIER && v.aretes[3] == 2) {
    const mot* a = v.aretes + 4;
    for (int i = 0; i < v.ne && 4 + 2 * (i + 1) <= v.aretes[0]; ++i, a += 2)
      if (dans(v, a[0]) && dans(v, a[1])) {
        glVertex3fv(sommet(v, a[0]));
        glVertex3fv(sommet(v, a[1]));
      }
  } else if (v.fac) {
    const mot* f = v.fac + 4;
    for (int i = 0; i < v.nf; ++i, f = face_suivante(f)) {
      int k;
      const mot* c = face_contour(f, &k);
      for (int j = 0; j < k && k > 1; ++j) {
        int a = c[j], b = c[j + 1 < k ? j + 1 : 0];
        if (!dans(v, a) || !dans(v, b)) continue;
        glVertex3fv(sommet(v, a));
        glVertex3fv(sommet(v, b));
      }
    }
  }
  glEnd();
}
}  // namespace

float gl_matiere(int type, const float* coul, const float* illum) {
  GLenum face = type < 1 ? GL_FRONT_AND_BACK : GL_FRONT;
  float a = 1;
  // Exactly 0 is opaque; the least transparency already blends.
  if (illum[4] == 0) {
    glDisable(GL_BLEND);
  } else {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    a = 1 - illum[4];
  }
  const float k = illum[1];
  const float dif[4] = {k * coul[0], k * coul[1], k * coul[2], a};
  if (type == 0) {
    // Unlit edges take the colour itself, as method 1 draws them.
    glColor4f(coul[0], coul[1], coul[2], a);
    glMaterialfv(GL_FRONT, GL_AMBIENT_AND_DIFFUSE, dif);
    return a;
  }
  glColor4fv(dif);
  glMaterialfv(face, GL_DIFFUSE, dif);
  const float spe[4] = {illum[2], illum[2], illum[2], 1};
  glMaterialfv(face, GL_SPECULAR, spe);
  float b = illum[3];
  glMaterialf(face, GL_SHININESS, b >= 0 && b <= 128 ? b : (b > 128 ? 128 : 0));
  return a;
}

int aff_gl_vol(const Vol_aff& v) {
  if (fen.fenetre < 1 || v.mode == -68 || !v.som || v.ns < 1) return 0;
  const float* c = v.coul ? v.coul : BLANC;
  const float* il = v.illum ? v.illum : ILLUM_DEFAUT;
  glColor3fv(c);
  if (v.mode == -9 || v.mode == -10) {
    points(v);
    return 0;
  }
  int t = v.type;
  if (v.mode == 0 || t == 0) {
    aretes(v);
    return 0;
  }
  if (!v.fac || v.nf < 1) return 0;
  if (t < -3 || t > 3) t = t < 0 ? -1 : 1;
  int abs_t = t < 0 ? -t : t;
  bool doux = abs_t >= 2 && v.n_som;
  if (!doux && !v.n_fac) return 0;
  const GLenum cote = t < 1 ? GL_FRONT_AND_BACK : GL_FRONT;
  float alpha = gl_matiere(t, c, il);
  if (v.c_som) {
    glColorMaterial(cote, GL_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
  }
  // The faces by number, for an explicit list.
  faces_par_numero.clear();
  const mot* f = v.fac + 4;
  for (int i = 0; i < v.nf; ++i, f = face_suivante(f)) faces_par_numero.push_back(f);
  int n = v.liste_fac ? v.n_liste : v.nf;
  for (int q = 0; q < n; ++q) {
    int i = v.liste_fac ? v.liste_fac[q] : q + 1;
    if (i < 1 || i > v.nf) continue;
    if (v.c_fac) {
      const float* cf = coul_element(v.c_fac, i);
      const float* cc = cf ? cf : c;
      const float dif[4] = {il[1] * cc[0], il[1] * cc[1], il[1] * cc[2], alpha};
      glMaterialfv(cote, GL_DIFFUSE, dif);
    }
    int k;
    const mot* ct = face_contour(faces_par_numero[i - 1], &k);
    glBegin(GL_POLYGON);
    if (!doux) glNormal3fv(v.n_fac + static_cast<long>(i - 1) * v.pas_n);
    for (int j = 0; j < k; ++j) {
      int s = ct[j];
      if (!dans(v, s)) continue;
      if (v.c_som) {
        const float* cs = coul_element(v.c_som, s);
        const float* cc = cs ? cs : c;
        glColor4f(cc[0], cc[1], cc[2], alpha);
      }
      if (doux) glNormal3fv(v.n_som + static_cast<long>(s - 1) * v.pas_n);
      glVertex3fv(sommet(v, s));
    }
    glEnd();
  }
  if (v.c_som) glDisable(GL_COLOR_MATERIAL);
  return 0;
}

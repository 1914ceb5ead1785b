// Flat passes drawn over the picture (background image, buttons, panels,
// labels): the capabilities they turn off are put back as they were, and the
// matrices they replace are given back, when the pass's scope ends, so a
// pass cannot leave the next frame lit, fogged or projected differently.
#pragma once
#include <GL/gl.h>

#include <initializer_list>

// Turns these capabilities off; the ones that were on are turned on again.
struct Gl_sans {
  static constexpr int MAX = 8;
  GLenum cap[MAX];
  bool avant[MAX];
  int n = 0;
  Gl_sans(std::initializer_list<GLenum> l) {
    for (GLenum c : l) {
      if (n == MAX) break;
      cap[n] = c;
      avant[n] = glIsEnabled(c) == GL_TRUE;
      glDisable(c);
      ++n;
    }
  }
  ~Gl_sans() {
    for (int i = 0; i < n; ++i)
      if (avant[i]) glEnable(cap[i]);
  }
  Gl_sans(const Gl_sans&) = delete;
  Gl_sans& operator=(const Gl_sans&) = delete;
};

// An orthographic projection of the window's pixels and an identity
// model-view, both pushed; popped at the end of the scope.
struct Gl_plan {
  Gl_plan(double g, double d, double b, double h) {
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(g, d, b, h, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
  }
  ~Gl_plan() {
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
  }
  Gl_plan(const Gl_plan&) = delete;
  Gl_plan& operator=(const Gl_plan&) = delete;
};

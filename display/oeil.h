// The eye: where the scene is seen from, shared by both engines. The
// language's eye commands write it; the OpenGL projection and the software
// projection read it, so that one scene gives one picture in both.
//
// The world's y axis points down the screen: the up vector is (0, -1, 0).
// `roul` is in radians, 0 meaning no roll. `foc` x 57.75 is the vertical
// field of view in degrees. `projection` is 13 (perspective) or 63
// (parallel); any other value leaves the matrices alone. Invariant kept by
// the writers: foc > 0 and 0 < proche < loin, so the matrices are finite.
#pragma once

struct Oeil {
  float oeil[3] = {0.f, 0.f, -1000.f};
  float vise[3] = {0.f, 0.f, 0.f};
  float roul = 0.f;
  float foc = 1.f;
  float proche = 1.f, loin = 100000.f;
  int projection = 13;
  float fui = 1000.f;  // vanishing term of the software projection
};
extern Oeil oeil_courant;

// The view and projection matrices of the current eye for a window of
// dimx x dimy (column-major 4 x 4, as OpenGL takes them): the same as
// gluLookAt and gluPerspective (or glOrtho) would build.
void oeil_matrices(int dimx, int dimy, float vue[16], float proj[16]);

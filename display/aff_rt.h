// Private to the real-time drawing: the GL side of a Vol_rt.
//
// Corners are the vertices of the first contour of every face, in face
// order; `fac_deb` gives each face's first corner (nf + 1 entries). The
// triangles fan out of each face's first corner, as GL splits a convex
// polygon, so a face drawn from them is the polygon drawn whole.
#pragma once
#include <GL/gl.h>
#include <GL/glu.h>

#include <cstdint>
#include <vector>

#include "display/display.h"

// A GL buffer name, deleted with its owner.
struct Tampon_gl {
  GLuint id = 0;
  Tampon_gl() = default;
  Tampon_gl(const Tampon_gl&) = delete;
  Tampon_gl& operator=(const Tampon_gl&) = delete;
  ~Tampon_gl();
  GLuint pret();  // made on first use
};

struct Vol_rt_gl {
  std::vector<std::uint32_t> fac_deb, coins;  // corners: vertex numbers from 0
  std::vector<std::uint32_t> tri;     // triangles over the vertices
  std::vector<std::uint32_t> tri_c;   // the same over the corners
  std::vector<std::uint32_t> lig;     // edges: pairs of vertices
  std::vector<float> n_fac, n_som;    // 3 floats a face, a vertex
  std::vector<float> c_som;           // 3 floats a vertex, or empty
  std::vector<float> c_fac;           // 3 floats a face; NaN: the volume's colour
  std::vector<float> mappe;           // 2 floats a corner, or empty
  std::vector<std::uint32_t> tri_deb; // each face's first index in tri_c (nf + 1 entries)
  std::vector<int> tex_ima, tex_fac;  // per face: the image shown (0: none), its GL name (-1: none)
  std::vector<float> eclate;          // per corner: position, normal, [colour 4], [texture 2]
  std::vector<float> c_som4;          // c_som with its alpha, as sent
  bool modifie = true;                // som changed since the normals
  bool eclate_pret = false;
  int eclate_type = 0;                // |type| the corners were made for
  float eclate_cle[5] = {};           // colour, coefficient, alpha they were made with
  float c_som_alpha = -1;
  Tampon_gl b_som, b_nor, b_col, b_tri, b_tri_c, b_lig, b_ecl;
  bool som_envoye = false;
  // NURBS: knots of the two directions, the renderer.
  GLUnurbs* nurbs = nullptr;
  int nu = 0, nv = 0;
  float u = 0, v = 0, pas = 0;  // sampling; 0: GLU's default
  std::vector<float> ku, kv;
  // Type b79: the sources whose vertices, through their frame's matrices,
  // become these vertices in turn; then the pins, each a vertex (from 0)
  // set to a point fixed in another record's frame.
  struct Epingle {
    int som;
    Vol_rt* autre;
    float p[3];
  };
  std::vector<Vol_rt*> sources;
  std::vector<Epingle> epingles;
  ~Vol_rt_gl();
};

// Normals of the current vertices (faces: Newell's sums; vertices: the
// normalised sum of the faces around them).
void rt_normales(Vol_rt* r);

// The doors of the two engines of `aff`. aff_vol_1 prepares one volume into
// a Vol_aff and hands it either to the software renderer, which draws into
// the working image 0 (shown in the window when one exists), or to OpenGL.
//
// Everything an engine reads is in Vol_aff; it owns nothing in it except
// the projected vertices the software engine writes into `proj`. Colours
// are floats in 0..1, turned into levels 0..255 at the pixel. Faces are the volume's face list
// (a BLOC_LISTE, see geom.h); vertex numbers in it run from 1.
#pragma once
#include "core/bloc.h"

struct Pig_liste;

struct Vol_aff {
  int numero = 0;          // the volume's number, for labels and messages
  int mode = 1;            // > 0 shaded, 0 wire, -9 points, -10 numbered points, -68 test
  int type = 1;            // illumination type, -3..3; negative lights both sides
  const float* som = nullptr;  // displayed vertices, `dim` floats each (x, y, z first)
  int ns = 0, dim = 3;
  const mot* fac = nullptr;    // face list, or null
  int nf = 0;
  const mot* aretes = nullptr; // value of (b51): pairs of vertex numbers, or null
  int ne = 0;
  const int* liste_fac = nullptr;  // an explicit list of faces (from 1), or null
  int n_liste = 0;
  const float* n_fac = nullptr;    // face normals, `pas_n` floats each, or null
  const float* n_som = nullptr;    // vertex normals, or null
  int pas_n = 3;
  const float* coul = nullptr;     // 3 floats; null is white
  const mot* c_fac = nullptr;      // value of (b17, b15), or null
  const mot* c_som = nullptr;      // value of (b17, b32), or null
  const float* illum = nullptr;    // type, diffuse, specular, shininess, transparency
  const int* lum = nullptr;        // numbers of the lights of this volume
  int nlum = 0;
  int zbu = -1;                    // this volume's z-buffer mode (b25); -1: the global one
  bool rapide = false;             // the wire fast path may be taken
  bool tri = true;                 // transparent faces sorted farthest first
  float* proj = nullptr;           // out: 7 floats per vertex, or null for a scratch copy
  // Pigments (flag [104]): the volume's list, and one list per face (nf
  // entries, an empty one taking the volume's), or null.
  const Pig_liste* pig = nullptr;
  const Pig_liste* pig_fac = nullptr;
  // Textures (flag [54]): per face its pigment (the image; an empty list
  // for a face with none), 2 floats a corner in the face walk, and each
  // face's first corner (nf + 1 entries), or null.
  const Pig_liste* tex = nullptr;
  const float* mappe = nullptr;
  const int* mappe_deb = nullptr;
};

// ---- the software engine -------------------------------------------------
// 0, or a negative value after a numbered message.
int rendu_vol(const Vol_aff& v);
// Makes or resizes the z-buffer of the current mode at the window's size,
// filled with its far value when `effacer` is non-zero. 0, or -1 (0:28).
int init_zbuf(int effacer);
// The z-buffer mode (0 none, 1 16-bit, 2 float), as the key zbu sets it.
int zbuf_mode();
int zbuf_mode_fixe(int mode);  // prints its line; -1 with 0:66 for a negative mode
// The key zbu (b25) of the language: with a value, the mode (its line
// printed, the buffer made); alone, "zbuffer = %d shorts" with the size.
// Registered with the command dispatch at start, window or not.
void rendu_enregistre();

// ---- the OpenGL engine -----------------------------------------------------
// Method 1 of aff: the volume's polygons one at a time into the current
// draw buffer. 0, or negative.
int aff_gl_vol(const Vol_aff& v);
// One frame of the real-time path from the console (`aff gl` alone): 0,
// negative, or -1 with no window (the caller draws in software instead).
int aff_rt_image();
// The projection step of a frame from the eye; `reset` loads identity first.
void projection_set(int reset);
// Lights of the object table into OpenGL: 0, or -1 with a message.
int lum_gl();
void lum_eteindre();
int lum_id(int i);  // GL_LIGHT0 + i, or -1
// The table of lights that lum_gl filled: its count, and entry i as
// (number of the object, GL identifier), or null.
int lum_nb();
const int* lum_table(int i);
// The material of a lit volume (and the colour of an unlit one): diffuse =
// coefficient x colour, specular, shininess, and blending unless the
// transparency is exactly 0. Gives the alpha used.
float gl_matiere(int type, const float* coul, const float* illum);

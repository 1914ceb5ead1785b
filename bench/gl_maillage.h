// The mesh both sides of the OpenGL benchmark draw: a wavy square grid of
// about n vertices, 800 units wide, in quads wound to face the eye, and the
// timing of frames, and the picture read back so that the two sides can be
// shown to draw the same scene.
#pragma once
#include <GL/gl.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

struct Maillage {
  int cote = 0;               // vertices per side
  std::vector<float> som;     // 3 floats a vertex
  std::vector<int> quads;     // 4 vertex numbers from 0 a face
};

inline Maillage maillage(long n) {
  Maillage m;
  m.cote = static_cast<int>(std::lround(std::sqrt(static_cast<double>(n))));
  int c = m.cote;
  m.som.reserve(3L * c * c);
  for (int j = 0; j < c; ++j)
    for (int i = 0; i < c; ++i) {
      float x = -400 + 800.f * i / (c - 1), y = -400 + 800.f * j / (c - 1);
      m.som.insert(m.som.end(), {x, y, 30 * std::sin(x / 60) * std::cos(y / 80)});
    }
  for (int j = 0; j + 1 < c; ++j)
    for (int i = 0; i + 1 < c; ++i) {
      int a = j * c + i;
      m.quads.insert(m.quads.end(), {a, a + c, a + c + 1, a + 1});
    }
  return m;
}

// Frames per second of f over at least `secondes` and 5 frames.
template <class F>
double images_par_seconde(double secondes, F f) {
  f();  // the first frame uploads what the others reuse
  auto t0 = std::chrono::steady_clock::now();
  int n = 0;
  double t = 0;
  while (n < 5 || t < secondes) {
    f();
    ++n;
    t = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  }
  return n / t;
}

// The window's size on both sides.
constexpr int BENCH_L = 640, BENCH_H = 480;

// With IMAGE set, the back buffer of the frame just drawn (before its swap)
// as a binary PPM named $IMAGE_<n>.ppm, top row first.
inline void image_ecrit(long n) {
  const char* base = std::getenv("IMAGE");
  if (!base) return;
  std::vector<unsigned char> p(3L * BENCH_L * BENCH_H);
  glFinish();
  glReadBuffer(GL_BACK);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, BENCH_L, BENCH_H, GL_RGB, GL_UNSIGNED_BYTE, p.data());
  std::string nom = std::string(base) + "_" + std::to_string(n) + ".ppm";
  if (std::FILE* f = std::fopen(nom.c_str(), "wb")) {
    std::fprintf(f, "P6\n%d %d\n255\n", BENCH_L, BENCH_H);
    for (int y = BENCH_H - 1; y >= 0; --y) std::fwrite(&p[3L * BENCH_L * y], 1, 3L * BENCH_L, f);
    std::fclose(f);
  }
}

// The peer of the OpenGL benchmark: the least a C++ program can do to draw
// the mesh smooth shaded with one light on this OpenGL: positions and
// normals in one vertex buffer, triangles in an index buffer, one
// glDrawElements a frame. Prints "n fps" for each size given.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/freeglut.h>

#include <cstdio>
#include <cstdlib>

#include "gl_maillage.h"

int main(int argc, char** argv) {
  glutInit(&argc, argv);
  glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH | GLUT_RGBA);
  glutInitWindowSize(BENCH_L, BENCH_H);
  glutCreateWindow("gl_ref");
  glutDisplayFunc([] {});
  for (int k = 0; k < 10; ++k) glutMainLoopEvent();
  double secondes = std::getenv("SECONDES") ? std::atof(std::getenv("SECONDES")) : 2;
  for (int a = 1; a < argc; ++a) {
    Maillage m = maillage(std::atol(argv[a]));
    long ns = static_cast<long>(m.som.size() / 3);
    // Vertex normals: the sum of the faces' normals around each vertex.
    std::vector<float> v(6 * ns, 0.f);
    for (long i = 0; i < ns; ++i)
      for (int k = 0; k < 3; ++k) v[6 * i + k] = m.som[3 * i + k];
    std::vector<unsigned> tri;
    for (std::size_t q = 0; q < m.quads.size(); q += 4) {
      const int* f = &m.quads[q];
      float n[3] = {0, 0, 0};
      for (int j = 0; j < 4; ++j) {
        const float *p = &m.som[3 * f[j]], *s = &m.som[3 * f[(j + 1) % 4]];
        n[0] += (p[1] - s[1]) * (p[2] + s[2]);
        n[1] += (p[2] - s[2]) * (p[0] + s[0]);
        n[2] += (p[0] - s[0]) * (p[1] + s[1]);
      }
      float l = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
      for (int j = 0; j < 4; ++j)
        for (int k = 0; k < 3; ++k) v[6 * f[j] + 3 + k] += n[k] / l;
      tri.insert(tri.end(), {unsigned(f[0]), unsigned(f[1]), unsigned(f[2]), unsigned(f[0]), unsigned(f[2]),
                             unsigned(f[3])});
    }
    for (long i = 0; i < ns; ++i) {
      float* n = &v[6 * i + 3];
      float l = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
      if (l > 0) n[0] /= l, n[1] /= l, n[2] /= l;
    }
    GLuint b[2];
    glGenBuffers(2, b);
    glBindBuffer(GL_ARRAY_BUFFER, b[0]);
    glBufferData(GL_ARRAY_BUFFER, v.size() * 4, v.data(), GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, b[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, tri.size() * 4, tri.data(), GL_STATIC_DRAW);
    glVertexPointer(3, GL_FLOAT, 24, nullptr);
    glNormalPointer(GL_FLOAT, 24, reinterpret_cast<void*>(12));
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
    const float pos[4] = {0, 0, 999000, 1}, dif[4] = {0.8f, 0.6f, 0.4f, 1};
    glLightfv(GL_LIGHT0, GL_POSITION, pos);
    glMaterialfv(GL_FRONT, GL_DIFFUSE, dif);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    gluPerspective(57.75, static_cast<double>(BENCH_L) / BENCH_H, 1, 100000);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    gluLookAt(0, 0, -1000, 0, 0, 0, 0, -1, 0);
    auto image = [&](bool lue) {
      glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
      glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(tri.size()), GL_UNSIGNED_INT, nullptr);
      if (lue) image_ecrit(ns);
      glutSwapBuffers();
      glFinish();
    };
    double fps = images_par_seconde(secondes, [&] { image(false); });
    image(true);
    std::printf("%ld %.2f\n", ns, fps);
    std::fflush(stdout);
    glDeleteBuffers(2, b);
  }
  return 0;
}

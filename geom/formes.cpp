// Builders of simple shapes: each writes the vertices and faces of a volume.
// Faces turn counter-clockwise seen from outside, so that their normals
// point out.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "core/message.h"
#include "geom/interne.h"

namespace {
constexpr double PI = 3.14159265358979323846;

// A face list under construction, as the words of a BLOC_LISTE.
struct Faces {
  std::vector<mot> mots{4, BLOC_LISTE, 0, 0};
  void ajoute(std::initializer_list<mot> v) {
    mots.insert(mots.end(), {static_cast<mot>(4 + v.size()), BLOC_ENTIER, 1, static_cast<mot>(v.size())});
    mots.insert(mots.end(), v);
    ++mots[2];
  }
  void ajoute(const std::vector<mot>& v) {
    mots.insert(mots.end(), {static_cast<mot>(4 + v.size()), BLOC_ENTIER, 1, static_cast<mot>(v.size())});
    mots.insert(mots.end(), v.begin(), v.end());
    ++mots[2];
  }
  const mot* bloc() {
    mots[0] = static_cast<mot>(mots.size());
    return mots.data();
  }
};

int mauvais(double x) {
  std::printf("%g: ", x);
  message(0, MES_INDICE);
  return -1;
}

int ecrit(Objet* o, const std::vector<float>& som, Faces& f, int forme) {
  if (!est_volume(o)) return geom_erreur(o, MES_USAGE);
  vol_grille_fixe(o, forme, 0, 0, 0, 0);
  if (vol_som_ecrit(o, som.data(), static_cast<int>(som.size() / 3), 3)) return -1;
  return vol_fac_ecrit(o, f.bloc());
}

// Vertex on a circle of radius r at turn i of n, the circle square to y.
// z = -r sin so that rows in increasing y face out.
void cercle(std::vector<float>& s, double r, double y, int i, int n) {
  double a = 2 * PI * i / n;
  s.insert(s.end(), {static_cast<float>(r * std::cos(a)), static_cast<float>(y), static_cast<float>(-r * std::sin(a))});
}
}  // namespace

int vol_grille(Objet* o, int nx, int ny, int nz, int ferme, float dx, float dy, float dz) {
  if (nx < 1 || ny < 0 || nz < 0) return mauvais(nx < 1 ? nx : (ny < 0 ? ny : nz));
  if (nx > 32767 || ny > 32767 || nz > 32767) return mauvais(std::max({nx, ny, nz}));
  long n = nb_som_grille(nx, ny, nz, ferme);
  if (n * 3 + 10 > 0x7fffffff) return mauvais(static_cast<double>(n));
  if (!est_volume(o)) return geom_erreur(o, MES_USAGE);
  std::vector<float> s;
  try {
    s.reserve(3 * n);
  } catch (const std::bad_alloc&) {
    erreur_memoire(n, 12);
    return -1;
  }
  // A closed row is a circle whose columns are dx apart.
  double r0 = ferme ? dx * nx / (2 * PI) : 0;
  for (int l = 0; l <= nz; ++l)
    for (int j = 0; j <= ny; ++j)
      for (int i = 0; i < (ferme ? nx : nx + 1); ++i)
        if (ferme)
          cercle(s, r0 + l * static_cast<double>(dz), j * static_cast<double>(dy), i, nx);
        else
          s.insert(s.end(), {i * dx, j * dy, l * dz});
  mot* f = gen_fac_grille(nx, ny, nz, ferme);
  if (!f) return -1;
  vol_grille_fixe(o, B_GRILLE, nx, ny, nz, ferme ? 1 : 0);
  int r = vol_som_ecrit(o, s.data(), static_cast<int>(n), 3);
  if (r == 0) r = vol_fac_ecrit(o, f + 6);
  bloc_libere(f);
  return r;
}

int vol_cube(Objet* o, float cote) {
  if (!(cote >= 0)) return mauvais(cote);
  float h = cote / 2;
  std::vector<float> s;
  for (int k = 0; k < 8; ++k) {
    // 1 to 4 at -z, 5 to 8 at +z, each square turning from (-, -).
    int q = k & 3;
    s.insert(s.end(), {q == 1 || q == 2 ? h : -h, q >= 2 ? h : -h, k >= 4 ? h : -h});
  }
  Faces f;
  f.ajoute({1, 4, 3, 2});
  f.ajoute({5, 6, 7, 8});
  f.ajoute({1, 2, 6, 5});
  f.ajoute({4, 8, 7, 3});
  f.ajoute({1, 5, 8, 4});
  f.ajoute({2, 3, 7, 6});
  return ecrit(o, s, f, 0);
}

int vol_sphere(Objet* o, int n, int m, float rayon) {
  if (n < 3 || m < 2) return mauvais(n < 3 ? n : m);
  if (!(rayon >= 0)) return mauvais(rayon);
  if (static_cast<long>(n) * m > 10000000) return mauvais(static_cast<double>(n) * m);
  // Poles on the y axis, m - 1 rings between them.
  std::vector<float> s{0, -rayon, 0};
  for (int k = 1; k < m; ++k) {
    double phi = PI * k / m;
    for (int i = 0; i < n; ++i) cercle(s, rayon * std::sin(phi), -rayon * std::cos(phi), i, n);
  }
  s.insert(s.end(), {0, rayon, 0});
  mot sud = 2 + n * (m - 1);
  auto v = [&](int k, int i) -> mot { return 2 + (k - 1) * n + i % n; };
  Faces f;
  for (int i = 0; i < n; ++i) f.ajoute({1, v(1, i + 1), v(1, i)});
  for (int k = 1; k + 1 < m; ++k)
    for (int i = 0; i < n; ++i) f.ajoute({v(k, i), v(k, i + 1), v(k + 1, i + 1), v(k + 1, i)});
  for (int i = 0; i < n; ++i) f.ajoute({v(m - 1, i), v(m - 1, i + 1), sud});
  return ecrit(o, s, f, 0);
}

int vol_cylindre(Objet* o, int n, float r_bas, float r_haut, float hauteur, bool bouchons) {
  if (n < 3 || n > 10000000) return mauvais(n);
  if (!(r_bas >= 0)) return mauvais(r_bas);
  if (!(r_haut >= 0)) return mauvais(r_haut);
  if (r_bas == 0 && r_haut == 0) return mauvais(0);
  // Top ring at y = -h/2 (y points down), bottom ring at +h/2; a radius of
  // 0 is the apex of a cone.
  double y0 = -hauteur / 2.0, y1 = hauteur / 2.0;
  std::vector<float> s;
  auto anneau = [&](double r, double y) -> mot {
    mot premier = static_cast<mot>(s.size() / 3 + 1);
    if (r == 0)
      s.insert(s.end(), {0, static_cast<float>(y), 0});
    else
      for (int i = 0; i < n; ++i) cercle(s, r, y, i, n);
    return premier;
  };
  mot h = anneau(r_haut, y0), b = anneau(r_bas, y1);
  auto vh = [&](int i) -> mot { return r_haut == 0 ? h : h + i % n; };
  auto vb = [&](int i) -> mot { return r_bas == 0 ? b : b + i % n; };
  Faces f;
  for (int i = 0; i < n; ++i) {
    if (r_haut == 0)
      f.ajoute({h, vb(i + 1), vb(i)});
    else if (r_bas == 0)
      f.ajoute({vh(i), vh(i + 1), b});
    else
      f.ajoute({vh(i), vh(i + 1), vb(i + 1), vb(i)});
  }
  if (bouchons) {
    std::vector<mot> c(n);
    if (r_haut > 0) {
      for (int i = 0; i < n; ++i) c[i] = vh(n - i);
      f.ajoute(c);
    }
    if (r_bas > 0) {
      for (int i = 0; i < n; ++i) c[i] = vb(i);
      f.ajoute(c);
    }
  }
  return ecrit(o, s, f, 0);
}

int vol_tore(Objet* o, int n, int m, float r_grand, float r_petit) {
  if (n < 3 || m < 3) return mauvais(n < 3 ? n : m);
  if (static_cast<long>(n) * m > 10000000) return mauvais(static_cast<double>(n) * m);
  if (!(r_grand >= 0)) return mauvais(r_grand);
  if (!(r_petit >= 0)) return mauvais(r_petit);
  std::vector<float> s;
  for (int j = 0; j < m; ++j) {
    double phi = 2 * PI * j / m;
    for (int i = 0; i < n; ++i) cercle(s, r_grand + r_petit * std::cos(phi), r_petit * std::sin(phi), i, n);
  }
  auto v = [&](int i, int j) -> mot { return (j % m) * n + i % n + 1; };
  Faces f;
  for (int j = 0; j < m; ++j)
    for (int i = 0; i < n; ++i) f.ajoute({v(i, j), v(i + 1, j), v(i + 1, j + 1), v(i, j + 1)});
  return ecrit(o, s, f, 0);
}

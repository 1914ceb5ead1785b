// Faces, edges and neighbours of grid forms, from the sizes alone. Vertices
// are numbered row by row, a row holding nx + 1 of them (nx when the rows
// are closed on themselves), layer after layer.
#include <algorithm>
#include <cstring>

#include "geom/interne.h"

namespace {
// Attribute (b15) with a list of f faces of 4 vertices; `ecrit` fills the
// vertex numbers, 4 a face.
template <class F>
mot* fac_quads(long f, F ecrit) {
  long lg = 6 + 4 + 8 * f;
  if (lg > 0x7fffffff) {
    geom_erreur_valeur(f, MES_TROP);
    return nullptr;
  }
  mot* a = bloc_alloue(static_cast<mot>(lg));
  if (!a) return nullptr;
  phrase_paires(a, 1, CLE_FAC);
  a[1] = 1;
  mot* l = a + 6;
  entete(l, static_cast<mot>(4 + 8 * f), BLOC_LISTE, static_cast<mot>(f), 0);
  mot* p = l + 4;
  auto quad = [&](mot v0, mot v1, mot v2, mot v3) {
    entete(p, 8, BLOC_ENTIER, 1, 4);
    p[4] = v0, p[5] = v1, p[6] = v2, p[7] = v3;
    p += 8;
  };
  ecrit(quad);
  return a;
}

// Strips of rows of n vertices closed on themselves: m strips from vertex s.
template <class Q>
void bandes_fermees(Q& quad, int n, int m, mot s) {
  if (n < 2) return;  // a single column closed on itself has no face
  for (int b = 0; b < m; ++b, s += n) {
    for (int i = 0; i + 1 < n; ++i) quad(s + i, s + i + 1, s + i + 1 + n, s + i + n);
    quad(s + n - 1, s, s + n, s + 2 * n - 1);
  }
}

bool tailles_ok(int nx, int ny, int nz) {
  if (nx >= 0 && ny >= 0 && nz >= 0) return true;
  geom_erreur_valeur(std::min({nx, ny, nz}), MES_INDICE);
  return false;
}
}  // namespace

mot* gen_fac_ouvert(int nx, int ny, int nz) {
  if (!tailles_ok(nx, ny, nz)) return nullptr;
  long f = static_cast<long>(nx) * ny * (nz + 1) + static_cast<long>(nz) * (ny + 1) * nx;
  return fac_quads(f, [&](auto& quad) {
    mot ligne = nx + 1, couche = (nx + 1) * (ny + 1);
    for (int l = 0; l <= nz; ++l)
      for (int j = 0; j < ny; ++j)
        for (int i = 0; i < nx; ++i) {
          mot k = l * couche + j * ligne + i + 1;
          quad(k, k + 1, k + nx + 2, k + nx + 1);
        }
    for (int j = 0; j <= ny; ++j)
      for (int l = 0; l < nz; ++l) {
        mot a = ligne * (j + l * (ny + 1)) + 1, b = a + couche;
        for (int i = 0; i < nx; ++i) quad(a + i, a + i + 1, b + i + 1, b + i);
      }
  });
}

mot* gen_fac_fermer(int n, int m) {
  if (!tailles_ok(n, m, 0)) return nullptr;
  long f = n < 2 ? 0 : static_cast<long>(n) * m;
  return fac_quads(f, [&](auto& quad) { bandes_fermees(quad, n, m, 1); });
}

mot* gen_fac_grille(int nx, int ny, int nz, int ferme) {
  if (!ferme) return gen_fac_ouvert(nx, ny, nz);
  if (!tailles_ok(nx, ny, nz)) return nullptr;
  // Closed rows with layers: each layer is its own tube.
  long f = nx < 2 ? 0 : static_cast<long>(nx) * ny * (nz + 1);
  return fac_quads(f, [&](auto& quad) {
    for (int l = 0; l <= nz; ++l) bandes_fermees(quad, nx, ny, 1 + l * nx * (ny + 1));
  });
}

int nb_segments_grille(int nx, int ny, int nz, int ferme) {
  long n = ferme ? static_cast<long>(nx) * (2L * ny + 1)
                 : static_cast<long>(nx) * (ny + 1) + static_cast<long>(ny) * (nx + 1);
  // Joining edges: one a vertex of a layer, to the same vertex of the next.
  long t = n + nz * n + nz * nb_som_grille(nx, ny, 0, ferme);
  return t > 0x3fffffff ? -1 : static_cast<int>(t);
}

mot* generer_segment(int nx, int ny, int nz, int ferme) {
  if (!tailles_ok(nx, ny, nz)) return nullptr;
  int e = nb_segments_grille(nx, ny, nz, ferme);
  if (e < 0) {
    geom_erreur_valeur(nx, MES_TROP);
    return nullptr;
  }
  mot* b = bloc_alloue(4 + 2 * e);
  if (!b) return nullptr;
  entete(b, 4 + 2 * e, BLOC_ENTIER, e, 2);
  mot* p = b + 4;
  int ligne = ferme ? nx : nx + 1;
  mot couche = ligne * (ny + 1);
  auto v = [&](int i, int j, int l) -> mot { return l * couche + j * ligne + i + 1; };
  auto paire = [&](mot a, mot c) {
    p[0] = a;
    p[1] = c;
    p += 2;
  };
  for (int l = 0; l <= nz; ++l) {
    for (int j = 0; j <= ny; ++j) {
      for (int i = 0; i + 1 < ligne; ++i) paire(v(i, j, l), v(i + 1, j, l));
      if (ferme && nx > 0) paire(v(nx - 1, j, l), v(0, j, l));
    }
    for (int i = 0; i < ligne; ++i)
      for (int j = 0; j < ny; ++j) paire(v(i, j, l), v(i, j + 1, l));
  }
  for (int j = 0; j <= ny; ++j)
    for (int l = 0; l < nz; ++l)
      for (int i = 0; i < ligne; ++i) paire(v(i, j, l), v(i, j, l + 1));
  return b;
}

mot* gen_voisin_grille(int nx, int ny, int ferme) {
  if (!tailles_ok(nx, ny, 0)) return nullptr;
  int ligne = ferme ? nx : nx + 1;
  int colonnes = ferme ? (nx < 2 ? 0 : nx) : nx;  // faces a row
  long nb = static_cast<long>(ligne) * (ny + 1);
  // Count first: corners take 1 face, borders 2, the inside 4.
  auto cols = [&](int i, int* c) {
    int n = 0;
    if (colonnes == 0) return 0;
    if (ferme) {
      int g = i == 0 ? colonnes - 1 : i - 1;
      c[n++] = std::min(g, i);
      c[n++] = std::max(g, i);
      return n;
    }
    if (i > 0) c[n++] = i - 1;
    if (i < nx) c[n++] = i;
    return n;
  };
  long lg = 4;
  int c[2];
  for (int j = 0; j <= ny; ++j)
    for (int i = 0; i < ligne; ++i) lg += 1 + cols(i, c) * ((j > 0) + (j < ny));
  if (lg > 0x7fffffff) {
    geom_erreur_valeur(nb, MES_TROP);
    return nullptr;
  }
  mot* b = bloc_alloue(static_cast<mot>(lg));
  if (!b) return nullptr;
  entete(b, static_cast<mot>(lg), BLOC_ENTIER, static_cast<mot>(nb), 0);
  mot* p = b + 4;
  for (int j = 0; j <= ny; ++j)
    for (int i = 0; i < ligne; ++i) {
      int n = cols(i, c);
      mot* compte = p++;
      if (j > 0)
        for (int k = 0; k < n; ++k) *p++ = (j - 1) * colonnes + c[k] + 1;
      if (j < ny)
        for (int k = 0; k < n; ++k) *p++ = j * colonnes + c[k] + 1;
      *compte = static_cast<mot>(p - compte);
    }
  return b;
}

mot* gen_fac_precision(int nx, int ny, int ferme, int precision, Objet* o, const mot* faces) {
  int p = std::max(1, precision);
  if (nx > 0 && ny > 0) {
    int cx = std::max(1, nx / p), cy = std::max(1, ny / p);
    return ferme ? gen_fac_fermer(cx, cy) : gen_fac_ouvert(cx, cy, 0);
  }
  // No grid: one face in p is kept.
  if (!faces && o) faces = vol_fac(o);
  if (faces) {
    int nb = 0x7fffffff, d;
    if (o && !vol_som(o, &nb, &d)) nb = 0;
    if (fac_verifie(faces, nb)) return nullptr;
  }
  long lg = 10, f = 0;
  if (faces) {
    const mot* q = faces + 4;
    for (int i = 0; i < faces[2]; ++i, q = face_suivante(q))
      if (i % p == 0) lg += q[0], ++f;
  }
  mot* a = bloc_alloue(static_cast<mot>(lg));
  if (!a) return nullptr;
  phrase_paires(a, 1, CLE_FAC);
  a[1] = 1;
  entete(a + 6, static_cast<mot>(lg - 6), BLOC_LISTE, static_cast<mot>(f), 0);
  mot* dst = a + 10;
  if (faces) {
    const mot* q = faces + 4;
    for (int i = 0; i < faces[2]; ++i, q = face_suivante(q))
      if (i % p == 0) {
        std::memcpy(dst, q, q[0] * sizeof(mot));
        dst += q[0];
      }
  }
  return a;
}

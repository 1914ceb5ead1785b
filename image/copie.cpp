// Copy and rescale of a rectangle between images. The ratios divide the
// source size less one by the destination size: a reduced numerator over an
// unreduced denominator, so that a cell never reads past the source
// rectangle. Enlargement weighs the two neighbours with crossed fractions
// (p(x) f + p(x + 1) (1 - f)): that gives this system's own texture of
// enlargement and is kept on purpose.
#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "core/message.h"
#include "image/interne.h"

bool rect_coupe(Rect* r, int w, int h) {
  if (r->x1 > r->x2) std::swap(r->x1, r->x2);
  if (r->y1 > r->y2) std::swap(r->y1, r->y2);
  r->x1 = std::max(r->x1, 0);
  r->y1 = std::max(r->y1, 0);
  r->x2 = std::min(r->x2, w - 1);
  r->y2 = std::min(r->y2, h - 1);
  return r->x1 <= r->x2 && r->y1 <= r->y2;
}

namespace {
struct Tampon {
  std::vector<int> x0;    // first source column of each destination column
  std::vector<float> fx;  // its fraction (enlargement)
  std::vector<unsigned> somme;
};
Tampon tampon;

void copie_egale(const mot* src, Rect rs, mot* dst, Rect rd) {
  int n = rs.l();
  for (int j = 0; j < rs.h(); ++j) {
    lire_ligne(rs.x1, rs.y1 + j, n, lignes_ima.r.data(), lignes_ima.g.data(), lignes_ima.b.data(), src);
    ecrire_ligne(rd.x1, rd.y1 + j, n, lignes_ima.r.data(), lignes_ima.g.data(), lignes_ima.b.data(), dst);
  }
}

// Cells of a rows by b columns, their integer mean.
void reduit(const mot* src, Rect rs, mot* dst, Rect rd, double rx, double ry) {
  int dw = rd.l(), dh = rd.h(), w = ima_l(src);
  int a = static_cast<int>(ry) + 1, b = static_cast<int>(rx) + 1;
  unsigned aire = static_cast<unsigned>(a) * b;
  tampon.x0.resize(dw);
  tampon.somme.resize(dw);
  for (int i = 0; i < dw; ++i) tampon.x0[i] = rs.x1 + static_cast<int>(i * rx);
  octet* sortie[3] = {lignes_ima.r.data(), lignes_ima.g.data(), lignes_ima.b.data()};
  for (int j = 0; j < dh; ++j) {
    int y0 = rs.y1 + static_cast<int>(j * ry);
    for (int c = 0; c < 3; ++c) {
      unsigned* s = tampon.somme.data();
      std::fill(s, s + dw, 0u);
      for (int k = 0; k < a; ++k) {
        const octet* p = ima_rouge(src, y0 + k) + static_cast<long>(c) * w;
        if (b == 3) {
          for (int i = 0; i < dw; ++i) {
            const octet* q = p + tampon.x0[i];
            s[i] += q[0] + q[1] + q[2];
          }
        } else {
          for (int i = 0; i < dw; ++i) {
            const octet* q = p + tampon.x0[i];
            unsigned t = 0;
            for (int m = 0; m < b; ++m) t += q[m];
            s[i] += t;
          }
        }
      }
      octet* o = sortie[c];
      for (int i = 0; i < dw; ++i) o[i] = static_cast<octet>(s[i] / aire);
    }
    ecrire_ligne(rd.x1, rd.y1 + j, dw, sortie[0], sortie[1], sortie[2], dst);
  }
}

void agrandit(const mot* src, Rect rs, mot* dst, Rect rd, double rx, double ry) {
  int dw = rd.l(), dh = rd.h(), w = ima_l(src);
  tampon.x0.resize(dw);
  tampon.fx.resize(dw);
  for (int i = 0; i < dw; ++i) {
    double X = rs.x1 + i * rx;
    tampon.x0[i] = static_cast<int>(X);
    tampon.fx[i] = static_cast<float>(X - tampon.x0[i]);
  }
  octet* sortie[3] = {lignes_ima.r.data(), lignes_ima.g.data(), lignes_ima.b.data()};
  for (int j = 0; j < dh; ++j) {
    double Y = rs.y1 + j * ry;
    int y0 = static_cast<int>(Y);
    int y1 = std::min(y0 + 1, rs.y2);  // the neighbour read clips to the rectangle
    float fy = static_cast<float>(Y - y0);
    for (int c = 0; c < 3; ++c) {
      const octet* p0 = ima_rouge(src, y0) + static_cast<long>(c) * w;
      const octet* p1 = ima_rouge(src, y1) + static_cast<long>(c) * w;
      octet* o = sortie[c];
      for (int i = 0; i < dw; ++i) {
        int x0 = tampon.x0[i], x1 = std::min(x0 + 1, rs.x2);
        float f = tampon.fx[i];
        float haut = p0[x0] * f + p0[x1] * (1 - f);
        float bas = p1[x0] * f + p1[x1] * (1 - f);
        float v = haut * fy + bas * (1 - fy);
        o[i] = static_cast<octet>(std::clamp(v, 0.0f, 255.0f));
      }
    }
    ecrire_ligne(rd.x1, rd.y1 + j, dw, sortie[0], sortie[1], sortie[2], dst);
  }
}

// One axis enlarged, the other reduced: the pixel at the truncated position.
void proche(const mot* src, Rect rs, mot* dst, Rect rd, double rx, double ry) {
  int dw = rd.l(), dh = rd.h(), w = ima_l(src);
  tampon.x0.resize(dw);
  for (int i = 0; i < dw; ++i) tampon.x0[i] = rs.x1 + static_cast<int>(i * rx);
  octet* sortie[3] = {lignes_ima.r.data(), lignes_ima.g.data(), lignes_ima.b.data()};
  for (int j = 0; j < dh; ++j) {
    int y = rs.y1 + static_cast<int>(j * ry);
    for (int c = 0; c < 3; ++c) {
      const octet* p = ima_rouge(src, y) + static_cast<long>(c) * w;
      for (int i = 0; i < dw; ++i) sortie[c][i] = p[tampon.x0[i]];
    }
    ecrire_ligne(rd.x1, rd.y1 + j, dw, sortie[0], sortie[1], sortie[2], dst);
  }
}
}  // namespace

int ima_copie(const mot* src, Rect rs, mot* dst, Rect rd) {
  mot* temporaire = nullptr;
  if (src == dst) {
    temporaire = ima_alloue_nu(rs.l(), rs.h());
    if (!temporaire) return -1;
    if (!lignes_ima.taille(rs.l())) {
      bloc_libere_force(temporaire);
      return -1;
    }
    copie_egale(src, rs, temporaire, Rect{0, 0, rs.l() - 1, rs.h() - 1});
    src = temporaire;
    rs = Rect{0, 0, rs.l() - 1, rs.h() - 1};
  }
  int r = 0;
  if (!lignes_ima.taille(std::max(rs.l(), rd.l()))) {
    r = -1;
  } else if (rs.l() == rd.l() && rs.h() == rd.h()) {
    copie_egale(src, rs, dst, rd);
  } else {
    int sw = rs.l(), sh = rs.h(), dw = rd.l(), dh = rd.h();
    double rx = static_cast<double>(sw - 1) / dw, ry = static_cast<double>(sh - 1) / dh;
    if (sw >= dw && sh >= dh) reduit(src, rs, dst, rd, rx, ry);
    else if (sw < dw && sh < dh) agrandit(src, rs, dst, rd, rx, ry);
    else proche(src, rs, dst, rd, rx, ry);
  }
  bloc_libere_force(temporaire);
  return r;
}

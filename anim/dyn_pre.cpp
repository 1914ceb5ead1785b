// Terms of the vertex step that reach outside the vertex's own mesh:
// springs to the vertices of other volumes, and the first pass of the
// colliders that only puts selected vertices back in front of them.
//
// A spring to another volume's vertex takes as rest length the distance of
// the two rest positions: the other volume's rest copy when it has one,
// else its vertices as they stand. A group naming an unknown volume, or a
// vertex it does not have, is skipped.
#include <array>
#include <cmath>

#include "anim/dyn.h"
#include "geom/geom.h"

namespace dyn {
void ressorts_vol(Objet* o, const mot* rec, const float* p, const float* rp, const float* v, float* F) {
  const int lg = rec_long(rec);
  if (lg < 4) return;
  const reel* g = rec_val(rec);
  for (int j = 0; j + 4 <= lg; j += 4) {
    mot num = 0, s = 0;
    if (!reel_entier(g[j + 2], &num) || !reel_entier(g[j + 3], &s)) continue;
    Objet* a = num == o->numero ? o : objet_trouve(B_VOLK, 0, num, nullptr);
    if (!a) continue;
    int nb = 0, d = 3;
    const reel* q = vol_som(a, &nb, &d);
    if (!q || s < 1 || s > nb || d < 3) continue;
    int nr = 0;
    const reel* repos = val1(a, 1, ORD_REPOS, 3 * nb, &nr);
    const float* qr = repos ? repos + 3 * (s - 1) : q + static_cast<long>(s - 1) * d;
    const float e[3] = {qr[0] - rp[0], qr[1] - rp[1], qr[2] - rp[2]};
    ressort(p, q + static_cast<long>(s - 1) * d, v, g[j], g[j + 1], norme(e), F);
  }
}

bool col_selection(Objet* o, int nb) {
  etat.col_choisi.assign(static_cast<std::size_t>(nb), 0);
  bool un = false;
  int ns = 0, nr = 0;
  const reel* ls = val2(o, 1, B_COL, 1, B_SOMK, 1, &ns);
  const reel* lr = val2(o, 1, B_COL, 1, B_BORNES, 2, &nr);
  for (int k = 0; ls && k < ns; ++k) {
    mot i = 0;
    if (reel_entier(ls[k], &i, 1, nb)) etat.col_choisi[static_cast<std::size_t>(i - 1)] = 1, un = true;
  }
  for (int k = 0; lr && k + 2 <= nr; k += 2) {
    mot a = 0, b = 0;
    if (!reel_entier(lr[k], &a) || !reel_entier(lr[k + 1], &b)) continue;
    if (a < 1) a = 1;
    if (b > nb) b = nb;
    for (mot i = a; i <= b; ++i) etat.col_choisi[static_cast<std::size_t>(i - 1)] = 1, un = true;
  }
  return un;
}

void col_premiere(Objet* o, float* som, int d, const float* vit, int nb, float* choc) {
  if (static_cast<int>(etat.col_choisi.size()) < nb) return;
  for (int i = 0; i < nb; ++i)
    if (etat.col_choisi[static_cast<std::size_t>(i)])
      collision(o, som + static_cast<long>(i) * d, vit + 3 * i, nullptr, false, choc ? choc + 3 * i : nullptr);
}
}  // namespace dyn

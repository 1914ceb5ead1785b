// An image projected on a volume: each vertex takes the colour of the pixel
// under its x, y, mapped to pixels by the window's scale about the image's
// centre (x' = trunc(x cx + w / 2), y' = trunc(y cy + h / 2); with cy = -1
// the world's downward y meets the image's upward rows). Vertices beyond
// the image take its edge. The colours, from 0 to 1, go to the volume's
// attribute (sommet, coul), one row a vertex.
#include <algorithm>
#include <vector>

#include "core/message.h"
#include "geom/geom.h"
#include "image/commande.h"
#include "startup/startup.h"

int ima_projette(int image, Args& vols) {
  if (image == 0 && ima_fenetre.avant_lecture) ima_fenetre.avant_lecture();
  mot* b = ima_bloc(image);
  if (!b) {
    std::printf("%d: ", image);
    message(0, MES_IMA_ABSENT);
    return -1;
  }
  int w = ima_l(b), h = ima_h(b);
  float cx = ecran.cx != 0 ? ecran.cx : 1, cy = ecran.cy != 0 ? ecran.cy : -1;
  std::vector<float> c;
  for (float f : vols.x) {
    int n = ima_entier(f);
    Objet* o = objet_trouve(B_VOL, 0, n, nullptr);
    int nb = 0, d = 0;
    reel* s = o ? vol_som(o, &nb, &d) : nullptr;
    if (!s) {
      std::printf("vol %d: ", n);
      message(0, MES_IMA_ABSENT);
      return -1;
    }
    c.resize(3L * nb);
    for (int i = 0; i < nb; ++i, s += d) {
      int x = std::clamp(ima_entier(s[0] * cx + w / 2), 0, w - 1);
      int y = std::clamp(ima_entier(s[1] * cy + h / 2), 0, h - 1);
      const octet* r = ima_rouge(b, y) + x;
      c[3 * i] = r[0] / 255.0f;
      c[3 * i + 1] = r[w] / 255.0f;
      c[3 * i + 2] = r[2L * w] / 255.0f;
    }
    // A list of another length left from before would keep its old rows.
    if (attribut_enleve_2(o, false, 1, B_SOMMET, 1, B_COUL) < 0) return -1;
    if (!attribut_ecrit_2(o, 1, B_SOMMET, 1, B_COUL, c.data(), static_cast<int>(c.size()), 1)) return -1;
  }
  return 0;
}

// Frame step 16: the background image of the live scene, and its
// cross-fade to a second image.
//
// The background is an image object, `inter.num_fond` (0: none), drawn over
// the whole window before the scene, stretched to the window when its size
// differs. While a fade runs, `fondu_k` counts down from `fondu_n`: each
// frame shows the current image weighted k / n and the next one 1 - k / n;
// at 0 the next image becomes the background. The RGBA rows drawn live in
// one buffer kept between frames: it is made again only when the image's
// size changes, so a frame does not allocate.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/freeglut.h>

#include <cstdio>
#include <vector>

#include "anim/interne.h"
#include "core/message.h"
#include "display/gl_plan.h"
#include "image/image.h"

namespace {
struct Fond {
  int suivant = 0;  // image faded to, or 0
  int fondu_n = 0, fondu_k = 0;
  std::vector<unsigned char> rvba;
};
Fond fond;

// An image's block, or null after "n: " and message 0:9.
const mot* image_de(int n) {
  const mot* b = n > 0 ? ima_bloc(n) : nullptr;
  if (!b || !ima_valide(b)) {
    std::printf("%d: ", n);
    message(0, 9);
    return nullptr;
  }
  return b;
}
}  // namespace

int inter_fond(int num, int suivant, int n) {
  if (num <= 0) {
    inter.num_fond = 0;
    fond.suivant = fond.fondu_n = fond.fondu_k = 0;
    return 0;
  }
  if (!image_de(num)) return -1;
  if (suivant > 0 && !image_de(suivant)) return -1;
  inter.num_fond = num;
  fond.suivant = suivant > 0 && n > 0 ? suivant : 0;
  fond.fondu_n = fond.fondu_k = fond.suivant ? n : 0;
  return 0;
}

void inter_fond_dessine() {
  if (inter.num_fond <= 0 || fen.fenetre < 1) return;
  const mot* a = ima_bloc(inter.num_fond);
  // The image went away meanwhile: no background any more.
  if (!a || !ima_valide(a)) {
    inter_fond(0, 0, 0);
    return;
  }
  const mot* b = fond.suivant ? ima_bloc(fond.suivant) : nullptr;
  if (b && (!ima_valide(b) || ima_l(b) != ima_l(a) || ima_h(b) != ima_h(a))) b = nullptr;
  const int w = ima_l(a), h = ima_h(a);
  const std::size_t taille = 4 * static_cast<std::size_t>(w) * h;
  if (fond.rvba.size() != taille) fond.rvba.assign(taille, 255);
  // Weights of the fade in 256ths: the current image k / n.
  const int pa = b ? 256 * fond.fondu_k / fond.fondu_n : 256, pb = 256 - pa;
  unsigned char* d = fond.rvba.data();
  for (int y = 0; y < h; ++y) {
    const octet* ra = ima_rouge(a, y);
    const octet* rb = b ? ima_rouge(b, y) : ra;
    for (int x = 0; x < w; ++x, d += 4)
      for (int c = 0; c < 3; ++c) {
        const int i = c * w + x;
        d[c] = static_cast<unsigned char>((ra[i] * pa + rb[i] * pb) >> 8);
      }
  }
  if (fond.suivant) {
    if (--fond.fondu_k <= 0) {
      // The fade is over: the next image is the background.
      inter.num_fond = fond.suivant;
      fond.suivant = fond.fondu_n = fond.fondu_k = 0;
    }
  }
  Gl_sans sans{GL_DEPTH_TEST, GL_LIGHTING, GL_TEXTURE_2D, GL_FOG, GL_BLEND};
  glDepthMask(GL_FALSE);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glWindowPos2i(0, 0);
  glPixelZoom(static_cast<float>(fen.dimx) / static_cast<float>(w), static_cast<float>(fen.dimy) / static_cast<float>(h));
  glDrawPixels(w, h, GL_RGBA, GL_UNSIGNED_BYTE, fond.rvba.data());
  glPixelZoom(1, 1);
  glDepthMask(GL_TRUE);
}

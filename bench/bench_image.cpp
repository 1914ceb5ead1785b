// Image timings on a 1920 x 1080 picture: reading and writing it as .bmp
// and .png, and reducing it to 768 x 576 by the copy rule. Prints one line
// "nom ms" per measure (best of several runs) for bench/images.py, which
// times the same work with PIL. The picture is written first as
// DIR/source.bmp so that both sides read the same file.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <unistd.h>

#include "core/bloc.h"
#include "image/image.h"

namespace {
template <class F>
double meilleur_ms(int fois, F f) {
  double m = 1e30;
  for (int k = 0; k < fois; ++k) {
    auto t0 = std::chrono::steady_clock::now();
    f(k);
    m = std::min(m, std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count());
  }
  return m;
}
}  // namespace

int main(int argc, char** argv) {
  std::string dir = argc > 1 ? argv[1] : "/tmp";
  if (!tas::init()) return 1;
  const int W = 1920, H = 1080;
  mot* b = ima_alloue(W, H);
  // Smooth gradients with a little texture, like a rendered frame.
  unsigned s = 12345;
  for (int y = 0; y < H; ++y)
    for (int x = 0; x < W; ++x) {
      s = s * 1103515245 + 12345;
      int n = (s >> 16) & 7;
      octet* r = ima_rouge(b, y);
      r[x] = static_cast<octet>(x * 255 / W + n);
      r[x + W] = static_cast<octet>(y * 255 / H + n);
      r[x + 2 * W] = static_cast<octet>(((x + y) / 8 % 2) * 120 + n);
    }
  if (ima_ecrit_fichier(b, dir + "/source.bmp") || ima_ecrit_fichier(b, dir + "/source.png")) return 1;
  const int fois = 5;
  // Written under new names each time: an ext4 file truncated and rewritten
  // is flushed at close, which would time the disk.
  auto ecrit = [&](const char* ext) {
    return meilleur_ms(fois, [&](int k) {
      std::string n = dir + "/o" + std::to_string(k) + "." + ext;
      ima_ecrit_fichier(b, n);
      unlink(n.c_str());
    });
  };
  auto lit = [&](const char* ext) {
    return meilleur_ms(fois, [&](int) { bloc_libere_force(ima_lit_fichier(dir + "/source." + ext)); });
  };
  std::printf("lit_bmp %.3f\n", lit("bmp"));
  std::printf("ecrit_bmp %.3f\n", ecrit("bmp"));
  std::printf("lit_png %.3f\n", lit("png"));
  std::printf("ecrit_png %.3f\n", ecrit("png"));
  mot* petit = ima_alloue(768, 576);
  std::printf("reduit %.3f\n", meilleur_ms(fois, [&](int) {
                ima_copie(b, Rect{0, 0, W - 1, H - 1}, petit, Rect{0, 0, 767, 575});
              }));
  return 0;
}

// The .png file, through libpng in the process. Any colour type and depth
// is read as 8-bit RGB (grey spread, palette expanded, alpha dropped, 16
// bits cut to 8); written as 8-bit RGB. Rows in a PNG go top first, the
// image's bottom first, so rows are turned over both ways. libpng reports
// faults by longjmp: the routines that call it hold nothing that needs a
// destructor across the jump.
#include <png.h>
#include <zlib.h>

#include <csetjmp>
#include <cstdlib>
#include <cstring>

#include "core/message.h"
#include "image/fichier.h"

namespace {
// The file is read by libpng straight from the stream: no copy of it is
// made. Its size bounds what the header may promise.
struct Lecture {
  FILE* f;
  std::size_t n;
};

void lit_fichier(png_structp png, png_bytep dst, png_size_t n) {
  auto* l = static_cast<Lecture*>(png_get_io_ptr(png));
  if (std::fread(dst, 1, n, l->f) != n) png_error(png, "tronque");
}

void silence(png_structp, png_const_charp) {}

void erreur_png(png_structp png, png_const_charp) { png_longjmp(png, 1); }

// A compressed stream cannot grow more than about a thousand times: a
// header that promises more pixels than that lies about its size.
constexpr long EXPANSION_MAX = 1100;

// 0 done, 1 stream fault, 2 size refused, 3 no memory. `b` is set on 0.
int decode(Lecture* l, mot** sortie, long* lw, long* lh) {
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, erreur_png, silence);
  if (!png) return 3;
  png_infop info = png_create_info_struct(png);
  if (!info) {
    png_destroy_read_struct(&png, nullptr, nullptr);
    return 3;
  }
  mot* volatile b = nullptr;
  octet* volatile ligne = nullptr;
  if (setjmp(png_jmpbuf(png))) {
    png_destroy_read_struct(&png, &info, nullptr);
    bloc_libere_force(b);
    std::free(ligne);
    return 1;
  }
  png_set_read_fn(png, l, lit_fichier);
  png_set_user_limits(png, 1u << 20, 1u << 20);
  // Every chunk has its CRC checked; zlib's own sum over the pixels again
  // would only cost time.
  png_set_option(png, PNG_IGNORE_ADLER32, PNG_OPTION_ON);
  png_read_info(png, info);
  png_uint_32 w = png_get_image_width(png, info), h = png_get_image_height(png, info);
  int type = png_get_color_type(png, info), prof = png_get_bit_depth(png, info);
  *lw = w;
  *lh = h;
  if (!ima_taille_ok(w, h) || static_cast<long>(w) * h * 3 / EXPANSION_MAX > static_cast<long>(l->n)) {
    png_destroy_read_struct(&png, &info, nullptr);
    return 2;
  }
  if (prof == 16) png_set_strip_16(png);
  if (type == PNG_COLOR_TYPE_PALETTE) png_set_palette_to_rgb(png);
  if ((type == PNG_COLOR_TYPE_GRAY || type == PNG_COLOR_TYPE_GRAY_ALPHA) && prof < 8)
    png_set_expand_gray_1_2_4_to_8(png);
  if (type == PNG_COLOR_TYPE_GRAY || type == PNG_COLOR_TYPE_GRAY_ALPHA) png_set_gray_to_rgb(png);
  if (type & PNG_COLOR_MASK_ALPHA) png_set_strip_alpha(png);
  if (png_get_valid(png, info, PNG_INFO_tRNS)) png_set_tRNS_to_alpha(png), png_set_strip_alpha(png);
  int passes = png_set_interlace_handling(png);
  png_read_update_info(png, info);
  if (png_get_rowbytes(png, info) != 3 * static_cast<png_size_t>(w)) png_error(png, "format");
  b = ima_alloue_nu(w, h);
  if (!b) {
    png_destroy_read_struct(&png, &info, nullptr);
    return 4;
  }
  // Interlaced files need every row kept between passes: the interleaved
  // rows go into the pixel area itself, then are spread into planes.
  if (passes > 1) {
    octet* base = ima_octets(b);
    for (int p = 0; p < passes; ++p)
      for (png_uint_32 y = 0; y < h; ++y) png_read_row(png, base + 3L * w * (h - 1 - y), nullptr);
    ligne = static_cast<octet*>(std::malloc(3L * w));
    if (!ligne) png_error(png, "memoire");
    for (png_uint_32 y = 0; y < h; ++y) {
      octet* r = ima_rouge(b, static_cast<int>(y));
      std::memcpy(ligne, r, 3L * w);
      for (png_uint_32 x = 0; x < w; ++x) r[x] = ligne[3 * x], r[x + w] = ligne[3 * x + 1], r[x + 2 * w] = ligne[3 * x + 2];
    }
  } else {
    ligne = static_cast<octet*>(std::malloc(3L * w));
    if (!ligne) png_error(png, "memoire");
    for (png_uint_32 y = 0; y < h; ++y) {
      png_read_row(png, ligne, nullptr);
      octet* __restrict r = ima_rouge(b, static_cast<int>(h - 1 - y));
      octet* __restrict g = r + w;
      octet* __restrict bl = g + w;
      const octet* __restrict q = ligne;
      for (png_uint_32 x = 0; x < w; ++x, q += 3) r[x] = q[0], g[x] = q[1], bl[x] = q[2];
    }
  }
  png_read_end(png, nullptr);
  png_destroy_read_struct(&png, &info, nullptr);
  std::free(ligne);
  *sortie = b;
  return 0;
}

int encode(const mot* b, FILE* f) {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, erreur_png, silence);
  if (!png) return 1;
  png_infop info = png_create_info_struct(png);
  if (!info) {
    png_destroy_write_struct(&png, nullptr);
    return 1;
  }
  octet* volatile ligne = nullptr;
  if (setjmp(png_jmpbuf(png))) {
    png_destroy_write_struct(&png, &info);
    std::free(ligne);
    return 1;
  }
  long w = ima_l(b), h = ima_h(b);
  png_init_io(png, f);
  png_set_IHDR(png, info, static_cast<png_uint_32>(w), static_cast<png_uint_32>(h), 8, PNG_COLOR_TYPE_RGB,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  // libpng pairs its filters with zlib's filtered strategy, which on
  // rendered pictures gives no smaller file and takes half again as long
  // as the default strategy. Level 5 writes a rendered frame in half the
  // time of level 6 for a file some 7% larger: a frame saved during a
  // performance matters more than its last bytes.
  png_set_compression_level(png, 5);
  png_set_compression_strategy(png, Z_DEFAULT_STRATEGY);
  png_write_info(png, info);
  ligne = static_cast<octet*>(std::malloc(3 * w));
  if (!ligne) png_error(png, "memoire");
  for (long y = h - 1; y >= 0; --y) {
    const octet* r = ima_rouge(b, static_cast<int>(y));
    const octet* g = r + w;
    const octet* bl = g + w;
    octet* q = ligne;
    for (long x = 0; x < w; ++x, q += 3) q[0] = r[x], q[1] = g[x], q[2] = bl[x];
    png_write_row(png, ligne);
  }
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  std::free(ligne);
  return 0;
}
}  // namespace

mot* ima_lit_png(const char* chemin) {
  Fichier f(chemin);
  if (!f.ouvert) return nullptr;
  octet signature[8];
  if (f.taille < 8 || std::fread(signature, 1, 8, f.f) != 8 || png_sig_cmp(signature, 0, 8) != 0 ||
      std::fseek(f.f, 0, SEEK_SET) != 0)
    return ima_erreur_fichier(chemin, 1, MES_IMA_FICHIER);
  Lecture l{f.f, f.taille};
  mot* b = nullptr;
  long w = 0, h = 0;
  switch (decode(&l, &b, &w, &h)) {
    case 0: return b;
    case 2:
      std::printf("%s: %ld x %ld: ", chemin, w, h);
      message(1, MES_IMA_TAILLE);
      return nullptr;
    case 3:
      std::printf("%s: ", chemin);
      message(0, MES_ALLOCATION);
      return nullptr;
    case 4: return nullptr;  // the allocator has reported
  }
  return ima_erreur_fichier(chemin, 1, MES_IMA_FICHIER);
}

int ima_ecrit_png(const mot* b, const char* chemin) {
  FILE* f = std::fopen(chemin, "wb");
  if (!f) {
    ima_erreur_fichier(chemin, 0, MES_FICHIER);
    return -1;
  }
  int r = encode(b, f);
  if (std::fclose(f) != 0 || r != 0) {
    ima_erreur_fichier(chemin, 0, MES_ECRITURE);
    return -1;
  }
  return 0;
}

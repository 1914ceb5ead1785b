// The .jpg file, through libjpeg in the process: no temporary file and no
// outside command, so two saves never meet. Grey files read as RGB. libjpeg
// reports faults through the error manager, which jumps back here; the
// routines it jumps over hold nothing that needs a destructor.
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <jpeglib.h>

#include "core/message.h"
#include "image/fichier.h"

namespace {
struct Erreur {
  jpeg_error_mgr mgr;
  std::jmp_buf saut;
};

void sortie_erreur(j_common_ptr c) { std::longjmp(reinterpret_cast<Erreur*>(c->err)->saut, 1); }
void silence(j_common_ptr) {}

// A JPEG stream cannot grow by more than this: a header promising more
// pixels than that lies about its size.
constexpr long EXPANSION_MAX = 4096;

int decode(const std::vector<octet>& f, mot** sortie, long* lw, long* lh) {
  jpeg_decompress_struct d;
  Erreur e;
  d.err = jpeg_std_error(&e.mgr);
  e.mgr.error_exit = sortie_erreur;
  e.mgr.output_message = silence;
  mot* volatile b = nullptr;
  octet* volatile ligne = nullptr;
  if (setjmp(e.saut)) {
    jpeg_destroy_decompress(&d);
    bloc_libere_force(b);
    std::free(ligne);
    return 1;
  }
  jpeg_create_decompress(&d);
  jpeg_mem_src(&d, f.data(), static_cast<unsigned long>(f.size()));
  jpeg_read_header(&d, TRUE);
  *lw = d.image_width;
  *lh = d.image_height;
  if (!ima_taille_ok(*lw, *lh) || *lw * *lh * 3 / EXPANSION_MAX > static_cast<long>(f.size())) {
    jpeg_destroy_decompress(&d);
    return 2;
  }
  d.out_color_space = JCS_RGB;
  jpeg_start_decompress(&d);
  long w = d.output_width, h = d.output_height;
  if (d.output_components != 3 || w != *lw || h != *lh) {
    jpeg_destroy_decompress(&d);
    return 1;
  }
  b = ima_alloue_nu(w, h);
  if (!b) {
    jpeg_destroy_decompress(&d);
    return 4;
  }
  ligne = static_cast<octet*>(std::malloc(3 * w));
  if (!ligne) std::longjmp(e.saut, 1);
  while (d.output_scanline < d.output_height) {
    long y = h - 1 - d.output_scanline;
    JSAMPROW l = ligne;
    jpeg_read_scanlines(&d, &l, 1);
    octet* r = ima_rouge(b, static_cast<int>(y));
    octet* g = r + w;
    octet* bl = g + w;
    const octet* q = ligne;
    for (long x = 0; x < w; ++x, q += 3) r[x] = q[0], g[x] = q[1], bl[x] = q[2];
  }
  jpeg_finish_decompress(&d);
  // A damaged stream decodes with warnings into grey blocks: refused.
  bool abime = e.mgr.num_warnings > 0;
  jpeg_destroy_decompress(&d);
  std::free(ligne);
  if (abime) {
    bloc_libere_force(b);
    return 1;
  }
  *sortie = b;
  return 0;
}

int encode(const mot* b, FILE* f, int qualite) {
  jpeg_compress_struct c;
  Erreur e;
  c.err = jpeg_std_error(&e.mgr);
  e.mgr.error_exit = sortie_erreur;
  e.mgr.output_message = silence;
  octet* volatile ligne = nullptr;
  if (setjmp(e.saut)) {
    jpeg_destroy_compress(&c);
    std::free(ligne);
    return 1;
  }
  jpeg_create_compress(&c);
  jpeg_stdio_dest(&c, f);
  long w = ima_l(b), h = ima_h(b);
  c.image_width = static_cast<JDIMENSION>(w);
  c.image_height = static_cast<JDIMENSION>(h);
  c.input_components = 3;
  c.in_color_space = JCS_RGB;
  jpeg_set_defaults(&c);
  jpeg_set_quality(&c, qualite, TRUE);
  jpeg_start_compress(&c, TRUE);
  ligne = static_cast<octet*>(std::malloc(3 * w));
  if (!ligne) std::longjmp(e.saut, 1);
  while (c.next_scanline < c.image_height) {
    const octet* r = ima_rouge(b, static_cast<int>(h - 1 - c.next_scanline));
    const octet* g = r + w;
    const octet* bl = g + w;
    octet* q = ligne;
    for (long x = 0; x < w; ++x, q += 3) q[0] = r[x], q[1] = g[x], q[2] = bl[x];
    JSAMPROW l = ligne;
    jpeg_write_scanlines(&c, &l, 1);
  }
  jpeg_finish_compress(&c);
  jpeg_destroy_compress(&c);
  std::free(ligne);
  return 0;
}
}  // namespace

mot* ima_lit_jpg(const char* chemin) {
  std::vector<octet> f;
  if (!lit_tout(chemin, &f)) return nullptr;
  if (f.size() < 4 || f[0] != 0xFF || f[1] != 0xD8) return ima_erreur_fichier(chemin, 1, MES_IMA_FICHIER);
  mot* b = nullptr;
  long w = 0, h = 0;
  switch (decode(f, &b, &w, &h)) {
    case 0: return b;
    case 2:
      std::printf("%s: %ld x %ld: ", chemin, w, h);
      message(1, MES_IMA_TAILLE);
      return nullptr;
    case 4: return nullptr;
  }
  return ima_erreur_fichier(chemin, 1, MES_IMA_FICHIER);
}

int ima_ecrit_jpg(const mot* b, const char* chemin, int qualite) {
  FILE* f = std::fopen(chemin, "wb");
  if (!f) {
    ima_erreur_fichier(chemin, 0, MES_FICHIER);
    return -1;
  }
  int r = encode(b, f, qualite);
  if (std::fclose(f) != 0 || r != 0) {
    ima_erreur_fichier(chemin, 0, MES_ECRITURE);
    return -1;
  }
  return 0;
}

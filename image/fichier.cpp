// Image files: the name split into root and extension, the format chosen by
// the extension, whole-file reads that refuse what is no regular file, and
// frame numbers in names.
#include <sys/stat.h>

#include <cstring>
#include <string>

#include "core/catalogue.h"
#include "core/message.h"
#include "image/fichier.h"
#include "startup/startup.h"

NomFichier nom_coupe(std::string_view chemin) {
  // The last point of the last path component: "a.b/c" has no extension.
  std::size_t barre = chemin.rfind('/');
  std::size_t point = chemin.rfind('.');
  if (point == std::string_view::npos || (barre != std::string_view::npos && point < barre))
    return {chemin, "ima"};
  return {chemin.substr(0, point), chemin.substr(point + 1)};
}

mot* ima_erreur_fichier(const char* chemin, int env, int n) {
  std::printf("%s: ", chemin);
  message(env, n);
  return nullptr;
}

bool trace_ima() { return etat_ou(0, A_EDI, 0) > 1; }

Fichier::Fichier(const char* chemin) {
  f = std::fopen(chemin, "rb");
  struct stat s;
  if (!f || fstat(fileno(f), &s) != 0 || !S_ISREG(s.st_mode)) {
    ima_erreur_fichier(chemin, 0, MES_FICHIER);
    return;
  }
  taille = static_cast<std::size_t>(s.st_size);
  ouvert = true;
}

bool lit_tout(const char* chemin, std::vector<octet>* out) {
  Fichier f(chemin);
  if (!f.ouvert) return false;
  try {
    out->resize(f.taille);
  } catch (const std::bad_alloc&) {
    std::printf("%ld: ", static_cast<long>(f.taille));
    message(0, MES_DEBORDEMENT);
    return false;
  }
  std::size_t n = out->empty() ? 0 : std::fread(out->data(), 1, out->size(), f.f);
  out->resize(n);
  return true;
}

namespace {
enum class Format { RAW, BMP, PNG, JPG, IMA, AUTRE };

Format format_de(std::string_view ext) {
  auto egal = [&](const char* e) {
    if (ext.size() != std::strlen(e)) return false;
    for (std::size_t k = 0; k < ext.size(); ++k)
      if ((ext[k] | 0x20) != e[k]) return false;
    return true;
  };
  if (egal("raw")) return Format::RAW;
  if (egal("bmp")) return Format::BMP;
  if (egal("png")) return Format::PNG;
  if (egal("jpg") || egal("jpeg")) return Format::JPG;
  if (egal("ima")) return Format::IMA;
  return Format::AUTRE;
}

std::string complet(const NomFichier& n) {
  std::string s(n.nom);
  s += '.';
  s += n.ext;
  return s;
}
// The name as cut, shown when the image trace is on.
NomFichier nom_trace(std::string_view chemin) {
  NomFichier n = nom_coupe(chemin);
  if (trace_ima())
    std::printf("nom = %.*s ext = %.*s\n", static_cast<int>(n.nom.size()), n.nom.data(),
                static_cast<int>(n.ext.size()), n.ext.data());
  return n;
}
}  // namespace

mot* ima_lit_fichier(std::string_view chemin) {
  NomFichier n = nom_trace(chemin);
  std::string c = complet(n);
  switch (format_de(n.ext)) {
    case Format::RAW: return ima_lit_raw(c.c_str());
    case Format::BMP: return ima_lit_bmp(c.c_str());
    case Format::PNG: return ima_lit_png(c.c_str());
    case Format::JPG: return ima_lit_jpg(c.c_str());
    case Format::IMA: return ima_lit_ima(c.c_str());
    case Format::AUTRE: break;
  }
  return ima_erreur_fichier(c.c_str(), 1, MES_IMA_FORMAT);
}

int ima_ecrit_fichier(const mot* b, std::string_view chemin) {
  NomFichier n = nom_trace(chemin);
  std::string c = complet(n);
  switch (format_de(n.ext)) {
    case Format::RAW: return ima_ecrit_raw(b, c.c_str());
    case Format::BMP: return ima_ecrit_bmp(b, c.c_str());
    case Format::PNG: return ima_ecrit_png(b, c.c_str());
    case Format::JPG: return ima_ecrit_jpg(b, c.c_str());
    case Format::IMA: return ima_ecrit_ima(b, c.c_str(), b[2]);
    case Format::AUTRE: break;
  }
  ima_erreur_fichier(c.c_str(), 1, MES_IMA_FORMAT);
  return -1;
}

int nom_numero(char* dst, std::string_view format, long n) {
  // The width, then the letter that names the base.
  int largeur = 0;
  std::size_t k = 0;
  while (k < format.size() && format[k] >= '0' && format[k] <= '9' && largeur < 60)
    largeur = largeur * 10 + (format[k++] - '0');
  char lettre = k < format.size() ? format[k] : 'D';
  int base = 10;
  switch (lettre) {
    case 'B': case 'b': base = 2; break;
    case 'O': case 'o': base = 8; break;
    case 'X': case 'x': base = 16; break;
  }
  if (largeur < 1) largeur = 1;
  unsigned long v = n < 0 ? 0UL - static_cast<unsigned long>(n) : static_cast<unsigned long>(n);
  // The low digits, zero padded to the width.
  for (int i = largeur - 1; i >= 0; --i) {
    dst[i] = "0123456789ABCDEF"[v % base];
    v /= base;
  }
  if (n < 0) dst[0] = '-';
  dst[largeur] = 0;
  return largeur;
}

int ecrit_tout(const char* chemin, const octet* p, std::size_t n) {
  FILE* f = std::fopen(chemin, "wb");
  if (!f) {
    ima_erreur_fichier(chemin, 0, MES_FICHIER);
    return -1;
  }
  bool ok = std::fwrite(p, 1, n, f) == n;
  ok = std::fclose(f) == 0 && ok;
  if (!ok) {
    ima_erreur_fichier(chemin, 0, MES_ECRITURE);
    return -1;
  }
  return 0;
}

// Private to the image files: the whole-file read and the trace switch.
#pragma once
#include <vector>

#include "image/interne.h"

// The file's bytes; false after message 0:36 (no file, or not a regular
// file) or 0:2 (no memory for it).
bool lit_tout(const char* chemin, std::vector<octet>* out);
// A regular file open for reading, closed at the end of its scope; `ouvert`
// false after message 0:36.
struct Fichier {
  FILE* f = nullptr;
  std::size_t taille = 0;
  bool ouvert = false;
  explicit Fichier(const char* chemin);
  ~Fichier() {
    if (f) std::fclose(f);
  }
  Fichier(const Fichier&) = delete;
  Fichier& operator=(const Fichier&) = delete;
};
// Trace of names and sizes: the verbosity state a36 above 1.
bool trace_ima();

// Little-endian fields of a file header.
inline std::uint32_t lit_u32(const octet* p) {
  return p[0] | (p[1] << 8) | (p[2] << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
}
inline std::uint16_t lit_u16(const octet* p) { return static_cast<std::uint16_t>(p[0] | (p[1] << 8)); }
inline void ecrit_u32(octet* p, std::uint32_t v) {
  p[0] = v & 255, p[1] = (v >> 8) & 255, p[2] = (v >> 16) & 255, p[3] = v >> 24;
}
inline void ecrit_u16(octet* p, std::uint16_t v) { p[0] = v & 255, p[1] = v >> 8; }

// Writes the bytes to a new file: 0, or -1 after "%s: " and message 0:36
// (no open) or 0:37 (short write), the file closed.
int ecrit_tout(const char* chemin, const octet* p, std::size_t n);

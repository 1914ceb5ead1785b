// The stream of the object files: zlib reads a plain file as it is and a
// gzip stream by inflating it, so one road serves both, and a save with
// "Z" is a normal .gz stream that gunzip opens.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>

#include "persist/interne.h"

namespace {
void erreur_ouverture(const std::string& c) {
  std::printf("%s: ", c.c_str());
  message(0, MES_FICHIER);
}
}  // namespace

bool Flux::ouvre_lecture(const std::string& c) {
  ferme();
  chemin = c;
  ecriture = false;
  lus = 0;
  // Opened by descriptor, so that what is tested is what is read: a
  // directory or a device is refused before zlib sees it.
  int fd = ::open(c.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat st;
  if (fd < 0 || fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    if (fd >= 0) ::close(fd);
    erreur_ouverture(c);
    return false;
  }
  z = gzdopen(fd, "rb");
  if (!z) {
    ::close(fd);
    erreur_ouverture(c);
    return false;
  }
  gzbuffer(z, 1 << 17);
  // gzdirect looks at the first bytes: a plain file is read as it is.
  taille = -1;
  if (gzdirect(z)) taille = st.st_size;
  return true;
}

bool Flux::ouvre_ecriture(const std::string& c, bool compresse) {
  ferme();
  chemin = c;
  ecriture = true;
  int fd = ::open(c.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) {
    erreur_ouverture(c);
    return false;
  }
  // "T" writes the bytes as they are; level 6 is zlib's own default.
  z = gzdopen(fd, compresse ? "wb6" : "wbT");
  if (!z) {
    ::close(fd);
    erreur_ouverture(c);
    return false;
  }
  gzbuffer(z, 1 << 17);
  return true;
}

bool Flux::lit(void* p, std::size_t n) {
  char* q = static_cast<char*>(p);
  while (n > 0) {
    unsigned part = n > (1u << 30) ? (1u << 30) : static_cast<unsigned>(n);
    int r = gzread(z, q, part);
    if (r <= 0) return false;
    q += r;
    n -= static_cast<std::size_t>(r);
    lus += r;
  }
  return true;
}

bool Flux::fin() {
  unsigned char c;
  if (gzread(z, &c, 1) == 1) {
    gzungetc(c, z);
    return false;
  }
  return true;
}

bool Flux::propre() {
  int e = Z_OK;
  gzerror(z, &e);
  // A gzip stream cut short ends with Z_BUF_ERROR: no clean end.
  return e == Z_OK || e == Z_STREAM_END;
}

long long Flux::reste_mots() const { return taille >= 0 ? (taille - lus) / 4 : MOTS_MAX; }

bool Flux::ecrit(const void* p, std::size_t n) {
  const char* q = static_cast<const char*>(p);
  while (n > 0) {
    unsigned part = n > (1u << 30) ? (1u << 30) : static_cast<unsigned>(n);
    int r = gzwrite(z, q, part);
    if (r <= 0) {
      message(0, M_DISQUE);
      return false;
    }
    q += r;
    n -= static_cast<std::size_t>(r);
  }
  return true;
}

bool Flux::ferme() {
  if (!z) return true;
  int r = gzclose(z);
  z = nullptr;
  if (ecriture && r != Z_OK) {
    message(0, M_DISQUE);
    return false;
  }
  return true;
}

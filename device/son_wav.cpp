// Sound files in the WAV form, read and written here: a RIFF file whose
// "fmt " chunk says PCM, 1 or 2 channels of 8-bit unsigned or 16-bit signed
// little-endian samples, and whose "data" chunk holds them. A file is taken
// whole into memory, and an edit changes the samples where they lie, so that
// every other chunk is written back as it was. A file that is cut short or
// whose sizes disagree with its length is refused before anything changes.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "core/message.h"
#include "device/device.h"

namespace {
// Rates of the format codes: code / 4; code mod 4 is the kind of sample.
constexpr std::uint32_t TAUX[4] = {8000, 11025, 22050, 44100};
constexpr std::uint16_t CANAUX[4] = {1, 1, 2, 2}, BITS[4] = {8, 16, 8, 16};
// A file longer than this is no sound file of ours: refused unread.
constexpr long MAX_FICHIER = 4 * SON_MAX_DONNEES;

std::uint32_t lit32(const std::uint8_t* p) {
  return p[0] | static_cast<std::uint32_t>(p[1]) << 8 | static_cast<std::uint32_t>(p[2]) << 16 |
         static_cast<std::uint32_t>(p[3]) << 24;
}
std::uint16_t lit16(const std::uint8_t* p) { return static_cast<std::uint16_t>(p[0] | p[1] << 8); }
void ecrit32(std::uint8_t* p, std::uint32_t x) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<std::uint8_t>(x >> (8 * i));
}
void ecrit16(std::uint8_t* p, std::uint16_t x) {
  p[0] = static_cast<std::uint8_t>(x);
  p[1] = static_cast<std::uint8_t>(x >> 8);
}

struct Fichier {
  std::FILE* f;
  ~Fichier() {
    if (f) std::fclose(f);
  }
};
}  // namespace

FormatSon format_son(int code) {
  FormatSon f;
  code &= 15;
  f.taux = TAUX[code / 4];
  f.canaux = CANAUX[code % 4];
  f.bits = BITS[code % 4];
  f.bloc = static_cast<std::uint16_t>(f.canaux * f.bits / 8);
  f.octets_s = f.taux * f.bloc;
  return f;
}

int son_analyse(std::span<const std::uint8_t> o, Son& s) {
  s = Son{};
  if (o.size() < 12 || std::memcmp(o.data(), "RIFF", 4) || std::memcmp(o.data() + 8, "WAVE", 4)) return -1;
  // The RIFF size may leave trailing bytes; it may not pass the end.
  const std::uint64_t riff = 8ull + lit32(o.data() + 4);
  if (riff > o.size() || riff < 12) return -1;
  bool fmt = false, data = false;
  for (std::uint64_t p = 12; p + 8 <= riff;) {
    const std::uint8_t* c = o.data() + p;
    const std::uint64_t lg = lit32(c + 4);
    if (p + 8 + lg > riff) return -1;
    if (!std::memcmp(c, "fmt ", 4)) {
      if (lg < 16 || lit16(c + 8) != 1) return -1;
      FormatSon& f = s.format;
      f.canaux = lit16(c + 10);
      f.taux = lit32(c + 12);
      f.octets_s = lit32(c + 16);
      f.bloc = lit16(c + 20);
      f.bits = lit16(c + 22);
      if ((f.canaux != 1 && f.canaux != 2) || (f.bits != 8 && f.bits != 16) || f.taux < 1000 || f.taux > 192000 ||
          f.bloc != f.canaux * f.bits / 8 || f.octets_s != f.taux * f.bloc)
        return -1;
      fmt = true;
    } else if (!std::memcmp(c, "data", 4) && !data) {
      s.debut = p + 8;
      s.taille = lg;
      data = true;
    }
    p += 8 + lg + (lg & 1);
  }
  if (!fmt || !data || s.taille % s.format.bloc) return -1;
  return 0;
}

std::vector<std::uint8_t> son_entete(const FormatSon& f, std::uint32_t taille) {
  std::vector<std::uint8_t> e(44);
  std::memcpy(e.data(), "RIFF", 4);
  ecrit32(e.data() + 4, 36 + taille + (taille & 1));
  std::memcpy(e.data() + 8, "WAVEfmt ", 8);
  ecrit32(e.data() + 16, 16);
  ecrit16(e.data() + 20, 1);
  ecrit16(e.data() + 22, f.canaux);
  ecrit32(e.data() + 24, f.taux);
  ecrit32(e.data() + 28, f.octets_s);
  ecrit16(e.data() + 32, f.bloc);
  ecrit16(e.data() + 34, f.bits);
  std::memcpy(e.data() + 36, "data", 4);
  ecrit32(e.data() + 40, taille);
  return e;
}

void son_fondu(std::span<std::uint8_t> d, const FormatSon& f, float fraction) {
  const std::size_t bloc = f.bloc ? f.bloc : 1, trames = d.size() / bloc;
  double debut = std::floor(static_cast<double>(d.size()) * fraction);
  if (!(debut >= 16)) debut = 16;
  if (debut >= static_cast<double>(d.size())) return;
  const std::size_t t0 = static_cast<std::size_t>(debut) / bloc, m = trames - t0;
  // From 1 at the first faded frame to 0 at the last.
  for (std::size_t j = 0; j < m; ++j) {
    const double g = m > 1 ? 1.0 - static_cast<double>(j) / static_cast<double>(m - 1) : 0.0;
    std::uint8_t* t = d.data() + (t0 + j) * bloc;
    for (std::uint16_t c = 0; c < f.canaux; ++c) {
      if (f.bits == 8) {
        t[c] = static_cast<std::uint8_t>(128 + std::lround((t[c] - 128) * g));
      } else {
        const auto x = static_cast<std::int16_t>(lit16(t + 2 * c));
        ecrit16(t + 2 * c, static_cast<std::uint16_t>(static_cast<std::int16_t>(std::lround(x * g))));
      }
    }
  }
}

int son_lit(const char* nom, std::vector<std::uint8_t>& o, Son& s) {
  Fichier f{std::fopen(nom, "rb")};
  if (!f.f) {
    std::printf("%s: ", nom);
    message(0, MES_FICHIER);
    return ECHEC;
  }
  o.clear();
  std::uint8_t tampon[65536];
  for (std::size_t n; (n = std::fread(tampon, 1, sizeof tampon, f.f)) > 0;) {
    if (static_cast<long>(o.size() + n) > MAX_FICHIER) {
      std::printf("%s: ", nom);
      message(1, M_SON_GRAND);
      return ECHEC;
    }
    o.insert(o.end(), tampon, tampon + n);
  }
  if (std::ferror(f.f) || son_analyse(o, s) < 0) {
    std::printf("%s: ", nom);
    message(1, M_AUDIO_FICHIER);
    return ECHEC;
  }
  if (s.taille > SON_MAX_DONNEES) {
    std::printf("%s: ", nom);
    message(1, M_SON_GRAND);
    return ECHEC;
  }
  return 0;
}

int son_ecrit(const char* nom, std::span<const std::uint8_t> o) {
  // Beside the file first, then in its place: a failed write leaves the
  // old file whole.
  const std::string tmp = std::string(nom) + ".tmp";
  std::FILE* f = std::fopen(tmp.c_str(), "wb");
  bool ok = f && std::fwrite(o.data(), 1, o.size(), f) == o.size();
  if (f && std::fclose(f) != 0) ok = false;
  if (ok && std::rename(tmp.c_str(), nom) == 0) return 0;
  if (f) std::remove(tmp.c_str());
  std::printf("%s: ", nom);
  message(0, MES_ECRITURE);
  return ECHEC;
}

int son_bosse(const char* nom, float fraction) {
  std::vector<std::uint8_t> o;
  Son s;
  if (son_lit(nom, o, s) < 0) return ECHEC;
  son_fondu(std::span(o).subspan(s.debut, s.taille), s.format, fraction);
  return son_ecrit(nom, o);
}

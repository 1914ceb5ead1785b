// MIDI input: one input at a time, the last short message kept for the
// language as hex text, System Exclusive data printed on the console as it
// comes. The callback runs on the input's thread.
#include <cstdio>
#include <cstring>

#include "device/device.h"
#include "device/midi_interne.h"
#include "interp/interp.h"

MidiEtat midi;

namespace {
enum Source { AUCUNE, FLUX, ALSA } source = AUCUNE;

void vide_sysex(const std::uint8_t* t, std::uint32_t n, std::uint32_t temps) {
  // Bit by bit, so that the display-off bit that the main thread may set
  // meanwhile is never lost.
  if (!(midi.sysex.fetch_or(SYSEX_EN_COURS) & SYSEX_EN_COURS))
    std::printf("*************** System Exclusive **************\r\n0x%08X ", temps);
  bool fin = n > 0 && t[n - 1] == 247;
  if (fin) midi.sysex.fetch_and(static_cast<std::uint8_t>(~SYSEX_EN_COURS));
  for (std::uint32_t k = 0; k < n; ++k) std::printf(k % 16 == 15 ? "0x%02X\r\n" : "0x%02X ", t[k]);
  if (fin) std::printf("\r\n******************************************\r\n");
  std::fflush(stdout);
}
}  // namespace

bool rappel(int msg, std::uint32_t p1, std::uint32_t p2, const std::uint8_t* tampon) {
  switch (msg) {
    case MIM_OPEN:
      std::printf("MIM_OPEN\n");
      midi.dernier.store(0);
      return true;
    case MIM_CLOSE: std::printf("MIM_CLOSE\n"); return true;
    case MIM_DATA:
      midi.dernier.store(DERNIER_PRESENT | (p1 & 0xFFFFFFu) | (static_cast<std::uint64_t>(p2 & 0xFF) << 24));
      return true;
    case MIM_LONGDATA:
      if (midi.sysex.load() & SYSEX_MUET) return false;
      vide_sysex(tampon, p1, p2);
      return true;
    case MIM_ERROR: std::printf("MIM_ERROR\n"); return true;
    case MIM_LONGERROR: std::printf("MIM_LONGERROR\n"); return true;
    case MIM_MOREDATA: std::printf("MIM_MOREDATA\n"); return true;
  }
  std::printf("default %d\n", msg);
  return true;
}

namespace {
void livre_sysex(Analyseur& a, std::uint32_t temps) {
  if (a.rempli == 0) return;
  a.tampon_libre = rappel(MIM_LONGDATA, static_cast<std::uint32_t>(a.rempli), temps, a.tampon);
  a.rempli = 0;
}

// Data bytes a status needs (0xFF: not a message that takes data).
int attendues(std::uint8_t s) {
  if (s < 0xF0) return (s & 0xF0) == 0xC0 || (s & 0xF0) == 0xD0 ? 1 : 2;
  switch (s) {
    case 0xF1:
    case 0xF3: return 1;
    case 0xF2: return 2;
    case 0xF6: return 0;
  }
  return -1;
}

void courte(std::uint8_t s, std::uint8_t d1, std::uint8_t d2, std::uint32_t temps) {
  rappel(MIM_DATA, s | static_cast<std::uint32_t>(d1) << 8 | static_cast<std::uint32_t>(d2) << 16, temps, nullptr);
}
}  // namespace

void analyse(Analyseur& a, const std::uint8_t* octets, long n, std::uint32_t temps) {
  for (long k = 0; k < n; ++k) {
    std::uint8_t b = octets[k];
    if (b >= 0xF8) {  // real time: anywhere, alone
      courte(b, 0, 0, temps);
      continue;
    }
    if (a.dans_sysex) {
      if (b < 0x80 || b == 0xF7) {
        if (a.tampon_libre) {
          a.tampon[a.rempli++] = b;
          if (b == 0xF7 || a.rempli == MIDI_TAMPON) livre_sysex(a, temps);
        }
        if (b == 0xF7) a.dans_sysex = false;
        continue;
      }
      // Any other status ends a System Exclusive that lost its end.
      livre_sysex(a, temps);
      a.dans_sysex = false;
    }
    if (b == 0xF0) {
      a.dans_sysex = true;
      a.statut = 0;
      if (a.tampon_libre) a.tampon[a.rempli++] = b;
      continue;
    }
    if (b >= 0x80) {
      int att = attendues(b);
      a.statut = att < 0 ? 0 : b;
      a.recues = 0;
      a.attendues = static_cast<std::uint8_t>(att < 0 ? 0 : att);
      if (att == 0) {
        courte(b, 0, 0, temps);
        a.statut = 0;
      }
      continue;
    }
    if (a.statut == 0) continue;  // data without a status
    a.donnees[a.recues++] = b;
    if (a.recues < a.attendues) continue;
    courte(a.statut, a.donnees[0], a.attendues > 1 ? a.donnees[1] : 0, temps);
    a.recues = 0;
    if (a.statut >= 0xF0) a.statut = 0;  // running status is for channel messages
  }
}

void erreur_ouverture(const char* texte) {
  std::printf("Error opening the default MIDI In Device!\r\n");
  std::printf("%s\r\n", texte && *texte ? texte : "Strange error number returned!");
}

int midi_ouvre(int port, std::string_view nom) {
  if (source != AUCUNE) {
    erreur_ouverture("Device already allocated");
    return -1;
  }
  midi.sysex.store(0);
  rappel(MIM_OPEN, 0, 0, nullptr);
  std::string n(nom);
  int r = n.empty() ? alsa_ouvre(port) : flux_ouvre(n.c_str());
  if (r < 0) return -1;
  source = n.empty() ? ALSA : FLUX;
  std::printf("MIDI ouvert sur port %d\n", port);
  return 0;
}

void midi_ferme() {
  if (source == AUCUNE) return;
  // The display off first: a System Exclusive piece that comes while the
  // input stops is not printed, and its buffer is not given back.
  midi.sysex.fetch_or(SYSEX_MUET);
  if (source == FLUX) flux_ferme();
  else alsa_ferme();
  source = AUCUNE;
  rappel(MIM_CLOSE, 0, 0, nullptr);
}

bool midi_ouvert() { return source != AUCUNE; }

int midi_lit(mot* valeur, const mot* limite) {
  std::uint64_t d = midi.dernier.exchange(0);
  if (!(d & DERNIER_PRESENT)) return resultat_chaine(valeur, limite, "", 0);
  char t[24];
  int n = std::snprintf(t, sizeof t, "%02x %02x %02x %02x\r\n", static_cast<unsigned>(d & 0xFF),
                        static_cast<unsigned>(d >> 8 & 0xFF), static_cast<unsigned>(d >> 16 & 0xFF),
                        static_cast<unsigned>(d >> 24 & 0xFF));
  return resultat_chaine(valeur, limite, t, static_cast<std::size_t>(n));
}

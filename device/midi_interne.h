// Private to the MIDI input: the driver side that turns bytes into the
// system's messages, and the callback that receives them.
//
// Invariants: the callback (rappel) runs on the input's thread and writes
// nothing but `dernier` and `sysex`, both atomic; the main thread reads
// `dernier` by one exchange, so a message is never seen half-written.
// `tampon` and its count belong to the driver side (the input's thread) and
// are handed to the callback for the time of one MIM_LONGDATA call.
#pragma once
#include <atomic>
#include <cstdint>

enum : int { MIM_OPEN = 0x3C1, MIM_CLOSE = 0x3C2, MIM_DATA = 0x3C3, MIM_LONGDATA = 0x3C4, MIM_ERROR = 0x3C5,
             MIM_LONGERROR = 0x3C6, MIM_MOREDATA = 0x3CC };
constexpr int MIDI_TAMPON = 256;
constexpr std::uint8_t SYSEX_EN_COURS = 1, SYSEX_MUET = 0x80;
constexpr std::uint64_t DERNIER_PRESENT = 1ULL << 32;

struct MidiEtat {
  // The last short message: status, data 1, data 2, time (low byte first),
  // with DERNIER_PRESENT set; 0 when nothing new.
  std::atomic<std::uint64_t> dernier{0};
  std::atomic<std::uint8_t> sysex{0};
};
extern MidiEtat midi;

// The callback: `p1` packs a short message or is the count of `tampon`
// bytes, `p2` the time in milliseconds since the input opened. It returns
// false when it kept the buffer (display off).
bool rappel(int msg, std::uint32_t p1, std::uint32_t p2, const std::uint8_t* tampon);

// The driver side: a parser of a MIDI byte stream (running status, System
// Exclusive in pieces of 256 bytes, real-time bytes anywhere).
struct Analyseur {
  std::uint8_t statut = 0, donnees[2] = {}, attendues = 0, recues = 0;
  bool dans_sysex = false, tampon_libre = true;
  std::uint8_t tampon[MIDI_TAMPON] = {};
  int rempli = 0;
};
void analyse(Analyseur& a, const std::uint8_t* octets, long n, std::uint32_t temps);

// The two sources; each runs `analyse` on a thread of its own until
// `arret`. 0, or -1 after the messages.
int flux_ouvre(const char* nom);
void flux_ferme();
int alsa_ouvre(int port);
void alsa_ferme();
void erreur_ouverture(const char* texte);

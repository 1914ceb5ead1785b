// Devices: the table of numbered channels to the outside (files, shared
// memory, serial ports, TCP and UDP sockets, MIDI input, OSC), and the MIDI
// input itself. Sound capture and its analysis have a section of their own
// below.
//
// Every channel is read and written by the one command `periph` (b128) on
// the interpreter's thread, between two frames. The only other thread is the
// MIDI input's, which writes nothing but the last message and the System
// Exclusive flags.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "core/bloc.h"

// ==== peripherals ===========================================================
constexpr int NB_PERIPH = 100;  // channels 1 to 100

// Kinds of channel (`type` of a Periph).
enum : int {
  PERIPH_LIBRE = 0,
  PERIPH_FIC = 1,
  PERIPH_MEM = 2,
  PERIPH_COM = 3,
  PERIPH_TCP_CLIENT = 4,
  PERIPH_UDP_CLIENT = 5,
  PERIPH_MID = 6,
  PERIPH_TCP_SERVEUR = 7,
  PERIPH_UDP_SERVEUR = 8,
  PERIPH_OSC = 9,  // receives when opened as a server, else sends
};

// The handler of `periph` (b128), and of the phrases that start with one of
// its opening clauses (ini, nom, fin, ...) and name a channel. Registered in
// the command dispatch by periph_enregistre().
int periph_commande(mot* phrase, mot* valeur, const mot* limite);
// The entry: `donnee` is the value to write, or null for a read whose value
// is written over `phrase`, below `limite`.
int periph_lit_ecrit(mot* phrase, const mot* limite, mot* donnee);
// The channel's `timeout` read or written (phrase periph(n) tem).
int periph_timeout(mot* phrase, mot* valeur, const mot* limite);
// Closes every channel (the end of the program leaves no device behind).
void periph_ferme_tout();
// Puts the handlers into the command dispatch.
void periph_enregistre();
// One step of the animation that a shared-memory read may run (clause
// etape); the animation registers it, null runs nothing.
extern int (*periph_etape)(float argument);
// The byte that asks a TCP peer for its next message.
constexpr char PERIPH_DEMANDE = '?';

// ==== MIDI input ============================================================
// One input at a time: the ALSA sequencer (port = a client to listen to, 0:
// any that connects), or a raw MIDI byte stream when `nom` names a device,
// file or pty. 0, or -1 after the messages.
int midi_ouvre(int port, std::string_view nom);
void midi_ferme();
// The last short message as "ss dd dd tt\r\n" (hex), emptied by the read; an
// empty string when nothing came. -12 when it does not fit.
int midi_lit(mot* valeur, const mot* limite);
// Whether an input is open.
bool midi_ouvert();

// ==== sound (capture, playback, spectrum) ====================================
// ---- the FFT ---------------------------------------------------------------
// Forward (inverse = 0) or inverse complex FFT of n points, n a power of two
// from 2, on tables built once per size (no allocation after the first call
// of a size). im_in may be null: a real input, transformed at half the cost.
// The inverse divides by n. The outputs must not overlap the inputs. A size that is not
// a power of two, or a null array, prints its line and ends the process, as
// the sound command has always done: a caller checks first (fft_taille_ok).
void fft_float(std::uint32_t n, int inverse, const float* re_in, const float* im_in, float* re_out,
               float* im_out);
bool fft_taille_ok(std::uint32_t n);
// The butterflies run eight lanes wide (AVX2 and FMA) where the processor
// has them, and four (SSE2) otherwise; false forces the narrow build, which
// tests and benchmarks use to check and measure it too.
extern bool fft_avx;

// ---- sound: the analysis of a window ----------------------------------------
// A window is up to 1024 samples of 8-bit unsigned PCM, mono, 8000 Hz,
// centred by subtracting 128. `signal` holds the last window after the gate,
// as rectified amplitudes; `mesures` the level m / 127, the peak rate p / w
// and the measure of frequency.
constexpr int AUDIO_MAX = 1024;
struct Audio {
  int taille_fenetre = AUDIO_MAX;  // 1..1024
  int taille_tampon = AUDIO_MAX;   // 4..1024
  float seuil = 0;                 // the gate; 0 is none
  float signal[AUDIO_MAX] = {};
  float echantillons[AUDIO_MAX] = {};  // the same window centred, gated, signed
  float variation = 5;             // the click filter's largest step
  float ecart_pics = 3;            // the peak analysis's least difference
  float mesures[3] = {};
  bool actif = false;
  int edition = 0;                 // 0 silent, 1 the samples, 2 the trace
};
extern Audio audio;
constexpr unsigned AUDIO_TAUX = 8000;
// Messages of env 1.
constexpr int M_AUDIO_PERIPH = 126, M_AUDIO_FICHIER = 127;

// A window asked for: clamped to 1..1024 and truncated (finite x).
int audio_borne_fenetre(float x);
// Opens the capture (closing it first) with a window of w samples: 0, or
// -1 after its messages with `actif` left at 0.
int audio_ouvre(int w);
// Closes the capture; `annonce` prints the closing lines.
void audio_ferme(bool annonce);
// Takes the next `taille_tampon` bytes of sound into octets: 0, or -1 after
// its line (capture closed, or a device that gives nothing).
int audio_prend(std::uint8_t* octets);
// The command `audio`, registered with the dispatch by the executable.
void audio_enregistre();

// The analysis of w bytes (w clamped to 1..1024) into audio.signal and
// audio.mesures.
void audio_analyse(const std::uint8_t* octets, int w);
// A copy of the signal where a step from the previous sample outside -t..t
// repeats the previous output: a filter against clicks. n values written.
int audio_filtre(const float* s, int w, float t, float* sortie);
// The pitch counter over windows already taken: for each window, the first
// place where an amplitude passes above v + e adds its distance from the
// last such place; the total divided by the count when it is 2 or more.
struct Hauteur {
  long total = 0, compte = 0;
  int dernier = 0;
};
void audio_hauteur_fenetre(Hauteur& h, const std::uint8_t* octets, int w, float v, float e);
float audio_hauteur_fin(const Hauteur& h);
float audio_hauteur(const std::uint8_t* const* fenetres, int n, int w, float v, float e);
// The peak analysis of audio.signal over w samples with half-window h and
// least difference d: the kept values go to sortie (room for w); their
// count is returned.
int audio_pics(int w, int h, float d, float* sortie);
// The spectrum of audio.echantillons over w points (a power of two, or the
// FFT ends the process): real parts to re, imaginary parts to im.
void audio_spectre(int w, float* re, float* im);

// ---- sound files (WAV) and playback -----------------------------------------
// A sound's format; format_son(code) gives the table's: code / 4 the rate
// (8000, 11025, 22050, 44100), code mod 4 the sample (8-bit mono, 16-bit
// mono, 8-bit stereo, 16-bit stereo). Code 0 is the capture's.
struct FormatSon {
  std::uint32_t taux = 8000, octets_s = 8000;  // frames and bytes a second
  std::uint16_t canaux = 1, bits = 8, bloc = 1;  // bloc: bytes a frame
};
FormatSon format_son(int code);
// A WAV file read whole: its format and where its samples lie in the bytes.
struct Son {
  FormatSon format;
  std::size_t debut = 0, taille = 0;
};
// The most sample bytes a sound file may hold.
constexpr std::size_t SON_MAX_DONNEES = 1000000;
constexpr int M_SON_GRAND = 128, M_SON_SORTIE = 129;  // env 1
// 0 when the bytes are a whole PCM WAV file (8 or 16 bits, 1 or 2
// channels) whose sizes agree with its length; -1 otherwise.
int son_analyse(std::span<const std::uint8_t> o, Son& s);
// The 44 bytes in front of `taille` bytes of samples.
std::vector<std::uint8_t> son_entete(const FormatSon& f, std::uint32_t taille);
// The fade out of samples: from byte trunc(size x fraction), at least 16,
// to the end, a gain falling from 1 to 0, frame by frame.
void son_fondu(std::span<std::uint8_t> d, const FormatSon& f, float fraction);
// Reads and checks a file (0, or -1 after message 0:36, 1:127 or 1:128);
// writes one through a temporary beside it (0, or -1 after message 0:37).
int son_lit(const char* nom, std::vector<std::uint8_t>& o, Son& s);
int son_ecrit(const char* nom, std::span<const std::uint8_t> o);
// The edit of b143: the file faded out from `fraction` and written back.
int son_bosse(const char* nom, float fraction);
// Plays a file on ALSA's default device (-1 after its messages); a new
// sound stops the one before.
int son_joue(const char* nom);

// Private to the peripherals: the channel record, the table, and the
// routines of each kind.
//
// Invariants of a Periph: `type` 0 means free and every other field holds its
// reset value (handles -1, pointers null, timeout 1000, format BLOC_CHAINE);
// a socket or descriptor in `canal` or `ecoute` belongs to the channel and is
// closed by its close only; `sortie` and `entree` point into one mapping of
// MEM_OCTETS bytes that stays mapped for the life of the process, once made.
#pragma once
#include <netinet/in.h>

#include <cstdint>
#include <string>

#include "core/bloc.h"
#include "device/device.h"

constexpr int MEM_OCTETS = 1024;
constexpr int MEM_MOTS_SORTIE = 100;                         // words 0 to 99
constexpr int MEM_MOTS_ENTREE = MEM_OCTETS / 4 - MEM_MOTS_SORTIE;  // words 100 to 255
constexpr int COM_TAMPON = 256;
constexpr int RESEAU_TAMPON = 1024;
constexpr int PORT_DEFAUT = 12345;
constexpr int TIMEOUT_DEFAUT = 1000;

struct Periph {
  int type = PERIPH_LIBRE;
  char nom[80] = "";
  int ecoute = -1;            // listening socket of a TCP server
  int canal = -1;             // working socket or serial descriptor
  volatile mot* sortie = nullptr;  // shared memory: the area written here
  volatile mot* entree = nullptr;  // shared memory: the area read here
  int vitesse = 9600;
  int timeout = TIMEOUT_DEFAUT;
  int format = BLOC_CHAINE;
  int debug = 0;
  sockaddr_in pair{};         // UDP: the address written to (the last sender for a server)
  bool pair_connu = false;
  void* osc = nullptr;        // OSC: its state (device/osc.cpp)
};
// Index = channel number; 0 is never used.
extern Periph periphs[NB_PERIPH + 1];

// What an opening phrase gave.
struct Ouverture {
  int numero = 0;
  std::string type, nom;
  int port = 0;
  int timeout = TIMEOUT_DEFAUT;
  int format = BLOC_CHAINE;
  int debug = 0;
  int bloquant = 0;
  bool serveur = false;
  int vitesse = 9600;
};

// ---- per kind: opening fills the record's handles; 0, or -1 after messages
int mem_ouvre(Periph* p, const Ouverture& o);
int mem_lit(Periph* p, mot* phrase, const mot* limite, const mot* envoi, float etape);
int mem_ecrit(Periph* p, const mot* donnee);

int com_ouvre(Periph* p, const Ouverture& o);
int com_lit(Periph* p, mot* phrase, const mot* limite, int octets, bool debug);
int com_ecrit(Periph* p, const mot* donnee);
int com_purge(Periph* p);
// The speed the table allows: v itself, or 9600.
int com_vitesse(int v);

int tcp_ouvre_serveur(Periph* p, const Ouverture& o);
int tcp_ouvre_client(Periph* p, const Ouverture& o);
int tcp_lit(Periph* p, mot* phrase, const mot* limite, const char* separateur);
int tcp_ecrit(Periph* p, const mot* donnee);

int udp_ouvre(Periph* p, const Ouverture& o);
int udp_lit(Periph* p, mot* phrase, const mot* limite);
int udp_ecrit(Periph* p, const mot* donnee);
// The values of one datagram laid out as a sensor packet, into x (room for
// 64); their count, 0 for an empty value.
int udp_decode(const std::uint8_t* d, long lg, float* x);

int fic_lit(Periph* p, mot* phrase, const mot* limite);
int fic_ecrit(Periph* p, const mot* donnee);

int osc_ouvre(Periph* p, const Ouverture& o);
int osc_lit(Periph* p, mot* phrase, const mot* limite, const char* adresse);
int osc_ecrit(Periph* p, const char* adresse, const mot* donnee);
void osc_ferme(Periph* p);

// ---- shared helpers
// Milliseconds of a monotonic clock (the tick counter).
std::int64_t tic_ms();
// Resolves a host name, then a dotted number; false when neither works.
bool resout_hote(const char* nom, in_addr* a);
// The text of a value (a BLOC_CHAINE), or null.
const char* texte_de(const mot* v);
// A string result with the shape of a received text: nl = (bytes / 4) + 1,
// nc = 1. -12 when it does not fit.
int resultat_texte(mot* phrase, const mot* limite, const char* s, long lg);

// The fixed test client of port 8889: its socket, or -1 after the messages;
// one exchange on it, -1 when the socket had to be closed.
int client_test_ouvre(const char* hote);
int client_test_envoi(int s);

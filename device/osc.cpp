// OSC channels over UDP through liblo. A server channel receives: at each
// read the messages waiting are taken in, and the last one of each address
// is kept, so that the language polls an address between frames. A client
// channel sends a message to its host and port.
//
// Invariants: the table holds at most OSC_ADRESSES addresses, each with at
// most OSC_VALEURS values; a message beyond either bound is dropped (and
// counted). Everything runs on the interpreter's thread: liblo's server is
// only read by lo_server_recv_noblock from a read of the channel.
#include <lo/lo.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "core/message.h"
#include "device/periph_interne.h"
#include "interp/interp.h"

namespace {
constexpr int OSC_ADRESSES = 256, OSC_VALEURS = 64, OSC_TEXTE = 255, OSC_PAR_LECTURE = 4096;

struct ValOsc {
  bool chaine = false;
  float x = 0;
  std::string s;
};
struct Entree {
  std::string adresse;
  std::vector<ValOsc> vals;
};
struct Osc {
  lo_server srv = nullptr;
  lo_address dest = nullptr;
  std::vector<Entree> table;
  int dernier = -1;  // entry of the last message, -1 when it was read
  long perdus = 0;
};

void erreur_lo(int num, const char* msg, const char* ou) {
  std::printf("ERREUR OSC %d %s %s\x07\n", num, msg ? msg : "", ou ? ou : "");
}

// The values lie in the datagram where liblo found them, aligned to 4 bytes
// only: an 8-byte value read through the union would be misaligned.
template <class T>
T arg(const lo_arg* a) {
  T x;
  std::memcpy(&x, a, sizeof x);
  return x;
}

int recoit(const char* chemin, const char* types, lo_arg** argv, int argc, lo_message, void* donnees) {
  Osc* o = static_cast<Osc*>(donnees);
  int i = 0;
  while (i < static_cast<int>(o->table.size()) && o->table[static_cast<std::size_t>(i)].adresse != chemin) ++i;
  if (i == static_cast<int>(o->table.size())) {
    if (i >= OSC_ADRESSES) {
      ++o->perdus;
      return 0;
    }
    o->table.push_back(Entree{chemin, {}});
  }
  Entree& e = o->table[static_cast<std::size_t>(i)];
  e.vals.clear();
  for (int k = 0; k < argc && static_cast<int>(e.vals.size()) < OSC_VALEURS; ++k) {
    ValOsc v;
    switch (types[k]) {
      case LO_INT32: v.x = static_cast<float>(arg<std::int32_t>(argv[k])); break;
      case LO_FLOAT: v.x = arg<float>(argv[k]); break;
      case LO_DOUBLE: v.x = static_cast<float>(arg<double>(argv[k])); break;
      case LO_INT64: v.x = static_cast<float>(arg<std::int64_t>(argv[k])); break;
      case LO_CHAR: v.x = static_cast<float>(static_cast<unsigned char>(arg<char>(argv[k]))); break;
      case LO_TRUE: v.x = 1; break;
      case LO_FALSE: v.x = 0; break;
      case LO_STRING:
      case LO_SYMBOL:
        v.chaine = true;
        v.s.assign(&argv[k]->s, strnlen(&argv[k]->s, OSC_TEXTE));
        break;
      default: continue;  // blobs, time tags, nil, infinitum: no value here
    }
    e.vals.push_back(std::move(v));
  }
  o->dernier = i;
  return 0;
}

bool ecrit_texte(mot*& c, const mot* limite, const std::string& s) {
  if (resultat_chaine(c, limite, s.c_str(), s.size()) < 0) return false;
  c += c[0];
  return true;
}

// The values of an entry: floats alone as a BLOC_REEL; with a text among
// them, a list of its values; with the address first when `avec_adresse`.
int resultat_entree(mot* phrase, const mot* limite, const Entree& e, bool avec_adresse) {
  bool texte = avec_adresse;
  for (const ValOsc& v : e.vals) texte = texte || v.chaine;
  if (!texte) {
    reel* r = resultat_reels(phrase, limite, static_cast<long>(e.vals.size()));
    if (!r) return PILE_PLEINE;
    for (std::size_t k = 0; k < e.vals.size(); ++k) r[k] = e.vals[k].x;
    return 0;
  }
  // Items are written behind the header, floats gathered into runs.
  if (phrase + 4 >= limite) return PILE_PLEINE;
  mot* c = phrase + 4;
  mot n = 0;
  if (avec_adresse) {
    if (!ecrit_texte(c, limite, e.adresse)) return PILE_PLEINE;
    ++n;
  }
  for (std::size_t k = 0; k < e.vals.size();) {
    if (e.vals[k].chaine) {
      if (!ecrit_texte(c, limite, e.vals[k].s)) return PILE_PLEINE;
      ++n, ++k;
      continue;
    }
    std::size_t j = k;
    while (j < e.vals.size() && !e.vals[j].chaine) ++j;
    reel* r = resultat_reels(c, limite, static_cast<long>(j - k));
    if (!r) return PILE_PLEINE;
    for (std::size_t i = k; i < j; ++i) r[i - k] = e.vals[i].x;
    c += c[0];
    ++n;
    k = j;
  }
  phrase[0] = static_cast<mot>(c - phrase);
  phrase[1] = BLOC_LISTE;
  phrase[2] = n;
  phrase[3] = 0;
  return 0;
}

void ajoute(lo_message m, const mot* v) {
  if (v[0] == BLOC_REEL) return (void)lo_message_add_float(m, lit_reel(v + 1));
  if (v[0] == BLOC_ENTIER) return (void)lo_message_add_int32(m, v[1]);
  if (v[0] < 4) return;
  switch (v[1]) {
    case BLOC_REEL:
      for (mot k = 4; k < v[0]; ++k) lo_message_add_float(m, lit_reel(v + k));
      break;
    case BLOC_ENTIER:
      for (mot k = 4; k < v[0]; ++k) lo_message_add_int32(m, v[k]);
      break;
    case BLOC_CHAINE:
      if (const char* t = texte_de(v)) lo_message_add_string(m, t);
      break;
    case BLOC_LISTE:
      for (const mot *c = v + 4, *fin = v + v[0]; c < fin && c[0] >= 4 && c + c[0] <= fin; c += c[0]) ajoute(m, c);
      break;
  }
}
}  // namespace

int osc_ouvre(Periph* p, const Ouverture& o) {
  std::string port = std::to_string(o.port);
  Osc* etat = new Osc;
  if (o.serveur) {
    std::printf("LANCEMENT SERVEUR_OSC port %d\n", o.port);
    etat->srv = lo_server_new_with_proto(port.c_str(), LO_UDP, erreur_lo);
    if (etat->srv) lo_server_add_method(etat->srv, nullptr, nullptr, recoit, etat);
  } else {
    std::printf("LANCEMENT CLIENT_OSC sur machine %s et port %d\n", o.nom.c_str(), o.port);
    in_addr a{};
    if (!resout_hote(o.nom.c_str(), &a)) {
      std::printf("Unable to resolve %s\n", o.nom.c_str());
      delete etat;
      return -1;
    }
    etat->dest = lo_address_new(o.nom.c_str(), port.c_str());
  }
  if (!etat->srv && !etat->dest) {
    delete etat;
    return -1;
  }
  std::printf("CONNECTION OK\n");
  p->osc = etat;
  return 0;
}

void osc_ferme(Periph* p) {
  Osc* o = static_cast<Osc*>(p->osc);
  if (!o) return;
  if (o->srv) lo_server_free(o->srv);
  if (o->dest) lo_address_free(o->dest);
  delete o;
  p->osc = nullptr;
}

int osc_lit(Periph* p, mot* phrase, const mot* limite, const char* adresse) {
  Osc* o = static_cast<Osc*>(p->osc);
  if (!o->srv) {
    resultat_nil(phrase);
    return 0;
  }
  // A malformed datagram is dropped by liblo without a message count: wait
  // on the socket, not on the count. A flood stops at OSC_PAR_LECTURE.
  for (int k = 0; k < OSC_PAR_LECTURE && lo_server_wait(o->srv, 0) > 0; ++k) lo_server_recv_noblock(o->srv, 0);
  if (adresse) {
    for (const Entree& e : o->table)
      if (e.adresse == adresse) return resultat_entree(phrase, limite, e, false);
    resultat_nil(phrase);
    return 0;
  }
  if (o->dernier < 0) {
    resultat_nil(phrase);
    return 0;
  }
  int r = resultat_entree(phrase, limite, o->table[static_cast<std::size_t>(o->dernier)], true);
  if (r == 0) o->dernier = -1;
  return r;
}

int osc_ecrit(Periph* p, const char* adresse, const mot* donnee) {
  Osc* o = static_cast<Osc*>(p->osc);
  if (!o->dest || !adresse || adresse[0] != '/') {
    std::printf("OSC %s: ", adresse ? adresse : "");
    message(0, MES_INDICE);
    return -1;
  }
  lo_message m = lo_message_new();
  ajoute(m, donnee);
  int r = lo_send_message(o->dest, adresse, m);
  lo_message_free(m);
  if (r < 0) {
    std::printf("ERREUR OSC envoi %d\x07\n", lo_address_errno(o->dest));
    return -1;
  }
  return 0;
}

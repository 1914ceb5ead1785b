// The command `periph`: the phrase is read into its clauses, and the channel
// it names is opened, read, written, closed, flushed or listed. Everything
// here runs on the interpreter's thread; a channel that fails gives a message
// and an empty value, so that a running animation goes on.
#include <cstdio>
#include <cstring>
#include <ctime>

#include <unistd.h>

#include "core/message.h"
#include "device/periph_interne.h"
#include "interp/interp.h"
#include "startup/startup.h"

Periph periphs[NB_PERIPH + 1];
int (*periph_etape)(float) = nullptr;

namespace {
// Clauses of list "a" and "b" that the command reads.
constexpr int A_DEBUG_P = 3, A_CHAINE = 13, A_INI = 24, A_EDI = 36, A_FLOTTANT = 44, A_ETAPE = 51, A_PORT = 57,
              A_OCTETS = 58, A_FIN = 61, A_PURGE = 79, A_NOM_P = 82, A_SEPARATEUR = 90, A_TEMPS = 98;
constexpr int B_BLOQUANT = 48, B_SERVEUR = 61, B_CADENCE = 106, B_VITESSE = 111, B_PERIPH = 128,
              B_CLIENT_TEST = 66;
constexpr int MES_PERIPH_UTILISE = 71;  // env 1

struct Clauses {
  mot* numero = nullptr;  // the b128 element
  mot *ini = nullptr, *nom = nullptr, *port = nullptr, *temps = nullptr, *etape = nullptr, *octets = nullptr,
      *separateur = nullptr, *bloquant = nullptr, *vitesse = nullptr;
  bool debug = false, chaine = false, flottant = false, serveur = false, fin = false, purge = false;
  mot* envoi = nullptr;  // the value of the second element, sent by a shared-memory read
  int autre_env = 0;     // the env of a clause outside 0 and 1
};

mot* valeur_de(mot* e) { return e[0] > 3 ? e + 3 : nullptr; }

int entier(const mot* e, int defaut) {
  float x;
  return e && bloc_nombres(valeur_de(const_cast<mot*>(e)), &x, 1) == 1 ? entier_sature(x) : defaut;
}

Clauses lit_clauses(mot* phrase) {
  Clauses c;
  mot* e = phrase + 4;
  for (mot k = 0; k < phrase[2]; ++k, e += e[0]) {
    if (e[0] < 3) break;
    if (e[1] != 0 && e[1] != 1) {
      if (!c.autre_env) c.autre_env = e[1];
      continue;
    }
    if (k == 1 && e[0] > 3 && !(e[1] == 0 && e[2] == A_ETAPE)) c.envoi = valeur_de(e);
    if (e[1] == 1) {
      switch (e[2]) {
        case B_PERIPH: c.numero = e; break;
        case B_BLOQUANT: c.bloquant = e; break;
        case B_SERVEUR: c.serveur = true; break;
        case B_VITESSE: c.vitesse = e; break;
      }
      continue;
    }
    switch (e[2]) {
      case A_INI: c.ini = e; break;
      case A_NOM_P: c.nom = e; break;
      case A_PORT: c.port = e; break;
      case A_TEMPS: c.temps = e; break;
      case A_DEBUG_P: c.debug = true; break;
      case A_CHAINE: c.chaine = true; break;
      case A_FLOTTANT: c.flottant = true; break;
      case A_ETAPE: c.etape = e; break;
      case A_OCTETS: c.octets = e; break;
      case A_FIN: c.fin = true; break;
      case A_PURGE: c.purge = true; break;
      case A_SEPARATEUR: c.separateur = e; break;
    }
  }
  return c;
}

// The report of a channel number out of bounds or unused: an empty value.
int rapport(mot* phrase, int n) {
  mot_imprime(1, B_PERIPH);
  std::printf("%d\n", n);
  message(0, MES_INDICE);
  resultat_nil(phrase);
  return 0;
}

Periph* canal_utilise(int n) {
  if (n < 1 || n > NB_PERIPH || periphs[n].type == PERIPH_LIBRE) return nullptr;
  return &periphs[n];
}

void remet(Periph* p) {
  volatile mot* entree = p->entree;
  *p = Periph{};
  p->entree = entree;  // a shared memory's reading side keeps its value
}

constexpr const char* USAGE = "ini(\"FIC MEM COM TCP UDP MID\") nom(\"...\") periph([1-%d])\x07\n";

int ouvre(mot* phrase, const Clauses& c) {
  if (!c.numero || !valeur_de(c.numero)) {
    std::printf(USAGE, NB_PERIPH);
    return -1;
  }
  Ouverture o;
  o.numero = entier(c.numero, 0);
  message(0, MES_LIGNE);
  mot_imprime(1, B_PERIPH);
  std::printf("\tnumero = %d ", o.numero);
  if (o.numero < 1 || o.numero > NB_PERIPH) {
    rapport(phrase, o.numero);
    return -1;
  }
  Periph* p = &periphs[o.numero];
  if (p->type != PERIPH_LIBRE) {
    message(1, MES_PERIPH_UTILISE);
    return -1;
  }
  const char* t = texte_de(valeur_de(c.ini));
  o.type = t ? t : "";
  const char* nom = c.nom ? texte_de(valeur_de(c.nom)) : nullptr;
  if (nom) o.nom.assign(nom, strnlen(nom, sizeof p->nom - 1));
  o.port = entier(c.port, 0);
  o.timeout = entier(c.temps, TIMEOUT_DEFAUT);
  if (c.chaine) o.format = BLOC_CHAINE;
  if (c.flottant) o.format = BLOC_REEL;
  o.debug = c.debug;
  o.bloquant = entier(c.bloquant, 0);
  o.serveur = c.serveur;
  o.vitesse = entier(c.vitesse, 9600);

  int type = PERIPH_LIBRE, r = -1;
  bool a_nom = !o.nom.empty();
  if (o.type == "FIC" && a_nom) {
    std::printf("fichier %s\n", o.nom.c_str());
    type = PERIPH_FIC, r = 0;
  } else if (o.type == "MEM" && a_nom) {
    type = PERIPH_MEM, r = mem_ouvre(p, o);
  } else if (o.type == "COM" && a_nom) {
    type = PERIPH_COM, r = com_ouvre(p, o);
    if (r >= 0) std::printf("Port serie (%s) %d\n", o.nom.c_str(), com_vitesse(o.vitesse));
  } else if (o.type == "TCP") {
    type = o.serveur ? PERIPH_TCP_SERVEUR : PERIPH_TCP_CLIENT;
    r = o.serveur ? tcp_ouvre_serveur(p, o) : tcp_ouvre_client(p, o);
  } else if (o.type == "UDP") {
    type = o.serveur ? PERIPH_UDP_SERVEUR : PERIPH_UDP_CLIENT;
    r = udp_ouvre(p, o);
  } else if (o.type == "MID") {
    type = PERIPH_MID, r = midi_ouvre(o.port, o.nom);
  } else if (o.type == "OSC") {
    type = PERIPH_OSC, r = osc_ouvre(p, o);
  } else {
    std::printf("%s: Type illegal\x07\n", o.type.c_str());
    return -1;
  }
  if (r < 0) return -1;
  p->type = type;
  p->timeout = o.timeout;
  std::snprintf(p->nom, sizeof p->nom, "%s", o.nom.c_str());
  p->vitesse = type == PERIPH_COM ? com_vitesse(o.vitesse) : o.vitesse;
  p->format = o.format;
  p->debug = o.debug;
  phrase[0] = 0;
  return 0;
}

// `fin` reaches channels 1 to 99 only; the end of the program all of them.
void ferme_un(int n, int dernier = NB_PERIPH - 1) {
  if (n < 1 || n > dernier) {
    std::printf("%d: ", n);
    message(0, MES_INDICE);
    return;
  }
  Periph* p = &periphs[n];
  switch (p->type) {
    case PERIPH_LIBRE: return;
    case PERIPH_COM:
      if (close(p->canal) != 0) {
        std::printf("ERREUR FERMETURE PERIPH %d\x07\n", n);
        return;
      }
      break;
    case PERIPH_TCP_CLIENT:
    case PERIPH_TCP_SERVEUR:
    case PERIPH_UDP_CLIENT:
    case PERIPH_UDP_SERVEUR:
      if (p->canal >= 0) close(p->canal);
      if (p->ecoute >= 0) close(p->ecoute);
      std::printf("Closed connection %d\n", p->canal);
      break;
    case PERIPH_MID: midi_ferme(); break;
    case PERIPH_OSC: osc_ferme(p); break;
  }
  if (etat_ou(0, A_EDI, 0) != 0) std::printf("FERMETURE PERIPH %d\n", n);
  remet(p);
}

int ferme(mot* phrase, const Clauses& c) {
  float x[NB_PERIPH + 1];
  int n = bloc_nombres(c.numero ? valeur_de(c.numero) : nullptr, x, NB_PERIPH + 1);
  if (n == 0)
    for (int k = 1; k < NB_PERIPH; ++k) ferme_un(k);
  for (int k = 0; k < n; ++k) ferme_un(entier_sature(x[k]));
  phrase[0] = 0;
  return 0;
}

int purge(mot* phrase, const Clauses& c) {
  float x[NB_PERIPH + 1];
  int n = bloc_nombres(c.numero ? valeur_de(c.numero) : nullptr, x, NB_PERIPH + 1);
  for (int k = 0; k < n; ++k) {
    int i = entier_sature(x[k]);
    if (i >= 0 && i < NB_PERIPH && periphs[i].type == PERIPH_COM) com_purge(&periphs[i]);
  }
  phrase[0] = 0;
  return 0;
}

void liste() {
  for (int n = 1; n <= NB_PERIPH; ++n) {
    const Periph& p = periphs[n];
    if (p.type == PERIPH_LIBRE) continue;
    std::printf("%d: ", n);
    switch (p.type) {
      case PERIPH_FIC: std::printf("Fichier %s ", p.nom); break;
      case PERIPH_MEM: std::printf("Memoire partagee nom = %s", p.nom), std::printf(" timeout = %d ms", p.timeout); break;
      case PERIPH_COM: std::printf("Port serie %s", p.nom), std::printf(" vitesse = %d ", p.vitesse); break;
      case PERIPH_TCP_CLIENT: std::printf("TCP_client %s -> host", p.nom); break;
      case PERIPH_UDP_CLIENT: std::printf("UDP_client %s -> host", p.nom); break;
      case PERIPH_MID: std::printf("MIDI"); break;
      case PERIPH_TCP_SERVEUR: std::printf("TCP_serveur host %s", p.nom); break;
      case PERIPH_UDP_SERVEUR: std::printf("UDP_serveur host %s", p.nom); break;
      case PERIPH_OSC: std::printf("OSC %s", p.nom); break;
    }
    if (p.debug) std::printf(" debug");
    bool reseau = p.type == PERIPH_TCP_CLIENT || p.type == PERIPH_UDP_CLIENT || p.type == PERIPH_TCP_SERVEUR ||
                  p.type == PERIPH_UDP_SERVEUR || p.type == PERIPH_OSC;
    if (reseau) {
      if (p.timeout != 0) std::printf(" timeout %d ms ", p.timeout);
      std::printf(p.format == BLOC_REEL ? " float " : " char ");
    }
    std::printf("\n");
  }
}

// The test client on port 8889: the first call connects, the next ones
// exchange a message.
int client_test(mot* phrase, mot*, const mot*) {
  if (phrase[2] != 1 || phrase[4] != 3) return COMMANDE_SUITE;
  static int s = -1;
  if (s < 0) {
    s = client_test_ouvre("localhost");
  } else if (client_test_envoi(s) < 0) {
    s = -1;
  }
  phrase[0] = 0;
  return 0;
}
}  // namespace

int periph_lit_ecrit(mot* phrase, const mot* limite, mot* donnee) {
  Clauses c = lit_clauses(phrase);
  if (c.autre_env) return c.autre_env;
  int n = entier(c.numero, 0);
  Periph* p = canal_utilise(n);
  if (!p) return rapport(phrase, n);
  const char* adresse = c.nom ? texte_de(valeur_de(c.nom)) : nullptr;
  if (donnee) {
    int r = 0;
    switch (p->type) {
      case PERIPH_FIC: r = fic_ecrit(p, donnee); break;
      case PERIPH_MEM: r = mem_ecrit(p, donnee); break;
      case PERIPH_COM: r = com_ecrit(p, donnee); break;
      case PERIPH_TCP_CLIENT:
      case PERIPH_TCP_SERVEUR: r = tcp_ecrit(p, donnee); break;
      case PERIPH_UDP_CLIENT:
      case PERIPH_UDP_SERVEUR: r = udp_ecrit(p, donnee); break;
      case PERIPH_OSC: r = osc_ecrit(p, adresse, donnee); break;
    }
    if (r >= 0) phrase[0] = 0;
    return r < 0 ? r : 0;
  }
  switch (p->type) {
    case PERIPH_FIC: return fic_lit(p, phrase, limite);
    case PERIPH_MEM: {
      float etape = 0;
      if (c.etape) bloc_nombres(valeur_de(c.etape), &etape, 1);
      return mem_lit(p, phrase, limite, c.envoi, etape);
    }
    case PERIPH_COM: return com_lit(p, phrase, limite, entier(c.octets, 1), c.debug);
    case PERIPH_TCP_CLIENT:
    case PERIPH_TCP_SERVEUR:
      return tcp_lit(p, phrase, limite, c.separateur ? texte_de(valeur_de(c.separateur)) : nullptr);
    case PERIPH_UDP_CLIENT:
    case PERIPH_UDP_SERVEUR: return udp_lit(p, phrase, limite);
    case PERIPH_MID: return midi_lit(phrase, limite);
    case PERIPH_OSC: return osc_lit(p, phrase, limite, adresse);
  }
  resultat_nil(phrase);
  return 0;
}

int periph_timeout(mot* phrase, mot* valeur, const mot* limite) {
  Clauses c = lit_clauses(phrase);
  if (c.autre_env) return c.autre_env;
  int n = entier(c.numero, 0);
  Periph* p = canal_utilise(n);
  if (!p) return rapport(phrase, n);
  if (valeur) {
    float x;
    if (bloc_nombres(valeur, &x, 1) == 1) p->timeout = entier_sature(x);
    phrase[0] = 0;
    return 0;
  }
  return resultat_scalaire(phrase, limite, static_cast<float>(p->timeout));
}

int periph_commande(mot* phrase, mot* valeur, const mot* limite) {
  if (phrase[2] < 1) return COMMANDE_SUITE;
  Clauses c = lit_clauses(phrase);
  if (!c.numero) {
    // An opening without its number; any other phrase is not a channel's.
    const char* t = c.ini ? texte_de(valeur_de(c.ini)) : nullptr;
    static constexpr const char* types[] = {"FIC", "MEM", "COM", "TCP", "UDP", "MID", "OSC"};
    for (const char* k : types)
      if (t && std::strcmp(t, k) == 0) {
        std::printf(USAGE, NB_PERIPH);
        return -1;
      }
    return COMMANDE_SUITE;
  }
  if (c.autre_env) return c.autre_env;
  if (c.ini) return ouvre(phrase, c);
  if (c.fin) return ferme(phrase, c);
  if (c.purge) return purge(phrase, c);
  if (c.temps) return periph_timeout(phrase, valeur, limite);
  if (phrase[2] == 1 && !valeur_de(c.numero)) {
    liste();
    phrase[0] = 0;
    return 0;
  }
  return periph_lit_ecrit(phrase, limite, valeur);
}

void periph_ferme_tout() {
  for (int n = 1; n <= NB_PERIPH; ++n)
    if (periphs[n].type != PERIPH_LIBRE) ferme_un(n, NB_PERIPH);
}

void periph_enregistre() {
  commande_enregistre(1, B_PERIPH, periph_commande);
  for (int a : {A_INI, A_NOM_P, A_FIN, A_PURGE, A_TEMPS}) commande_enregistre(0, a, periph_commande);
  commande_enregistre(1, B_CLIENT_TEST, client_test);
}

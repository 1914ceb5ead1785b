// Printing of numbered messages, and the report routines that print no
// object.
#include "core/message.h"

#include "startup/startup.h"

Messages messages;

namespace {
// Before the tables exist only these can be said.
const char* texte_secours(int n) {
  switch (n) {
    case MES_ALLOCATION: return "erreur allocation\x07\n";
    case MES_FICHIER: return "erreur fichier\x07\n";
    case MES_ECRITURE: return "erreur en ecriture\x07\n";
    case MES_COMMENTAIRE: return "erreur commentaire\x07\n";
    case MES_DISQUE: return "disque plein\x07\n";
  }
  return nullptr;
}

bool cloche_active() { return etat_ou(0, A_BIP, 1) > 0; }
}  // namespace

const char* message_texte(int env, int n) {
  if (env < 0 || env >= messages.nb_env || n < 0 || n >= messages.tables[env].nb) {
    std::printf("MESSAGE %d %d ILLEGAL\x07\n", env, n);
    return nullptr;
  }
  return messages.tables[env].textes[n];
}

// A message may be the last thing written before a long computation or a
// crash: the output is flushed every time.
int message(int env, int n) {
  if (!messages.charges) {
    if (const char* t = texte_secours(n)) std::fputs(t, stdout);
    std::fflush(stdout);
    return 0;
  }
  const char* t = message_texte(env, n);
  if (!t) {
    std::fflush(stdout);
    return -1;
  }
  if (cloche_active()) {
    std::fputs(t, stdout);
  } else {
    for (; *t; ++t)
      if (*t != '\a') std::putchar(*t);
  }
  std::fflush(stdout);
  return 0;
}

void cloche() {
  if (cloche_active()) std::putchar('\a');
  std::putchar('\n');
  std::fflush(stdout);
}

int echec_instruction() {
  MotCle* m = mot_entree(0, A_ERR);
  if (m && m->nv > 0 && m->courant) ecrit_reel(m->courant + 4, -1.f);
  message(0, MES_ECHEC);
  return -1;
}

int entier_de(float x, mot* n, mot min, mot max) {
  if (reel_entier(x, n, min, max)) return 0;
  std::printf("%g: ", static_cast<double>(x));
  message(0, MES_VALEUR);
  return -1;
}

int erreur_pile() {
  message(0, MES_PILE);
  return -1;
}

void erreur_memoire(long a, long b) {
  std::printf("%ld: ", a * b);
  message(0, MES_ALLOCATION);
}

void erreur_fichier(const char* nom) {
  if (nom) std::printf("%s: ", nom);
  message(0, MES_FICHIER);
}

void erreur_ecriture(const char* nom) {
  if (nom) std::printf("%s: ", nom);
  message(0, MES_ECRITURE);
}

void erreur_disque() { message(0, MES_DISQUE); }

void erreur_interne(const char* texte) {
  message(0, MES_INTERNE);
  if (texte) std::fputs(texte, stdout);
  cloche();
}

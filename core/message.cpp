#include "core/message.h"

Messages messages;

namespace {
// Before the tables exist only these can be said.
const char* texte_secours(int n) {
  switch (n) {
    case 28: return "erreur allocation\x07\n";
    case 36: return "erreur fichier\x07\n";
    case 37: return "erreur en ecriture\x07\n";
    case 64: return "erreur commentaire\x07\n";
    case 67: return "disque plein\x07\n";
  }
  return nullptr;
}

bool cloche_active() { return !etats[0] || etats[0][52] > 0; }
}  // namespace

const char* message_texte(int env, int n) {
  if (env < 0 || env >= messages.nb_env || n < 0 || n >= messages.tables[env].nb) {
    std::printf("MESSAGE %d %d ILLEGAL\x07\n", env, n);
    return nullptr;
  }
  return messages.tables[env].textes[n];
}

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

int erreur_pile() {
  message(0, 12);
  return -1;
}

void erreur_memoire(long a, long b) {
  std::printf("%ld: ", a * b);
  message(0, 28);
}

void erreur_fichier(const char* nom) {
  if (nom) std::printf("%s: ", nom);
  message(0, 36);
}

void erreur_ecriture(const char* nom) {
  if (nom) std::printf("%s: ", nom);
  message(0, 37);
}

void erreur_disque() { message(0, 67); }

void erreur_interne(const char* texte) {
  message(0, 104);
  if (texte) std::fputs(texte, stdout);
  cloche();
}

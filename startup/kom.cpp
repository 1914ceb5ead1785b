// Keyword files: one record per keyword, its position the ordinal.
//   |4: vol volume Volume        names: primary, aliases, long names
//   0 1 0 0 1,0.5,[3]=2          e1 etat e3 e4, then the default values
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "core/catalogue.h"
#include "core/message.h"
#include "startup/interne.h"
#include "startup/startup.h"

Vocabulaire vocab;

namespace {
inline bool blanc(char c) { return c == ' ' || c == '\t' || c == ',' || (c > 0 && c < ' ' && c != '\n'); }

// Names: each blank ends a name; two blanks in a row, a trailing blank or
// the end of the line end the list. A tab does not separate.
const char* lit_noms(const char* p, std::string& noms) {
  for (;;) {
    const char* d = p;
    while (*p && *p != ' ' && *p != '\n' && *p != '\r') ++p;
    if (p == d) break;
    noms.append(d, p);
    noms.push_back('\0');
    if (*p != ' ') break;
    ++p;
    if (*p == ' ' || *p == '\n' || *p == '\r' || !*p) break;
  }
  noms.push_back('\0');
  while (*p && *p != '\n') ++p;
  return *p ? p + 1 : p;
}

// The values of a whole file share the start-up zone with its text: this
// many floats at most, the headers of the records included.
constexpr std::size_t ZONE_OCTETS = 100000;

// Values up to the end of the record: "," or tab between numbers, "." ends
// the list, [n] is n zeros, [n]=v n times v, "\" goes on with the next line.
// Null when a repeat count asks for more than `reste` values.
const char* lit_valeurs(const char* p, std::vector<float>& v, std::size_t reste) {
  const std::size_t debut = v.size();
  for (;;) {
    char c = *p;
    if (c == ',' || c == '\t' || c == ' ' || c == '\r') {
      ++p;
    } else if (c == '\\') {
      while (*p && *p != '\n') ++p;
      if (*p) ++p;
    } else if (c == '.' || c == '\n' || c == '\0' || c == '|') {
      break;
    } else if (c == '[') {
      char* fin;
      long n = std::strtol(p + 1, &fin, 10);
      p = fin;
      if (*p == ']') ++p;
      float x = 0;
      if (*p == '=') {
        x = std::strtof(p + 1, &fin);
        p = fin;
      }
      if (n > 0 && static_cast<unsigned long>(n) > reste - (v.size() - debut)) {
        std::printf("[%ld]: ", n);
        return nullptr;
      }
      for (long k = 0; k < n; ++k) v.push_back(x);
    } else {
      char* fin;
      float x = std::strtof(p, &fin);
      if (fin == p) {
        ++p;  // a stray character is passed over
        continue;
      }
      if (v.size() - debut >= reste) {
        std::printf("%g: ", static_cast<double>(x));
        return nullptr;
      }
      v.push_back(x);
      p = fin;
    }
  }
  return p;
}

struct Brut {
  std::size_t noms;  // offset in the name store
  int e[4];
  std::size_t v0, nv;
};

int compare_signe(const char* a, const char* b) {
  for (;; ++a, ++b) {
    signed char x = static_cast<signed char>(*a), y = static_cast<signed char>(*b);
    if (x != y) return x < y ? -1 : 1;
    if (!x) return 0;
  }
}
// The first eight bytes of a name as one unsigned number that orders as
// the signed bytes do: each byte's sign bit flipped, the end of the name
// and what follows it counted as the byte 0.
std::uint64_t cle_tri(const char* s) {
  std::uint64_t k = 0;
  bool fin = false;
  for (int n = 0; n < 8; ++n) {
    unsigned char c = fin ? 0 : static_cast<unsigned char>(s[n]);
    fin = fin || c == 0;
    k = k << 8 | static_cast<unsigned char>(c ^ 0x80u);
  }
  return k;
}
}  // namespace

int kom_analyse(std::string_view source, int env) {
  std::string texte(source);
  const char* p = std::strchr(texte.c_str(), '|');
  // Sized once from the text: growing them by doubling would leave a trail
  // of fresh pages touched and dropped at every start.
  std::string noms;
  std::vector<float> valeurs;
  std::vector<Brut> bruts;
  noms.reserve(texte.size());
  valeurs.reserve(texte.size() / 2);
  bruts.reserve(texte.size() / 16);  // records rarely take less; more just grows it
  while (p && *p == '|') {
    Brut r{};
    ++p;
    while (*p && *p != ':' && *p != '\n') ++p;
    if (*p == ':') ++p;
    while (*p == ' ' || *p == '\t') ++p;
    r.noms = noms.size();
    p = lit_noms(p, noms);
    for (int k = 0; k < 4; ++k) {
      while (blanc(*p)) ++p;
      char* fin;
      r.e[k] = static_cast<int>(std::strtol(p, &fin, 10));
      p = fin;
    }
    r.v0 = valeurs.size();
    // Room left in the zone behind the text, each record's header counted.
    std::size_t pris = (texte.size() + 4) / 4 + 4 * (bruts.size() + 1) + valeurs.size();
    std::size_t reste = pris < ZONE_OCTETS / 4 ? ZONE_OCTETS / 4 - pris : 0;
    p = lit_valeurs(p, valeurs, reste);
    if (!p) {
      std::printf("%d: trop de valeurs (%zu au plus dans la zone de %zu octets)\x07\n",
                  static_cast<int>(bruts.size()), reste, ZONE_OCTETS);
      return -1;
    }
    r.nv = valeurs.size() - r.v0;
    bruts.push_back(r);
    p = std::strchr(p, '|');
  }

  int nb = static_cast<int>(bruts.size());
  // The two state arrays reach every ordinal of the code, zero past the
  // file's last keyword; the index has one entry per keyword.
  const int place = nb > ORDINAUX_CODE ? nb : ORDINAUX_CODE;
  auto* mots = static_cast<MotCle*>(tas::alloue(sizeof(MotCle) * (nb ? nb : 1)));
  auto* entiers = static_cast<mot*>(tas::alloue(sizeof(mot) * (2 * place + (nb ? nb : 1))));
  auto* store = static_cast<char*>(tas::alloue(noms.size() + 1));
  // Defaults and current values sit at equal distance in one allocation.
  std::size_t moitie = 4 * bruts.size() + valeurs.size();
  auto* vals = static_cast<mot*>(tas::alloue(sizeof(mot) * (2 * moitie + 1)));
  if (!mots || !entiers || !store || !vals) {
    std::fputs("ERREUR ALLOCATION\n\x07", stdout);
    return -1;
  }
  std::memcpy(store, noms.data(), noms.size());
  TableMots& t = vocab.tables[env];
  t.nb = nb;
  t.place = place;
  t.mots = mots;
  std::memset(entiers, 0, sizeof(mot) * 2 * place);
  t.etats_defaut = entiers;
  t.etats = entiers + place;
  t.index = entiers + 2 * place;
  mot* d = vals;
  for (int i = 0; i < nb; ++i) {
    const Brut& r = bruts[i];
    MotCle& m = mots[i];
    m.noms = store + r.noms;
    m.env = env;
    m.ordinal = i;
    m.e1 = r.e[0];
    m.etat = r.e[1];
    m.e3 = r.e[2];
    m.e4 = r.e[3];
    m.nv = static_cast<int>(r.nv);
    m.defaut = d;
    m.courant = d + moitie;
    d[0] = static_cast<mot>(4 + r.nv);
    d[1] = BLOC_REEL;
    d[2] = static_cast<mot>(r.nv);
    d[3] = 1;
    for (std::size_t k = 0; k < r.nv; ++k) ecrit_reel(d + 4 + k, valeurs[r.v0 + k]);
    std::memcpy(m.courant, d, sizeof(mot) * (4 + r.nv));
    d += 4 + r.nv;
    t.etats_defaut[i] = m.etat;
    t.etats[i] = m.etat;
    t.index[i] = i;
    if (i == 9) {
      vocab.valeurs9_defaut = m.defaut;
      vocab.valeurs9_courant = m.courant;
    }
  }
  // The order is an exchange sort's on signed bytes: a prefix comes first.
  // Names that appear twice keep the order this sort gives them, which no
  // other sort reproduces, so it stays; but it runs on ranks, which a quick
  // sort gives first (equal names, equal ranks), one integer comparison
  // each. That sort goes by the first eight bytes packed into one integer,
  // reading the names in full only when those are equal.
  std::vector<std::uint64_t> cle(static_cast<std::size_t>(nb));
  for (int i = 0; i < nb; ++i) cle[i] = cle_tri(mots[i].noms);
  auto avant = [&](int a, int b) {
    return cle[a] < cle[b] || (cle[a] == cle[b] && compare_signe(mots[a].noms, mots[b].noms) < 0);
  };
  std::vector<int> ordre(static_cast<std::size_t>(nb)), rang(static_cast<std::size_t>(nb));
  for (int i = 0; i < nb; ++i) ordre[i] = i;
  std::sort(ordre.begin(), ordre.end(), avant);
  for (int k = 0; k < nb; ++k) rang[ordre[k]] = k == 0 ? 0 : rang[ordre[k - 1]] + avant(ordre[k - 1], ordre[k]);
  // Position i's holder stays in registers through its pass.
  for (int i = 0; i < nb; ++i) {
    int r = rang[i];
    mot x = t.index[i];
    for (int j = i + 1; j < nb; ++j)
      if (rang[j] < r) {
        std::swap(r, rang[j]);
        std::swap(x, t.index[j]);
      }
    rang[i] = r;
    t.index[i] = x;
  }
  if (env >= vocab.nb_env) vocab.nb_env = env + 1;
  etats[env] = t.etats;
  nb_etats[env] = nb;
  return 0;
}

int kom_charge(const char* chemin, int env) {
  std::string texte;
  if (!lit_fichier(chemin, texte)) {
    erreur_fichier(chemin);
    arret_fatal(nullptr);
  }
  if (kom_analyse(texte, env) < 0) {
    std::printf("ERREUR dans %s\x07\n", chemin);
    arret_fatal(nullptr);
  }
  return 0;
}

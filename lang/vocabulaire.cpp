// The keyword tables seen by name, with an index that the compiler rebuilds
// whenever the tables change: a linear search per name would dominate the
// compile time of long files.
#include <string_view>
#include <unordered_map>

#include "lang/interne.h"

namespace {
constexpr int CONTROLES[] = {A_AIDE, A_FONC, A_EXTERNE, A_POUR, A_RETOUR, A_ALLER, A_SI,
                             A_SINON, A_TANTQUE, A_NIL, A_PI, A_SORTIR, A_SELON, A_CAS,
                             A_DEFAUT, A_STATIQUE, A_IMPRIME, A_AIDE_MOT, A_RC, A_ERR};
// a97 is left out: it shares its spelling with a21, and only the form
// "var name, ..." means a97 (pass 1 tests that form by the names of a97).

struct Index {
  // What the index was built from: the tables' records and sizes.
  const MotCle* mots[MAX_ENV] = {};
  int nb[MAX_ENV] = {};
  int nb_env = -1;
  std::unordered_map<std::string_view, MotCle*> controles;
  std::unordered_map<std::string_view, MotCle*> tous;
};
Index idx;

inline const char* nom_suivant(const char* n) { return n + std::strlen(n) + 1; }
// The primary name always counts (NIL, PI, RC are spelled in capitals); the
// aliases stop at the first word that begins with a capital letter.
inline bool cherchable(const char* premier, const char* n) {
  return *n && (n == premier || !(*n >= 'A' && *n <= 'Z'));
}

void construit() {
  idx.controles.clear();
  idx.tous.clear();
  idx.nb_env = vocab.nb_env;
  for (int e = 0; e < MAX_ENV; ++e) {
    idx.mots[e] = e < vocab.nb_env ? vocab.tables[e].mots : nullptr;
    idx.nb[e] = e < vocab.nb_env ? vocab.tables[e].nb : 0;
  }
  for (int o : CONTROLES)
    if (MotCle* m = mot_entree(0, o))
      for (const char* n = m->noms; cherchable(m->noms, n); n = nom_suivant(n)) idx.controles.emplace(n, m);
  for (int e = 0; e < vocab.nb_env; ++e) {
    TableMots& t = vocab.tables[e];
    for (int i = 0; i < t.nb; ++i)
      for (const char* n = t.mots[i].noms; cherchable(t.mots[i].noms, n); n = nom_suivant(n))
        idx.tous.emplace(n, &t.mots[i]);
  }
}

void a_jour() {
  bool pareil = idx.nb_env == vocab.nb_env;
  for (int e = 0; pareil && e < MAX_ENV; ++e) {
    bool present = e < vocab.nb_env;
    pareil = idx.mots[e] == (present ? vocab.tables[e].mots : nullptr) &&
             idx.nb[e] == (present ? vocab.tables[e].nb : 0);
  }
  if (!pareil) construit();
}
}  // namespace

MotCle* mot_lang(const char* nom, int lg) {
  a_jour();
  std::string_view v(nom, lg);
  auto i = idx.controles.find(v);
  if (i != idx.controles.end()) return i->second;
  auto j = idx.tous.find(v);
  return j == idx.tous.end() ? nullptr : j->second;
}

bool nom_de_a(const char* nom, int lg, int ordinal) {
  MotCle* m = mot_entree(0, ordinal);
  if (!m) return false;
  for (const char* n = m->noms; cherchable(m->noms, n); n = nom_suivant(n))
    if (static_cast<int>(std::strlen(n)) == lg && std::memcmp(n, nom, lg) == 0) return true;
  return false;
}

int ordinal_a(const MotCle* m) { return m && m->env == 0 ? m->ordinal : -1; }

mot entree_mot(int env, int ordinal) { return ptr_vers_mot(mot_entree(env, ordinal)); }

int niveau_trace() {
  const TableMots& t = vocab.tables[0];
  return vocab.nb_env > 0 && t.etats && t.nb > A_EDI ? t.etats[A_EDI] : 0;
}

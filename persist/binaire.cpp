// The binary form: per object a head of 8 words (f4 sign-extended, numero,
// attribute count, f1, f2, f3, type, sous_type), then each attribute as the
// Bloc it is in memory, in the machine's byte order. Three keys differ:
//   (0, 82)   the object's name, as a string tail (the head has no room);
//   (1, 148)  a memory attribute: a tail head [4, BLOC_BLOCS, k, 1] and k
//             sub-objects, each an 8-word head and its attributes;
//   (1, 86), (1, 15) with the "short" option: the tail packed as 16-bit
//             integers, two to a word, behind [T, BLOC_COURT, nl, nc].
// In memory a sub-object of a memory attribute is a BLOC_BLOCS whose first
// pointer is a BLOC_ENTIER of its 8 head words and the others its
// attributes, so that deleting the object releases it all.
#include <cstdio>
#include <cstring>

#include "persist/interne.h"

namespace {
constexpr int PROFONDEUR_MAX = 8;

bool une_paire(const mot* a, int e, int o) { return a[3] == 1 && a[4] == e && a[5] == o; }

std::int16_t court_de(float x) {
  mot n = entier_sature(x);
  return static_cast<std::int16_t>(n < -32768 ? -32768 : n > 32767 ? 32767 : n);
}

// ---- writing ---------------------------------------------------------------------
struct Ecrivain {
  Flux& f;
  const OptionsFichier& opt;
  long long octets = 0;
  bool ok = true;
  bool mots(const mot* p, long n) {
    if (ok && !f.ecrit(p, sizeof(mot) * static_cast<std::size_t>(n))) ok = false;
    octets += sizeof(mot) * n;
    return ok;
  }
};

bool ecrit_attribut(Ecrivain& e, const mot* a, int profondeur);

bool ecrit_tete(Ecrivain& e, const mot tete[8]) { return e.mots(tete, 8); }

bool ecrit_memoire(Ecrivain& e, const mot* a, int profondeur) {
  mot h = a[2];
  const mot* t = a + h;
  std::vector<mot> tete(a, a + h);
  tete[0] = h + 4;
  mot k = t[0] - 4;
  mot queue[4] = {4, BLOC_BLOCS, k, 1};
  if (!e.mots(tete.data(), h) || !e.mots(queue, 4)) return false;
  for (mot i = 0; i < k; ++i) {
    const mot* s = bloc_pointe(t[4 + i]);
    // A sub-object without its head is written as an empty one.
    mot tete_s[8] = {0, i, 0, 0, 0, 0, B_MEM_TYPE, 0};
    std::vector<const mot*> attrs;
    if (s && s[0] >= 5 && s[1] == BLOC_BLOCS) {
      const mot* ts = bloc_pointe(s[4]);
      if (ts && ts[0] == 12 && ts[1] == BLOC_ENTIER) std::memcpy(tete_s, ts + 4, sizeof tete_s);
      for (mot j = 5; j < s[0]; ++j)
        if (const mot* x = bloc_pointe(s[j]); x && x[0] >= 6 && x[0] <= MOTS_MAX && x[2] <= x[0])
          attrs.push_back(x);
    }
    tete_s[2] = static_cast<mot>(attrs.size());
    if (!ecrit_tete(e, tete_s)) return false;
    for (const mot* x : attrs)
      if (!ecrit_attribut(e, x, profondeur + 1)) return false;
  }
  return true;
}

bool ecrit_court(Ecrivain& e, const mot* a) {
  mot h = a[2];
  const mot* t = a + h;
  mot T = t[0];
  bool som = a[5] == 86;
  long nv = som ? static_cast<long>(t[2]) * t[3] : T - 4;
  if (som && (t[2] < 0 || t[3] < 0 || nv > T - 4)) nv = T - 4;
  std::vector<mot> b(static_cast<std::size_t>(h + (T - 4) / 2 + 5), 0);
  std::memcpy(b.data(), a, sizeof(mot) * h);
  b[0] = static_cast<mot>(b.size());
  b[h] = T;
  b[h + 1] = BLOC_COURT;
  b[h + 2] = t[2];
  b[h + 3] = t[3];
  std::uint16_t* v = reinterpret_cast<std::uint16_t*>(b.data() + h + 4);
  for (long i = 0; i < nv; ++i) {
    std::int16_t x = som ? court_de(lit_reel(t + 4 + i)) : static_cast<std::int16_t>(t[4 + i]);
    v[i] = static_cast<std::uint16_t>(x);
  }
  return e.mots(b.data(), static_cast<long>(b.size()));
}

bool ecrit_attribut(Ecrivain& e, const mot* a, int profondeur) {
  mot h = a[2];
  bool queue = a[0] >= h + 4;
  if (queue && une_paire(a, 1, B_MEM_TYPE) && a[h + 1] == BLOC_BLOCS && profondeur < PROFONDEUR_MAX)
    return ecrit_memoire(e, a, profondeur);
  if (tail_pointeurs(a)) return true;
  if (queue && e.opt.court &&
      ((une_paire(a, 1, 86) && a[h + 1] == BLOC_REEL) || (une_paire(a, 1, 15) && a[h + 1] == BLOC_LISTE)) &&
      a[h] >= 4 && a[h] <= a[0] - h)
    return ecrit_court(e, a);
  return e.mots(a, a[0]);
}

std::vector<mot> attribut_nom(const char* nom) {
  std::size_t lg = std::strlen(nom);
  mot t = long_chaine(lg);
  std::vector<mot> b(static_cast<std::size_t>(6 + t), 0);
  b[0] = 6 + t;
  b[1] = BLOC_PHRASE;
  b[2] = 6;
  b[3] = 1;
  b[4] = 0;
  b[5] = A_NOM;
  b[6] = t;
  b[7] = BLOC_CHAINE;
  b[8] = 1;
  b[9] = 1;
  std::memcpy(b.data() + 10, nom, lg);
  return b;
}

// ---- reading ---------------------------------------------------------------------
struct Lecteur {
  Flux& f;
  bool tronque = false, corrompu = false;
  bool mots(mot* p, long n) {
    if (n > f.reste_mots()) return tronque = false, corrompu = true, false;
    if (!f.lit(p, sizeof(mot) * static_cast<std::size_t>(n))) return tronque = true, false;
    return true;
  }
  std::nullptr_t faux() { return corrompu = true, nullptr; }
};

mot* lit_attribut(Lecteur& l, int profondeur);

bool tete_saine(const mot t[8]) {
  return t[2] >= 0 && t[2] <= ATTRIBUTS_MAX && t[6] > 0 && t[6] < 32768 && t[7] >= 0 && t[7] < 65536;
}

// A sub-object of a memory attribute into its in-memory list.
mot* lit_sous_objet(Lecteur& l, int profondeur) {
  mot tete[8];
  if (!l.mots(tete, 8)) return nullptr;
  if (!tete_saine(tete)) return l.faux();
  mot* s = bloc_alloue(5 + tete[2]);
  if (!s) return nullptr;
  s[1] = BLOC_BLOCS;
  s[2] = 1 + tete[2];
  s[3] = 1;
  std::memset(s + 4, 0, sizeof(mot) * (1 + tete[2]));
  mot* ts = bloc_alloue(12);
  if (!ts) {
    bloc_supprime(s);
    return nullptr;
  }
  ts[1] = BLOC_ENTIER;
  ts[2] = 8;
  ts[3] = 1;
  std::memcpy(ts + 4, tete, sizeof tete);
  s[4] = ptr_vers_mot(ts);
  for (mot j = 0; j < tete[2]; ++j) {
    mot* x = lit_attribut(l, profondeur + 1);
    if (!x) {
      bloc_supprime(s);
      return nullptr;
    }
    s[5 + j] = ptr_vers_mot(x);
  }
  return s;
}

mot* lit_memoire(Lecteur& l, const mot* tete, int profondeur) {
  mot h = tete[2];
  mot queue[4];
  if (tete[0] != h + 4 || !l.mots(queue, 4)) return tete[0] != h + 4 ? l.faux() : nullptr;
  mot k = queue[2];
  if (queue[0] != 4 || queue[1] != BLOC_BLOCS || k < 0 || k > ATTRIBUTS_MAX || profondeur >= PROFONDEUR_MAX)
    return l.faux();
  mot* a = bloc_alloue(h + 4 + k);
  if (!a) return nullptr;
  std::memcpy(a, tete, sizeof(mot) * h);
  a[0] = h + 4 + k;
  a[1] = BLOC_PHRASE;  // so that deletion walks the sub-objects
  a[h] = 4 + k;
  a[h + 1] = BLOC_BLOCS;
  a[h + 2] = k;
  a[h + 3] = 1;
  std::memset(a + h + 4, 0, sizeof(mot) * k);
  for (mot i = 0; i < k; ++i) {
    mot* s = lit_sous_objet(l, profondeur);
    if (!s) {
      bloc_supprime(a);
      return nullptr;
    }
    a[h + 4 + i] = ptr_vers_mot(s);
  }
  return a;
}

// The packed tail expanded: floats from the truncated vertices, words
// sign-extended for the faces.
mot* deplie(Lecteur& l, mot* lu) {
  mot h = lu[2];
  const mot* t = lu + h;
  mot T = t[0];
  bool som = lu[5] == 86;
  long dispo = 2L * (lu[0] - h - 4);
  if (T < 4 || T > MOTS_MAX || t[2] < 0 || t[3] < 0) return l.faux();
  long nv = som ? static_cast<long>(t[2]) * t[3] : T - 4;
  if (nv > T - 4 || nv > dispo) return l.faux();
  mot* a = bloc_alloue(h + T);
  if (!a) return nullptr;
  std::memcpy(a, lu, sizeof(mot) * (h + 4));
  a[0] = h + T;
  a[h + 1] = som ? BLOC_REEL : BLOC_LISTE;
  const std::uint16_t* v = reinterpret_cast<const std::uint16_t*>(lu + h + 4);
  for (long i = 0; i < T - 4; ++i) {
    mot x = i < nv ? static_cast<std::int16_t>(v[i]) : 0;
    a[h + 4 + i] = som ? reel_mot(static_cast<float>(x)) : x;
  }
  if (!som && !bloc_sain(a + h, T)) {
    bloc_libere_force(a);
    return l.faux();
  }
  return a;
}

mot* lit_attribut(Lecteur& l, int profondeur) {
  mot tete[16];
  if (!l.mots(tete, 3)) return nullptr;
  mot L = tete[0], h = tete[2];
  if (L < 6 || L > MOTS_MAX || h < 6 || h > 16 || h > L || (tete[1] != BLOC_PHRASE && tete[1] != 0 && tete[1] != 1))
    return l.faux();
  if (!l.mots(tete + 3, h - 3)) return nullptr;
  if (tete[3] < 1 || tete[3] > 6 || h != 4 + 2 * tete[3]) return l.faux();
  if (une_paire(tete, 1, B_MEM_TYPE) && L == h + 4) return lit_memoire(l, tete, profondeur);
  if (L - h > l.f.reste_mots()) return l.faux();
  mot* a = bloc_alloue(L);
  if (!a) return nullptr;
  std::memcpy(a, tete, sizeof(mot) * h);
  if (!l.mots(a + h, L - h)) {
    bloc_libere_force(a);
    return nullptr;
  }
  if (L == h) return a;
  const mot* t = a + h;
  if (L - h >= 4 && t[1] == BLOC_COURT && (une_paire(a, 1, 86) || une_paire(a, 1, 15))) {
    mot* d = deplie(l, a);
    bloc_libere_force(a);
    return d;
  }
  if (L - h < 4 || t[0] < 4 || t[0] > L - h || !bloc_sain(t, t[0])) {
    bloc_libere_force(a);
    return l.faux();
  }
  return a;
}
}  // namespace

long long binaire_ecrit(Flux& f, const Objet* o, const OptionsFichier& opt, int) {
  std::vector<const mot*> attrs = attributs_gardes(o, opt, FORME_BINAIRE, false);
  // An object without data is not written at all.
  if (attrs.empty()) return 0;
  Ecrivain e{f, opt};
  std::vector<mot> nom;
  if (o->nom && *o->nom) nom = attribut_nom(o->nom);
  mot tete[8] = {static_cast<mot>(static_cast<std::int16_t>(o->f4)),
                 o->numero,
                 static_cast<mot>(attrs.size() + (nom.empty() ? 0 : 1)),
                 o->f1,
                 o->f2,
                 o->f3,
                 o->type,
                 o->sous_type};
  if (!ecrit_tete(e, tete)) return -1;
  if (!nom.empty() && !e.mots(nom.data(), static_cast<long>(nom.size()))) return -1;
  for (const mot* a : attrs)
    if (!ecrit_attribut(e, a, 0)) return -1;
  return e.ok ? e.octets : -1;
}

int binaire_lit(Flux& f, TableLue& t, int type) {
  Lecteur l{f};
  while (!f.fin()) {
    ObjetLu o{};
    if (!l.mots(o.tete, 8)) break;
    bool bon_type = type == B_SCENE ? type_de_scene(o.tete[6]) : o.tete[6] == type;
    if (!tete_saine(o.tete)) {
      l.corrompu = true;
      break;
    }
    if (!bon_type) {
      std::printf("%s: ", f.chemin.c_str());
      message(0, M_AUTRE_TYPE);
      return -1;
    }
    t.objets.push_back(std::move(o));
    ObjetLu& n = t.objets.back();
    for (mot k = 0; k < n.tete[2]; ++k) {
      mot* a = lit_attribut(l, 0);
      if (!a) break;
      if (une_paire(a, 0, A_NOM) && a[0] > a[2] + 4 && a[a[2] + 1] == BLOC_CHAINE) {
        n.nom = bloc_texte(a + a[2]);
        bloc_libere_force(a);
        continue;
      }
      n.attributs.push_back(a);
    }
    if (l.tronque || l.corrompu) break;
  }
  if (!l.corrompu && !f.propre()) l.tronque = true;
  if (l.tronque || l.corrompu) {
    std::printf("%s: ", f.chemin.c_str());
    message(0, l.corrompu ? M_CORROMPU : M_TRONQUE);
    return -1;
  }
  return 0;
}

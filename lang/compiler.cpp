// The compiler's driver: the work areas of each nesting level, the restart
// with a larger buffer after an overflow, the finished code block, and the
// report of a failure with its context.
#include <cstdio>
#include <memory>

#include "lang/interne.h"

Lang lang;

namespace {
// One set of work areas per nesting level: a declaration's value compiles
// inside the compilation of its function.
std::vector<std::unique_ptr<Espace>> espaces;
int niveau = 0;

Espace& espace(int n) {
  while (static_cast<int>(espaces.size()) <= n) espaces.push_back(std::make_unique<Espace>());
  return *espaces[n];
}

void taille_annoncee(long n) {
  if (niveau_trace() > 1) {
    message(0, M_TAILLE);
    std::printf(": %ld\n", n);
  }
}

void supprime_statiques(int numero) {
  if (!numero) return;
  for (Objet* s = piles.obj_base; s && s < piles.obj_haut; ++s)
    if (s->type == OBJ_STATIQUE && s->sous_type == 0 && s->numero == numero) objet_supprime(s);
}

// The slots of a frame: locals, formals, function-valued formals, statics.
int compte_places(const mot* sym, long haut) {
  int n = 0;
  for (long i = 1; i < haut; i += sym[i])
    if (sym[i + 1] == SYM_LOCAL || sym[i + 1] == SYM_FORMEL_FONC || sym[i + 1] == SYM_STATIQUE) ++n;
  return n;
}

int compile_une_fois(Compil& c) {
  int r = passe1(c);
  if (r == 0) r = passe2(c);
  if (r == 0) r = passe3(c);
  return r;
}
}  // namespace

const char* fonction_texte(const Objet* o, std::size_t* n) {
  const mot* d = o ? o->donnees : nullptr;
  if (!d || d[0] < 5 || (d[1] != BLOC_CHAINE && d[1] != BLOC_LIGNE && d[1] != BLOC_FONCTION)) return nullptr;
  const char* t = reinterpret_cast<const char*>(d + 4);
  *n = strnlen(t, static_cast<std::size_t>(d[0] - 4) * 4);
  return t;
}

int compiler(Objet* o) {
  if (!o) return -1;
  bool fonction = o->type == TYPE_FONCTION;
  std::size_t n = 0;
  const char* src = fonction_texte(o, &n);
  if (!src) {
    char nom[TAILLE_NOM];
    std::printf("%s: ", nom_objet(o, nom, sizeof nom));
    message(0, M_NUL);
    message(0, M_ECHEC);
    if (fonction) lang.statut = -1;
    return -1;
  }
  if (fonction) {
    supprime_statiques(o->numero);
    o->numero = static_cast<int>(++lang.numero_fonction);
  }
  if (niveau >= 16) {  // declarations that compile declarations
    message(0, M_LONG);
    message(0, M_ECHEC);
    return -1;
  }
  Espace& e = espace(niveau);
  ++niveau;

  long taille = lang.taille_code;
  long dix = 10 * static_cast<long>(o->donnees[0]);
  if (dix > taille) {
    taille = lang.taille_code = dix;
    taille_annoncee(taille);
  }
  int r;
  Compil c;
  for (;;) {
    if (taille > TAILLE_MAX_CODE) {
      message(0, M_ESPACE);
      r = -1;
      break;
    }
    if (static_cast<long>(e.code.size()) < taille) e.code.resize(taille, 0);
    // The symbol area takes the size of the global each time; room it had
    // before stays allocated, so growing again costs no copy.
    e.sym.resize(dem.compile > 64 ? dem.compile : 64, 0);
    c = Compil{};
    c.objet = o;
    c.fonction = fonction;
    c.numero = fonction ? o->numero : 0;
    c.niveau = niveau;
    c.espace = &e;
    c.moitie = taille / 2;
    c.A = e.code.data();
    c.B = c.A + c.moitie;
    c.source = src;
    c.source_lg = n;
    e.sym[1] = 0;
    r = compile_une_fois(c);
    if (r != DEBORDE) break;
    // Overflow is no error: all over again, with twice the room.
    taille *= 2;
    lang.taille_code = taille;
    taille_annoncee(taille);
  }
  --niveau;
  if (r < 0) {
    if (lang.liste_passes && c.derniers) {
      std::fputs("BUG\n-------\n", stdout);
      lister_mots(c.derniers);
    }
    echec_contexte(o, c.ligne);
    if (fonction) {
      code_libere(o->code);
      o->code = nullptr;
      lang.statut = -1;
    }
    return -1;
  }
  long l = c.code_lg;
  long m = c.sym_haut + 1;
  mot* bloc = bloc_alloue(static_cast<mot>(l + m));
  if (!bloc) {
    message(0, M_ECHEC);
    if (fonction) lang.statut = -1;
    return -1;
  }
  std::memcpy(bloc, c.A, sizeof(mot) * l);
  bloc[0] = static_cast<mot>(l);
  bloc[2] = compte_places(e.sym.data(), c.sym_haut);
  e.sym[0] = static_cast<mot>(m);
  e.sym[c.sym_haut] = 0;
  std::memcpy(bloc + l, e.sym.data(), sizeof(mot) * m);
  if (fonction) code_libere(o->code);
  else bloc_libere_force(o->code);
  o->code = bloc;
  lang.statut = 0;
  if (fonction) fonctions_modifiees();
  return 1;
}

int compiler_tout() {
  int r = 0;
  for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o)
    if (o->type == TYPE_FONCTION && compiler(o) < 0) r = -1;
  lang.statut = r;
  return r;
}

int compiler_noms(const mot* noms) {
  if (!noms || noms[0] < 0 || noms[1] == BLOC_NIL) return compiler_tout();
  if (noms[1] != BLOC_CHAINE) {
    message(0, M_ARGUMENT);
    return -1;
  }
  const char* p = reinterpret_cast<const char*>(noms + 4);
  const char* fin = p + strnlen(p, static_cast<std::size_t>(noms[0] > 4 ? noms[0] - 4 : 0) * 4);
  int r = 0;
  while (p < fin && *p != '\n') {
    while (p < fin && (*p == ' ' || *p == '\t' || *p == ',')) ++p;
    const char* d = p;
    while (p < fin && *p != ' ' && *p != '\t' && *p != ',' && *p != '\n') ++p;
    if (p == d) continue;
    std::string nom(d, p);
    Objet* f = fonction_trouve(nom.c_str());
    if (!f) {
      std::printf("%s: ", nom.c_str());
      message(0, M_FONCTION);
      r = -1;
    } else if (compiler(f) < 0) {
      r = -1;
    }
  }
  lang.statut = r;
  return r;
}

void echec_contexte(const Objet* o, int ligne) {
  if (ligne > 0) lister_ligne(o, ligne);
  message(0, M_ECHEC);
}

// Saving a type's objects and loading a file of them. A load reads the
// whole file into a side table; only a file read to its end without a
// fault changes the object table, so a bad file loses nothing.
#include <cstdio>
#include <cstring>

#include "interp/interp.h"
#include "persist/interne.h"
#include "startup/startup.h"

namespace {
bool verbeux() { return etat_ou(0, 36, 0) > 1; }

bool choisi(const Objet* o, int type, std::span<const int> numeros) {
  bool bon = type == B_SCENE ? type_de_scene(o->type) && o->env == 1 : o->type == type;
  if (!bon) return false;
  if (numeros.empty()) return true;
  for (int n : numeros)
    if (n == o->numero) return true;
  return false;
}

bool vue_existe() {
  for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o)
    if (o->type == B_VUE) return true;
  return false;
}

std::string chemin_ext(int type, const OptionsFichier& opt) {
  std::string e = extension_type(type, opt.forme);
  return opt.compresse ? e + ".Z" : e;
}

// The objects to save, in table order; a scene or a file of views with no
// view in the table carries the current eye as view 1, an object of no
// table released after the save.
struct Choix {
  std::vector<const Objet*> objets;
  Objet vue{};
  ~Choix() { bloc_supprime(vue.donnees); }
};

void choisit(Choix& c, int type, std::span<const int> numeros) {
  for (Objet* o = piles.obj_base; o && o < piles.obj_haut; ++o)
    if (choisi(o, type, numeros)) c.objets.push_back(o);
  // The working image is the window's picture: saved only when named.
  if (type == B_IMA_TYPE && numeros.empty())
    std::erase_if(c.objets, [](const Objet* o) { return o->numero == 0; });
  if ((type == B_SCENE || type == B_VUE) && !vue_existe() && numeros.empty()) {
    Objet* v = vue_depuis_oeil(1);
    if (v) {
      // Taken out of the table: the save must change nothing there.
      c.vue = *v;
      v->donnees = nullptr;
      objet_supprime(v);
      c.vue.nom = nullptr;
      c.objets.push_back(&c.vue);
    }
  }
}
}  // namespace

TableLue::~TableLue() { vide(); }

void TableLue::vide() {
  for (ObjetLu& o : objets)
    for (mot* a : o.attributs) bloc_supprime(a);
  objets.clear();
}

int objets_ecrit(int type, std::string_view nom, std::span<const int> numeros, const OptionsFichier& opt) {
  std::string chemin;
  int r = ouvre(chemin_ext(type, opt), nom, true, opt.demande, &chemin);
  if (r < 1) return r;
  Choix c;
  choisit(c, type, numeros);
  Flux f;
  if (!f.ouvre_ecriture(chemin, opt.compresse)) return -1;
  long long octets = 0;
  if (opt.forme == FORME_BINAIRE) {
    for (const Objet* o : c.objets) {
      long long n = binaire_ecrit(f, o, opt, type);
      if (n < 0) {
        f.ferme();
        return -1;
      }
      octets += n;
    }
  } else {
    std::string texte;
    if (opt.forme == FORME_ASCII) texte = "/* orvane: " + extension_type(type, FORME_BINAIRE) + " */\n";
    for (const Objet* o : c.objets) {
      int k = type == B_IMA_TYPE ? (opt.forme == FORME_ASCII ? ascii_ecrit_image(texte, o) : exec_ecrit_image(texte, o))
              : opt.forme == FORME_ASCII ? ascii_ecrit(texte, o, opt, type == B_SCENE)
                                         : exec_ecrit(texte, o, opt);
      if (k < 0) return -1;
    }
    if (!f.ecrit(texte.data(), texte.size())) return -1;
    octets = static_cast<long long>(texte.size());
  }
  if (!f.ferme()) return -1;
  if (verbeux()) {
    std::printf("%lld ", octets);
    message(0, M_OCTETS);
  }
  return static_cast<int>(octets > 0x7fffffff ? 0x7fffffff : octets);
}

int objets_lit(int type, std::string_view nom, const OptionsFichier& opt) {
  std::string chemin;
  std::string ext = chemin_ext(type, opt);
  int r = ouvre(ext, nom, false, 2, &chemin);
  if (r < 1) r = ouvre(ext, nom, false, -1, &chemin);
  if (r < 1) return -1;
  return objets_lit_chemin(type, chemin, opt);
}

int objets_lit_chemin(int type, const std::string& chemin, const OptionsFichier& opt) {
  Flux f;
  if (!f.ouvre_lecture(chemin)) return -1;
  TableLue t;
  if (opt.forme == FORME_BINAIRE) {
    if (binaire_lit(f, t, type) < 0) return -1;
  } else {
    std::string texte;
    char tampon[1 << 16];
    int n;
    while ((n = gzread(f.z, tampon, sizeof tampon)) > 0) texte.append(tampon, static_cast<std::size_t>(n));
    bool coupe = n < 0 || !f.propre();
    if (coupe || texte.find('\0') != std::string::npos) {
      std::printf("%s: ", chemin.c_str());
      message(0, coupe ? M_TRONQUE : M_CORROMPU);
      return -1;
    }
    f.ferme();
    if (opt.forme == FORME_EXEC) {
      // The program rebuilds its objects itself; the type's objects go first
      // as with the other forms.
      if (opt.remplace && type != B_IMA_TYPE) {
        if (type == B_SCENE)
          for (int ty : {24, 4, 114}) objet_supprime_type(1, ty);
        else
          objet_supprime_type(1, type);
      }
      return executer_texte(texte.c_str()) < 0 ? -1 : 0;
    }
    if (ascii_lit(texte, t, type) < 0) return -1;
  }
  if (verbeux()) {
    std::printf("%lld ", f.lus);
    message(0, M_OCTETS);
  }
  return table_engage(t, type, opt);
}

int table_engage(TableLue& t, int type, const OptionsFichier& opt) {
  if (type == B_IMA_TYPE) return images_engage(t, opt);
  // Every check first: nothing changes unless all of the file can go in.
  for (ObjetLu& o : t.objets) {
    long long n = static_cast<long long>(o.tete[1]) + opt.decalage;
    if (n < -NUMERO_MAX || n > NUMERO_MAX) {
      std::printf("%lld: ", n);
      message(0, MES_VALEUR);
      return -1;
    }
    o.tete[1] = static_cast<mot>(n);
    if (opt.seul) {
      Objet* x = nullptr;
      for (Objet* p = piles.obj_base; p && p < piles.obj_haut && !x; ++p)
        if (p->type == o.tete[6] && p->numero == o.tete[1]) x = p;
      if (!x) {
        std::printf(" %s", o.nom.empty() ? std::to_string(o.tete[1]).c_str() : o.nom.c_str());
        message(0, MES_ABSENT);
        return -1;
      }
    }
  }
  if (opt.seul) {
    // Only the vertices change, in place in each object's list.
    for (ObjetLu& o : t.objets) {
      Objet* x = nullptr;
      for (Objet* p = piles.obj_base; p && p < piles.obj_haut && !x; ++p)
        if (p->type == o.tete[6] && p->numero == o.tete[1]) x = p;
      for (mot*& a : o.attributs) {
        if (!(a[3] == 1 && a[4] == 1 && a[5] == 86)) continue;
        int pos = 0;
        if (attribut_trouve_pos_1(x, &pos, 1, 86) && pos > 0) {
          bloc_supprime(bloc_pointe(x->donnees[pos]));
          x->donnees[pos] = ptr_vers_mot(a);
          attributs_bougent();
        } else if (liste_ajoute(x, a) < 0) {
          return -1;
        }
        a = nullptr;
      }
    }
    int n = static_cast<int>(t.objets.size());
    for (ObjetLu& o : t.objets)
      for (mot* a : o.attributs) bloc_supprime(a);
    t.objets.clear();
    return n;
  }
  // Room in the table for all of them, counting what the load deletes:
  // a table that fills half way would leave the load half made.
  long libres = piles.obj_fin - piles.obj_haut;
  for (Objet* p = piles.obj_base; p && p < piles.obj_haut; ++p) {
    bool remplace = opt.remplace && p->env == 1 && (type == B_SCENE ? type_de_scene(p->type) : p->type == type);
    if (p->type == 0 || remplace) ++libres;
  }
  if (libres < static_cast<long>(t.objets.size())) {
    message(0, MES_TABLE_PLEINE);
    return -1;
  }
  if (opt.remplace) {
    if (type == B_SCENE)
      for (int ty : {24, 4, 114}) objet_supprime_type(1, ty);
    else
      objet_supprime_type(1, type);
  }
  int n = 0;
  for (ObjetLu& o : t.objets) {
    for (Objet* p = piles.obj_base; p && p < piles.obj_haut; ++p)
      if (p->type == o.tete[6] && p->numero == o.tete[1]) objet_supprime(p);
    Objet* x = objet_cree(1, o.tete[6], o.tete[7], nullptr, o.nom.empty() ? nullptr : o.nom.c_str(), o.tete[1]);
    if (!x) return -1;
    x->f4 = static_cast<std::uint16_t>(o.tete[0]);
    x->f1 = static_cast<std::uint16_t>(o.tete[3]);
    x->f2 = static_cast<std::uint16_t>(o.tete[4]);
    x->f3 = static_cast<std::uint16_t>(o.tete[5]);
    if (!o.attributs.empty()) {
      mot* l = liste_cree(x, static_cast<int>(o.attributs.size()));
      if (!l) return -1;
      for (std::size_t k = 0; k < o.attributs.size(); ++k) {
        l[4 + k] = ptr_vers_mot(o.attributs[k]);
        o.attributs[k] = nullptr;
      }
    }
    if (x->type == B_VUE) vue_vers_oeil(x);
    ++n;
  }
  return n;
}

// Images in the object files' text forms. An image object holds its image
// block itself, not a list of attributes, so the ASCII form writes it as
// one attribute of key (1, 28) whose tail is the whole block, and reads it
// back the same way; the exec form paints it again with the images' own
// phrases: the size and the colour of its first pixel, then the pixels
// that differ, a row's worth of them at most per line. Binary files of
// images (.ima) stay with the images' folder.
//
// A load of images replaces only the images that the file names: the
// working image 0 and the others stay.
#include <cstdio>
#include <cstring>

#include "image/image.h"
#include "persist/interne.h"
#include "startup/startup.h"

namespace {
constexpr int B_DIM_IMA = 66, B_COUL = 17, A_CENTRE = 42;
constexpr int PIXELS_LIGNE = 32;
constexpr int TETE_ATTR = 6;

// The image's block, or null when the object holds none that is whole.
const mot* bloc_de(const Objet* o) { return ima_valide(o->donnees) ? o->donnees : nullptr; }
}  // namespace

int ascii_ecrit_image(std::string& d, const Objet* o) {
  const mot* b = bloc_de(o);
  if (!b) return 0;
  long n = TETE_ATTR + static_cast<long>(b[0]);
  if (n > MOTS_ASCII) {
    // The work Bloc of an attribute holds 20000 words: the image stays out.
    objet_imprime(o);
    message(0, MES_DEBORDEMENT);
    return 0;
  }
  std::vector<mot> a(static_cast<std::size_t>(n));
  a[0] = static_cast<mot>(n), a[1] = BLOC_PHRASE, a[2] = TETE_ATTR, a[3] = 1, a[4] = 1, a[5] = B_IMA_TYPE;
  std::memcpy(a.data() + TETE_ATTR, b, sizeof(mot) * static_cast<std::size_t>(b[0]));
  return ascii_ecrit_attributs(d, o, {a.data()});
}

int exec_ecrit_image(std::string& d, const Objet* o) {
  const mot* b = bloc_de(o);
  const char* ima = mot_nom(1, B_IMA_TYPE);
  const char* dim = mot_nom(1, B_DIM_IMA);
  const char* coul = mot_nom(1, B_COUL);
  const char* centre = mot_nom(0, A_CENTRE);
  if (!ima || !dim || !coul || !centre) {
    objet_imprime(o);
    message(0, MES_SANS_TABLE);
    return -1;
  }
  if (!b) return 0;
  int w = ima_l(b), h = ima_h(b);
  char t[128];
  std::snprintf(t, sizeof t, "%s(%d)", ima, o->numero);
  std::string tete = t;
  const octet* p0 = ima_rouge(b, 0);
  int fond[3] = {p0[0], p0[w], p0[2 * w]};
  std::snprintf(t, sizeof t, " %s(%d, %d) %s(%d, %d, %d)\n", dim, w, h, coul, fond[0], fond[1], fond[2]);
  d += tete + t;
  int dans_ligne = 0;
  for (int y = 0; y < h; ++y) {
    const octet* r = ima_rouge(b, y);
    for (int x = 0; x < w; ++x) {
      int c[3] = {r[x], r[x + w], r[x + 2 * w]};
      if (c[0] == fond[0] && c[1] == fond[1] && c[2] == fond[2]) continue;
      if (dans_ligne == 0) d += tete + " " + centre + "(";
      else d += ", ";
      std::snprintf(t, sizeof t, "%d, %d, %d, %d, %d", x, y, c[0], c[1], c[2]);
      d += t;
      if (++dans_ligne == PIXELS_LIGNE) {
        d += ")\n";
        dans_ligne = 0;
      }
    }
  }
  if (dans_ligne) d += ")\n";
  return 0;
}

int images_engage(TableLue& t, const OptionsFichier& opt) {
  // Every image checked and copied first: the table changes only when the
  // whole file can go in.
  std::vector<mot*> blocs;
  std::vector<int> numeros;
  auto libere = [&] {
    for (mot* b : blocs) bloc_libere_force(b);
  };
  for (ObjetLu& o : t.objets) {
    long long n = static_cast<long long>(o.tete[1]) + opt.decalage;
    if (n < -NUMERO_MAX || n > NUMERO_MAX) {
      std::printf("%lld: ", n);
      message(0, MES_VALEUR);
      libere();
      return -1;
    }
    const mot* a = o.attributs.size() == 1 ? o.attributs[0] : nullptr;
    const mot* q = a && a[3] == 1 && a[4] == 1 && a[5] == B_IMA_TYPE && a[0] > a[2] ? a + a[2] : nullptr;
    if (!q || q[0] != a[0] - a[2] || !ima_valide(q)) {
      std::printf("%lld: ", n);
      message(0, M_CORROMPU);
      libere();
      return -1;
    }
    mot* b = bloc_alloue(q[0]);
    if (!b) {
      libere();
      return -1;
    }
    std::memcpy(b, q, sizeof(mot) * static_cast<std::size_t>(q[0]));
    blocs.push_back(b);
    numeros.push_back(static_cast<int>(n));
  }
  // Room for the images that do not exist yet.
  long nouvelles = 0;
  for (std::size_t k = 0; k < numeros.size(); ++k) {
    bool vu = ima_objet(numeros[k]) != nullptr;
    for (std::size_t j = 0; j < k && !vu; ++j) vu = numeros[j] == numeros[k];
    nouvelles += !vu;
  }
  long libres = piles.obj_fin - piles.obj_haut;
  for (Objet* p = piles.obj_base; p && p < piles.obj_haut; ++p) libres += p->type == 0;
  if (libres < nouvelles) {
    message(0, MES_TABLE_PLEINE);
    libere();
    return -1;
  }
  for (std::size_t k = 0; k < blocs.size(); ++k) {
    if (ima_installe(numeros[k], blocs[k]) < 0) {
      // ima_installe released this one.
      for (std::size_t j = k + 1; j < blocs.size(); ++j) bloc_libere_force(blocs[j]);
      return -1;
    }
    if (numeros[k] == 0 && ima_fenetre.apres_ecriture) ima_fenetre.apres_ecriture();
  }
  return static_cast<int>(blocs.size());
}

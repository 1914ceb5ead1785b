// The `ima` command: `ima` source `ima` destination, each side an image
// number (0 the window) and a rectangle:
//   ima(1)                     image 1 onto the whole window
//   ima(0,0,99,99) ima(2)      a corner of the window into image 2 (made anew)
//   ima(1) ima(2) dim(64,48)   image 1 rescaled into a new image 2 of 64 x 48
//   ima(0,0,9,9,1) ima(20,20,59,59)   a rectangle of image 1 enlarged onto the window
//   ima(2) dim(320,200) coul(255,0,0)  a new image 2, all red
//   ima(2) lim(10,20)          the colour of pixel (10, 20): r g b, 0 to 255
//   ima(2) centre(10,20, 255,255,0)    pixel (10, 20) made yellow
//   ima(5) planche("vue.raw", 1, 16)   a contact sheet of vue0001.raw on
//   ima(1) vol(2)              the pixels' colours onto volume 2's vertices
//   ima(1) scal("grande.png")  where image 1 fits best in the file's picture
// A destination image other than the window is always made anew, of the
// destination size; the window keeps its size and takes the copy in its
// rectangle.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "core/message.h"
#include "image/commande.h"
#include "interp/interp.h"
#include "startup/startup.h"

int lit_cote(const mot* e, Cote* c) {
  Args a;
  if (!lit_args(e, &a) || !a.nom.empty()) return arg_mauvais(e);
  std::vector<int> v;
  for (float x : a.x) v.push_back(ima_entier(x));
  switch (v.size()) {
    case 0: return 0;
    case 1: c->numero = v[0]; return 0;
    case 2: c->rect = true; c->r = Rect{0, 0, v[0] - 1, v[1] - 1}; return 0;
    case 4: c->rect = true; c->r = Rect{v[0], v[1], v[2], v[3]}; return 0;
    case 5:
      c->rect = true;
      c->r = Rect{v[0], v[1], v[2], v[3]};
      c->numero = v[4];
      return 0;
  }
  std::printf("%zu: ", v.size());
  message(1, MES_IMA_RECT);
  return -1;
}

namespace {
struct Phrase {
  Cote source, dest;
  int nb_ima = 0;
  mot* dim = nullptr;
  mot* coul = nullptr;
  mot* lit = nullptr;
  mot* ecrit = nullptr;
  mot* planche = nullptr;
  mot* vol = nullptr;
  mot* cherche = nullptr;
  mot* autre = nullptr;  // an element with no meaning here
};

int lit_phrase(mot* bloc, Phrase* p) {
  mot* e = bloc + 4;
  for (mot k = 0; k < bloc[2]; ++k, e += e[0]) {
    if (e[1] == 1 && e[2] == BLOC_IMAGE) {
      if (p->nb_ima < 2 && lit_cote(e, p->nb_ima == 0 ? &p->source : &p->dest) < 0) return -1;
      ++p->nb_ima;
    } else if (e[1] == 1 && e[2] == B_DIM) {
      p->dim = e;
    } else if (e[1] == 1 && e[2] == B_COUL_IMA) {
      p->coul = e;
    } else if (e[1] == 0 && e[2] == A_PIXEL_LIT) {
      p->lit = e;
    } else if (e[1] == 0 && e[2] == A_PIXEL_ECRIT) {
      p->ecrit = e;
    } else if (e[1] == 0 && e[2] == A_PLANCHE) {
      p->planche = e;
    } else if (e[1] == 1 && e[2] == B_VOL_IMA) {
      p->vol = e;
    } else if (e[1] == 0 && e[2] == A_CHERCHE_IMA) {
      p->cherche = e;
    } else if (!p->autre) {
      p->autre = e;
    }
  }
  return 0;
}

// The image a side names, with message 0:9 after its number when missing.
mot* image_de(int n) {
  mot* b = ima_bloc(n);
  if (!b) {
    std::printf("%d: ", n);
    message(0, MES_IMA_ABSENT);
  }
  return b;
}

// The size given by dim: its argument, or its current value (767, 575).
int lit_dim(const mot* e, int* w, int* h) {
  Args a;
  if (!lit_args(e, &a) || !a.nom.empty()) return arg_mauvais(e);
  if (a.x.size() < 2) {
    int n = 0;
    reel* v = mot_valeur(1, B_DIM, &n);
    a.x.assign({767.f, 575.f});
    if (v && n >= 2) a.x.assign(v, v + 2);
  }
  *w = ima_entier(a.x[0]);
  *h = ima_entier(a.x[1]);
  if (!ima_taille_ok(*w, *h)) {
    std::printf("%d x %d: ", *w, *h);
    message(1, MES_IMA_TAILLE);
    return -1;
  }
  return 0;
}

// A pixel coordinate pair, with message 1:125 when outside.
bool pixel_dans(const mot* b, float fx, float fy, int* x, int* y) {
  *x = ima_entier(fx);
  *y = ima_entier(fy);
  if (*x >= 0 && *y >= 0 && *x < ima_l(b) && *y < ima_h(b)) return true;
  std::printf("(%d, %d): ", *x, *y);
  message(1, MES_IMA_PIXEL);
  return false;
}

octet octet_de(float v) { return static_cast<octet>(v == v ? std::clamp(v, 0.0f, 255.0f) : 0.0f); }

// lim(x, y, ...): the r g b of each pixel named. With a value assigned,
// the pixels named take it instead.
int pixels_lit(mot* bloc, const mot* limite, const Phrase& p, mot* valeur) {
  Args a;
  if (!lit_args(p.lit, &a) || !a.nom.empty() || a.x.size() < 2 || a.x.size() % 2) return arg_mauvais(p.lit);
  if (p.source.numero == 0 && ima_fenetre.avant_lecture) ima_fenetre.avant_lecture();
  mot* b = image_de(p.source.numero);
  if (!b) return -1;
  if (valeur) {
    Args c;
    if (!lit_valeur(valeur, &c) || c.x.size() < 3) return arg_mauvais(p.lit);
    for (std::size_t k = 0; k + 1 < a.x.size(); k += 2) {
      int x, y;
      if (!pixel_dans(b, a.x[k], a.x[k + 1], &x, &y)) return -1;
      octet* r = ima_rouge(b, y) + x;
      r[0] = octet_de(c.x[0]);
      r[ima_l(b)] = octet_de(c.x[1]);
      r[2L * ima_l(b)] = octet_de(c.x[2]);
    }
    if (p.source.numero == 0 && ima_fenetre.apres_ecriture) ima_fenetre.apres_ecriture();
    std::memmove(bloc, valeur, sizeof(mot) * (valeur[0] > 0 ? valeur[0] : 2));
    return 0;
  }
  std::vector<float> v;
  for (std::size_t k = 0; k + 1 < a.x.size(); k += 2) {
    int x, y;
    if (!pixel_dans(b, a.x[k], a.x[k + 1], &x, &y)) return -1;
    const octet* r = ima_rouge(b, y) + x;
    v.insert(v.end(), {float(r[0]), float(r[ima_l(b)]), float(r[2L * ima_l(b)])});
  }
  return resultat_vecteur(bloc, limite, v);
}

// centre(x, y, r, g, b, ...): pixels written, five values each.
int pixels_ecrit(mot* bloc, const Phrase& p) {
  Args a;
  if (!lit_args(p.ecrit, &a) || !a.nom.empty() || a.x.empty() || a.x.size() % 5) return arg_mauvais(p.ecrit);
  if (p.source.numero == 0 && ima_fenetre.avant_lecture) ima_fenetre.avant_lecture();
  mot* b = image_de(p.source.numero);
  if (!b) return -1;
  for (std::size_t k = 0; k < a.x.size(); k += 5) {
    int x, y;
    if (!pixel_dans(b, a.x[k], a.x[k + 1], &x, &y)) return -1;
    octet* r = ima_rouge(b, y) + x;
    r[0] = octet_de(a.x[k + 2]);
    r[ima_l(b)] = octet_de(a.x[k + 3]);
    r[2L * ima_l(b)] = octet_de(a.x[k + 4]);
  }
  if (p.source.numero == 0 && ima_fenetre.apres_ecriture) ima_fenetre.apres_ecriture();
  bloc[0] = 0;
  return 0;
}

// coul(r, g, b): the image (or its rectangle) painted; with dim, or when
// the image does not exist, it is made first.
int remplit(mot* bloc, const Phrase& p) {
  Args a;
  if (!lit_args(p.coul, &a) || !a.nom.empty() || a.x.size() < 3) return arg_mauvais(p.coul);
  int n = p.source.numero;
  mot* b = nullptr;
  if (p.dim || (n != 0 && !ima_bloc(n))) {
    int w = ecran.largeur > 0 ? ecran.largeur : ecran.video_l, h = ecran.hauteur > 0 ? ecran.hauteur : ecran.video_h;
    if (p.dim && lit_dim(p.dim, &w, &h) < 0) return -1;
    b = n == 0 ? (ima_ecran_retaille(w, h) < 0 ? nullptr : ima_ecran()) : ima_alloue(w, h);
    if (!b) return -1;
    if (n != 0 && ima_installe(n, b) < 0) return -1;
  } else {
    if (n == 0 && p.source.rect && ima_fenetre.avant_lecture) ima_fenetre.avant_lecture();
    b = image_de(n);
    if (!b) return -1;
  }
  Rect r{0, 0, ima_l(b) - 1, ima_h(b) - 1};
  if (p.source.rect) {
    r = p.source.r;
    if (!rect_coupe(&r, ima_l(b), ima_h(b))) {
      message(1, MES_IMA_RECT);
      return -1;
    }
  }
  octet c[3] = {octet_de(a.x[0]), octet_de(a.x[1]), octet_de(a.x[2])};
  for (int y = r.y1; y <= r.y2; ++y)
    for (int k = 0; k < 3; ++k) std::memset(ima_rouge(b, y) + static_cast<long>(k) * ima_l(b) + r.x1, c[k], r.l());
  if (n == 0 && ima_fenetre.apres_ecriture) ima_fenetre.apres_ecriture();
  bloc[0] = 0;
  return 0;
}

int copie(mot* bloc, const Phrase& p) {
  const Cote& s = p.source;
  if (s.numero == 0 && ima_fenetre.avant_lecture) ima_fenetre.avant_lecture();
  mot* src = image_de(s.numero);
  if (!src) return -1;
  Rect rs{0, 0, ima_l(src) - 1, ima_h(src) - 1};
  if (s.rect) {
    rs = s.r;
    if (!rect_coupe(&rs, ima_l(src), ima_h(src))) {
      std::printf("%d: ", s.numero);
      message(1, MES_IMA_RECT);
      return -1;
    }
  }
  Cote d = p.dest;
  int dw = rs.l(), dh = rs.h();
  if (p.dim && lit_dim(p.dim, &dw, &dh) < 0) return -1;
  Rect rd{0, 0, dw - 1, dh - 1};
  if (d.rect) rd = d.r;
  else if (d.numero == 0 && !p.dim) rd = Rect{0, 0, 1 << 30, 1 << 30};  // the whole window
  mot* dst;
  if (d.numero == 0) {
    // What lies outside the rectangle stays as the window shows it.
    if (s.numero != 0 && ima_fenetre.avant_lecture) ima_fenetre.avant_lecture();
    dst = ima_ecran();
    if (!dst) return -1;
    if (!rect_coupe(&rd, ima_l(dst), ima_h(dst))) {
      message(1, MES_IMA_RECT);
      return -1;
    }
  } else {
    // A new image of the destination size; it replaces the old one only
    // once the copy is done, so a failure leaves it as it was.
    if (rd.x1 > rd.x2) std::swap(rd.x1, rd.x2);
    if (rd.y1 > rd.y2) std::swap(rd.y1, rd.y2);
    long w = static_cast<long>(rd.x2) - rd.x1 + 1, h = static_cast<long>(rd.y2) - rd.y1 + 1;
    dst = ima_alloue_nu(w, h);  // the copy fills it whole
    if (!dst) return -1;
    rd = Rect{0, 0, static_cast<int>(w) - 1, static_cast<int>(h) - 1};
  }
  if (ima_copie(src, rs, dst, rd) < 0) {
    if (d.numero != 0) bloc_libere_force(dst);
    return -1;
  }
  if (d.numero != 0 && ima_installe(d.numero, dst) < 0) return -1;
  if (d.numero == 0 && ima_fenetre.apres_ecriture) ima_fenetre.apres_ecriture();
  bloc[0] = 0;
  return 0;
}
}  // namespace

int ima_commande(mot* bloc, mot* valeur, const mot* limite) {
  Phrase p;
  if (lit_phrase(bloc, &p) < 0) return -1;
  if (p.lit) return pixels_lit(bloc, limite, p, valeur);
  if (p.ecrit) return pixels_ecrit(bloc, p);
  if (p.coul) return remplit(bloc, p);
  if (p.planche) {
    Args a;
    if (!lit_args(p.planche, &a) || a.nom.empty()) return arg_mauvais(p.planche);
    int cw = 0, ch = 0;
    if (p.dim && lit_dim(p.dim, &cw, &ch) < 0) return -1;
    int r = ima_planche(a, p.source.numero, cw, ch);
    if (r >= 0) bloc[0] = 0;
    return r;
  }
  if (p.vol) {
    Args a;
    if (!lit_args(p.vol, &a) || !a.nom.empty() || a.x.empty()) return arg_mauvais(p.vol);
    int r = ima_projette(p.source.numero, a);
    if (r >= 0) bloc[0] = 0;
    return r;
  }
  if (p.cherche) {
    Args a;
    if (!lit_args(p.cherche, &a) || a.nom.empty()) return arg_mauvais(p.cherche);
    return ima_cherche(bloc, limite, p.source.numero, a.nom);
  }
  if (p.autre) {
    // Any other keyword of the phrase: not an image command of this system.
    const char* nom = mot_nom(p.autre[1], p.autre[2]);
    std::printf("%s: non implemente", nom ? nom : "?");
    cloche();
    bloc[0] = 0;
    return 0;
  }
  return copie(bloc, p);
}

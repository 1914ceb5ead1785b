// The frame's OpenGL drawing of the runtime records. The picture is the one
// that polygons given one at a time would make: each face is a fan from its
// first corner, as GL splits a polygon, sent from buffers made once. Smooth
// shading with one normal and one colour per vertex shares the vertices;
// flat shading, face colours and textures need one entry per corner.
#define GL_GLEXT_PROTOTYPES 1
#include <algorithm>
#include <cmath>

#include "display/aff_rt.h"
#include "display/moteurs.h"
#include "geom/geom.h"

const std::vector<Vol_rt*>& rt_a_dessiner();

namespace {
constexpr int B_ILLUM_ = 23, B_TEX = 54, B_LIGNES = 79;
constexpr float ILLUM_DEFAUT[5] = {1, 1, 0, 0, 0};
constexpr float BLANC[3] = {1, 1, 1};

bool drapeau(int ord) { return etat_ou(1, ord, 0) > 0; }

void envoie(Tampon_gl& t, GLenum cible, const void* p, std::size_t octets) {
  glBindBuffer(cible, t.pret());
  glBufferData(cible, static_cast<GLsizeiptr>(octets), p, GL_STATIC_DRAW);
}

template <class T>
void envoie(Tampon_gl& t, GLenum cible, const std::vector<T>& v) {
  envoie(t, cible, v.data(), v.size() * sizeof(T));
}

// Vertices and vertex normals into their buffers, after a change; the
// index buffers go once.
void vertices_envoie(Vol_rt* r) {
  Vol_rt_gl& g = *r->gl;
  if (g.modifie) rt_normales(r);
  if (g.som_envoye) return;
  const std::size_t n = static_cast<std::size_t>(r->ns) * r->dim * sizeof(float);
  glBindBuffer(GL_ARRAY_BUFFER, g.b_som.pret());
  glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(n), r->som, GL_DYNAMIC_DRAW);
  envoie(g.b_nor, GL_ARRAY_BUFFER, g.n_som);
  if (!g.b_tri.id) {
    envoie(g.b_tri, GL_ELEMENT_ARRAY_BUFFER, g.tri);
    envoie(g.b_tri_c, GL_ELEMENT_ARRAY_BUFFER, g.tri_c);
    envoie(g.b_lig, GL_ELEMENT_ARRAY_BUFFER, g.lig);
  }
  g.som_envoye = true;
}

void positions(Vol_rt* r) {
  glBindBuffer(GL_ARRAY_BUFFER, r->gl->b_som.id);
  glVertexPointer(3, GL_FLOAT, r->dim * static_cast<GLsizei>(sizeof(float)), nullptr);
  glEnableClientState(GL_VERTEX_ARRAY);
}

void fin_tableaux() {
  glDisableClientState(GL_VERTEX_ARRAY);
  glDisableClientState(GL_NORMAL_ARRAY);
  glDisableClientState(GL_COLOR_ARRAY);
  glDisableClientState(GL_TEXTURE_COORD_ARRAY);
  glBindBuffer(GL_ARRAY_BUFFER, 0);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void euler(const Vol_rt* r, bool inverse) {
  int o = r->ordre, chiffres[3] = {o / 100, o / 10 % 10, o % 10};
  for (int q = 0; q < 3; ++q) {
    int c = chiffres[inverse ? 2 - q : q];
    if (c < 1 || c > 3) return;  // an order that is none rotates nothing
  }
  for (int q = 0; q < 3; ++q) {
    int c = chiffres[inverse ? 2 - q : q] - 1;
    float a = inverse ? -r->rot[c] : r->rot[c];
    glRotatef(a, c == 0, c == 1, c == 2);
  }
}

const float* sommet(const Vol_rt* r, int k) { return r->som + static_cast<long>(k - 1) * r->dim; }

void place(Vol_rt* r) {
  if (r->porte) {
    glTranslatef(r->pivot[0] + r->ancre[0], r->pivot[1] + r->ancre[1], r->pivot[2] + r->ancre[2]);
  } else if (r->lead && r->lead_som >= 1 && r->lead_som <= r->lead->ns) {
    const float* p = sommet(r->lead, r->lead_som);
    glTranslatef(p[0], p[1], p[2]);
  } else {
    glTranslatef(r->pivot[0], r->pivot[1], r->pivot[2]);
  }
  euler(r, false);
  glScalef(r->echelle[0], r->echelle[1], r->echelle[2]);
  glRotatef(r->rotation[0], r->rotation[1], r->rotation[2], r->rotation[3]);
  if (r->porte) glTranslatef(-r->pivot[0], -r->pivot[1], -r->pivot[2]);
  if (r->garde_matrice) glGetFloatv(GL_MODELVIEW_MATRIX, r->matrice);
}

// The reverse of place for a volume carried at a leader's vertex.
void deplace(Vol_rt* r) {
  glRotatef(-r->rotation[0], r->rotation[1], r->rotation[2], r->rotation[3]);
  const float* e = r->echelle;
  if (e[0] != 0 && e[1] != 0 && e[2] != 0) glScalef(1 / e[0], 1 / e[1], 1 / e[2]);
  euler(r, true);
  if (r->lead_som >= 1 && r->lead_som <= r->lead->ns) {
    const float* p = sommet(r->lead, r->lead_som);
    glTranslatef(-p[0], -p[1], -p[2]);
  }
}

// One entry per corner: position, normal (the face's for flat shading, the
// vertex's for smooth), then the colour and texture coordinates it needs.
int coins_prepare(Vol_rt* r, int t, const float* coul, const float* il, float alpha, bool texture) {
  Vol_rt_gl& g = *r->gl;
  bool couleur = !g.c_fac.empty() || !g.c_som.empty();
  int pas = 6 + (couleur ? 4 : 0) + (texture ? 2 : 0);
  const float cle[5] = {coul[0], coul[1], coul[2], il[1], alpha};
  if (g.eclate_pret && g.eclate_type == t && std::equal(cle, cle + 5, g.eclate_cle) &&
      g.eclate.size() == g.coins.size() * pas)
    return pas;
  g.eclate.resize(g.coins.size() * pas);
  float* e = g.eclate.data();
  for (int i = 0; i < r->nf; ++i) {
    const float* nf = &g.n_fac[3 * static_cast<std::size_t>(i)];
    const float* cf = nullptr;
    float cfk[3];
    if (!g.c_fac.empty()) {
      const float* c = &g.c_fac[3 * static_cast<std::size_t>(i)];
      const float* b = std::isnan(c[0]) ? coul : c;
      cfk[0] = il[1] * b[0], cfk[1] = il[1] * b[1], cfk[2] = il[1] * b[2];
      cf = cfk;
    }
    for (std::uint32_t j = g.fac_deb[i]; j < g.fac_deb[i + 1]; ++j, e += pas) {
      std::uint32_t v = g.coins[j];
      const float* p = r->som + static_cast<std::size_t>(v) * r->dim;
      const float* n = t >= 2 ? &g.n_som[3 * static_cast<std::size_t>(v)] : nf;
      e[0] = p[0], e[1] = p[1], e[2] = p[2], e[3] = n[0], e[4] = n[1], e[5] = n[2];
      float* q = e + 6;
      if (couleur) {
        // Vertex colours win over face colours, as with glColor before
        // each vertex under the face's material.
        const float* c = !g.c_som.empty() ? &g.c_som[3 * static_cast<std::size_t>(v)] : cf;
        q[0] = c[0], q[1] = c[1], q[2] = c[2], q[3] = alpha;
        q += 4;
      }
      if (texture) {
        q[0] = g.mappe[2 * static_cast<std::size_t>(j)];
        q[1] = g.mappe[2 * static_cast<std::size_t>(j) + 1];
      }
    }
  }
  envoie(g.b_ecl, GL_ARRAY_BUFFER, g.eclate);
  g.eclate_pret = true;
  g.eclate_type = t;
  std::copy(cle, cle + 5, g.eclate_cle);
  return pas;
}

void faces(Vol_rt* r, int t, const float* coul, const float* il) {
  Vol_rt_gl& g = *r->gl;
  if (g.tri.empty()) return;
  const GLenum cote = t < 1 ? GL_FRONT_AND_BACK : GL_FRONT;
  float alpha = gl_matiere(t, coul, il);
  int at = t < 0 ? -t : t;
  bool texture = drapeau(B_TEX) && !g.mappe.empty() && !g.tex_fac.empty() && r->tex >= 0;
  if (at >= 2 && g.c_fac.empty() && !texture) {
    positions(r);
    glBindBuffer(GL_ARRAY_BUFFER, g.b_nor.id);
    glNormalPointer(GL_FLOAT, 0, nullptr);
    glEnableClientState(GL_NORMAL_ARRAY);
    if (!g.c_som.empty()) {
      if (g.c_som_alpha != alpha || g.c_som4.empty()) {
        g.c_som4.resize(static_cast<std::size_t>(r->ns) * 4);
        for (int v = 0; v < r->ns; ++v) {
          std::copy(&g.c_som[3 * static_cast<std::size_t>(v)], &g.c_som[3 * static_cast<std::size_t>(v)] + 3,
                    &g.c_som4[4 * static_cast<std::size_t>(v)]);
          g.c_som4[4 * static_cast<std::size_t>(v) + 3] = alpha;
        }
        envoie(g.b_col, GL_ARRAY_BUFFER, g.c_som4);
        g.c_som_alpha = alpha;
      }
      glBindBuffer(GL_ARRAY_BUFFER, g.b_col.id);
      glColorPointer(4, GL_FLOAT, 0, nullptr);
      glEnableClientState(GL_COLOR_ARRAY);
      glColorMaterial(cote, GL_DIFFUSE);
      glEnable(GL_COLOR_MATERIAL);
    }
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, g.b_tri.id);
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(g.tri.size()), GL_UNSIGNED_INT, nullptr);
  } else {
    int pas = coins_prepare(r, at, coul, il, alpha, texture);
    const GLsizei o = pas * static_cast<GLsizei>(sizeof(float));
    glBindBuffer(GL_ARRAY_BUFFER, g.b_ecl.id);
    glVertexPointer(3, GL_FLOAT, o, nullptr);
    glNormalPointer(GL_FLOAT, o, reinterpret_cast<void*>(3 * sizeof(float)));
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    bool couleur = !g.c_fac.empty() || !g.c_som.empty();
    if (couleur) {
      glColorPointer(4, GL_FLOAT, o, reinterpret_cast<void*>(6 * sizeof(float)));
      glEnableClientState(GL_COLOR_ARRAY);
      glColorMaterial(cote, GL_DIFFUSE);
      glEnable(GL_COLOR_MATERIAL);
    }
    if (texture) {
      glTexCoordPointer(2, GL_FLOAT, o, reinterpret_cast<void*>((couleur ? 10 : 6) * sizeof(float)));
      glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, g.b_tri_c.id);
    if (!texture) {
      glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(g.tri_c.size()), GL_UNSIGNED_INT, nullptr);
    } else {
      // Runs of faces of one texture, each bound once; a face with none
      // is drawn plain.
      const int nf = static_cast<int>(std::min(g.tex_fac.size() + 1, g.tri_deb.size()) - 1);
      for (int i = 0; i < nf;) {
        int j = i + 1;
        while (j < nf && g.tex_fac[j] == g.tex_fac[i]) ++j;
        if (g.tex_fac[i] >= 0) {
          glEnable(GL_TEXTURE_2D);
          glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(g.tex_fac[i]));
        } else {
          glDisable(GL_TEXTURE_2D);
        }
        glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(g.tri_deb[j] - g.tri_deb[i]), GL_UNSIGNED_INT,
                       reinterpret_cast<void*>(sizeof(std::uint32_t) * g.tri_deb[i]));
        i = j;
      }
      glDisable(GL_TEXTURE_2D);
    }
  }
  glDisable(GL_COLOR_MATERIAL);
  fin_tableaux();
}

void aretes(Vol_rt* r, const float* coul, const float* il) {
  Vol_rt_gl& g = *r->gl;
  gl_matiere(0, coul, il);
  if (g.lig.empty()) return;
  positions(r);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, g.b_lig.id);
  glDrawElements(GL_LINES, static_cast<GLsizei>(g.lig.size()), GL_UNSIGNED_INT, nullptr);
  fin_tableaux();
}

void nuage(Vol_rt* r, int profondeur);
int dessine(Vol_rt* r, int profondeur);

void surface(Vol_rt* r, int t) {
  Vol_rt_gl& g = *r->gl;
  if (!g.nurbs) {
    g.nurbs = gluNewNurbsRenderer();
    if (!g.nurbs) return;
  }
  gluNurbsProperty(g.nurbs, GLU_DISPLAY_MODE, t != 0 ? GLU_FILL : GLU_OUTLINE_POLYGON);
  if (g.u > 0 && g.v > 0) {
    gluNurbsProperty(g.nurbs, GLU_SAMPLING_METHOD, GLU_DOMAIN_DISTANCE);
    gluNurbsProperty(g.nurbs, GLU_U_STEP, g.u);
    gluNurbsProperty(g.nurbs, GLU_V_STEP, g.v);
  } else if (g.pas > 0) {
    gluNurbsProperty(g.nurbs, GLU_SAMPLING_METHOD, GLU_PATH_LENGTH);
    gluNurbsProperty(g.nurbs, GLU_SAMPLING_TOLERANCE, g.pas);
  }
  if (t != 0) glEnable(GL_AUTO_NORMAL);
  gluBeginSurface(g.nurbs);
  gluNurbsSurface(g.nurbs, static_cast<GLint>(g.kv.size()), g.kv.data(), static_cast<GLint>(g.ku.size()),
                  g.ku.data(), r->dim * g.nu, r->dim, r->som, 4, 4, GL_MAP2_VERTEX_3);
  gluEndSurface(g.nurbs);
  glDisable(GL_AUTO_NORMAL);
}

// The inverse of the frame's base matrix (the view), so that a source's
// matrix read back after its placing gives world points: base^-1 x full.
float vue_inv[16];

// The inverse of an affine matrix (its last row 0, 0, 0, 1); the identity
// for a singular one.
void inverse_affine(const float* m, float* r) {
  double a = m[0], b = m[4], c = m[8], d = m[1], e = m[5], f = m[9], g = m[2], h = m[6], i = m[10];
  double A = e * i - f * h, B = f * g - d * i, C = d * h - e * g;
  double det = a * A + b * B + c * C;
  if (!(std::fabs(det) > 1e-30) || !std::isfinite(det)) {
    matrice_identite(r);
    return;
  }
  double inv[9] = {A / det, (c * h - b * i) / det, (b * f - c * e) / det,
                   B / det, (a * i - c * g) / det, (c * d - a * f) / det,
                   C / det, (b * g - a * h) / det, (a * e - b * d) / det};
  // inv is row-major; r column-major.
  for (int l = 0; l < 3; ++l)
    for (int k = 0; k < 3; ++k) r[4 * k + l] = static_cast<float>(inv[3 * l + k]);
  for (int l = 0; l < 3; ++l)
    r[12 + l] = static_cast<float>(-(inv[3 * l] * m[12] + inv[3 * l + 1] * m[13] + inv[3 * l + 2] * m[14]));
  r[3] = r[7] = r[11] = 0;
  r[15] = 1;
}

// A surface of lines following its sources and pins: its vertices made
// again from their matrices of this frame, and its normals after them.
void nappe_suit(Vol_rt* r) {
  Vol_rt_gl& g = *r->gl;
  if (g.sources.empty() && g.epingles.empty()) return;
  float q[16];
  long k = 0;
  for (Vol_rt* s : g.sources) {
    matrice_produit(vue_inv, s->matrice, q);
    for (int v = 0; v < s->ns && k < r->ns; ++v, ++k)
      matrice_applique(q, s->som + static_cast<long>(v) * s->dim, r->som + k * r->dim);
  }
  for (const Vol_rt_gl::Epingle& e : g.epingles) {
    if (e.som >= r->ns) continue;
    matrice_produit(vue_inv, e.autre->matrice, q);
    matrice_applique(q, e.p, r->som + static_cast<long>(e.som) * r->dim);
  }
  g.modifie = true;
}

// Followers past this depth are a cycle the loop made; they are not drawn.
constexpr int PROFONDEUR_MAX = 64;

int dessine(Vol_rt* r, int profondeur) {
  if (!r || !r->gl || r->affiche < 0 || profondeur > PROFONDEUR_MAX) return 0;
  const float* coul = r->a_coul ? r->coul : BLANC;
  const float* il = r->a_illum ? r->illum : ILLUM_DEFAUT;
  int t = 0;
  if (drapeau(B_ILLUM_) && std::isfinite(il[0]) && std::fabs(il[0]) < 4) t = static_cast<int>(il[0]);
  if (r->type == B_LIGNES) nappe_suit(r);
  if (r->ns > 0) vertices_envoie(r);
  if (r->type != B_LIGNES) place(r);
  if (t != 0) glEnable(GL_LIGHTING);
  else glDisable(GL_LIGHTING);
  if (r->affiche > 0 && r->ns > 0) {
    if (r->type == B_NUAGE) nuage(r, profondeur);
    else if (r->gl->nu > 0) surface(r, t);
    else if (t == 0) aretes(r, coul, il);
    else faces(r, t, coul, il);
  }
  if (r->lead && r->type != B_LIGNES) deplace(r);
  if (r->suiv_nb > 0) {
    float m[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, m);
    for (int i = 0; i < r->suiv_nb; ++i) {
      if (r->suiv[i]->porte) dessine(r->suiv[i], profondeur + 1);
      glLoadMatrixf(m);
    }
  }
  return 0;
}

// A cloud: its vertices as points, or its instance volume at each of them.
void nuage(Vol_rt* r, int profondeur) {
  Vol_rt_gl& g = *r->gl;
  if (!r->instance) {
    glDisable(GL_LIGHTING);
    glColor3fv(r->a_coul ? r->coul : BLANC);
    positions(r);
    if (!g.c_som.empty()) {
      if (g.c_som4.empty()) {
        g.c_som4.resize(static_cast<std::size_t>(r->ns) * 4);
        for (int v = 0; v < r->ns; ++v) {
          std::copy(&g.c_som[3 * static_cast<std::size_t>(v)], &g.c_som[3 * static_cast<std::size_t>(v)] + 3,
                    &g.c_som4[4 * static_cast<std::size_t>(v)]);
          g.c_som4[4 * static_cast<std::size_t>(v) + 3] = 1;
        }
        envoie(g.b_col, GL_ARRAY_BUFFER, g.c_som4);
      }
      glBindBuffer(GL_ARRAY_BUFFER, g.b_col.id);
      glColorPointer(4, GL_FLOAT, 0, nullptr);
      glEnableClientState(GL_COLOR_ARRAY);
    }
    glDrawArrays(GL_POINTS, 0, r->ns_affiche < r->ns ? r->ns_affiche : r->ns);
    fin_tableaux();
    return;
  }
  float m[16];
  glGetFloatv(GL_MODELVIEW_MATRIX, m);
  Vol_rt* x = r->instance;
  float pivot[3] = {x->pivot[0], x->pivot[1], x->pivot[2]};
  for (int k = 1; k <= r->ns; ++k) {
    const float* p = sommet(r, k);
    x->pivot[0] = p[0], x->pivot[1] = p[1], x->pivot[2] = p[2];
    x->rotation[0] += r->instance_pas;
    dessine(x, profondeur + 1);
    glLoadMatrixf(m);
  }
  std::copy(pivot, pivot + 3, x->pivot);
}
}  // namespace

int aff_rt(Vol_rt* r) {
  if (fen.fenetre < 1) return 0;
  float m[16];
  glMatrixMode(GL_MODELVIEW);
  glGetFloatv(GL_MODELVIEW_MATRIX, m);
  inverse_affine(m, vue_inv);
  if (r) {
    dessine(r, 0);
    glLoadMatrixf(m);
    return 0;
  }
  for (Vol_rt* x : rt_a_dessiner()) {
    if (x->porte) continue;
    glGetFloatv(GL_MODELVIEW_MATRIX, m);
    dessine(x, 0);
    glLoadMatrixf(m);
  }
  return 0;
}

// Faces whose vertex numbers are replaced by the vertices' addresses, so that
// a drawing loop reads a vertex without a multiplication.
#include <cstring>

#include "geom/interne.h"

mot* ad_poi_facette(const mot* faces, reel* sommets, int d, int nb_som) {
  if (!faces || !sommets || fac_verifie(faces, nb_som)) return nullptr;
  mot* b = bloc_alloue(faces[0]);
  if (!b) return nullptr;
  std::memcpy(b, faces, faces[0] * sizeof(mot));
  // Same walk as the faces: every contour of every face.
  pour_contours(b, [&](int, const mot* c, int k) {
    mot* p = const_cast<mot*>(c);
    for (int j = 0; j < k; ++j) p[j] = ptr_vers_mot(sommets + static_cast<long>(p[j] - 1) * d);
  });
  return b;
}

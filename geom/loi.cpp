// Spacing laws: where step i of n falls between 0 and v.
#include <cmath>

#include "geom/interne.h"

namespace {
constexpr double PI = 3.14159265358979323846;

// Rows (x, y) of a law table: two columns, or pairs end to end.
struct Table {
  const reel* v;
  int rangs, pas;
};

bool table_lit(const mot* b, Table* t) {
  if (!b || b[1] != BLOC_REEL || b[0] < 6) return false;
  long n = static_cast<long>(b[2]) * (b[3] > 0 ? b[3] : 1);
  if (n > b[0] - 4) n = b[0] - 4;
  t->v = reels(b + 4);
  t->pas = b[3] >= 2 ? b[3] : 2;
  t->rangs = static_cast<int>(n / t->pas);
  return t->rangs >= 1;
}

// The table read at t of its total x, in its own y units; the ys scaled to
// v by the total y of the last row.
double par_table(const Table& tb, double t, double v) {
  const reel* der = tb.v + static_cast<long>(tb.rangs - 1) * tb.pas;
  double tx = der[0], ty = der[1];
  if (ty > -SEUIL_NORME && ty < SEUIL_NORME) return 0;
  double u = t * tx;
  int r = 0;
  while (r < tb.rangs && tb.v[static_cast<long>(r) * tb.pas] < u) ++r;
  double y;
  if (r == 0) {
    y = tb.v[1];
  } else if (r == tb.rangs) {
    y = ty;
  } else {
    const reel *a = tb.v + static_cast<long>(r - 1) * tb.pas, *b = a + tb.pas;
    double dx = static_cast<double>(b[0]) - a[0];
    double f = dx > -SEUIL_NORME && dx < SEUIL_NORME ? 0 : (u - a[0]) / dx;
    y = a[1] + f * (static_cast<double>(b[1]) - a[1]);
  }
  return y * v / ty;
}
}  // namespace

double loi_valeur(double v, int loi, const mot* table, int n, int i, int d) {
  Table tb{};
  bool avec_table = table_lit(table, &tb);
  double t = n > 1 ? static_cast<double>(i - d) / (n - 1) : 1;
  if (loi == LOI_TABLE) return avec_table ? par_table(tb, t, v) : v * t;
  // Every other law starts at 0 and ends at v exactly.
  if (i <= d) return 0;
  if (i >= n) return v;
  switch (loi) {
    case LOI_ACC: return v - v * std::cos(t * PI / 2);
    case LOI_DEC: return v * std::sin(t * PI / 2);
    case LOI_ACD: return (v - v * std::cos(t * PI)) / 2;
    case LOI_CIN: return avec_table ? par_table(tb, t, v) : v * t;
  }
  return v * t;
}

// Images in the text forms of the object files: random pixels of odd sizes
// saved as ASCII, deleted, read back byte for byte under their numbers; the
// attribute limit that leaves a large image out; a file whose image block
// lies refused with every image kept as it was.
#include "image/image.h"
#include "tests/persist/outils.h"

namespace {
using Images = Monde;

mot* image_hasard(int w, int h, std::mt19937& g) {
  mot* b = ima_alloue(w, h);
  if (!b) return nullptr;
  octet* p = ima_octets(b);
  for (long k = 0; k < 3L * w * h; ++k) p[k] = static_cast<octet>(g());
  return b;
}

std::vector<octet> pixels(int n) {
  const mot* b = ima_bloc(n);
  if (!b) return {};
  std::vector<octet> v(ima_octets(b), ima_octets(b) + b[6]);
  v.push_back(static_cast<octet>(ima_l(b)));
  v.push_back(static_cast<octet>(ima_h(b)));
  return v;
}

OptionsFichier texte() {
  OptionsFichier o;
  o.forme = FORME_ASCII;
  o.demande = -3;
  return o;
}
}  // namespace

TEST_F(Images, AsciiRoundTripOfOddSizesAndNumbers) {
  std::mt19937 g(2817);
  const int tailles[][2] = {{1, 1}, {37, 11}, {1, 97}, {53, 29}, {81, 81}};
  std::vector<int> numeros;
  for (auto& t : tailles) {
    int n = numeros.empty() ? -NUMERO_MAX : static_cast<int>(g() % 90000000) + 1;
    ASSERT_EQ(ima_installe(n, image_hasard(t[0], t[1], g)), 0);
    numeros.push_back(n);
  }
  std::vector<std::vector<octet>> avant;
  for (int n : numeros) avant.push_back(pixels(n));
  // Image 0 is the working image: a save of every image leaves it out.
  ASSERT_EQ(ima_installe(0, image_hasard(640, 480, g)), 0);
  std::string sortie = sortie_de([&] { EXPECT_GT(objets_ecrit(B_IMA_TYPE, "i", {}, texte()), 0); });
  EXPECT_EQ(sortie, "");
  ASSERT_TRUE(std::filesystem::exists("i.ascii.ima"));
  for (int n : numeros) objet_supprime(ima_objet(n));
  auto zero = pixels(0);
  ASSERT_EQ(objets_lit(B_IMA_TYPE, "i", texte()), 5);
  for (std::size_t k = 0; k < numeros.size(); ++k) EXPECT_EQ(pixels(numeros[k]), avant[k]) << k;
  EXPECT_EQ(pixels(0), zero);
  // A load with a shift puts them beside the first ones.
  OptionsFichier d = texte();
  d.decalage = 7;
  ASSERT_EQ(objets_lit(B_IMA_TYPE, "i", d), 5);
  for (std::size_t k = 0; k < numeros.size(); ++k) EXPECT_EQ(pixels(numeros[k] + 7), avant[k]);
  // Past the largest number: refused, nothing changed.
  d.decalage = -7;
  std::string refus = sortie_de([&] { EXPECT_EQ(objets_lit(B_IMA_TYPE, "i", d), -1); });
  EXPECT_NE(refus.find(std::to_string(-NUMERO_MAX - 7)), std::string::npos) << refus;
  EXPECT_EQ(ima_objet(numeros[1] - 7), nullptr);
  // Chosen by number, and compressed.
  OptionsFichier z = texte();
  z.compresse = true;
  int un[] = {numeros[3]};
  EXPECT_GT(objets_ecrit(B_IMA_TYPE, "un", un, z), 0);
  objet_supprime(ima_objet(numeros[3]));
  ASSERT_EQ(objets_lit(B_IMA_TYPE, "un", z), 1);
  EXPECT_EQ(pixels(numeros[3]), avant[3]);
}

// An image of more words than an attribute's work Bloc holds stays out,
// with message 0:2; the others are written.
TEST_F(Images, LargeImageLeftOutOfTheText) {
  std::mt19937 g(5);
  ASSERT_EQ(ima_installe(3, image_hasard(171, 173, g)), 0);
  ASSERT_EQ(ima_installe(4, image_hasard(9, 7, g)), 0);
  auto petite = pixels(4);
  std::string sortie = sortie_de([&] { EXPECT_GT(objets_ecrit(B_IMA_TYPE, "m", {}, texte()), 0); });
  EXPECT_NE(sortie.find(message_texte(0, 2)), std::string::npos) << sortie;
  objets_vide();
  ASSERT_EQ(objets_lit(B_IMA_TYPE, "m", texte()), 1);
  EXPECT_EQ(pixels(4), petite);
  EXPECT_EQ(ima_objet(3), nullptr);
}

// Sizes that lie, a cut block, a block of another tag, two attributes: the
// numbered message, and the images of the table stay as they were.
TEST_F(Images, LyingImageBlocksRefused) {
  std::mt19937 g(77);
  ASSERT_EQ(ima_installe(2, image_hasard(13, 5, g)), 0);
  auto avant = pixels(2);
  ASSERT_GT(objets_ecrit(B_IMA_TYPE, "b", {}, texte()), 0);
  std::vector<char> fichier = octets_de("b.ascii.ima");
  std::string bon(fichier.begin(), fichier.end());
  auto remplace = [&](const std::string& de, const std::string& par) {
    std::string s = bon;
    std::size_t i = s.find(de);
    EXPECT_NE(i, std::string::npos) << de;
    if (i != std::string::npos) s.replace(i, de.size(), par);
    return s;
  };
  const std::string mauvais[] = {
      remplace("\t\t13 5 195", "\t\t14 5 195"),      // width
      remplace("\t\t13 5 195", "\t\t13 5 -195"),     // byte count
      remplace("\t\t13 5 195", "\t\t13 99999 195"),  // height
      remplace("mots 28", "mots 29"),                                             // tag
      remplace("Image Numero(2)", "Image Numero(2) Nom(\"x\") Type_fichier(0, 0, 0, 0, 0) { } Image Numero(9)"),
  };
  for (const std::string& m : mauvais) {
    ecrit_octets("b.ascii.ima", std::vector<char>(m.begin(), m.end()));
    std::string sortie = sortie_de([&] { EXPECT_EQ(objets_lit(B_IMA_TYPE, "b", texte()), -1) << m; });
    EXPECT_FALSE(sortie.empty());
    EXPECT_EQ(pixels(2), avant);
    EXPECT_EQ(ima_objet(9), nullptr);
  }
}

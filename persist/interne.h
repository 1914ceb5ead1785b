// Private to the object files: the stream that reads and writes plain and
// gzip files alike, the side table of a load, the filters of a save.
#pragma once
#include <zlib.h>

#include <string>
#include <vector>

#include "core/message.h"
#include "persist/persist.h"

// Messages of env 0 printed by the object files.
constexpr int M_ABANDON = 8, M_OBJET_ABANDONNE = 4, M_OCTETS = 25, M_SYNTAXE = 34, M_EXISTE = 38,
              M_INCONNU_MOT = 66, M_DISQUE = 67, M_CORROMPU = 105, M_TRONQUE = 110, M_AUTRE_TYPE = 111;

// Limits of a file's words: no Bloc is longer, and no object has more
// attributes.
constexpr long MOTS_MAX = 10000000;
constexpr long ATTRIBUTS_MAX = 100000;
// The ASCII writer's work Bloc: an attribute of more words is refused.
constexpr long MOTS_ASCII = 20000;

// A file open through zlib: reading a plain file is transparent, writing
// compresses only when asked. Closed at the end of its scope.
struct Flux {
  gzFile z = nullptr;
  std::string chemin;
  long long taille = -1;  // bytes of a plain file, -1 for a gzip stream
  long long lus = 0;
  bool ecriture = false;
  ~Flux() { ferme(); }
  Flux() = default;
  Flux(const Flux&) = delete;
  Flux& operator=(const Flux&) = delete;
  // Opens the path; false after "%s: " and message 0:36 (no file, not a
  // regular file, no permission).
  bool ouvre_lecture(const std::string& c);
  bool ouvre_ecriture(const std::string& c, bool compresse);
  // Reads exactly n bytes: false at the end of the file or on a broken
  // stream (no message: the caller knows what it was reading).
  bool lit(void* p, std::size_t n);
  // True when the stream ended at a boundary (no byte left).
  bool fin();
  // After the end: false when the stream broke or was cut short.
  bool propre();
  // Writes n bytes: false after message 0:67.
  bool ecrit(const void* p, std::size_t n);
  // Closes; false after message 0:67 when the last bytes did not go out.
  bool ferme();
  // The words a plain file has left; a gzip stream answers MOTS_MAX.
  long long reste_mots() const;
};

// One object read, before it enters the table.
struct ObjetLu {
  mot tete[8];               // f4, numero, n, f1, f2, f3, type, sous_type
  std::string nom;
  std::vector<mot*> attributs;  // Blocs owned until commit
};
// The side table: released on destruction unless committed.
struct TableLue {
  std::vector<ObjetLu> objets;
  ~TableLue();
  void vide();
};
// Puts the side table into the object table: the old objects are deleted
// as the options say, the new ones created. Objects read, or -1.
int table_engage(TableLue& t, int type, const OptionsFichier& opt);

// Readers and writers of each form. The readers fill the side table and
// give 0, or -1 after their message.
int binaire_lit(Flux& f, TableLue& t, int type);
long long binaire_ecrit(Flux& f, const Objet* o, const OptionsFichier& opt, int type_fichier);
int ascii_lit(const std::string& texte, TableLue& t, int type);
int ascii_ecrit(std::string& dst, const Objet* o, const OptionsFichier& opt, bool scene);
int exec_ecrit(std::string& dst, const Objet* o, const OptionsFichier& opt);
// An object with the attributes given, in the ASCII form.
int ascii_ecrit_attributs(std::string& dst, const Objet* o, const std::vector<const mot*>& attrs);
// Images (b28): the block as one attribute of key (1, 28) in the ASCII
// form, the images' phrases in the exec form; the images read put in the
// table under their numbers (image.cpp).
int ascii_ecrit_image(std::string& dst, const Objet* o);
int exec_ecrit_image(std::string& dst, const Objet* o);
int images_engage(TableLue& t, const OptionsFichier& opt);

// The attributes of an object that a save keeps, in list order.
std::vector<const mot*> attributs_gardes(const Objet* o, const OptionsFichier& opt, int forme, bool scene);
// True when the attribute's tail holds pointers that no file can carry.
bool tail_pointeurs(const mot* a);
// Checks a Bloc read from a file: lengths consistent with each other,
// nested lists well formed, no pointers, strings closed. False if not.
bool bloc_sain(const mot* b, long n);
// The key of an attribute printed as its keywords, for reports.
void cle_imprime(const mot* a);
// True when the type is saved and loaded by these files.
bool type_objet(int type);
// Whether a type belongs to a scene file.
inline bool type_de_scene(int t) { return t == 4 || t == 24 || t == 114; }

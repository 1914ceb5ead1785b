/* indexa.h: aide de la liste a; un mot-cle par ligne, une tabulation, son usage */
$	$ valeur: imprime une valeur
?	? mot: aide sur un mot-cle
NIL	NIL: valeur nulle
PI	PI: 3.14159265
RC	RC: imprime un retour a la ligne
abs	abs(v): valeur absolue
acos	acos(v): arc cosinus
affiche	affiche: affichage d'une valeur avec options
aide	aide: liste les mots-cles; aide mot: aide sur un mot
alea	alea(v): valeurs aleatoires
ali	ali nom=texte: ajoute un alias; anti-crenelage
aller	aller etiquette: saut
arg	arg(v): argument de chaque paire
arrondi	arrondi(v): arrondi de chaque element, demis loin de zero
asin	asin(v): arc sinus
atan	atan(v): arc tangente
bip	bip: cloche des messages (2: rafraichit l'affichage)
brou	brou(0, 1 ou 2): loi du brouillard; exp(v): exponentielle (aussi: exp)
cas	cas valeur: branche de selon
centre	centre: centre de gravite; ecriture de couleur d'une image
cha	cha: format texte d'un peripherique; cha(s): la chaine s (aussi: chaine)
chemin	chemin("env"): repertoire ("ini", "env" ou "uti")
cherche	cherche: requete de recherche
cle	cle(fonction, "nom"): lie une touche a une fonction
cod	cod("cle"): decodage d'une fonction
com	com("f g"): compile des fonctions
cont	cont: actif, une instruction en echec arrete le texte; non cont: on continue
cos	cos(v): cosinus, angle en radians
cosh	cosh(v): cosinus hyperbolique
date	date: date et heure
debug	debug mot: option de mise au point
defaut	defaut: branche par defaut de selon
demande	demande("question"): lit une ligne au clavier
detruire	detruire: detruit des objets; vide un port serie
ecrire	ecrire type("nom"): ecrit des objets dans un fichier
edi	edi: bavardage; valeurs: largeur et longueur de page
ent	ent(v): partie entiere
err	err: -1 apres une instruction en echec
etape	etape(n): etape d'animation (memoire partagee)
exec	exec("texte") ou exec(n): execute un texte ou la ligne n de l'historique
externe	externe a, b: declare des variables globales
fact	fact(v): factorielle
fclose	fclose(f): ferme le fichier f
fenetre	fenetre: fenetre graphique; spectre audio; tri des faces transparentes
film	film: sequences d'images
fin	fin(f): fonction de fin d'interaction; ferme un canal
flo	flo: format flottant d'un peripherique
fmot	fmot(f): lit le mot suivant du fichier f
fonc	fonc: type fonction, formel fonction; fonc("f"): texte source de f (aussi: fonction)
fonc	fonc: fonction d'un champ ou d'un reseau
fopen	fopen("nom mode"): ouvre un fichier (r rb w wb a ab)
frac	frac(v): partie fractionnaire
fread	fread(f, n): lit n octets
fwrite	fwrite(f, donnees): ecrit des octets
generer	generer: genere les donnees derivees des volumes
graine	graine(n): graine des aleatoires
his	his: historique des commandes; his(n): rappelle la ligne n
indice	indice: indice courant d'une trajectoire
ini	ini("TCP"): ouvre un peripherique, l'audio ou un autre appareil
ini_res	ini_res: ressort vers la position de repos
inv	inv(v): inverse de chaque element
lib	lib: liberation des blocs (non lib: la memoire n'est jamais rendue)
lier	lier: lie toutes les fonctions; actif: lien a la lecture
lim	lim: limites (fenetres) d'un volume; lim(v): etendue des triplets
lire	lire type("nom"): lit des objets d'un fichier (remplace)
log	log(v): logarithme neperien
matrice	matrice: transformation par matrice
max	max(v): plus grand element; rayon d'influence; extrusion
mes	mes(env, n): imprime un message; mes("fichier"): charge des messages
min	min(v): plus petit element; seuil; extrusion
mod	mod(v): module de chaque paire
module	module(v): longueur de chaque triplet
moy	moy(v): moyenne des elements
nodebug	nodebug mot: retire une option de mise au point
nom	nom("x"): nom d'objet; texte de menu
nom_img	nom_img("racine"): racine des fichiers image de chaque trame
nommer	nommer: nomme un objet
non	non mot: desactive un mot-cle; non seul: liste les mots inactifs
norme	norme(v): vecteur norme
num	num(n): numero d'objet; port d'un peripherique
opt	opt: mot d'option; valeur: tolerance de l'operateur ~
oui	oui mot: active un mot-cle; oui seul: liste les mots actifs
pas	pas: mode pas a pas (arret avant chaque instruction); trace des items
pic	pic: analyse des pics; rappel enchaine
planche	planche: planche contact d'images; fenetres de sortie
poids	poids: matrice d'un volume; poids d'un reseau
pour	pour(i=debut,fin[,pas]) ou pour(init;condition;pas): boucle
puls	puls nom("b") puls(x,y,pas): bouton a l'ecran
quitter	quitter: fin du programme
raz	raz: reinitialise la session
remplir	x = remplir(n, v): vecteur de n elements egaux a v
retour	retour [valeur]: sortie de fonction
rotv	rotv(x,y,z): rotation donnee par un vecteur
scal	scal(v): produit scalaire des deux moities de v
selon	selon(valeur) { cas ...: ... defaut: ... }
si	si(condition) instruction
signe	signe(v): signe de chaque element
sin	sin(v): sinus, angle en radians; chemin sinusoidal d'une trajectoire
sinh	sinh(v): sinus hyperbolique
sinon	sinon instruction
somme	somme(v): somme des elements
sor	sor: quitte le pas a pas ou la pause; points d'arret
sortir	sortir: sort de la boucle ou du selon
sqrt	sqrt(v): racine carree (aussi: racine)
statique	statique a, b: declare des variables statiques
systeme	systeme("commande"): commande du systeme
taille	taille(v): nombre d'elements; point; selection
tan	tan(v): tangente, angle en radians
tanh	tanh(v): tangente hyperbolique
tantque	tantque(condition) instruction
tem	tem: nombre d'images; fenetre de temps; delai en ms
texte	texte(...): ecrit des valeurs comme texte
top	top: relance (trajectoire); sommet de la chaine des leaders
transpose	transpose(m): matrice transposee
tri	tri(v): tri des elements
typ	typ: fichiers de type typ
var	var("nom"): lit une variable globale; var seul: liste des globales
var	var a=1, b: initialise une liste de noms
vecteur	x = vecteur(n): vecteur de n elements
vide	vide nom("x"): cree un objet vide

/* indexb.h: aide de la liste b; un mot-cle par ligne, une tabulation, son usage */
acc	acc: acceleration; loi acceleree
accroche	accroche: points accroches a un triangle
acd	acd: loi acceleree puis deceleree
aff	aff: affiche des objets; aff(x,y,z,...): affiche des points
ajust	ajust(n): reechantillonne une ligne; rayon(s) l'amincit; joi(a) limite ses angles
alp	alp: volume alpha
amas	amas: nuage de points ou d'instances
amb	amb(r,v,b): lumiere ambiante
anc	anc: ancre; col: collisions (aussi: col)
anim	anim: attribut interpole au cours du temps
appr	appr: apprentissage d'un reseau
arete	arete: objets places le long des aretes
att_menu	att_menu(n): attache le menu au bouton droit
attache	attache: objets attaches aux faces
attr	attr: liste d'attributs cible; options d'image
audio	audio: capture du son
avec	avec: volume associe a une edition
axe	axe(x,y,z): axe; boite
bitmap	bitmap: pinceau bitmap
boite	boite: boite englobante; affichage par boites
bornes	bornes: bornes d'une grille
bosse	bosse: bosse autour du pivot; fondu d'un fichier de son
boule	boule: volume boule (grille)
bro	bro(r,v,b): brouillard; brosse
brut	brut: sans la valeur presente comme premiere clef
cadence	cadence(n): images par seconde
carre	carre: pinceau carre; images
cha	cha(n): champ de forces
choc	choc: marque de collision; poids des sommets
cin	cin(n): loi cinematique
clef	clef: images clefs
coe	coe: coefficient (attenuation, force, taux d'apprentissage)
colonne	colonne: choix de colonnes de sommets
cone	cone(r,h,n,r2): volume cone de rayon r, hauteur h, n cotes (r2 rayon du haut)
copie	copie: copie d'objets
coul	coul(r,v,b): couleur, de 0 a 1 (aussi: couleur)
courbe	courbe(s,t): courbe par des points, s points entre deux
cube	cube(c): volume cube de cote c
cylindre	cylindre(r,h,n,b): volume cylindre, n cotes, b=0 sans bouchons
dec	dec: loi deceleree
dep	dep(x,y,z): translation
dep	dep(x,y,z): translation
dessin	dessin: dessins
dessine	dessine: dessin dans une image
dim	dim(l,h): taille de destination d'une image
dyn	dyn(n): dynamique avec n sous-pas
echant	echant: echantillons d'une trajectoire
ecran	ecran: plein ecran
effile	effile: effilage
etat	etat: etat de visibilite; peinture d'image
etiq	etiq: etiquettes
extru	extru: volume par extrusion
fac	fac: faces d'un volume, liste separee par 0 (vol(1) fac = 1,2,3, 0, 1,3,4); fac(i): face i (aussi: face)
fft	fft: transformee de Fourier
filtre	filtre: filtre d'image
foc	foc(f): focale (champ vertical f x 57.75 degres)
fond	fond: efface le fond; valeurs: couleur du fond
fondu	fondu: fondu d'images de fond
for	for(x,y,z): force (aussi: force)
forme	forme: volume a normales particulieres
fui	fui(f): terme de fuite de la projection logicielle
fusion	fusion: fusion de volumes
gl	gl: affichage par OpenGL
gra	gra: 1 avec fenetre graphique
grille	grille(nx,ny,nz,dx,dy,dz): volume grille (spe: rangs fermes)
groupe	groupe: groupe de volumes
hom	hom(fx,fy,fz): homothetie
homo	homo(f): homothetie uniforme
homx	homx(f): homothetie en x
homy	homy(f): homothetie en y
homz	homz(f): homothetie en z
illum	illum(type,diffusion,speculaire,brillance,transparence): illumination
ima	ima(n): image (aussi: image)
info	info: attribut libre
interaction	interaction vol(...): scene en temps reel
joi	joi: joint; angle en radians
lead	lead(b,s): volume porteur; serveur d'un peripherique
lecture	lecture: lecture d'une sequence d'images
loi	loi: loi de temps d'une trajectoire
loin	loin(l): plan lointain de l'oeil (l > proche)
lum	lum(n): lumiere (aussi: lumiere)
maille	maille: maillage
marge	marge(m): un volume hors de l'ecran agrandi de m n'est pas dessine
mas	mas(m): masse (aussi: masse)
masque	masque: masques de lignes
mem	mem: objet memoire
menu	menu("fichier"): fichier de menu
midi	midi: entree MIDI
modif	modif: edition des volumes
montage	montage: montage d'un film
motif	motif: motifs d'entree d'un reseau; lien; objets places sur les faces
nappe	nappe: surface tendue sur des lignes
nb	nb(passes, debut): nombres (passes d'apprentissage)
neu	neu: table des neurones (aussi: neurone)
normale	normale: normales; premiere valeur: precision; ortho: projection parallele (aussi: ortho)
nuage	nuage: affichage en nuage
nurbs	nurbs: surface NURBS
oeil	oeil(x,y,z): position de l'oeil
origine	origine vol(n): change la racine de la figure
panneau	panneau: panneau de l'interaction
param	param: parametres de configuration
partie	partie: parties de volumes
pas	pas(n): pas a pas de l'interaction; valeurs: plans proche et lointain
pave	pave: volume pave (grille en couches); boite
periph	periph(n): canal de peripherique
pigments	pigments: liste de pigments d'un volume
pinceau	pinceau: outil de peinture
plie	plie: pliage
police	police: police de caracteres
pre	pre: listes de ressorts
proche	proche(p): plan proche de l'oeil (p > 0)
proj	proj: sommets projetes; perspective (aussi: pers)
propage	propage: propagation apres la dynamique; pas negatif
rapide	rapide: affichage rapide en fil de fer
rappel	rappel: rappel d'un reseau
rayon	rayon: rayon; taille des points affiches
rect	rect: rectangle d'image
rel	rel: echantillons relatifs
res	res(n): reseau de neurones (aussi: reseau)
ressort	ressort(k,c): ressort
revol	revol: volume de revolution
rien	rien: ordre de dessin vide
rig	rig: le lien au pere deplace les corps entiers
rond	rond: marque rectangle; etiquettes; pinceau rond
rota	rota(a) axe(x,y,z): rotation autour d'un axe
rotx	rotx(a): rotation autour de x
roty	roty(a): rotation autour de y
rotz	rotz(a): rotation autour de z
roul	roul(a): roulis autour de l'axe de visee, radians
scene	scene: genre d'objets d'une generation
sec	sec(f): secousse aleatoire en x, y, z; ale: generateur aleatoire (aussi: ale)
secx	secx(f): secousse aleatoire en x
secy	secy(f): secousse aleatoire en y
secz	secz(f): secousse aleatoire en z
segment	segment: aretes d'un volume; ligne entre deux points
seq	seq(x,y,z,...): sequence de la souris; ligne; programme de couleur
som	som: sommets d'un volume (vol(1) som = x,y,z, ...); som(i): sommet i; pivot
sommet	sommet(n,...): choix de sommets
son	son: fichier de son
sortie	sortie: sorties voulues d'un reseau; cone d'un spot; courbe d'un champ
sou	sou: souris, outil souris (aussi: souris)
spe	spe: affichage special; sockets bloquants
sphere	sphere(r,n,m): volume sphere, n meridiens, m paralleles
subst	subst: liste d'attributs d'un autre volume
suiv	suiv(b,s): volume suiveur
surf	surf: volume surface (grille)
sym	sym: symetrie par rapport au pivot
symx	symx: symetrie en x
symy	symy: symetrie en y
symz	symz: symetrie en z
tableau	tableau: tableau
tex	tex(n): texture (numero d'image)
tire	tire: tire des sommets
tirer	tirer: tire un sommet a la souris
tirer	tirer: tire une grille
tord	tord: torsion
tore	tore(R,r,n,m): volume tore, rayons de l'anneau et du tube
tra	tra(n): trajectoire
trace	trace(n): longueur de la trace en images
trait	trait: choix de lignes de sommets
transp	transp: transparence; deformation d'ecran
tsv	tsv(t,s,v): teinte, saturation, valeur
tube	tube: volume tube (grille)
vise	vise(x,y,z): point vise; direction d'un spot
vit	vit: vitesse; vitesse d'un port serie (aussi: vitesse)
voisin	voisin: tables de voisins
vol	vol(n): cree, choisit ou modifie un volume (aussi: volume)
vue	vue(n): vue
zbu	zbu: z-buffer (0 sans, 1 entiers, 2 flottants)

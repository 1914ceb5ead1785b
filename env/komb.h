/*
 * komb.h: vocabulaire graphique (liste b, environnement 1).
 *
 * Meme format que koma.h: deux lignes par mot-cle, la place dans le
 * fichier est l'ordinal; noms separes par un seul blanc, les mots a
 * majuscule ne sont que des noms longs (le dernier sert aux sauvegardes
 * ascii); ensuite e1 etat e3 e4 et les valeurs par defaut (. = aucune).
 * Un nom qui commence par ? reserve l'ordinal.
 *
 * L'etat d'un mot de cette liste est un interrupteur que l'affichage et
 * la simulation testent: fond, aff, coul, illum, zbu, tex, amb, rapide
 * sont actifs; gl, boite, dyn, anc, rig, bro, interaction sont inactifs.
 * Les valeurs servent de defaut: coul 1,1,1; illum 1,1,0,0,0 (type,
 * diffusion, speculaire, brillance, transparence); pas 10,32000 (plans
 * proche et lointain); oeil, vise, foc, roul: l'oeil; normale 1,0,0
 * (precision, pas de 3 flottants); axe 0,1,0; amb 0.2,0.2,0.2.
 * Un mot sans valeur garde la forme de ce qu'on lui donne.
 */
|0: ?0
0 0 0 0 .
|1: fond Fond
0 1 0 0 0,0,0
|2: attr Attributs
0 0 0 0 0
|3: curseur Curseur
0 0 0 0 .
|4: vol volume Volume
0 1 0 0 .
|5: modif Modifie
0 0 0 0 .
|6: marge Marge
0 0 0 0 0
|7: avec Avec
0 0 0 0 .
|8: aff Affichage
0 1 0 0 .
|9: oeil Oeil
0 0 0 0 0,0,-1000
|10: vise Vise
0 0 0 0 0,0,0
|11: foc Focale
0 0 0 0 1
|12: roul Roulis
0 0 0 0 0
|13: proj pers Projection
0 0 0 0 0
|14: grille Grille
0 0 0 0 .
|15: fac face Faces
0 0 0 0 .
|16: sou souris Souris
0 0 0 0 0,0,0
|17: coul couleur Couleur
0 1 0 0 1,1,1
|18: pas Pas_image
0 0 0 0 10,32000
|19: ecran Ecran
0 0 0 0 0
|20: surf Surface
0 0 0 0 .
|21: pave Pave
0 0 0 0 .
|22: seq Sequence
0 1 0 0 .
|23: illum Illumination
0 1 0 0 1,1,0,0,0
|24: lum lumiere Lumiere
0 1 0 0 .
|25: zbu Zbuffer
0 1 0 0 1
|26: sortie Sorties
0 0 0 0 0,0.5,0
|27: motif Motifs
0 1 0 0 .
|28: ima image Image
0 0 0 0 .
|29: arete Aretes
0 1 0 0 0,0,0,0
|30: dep Deplacement
0 0 0 0 .
|31: dep Translation
0 0 0 0 .
|32: sommet Sommets
0 0 0 0 .
|33: joi Joint
0 0 0 0 0,0,0
|34: rota Rotation
0 0 0 0 .
|35: rotx Rotation_x
0 0 0 0 .
|36: roty Rotation_y
0 0 0 0 .
|37: rotz Rotation_z
0 0 0 0 .
|38: hom Homothetie
0 0 0 0 .
|39: homx Homothetie_x
0 0 0 0 .
|40: homy Homothetie_y
0 0 0 0 .
|41: homz Homothetie_z
0 0 0 0 .
|42: coe Coefficient
0 0 0 0 1,0,0
|43: homo Homothetie_uniforme
0 0 0 0 .
|44: attache Attache
0 1 0 0 .
|45: nurbs Nurbs
0 1 0 0 .
|46: voisin Voisins
0 0 0 0 .
|47: nb Nombre
0 0 0 0 1,0
|48: spe Special
0 0 0 0 .
|49: tra Trajectoire
0 0 0 0 .
|50: rond Rond
0 0 0 0 .
|51: segment Segments
0 0 0 0 .
|52: rien Rien
0 0 0 0 .
|53: carre Carre
0 0 0 0 .
|54: tex Texture
0 1 0 0 0
|55: trace Trace
0 0 0 0 .
|56: secx Secousse_x
0 0 0 0 .
|57: secy Secousse_y
0 0 0 0 .
|58: secz Secousse_z
0 0 0 0 .
|59: sec ale Secousse
0 0 0 0 0
|60: rig Rigide
0 0 0 0 .
|61: lead Leader
0 0 0 0 .
|62: suiv Suiveur
0 0 0 0 .
|63: normale ortho Normale
0 0 0 0 1,0,0
|64: copie Copie
0 0 0 0 .
|65: subst Substitution
0 1 0 0 .
|66: dim Dimension
0 0 0 0 767,575
|67: groupe Groupe
0 0 0 0 .
|68: rayon Rayon
0 0 0 0 2
|69: rapide Rapide
0 1 0 0 .
|70: symx Symetrie_x
0 0 0 0 .
|71: symy Symetrie_y
0 0 0 0 .
|72: symz Symetrie_z
0 0 0 0 .
|73: sym Symetrie
0 0 0 0 .
|74: menu Menu
0 0 0 0 .
|75: masque Masque
0 0 0 0 .
|76: trait Trait
0 0 0 0 .
|77: bornes Bornes
0 0 0 0 .
|78: colonne Colonne
0 0 0 0 .
|79: nappe Nappe
0 1 0 0 .
|80: loi Loi
0 0 0 0 .
|81: choc Choc
0 0 0 0 0
|82: dessine Dessine
0 0 0 0 .
|83: echant Echantillon
0 0 0 0 .
|84: rect Rectangle
0 0 0 0 .
|85: interaction Interaction
0 0 0 0 .
|86: som Coordonnees
0 0 0 0 0,0,0
|87: amb Ambiant
0 1 0 0 0.2,0.2,0.2
|88: cin Cinematique
0 0 0 0 .
|89: acc Acceleration
0 0 0 0 0,0,0
|90: dec Deceleration
0 0 0 0 .
|91: acd Acc_dec
0 0 0 0 .
|92: param Parametres
0 0 0 0 0,0,0,0
|93: anim Animation
0 0 0 0 .
|94: clef Clefs
0 0 0 0 .
|95: tirer Tirer_sommet
0 0 0 0 .
|96: axe Axe
0 0 0 0 0,1,0
|97: brut Brut
0 0 0 0 .
|98: rel Relatif
0 0 0 0 .
|99: appr Apprentissage
0 0 0 0 .
|100: rappel Rappel
0 0 0 0 .
|101: fond_ecran Fond_ecran
0 0 0 0 .
|102: pixel_fenetre Pixel_fenetre
0 0 0 0 .
|103: tirer Tirer_grille
0 0 0 0 .
|104: pigments Pigments
0 1 0 0 .
|105: etiq Etiquettes
0 0 0 0 .
|106: cadence Cadence
0 0 0 0 .
|107: origine Origine
0 0 0 0 .
|108: gl Opengl
0 0 0 0 .
|109: fusion Fusion
0 0 0 0 .
|110: extru Extrusion
0 0 0 0 .
|111: vit vitesse Vitesse
0 0 0 0 0,0,0
|112: mas masse Masse
0 0 0 0 1
|113: for force Force
0 0 0 0 0,0,0,0
|114: vue Vue
0 0 0 0 .
|115: scene Scene
0 0 0 0 0
|116: transp Transparence
0 0 0 0 0
|117: tube Tube
0 0 0 0 .
|118: revol Revolution
0 0 0 0 .
|119: partie Partie
0 0 0 0 .
|120: bro Brosse
0 0 0 0 0,0,0
|121: panneau Panneau
0 0 0 0 .
|122: cha Champ
0 1 0 0 .
|123: courbe Courbe
0 0 0 0 .
|124: ajust Ajuste
0 0 0 0 .
|125: forme Forme
0 0 0 0 .
|126: nuage Nuage
0 0 0 0 1
|127: lecture Lecture
0 0 0 0 .
|128: periph Peripherique
0 0 0 0 .
|129: propage Propage
0 0 0 0 .
|130: tire Tire
0 0 0 0 .
|131: montage Montage
0 0 0 0 .
|132: amas Amas
0 1 0 0 .
|133: boule Boule
0 0 0 0 .
|134: fen Fenetre_graphique
0 0 0 0 .
|135: maille Maille
0 0 0 0 .
|136: audio Audio
0 0 0 0 .
|137: son Son
0 0 0 0 .
|138: midi Midi
0 0 0 0 .
|139: fft Fft
0 0 0 0 .
|140: filtre Filtre
0 0 0 0 .
|141: boite Boite
0 0 0 0 .
|142: fondu Fondu
0 0 0 0 .
|143: bosse Bosse
0 0 0 0 .
|144: att_menu Attache_menu
0 0 0 0 1
|145: etat Etat
0 0 0 0 .
|146: gra Graphique
0 0 0 0 0
|147: bitmap Bitmap
0 0 0 0 .
|148: mem Memoire
0 0 0 0 .
|149: info Info
0 0 0 0 .
|150: dyn Dynamique
0 0 0 0 1
|151: ressort Ressort
0 0 0 0 .
|152: alp Alpha
0 0 0 0 .
|153: anc col Ancre
0 0 0 0 .
|154: accroche Accroche
0 0 0 0 .
|155: tsv Teinte
0 0 0 0 0,0,1
|156: pinceau Pinceau
0 0 0 0 .
|157: police Police
0 0 0 0 .
|158: dessin Dessin
0 0 0 0 .
|159: pre Pre
0 0 0 0 .
|160: tableau Tableau
0 0 0 0 .
|161: res reseau Reseau
0 0 0 0 .
|162: neu neurone Neurones
0 0 0 0 .
|163: tord Torsion
0 0 0 0 .
|164: plie Pliage
0 0 0 0 .
|165: effile Effilage
0 0 0 0 .
|166: cube Cube
0 0 0 0 .
|167: sphere Sphere
0 0 0 0 .
|168: cylindre Cylindre
0 0 0 0 .
|169: cone Cone
0 0 0 0 .
|170: tore Tore
0 0 0 0 .
|171: proche Plan_proche
0 0 0 0 1
|172: loin Plan_lointain
0 0 0 0 100000
|173: fui Fuite
0 0 0 0 1000

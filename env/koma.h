/*
 * koma.h: vocabulaire du langage (liste a, environnement 0).
 *
 * Chaque mot-cle tient en deux lignes; sa place dans le fichier est
 * son ordinal, compte a partir de 0:
 *   barre, ordinal, deux-points, puis les noms separes par UN blanc:
 *       nom principal, alias, puis les noms longs (majuscule en tete);
 *       le dernier nom est celui des sauvegardes ascii.
 *   e1 etat e3 e4 puis les valeurs par defaut:
 *       1,0.5,2   [n] = n zeros   [n]=v = n fois v   . = aucune valeur
 *       un nombre ne commence jamais par un point (0.5, pas .5).
 * Un nom qui commence par ? est cache: il reserve l'ordinal.
 * Jamais de blanc en fin de ligne de noms, jamais de tabulation.
 * Avant la premiere barre tout est commentaire: ne pas y mettre de barre.
 *
 * Etats par defaut: lib 1 (liberation des blocs), his 1 (historique),
 * bip 1 (cloche), cont 1 (une instruction en echec arrete le texte),
 * edi 0; valeurs: edi 80 colonnes et 24 lignes, opt 0.01 (tolerance
 * de ~), PI, cont et err une valeur.
 */
|0: chemin Chemin
0 0 0 0 .
|1: texte Texte
0 0 0 0 .
|2: aide Aide
0 0 0 0 .
|3: pas Pas_a_pas
0 0 0 0 .
|4: oui Oui
0 0 0 0 .
|5: non Non
0 0 0 0 .
|6: fonc fonction Fonction
0 0 0 0 .
|7: arrondi Arrondi
0 0 0 0 .
|8: externe Externe
0 0 0 0 .
|9: log Logarithme
0 0 0 0 .
|10: pour Pour
0 0 0 0 .
|11: retour Retour
0 0 0 0 .
|12: aller Aller
0 0 0 0 .
|13: cha chaine Chaine
0 0 0 0 .
|14: lire Lire
0 0 0 0 .
|15: nom_img Nom_images
0 0 0 0 .
|16: si Si
0 0 0 0 .
|17: sinon Sinon
0 0 0 0 .
|18: tantque Tantque
0 0 0 0 .
|19: demande Demande
0 0 0 0 .
|20: sqrt racine Racine
0 0 0 0 .
|21: var Variable
0 0 0 0 .
|22: NIL Nil
0 0 0 0 .
|23: lier Lier
0 0 0 0 .
|24: ini Initialise
0 0 0 0 .
|25: PI Pi
0 0 0 0 3.14159265
|26: cos Cosinus
0 0 0 0 .
|27: sin Sinus
0 0 0 0 .
|28: tan Tangente
0 0 0 0 .
|29: sortir Sortir
0 0 0 0 .
|30: selon Selon
0 0 0 0 .
|31: cas Cas
0 0 0 0 .
|32: defaut Defaut
0 0 0 0 .
|33: ecrire Ecrire
0 0 0 0 .
|34: lib Liberation
0 1 0 0 .
|35: systeme Systeme
0 0 0 0 .
|36: edi Edition
0 0 0 0 80,24
|37: date Date
0 0 0 0 .
|38: matrice Matrice
0 0 0 0 .
|39: inv Inverse
0 0 0 0 .
|40: mod Module_complexe
0 0 0 0 .
|41: lim Limite
0 0 0 0 .
|42: centre Centre
0 0 0 0 .
|43: indice Indice
0 0 0 0 .
|44: flo Flottant
0 0 0 0 .
|45: statique Statique
0 0 0 0 .
|46: top Top
0 0 0 0 .
|47: brou exp Brouillard
0 0 0 0 .
|48: somme Somme
0 0 0 0 .
|49: moy Moyenne
0 0 0 0 .
|50: opt Option
0 0 0 0 0.01
|51: etape Etape
0 0 0 0 .
|52: bip Bip
0 1 0 0 .
|53: ent Entier
0 0 0 0 .
|54: max Maximum
0 0 0 0 .
|55: min Minimum
0 0 0 0 .
|56: cle Cle
0 0 0 0 .
|57: num Numero
0 0 0 0 .
|58: nommer Nommer
0 0 0 0 .
|59: taille Taille
0 0 0 0 .
|60: raz Remise_a_zero
0 0 0 0 .
|61: fin Fin
0 0 0 0 .
|62: $ Imprime
0 0 0 0 .
|63: com Compile
0 0 0 0 .
|64: vide Objet_vide
0 0 0 0 .
|65: ? Aide_mot
0 0 0 0 .
|66: RC Retour_chariot
0 0 0 0 .
|67: cherche Cherche
0 0 0 0 .
|68: generer Generer
0 0 0 0 .
|69: exec Execute
0 0 0 0 .
|70: film Film
0 0 0 0 .
|71: norme Norme
0 0 0 0 .
|72: acos Arccosinus
0 0 0 0 .
|73: asin Arcsinus
0 0 0 0 .
|74: atan Arctangente
0 0 0 0 .
|75: abs Absolu
0 0 0 0 .
|76: signe Signe
0 0 0 0 .
|77: arg Argument
0 0 0 0 .
|78: frac Fraction
0 0 0 0 .
|79: detruire Detruire
0 0 0 0 .
|80: mes Messages
0 0 0 0 .
|81: pic Pics
0 0 0 0 .
|82: nom Nom
0 0 0 0 .
|83: cosh Cosinus_hyp
0 0 0 0 .
|84: sinh Sinus_hyp
0 0 0 0 .
|85: tanh Tangente_hyp
0 0 0 0 .
|86: alea Aleatoire
0 0 0 0 .
|87: graine Graine
0 0 0 0 .
|88: fact Factorielle
0 0 0 0 .
|89: cont Continue
0 1 0 0 0
|90: planche Planche
0 0 0 0 .
|91: module Module
0 0 0 0 .
|92: debug Debug
0 0 0 0 .
|93: sor Sortie_pause
0 0 0 0 .
|94: cod Decode
0 0 0 0 .
|95: puls Pulsation
0 0 0 0 .
|96: nodebug Sans_debug
0 0 0 0 .
|97: var Declare
0 0 0 0 .
|98: tem Temps
0 0 0 0 .
|99: scal Produit_scalaire
0 0 0 0 .
|100: rotv Rotation_vecteur
0 0 0 0 .
|101: fonc Fonction_champ
0 0 0 0 .
|102: fenetre Fenetre
0 0 0 0 .
|103: transpose Transposee
0 0 0 0 .
|104: quitter Quitter
0 0 0 0 .
|105: his Historique
0 1 0 0 .
|106: typ Type_fichier
0 0 0 0 .
|107: ali Alias
0 0 0 0 .
|108: err Erreur
0 0 0 0 0
|109: vecteur Vecteur
0 0 0 0 .
|110: remplir Remplir
0 0 0 0 .
|111: tri Tri
0 0 0 0 .
|112: poids Poids
0 0 0 0 .
|113: affiche Affiche
0 0 0 0 .
|114: fopen Fopen
0 0 0 0 .
|115: fmot Fmot
0 0 0 0 .
|116: fclose Fclose
0 0 0 0 .
|117: fread Fread
0 0 0 0 .
|118: fwrite Fwrite
0 0 0 0 .
|119: ?119
0 0 0 0 .
|120: ?120
0 0 0 0 .
|121: ?121
0 0 0 0 .
|122: ?122
0 0 0 0 .
|123: ?123
0 0 0 0 .
|124: ?124
0 0 0 0 .
|125: ?125
0 0 0 0 .
|126: ?126
0 0 0 0 .
|127: ?127
0 0 0 0 .
|128: ?128
0 0 0 0 .
|129: ?129
0 0 0 0 .
|130: ?130
0 0 0 0 .
|131: ?131
0 0 0 0 .
|132: ?132
0 0 0 0 .
|133: ?133
0 0 0 0 .
|134: ?134
0 0 0 0 .
|135: ?135
0 0 0 0 .
|136: ?136
0 0 0 0 .
|137: ?137
0 0 0 0 .
|138: ?138
0 0 0 0 .
|139: ?139
0 0 0 0 .
|140: ?140
0 0 0 0 .
|141: ?141
0 0 0 0 .
|142: ?142
0 0 0 0 .
|143: ini_res Ressort_initial
0 0 0 0 .
|144: ?144
0 0 0 0 .
|145: ?145
0 0 0 0 .

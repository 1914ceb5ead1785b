/*
 * envb.h: cles graphiques, lues au demarrage quand l'environnement b
 * existe.
 *
 * Forme: cle=valeur; la cle est reconnue sur une a trois lettres:
 * x, y, cx, cy, rvb, zbu, ale, gra, hau, lig, win (win=largeur,hauteur),
 * mac. Une entree sans "=" arrete le programme.
 *
 * Ce fichier ne fixe rien: les valeurs par defaut (768 x 576, rvb=8,
 * zbu=1, gra=1) s'appliquent et la ligne de commande les remplace.
 */

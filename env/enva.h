/*
 * enva.h: cles de base de l'interpreteur, lues au demarrage apres le
 * chargement des environnements.
 *
 * Forme: cle=valeur, separees par des blancs ou des retours a la ligne;
 * la cle est lue sur trois lettres (buf, loc, eva, com, obj, emp, esc,
 * uti, lan, cod, deb, mal, mac); le mot sys se met seul, sans "=".
 * Une entree sans "=" arrete le programme.
 *
 * Ce fichier ne fixe rien: les valeurs par defaut du programme
 * s'appliquent et la ligne de commande les remplace.
 */

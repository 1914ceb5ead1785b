/*
 * inita.h: fichier d'initialisation sans vocabulaire graphique.
 * Premiere ligne: le repertoire des fichiers d'environnement, termine
 * par "/"; puis l'environnement 0 seul: cles,mots-cles,messages.
 */
env/
enva,koma,mesa

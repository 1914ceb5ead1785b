/*
 * initb.h: fichier d'initialisation.
 * Premiere ligne: le repertoire des fichiers d'environnement, termine
 * par "/" (les noms y sont ajoutes tels quels, avec ".h").
 * Puis une ligne par environnement: cles,mots-cles,messages.
 * La premiere est l'environnement 0 (langage), la seconde le 1 (graphique).
 */
env/
enva,koma,mesa
envb,komb,mesb

/*
 * mesa.h: messages de l'environnement 0.
 *
 * Chaque message: barre, numero, deux-points, puis le texte, qui commence
 * juste apres les deux-points et va jusqu'a la fin de la ligne.
 * La place dans le fichier est le numero, a partir de 0.
 * Echappements: \7 cloche, \e blanc (pour un blanc final), \n retour a
 * la ligne, \t tabulation.
 * Un message d'erreur finit par la cloche et, s'il clot la ligne, par \n;
 * le contexte (nom, numero) est imprime avant lui par le programme.
 * Les numeros sans emploi portent un ? pour garder la numerotation.
 * Avant la premiere barre tout est commentaire: ne pas y mettre de barre.
 */
|0:>\e
|1:\n
|2:Depassement de taille (ligne, nom ou table)\7\n
|3:Parenthese ( non fermee\7\n
|4:Objet abandonne, ligne
|5:Fin du programme\n
|6:Affectation a ce qui n'est pas une variable\7\n
|7:?\n
|8:Abandon\n
|9:Introuvable\7\n
|10:?\n
|11:Pile des variables locales pleine\7\n
|12:Pile d'evaluation pleine\7\n
|13:Espace de compilation epuise\7\n
|14:Usage illegal de l'objet\7\n
|15:Table des objets pleine\7\n
|16:?\n
|17:?\n
|18:Zone de travail doublee
|19:?\n
|20:?\n
|21:?\n
|22:Objet nul\7\n
|23:?\n
|24:?\n
|25:octets\n
|26:?\n
|27:?\n
|28:Allocation impossible\7\n
|29:?\n
|30:?\n
|31:Symbole introuvable au lien\7\n
|32:Operateur non applicable\7\n
|33:pour mal forme\7\n
|34:Erreur de syntaxe, accolades non equilibrees\7\n
|35:: variable sans valeur\7\n
|36:Ouverture du fichier impossible\7\n
|37:Erreur en ecriture\7\n
|38:\eexiste deja, l'ecraser (o/n) ?\e
|39:?\n
|40:?\n
|41:Fonction introuvable\7\n
|42:?\n
|43:#define mal forme\7\n
|44:Pas de ( apres le nom de la fonction\7\n
|45:si mal forme\7\n
|46:?\n
|47:tantque mal forme\7\n
|48:Commande>\e
|49:Racine carree d'un nombre negatif\7\n
|50:?\n
|51:Fermeture sans ouverture\7\n
|52:?\n
|53:Table des symboles trop grande\7\n
|54:?\n
|55:Etiquette introuvable\7\n
|56:Division par zero\7\n
|57:sortir sans cible\7\n
|58:selon mal forme\7\n
|59:cas mal forme\7\n
|60:Nom ou mot-cle illegal\7\n
|61:Indice hors limites\7\n
|62:?\n
|63:?\n
|64:Commentaire non ferme\7\n
|65:?\n
|66:Valeur ou indice illegal\7\n
|67:Disque plein\7\n
|68:Directive inconnue\7\n
|69:Logarithme d'un nombre negatif\7\n
|70:?\n
|71:\nInterruption: 0 abandon, 2 pause, b fin, autre reprise ?\e
|72:Reponse illegale, reprise\7\n
|73:?\n
|74:?\n
|75:Parenthese non fermee en fin de texte\7\n
|76:?\n
|77:?\n
|78:Suite (q pour quitter) ?\e
|79:Pause>\e
|80:Argument de compilation illegal\7\n
|81:Type de valeur illegal\7\n
|82:?\n
|83:Chaine non fermee\7\n
|84:var sans valeur\7\n
|85:?\n
|86:?\n
|87:?\n
|88:?\n
|89:Fonction nommee comme un mot-cle\7\n
|90:?\n
|91:?\n
|92:?\n
|93:?\n
|94:Condition de type illegal\7\n
|95:pour illegal a l'execution\7\n
|96:Rampe illegale\7\n
|97:?\n
|98:Conversion impossible ou trop d'increments\7\n
|99:Appel non lie\7\n
|100:Argument fonction illegal\7\n
|101:Nom de machine illegal\7, choisir parmi:\e
|102:?\n
|103:Message non termine par ;\7\n
|104:ERREUR INTERNE:\e
|105:Limite depassee ou bloc corrompu\7\n
|106:?\n
|107:Compilation abandonnee\7\n
|108:Execution abandonnee\7\n
|109:Aucune table de messages chargee\7\n
|110:Fichier tronque ou flux gzip coupe\7\n
|111:Objet d'un autre type dans le fichier\7\n
|112:Valeur de cle trop longue, ignoree\7\n
|113:?\n
|114:?\n
|115:?\n

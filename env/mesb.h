/*
 * mesb.h: messages de l'environnement 1 (graphique).
 * Meme format que mesa.h: la place dans le fichier est le numero.
 * Les numeros sans emploi portent un ? pour garder la numerotation.
 */
|0:?\n
|1:couleurs\n
|2:Pas d'ecran graphique (DISPLAY): la console seule\n
|3:Fenetre fermee: la console seule\n
|4:?\n
|5:?\n
|6:?\n
|7:?\n
|8:?\n
|9:?\n
|10:?\n
|11:?\n
|12:?\n
|13:?\n
|14:Pigment inconnu\7\n
|15:?\n
|16:?\n
|17:?\n
|18:?\n
|19:?\n
|20:?\n
|21:?\n
|22:?\n
|23:?\n
|24:?\n
|25:?\n
|26:?\n
|27:?\n
|28:?\n
|29:?\n
|30:?\n
|31:?\n
|32:?\n
|33:?\n
|34:?\n
|35:Trop de menus de fonctions (21 au plus)\7\n
|36:?\n
|37:?\n
|38:?\n
|39:?\n
|40:?\n
|41:?\n
|42:?\n
|43:?\n
|44:?\n
|45:?\n
|46:?\n
|47:?\n
|48:?\n
|49:?\n
|50:?\n
|51:?\n
|52:?\n
|53:?\n
|54:?\n
|55:?\n
|56:?\n
|57:?\n
|58:?\n
|59:?\n
|60:?\n
|61:?\n
|62:?\n
|63:?\n
|64:?\n
|65:?\n
|66:?\n
|67:?\n
|68:?\n
|69:?\n
|70:?\n
|71:Peripherique deja utilise\7\n
|72:?\n
|73:?\n
|74:?\n
|75:?\n
|76:?\n
|77:?\n
|78:?\n
|79:?\n
|80:Pas de boite pour ce volume\7\n
|81:?\n
|82:?\n
|83:?\n
|84:?\n
|85:?\n
|86:?\n
|87:?\n
|88:?\n
|89:Mode graphique\n
|90:?\n
|91:?\n
|92:?\n
|93:?\n
|94:?\n
|95:Pas de fenetre graphique\n
|96:?\n
|97:?\n
|98:?\n
|99:?\n
|100:?\n
|101:?\n
|102:?\n
|103:?\n
|104:?\n
|105:?\n
|106:?\n
|107:?\n
|108:?\n
|109:?\n
|110:Oeil illegal: il faut foc > 0, 0 < proche < loin, l'oeil hors du point vise et des valeurs finies\7\n
|111:Sommet non fini, volume non affiche\7\n
|112:Pas de vainqueur pour motif\7\n
|113:Courbe du coefficient: les abscisses doivent croitre\7\n
|114:Numero de neurone illegal\7\n
|115:Valeur non numerique\7\n
|116:?\n
|117:?\n
|118:?\n
|119:?\n
|120:Format d'image inconnu\7\n
|121:Fichier image tronque ou illisible\7\n
|122:Taille d'image illegale\7\n
|123:Rectangle illegal\7\n
|124:BMP non lu: 24 bits sans compression seulement\7\n
|125:Pixel hors de l'image\7\n
|126:Pas de capture du son: peripherique absent ou refuse\7\n
|127:Fichier son tronque ou illisible\7\n
|128:Fichier son trop grand: 1000000 octets de son au plus\7\n
|129:Pas de sortie du son: peripherique absent ou refuse\7\n
|130:Rayon du pinceau hors de [1, 512]\7\n
|131:Numero de pinceau hors de [0, 20]\7\n
|132:ffmpeg absent: installer le paquet ffmpeg\7\n
|133:Image absente, sautee\n
|134:Images egales ou nulles: pas de film\7\n
|135:Commande externe en echec\7\n
|136:Masse nulle, negative ou invalide: ce corps ne bouge pas\7\n
|137:Numero de sommet hors du volume\7\n
|138:Arbre de volumes en boucle: la suite de ce pas est sautee\7\n
|139:dyn pas(n) vol(n): volume inconnu ou nombre de pas invalide\7\n
|140:Chaine de leaders en boucle: lien refuse\7\n
|141:Aucune interaction en cours: ce mot parle a une scene qui tourne\7\n
|142:?\n
|143:?\n
|144:?\n
|145:Bibliotheque partagee introuvable: la fenetre ou le son reste ferme\n

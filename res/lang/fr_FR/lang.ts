<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR" sourcelanguage="en_US">
<context>
    <name>DesktopIntegration</name>
    <message>
        <source>Files are being transferred.</source>
        <translation>Des fichiers sont en cours de transfert.</translation>
    </message>
</context>
<context>
    <name>Notices</name>
    <message>
        <source>New visitor</source>
        <translation>Nouveau visiteur</translation>
    </message>
    <message>
        <source>Received</source>
        <translation>Reçu</translation>
    </message>
    <message>
        <source>Traffic limit</source>
        <translation>Limite de trafic</translation>
    </message>
</context>
<context>
    <name>DesktopPage</name>
    <message>
        <source>Go on in the tray when the window is closed</source>
        <translation>Rester dans la barre système à la fermeture</translation>
    </message>
    <message>
        <source>Start when I log in</source>
        <translation>Démarrer à l&apos;ouverture de session</translation>
    </message>
    <message>
        <source>Show notifications</source>
        <translation>Afficher des notifications</translation>
    </message>
    <message>
        <source>Desktop Settings</source>
        <translation>Bureau</translation>
    </message>
</context>
<context>
    <name>Activity</name>
    <message>
        <source>The log of events can&apos;t be written</source>
        <translation>Les événements ne peuvent être écrits dans leur fichier</translation>
    </message>
</context>
<context>
    <name>ActivityDialog</name>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Program</source>
        <translation>Programme</translation>
    </message>
    <message>
        <source>Since</source>
        <translation>Depuis</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Fichier</translation>
    </message>
    <message>
        <source>Direction</source>
        <translation>Sens</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Fait</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Débit</translation>
    </message>
    <message>
        <source>Time left</source>
        <translation>Reste</translation>
    </message>
    <message>
        <source>Visitors and transfers</source>
        <translation>Visiteurs et transferts</translation>
    </message>
    <message>
        <source>Visitors</source>
        <translation>Visiteurs</translation>
    </message>
    <message>
        <source>Transfers</source>
        <translation>Transferts</translation>
    </message>
    <message>
        <source>Events</source>
        <translation>Événements</translation>
    </message>
    <message>
        <source>Keep a log of events</source>
        <translation>Tenir un journal</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Déconnecter</translation>
    </message>
    <message>
        <source>Block</source>
        <translation>Bloquer</translation>
    </message>
    <message>
        <source>Unblock all</source>
        <translation>Tout débloquer</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>Block %1 until Quillon ends? Its connections are cut.</source>
        <translation>Bloquer %1 jusqu&apos;à la fin de Quillon ? Ses connexions seront coupées.</translation>
    </message>
</context>
<context>
    <name>AddressList</name>
    <message>
        <source>Give browsers the web application...</source>
        <translation>Donner l’application web aux navigateurs...</translation>
    </message>
    <message>
        <source>Listen Addresses</source>
        <translation>Adresses d’écoute</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Paramètres</translation>
    </message>
    <message>
        <source>Change Config</source>
        <translation>Changer de profil</translation>
    </message>
    <message>
        <source>Add new port</source>
        <translation>Ajouter un port</translation>
    </message>
    <message>
        <source>Change port</source>
        <translation>Changer le port</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Retirer</translation>
    </message>
    <message>
        <source>&lt;center&gt;&lt;b&gt;Network not found&lt;/b&gt;&lt;/center&gt;</source>
        <translation>&lt;center&gt;&lt;b&gt;Aucun réseau trouvé&lt;/b&gt;&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Accessible on local network</source>
        <translation>&lt;center&gt;Accessible sur le réseau local</translation>
    </message>
    <message>
        <source>The server is running.</source>
        <translation>Le serveur est en marche.</translation>
    </message>
    <message>
        <source>New port</source>
        <translation>Nouveau port</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Port</translation>
    </message>
    <message>
        <source>Do you want to remove it?</source>
        <translation>Voulez-vous le retirer ?</translation>
    </message>
</context>
<context>
    <name>AddressTable</name>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>Config</source>
        <translation>Profil</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>État</translation>
    </message>
    <message>
        <source>Listen Addresses</source>
        <translation>Adresses d’écoute</translation>
    </message>
</context>
<context>
    <name>ColorDialog</name>
    <message>
        <source>Color:</source>
        <translation>Couleur&#xa0;:</translation>
    </message>
</context>
<context>
    <name>SettingsDialog</name>
    <message>
        <source>&amp;Apply</source>
        <translation>&amp;Appliquer</translation>
    </message>
    <message>
        <source>Configuration Settings</source>
        <translation>Paramètres du profil</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Fermer</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Dossier</translation>
    </message>
    <message>
        <source>Aut.</source>
        <translation>Accès</translation>
    </message>
    <message>
        <source>Server</source>
        <translation>Serveur</translation>
    </message>
    <message>
        <source>DNS</source>
        <translation>DNS</translation>
    </message>
    <message>
        <source>Server2</source>
        <translation>Serveur 2</translation>
    </message>
    <message>
        <source>Can&apos;t write file: </source>
        <translation>Impossible d’écrire le fichier&#xa0;: </translation>
    </message>
    <message>
        <source>The settings stay in use until the program ends.</source>
        <translation>Les paramètres restent valables jusqu’à la fin du programme.</translation>
    </message>
    <message>
        <source>There are changes that were not applied.</source>
        <translation>Des modifications n’ont pas été appliquées.</translation>
    </message>
    <message>
        <source>&amp;Discard</source>
        <translation>A&amp;bandonner</translation>
    </message>
</context>
<context>
    <name>SettingsPage</name>
    <message>
        <source>Help</source>
        <translation>Aide</translation>
    </message>
    <message>
        <source>Help: %1</source>
        <translation>Aide&#xa0;: %1</translation>
    </message>
</context>
<context>
    <name>AccessPage</name>
    <message>
        <source>Authentication Settings</source>
        <translation>Paramètres d’accès</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Aucune</translation>
    </message>
    <message>
        <source>Password only</source>
        <translation>Mot de passe seul</translation>
    </message>
    <message>
        <source>Basic HTTP</source>
        <translation>Basic HTTP</translation>
    </message>
    <message>
        <source>Authentication mode</source>
        <translation>Mode d’authentification</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Mot de passe</translation>
    </message>
    <message>
        <source>User</source>
        <translation>Utilisateur</translation>
    </message>
    <message>
        <source>Users</source>
        <translation>Utilisateurs</translation>
    </message>
    <message>
        <source>Show passwords</source>
        <translation>Afficher les mots de passe</translation>
    </message>
    <message>
        <source>Add user</source>
        <translation>Ajouter un utilisateur</translation>
    </message>
    <message>
        <source>Remove user</source>
        <translation>Retirer l’utilisateur</translation>
    </message>
    <message>
        <source>Login</source>
        <translation>Connexion</translation>
    </message>
    <message>
        <source>Rights and home</source>
        <translation>Droits et dossier</translation>
    </message>
    <message>
        <source>Kept as a hash</source>
        <translation>Conservé sous forme de hachage</translation>
    </message>
</context>
<context>
    <name>DnsPage</name>
    <message>
        <source>DNS Settings</source>
        <translation>Paramètres DNS</translation>
    </message>
    <message>
        <source>Enable DNS Service</source>
        <translation>Utiliser le service DNS</translation>
    </message>
    <message>
        <source>User:</source>
        <translation>Utilisateur&#xa0;:</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Mot de passe&#xa0;:</translation>
    </message>
</context>
<context>
    <name>FolderPage</name>
    <message>
        <source>Folder View Settings</source>
        <translation>Affichage des dossiers</translation>
    </message>
    <message>
        <source>Show images</source>
        <translation>Afficher les images</translation>
    </message>
    <message>
        <source>Enable deleting</source>
        <translation>Autoriser la suppression</translation>
    </message>
    <message>
        <source>Show folders</source>
        <translation>Afficher les dossiers</translation>
    </message>
    <message>
        <source>Enable upload</source>
        <translation>Autoriser l’envoi</translation>
    </message>
    <message>
        <source>Instead of deleting and upload the rights of everyone hold. Where they differ from these two, browsers are refused unless the mode &quot;Standard&quot; is chosen: page &quot;Server&quot;, &quot;Answers&quot;.</source>
        <translation>Les droits de tous remplacent la suppression et l’envoi. Là où ils diffèrent de ces deux réglages, les navigateurs sont refusés, sauf si le mode « Standard » est choisi : page « Serveur », « Réponses ».</translation>
    </message>
    <message>
        <source>Rights of everyone</source>
        <translation>Droits de tous</translation>
    </message>
</context>
<context>
    <name>RightsDialog</name>
    <message>
        <source>Rights of its own</source>
        <translation>Droits propres</translation>
    </message>
    <message>
        <source>Rights and home</source>
        <translation>Droits et dossier</translation>
    </message>
    <message>
        <source>See what there is</source>
        <translation>Voir ce qu’il y a</translation>
    </message>
    <message>
        <source>Read files</source>
        <translation>Lire les fichiers</translation>
    </message>
    <message>
        <source>Add files</source>
        <translation>Ajouter des fichiers</translation>
    </message>
    <message>
        <source>Change files</source>
        <translation>Modifier les fichiers</translation>
    </message>
    <message>
        <source>Delete files</source>
        <translation>Supprimer les fichiers</translation>
    </message>
    <message>
        <source>Home folder in the share</source>
        <translation>Dossier propre dans le partage</translation>
    </message>
    <message>
        <source>Rights in detail</source>
        <translation>Droits en détail</translation>
    </message>
    <message>
        <source>Rights of everyone</source>
        <translation>Droits de tous</translation>
    </message>
</context>
<context>
    <name>ServerPage</name>
    <message>
        <source>Server Settings</source>
        <translation>Paramètres du serveur</translation>
    </message>
    <message>
        <source>Show warning messages</source>
        <translation>Afficher les avertissements</translation>
    </message>
    <message>
        <source>SSL/Secure Mode</source>
        <translation>SSL/Mode sécurisé</translation>
    </message>
    <message>
        <source>Port [1 - 65535]:</source>
        <translation>Port [1 - 65535]&#xa0;:</translation>
    </message>
    <message>
        <source>Restore default keys</source>
        <translation>Rétablir les clés par défaut</translation>
    </message>
    <message>
        <source>Browse for the private key</source>
        <translation>Parcourir pour trouver la clé privée</translation>
    </message>
    <message>
        <source>Private key:</source>
        <translation>Clé privée&#xa0;:</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Mot de passe&#xa0;:</translation>
    </message>
    <message>
        <source>Browse for the public key</source>
        <translation>Parcourir pour trouver la clé publique</translation>
    </message>
    <message>
        <source>Public key:</source>
        <translation>Clé publique&#xa0;:</translation>
    </message>
    <message>
        <source>Private Key</source>
        <translation>Clé privée</translation>
    </message>
    <message>
        <source>Open Private Key File</source>
        <translation>Ouvrir le fichier de la clé privée</translation>
    </message>
    <message>
        <source>Public Key</source>
        <translation>Clé publique</translation>
    </message>
    <message>
        <source>Open Public Key File</source>
        <translation>Ouvrir le fichier de la clé publique</translation>
    </message>
    <message>
        <source>Answers:</source>
        <translation>Réponses :</translation>
    </message>
    <message>
        <source>Classic</source>
        <translation>Classiques</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>Automatiques</translation>
    </message>
    <message>
        <source>Standard</source>
        <translation>Standard</translation>
    </message>
    <message>
        <source>All programs are answered as ever.</source>
        <translation>Tous les programmes reçoivent les réponses habituelles.</translation>
    </message>
    <message>
        <source>File managers, phone apps and players that are known to need it are answered by the standards, all others as ever.</source>
        <translation>Les gestionnaires de fichiers, applications mobiles et lecteurs qui en ont besoin reçoivent des réponses conformes aux standards, les autres les réponses habituelles.</translation>
    </message>
    <message>
        <source>All programs are answered by the standards; browsers get the web application.</source>
        <translation>Tous les programmes reçoivent des réponses conformes aux standards ; les navigateurs, l’application web.</translation>
    </message>
    <message>
        <source>Make new key...</source>
        <translation>Créer une nouvelle clé...</translation>
    </message>
    <message>
        <source>There is no certificate yet.</source>
        <translation>Il n’y a pas encore de certificat.</translation>
    </message>
    <message>
        <source>A new key and certificate are made for this computer; those in use stay where they are. Browsers will warn once more, but not on devices that trust the authority of the new one. Make them?</source>
        <translation>Une nouvelle clé et un nouveau certificat sont créés pour cet ordinateur&#xa0;; les anciens restent où ils sont. Les navigateurs avertiront encore une fois, sauf sur les appareils qui font confiance à l’autorité du nouveau. Les créer&#xa0;?</translation>
    </message>
    <message>
        <source>Announce in the network</source>
        <translation>Annoncer sur le réseau</translation>
    </message>
    <message>
        <source>Found as:</source>
        <translation>Trouvé comme&#xa0;:</translation>
    </message>
</context>
<context>
    <name>LimitsPage</name>
    <message>
        <source>Server Settings 2</source>
        <translation>Paramètres du serveur 2</translation>
    </message>
    <message>
        <source>Max. Connections:</source>
        <translation>Connexions max.&#xa0;:</translation>
    </message>
    <message>
        <source>Network traffic limit [KB]:</source>
        <translation>Limite de trafic [Ko]&#xa0;:</translation>
    </message>
    <message>
        <source>Session lifetime [s]:</source>
        <translation>Durée de session [s]&#xa0;:</translation>
    </message>
</context>
<context>
    <name>PageView</name>
    <message>
        <source>Pages</source>
        <translation>Pages</translation>
    </message>
</context>
<context>
    <name>Profile</name>
    <message>
        <source>Default</source>
        <translation>Par défaut</translation>
    </message>
</context>
<context>
    <name>EventHandler</name>
    <message>
        <source>Last connection</source>
        <translation>Dernière connexion&#xa0;</translation>
    </message>
</context>
<context>
    <name>LookDialog</name>
    <message>
        <source>&amp;Apply</source>
        <translation>&amp;Appliquer</translation>
    </message>
    <message>
        <source>Look&amp;Feel Settings</source>
        <translation>Apparence</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Style</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Couleur</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>Police</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>A&amp;nnuler</translation>
    </message>
    <message>
        <source>Color settings not working with </source>
        <translation>Les réglages de couleur n’agissent pas avec le style </translation>
    </message>
    <message>
        <source> style.</source>
        <translation>.</translation>
    </message>
    <message>
        <source>Can&apos;t write file: </source>
        <translation>Impossible d’écrire le fichier&#xa0;: </translation>
    </message>
    <message>
        <source>Desktop</source>
        <translation>Bureau</translation>
    </message>
    <message>
        <source>What starts after the login can&apos;t be changed.</source>
        <translation>Ce qui démarre à l&apos;ouverture de session ne peut être modifié.</translation>
    </message>
</context>
<context>
    <name>MessageDialog</name>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Fermer</translation>
    </message>
    <message>
        <source>Can&apos;t read file: </source>
        <translation>Impossible de lire le fichier&#xa0;: </translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Aide</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Can&apos;t make the folder</source>
        <translation>Impossible de créer le dossier</translation>
    </message>
    <message>
        <source>Max. network traffic limit</source>
        <translation>Limite de trafic&#xa0;</translation>
    </message>
    <message>
        <source>reached</source>
        <translation>atteinte</translation>
    </message>
    <message>
        <source>Server stopped on</source>
        <translation>Serveur arrêté sur</translation>
    </message>
    <message>
        <source>Sent bytes</source>
        <translation>Envoyé&#xa0;</translation>
    </message>
    <message>
        <source>Received bytes</source>
        <translation>Reçu&#xa0;</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Démarrer</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Arrêter</translation>
    </message>
    <message>
        <source>Reload public addressess</source>
        <translation>Recharger les adresses publiques</translation>
    </message>
    <message>
        <source>Reload local addresses</source>
        <translation>Recharger les adresses locales</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Paramètres</translation>
    </message>
    <message>
        <source>Look and Feel</source>
        <translation>Apparence</translation>
    </message>
    <message>
        <source>Expert mode</source>
        <translation>Mode expert</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Aide</translation>
    </message>
    <message>
        <source>About Quillon</source>
        <translation>À propos de Quillon</translation>
    </message>
    <message>
        <source>About Qt</source>
        <translation>À propos de Qt</translation>
    </message>
    <message>
        <source>&amp;Menu</source>
        <translation>&amp;Menu</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>Settings of the selected address</source>
        <translation>Paramètres de l’adresse choisie</translation>
    </message>
    <message>
        <source>Shared Content:</source>
        <translation>Contenu partagé&#xa0;:</translation>
    </message>
    <message>
        <source>The server run as root!</source>
        <translation>Le serveur s’exécute en tant que root&#xa0;!</translation>
    </message>
    <message>
        <source>Use this mode only if you want to use port 1 - 1024!</source>
        <translation>N’utilisez ce mode que si vous voulez un port de 1 à 1024&#xa0;!</translation>
    </message>
    <message>
        <source>Do you want to stop?</source>
        <translation>Voulez-vous l’arrêter&#xa0;?</translation>
    </message>
    <message>
        <source>Global Default Settings</source>
        <translation>Paramètres généraux</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version&#xa0;</translation>
    </message>
    <message>
        <source>Do you want to exit?</source>
        <translation>Voulez-vous quitter&#xa0;?</translation>
    </message>
    <message>
        <source>Can&apos;t save the settings</source>
        <translation>Impossible d’enregistrer les paramètres</translation>
    </message>
    <message>
        <source>A file of a profile can&apos;t be read, and nothing is served with it. Make it readable, and start again.</source>
        <translation>Un fichier d’un profil est illisible, et rien n’est partagé avec lui. Rendez-le lisible, puis redémarrez.</translation>
    </message>
    <message>
        <source>Some values of a profile could not be read. The defaults are used for them; the file is kept as %1</source>
        <translation>Certaines valeurs d’un profil sont illisibles. Les valeurs par défaut les remplacent ; le fichier est conservé sous %1</translation>
    </message>
    <message>
        <source>Invalid port</source>
        <translation>Port non valide</translation>
    </message>
    <message>
        <source>The shared files are accessible for everyone.</source>
        <translation>Les fichiers partagés sont accessibles à tous.</translation>
    </message>
    <message>
        <source>Do you want to set password?</source>
        <translation>Voulez-vous définir un mot de passe&#xa0;?</translation>
    </message>
    <message>
        <source>Everyone who reaches this computer could read, change and delete all of %1.</source>
        <translation>Toute personne qui atteint cet ordinateur pourrait lire, modifier et supprimer tout le contenu de %1.</translation>
    </message>
    <message>
        <source>Choose Folder...</source>
        <translation>Choisir un dossier...</translation>
    </message>
    <message>
        <source>Share it anyway</source>
        <translation>Partager quand même</translation>
    </message>
    <message>
        <source>A profile can&apos;t be read: its password and users are gone, and nothing is served with it until you have looked at its settings and saved them. If you changed the file on purpose, delete %1 and start again. Saving keeps the file as %2</source>
        <translation>Un profil est illisible : son mot de passe et ses utilisateurs sont perdus, et rien n’est servi avec lui tant que vous n’avez pas vérifié et enregistré ses réglages. Si vous avez modifié le fichier exprès, supprimez %1 et redémarrez. À l’enregistrement, le fichier est conservé sous le nom %2</translation>
    </message>
    <message>
        <source>%1 asked for a login when it ran last, with the profile &quot;%2&quot;. With &quot;%3&quot; everyone may come in.</source>
        <translation>%1 demandait une connexion la dernière fois, avec le profil « %2 ». Avec « %3 », tout le monde peut entrer.</translation>
    </message>
    <message>
        <source>Use &quot;%1&quot;</source>
        <translation>Utiliser « %1 »</translation>
    </message>
    <message>
        <source>Start without a login</source>
        <translation>Démarrer sans connexion</translation>
    </message>
    <message>
        <source>The traffic limit is reached. Begin a new count?</source>
        <translation>La limite de trafic est atteinte. Recommencer le compte ?</translation>
    </message>
    <message>
        <source>The server does not start without its key and certificate.</source>
        <translation>Le serveur ne démarre pas sans sa clé et son certificat.</translation>
    </message>
    <message>
        <source>Make a new key</source>
        <translation>Créer une nouvelle clé</translation>
    </message>
    <message>
        <source>Files are being transferred; stopping cuts them off.</source>
        <translation>Des fichiers sont en cours de transfert ; l’arrêt les interrompt.</translation>
    </message>
    <message>
        <source>Drop one file or folder of this computer.</source>
        <translation>Déposez un seul fichier ou dossier de cet ordinateur.</translation>
    </message>
    <message>
        <source>Copy address</source>
        <translation>Copier l’adresse</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Quitter</translation>
    </message>
    <message>
        <source>Copied: %1</source>
        <translation>Copié : %1</translation>
    </message>
    <message>
        <source>No server is running, so there is no address to copy.</source>
        <translation>Aucun serveur n’est démarré : il n’y a pas d’adresse à copier.</translation>
    </message>
    <message>
        <source>Download</source>
        <translation>Téléchargement</translation>
    </message>
    <message>
        <source>Upload</source>
        <translation>Envoi</translation>
    </message>
    <message>
        <source>Change</source>
        <translation>Modification</translation>
    </message>
    <message>
        <source>Deletion</source>
        <translation>Suppression</translation>
    </message>
    <message>
        <source>New folder</source>
        <translation>Nouveau dossier</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Copie</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>Déplacement</translation>
    </message>
    <message>
        <source>%1 refused (%2)</source>
        <translation>%1 : refus (%2)</translation>
    </message>
    <message>
        <source>%1 broken off</source>
        <translation>%1 : interruption</translation>
    </message>
    <message>
        <source>%1, %2 times</source>
        <translation>%1, %2 fois</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Heure</translation>
    </message>
    <message>
        <source>Visitor</source>
        <translation>Visiteur</translation>
    </message>
    <message>
        <source>Event</source>
        <translation>Événement</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Fichier</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>Visitors and transfers</source>
        <translation>Visiteurs et transferts</translation>
    </message>
    <message>
        <source>More than could be noted</source>
        <translation>Plus qu&apos;il n&apos;a pu en être noté</translation>
    </message>
    <message>
        <source>Note</source>
        <translation>Remarque</translation>
    </message>
    <message>
        <source>Open the window</source>
        <translation>Ouvrir la fenêtre</translation>
    </message>
</context>
<context>
    <name>FileMenu</name>
    <message>
        <source>Select Folder</source>
        <translation>Choisir un dossier</translation>
    </message>
    <message>
        <source>Select File</source>
        <translation>Choisir un fichier</translation>
    </message>
</context>
<context>
    <name>OkCancelButtons</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
</context>
<context>
    <name>FontPage</name>
    <message>
        <source>This is how texts will look.</source>
        <translation>Les textes auront cet aspect.</translation>
    </message>
    <message>
        <source>Font Settings</source>
        <translation>Réglages de la police</translation>
    </message>
    <message>
        <source>Size:</source>
        <translation>Taille&#xa0;:</translation>
    </message>
</context>
<context>
    <name>ColorPage</name>
    <message>
        <source>Color Settings</source>
        <translation>Réglages des couleurs</translation>
    </message>
    <message>
        <source>Background</source>
        <translation>Arrière-plan</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Texte</translation>
    </message>
    <message>
        <source>Button</source>
        <translation>Bouton</translation>
    </message>
    <message>
        <source>Set to default</source>
        <translation>Remettre par défaut</translation>
    </message>
</context>
<context>
    <name>StylePage</name>
    <message>
        <source>Style Settings</source>
        <translation>Réglages du style</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Style</translation>
    </message>
    <message>
        <source> style not available on this system.</source>
        <translation>&#xa0;: ce style n’est pas disponible sur ce système.</translation>
    </message>
    <message>
        <source>Style in use: %1</source>
        <translation>Style utilisé&#xa0;: %1</translation>
    </message>
    <message>
        <source>As the desktop</source>
        <translation>Comme le bureau</translation>
    </message>
</context>
<context>
    <name>PasswordField</name>
    <message>
        <source>Show password</source>
        <translation>Afficher le mot de passe</translation>
    </message>
</context>
<context>
    <name>ProfileDialog</name>
    <message>
        <source>Change Profile</source>
        <translation>Changer de profil</translation>
    </message>
    <message>
        <source>Select profile or edit profile name</source>
        <translation>Choisir un profil ou modifier son nom</translation>
    </message>
    <message>
        <source>New profile</source>
        <translation>Nouveau profil</translation>
    </message>
    <message>
        <source>Remove profile</source>
        <translation>Retirer le profil</translation>
    </message>
    <message>
        <source>A profile needs a name.</source>
        <translation>Un profil doit avoir un nom.</translation>
    </message>
    <message>
        <source>A profile name can&apos;t start with a dot and can&apos;t contain &quot;/&quot;.</source>
        <translation>Le nom d’un profil ne peut ni commencer par un point ni contenir «&#xa0;/&#xa0;».</translation>
    </message>
    <message>
        <source>This profile name is too long.</source>
        <translation>Ce nom de profil est trop long.</translation>
    </message>
    <message>
        <source>There is already a profile named &quot;%1&quot;.</source>
        <translation>Il existe déjà un profil nommé «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>Profile name</source>
        <translation>Nom du profil</translation>
    </message>
    <message>
        <source>Can&apos;t write file: </source>
        <translation>Impossible d’écrire le fichier&#xa0;: </translation>
    </message>
    <message>
        <source>Used config profile is not removable.</source>
        <translation>Un profil utilisé ne peut pas être retiré.</translation>
    </message>
    <message>
        <source>Remove the profile &quot;%1&quot; and its users?</source>
        <translation>Supprimer le profil « %1 » et ses utilisateurs ?</translation>
    </message>
    <message>
        <source>Duplicate profile</source>
        <translation>Dupliquer le profil</translation>
    </message>
    <message>
        <source>Rename profile</source>
        <translation>Renommer le profil</translation>
    </message>
    <message>
        <source>This profile can't be used until its settings are saved.</source>
        <translation>Ce profil n’est utilisable qu’une fois ses réglages enregistrés.</translation>
    </message>
</context>
<context>
    <name>Reachability</name>
    <message>
        <source>&lt;center&gt;Server accessible only on local network&lt;/center&gt;</source>
        <translation>&lt;center&gt;Serveur accessible seulement sur le réseau local&lt;/center&gt;</translation>
    </message>
    <message>
        <source>No port check service configured</source>
        <translation>Aucun service de vérification du port configuré</translation>
    </message>
    <message>
        <source>User and password required for DNS service.</source>
        <translation>Le service DNS demande un utilisateur et un mot de passe.</translation>
    </message>
    <message>
        <source>No DNS service configured</source>
        <translation>Aucun service DNS configuré</translation>
    </message>
    <message>
        <source>No internet connection</source>
        <translation>Pas de connexion à Internet</translation>
    </message>
</context>
<context>
    <name>ServerRow</name>
    <message>
        <source>not exists!</source>
        <translation>n’existe pas&#xa0;!</translation>
    </message>
    <message>
        <source>Choose what to share.</source>
        <translation>Choisissez ce qui doit être partagé.</translation>
    </message>
    <message>
        <source>Unable to start the server</source>
        <translation>Impossible de démarrer le serveur</translation>
    </message>
    <message>
        <source>Shared now: %1</source>
        <translation>Partagé maintenant&#xa0;: %1</translation>
    </message>
    <message>
        <source>The profile can&apos;t be used until its settings are saved</source>
        <translation>Le profil ne peut pas servir tant que ses réglages ne sont pas enregistrés</translation>
    </message>
    <message>
        <source>This is neither a file nor a folder: %1</source>
        <translation>Ceci n’est ni un fichier ni un dossier : %1</translation>
    </message>
    <message>
        <source>This can&apos;t be read: %1</source>
        <translation>Ceci est illisible : %1</translation>
    </message>
</context>
<context>
    <name>ServerRows</name>
    <message>
        <source>Invalid port</source>
        <translation>Port non valide</translation>
    </message>
    <message>
        <source>What was shared at which address could not be read; the rows begin anew, and none starts by itself. The file is kept as %1</source>
        <translation>Ce qui était partagé à chaque adresse est illisible ; les lignes repartent de zéro et aucune ne démarre seule. Le fichier est conservé sous le nom %1</translation>
    </message>
    <message>
        <source>The network address is gone, the server waits for it: %1</source>
        <translation>L’adresse réseau a disparu, le serveur l’attend : %1</translation>
    </message>
    <message>
        <source>The certificate was not renewed for this computer&apos;s addresses: %1</source>
        <translation>Le certificat n’a pas été renouvelé pour les adresses de cet ordinateur&#xa0;: %1</translation>
    </message>
    <message>
        <source>Press Start to serve at %1</source>
        <translation>Appuyez sur Démarrer pour servir sur %1</translation>
    </message>
    <message>
        <source>Can&apos;t save the settings</source>
        <translation>Impossible d’enregistrer les réglages</translation>
    </message>
    <message>
        <source>A port is a number from 1 to 65535.</source>
        <translation>Un port est un nombre de 1 à 65535.</translation>
    </message>
    <message>
        <source>Another row has the port %1 already.</source>
        <translation>Une autre ligne a déjà le port %1.</translation>
    </message>
    <message>
        <source>There is no address to serve at</source>
        <translation>Il n’y a aucune adresse où servir</translation>
    </message>
    <message>
        <source>Connect to a network first.</source>
        <translation>Connectez-vous d’abord à un réseau.</translation>
    </message>
    <message>
        <source>The certificate is valid until %1 only: %2. &quot;Make new key...&quot; in the settings makes one that is renewed by itself.</source>
        <translation>Le certificat n&apos;est valable que jusqu&apos;au %1 : %2. « Créer une nouvelle clé... » dans les paramètres en crée un qui se renouvelle seul.</translation>
    </message>
    <message>
        <source>The network address is there, the server runs: %1</source>
        <translation>L’adresse réseau est là, le serveur fonctionne : %1</translation>
    </message>
</context>
<context>
    <name>Connection</name>
    <message>
        <source>Wrong password</source>
        <translation>Mot de passe incorrect</translation>
    </message>
</context>
<context>
    <name>BrowserPages</name>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Taille</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Date</translation>
    </message>
    <message>
        <source>Select Action</source>
        <translation>Choisir une action</translation>
    </message>
    <message>
        <source>Add File</source>
        <translation>Ajouter un fichier</translation>
    </message>
    <message>
        <source>Create Folder</source>
        <translation>Nouveau dossier</translation>
    </message>
    <message>
        <source>File Manager in window</source>
        <translation>Gestionnaire de fichiers hors du navigateur</translation>
    </message>
    <message>
        <source>File Manager in browser</source>
        <translation>Gestionnaire de fichiers dans le navigateur</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Dossier</translation>
    </message>
    <message>
        <source>Empty</source>
        <translation>Vide</translation>
    </message>
</context>
<context>
    <name>Prompts</name>
    <message>
        <source>All (*.*)</source>
        <translation>Tous (*.*)</translation>
    </message>
</context>
<context>
    <name>StepField</name>
    <message>
        <source>Less</source>
        <translation>Moins</translation>
    </message>
    <message>
        <source>More</source>
        <translation>Plus</translation>
    </message>
</context>
<context>
    <name>UserDialog</name>
    <message>
        <source>Add user</source>
        <translation>Ajouter un utilisateur</translation>
    </message>
    <message>
        <source>User</source>
        <translation>Utilisateur</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Mot de passe</translation>
    </message>
    <message>
        <source>A user needs a password.</source>
        <translation>Un utilisateur a besoin d’un mot de passe.</translation>
    </message>
    <message>
        <source>Keep readable for Digest</source>
        <translation>Garder lisible, pour Digest</translation>
    </message>
    <message>
        <source>There is not enough memory to keep the password.</source>
        <translation>La mémoire ne suffit pas pour garder le mot de passe.</translation>
    </message>
</context>
<context>
    <name>WebServer</name>
    <message>
        <source>The password is empty: everyone is admitted.</source>
        <translation>Le mot de passe est vide&#xa0;: tout le monde entre.</translation>
    </message>
    <message>
        <source>The renewed certificate can&apos;t be used; new connections get the one before.</source>
        <translation>Le certificat renouvelé est inutilisable&#xa0;; les nouvelles connexions reçoivent le précédent.</translation>
    </message>
    <message>
        <source>The certificate can&apos;t be read: %1</source>
        <translation>Impossible de lire le certificat&#xa0;: %1</translation>
    </message>
    <message>
        <source>This is no certificate: %1</source>
        <translation>Ce n’est pas un certificat&#xa0;: %1</translation>
    </message>
    <message>
        <source>The private key can&apos;t be read: %1</source>
        <translation>Impossible de lire la clé privée&#xa0;: %1</translation>
    </message>
    <message>
        <source>The private key can&apos;t be used, its pass phrase may be wrong: %1</source>
        <translation>La clé privée est inutilisable, son mot de passe est peut-être faux&#xa0;: %1</translation>
    </message>
    <message>
        <source>The certificate %1 is not that of the private key %2</source>
        <translation>Le certificat %1 ne correspond pas à la clé privée %2</translation>
    </message>
    <message>
        <source>The TLS library refuses the keys: %1</source>
        <translation>La bibliothèque TLS refuse les clés : %1</translation>
    </message>
    <message>
        <source>Too many wrong passwords from %1: further ones have to wait.</source>
        <translation>Trop de mots de passe incorrects de %1 : les suivants devront attendre.</translation>
    </message>
    <message>
        <source>Too many wrong passwords for one account, from several addresses: new visitors have to wait a little.</source>
        <translation>Trop de mots de passe incorrects pour un compte, depuis plusieurs adresses : les nouveaux visiteurs devront attendre un peu.</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Avertissement</translation>
    </message>
    <message>
        <source>WebDAV properties</source>
        <translation>Propriétés WebDAV</translation>
    </message>
    <message>
        <source>The file system can&apos;t keep the properties that programs give to files. They are kept until the server ends.</source>
        <translation>Le système de fichiers ne peut pas garder les propriétés que les programmes donnent aux fichiers. Elles sont gardées jusqu’à la fin du serveur.</translation>
    </message>
</context>
<context>
    <name>WebServices</name>
    <message>
        <source>&lt;centcer&gt;Public addresses: %1 , %2&lt;/center&gt;</source>
        <translation>&lt;centcer&gt;Adresses publiques&#xa0;: %1 , %2&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Public addresses: %1&lt;/center&gt;</source>
        <translation>&lt;center&gt;Adresses publiques&#xa0;: %1&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Public addresses: %1:%2 , %3:%4&lt;/center&gt;</source>
        <translation>&lt;center&gt;Adresses publiques&#xa0;: %1:%2 , %3:%4&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Public addresses: %1:%2&lt;/center&gt;</source>
        <translation>&lt;center&gt;Adresses publiques&#xa0;: %1:%2&lt;/center&gt;</translation>
    </message>
</context>
<context>
    <name>KeyMaker</name>
    <message>
        <source>The program &quot;openssl&quot; is needed to make a key.</source>
        <translation>Il faut le programme « openssl » pour créer une clé.</translation>
    </message>
    <message>
        <source>Can&apos;t write to the folder: </source>
        <translation>Impossible d’écrire dans le dossier : </translation>
    </message>
    <message>
        <source>Fingerprint (SHA-256): %1</source>
        <translation>Empreinte (SHA-256) : %1</translation>
    </message>
    <message>
        <source>Names: %1</source>
        <translation>Noms : %1</translation>
    </message>
    <message>
        <source>Fingerprint of this computer&apos;s authority (SHA-256): %1</source>
        <translation>Empreinte de l’autorité de cet ordinateur (SHA-256) : %1</translation>
    </message>
</context>
<context>
    <name>AddressHero</name>
    <message>
        <source>Copy</source>
        <translation>Copier</translation>
    </message>
    <message>
        <source>QR code</source>
        <translation>Code QR</translation>
    </message>
    <message>
        <source>Copy the address</source>
        <translation>Copier l’adresse</translation>
    </message>
    <message>
        <source>Show the address to a phone's camera</source>
        <translation>Montrer l’adresse à l’appareil photo d’un téléphone</translation>
    </message>
    <message>
        <source>Further addresses, which others may not reach</source>
        <translation>Autres adresses, que d’autres n’atteignent peut-être pas</translation>
    </message>
    <message>
        <source>Cable</source>
        <translation>Câble</translation>
    </message>
    <message>
        <source>Wi-Fi</source>
        <translation>Wi-Fi</translation>
    </message>
    <message>
        <source>Mobile network</source>
        <translation>Réseau mobile</translation>
    </message>
    <message>
        <source>VPN</source>
        <translation>VPN</translation>
    </message>
    <message>
        <source>Containers</source>
        <translation>Conteneurs</translation>
    </message>
    <message>
        <source>Shared: %1</source>
        <translation>Partagé : %1</translation>
    </message>
    <message>
        <source>Once on each device: open this page, and install the certificate that it offers if the device shows the same fingerprint of it. Browsers don&apos;t warn from then on.</source>
        <translation>Une fois sur chaque appareil&#xa0;: ouvrez cette page et installez le certificat proposé, si l’appareil en montre la même empreinte. Dès lors, les navigateurs n’avertissent plus.</translation>
    </message>
</context>
<context>
    <name>AddressDialog</name>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Fermer</translation>
    </message>
    <message>
        <source>Trust this computer</source>
        <translation>Faire confiance à cet ordinateur</translation>
    </message>
</context>
<context>
    <name>QrCode</name>
    <message>
        <source>QR code: %1</source>
        <translation>Code QR : %1</translation>
    </message>
</context>
<context>
    <name>PermissionButton</name>
    <message>
        <source>Visitors may look</source>
        <translation>Les visiteurs peuvent regarder</translation>
    </message>
    <message>
        <source>Look</source>
        <translation>Regarder</translation>
    </message>
    <message>
        <source>Visitors may look and add</source>
        <translation>Les visiteurs peuvent regarder et ajouter</translation>
    </message>
    <message>
        <source>Look and add</source>
        <translation>Regarder et ajouter</translation>
    </message>
    <message>
        <source>File managers may replace, too</source>
        <translation>Gestionnaires de fichiers : remplacer</translation>
    </message>
    <message>
        <source>Visitors may change everything</source>
        <translation>Les visiteurs peuvent tout modifier</translation>
    </message>
    <message>
        <source>Change everything</source>
        <translation>Tout modifier</translation>
    </message>
    <message>
        <source>Visitors may add only</source>
        <translation>Les visiteurs peuvent seulement ajouter</translation>
    </message>
    <message>
        <source>Add only</source>
        <translation>Seulement ajouter</translation>
    </message>
    <message>
        <source>Visitors may do as set</source>
        <translation>Les visiteurs peuvent ce qui est réglé</translation>
    </message>
    <message>
        <source>Reached by everyone</source>
        <translation>Accessible à tous</translation>
    </message>
    <message>
        <source>With a password</source>
        <translation>Avec un mot de passe</translation>
    </message>
    <message>
        <source>With a name and password</source>
        <translation>Avec un nom et un mot de passe</translation>
    </message>
    <message>
        <source>Other addresses differ</source>
        <translation>Il en va autrement à d’autres adresses</translation>
    </message>
    <message>
        <source>Only the standard answers take files and show none. Answer all programs by the standards?</source>
        <translation>Seules les réponses standard acceptent des fichiers sans en montrer. Répondre à tous les programmes selon les standards ?</translation>
    </message>
    <message>
        <source>Can't write file: </source>
        <translation>Impossible d’écrire le fichier : </translation>
    </message>
</context>
</TS>

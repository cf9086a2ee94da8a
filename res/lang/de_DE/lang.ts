<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en_US">
<context>
    <name>DesktopIntegration</name>
    <message>
        <source>Files are being transferred.</source>
        <translation>Dateien werden übertragen.</translation>
    </message>
</context>
<context>
    <name>Notices</name>
    <message>
        <source>New visitor</source>
        <translation>Neuer Besucher</translation>
    </message>
    <message>
        <source>Received</source>
        <translation>Empfangen</translation>
    </message>
    <message>
        <source>Traffic limit</source>
        <translation>Datenlimit</translation>
    </message>
</context>
<context>
    <name>DesktopPage</name>
    <message>
        <source>Go on in the tray when the window is closed</source>
        <translation>Beim Schließen im Infobereich weiterlaufen</translation>
    </message>
    <message>
        <source>Start when I log in</source>
        <translation>Bei der Anmeldung starten</translation>
    </message>
    <message>
        <source>Show notifications</source>
        <translation>Benachrichtigungen zeigen</translation>
    </message>
    <message>
        <source>Desktop Settings</source>
        <translation>Arbeitsplatz</translation>
    </message>
</context>
<context>
    <name>Activity</name>
    <message>
        <source>The log of events can&apos;t be written</source>
        <translation>Die Ereignisse können nicht in ihre Datei geschrieben werden</translation>
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
        <translation>Name</translation>
    </message>
    <message>
        <source>Program</source>
        <translation>Programm</translation>
    </message>
    <message>
        <source>Since</source>
        <translation>Seit</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Direction</source>
        <translation>Richtung</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Tempo</translation>
    </message>
    <message>
        <source>Time left</source>
        <translation>Restzeit</translation>
    </message>
    <message>
        <source>Visitors and transfers</source>
        <translation>Besucher und Übertragungen</translation>
    </message>
    <message>
        <source>Visitors</source>
        <translation>Besucher</translation>
    </message>
    <message>
        <source>Transfers</source>
        <translation>Übertragungen</translation>
    </message>
    <message>
        <source>Events</source>
        <translation>Ereignisse</translation>
    </message>
    <message>
        <source>Keep a log of events</source>
        <translation>Ereignisse aufzeichnen</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Trennen</translation>
    </message>
    <message>
        <source>Block</source>
        <translation>Sperren</translation>
    </message>
    <message>
        <source>Unblock all</source>
        <translation>Alle entsperren</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Block %1 until Quillon ends? Its connections are cut.</source>
        <translation>%1 sperren, bis Quillon endet? Die Verbindungen von dort werden getrennt.</translation>
    </message>
</context>
<context>
    <name>AddressList</name>
    <message>
        <source>Give browsers the web application...</source>
        <translation>Browsern die Web-Anwendung geben...</translation>
    </message>
    <message>
        <source>Listen Addresses</source>
        <translation>Adressen des Servers</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Change Config</source>
        <translation>Profil wechseln</translation>
    </message>
    <message>
        <source>Add new port</source>
        <translation>Port hinzufügen</translation>
    </message>
    <message>
        <source>Change port</source>
        <translation>Port ändern</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>&lt;center&gt;&lt;b&gt;Network not found&lt;/b&gt;&lt;/center&gt;</source>
        <translation>&lt;center&gt;&lt;b&gt;Kein Netz gefunden&lt;/b&gt;&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Accessible on local network</source>
        <translation>&lt;center&gt;Erreichbar im lokalen Netz</translation>
    </message>
    <message>
        <source>The server is running.</source>
        <translation>Der Server läuft.</translation>
    </message>
    <message>
        <source>New port</source>
        <translation>Neuer Port</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Port</translation>
    </message>
    <message>
        <source>Do you want to remove it?</source>
        <translation>Wollen Sie ihn entfernen?</translation>
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
        <translation>Status</translation>
    </message>
    <message>
        <source>Listen Addresses</source>
        <translation>Adressen des Servers</translation>
    </message>
</context>
<context>
    <name>ColorDialog</name>
    <message>
        <source>Color:</source>
        <translation>Farbe:</translation>
    </message>
</context>
<context>
    <name>SettingsDialog</name>
    <message>
        <source>&amp;Apply</source>
        <translation>Über&amp;nehmen</translation>
    </message>
    <message>
        <source>Configuration Settings</source>
        <translation>Einstellungen des Profils</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Schließen</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Aut.</source>
        <translation>Zugang</translation>
    </message>
    <message>
        <source>Server</source>
        <translation>Server</translation>
    </message>
    <message>
        <source>DNS</source>
        <translation>DNS</translation>
    </message>
    <message>
        <source>Server2</source>
        <translation>Server 2</translation>
    </message>
    <message>
        <source>Can&apos;t write file: </source>
        <translation>Diese Datei kann nicht geschrieben werden: </translation>
    </message>
    <message>
        <source>The settings stay in use until the program ends.</source>
        <translation>Die Einstellungen gelten bis zum Ende des Programms.</translation>
    </message>
    <message>
        <source>There are changes that were not applied.</source>
        <translation>Es gibt Änderungen, die nicht angewendet wurden.</translation>
    </message>
    <message>
        <source>&amp;Discard</source>
        <translation>&amp;Verwerfen</translation>
    </message>
</context>
<context>
    <name>SettingsPage</name>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Help: %1</source>
        <translation>Hilfe: %1</translation>
    </message>
</context>
<context>
    <name>AccessPage</name>
    <message>
        <source>Authentication Settings</source>
        <translation>Einstellungen des Zugangs</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>Password only</source>
        <translation>Nur Passwort</translation>
    </message>
    <message>
        <source>Basic HTTP</source>
        <translation>Basic HTTP</translation>
    </message>
    <message>
        <source>Authentication mode</source>
        <translation>Art der Anmeldung</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>User</source>
        <translation>Benutzer</translation>
    </message>
    <message>
        <source>Users</source>
        <translation>Benutzer</translation>
    </message>
    <message>
        <source>Show passwords</source>
        <translation>Passwörter anzeigen</translation>
    </message>
    <message>
        <source>Add user</source>
        <translation>Benutzer hinzufügen</translation>
    </message>
    <message>
        <source>Remove user</source>
        <translation>Benutzer entfernen</translation>
    </message>
    <message>
        <source>Login</source>
        <translation>Anmeldung</translation>
    </message>
    <message>
        <source>Rights and home</source>
        <translation>Rechte und Ordner</translation>
    </message>
    <message>
        <source>Kept as a hash</source>
        <translation>Als Hash gespeichert</translation>
    </message>
</context>
<context>
    <name>DnsPage</name>
    <message>
        <source>DNS Settings</source>
        <translation>DNS-Einstellungen</translation>
    </message>
    <message>
        <source>Enable DNS Service</source>
        <translation>DNS-Dienst verwenden</translation>
    </message>
    <message>
        <source>User:</source>
        <translation>Benutzer:</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Passwort:</translation>
    </message>
</context>
<context>
    <name>FolderPage</name>
    <message>
        <source>Folder View Settings</source>
        <translation>Ordneransicht</translation>
    </message>
    <message>
        <source>Show images</source>
        <translation>Bilder anzeigen</translation>
    </message>
    <message>
        <source>Enable deleting</source>
        <translation>Löschen erlauben</translation>
    </message>
    <message>
        <source>Show folders</source>
        <translation>Ordner anzeigen</translation>
    </message>
    <message>
        <source>Enable upload</source>
        <translation>Hochladen erlauben</translation>
    </message>
    <message>
        <source>Instead of deleting and upload the rights of everyone hold. Where they differ from these two, browsers are refused unless the mode &quot;Standard&quot; is chosen: page &quot;Server&quot;, &quot;Answers&quot;.</source>
        <translation>Statt Löschen und Hochladen gelten die Rechte aller. Wo sie von diesen beiden abweichen, werden Browser abgewiesen, außer der Modus „Standard“ ist gewählt: Seite „Server“, „Antworten“.</translation>
    </message>
    <message>
        <source>Rights of everyone</source>
        <translation>Rechte aller</translation>
    </message>
</context>
<context>
    <name>RightsDialog</name>
    <message>
        <source>Rights of its own</source>
        <translation>Eigene Rechte</translation>
    </message>
    <message>
        <source>Rights and home</source>
        <translation>Rechte und Ordner</translation>
    </message>
    <message>
        <source>See what there is</source>
        <translation>Sehen, was da ist</translation>
    </message>
    <message>
        <source>Read files</source>
        <translation>Dateien lesen</translation>
    </message>
    <message>
        <source>Add files</source>
        <translation>Dateien hinzufügen</translation>
    </message>
    <message>
        <source>Change files</source>
        <translation>Dateien ändern</translation>
    </message>
    <message>
        <source>Delete files</source>
        <translation>Dateien löschen</translation>
    </message>
    <message>
        <source>Home folder in the share</source>
        <translation>Eigener Ordner in der Freigabe</translation>
    </message>
    <message>
        <source>Rights in detail</source>
        <translation>Rechte im Einzelnen</translation>
    </message>
    <message>
        <source>Rights of everyone</source>
        <translation>Rechte aller</translation>
    </message>
</context>
<context>
    <name>ServerPage</name>
    <message>
        <source>Server Settings</source>
        <translation>Einstellungen des Servers</translation>
    </message>
    <message>
        <source>Show warning messages</source>
        <translation>Warnungen anzeigen</translation>
    </message>
    <message>
        <source>SSL/Secure Mode</source>
        <translation>SSL/Sicherer Modus</translation>
    </message>
    <message>
        <source>Port [1 - 65535]:</source>
        <translation>Port [1 - 65535]:</translation>
    </message>
    <message>
        <source>Restore default keys</source>
        <translation>Standardschlüssel wiederherstellen</translation>
    </message>
    <message>
        <source>Browse for the private key</source>
        <translation>Privaten Schlüssel suchen</translation>
    </message>
    <message>
        <source>Private key:</source>
        <translation>Privater Schlüssel:</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Passwort:</translation>
    </message>
    <message>
        <source>Browse for the public key</source>
        <translation>Öffentlichen Schlüssel suchen</translation>
    </message>
    <message>
        <source>Public key:</source>
        <translation>Öffentlicher Schlüssel:</translation>
    </message>
    <message>
        <source>Private Key</source>
        <translation>Privater Schlüssel</translation>
    </message>
    <message>
        <source>Open Private Key File</source>
        <translation>Datei des privaten Schlüssels öffnen</translation>
    </message>
    <message>
        <source>Public Key</source>
        <translation>Öffentlicher Schlüssel</translation>
    </message>
    <message>
        <source>Open Public Key File</source>
        <translation>Datei des öffentlichen Schlüssels öffnen</translation>
    </message>
    <message>
        <source>Answers:</source>
        <translation>Antworten:</translation>
    </message>
    <message>
        <source>Classic</source>
        <translation>Klassisch</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>Automatisch</translation>
    </message>
    <message>
        <source>Standard</source>
        <translation>Standard</translation>
    </message>
    <message>
        <source>All programs are answered as ever.</source>
        <translation>Alle Programme bekommen die gewohnten Antworten.</translation>
    </message>
    <message>
        <source>File managers, phone apps and players that are known to need it are answered by the standards, all others as ever.</source>
        <translation>Dateimanager, Handy-Apps und Abspielprogramme, die es bekanntlich brauchen, bekommen Antworten nach den Standards, alle anderen die gewohnten.</translation>
    </message>
    <message>
        <source>All programs are answered by the standards; browsers get the web application.</source>
        <translation>Alle Programme bekommen Antworten nach den Standards, Browser die Web-Anwendung.</translation>
    </message>
    <message>
        <source>Make new key...</source>
        <translation>Neuen Schlüssel erzeugen...</translation>
    </message>
    <message>
        <source>There is no certificate yet.</source>
        <translation>Es gibt noch kein Zertifikat.</translation>
    </message>
    <message>
        <source>A new key and certificate are made for this computer; those in use stay where they are. Browsers will warn once more, but not on devices that trust the authority of the new one. Make them?</source>
        <translation>Für diesen Computer werden ein neuer Schlüssel und ein neues Zertifikat erzeugt; die bisherigen bleiben, wo sie sind. Browser warnen dann noch einmal, nicht aber auf Geräten, die der Zertifizierungsstelle des neuen vertrauen. Erzeugen?</translation>
    </message>
    <message>
        <source>Announce in the network</source>
        <translation>Im Netz ankündigen</translation>
    </message>
    <message>
        <source>Found as:</source>
        <translation>Gefunden als:</translation>
    </message>
</context>
<context>
    <name>LimitsPage</name>
    <message>
        <source>Server Settings 2</source>
        <translation>Einstellungen des Servers 2</translation>
    </message>
    <message>
        <source>Max. Connections:</source>
        <translation>Max. Verbindungen:</translation>
    </message>
    <message>
        <source>Network traffic limit [KB]:</source>
        <translation>Datenlimit [KB]:</translation>
    </message>
    <message>
        <source>Session lifetime [s]:</source>
        <translation>Sitzungsdauer [s]:</translation>
    </message>
</context>
<context>
    <name>PageView</name>
    <message>
        <source>Pages</source>
        <translation>Seiten</translation>
    </message>
</context>
<context>
    <name>Profile</name>
    <message>
        <source>Default</source>
        <translation>Standard</translation>
    </message>
</context>
<context>
    <name>EventHandler</name>
    <message>
        <source>Last connection</source>
        <translation>Letzte Verbindung</translation>
    </message>
</context>
<context>
    <name>LookDialog</name>
    <message>
        <source>&amp;Apply</source>
        <translation>Über&amp;nehmen</translation>
    </message>
    <message>
        <source>Look&amp;Feel Settings</source>
        <translation>Aussehen</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Stil</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>Schrift</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>Color settings not working with </source>
        <translation>Die Farbeinstellungen wirken nicht beim Stil </translation>
    </message>
    <message>
        <source> style.</source>
        <translation>.</translation>
    </message>
    <message>
        <source>Can&apos;t write file: </source>
        <translation>Diese Datei kann nicht geschrieben werden: </translation>
    </message>
    <message>
        <source>Desktop</source>
        <translation>Arbeitsplatz</translation>
    </message>
    <message>
        <source>What starts after the login can&apos;t be changed.</source>
        <translation>Was nach der Anmeldung startet, kann nicht geändert werden.</translation>
    </message>
</context>
<context>
    <name>MessageDialog</name>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Schließen</translation>
    </message>
    <message>
        <source>Can&apos;t read file: </source>
        <translation>Diese Datei kann nicht gelesen werden: </translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Can&apos;t make the folder</source>
        <translation>Dieser Ordner kann nicht angelegt werden</translation>
    </message>
    <message>
        <source>Max. network traffic limit</source>
        <translation>Datenlimit</translation>
    </message>
    <message>
        <source>reached</source>
        <translation>erreicht</translation>
    </message>
    <message>
        <source>Server stopped on</source>
        <translation>Server gestoppt auf</translation>
    </message>
    <message>
        <source>Sent bytes</source>
        <translation>Gesendet</translation>
    </message>
    <message>
        <source>Received bytes</source>
        <translation>Empfangen</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Starten</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stoppen</translation>
    </message>
    <message>
        <source>Reload public addressess</source>
        <translation>Öffentliche Adressen neu laden</translation>
    </message>
    <message>
        <source>Reload local addresses</source>
        <translation>Lokale Adressen neu laden</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Look and Feel</source>
        <translation>Aussehen</translation>
    </message>
    <message>
        <source>Expert mode</source>
        <translation>Expertenmodus</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>About Quillon</source>
        <translation>Über Quillon</translation>
    </message>
    <message>
        <source>About Qt</source>
        <translation>Über Qt</translation>
    </message>
    <message>
        <source>&amp;Menu</source>
        <translation>&amp;Menü</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Settings of the selected address</source>
        <translation>Einstellungen der ausgewählten Adresse</translation>
    </message>
    <message>
        <source>Shared Content:</source>
        <translation>Freigegebener Inhalt:</translation>
    </message>
    <message>
        <source>The server run as root!</source>
        <translation>Der Server läuft als root!</translation>
    </message>
    <message>
        <source>Use this mode only if you want to use port 1 - 1024!</source>
        <translation>Verwenden Sie diesen Modus nur, wenn Sie einen Port von 1 bis 1024 brauchen!</translation>
    </message>
    <message>
        <source>Do you want to stop?</source>
        <translation>Möchten Sie ihn stoppen?</translation>
    </message>
    <message>
        <source>Global Default Settings</source>
        <translation>Allgemeine Einstellungen</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>Do you want to exit?</source>
        <translation>Möchten Sie das Programm beenden?</translation>
    </message>
    <message>
        <source>Can&apos;t save the settings</source>
        <translation>Die Einstellungen können nicht gespeichert werden</translation>
    </message>
    <message>
        <source>A file of a profile can&apos;t be read, and nothing is served with it. Make it readable, and start again.</source>
        <translation>Eine Datei eines Profils ist nicht lesbar; nichts wird damit freigegeben. Machen Sie sie lesbar, und starten Sie neu.</translation>
    </message>
    <message>
        <source>Some values of a profile could not be read. The defaults are used for them; the file is kept as %1</source>
        <translation>Einige Werte eines Profils sind nicht lesbar. Für sie gelten die Vorgaben; die Datei bleibt erhalten als %1</translation>
    </message>
    <message>
        <source>Invalid port</source>
        <translation>Ungültiger Port</translation>
    </message>
    <message>
        <source>The shared files are accessible for everyone.</source>
        <translation>Die freigegebenen Dateien sind für alle zugänglich.</translation>
    </message>
    <message>
        <source>Do you want to set password?</source>
        <translation>Möchten Sie ein Passwort setzen?</translation>
    </message>
    <message>
        <source>Everyone who reaches this computer could read, change and delete all of %1.</source>
        <translation>Jeder, der diesen Computer erreicht, könnte alles in %1 lesen, ändern und löschen.</translation>
    </message>
    <message>
        <source>Choose Folder...</source>
        <translation>Ordner wählen...</translation>
    </message>
    <message>
        <source>Share it anyway</source>
        <translation>Trotzdem freigeben</translation>
    </message>
    <message>
        <source>A profile can&apos;t be read: its password and users are gone, and nothing is served with it until you have looked at its settings and saved them. If you changed the file on purpose, delete %1 and start again. Saving keeps the file as %2</source>
        <translation>Ein Profil ist nicht lesbar: sein Passwort und seine Benutzer sind verloren, und es wird nichts damit bereitgestellt, bis Sie seine Einstellungen angesehen und gespeichert haben. Wenn Sie die Datei absichtlich geändert haben, löschen Sie %1 und starten Sie neu. Beim Speichern bleibt die Datei erhalten als %2</translation>
    </message>
    <message>
        <source>%1 asked for a login when it ran last, with the profile &quot;%2&quot;. With &quot;%3&quot; everyone may come in.</source>
        <translation>%1 verlangte zuletzt eine Anmeldung, mit dem Profil „%2“. Mit „%3“ darf jeder herein.</translation>
    </message>
    <message>
        <source>Use &quot;%1&quot;</source>
        <translation>„%1“ verwenden</translation>
    </message>
    <message>
        <source>Start without a login</source>
        <translation>Ohne Anmeldung starten</translation>
    </message>
    <message>
        <source>The traffic limit is reached. Begin a new count?</source>
        <translation>Die Datengrenze ist erreicht. Neu zu zählen beginnen?</translation>
    </message>
    <message>
        <source>The server does not start without its key and certificate.</source>
        <translation>Der Server startet nicht ohne seinen Schlüssel und sein Zertifikat.</translation>
    </message>
    <message>
        <source>Make a new key</source>
        <translation>Neuen Schlüssel erzeugen</translation>
    </message>
    <message>
        <source>Files are being transferred; stopping cuts them off.</source>
        <translation>Es werden gerade Dateien übertragen; das Anhalten bricht sie ab.</translation>
    </message>
    <message>
        <source>Drop one file or folder of this computer.</source>
        <translation>Lassen Sie eine Datei oder einen Ordner dieses Computers fallen, nichts sonst.</translation>
    </message>
    <message>
        <source>Copy address</source>
        <translation>Adresse kopieren</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Copied: %1</source>
        <translation>Kopiert: %1</translation>
    </message>
    <message>
        <source>No server is running, so there is no address to copy.</source>
        <translation>Kein Server läuft; es gibt keine Adresse zu kopieren.</translation>
    </message>
    <message>
        <source>Download</source>
        <translation>Download</translation>
    </message>
    <message>
        <source>Upload</source>
        <translation>Upload</translation>
    </message>
    <message>
        <source>Change</source>
        <translation>Änderung</translation>
    </message>
    <message>
        <source>Deletion</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>New folder</source>
        <translation>Neuer Ordner</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopie</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>Verschieben</translation>
    </message>
    <message>
        <source>%1 refused (%2)</source>
        <translation>%1 abgelehnt (%2)</translation>
    </message>
    <message>
        <source>%1 broken off</source>
        <translation>%1 abgebrochen</translation>
    </message>
    <message>
        <source>%1, %2 times</source>
        <translation>%1, %2-mal</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Visitor</source>
        <translation>Besucher</translation>
    </message>
    <message>
        <source>Event</source>
        <translation>Ereignis</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>Visitors and transfers</source>
        <translation>Besucher und Übertragungen</translation>
    </message>
    <message>
        <source>More than could be noted</source>
        <translation>Mehr, als festgehalten werden konnte</translation>
    </message>
    <message>
        <source>Note</source>
        <translation>Hinweis</translation>
    </message>
    <message>
        <source>Open the window</source>
        <translation>Fenster öffnen</translation>
    </message>
</context>
<context>
    <name>FileMenu</name>
    <message>
        <source>Select Folder</source>
        <translation>Ordner auswählen</translation>
    </message>
    <message>
        <source>Select File</source>
        <translation>Datei auswählen</translation>
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
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>FontPage</name>
    <message>
        <source>This is how texts will look.</source>
        <translation>So werden Texte aussehen.</translation>
    </message>
    <message>
        <source>Font Settings</source>
        <translation>Einstellungen der Schrift</translation>
    </message>
    <message>
        <source>Size:</source>
        <translation>Größe:</translation>
    </message>
</context>
<context>
    <name>ColorPage</name>
    <message>
        <source>Color Settings</source>
        <translation>Einstellungen der Farben</translation>
    </message>
    <message>
        <source>Background</source>
        <translation>Hintergrund</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>Button</source>
        <translation>Taste</translation>
    </message>
    <message>
        <source>Set to default</source>
        <translation>Auf Standard setzen</translation>
    </message>
</context>
<context>
    <name>StylePage</name>
    <message>
        <source>Style Settings</source>
        <translation>Einstellungen des Stils</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Stil</translation>
    </message>
    <message>
        <source> style not available on this system.</source>
        <translation>: Dieser Stil ist auf diesem System nicht verfügbar.</translation>
    </message>
    <message>
        <source>Style in use: %1</source>
        <translation>Verwendeter Stil: %1</translation>
    </message>
    <message>
        <source>As the desktop</source>
        <translation>Wie der Desktop</translation>
    </message>
</context>
<context>
    <name>PasswordField</name>
    <message>
        <source>Show password</source>
        <translation>Passwort anzeigen</translation>
    </message>
</context>
<context>
    <name>ProfileDialog</name>
    <message>
        <source>Change Profile</source>
        <translation>Profil wechseln</translation>
    </message>
    <message>
        <source>Select profile or edit profile name</source>
        <translation>Profil auswählen oder seinen Namen ändern</translation>
    </message>
    <message>
        <source>New profile</source>
        <translation>Neues Profil</translation>
    </message>
    <message>
        <source>Remove profile</source>
        <translation>Profil entfernen</translation>
    </message>
    <message>
        <source>A profile needs a name.</source>
        <translation>Ein Profil braucht einen Namen.</translation>
    </message>
    <message>
        <source>A profile name can&apos;t start with a dot and can&apos;t contain &quot;/&quot;.</source>
        <translation>Der Name eines Profils kann nicht mit einem Punkt beginnen und kein „/“ enthalten.</translation>
    </message>
    <message>
        <source>This profile name is too long.</source>
        <translation>Dieser Profilname ist zu lang.</translation>
    </message>
    <message>
        <source>There is already a profile named &quot;%1&quot;.</source>
        <translation>Es gibt schon ein Profil mit dem Namen „%1“.</translation>
    </message>
    <message>
        <source>Profile name</source>
        <translation>Name des Profils</translation>
    </message>
    <message>
        <source>Can&apos;t write file: </source>
        <translation>Diese Datei kann nicht geschrieben werden: </translation>
    </message>
    <message>
        <source>Used config profile is not removable.</source>
        <translation>Ein verwendetes Profil lässt sich nicht entfernen.</translation>
    </message>
    <message>
        <source>Remove the profile &quot;%1&quot; and its users?</source>
        <translation>Das Profil „%1“ und seine Benutzer entfernen?</translation>
    </message>
    <message>
        <source>Duplicate profile</source>
        <translation>Profil duplizieren</translation>
    </message>
    <message>
        <source>Rename profile</source>
        <translation>Profil umbenennen</translation>
    </message>
    <message>
        <source>This profile can't be used until its settings are saved.</source>
        <translation>Dieses Profil ist erst zu gebrauchen, wenn seine Einstellungen gespeichert sind.</translation>
    </message>
</context>
<context>
    <name>Reachability</name>
    <message>
        <source>&lt;center&gt;Server accessible only on local network&lt;/center&gt;</source>
        <translation>&lt;center&gt;Server nur im lokalen Netz erreichbar&lt;/center&gt;</translation>
    </message>
    <message>
        <source>No port check service configured</source>
        <translation>Kein Prüfdienst für den Port eingerichtet</translation>
    </message>
    <message>
        <source>User and password required for DNS service.</source>
        <translation>Der DNS-Dienst braucht Benutzer und Passwort.</translation>
    </message>
    <message>
        <source>No DNS service configured</source>
        <translation>Kein DNS-Dienst eingerichtet</translation>
    </message>
    <message>
        <source>No internet connection</source>
        <translation>Keine Verbindung zum Internet</translation>
    </message>
</context>
<context>
    <name>ServerRow</name>
    <message>
        <source>not exists!</source>
        <translation>existiert nicht!</translation>
    </message>
    <message>
        <source>Choose what to share.</source>
        <translation>Wählen Sie, was freigegeben werden soll.</translation>
    </message>
    <message>
        <source>Unable to start the server</source>
        <translation>Der Server kann nicht gestartet werden</translation>
    </message>
    <message>
        <source>Shared now: %1</source>
        <translation>Jetzt freigegeben: %1</translation>
    </message>
    <message>
        <source>The profile can&apos;t be used until its settings are saved</source>
        <translation>Das Profil kann erst benutzt werden, wenn seine Einstellungen gespeichert sind</translation>
    </message>
    <message>
        <source>This is neither a file nor a folder: %1</source>
        <translation>Das ist weder eine Datei noch ein Ordner: %1</translation>
    </message>
    <message>
        <source>This can&apos;t be read: %1</source>
        <translation>Das kann nicht gelesen werden: %1</translation>
    </message>
</context>
<context>
    <name>ServerRows</name>
    <message>
        <source>Invalid port</source>
        <translation>Ungültiger Port</translation>
    </message>
    <message>
        <source>What was shared at which address could not be read; the rows begin anew, and none starts by itself. The file is kept as %1</source>
        <translation>Was unter welcher Adresse freigegeben war, ließ sich nicht lesen; die Zeilen beginnen neu, und keine startet von selbst. Die Datei bleibt erhalten als %1</translation>
    </message>
    <message>
        <source>The network address is gone, the server waits for it: %1</source>
        <translation>Die Netzadresse ist weg, der Server wartet auf sie: %1</translation>
    </message>
    <message>
        <source>The certificate was not renewed for this computer&apos;s addresses: %1</source>
        <translation>Das Zertifikat wurde für die Adressen dieses Computers nicht erneuert: %1</translation>
    </message>
    <message>
        <source>Press Start to serve at %1</source>
        <translation>Drücken Sie Start für %1</translation>
    </message>
    <message>
        <source>Can&apos;t save the settings</source>
        <translation>Die Einstellungen lassen sich nicht speichern</translation>
    </message>
    <message>
        <source>A port is a number from 1 to 65535.</source>
        <translation>Ein Port ist eine Zahl von 1 bis 65535.</translation>
    </message>
    <message>
        <source>Another row has the port %1 already.</source>
        <translation>Eine andere Zeile hat den Port %1 schon.</translation>
    </message>
    <message>
        <source>There is no address to serve at</source>
        <translation>Es gibt keine Adresse, unter der etwas bereitgestellt werden kann</translation>
    </message>
    <message>
        <source>Connect to a network first.</source>
        <translation>Verbinden Sie sich zuerst mit einem Netz.</translation>
    </message>
    <message>
        <source>The certificate is valid until %1 only: %2. &quot;Make new key...&quot; in the settings makes one that is renewed by itself.</source>
        <translation>Das Zertifikat gilt nur noch bis %1: %2. „Neuen Schlüssel erzeugen...“ in den Einstellungen macht eines, das sich von selbst erneuert.</translation>
    </message>
    <message>
        <source>The network address is there, the server runs: %1</source>
        <translation>Die Netzadresse ist da, der Server läuft: %1</translation>
    </message>
</context>
<context>
    <name>Connection</name>
    <message>
        <source>Wrong password</source>
        <translation>Falsches Passwort</translation>
    </message>
</context>
<context>
    <name>BrowserPages</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Umfang</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Select Action</source>
        <translation>Aktionen</translation>
    </message>
    <message>
        <source>Add File</source>
        <translation>Datei hochladen</translation>
    </message>
    <message>
        <source>Create Folder</source>
        <translation>Ordner anlegen</translation>
    </message>
    <message>
        <source>File Manager in window</source>
        <translation>Dateimanager im Fenster</translation>
    </message>
    <message>
        <source>File Manager in browser</source>
        <translation>Dateimanager im Browser</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Empty</source>
        <translation>Leer</translation>
    </message>
</context>
<context>
    <name>Prompts</name>
    <message>
        <source>All (*.*)</source>
        <translation>Alle (*.*)</translation>
    </message>
</context>
<context>
    <name>StepField</name>
    <message>
        <source>Less</source>
        <translation>Weniger</translation>
    </message>
    <message>
        <source>More</source>
        <translation>Mehr</translation>
    </message>
</context>
<context>
    <name>UserDialog</name>
    <message>
        <source>Add user</source>
        <translation>Benutzer hinzufügen</translation>
    </message>
    <message>
        <source>User</source>
        <translation>Benutzer</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>A user needs a password.</source>
        <translation>Ein Benutzer braucht ein Passwort.</translation>
    </message>
    <message>
        <source>Keep readable for Digest</source>
        <translation>Lesbar behalten, für Digest</translation>
    </message>
    <message>
        <source>There is not enough memory to keep the password.</source>
        <translation>Der Speicher reicht nicht, um das Passwort zu sichern.</translation>
    </message>
</context>
<context>
    <name>WebServer</name>
    <message>
        <source>The password is empty: everyone is admitted.</source>
        <translation>Das Passwort ist leer: Jeder kommt herein.</translation>
    </message>
    <message>
        <source>The renewed certificate can&apos;t be used; new connections get the one before.</source>
        <translation>Das erneuerte Zertifikat ist nicht zu gebrauchen; neue Verbindungen bekommen das bisherige.</translation>
    </message>
    <message>
        <source>The certificate can&apos;t be read: %1</source>
        <translation>Das Zertifikat kann nicht gelesen werden: %1</translation>
    </message>
    <message>
        <source>This is no certificate: %1</source>
        <translation>Dies ist kein Zertifikat: %1</translation>
    </message>
    <message>
        <source>The private key can&apos;t be read: %1</source>
        <translation>Der private Schlüssel kann nicht gelesen werden: %1</translation>
    </message>
    <message>
        <source>The private key can&apos;t be used, its pass phrase may be wrong: %1</source>
        <translation>Der private Schlüssel ist nicht verwendbar, vielleicht ist sein Passwort falsch: %1</translation>
    </message>
    <message>
        <source>The certificate %1 is not that of the private key %2</source>
        <translation>Das Zertifikat %1 gehört nicht zum privaten Schlüssel %2</translation>
    </message>
    <message>
        <source>The TLS library refuses the keys: %1</source>
        <translation>Die TLS-Bibliothek lehnt die Schlüssel ab: %1</translation>
    </message>
    <message>
        <source>Too many wrong passwords from %1: further ones have to wait.</source>
        <translation>Zu viele falsche Passwörter von %1: Weitere müssen warten.</translation>
    </message>
    <message>
        <source>Too many wrong passwords for one account, from several addresses: new visitors have to wait a little.</source>
        <translation>Zu viele falsche Passwörter für ein Konto, von mehreren Adressen: Neue Besucher müssen kurz warten.</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>WebDAV properties</source>
        <translation>WebDAV-Eigenschaften</translation>
    </message>
    <message>
        <source>The file system can&apos;t keep the properties that programs give to files. They are kept until the server ends.</source>
        <translation>Das Dateisystem kann die Eigenschaften nicht behalten, die Programme den Dateien geben. Sie bleiben, bis der Server endet.</translation>
    </message>
</context>
<context>
    <name>WebServices</name>
    <message>
        <source>&lt;centcer&gt;Public addresses: %1 , %2&lt;/center&gt;</source>
        <translation>&lt;centcer&gt;Öffentliche Adressen: %1 , %2&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Public addresses: %1&lt;/center&gt;</source>
        <translation>&lt;center&gt;Öffentliche Adressen: %1&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Public addresses: %1:%2 , %3:%4&lt;/center&gt;</source>
        <translation>&lt;center&gt;Öffentliche Adressen: %1:%2 , %3:%4&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Public addresses: %1:%2&lt;/center&gt;</source>
        <translation>&lt;center&gt;Öffentliche Adressen: %1:%2&lt;/center&gt;</translation>
    </message>
</context>
<context>
    <name>KeyMaker</name>
    <message>
        <source>The program &quot;openssl&quot; is needed to make a key.</source>
        <translation>Um einen Schlüssel zu erzeugen, wird das Programm „openssl“ gebraucht.</translation>
    </message>
    <message>
        <source>Can&apos;t write to the folder: </source>
        <translation>In den Ordner kann nicht geschrieben werden: </translation>
    </message>
    <message>
        <source>Fingerprint (SHA-256): %1</source>
        <translation>Fingerabdruck (SHA-256): %1</translation>
    </message>
    <message>
        <source>Names: %1</source>
        <translation>Namen: %1</translation>
    </message>
    <message>
        <source>Fingerprint of this computer&apos;s authority (SHA-256): %1</source>
        <translation>Fingerabdruck der Zertifizierungsstelle dieses Computers (SHA-256): %1</translation>
    </message>
</context>
<context>
    <name>AddressHero</name>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>QR code</source>
        <translation>QR-Code</translation>
    </message>
    <message>
        <source>Copy the address</source>
        <translation>Die Adresse kopieren</translation>
    </message>
    <message>
        <source>Show the address to a phone's camera</source>
        <translation>Die Adresse der Kamera eines Telefons zeigen</translation>
    </message>
    <message>
        <source>Further addresses, which others may not reach</source>
        <translation>Weitere Adressen, die andere vielleicht nicht erreichen</translation>
    </message>
    <message>
        <source>Cable</source>
        <translation>Kabel</translation>
    </message>
    <message>
        <source>Wi-Fi</source>
        <translation>WLAN</translation>
    </message>
    <message>
        <source>Mobile network</source>
        <translation>Mobilfunk</translation>
    </message>
    <message>
        <source>VPN</source>
        <translation>VPN</translation>
    </message>
    <message>
        <source>Containers</source>
        <translation>Container</translation>
    </message>
    <message>
        <source>Shared: %1</source>
        <translation>Freigegeben: %1</translation>
    </message>
    <message>
        <source>Once on each device: open this page, and install the certificate that it offers if the device shows the same fingerprint of it. Browsers don&apos;t warn from then on.</source>
        <translation>Einmal auf jedem Gerät: Öffnen Sie diese Seite, und installieren Sie das angebotene Zertifikat, wenn das Gerät denselben Fingerabdruck davon zeigt. Von da an warnen Browser nicht mehr.</translation>
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
        <translation>&amp;Schließen</translation>
    </message>
    <message>
        <source>Trust this computer</source>
        <translation>Diesem Computer vertrauen</translation>
    </message>
</context>
<context>
    <name>QrCode</name>
    <message>
        <source>QR code: %1</source>
        <translation>QR-Code: %1</translation>
    </message>
</context>
<context>
    <name>PermissionButton</name>
    <message>
        <source>Visitors may look</source>
        <translation>Besucher dürfen ansehen</translation>
    </message>
    <message>
        <source>Look</source>
        <translation>Ansehen</translation>
    </message>
    <message>
        <source>Visitors may look and add</source>
        <translation>Besucher dürfen ansehen und hinzufügen</translation>
    </message>
    <message>
        <source>Look and add</source>
        <translation>Ansehen und hinzufügen</translation>
    </message>
    <message>
        <source>File managers may replace, too</source>
        <translation>Dateiverwaltungen ersetzen auch</translation>
    </message>
    <message>
        <source>Visitors may change everything</source>
        <translation>Besucher dürfen alles ändern</translation>
    </message>
    <message>
        <source>Change everything</source>
        <translation>Alles ändern</translation>
    </message>
    <message>
        <source>Visitors may add only</source>
        <translation>Besucher dürfen nur hinzufügen</translation>
    </message>
    <message>
        <source>Add only</source>
        <translation>Nur hinzufügen</translation>
    </message>
    <message>
        <source>Visitors may do as set</source>
        <translation>Besucher dürfen, was eingestellt ist</translation>
    </message>
    <message>
        <source>Reached by everyone</source>
        <translation>Erreichbar für alle</translation>
    </message>
    <message>
        <source>With a password</source>
        <translation>Mit Passwort</translation>
    </message>
    <message>
        <source>With a name and password</source>
        <translation>Mit Name und Passwort</translation>
    </message>
    <message>
        <source>Other addresses differ</source>
        <translation>Für andere Adressen gilt anderes</translation>
    </message>
    <message>
        <source>Only the standard answers take files and show none. Answer all programs by the standards?</source>
        <translation>Nur die Standard-Antworten nehmen Dateien an und zeigen keine. Allen Programmen nach den Standards antworten?</translation>
    </message>
    <message>
        <source>Can't write file: </source>
        <translation>Diese Datei kann nicht geschrieben werden: </translation>
    </message>
</context>
</TS>

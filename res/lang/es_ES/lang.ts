<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es_ES" sourcelanguage="en_US">
<context>
    <name>DesktopIntegration</name>
    <message>
        <source>Files are being transferred.</source>
        <translation>Se están transfiriendo archivos.</translation>
    </message>
</context>
<context>
    <name>Notices</name>
    <message>
        <source>New visitor</source>
        <translation>Visitante nuevo</translation>
    </message>
    <message>
        <source>Received</source>
        <translation>Recibido</translation>
    </message>
    <message>
        <source>Traffic limit</source>
        <translation>Límite de tráfico</translation>
    </message>
</context>
<context>
    <name>DesktopPage</name>
    <message>
        <source>Go on in the tray when the window is closed</source>
        <translation>Seguir en la bandeja al cerrar la ventana</translation>
    </message>
    <message>
        <source>Start when I log in</source>
        <translation>Iniciar al entrar en la sesión</translation>
    </message>
    <message>
        <source>Show notifications</source>
        <translation>Mostrar notificaciones</translation>
    </message>
    <message>
        <source>Desktop Settings</source>
        <translation>Escritorio</translation>
    </message>
</context>
<context>
    <name>Activity</name>
    <message>
        <source>The log of events can&apos;t be written</source>
        <translation>Los sucesos no se pueden escribir en su archivo</translation>
    </message>
</context>
<context>
    <name>ActivityDialog</name>
    <message>
        <source>Address</source>
        <translation>Dirección</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>Program</source>
        <translation>Programa</translation>
    </message>
    <message>
        <source>Since</source>
        <translation>Desde</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Archivo</translation>
    </message>
    <message>
        <source>Direction</source>
        <translation>Sentido</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Hecho</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Velocidad</translation>
    </message>
    <message>
        <source>Time left</source>
        <translation>Falta</translation>
    </message>
    <message>
        <source>Visitors and transfers</source>
        <translation>Visitantes y transferencias</translation>
    </message>
    <message>
        <source>Visitors</source>
        <translation>Visitantes</translation>
    </message>
    <message>
        <source>Transfers</source>
        <translation>Transferencias</translation>
    </message>
    <message>
        <source>Events</source>
        <translation>Sucesos</translation>
    </message>
    <message>
        <source>Keep a log of events</source>
        <translation>Llevar un registro</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Desconectar</translation>
    </message>
    <message>
        <source>Block</source>
        <translation>Bloquear</translation>
    </message>
    <message>
        <source>Unblock all</source>
        <translation>Desbloquear todo</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Cerrar</translation>
    </message>
    <message>
        <source>Block %1 until Quillon ends? Its connections are cut.</source>
        <translation>¿Bloquear %1 hasta que termine Quillon? Se cortarán sus conexiones.</translation>
    </message>
</context>
<context>
    <name>AddressList</name>
    <message>
        <source>Give browsers the web application...</source>
        <translation>Dar la aplicación web a los navegadores...</translation>
    </message>
    <message>
        <source>Listen Addresses</source>
        <translation>Direcciones de escucha</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Ajustes</translation>
    </message>
    <message>
        <source>Change Config</source>
        <translation>Cambiar de perfil</translation>
    </message>
    <message>
        <source>Add new port</source>
        <translation>Añadir puerto</translation>
    </message>
    <message>
        <source>Change port</source>
        <translation>Cambiar puerto</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Quitar</translation>
    </message>
    <message>
        <source>&lt;center&gt;&lt;b&gt;Network not found&lt;/b&gt;&lt;/center&gt;</source>
        <translation>&lt;center&gt;&lt;b&gt;No se encuentra ninguna red&lt;/b&gt;&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Accessible on local network</source>
        <translation>&lt;center&gt;Accesible en la red local</translation>
    </message>
    <message>
        <source>The server is running.</source>
        <translation>El servidor está en marcha.</translation>
    </message>
    <message>
        <source>New port</source>
        <translation>Puerto nuevo</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Puerto</translation>
    </message>
    <message>
        <source>Do you want to remove it?</source>
        <translation>¿Desea quitarlo?</translation>
    </message>
</context>
<context>
    <name>AddressTable</name>
    <message>
        <source>Address</source>
        <translation>Dirección</translation>
    </message>
    <message>
        <source>Config</source>
        <translation>Perfil</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Estado</translation>
    </message>
    <message>
        <source>Listen Addresses</source>
        <translation>Direcciones de escucha</translation>
    </message>
</context>
<context>
    <name>ColorDialog</name>
    <message>
        <source>Color:</source>
        <translation>Color:</translation>
    </message>
</context>
<context>
    <name>SettingsDialog</name>
    <message>
        <source>&amp;Apply</source>
        <translation>&amp;Aplicar</translation>
    </message>
    <message>
        <source>Configuration Settings</source>
        <translation>Ajustes del perfil</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Cerrar</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Carpeta</translation>
    </message>
    <message>
        <source>Aut.</source>
        <translation>Acceso</translation>
    </message>
    <message>
        <source>Server</source>
        <translation>Servidor</translation>
    </message>
    <message>
        <source>DNS</source>
        <translation>DNS</translation>
    </message>
    <message>
        <source>Server2</source>
        <translation>Servidor 2</translation>
    </message>
    <message>
        <source>Can&apos;t write file: </source>
        <translation>No se puede escribir el archivo: </translation>
    </message>
    <message>
        <source>The settings stay in use until the program ends.</source>
        <translation>Los ajustes valen hasta que termine el programa.</translation>
    </message>
    <message>
        <source>There are changes that were not applied.</source>
        <translation>Hay cambios que no se han aplicado.</translation>
    </message>
    <message>
        <source>&amp;Discard</source>
        <translation>&amp;Descartar</translation>
    </message>
</context>
<context>
    <name>SettingsPage</name>
    <message>
        <source>Help</source>
        <translation>Ayuda</translation>
    </message>
    <message>
        <source>Help: %1</source>
        <translation>Ayuda: %1</translation>
    </message>
</context>
<context>
    <name>AccessPage</name>
    <message>
        <source>Authentication Settings</source>
        <translation>Ajustes de acceso</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Ninguna</translation>
    </message>
    <message>
        <source>Password only</source>
        <translation>Solo contraseña</translation>
    </message>
    <message>
        <source>Basic HTTP</source>
        <translation>Basic HTTP</translation>
    </message>
    <message>
        <source>Authentication mode</source>
        <translation>Modo de autenticación</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Contraseña</translation>
    </message>
    <message>
        <source>User</source>
        <translation>Usuario</translation>
    </message>
    <message>
        <source>Users</source>
        <translation>Usuarios</translation>
    </message>
    <message>
        <source>Show passwords</source>
        <translation>Mostrar contraseñas</translation>
    </message>
    <message>
        <source>Add user</source>
        <translation>Añadir usuario</translation>
    </message>
    <message>
        <source>Remove user</source>
        <translation>Quitar usuario</translation>
    </message>
    <message>
        <source>Login</source>
        <translation>Acceso</translation>
    </message>
    <message>
        <source>Rights and home</source>
        <translation>Permisos y carpeta</translation>
    </message>
    <message>
        <source>Kept as a hash</source>
        <translation>Guardada como hash</translation>
    </message>
</context>
<context>
    <name>DnsPage</name>
    <message>
        <source>DNS Settings</source>
        <translation>Ajustes de DNS</translation>
    </message>
    <message>
        <source>Enable DNS Service</source>
        <translation>Usar el servicio DNS</translation>
    </message>
    <message>
        <source>User:</source>
        <translation>Usuario:</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Contraseña:</translation>
    </message>
</context>
<context>
    <name>FolderPage</name>
    <message>
        <source>Folder View Settings</source>
        <translation>Vista de carpetas</translation>
    </message>
    <message>
        <source>Show images</source>
        <translation>Mostrar imágenes</translation>
    </message>
    <message>
        <source>Enable deleting</source>
        <translation>Permitir borrar</translation>
    </message>
    <message>
        <source>Show folders</source>
        <translation>Mostrar carpetas</translation>
    </message>
    <message>
        <source>Enable upload</source>
        <translation>Permitir subir</translation>
    </message>
    <message>
        <source>Instead of deleting and upload the rights of everyone hold. Where they differ from these two, browsers are refused unless the mode &quot;Standard&quot; is chosen: page &quot;Server&quot;, &quot;Answers&quot;.</source>
        <translation>En lugar de borrar y subir rigen los derechos de todos. Si difieren de estas dos opciones, se rechaza a los navegadores, salvo que se elija el modo «Estándar»: página «Servidor», «Respuestas».</translation>
    </message>
    <message>
        <source>Rights of everyone</source>
        <translation>Derechos de todos</translation>
    </message>
</context>
<context>
    <name>RightsDialog</name>
    <message>
        <source>Rights of its own</source>
        <translation>Permisos propios</translation>
    </message>
    <message>
        <source>Rights and home</source>
        <translation>Permisos y carpeta</translation>
    </message>
    <message>
        <source>See what there is</source>
        <translation>Ver lo que hay</translation>
    </message>
    <message>
        <source>Read files</source>
        <translation>Leer archivos</translation>
    </message>
    <message>
        <source>Add files</source>
        <translation>Añadir archivos</translation>
    </message>
    <message>
        <source>Change files</source>
        <translation>Cambiar archivos</translation>
    </message>
    <message>
        <source>Delete files</source>
        <translation>Borrar archivos</translation>
    </message>
    <message>
        <source>Home folder in the share</source>
        <translation>Carpeta propia en lo compartido</translation>
    </message>
    <message>
        <source>Rights in detail</source>
        <translation>Derechos en detalle</translation>
    </message>
    <message>
        <source>Rights of everyone</source>
        <translation>Derechos de todos</translation>
    </message>
</context>
<context>
    <name>ServerPage</name>
    <message>
        <source>Server Settings</source>
        <translation>Ajustes del servidor</translation>
    </message>
    <message>
        <source>Show warning messages</source>
        <translation>Mostrar advertencias</translation>
    </message>
    <message>
        <source>SSL/Secure Mode</source>
        <translation>SSL/Modo seguro</translation>
    </message>
    <message>
        <source>Port [1 - 65535]:</source>
        <translation>Puerto [1 - 65535]:</translation>
    </message>
    <message>
        <source>Restore default keys</source>
        <translation>Restaurar claves predeterminadas</translation>
    </message>
    <message>
        <source>Browse for the private key</source>
        <translation>Buscar la clave privada</translation>
    </message>
    <message>
        <source>Private key:</source>
        <translation>Clave privada:</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Contraseña:</translation>
    </message>
    <message>
        <source>Browse for the public key</source>
        <translation>Buscar la clave pública</translation>
    </message>
    <message>
        <source>Public key:</source>
        <translation>Clave pública:</translation>
    </message>
    <message>
        <source>Private Key</source>
        <translation>Clave privada</translation>
    </message>
    <message>
        <source>Open Private Key File</source>
        <translation>Abrir el archivo de la clave privada</translation>
    </message>
    <message>
        <source>Public Key</source>
        <translation>Clave pública</translation>
    </message>
    <message>
        <source>Open Public Key File</source>
        <translation>Abrir el archivo de la clave pública</translation>
    </message>
    <message>
        <source>Answers:</source>
        <translation>Respuestas:</translation>
    </message>
    <message>
        <source>Classic</source>
        <translation>Clásicas</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>Automáticas</translation>
    </message>
    <message>
        <source>Standard</source>
        <translation>Estándar</translation>
    </message>
    <message>
        <source>All programs are answered as ever.</source>
        <translation>Todos los programas reciben las respuestas de siempre.</translation>
    </message>
    <message>
        <source>File managers, phone apps and players that are known to need it are answered by the standards, all others as ever.</source>
        <translation>Los gestores de archivos, las aplicaciones de móvil y los reproductores que lo necesitan reciben respuestas según los estándares; los demás, las de siempre.</translation>
    </message>
    <message>
        <source>All programs are answered by the standards; browsers get the web application.</source>
        <translation>Todos los programas reciben respuestas según los estándares; los navegadores, la aplicación web.</translation>
    </message>
    <message>
        <source>Make new key...</source>
        <translation>Crear una clave nueva...</translation>
    </message>
    <message>
        <source>There is no certificate yet.</source>
        <translation>Todavía no hay ningún certificado.</translation>
    </message>
    <message>
        <source>A new key and certificate are made for this computer; those in use stay where they are. Browsers will warn once more, but not on devices that trust the authority of the new one. Make them?</source>
        <translation>Se crean una clave y un certificado nuevos para este ordenador; los actuales se quedan donde están. Los navegadores avisarán otra vez, salvo en los dispositivos que confían en la autoridad del nuevo. ¿Crearlos?</translation>
    </message>
    <message>
        <source>Announce in the network</source>
        <translation>Anunciar en la red</translation>
    </message>
    <message>
        <source>Found as:</source>
        <translation>Encontrado como:</translation>
    </message>
</context>
<context>
    <name>LimitsPage</name>
    <message>
        <source>Server Settings 2</source>
        <translation>Ajustes del servidor 2</translation>
    </message>
    <message>
        <source>Max. Connections:</source>
        <translation>Conexiones máx.:</translation>
    </message>
    <message>
        <source>Network traffic limit [KB]:</source>
        <translation>Límite de tráfico [KB]:</translation>
    </message>
    <message>
        <source>Session lifetime [s]:</source>
        <translation>Duración de la sesión [s]:</translation>
    </message>
</context>
<context>
    <name>PageView</name>
    <message>
        <source>Pages</source>
        <translation>Páginas</translation>
    </message>
</context>
<context>
    <name>Profile</name>
    <message>
        <source>Default</source>
        <translation>Predeterminado</translation>
    </message>
</context>
<context>
    <name>EventHandler</name>
    <message>
        <source>Last connection</source>
        <translation>Última conexión</translation>
    </message>
</context>
<context>
    <name>LookDialog</name>
    <message>
        <source>&amp;Apply</source>
        <translation>&amp;Aplicar</translation>
    </message>
    <message>
        <source>Look&amp;Feel Settings</source>
        <translation>Apariencia</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Estilo</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Color</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>Letra</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Cancelar</translation>
    </message>
    <message>
        <source>Color settings not working with </source>
        <translation>Los ajustes de color no funcionan con el estilo </translation>
    </message>
    <message>
        <source> style.</source>
        <translation>.</translation>
    </message>
    <message>
        <source>Can&apos;t write file: </source>
        <translation>No se puede escribir el archivo: </translation>
    </message>
    <message>
        <source>Desktop</source>
        <translation>Escritorio</translation>
    </message>
    <message>
        <source>What starts after the login can&apos;t be changed.</source>
        <translation>No se puede cambiar lo que se inicia al entrar en la sesión.</translation>
    </message>
</context>
<context>
    <name>MessageDialog</name>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Cerrar</translation>
    </message>
    <message>
        <source>Can&apos;t read file: </source>
        <translation>No se puede leer el archivo: </translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Ayuda</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Can&apos;t make the folder</source>
        <translation>No se puede crear la carpeta</translation>
    </message>
    <message>
        <source>Max. network traffic limit</source>
        <translation>Límite de tráfico</translation>
    </message>
    <message>
        <source>reached</source>
        <translation>alcanzado</translation>
    </message>
    <message>
        <source>Server stopped on</source>
        <translation>Servidor detenido en</translation>
    </message>
    <message>
        <source>Sent bytes</source>
        <translation>Enviado</translation>
    </message>
    <message>
        <source>Received bytes</source>
        <translation>Recibido</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Iniciar</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Detener</translation>
    </message>
    <message>
        <source>Reload public addressess</source>
        <translation>Recargar las direcciones públicas</translation>
    </message>
    <message>
        <source>Reload local addresses</source>
        <translation>Recargar las direcciones locales</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Ajustes</translation>
    </message>
    <message>
        <source>Look and Feel</source>
        <translation>Apariencia</translation>
    </message>
    <message>
        <source>Expert mode</source>
        <translation>Modo experto</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Ayuda</translation>
    </message>
    <message>
        <source>About Quillon</source>
        <translation>Acerca de Quillon</translation>
    </message>
    <message>
        <source>About Qt</source>
        <translation>Acerca de Qt</translation>
    </message>
    <message>
        <source>&amp;Menu</source>
        <translation>&amp;Menú</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Archivo</translation>
    </message>
    <message>
        <source>Settings of the selected address</source>
        <translation>Ajustes de la dirección elegida</translation>
    </message>
    <message>
        <source>Shared Content:</source>
        <translation>Contenido compartido:</translation>
    </message>
    <message>
        <source>The server run as root!</source>
        <translation>¡El servidor se ejecuta como root!</translation>
    </message>
    <message>
        <source>Use this mode only if you want to use port 1 - 1024!</source>
        <translation>¡Use este modo solo si quiere un puerto del 1 al 1024!</translation>
    </message>
    <message>
        <source>Do you want to stop?</source>
        <translation>¿Quiere detenerlo?</translation>
    </message>
    <message>
        <source>Global Default Settings</source>
        <translation>Ajustes generales</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Versión</translation>
    </message>
    <message>
        <source>Do you want to exit?</source>
        <translation>¿Quiere salir?</translation>
    </message>
    <message>
        <source>Can&apos;t save the settings</source>
        <translation>No se pueden guardar los ajustes</translation>
    </message>
    <message>
        <source>A file of a profile can&apos;t be read, and nothing is served with it. Make it readable, and start again.</source>
        <translation>Un archivo de un perfil no se puede leer, y nada se comparte con él. Hágalo legible y vuelva a iniciar.</translation>
    </message>
    <message>
        <source>Some values of a profile could not be read. The defaults are used for them; the file is kept as %1</source>
        <translation>Algunos valores de un perfil no se pueden leer. Se usan los predeterminados; el archivo se conserva como %1</translation>
    </message>
    <message>
        <source>Invalid port</source>
        <translation>Puerto no válido</translation>
    </message>
    <message>
        <source>The shared files are accessible for everyone.</source>
        <translation>Los archivos compartidos son accesibles para todos.</translation>
    </message>
    <message>
        <source>Do you want to set password?</source>
        <translation>¿Quiere poner una contraseña?</translation>
    </message>
    <message>
        <source>Everyone who reaches this computer could read, change and delete all of %1.</source>
        <translation>Cualquiera que llegue a este ordenador podría leer, cambiar y borrar todo lo que hay en %1.</translation>
    </message>
    <message>
        <source>Choose Folder...</source>
        <translation>Elegir carpeta...</translation>
    </message>
    <message>
        <source>Share it anyway</source>
        <translation>Compartir de todos modos</translation>
    </message>
    <message>
        <source>A profile can&apos;t be read: its password and users are gone, and nothing is served with it until you have looked at its settings and saved them. If you changed the file on purpose, delete %1 and start again. Saving keeps the file as %2</source>
        <translation>Un perfil no se puede leer: su contraseña y sus usuarios se han perdido, y no se sirve nada con él hasta que haya revisado y guardado su configuración. Si cambió el archivo a propósito, borre %1 y vuelva a empezar. Al guardar, el archivo se conserva como %2</translation>
    </message>
    <message>
        <source>%1 asked for a login when it ran last, with the profile &quot;%2&quot;. With &quot;%3&quot; everyone may come in.</source>
        <translation>%1 pedía identificarse la última vez, con el perfil «%2». Con «%3» puede entrar cualquiera.</translation>
    </message>
    <message>
        <source>Use &quot;%1&quot;</source>
        <translation>Usar «%1»</translation>
    </message>
    <message>
        <source>Start without a login</source>
        <translation>Iniciar sin identificación</translation>
    </message>
    <message>
        <source>The traffic limit is reached. Begin a new count?</source>
        <translation>Se ha alcanzado el límite de tráfico. ¿Empezar una nueva cuenta?</translation>
    </message>
    <message>
        <source>The server does not start without its key and certificate.</source>
        <translation>El servidor no se inicia sin su clave y su certificado.</translation>
    </message>
    <message>
        <source>Make a new key</source>
        <translation>Crear una clave nueva</translation>
    </message>
    <message>
        <source>Files are being transferred; stopping cuts them off.</source>
        <translation>Se están transfiriendo archivos; al detener se cortan.</translation>
    </message>
    <message>
        <source>Drop one file or folder of this computer.</source>
        <translation>Suelte un solo archivo o una sola carpeta de este ordenador.</translation>
    </message>
    <message>
        <source>Copy address</source>
        <translation>Copiar dirección</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Salir</translation>
    </message>
    <message>
        <source>Copied: %1</source>
        <translation>Copiado: %1</translation>
    </message>
    <message>
        <source>No server is running, so there is no address to copy.</source>
        <translation>Ningún servidor está en marcha: no hay dirección que copiar.</translation>
    </message>
    <message>
        <source>Download</source>
        <translation>Descarga</translation>
    </message>
    <message>
        <source>Upload</source>
        <translation>Subida</translation>
    </message>
    <message>
        <source>Change</source>
        <translation>Cambio</translation>
    </message>
    <message>
        <source>Deletion</source>
        <translation>Borrado</translation>
    </message>
    <message>
        <source>New folder</source>
        <translation>Carpeta nueva</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Copia</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>Traslado</translation>
    </message>
    <message>
        <source>%1 refused (%2)</source>
        <translation>%1: rechazo (%2)</translation>
    </message>
    <message>
        <source>%1 broken off</source>
        <translation>%1: interrupción</translation>
    </message>
    <message>
        <source>%1, %2 times</source>
        <translation>%1, %2 veces</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Hora</translation>
    </message>
    <message>
        <source>Visitor</source>
        <translation>Visitante</translation>
    </message>
    <message>
        <source>Event</source>
        <translation>Suceso</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Archivo</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>Visitors and transfers</source>
        <translation>Visitantes y transferencias</translation>
    </message>
    <message>
        <source>More than could be noted</source>
        <translation>Más de lo que se pudo anotar</translation>
    </message>
    <message>
        <source>Note</source>
        <translation>Aviso</translation>
    </message>
    <message>
        <source>Open the window</source>
        <translation>Abrir la ventana</translation>
    </message>
</context>
<context>
    <name>FileMenu</name>
    <message>
        <source>Select Folder</source>
        <translation>Elegir carpeta</translation>
    </message>
    <message>
        <source>Select File</source>
        <translation>Elegir archivo</translation>
    </message>
</context>
<context>
    <name>OkCancelButtons</name>
    <message>
        <source>OK</source>
        <translation>Aceptar</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
</context>
<context>
    <name>FontPage</name>
    <message>
        <source>This is how texts will look.</source>
        <translation>Así se verán los textos.</translation>
    </message>
    <message>
        <source>Font Settings</source>
        <translation>Ajustes de la letra</translation>
    </message>
    <message>
        <source>Size:</source>
        <translation>Tamaño:</translation>
    </message>
</context>
<context>
    <name>ColorPage</name>
    <message>
        <source>Color Settings</source>
        <translation>Ajustes de color</translation>
    </message>
    <message>
        <source>Background</source>
        <translation>Fondo</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Texto</translation>
    </message>
    <message>
        <source>Button</source>
        <translation>Botón</translation>
    </message>
    <message>
        <source>Set to default</source>
        <translation>Restablecer</translation>
    </message>
</context>
<context>
    <name>StylePage</name>
    <message>
        <source>Style Settings</source>
        <translation>Ajustes de estilo</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Estilo</translation>
    </message>
    <message>
        <source> style not available on this system.</source>
        <translation>: este estilo no está disponible en este sistema.</translation>
    </message>
    <message>
        <source>Style in use: %1</source>
        <translation>Estilo en uso: %1</translation>
    </message>
    <message>
        <source>As the desktop</source>
        <translation>Como el escritorio</translation>
    </message>
</context>
<context>
    <name>PasswordField</name>
    <message>
        <source>Show password</source>
        <translation>Mostrar contraseña</translation>
    </message>
</context>
<context>
    <name>ProfileDialog</name>
    <message>
        <source>Change Profile</source>
        <translation>Cambiar de perfil</translation>
    </message>
    <message>
        <source>Select profile or edit profile name</source>
        <translation>Elija un perfil o cambie su nombre</translation>
    </message>
    <message>
        <source>New profile</source>
        <translation>Perfil nuevo</translation>
    </message>
    <message>
        <source>Remove profile</source>
        <translation>Quitar perfil</translation>
    </message>
    <message>
        <source>A profile needs a name.</source>
        <translation>Un perfil necesita un nombre.</translation>
    </message>
    <message>
        <source>A profile name can&apos;t start with a dot and can&apos;t contain &quot;/&quot;.</source>
        <translation>El nombre de un perfil no puede empezar por un punto ni contener «/».</translation>
    </message>
    <message>
        <source>This profile name is too long.</source>
        <translation>Este nombre de perfil es demasiado largo.</translation>
    </message>
    <message>
        <source>There is already a profile named &quot;%1&quot;.</source>
        <translation>Ya hay un perfil llamado «%1».</translation>
    </message>
    <message>
        <source>Profile name</source>
        <translation>Nombre del perfil</translation>
    </message>
    <message>
        <source>Can&apos;t write file: </source>
        <translation>No se puede escribir el archivo: </translation>
    </message>
    <message>
        <source>Used config profile is not removable.</source>
        <translation>Un perfil en uso no se puede quitar.</translation>
    </message>
    <message>
        <source>Remove the profile &quot;%1&quot; and its users?</source>
        <translation>¿Quitar el perfil «%1» y sus usuarios?</translation>
    </message>
    <message>
        <source>Duplicate profile</source>
        <translation>Duplicar perfil</translation>
    </message>
    <message>
        <source>Rename profile</source>
        <translation>Renombrar perfil</translation>
    </message>
    <message>
        <source>This profile can't be used until its settings are saved.</source>
        <translation>Este perfil no se puede usar hasta que se guarden sus ajustes.</translation>
    </message>
</context>
<context>
    <name>Reachability</name>
    <message>
        <source>&lt;center&gt;Server accessible only on local network&lt;/center&gt;</source>
        <translation>&lt;center&gt;Servidor accesible solo en la red local&lt;/center&gt;</translation>
    </message>
    <message>
        <source>No port check service configured</source>
        <translation>No hay ningún servicio configurado para comprobar el puerto</translation>
    </message>
    <message>
        <source>User and password required for DNS service.</source>
        <translation>El servicio DNS requiere usuario y contraseña.</translation>
    </message>
    <message>
        <source>No DNS service configured</source>
        <translation>No hay ningún servicio DNS configurado</translation>
    </message>
    <message>
        <source>No internet connection</source>
        <translation>No hay conexión a Internet</translation>
    </message>
</context>
<context>
    <name>ServerRow</name>
    <message>
        <source>not exists!</source>
        <translation>¡no existe!</translation>
    </message>
    <message>
        <source>Choose what to share.</source>
        <translation>Elija qué desea compartir.</translation>
    </message>
    <message>
        <source>Unable to start the server</source>
        <translation>No se puede iniciar el servidor</translation>
    </message>
    <message>
        <source>Shared now: %1</source>
        <translation>Compartido ahora: %1</translation>
    </message>
    <message>
        <source>The profile can&apos;t be used until its settings are saved</source>
        <translation>El perfil no se puede usar hasta que se guarden sus ajustes</translation>
    </message>
    <message>
        <source>This is neither a file nor a folder: %1</source>
        <translation>Esto no es ni un archivo ni una carpeta: %1</translation>
    </message>
    <message>
        <source>This can&apos;t be read: %1</source>
        <translation>Esto no se puede leer: %1</translation>
    </message>
</context>
<context>
    <name>ServerRows</name>
    <message>
        <source>Invalid port</source>
        <translation>Puerto no válido</translation>
    </message>
    <message>
        <source>What was shared at which address could not be read; the rows begin anew, and none starts by itself. The file is kept as %1</source>
        <translation>No se pudo leer qué se compartía en cada dirección; las filas empiezan de nuevo y ninguna se inicia sola. El archivo se conserva como %1</translation>
    </message>
    <message>
        <source>The network address is gone, the server waits for it: %1</source>
        <translation>La dirección de red ha desaparecido, el servidor la espera: %1</translation>
    </message>
    <message>
        <source>The certificate was not renewed for this computer&apos;s addresses: %1</source>
        <translation>El certificado no se renovó para las direcciones de este equipo: %1</translation>
    </message>
    <message>
        <source>Press Start to serve at %1</source>
        <translation>Pulse Iniciar para servir en %1</translation>
    </message>
    <message>
        <source>Can&apos;t save the settings</source>
        <translation>No se pueden guardar los ajustes</translation>
    </message>
    <message>
        <source>A port is a number from 1 to 65535.</source>
        <translation>Un puerto es un número del 1 al 65535.</translation>
    </message>
    <message>
        <source>Another row has the port %1 already.</source>
        <translation>Otra fila ya tiene el puerto %1.</translation>
    </message>
    <message>
        <source>There is no address to serve at</source>
        <translation>No hay ninguna dirección en la que servir</translation>
    </message>
    <message>
        <source>Connect to a network first.</source>
        <translation>Conéctese primero a una red.</translation>
    </message>
    <message>
        <source>The certificate is valid until %1 only: %2. &quot;Make new key...&quot; in the settings makes one that is renewed by itself.</source>
        <translation>El certificado solo es válido hasta el %1: %2. «Crear una clave nueva...» en los ajustes crea uno que se renueva solo.</translation>
    </message>
    <message>
        <source>The network address is there, the server runs: %1</source>
        <translation>La dirección de red está disponible, el servidor funciona: %1</translation>
    </message>
</context>
<context>
    <name>Connection</name>
    <message>
        <source>Wrong password</source>
        <translation>Contraseña incorrecta</translation>
    </message>
</context>
<context>
    <name>BrowserPages</name>
    <message>
        <source>Name</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Peso</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Fecha</translation>
    </message>
    <message>
        <source>Select Action</source>
        <translation>Acciones</translation>
    </message>
    <message>
        <source>Add File</source>
        <translation>Subir archivo</translation>
    </message>
    <message>
        <source>Create Folder</source>
        <translation>Crear carpeta</translation>
    </message>
    <message>
        <source>File Manager in window</source>
        <translation>Gestor de archivos en ventana</translation>
    </message>
    <message>
        <source>File Manager in browser</source>
        <translation>Gestor de archivos en el navegador</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Carpeta</translation>
    </message>
    <message>
        <source>Empty</source>
        <translation>Vacío</translation>
    </message>
</context>
<context>
    <name>Prompts</name>
    <message>
        <source>All (*.*)</source>
        <translation>Todos (*.*)</translation>
    </message>
</context>
<context>
    <name>StepField</name>
    <message>
        <source>Less</source>
        <translation>Menos</translation>
    </message>
    <message>
        <source>More</source>
        <translation>Más</translation>
    </message>
</context>
<context>
    <name>UserDialog</name>
    <message>
        <source>Add user</source>
        <translation>Añadir usuario</translation>
    </message>
    <message>
        <source>User</source>
        <translation>Usuario</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Contraseña</translation>
    </message>
    <message>
        <source>A user needs a password.</source>
        <translation>Un usuario necesita una contraseña.</translation>
    </message>
    <message>
        <source>Keep readable for Digest</source>
        <translation>Mantener legible, para Digest</translation>
    </message>
    <message>
        <source>There is not enough memory to keep the password.</source>
        <translation>No hay memoria suficiente para guardar la contraseña.</translation>
    </message>
</context>
<context>
    <name>WebServer</name>
    <message>
        <source>The password is empty: everyone is admitted.</source>
        <translation>La contraseña está vacía: entra cualquiera.</translation>
    </message>
    <message>
        <source>The renewed certificate can&apos;t be used; new connections get the one before.</source>
        <translation>El certificado renovado no se puede usar; las conexiones nuevas reciben el anterior.</translation>
    </message>
    <message>
        <source>The certificate can&apos;t be read: %1</source>
        <translation>No se puede leer el certificado: %1</translation>
    </message>
    <message>
        <source>This is no certificate: %1</source>
        <translation>Esto no es un certificado: %1</translation>
    </message>
    <message>
        <source>The private key can&apos;t be read: %1</source>
        <translation>No se puede leer la clave privada: %1</translation>
    </message>
    <message>
        <source>The private key can&apos;t be used, its pass phrase may be wrong: %1</source>
        <translation>La clave privada no se puede usar, quizá su contraseña sea incorrecta: %1</translation>
    </message>
    <message>
        <source>The certificate %1 is not that of the private key %2</source>
        <translation>El certificado %1 no corresponde a la clave privada %2</translation>
    </message>
    <message>
        <source>The TLS library refuses the keys: %1</source>
        <translation>La biblioteca de TLS rechaza las claves: %1</translation>
    </message>
    <message>
        <source>Too many wrong passwords from %1: further ones have to wait.</source>
        <translation>Demasiadas contraseñas incorrectas de %1: las siguientes tendrán que esperar.</translation>
    </message>
    <message>
        <source>Too many wrong passwords for one account, from several addresses: new visitors have to wait a little.</source>
        <translation>Demasiadas contraseñas incorrectas para una cuenta, desde varias direcciones: los nuevos visitantes tendrán que esperar un poco.</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Advertencia</translation>
    </message>
    <message>
        <source>WebDAV properties</source>
        <translation>Propiedades WebDAV</translation>
    </message>
    <message>
        <source>The file system can&apos;t keep the properties that programs give to files. They are kept until the server ends.</source>
        <translation>El sistema de archivos no puede guardar las propiedades que los programas dan a los archivos. Se conservan hasta que termine el servidor.</translation>
    </message>
</context>
<context>
    <name>WebServices</name>
    <message>
        <source>&lt;centcer&gt;Public addresses: %1 , %2&lt;/center&gt;</source>
        <translation>&lt;centcer&gt;Direcciones públicas: %1 , %2&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Public addresses: %1&lt;/center&gt;</source>
        <translation>&lt;center&gt;Direcciones públicas: %1&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Public addresses: %1:%2 , %3:%4&lt;/center&gt;</source>
        <translation>&lt;center&gt;Direcciones públicas: %1:%2 , %3:%4&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Public addresses: %1:%2&lt;/center&gt;</source>
        <translation>&lt;center&gt;Direcciones públicas: %1:%2&lt;/center&gt;</translation>
    </message>
</context>
<context>
    <name>KeyMaker</name>
    <message>
        <source>The program &quot;openssl&quot; is needed to make a key.</source>
        <translation>Para crear una clave hace falta el programa «openssl».</translation>
    </message>
    <message>
        <source>Can&apos;t write to the folder: </source>
        <translation>No se puede escribir en la carpeta: </translation>
    </message>
    <message>
        <source>Fingerprint (SHA-256): %1</source>
        <translation>Huella (SHA-256): %1</translation>
    </message>
    <message>
        <source>Names: %1</source>
        <translation>Nombres: %1</translation>
    </message>
    <message>
        <source>Fingerprint of this computer&apos;s authority (SHA-256): %1</source>
        <translation>Huella de la autoridad de este equipo (SHA-256): %1</translation>
    </message>
</context>
<context>
    <name>AddressHero</name>
    <message>
        <source>Copy</source>
        <translation>Copiar</translation>
    </message>
    <message>
        <source>QR code</source>
        <translation>Código QR</translation>
    </message>
    <message>
        <source>Copy the address</source>
        <translation>Copiar la dirección</translation>
    </message>
    <message>
        <source>Show the address to a phone's camera</source>
        <translation>Mostrar la dirección a la cámara de un teléfono</translation>
    </message>
    <message>
        <source>Further addresses, which others may not reach</source>
        <translation>Más direcciones, que quizá otros no alcancen</translation>
    </message>
    <message>
        <source>Cable</source>
        <translation>Cable</translation>
    </message>
    <message>
        <source>Wi-Fi</source>
        <translation>Wi-Fi</translation>
    </message>
    <message>
        <source>Mobile network</source>
        <translation>Red móvil</translation>
    </message>
    <message>
        <source>VPN</source>
        <translation>VPN</translation>
    </message>
    <message>
        <source>Containers</source>
        <translation>Contenedores</translation>
    </message>
    <message>
        <source>Shared: %1</source>
        <translation>Compartido: %1</translation>
    </message>
    <message>
        <source>Once on each device: open this page, and install the certificate that it offers if the device shows the same fingerprint of it. Browsers don&apos;t warn from then on.</source>
        <translation>Una vez en cada dispositivo: abra esta página e instale el certificado que ofrece, si el dispositivo muestra la misma huella. Desde entonces los navegadores no avisan.</translation>
    </message>
</context>
<context>
    <name>AddressDialog</name>
    <message>
        <source>Address</source>
        <translation>Dirección</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Cerrar</translation>
    </message>
    <message>
        <source>Trust this computer</source>
        <translation>Confiar en este equipo</translation>
    </message>
</context>
<context>
    <name>QrCode</name>
    <message>
        <source>QR code: %1</source>
        <translation>Código QR: %1</translation>
    </message>
</context>
<context>
    <name>PermissionButton</name>
    <message>
        <source>Visitors may look</source>
        <translation>Los visitantes pueden mirar</translation>
    </message>
    <message>
        <source>Look</source>
        <translation>Mirar</translation>
    </message>
    <message>
        <source>Visitors may look and add</source>
        <translation>Los visitantes pueden mirar y añadir</translation>
    </message>
    <message>
        <source>Look and add</source>
        <translation>Mirar y añadir</translation>
    </message>
    <message>
        <source>File managers may replace, too</source>
        <translation>Gestores de archivos: reemplazar</translation>
    </message>
    <message>
        <source>Visitors may change everything</source>
        <translation>Los visitantes pueden cambiarlo todo</translation>
    </message>
    <message>
        <source>Change everything</source>
        <translation>Cambiar todo</translation>
    </message>
    <message>
        <source>Visitors may add only</source>
        <translation>Los visitantes solo pueden añadir</translation>
    </message>
    <message>
        <source>Add only</source>
        <translation>Solo añadir</translation>
    </message>
    <message>
        <source>Visitors may do as set</source>
        <translation>Los visitantes pueden lo que está ajustado</translation>
    </message>
    <message>
        <source>Reached by everyone</source>
        <translation>Accesible para todos</translation>
    </message>
    <message>
        <source>With a password</source>
        <translation>Con una contraseña</translation>
    </message>
    <message>
        <source>With a name and password</source>
        <translation>Con un nombre y una contraseña</translation>
    </message>
    <message>
        <source>Other addresses differ</source>
        <translation>En otras direcciones es distinto</translation>
    </message>
    <message>
        <source>Only the standard answers take files and show none. Answer all programs by the standards?</source>
        <translation>Solo las respuestas estándar aceptan archivos y no muestran ninguno. ¿Responder a todos los programas según los estándares?</translation>
    </message>
    <message>
        <source>Can't write file: </source>
        <translation>No se puede escribir el archivo: </translation>
    </message>
</context>
</TS>

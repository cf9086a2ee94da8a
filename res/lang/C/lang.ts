<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>DesktopIntegration</name>
    <message>
        <source>Files are being transferred.</source>
        <translation>Files are being transferred.</translation>
    </message>
</context>
<context>
    <name>Notices</name>
    <message>
        <source>New visitor</source>
        <translation>New visitor</translation>
    </message>
    <message>
        <source>Received</source>
        <translation>Received</translation>
    </message>
    <message>
        <source>Traffic limit</source>
        <translation>Traffic limit</translation>
    </message>
</context>
<context>
    <name>DesktopPage</name>
    <message>
        <source>Go on in the tray when the window is closed</source>
        <translation>Go on in the tray when the window is closed</translation>
    </message>
    <message>
        <source>Start when I log in</source>
        <translation>Start when I log in</translation>
    </message>
    <message>
        <source>Show notifications</source>
        <translation>Show notifications</translation>
    </message>
    <message>
        <source>Desktop Settings</source>
        <translation>Desktop Settings</translation>
    </message>
</context>
<context>
    <name>Activity</name>
    <message>
        <source>The log of events can&apos;t be written</source>
        <translation>The log of events can&apos;t be written</translation>
    </message>
</context>
<context>
    <name>ActivityDialog</name>
    <message>
        <source>Address</source>
        <translation>Address</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Program</source>
        <translation>Program</translation>
    </message>
    <message>
        <source>Since</source>
        <translation>Since</translation>
    </message>
    <message>
        <source>File</source>
        <translation>File</translation>
    </message>
    <message>
        <source>Direction</source>
        <translation>Direction</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Done</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Speed</translation>
    </message>
    <message>
        <source>Time left</source>
        <translation>Time left</translation>
    </message>
    <message>
        <source>Visitors and transfers</source>
        <translation>Visitors and transfers</translation>
    </message>
    <message>
        <source>Visitors</source>
        <translation>Visitors</translation>
    </message>
    <message>
        <source>Transfers</source>
        <translation>Transfers</translation>
    </message>
    <message>
        <source>Events</source>
        <translation>Events</translation>
    </message>
    <message>
        <source>Keep a log of events</source>
        <translation>Keep a log of events</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Disconnect</translation>
    </message>
    <message>
        <source>Block</source>
        <translation>Block</translation>
    </message>
    <message>
        <source>Unblock all</source>
        <translation>Unblock all</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Block %1 until Quillon ends? Its connections are cut.</source>
        <translation>Block %1 until Quillon ends? Its connections are cut.</translation>
    </message>
</context>
<context>
    <name>AddressList</name>
    <message>
        <source>Give browsers the web application...</source>
        <translation>Give browsers the web application...</translation>
    </message>
    <message>
        <source>Listen Addresses</source>
        <translation>Listen Addresses</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Settings</translation>
    </message>
    <message>
        <source>Change Config</source>
        <translation>Change Config</translation>
    </message>
    <message>
        <source>Add new port</source>
        <translation>Add new port</translation>
    </message>
    <message>
        <source>Change port</source>
        <translation>Change port</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Remove</translation>
    </message>
    <message>
        <source>&lt;center&gt;&lt;b&gt;Network not found&lt;/b&gt;&lt;/center&gt;</source>
        <translation>&lt;center&gt;&lt;b&gt;Network not found&lt;/b&gt;&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Accessible on local network</source>
        <translation>&lt;center&gt;Accessible on local network</translation>
    </message>
    <message>
        <source>The server is running.</source>
        <translation>The server is running.</translation>
    </message>
    <message>
        <source>New port</source>
        <translation>New port</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Port</translation>
    </message>
    <message>
        <source>Do you want to remove it?</source>
        <translation>Do you want to remove it?</translation>
    </message>
</context>
<context>
    <name>AddressTable</name>
    <message>
        <source>Address</source>
        <translation>Address</translation>
    </message>
    <message>
        <source>Config</source>
        <translation>Config</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Listen Addresses</source>
        <translation>Listen Addresses</translation>
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
        <translation>&amp;Apply</translation>
    </message>
    <message>
        <source>Configuration Settings</source>
        <translation>Configuration Settings</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Close</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Folder</translation>
    </message>
    <message>
        <source>Aut.</source>
        <translation>Aut.</translation>
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
        <translation>Server2</translation>
    </message>
    <message>
        <source>Can&apos;t write file: </source>
        <translation>Can&apos;t write file: </translation>
    </message>
    <message>
        <source>The settings stay in use until the program ends.</source>
        <translation>The settings stay in use until the program ends.</translation>
    </message>
    <message>
        <source>There are changes that were not applied.</source>
        <translation>There are changes that were not applied.</translation>
    </message>
    <message>
        <source>&amp;Discard</source>
        <translation>&amp;Discard</translation>
    </message>
</context>
<context>
    <name>SettingsPage</name>
    <message>
        <source>Help</source>
        <translation>Help</translation>
    </message>
    <message>
        <source>Help: %1</source>
        <translation>Help: %1</translation>
    </message>
</context>
<context>
    <name>AccessPage</name>
    <message>
        <source>Authentication Settings</source>
        <translation>Authentication Settings</translation>
    </message>
    <message>
        <source>None</source>
        <translation>None</translation>
    </message>
    <message>
        <source>Password only</source>
        <translation>Password only</translation>
    </message>
    <message>
        <source>Basic HTTP</source>
        <translation>Basic HTTP</translation>
    </message>
    <message>
        <source>Authentication mode</source>
        <translation>Authentication mode</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Password</translation>
    </message>
    <message>
        <source>User</source>
        <translation>User</translation>
    </message>
    <message>
        <source>Users</source>
        <translation>Users</translation>
    </message>
    <message>
        <source>Show passwords</source>
        <translation>Show passwords</translation>
    </message>
    <message>
        <source>Add user</source>
        <translation>Add user</translation>
    </message>
    <message>
        <source>Remove user</source>
        <translation>Remove user</translation>
    </message>
    <message>
        <source>Login</source>
        <translation>Login</translation>
    </message>
    <message>
        <source>Rights and home</source>
        <translation>Rights and home</translation>
    </message>
    <message>
        <source>Kept as a hash</source>
        <translation>Kept as a hash</translation>
    </message>
</context>
<context>
    <name>DnsPage</name>
    <message>
        <source>DNS Settings</source>
        <translation>DNS Settings</translation>
    </message>
    <message>
        <source>Enable DNS Service</source>
        <translation>Enable DNS Service</translation>
    </message>
    <message>
        <source>User:</source>
        <translation>User:</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Password:</translation>
    </message>
</context>
<context>
    <name>FolderPage</name>
    <message>
        <source>Folder View Settings</source>
        <translation>Folder View Settings</translation>
    </message>
    <message>
        <source>Show images</source>
        <translation>Show images</translation>
    </message>
    <message>
        <source>Enable deleting</source>
        <translation>Enable deleting</translation>
    </message>
    <message>
        <source>Show folders</source>
        <translation>Show folders</translation>
    </message>
    <message>
        <source>Enable upload</source>
        <translation>Enable upload</translation>
    </message>
    <message>
        <source>Instead of deleting and upload the rights of everyone hold. Where they differ from these two, browsers are refused unless the mode &quot;Standard&quot; is chosen: page &quot;Server&quot;, &quot;Answers&quot;.</source>
        <translation>Instead of deleting and upload the rights of everyone hold. Where they differ from these two, browsers are refused unless the mode &quot;Standard&quot; is chosen: page &quot;Server&quot;, &quot;Answers&quot;.</translation>
    </message>
    <message>
        <source>Rights of everyone</source>
        <translation>Rights of everyone</translation>
    </message>
</context>
<context>
    <name>RightsDialog</name>
    <message>
        <source>Rights of its own</source>
        <translation>Rights of its own</translation>
    </message>
    <message>
        <source>Rights and home</source>
        <translation>Rights and home</translation>
    </message>
    <message>
        <source>See what there is</source>
        <translation>See what there is</translation>
    </message>
    <message>
        <source>Read files</source>
        <translation>Read files</translation>
    </message>
    <message>
        <source>Add files</source>
        <translation>Add files</translation>
    </message>
    <message>
        <source>Change files</source>
        <translation>Change files</translation>
    </message>
    <message>
        <source>Delete files</source>
        <translation>Delete files</translation>
    </message>
    <message>
        <source>Home folder in the share</source>
        <translation>Home folder in the share</translation>
    </message>
    <message>
        <source>Rights in detail</source>
        <translation>Rights in detail</translation>
    </message>
    <message>
        <source>Rights of everyone</source>
        <translation>Rights of everyone</translation>
    </message>
</context>
<context>
    <name>ServerPage</name>
    <message>
        <source>Server Settings</source>
        <translation>Server Settings</translation>
    </message>
    <message>
        <source>Show warning messages</source>
        <translation>Show warning messages</translation>
    </message>
    <message>
        <source>SSL/Secure Mode</source>
        <translation>SSL/Secure Mode</translation>
    </message>
    <message>
        <source>Port [1 - 65535]:</source>
        <translation>Port [1 - 65535]:</translation>
    </message>
    <message>
        <source>Restore default keys</source>
        <translation>Restore default keys</translation>
    </message>
    <message>
        <source>Browse for the private key</source>
        <translation>Browse for the private key</translation>
    </message>
    <message>
        <source>Private key:</source>
        <translation>Private key:</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Password:</translation>
    </message>
    <message>
        <source>Browse for the public key</source>
        <translation>Browse for the public key</translation>
    </message>
    <message>
        <source>Public key:</source>
        <translation>Public key:</translation>
    </message>
    <message>
        <source>Private Key</source>
        <translation>Private Key</translation>
    </message>
    <message>
        <source>Open Private Key File</source>
        <translation>Open Private Key File</translation>
    </message>
    <message>
        <source>Public Key</source>
        <translation>Public Key</translation>
    </message>
    <message>
        <source>Open Public Key File</source>
        <translation>Open Public Key File</translation>
    </message>
    <message>
        <source>Answers:</source>
        <translation>Answers:</translation>
    </message>
    <message>
        <source>Classic</source>
        <translation>Classic</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>Automatic</translation>
    </message>
    <message>
        <source>Standard</source>
        <translation>Standard</translation>
    </message>
    <message>
        <source>All programs are answered as ever.</source>
        <translation>All programs are answered as ever.</translation>
    </message>
    <message>
        <source>File managers, phone apps and players that are known to need it are answered by the standards, all others as ever.</source>
        <translation>File managers, phone apps and players that are known to need it are answered by the standards, all others as ever.</translation>
    </message>
    <message>
        <source>All programs are answered by the standards; browsers get the web application.</source>
        <translation>All programs are answered by the standards; browsers get the web application.</translation>
    </message>
    <message>
        <source>Make new key...</source>
        <translation>Make new key...</translation>
    </message>
    <message>
        <source>There is no certificate yet.</source>
        <translation>There is no certificate yet.</translation>
    </message>
    <message>
        <source>A new key and certificate are made for this computer; those in use stay where they are. Browsers will warn once more, but not on devices that trust the authority of the new one. Make them?</source>
        <translation>A new key and certificate are made for this computer; those in use stay where they are. Browsers will warn once more, but not on devices that trust the authority of the new one. Make them?</translation>
    </message>
    <message>
        <source>Announce in the network</source>
        <translation>Announce in the network</translation>
    </message>
    <message>
        <source>Found as:</source>
        <translation>Found as:</translation>
    </message>
</context>
<context>
    <name>LimitsPage</name>
    <message>
        <source>Server Settings 2</source>
        <translation>Server Settings 2</translation>
    </message>
    <message>
        <source>Max. Connections:</source>
        <translation>Max. Connections:</translation>
    </message>
    <message>
        <source>Network traffic limit [KB]:</source>
        <translation>Network traffic limit [KB]:</translation>
    </message>
    <message>
        <source>Session lifetime [s]:</source>
        <translation>Session lifetime [s]:</translation>
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
        <translation>Default</translation>
    </message>
</context>
<context>
    <name>EventHandler</name>
    <message>
        <source>Last connection</source>
        <translation>Last connection</translation>
    </message>
</context>
<context>
    <name>LookDialog</name>
    <message>
        <source>&amp;Apply</source>
        <translation>&amp;Apply</translation>
    </message>
    <message>
        <source>Look&amp;Feel Settings</source>
        <translation>Look&amp;Feel Settings</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Style</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Color</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>Font</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Cancel</translation>
    </message>
    <message>
        <source>Color settings not working with </source>
        <translation>Color settings not working with </translation>
    </message>
    <message>
        <source> style.</source>
        <translation> style.</translation>
    </message>
    <message>
        <source>Can&apos;t write file: </source>
        <translation>Can&apos;t write file: </translation>
    </message>
    <message>
        <source>Desktop</source>
        <translation>Desktop</translation>
    </message>
    <message>
        <source>What starts after the login can&apos;t be changed.</source>
        <translation>What starts after the login can&apos;t be changed.</translation>
    </message>
</context>
<context>
    <name>MessageDialog</name>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Close</translation>
    </message>
    <message>
        <source>Can&apos;t read file: </source>
        <translation>Can&apos;t read file: </translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Help</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Can&apos;t make the folder</source>
        <translation>Can&apos;t make the folder</translation>
    </message>
    <message>
        <source>Max. network traffic limit</source>
        <translation>Max. network traffic limit</translation>
    </message>
    <message>
        <source>reached</source>
        <translation>reached</translation>
    </message>
    <message>
        <source>Server stopped on</source>
        <translation>Server stopped on</translation>
    </message>
    <message>
        <source>Sent bytes</source>
        <translation>Sent bytes</translation>
    </message>
    <message>
        <source>Received bytes</source>
        <translation>Received bytes</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Start</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stop</translation>
    </message>
    <message>
        <source>Reload public addressess</source>
        <translation>Reload public addressess</translation>
    </message>
    <message>
        <source>Reload local addresses</source>
        <translation>Reload local addresses</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Settings</translation>
    </message>
    <message>
        <source>Look and Feel</source>
        <translation>Look and Feel</translation>
    </message>
    <message>
        <source>Expert mode</source>
        <translation>Expert mode</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Help</translation>
    </message>
    <message>
        <source>About Quillon</source>
        <translation>About Quillon</translation>
    </message>
    <message>
        <source>About Qt</source>
        <translation>About Qt</translation>
    </message>
    <message>
        <source>&amp;Menu</source>
        <translation>&amp;Menu</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;File</translation>
    </message>
    <message>
        <source>Settings of the selected address</source>
        <translation>Settings of the selected address</translation>
    </message>
    <message>
        <source>Shared Content:</source>
        <translation>Shared Content:</translation>
    </message>
    <message>
        <source>The server run as root!</source>
        <translation>The server run as root!</translation>
    </message>
    <message>
        <source>Use this mode only if you want to use port 1 - 1024!</source>
        <translation>Use this mode only if you want to use port 1 - 1024!</translation>
    </message>
    <message>
        <source>Do you want to stop?</source>
        <translation>Do you want to stop?</translation>
    </message>
    <message>
        <source>Global Default Settings</source>
        <translation>Global Default Settings</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>Do you want to exit?</source>
        <translation>Do you want to exit?</translation>
    </message>
    <message>
        <source>Can&apos;t save the settings</source>
        <translation>Can&apos;t save the settings</translation>
    </message>
    <message>
        <source>A file of a profile can&apos;t be read, and nothing is served with it. Make it readable, and start again.</source>
        <translation>A file of a profile can&apos;t be read, and nothing is served with it. Make it readable, and start again.</translation>
    </message>
    <message>
        <source>Some values of a profile could not be read. The defaults are used for them; the file is kept as %1</source>
        <translation>Some values of a profile could not be read. The defaults are used for them; the file is kept as %1</translation>
    </message>
    <message>
        <source>Invalid port</source>
        <translation>Invalid port</translation>
    </message>
    <message>
        <source>The shared files are accessible for everyone.</source>
        <translation>The shared files are accessible for everyone.</translation>
    </message>
    <message>
        <source>Do you want to set password?</source>
        <translation>Do you want to set password?</translation>
    </message>
    <message>
        <source>Everyone who reaches this computer could read, change and delete all of %1.</source>
        <translation>Everyone who reaches this computer could read, change and delete all of %1.</translation>
    </message>
    <message>
        <source>Choose Folder...</source>
        <translation>Choose Folder...</translation>
    </message>
    <message>
        <source>Share it anyway</source>
        <translation>Share it anyway</translation>
    </message>
    <message>
        <source>A profile can&apos;t be read: its password and users are gone, and nothing is served with it until you have looked at its settings and saved them. If you changed the file on purpose, delete %1 and start again. Saving keeps the file as %2</source>
        <translation>A profile can&apos;t be read: its password and users are gone, and nothing is served with it until you have looked at its settings and saved them. If you changed the file on purpose, delete %1 and start again. Saving keeps the file as %2</translation>
    </message>
    <message>
        <source>%1 asked for a login when it ran last, with the profile &quot;%2&quot;. With &quot;%3&quot; everyone may come in.</source>
        <translation>%1 asked for a login when it ran last, with the profile &quot;%2&quot;. With &quot;%3&quot; everyone may come in.</translation>
    </message>
    <message>
        <source>Use &quot;%1&quot;</source>
        <translation>Use &quot;%1&quot;</translation>
    </message>
    <message>
        <source>Start without a login</source>
        <translation>Start without a login</translation>
    </message>
    <message>
        <source>The traffic limit is reached. Begin a new count?</source>
        <translation>The traffic limit is reached. Begin a new count?</translation>
    </message>
    <message>
        <source>The server does not start without its key and certificate.</source>
        <translation>The server does not start without its key and certificate.</translation>
    </message>
    <message>
        <source>Make a new key</source>
        <translation>Make a new key</translation>
    </message>
    <message>
        <source>Files are being transferred; stopping cuts them off.</source>
        <translation>Files are being transferred; stopping cuts them off.</translation>
    </message>
    <message>
        <source>Drop one file or folder of this computer.</source>
        <translation>Drop one file or folder of this computer.</translation>
    </message>
    <message>
        <source>Copy address</source>
        <translation>Copy address</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Quit</translation>
    </message>
    <message>
        <source>Copied: %1</source>
        <translation>Copied: %1</translation>
    </message>
    <message>
        <source>No server is running, so there is no address to copy.</source>
        <translation>No server is running, so there is no address to copy.</translation>
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
        <translation>Change</translation>
    </message>
    <message>
        <source>Deletion</source>
        <translation>Deletion</translation>
    </message>
    <message>
        <source>New folder</source>
        <translation>New folder</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Copy</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>Move</translation>
    </message>
    <message>
        <source>%1 refused (%2)</source>
        <translation>%1 refused (%2)</translation>
    </message>
    <message>
        <source>%1 broken off</source>
        <translation>%1 broken off</translation>
    </message>
    <message>
        <source>%1, %2 times</source>
        <translation>%1, %2 times</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Time</translation>
    </message>
    <message>
        <source>Visitor</source>
        <translation>Visitor</translation>
    </message>
    <message>
        <source>Event</source>
        <translation>Event</translation>
    </message>
    <message>
        <source>File</source>
        <translation>File</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>Visitors and transfers</source>
        <translation>Visitors and transfers</translation>
    </message>
    <message>
        <source>More than could be noted</source>
        <translation>More than could be noted</translation>
    </message>
    <message>
        <source>Note</source>
        <translation>Note</translation>
    </message>
    <message>
        <source>Open the window</source>
        <translation>Open the window</translation>
    </message>
</context>
<context>
    <name>FileMenu</name>
    <message>
        <source>Select Folder</source>
        <translation>Select Folder</translation>
    </message>
    <message>
        <source>Select File</source>
        <translation>Select File</translation>
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
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>FontPage</name>
    <message>
        <source>This is how texts will look.</source>
        <translation>This is how texts will look.</translation>
    </message>
    <message>
        <source>Font Settings</source>
        <translation>Font Settings</translation>
    </message>
    <message>
        <source>Size:</source>
        <translation>Size:</translation>
    </message>
</context>
<context>
    <name>ColorPage</name>
    <message>
        <source>Color Settings</source>
        <translation>Color Settings</translation>
    </message>
    <message>
        <source>Background</source>
        <translation>Background</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>Button</source>
        <translation>Button</translation>
    </message>
    <message>
        <source>Set to default</source>
        <translation>Set to default</translation>
    </message>
</context>
<context>
    <name>StylePage</name>
    <message>
        <source>Style Settings</source>
        <translation>Style Settings</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Style</translation>
    </message>
    <message>
        <source> style not available on this system.</source>
        <translation> style not available on this system.</translation>
    </message>
    <message>
        <source>Style in use: %1</source>
        <translation>Style in use: %1</translation>
    </message>
    <message>
        <source>As the desktop</source>
        <translation>As the desktop</translation>
    </message>
</context>
<context>
    <name>PasswordField</name>
    <message>
        <source>Show password</source>
        <translation>Show password</translation>
    </message>
</context>
<context>
    <name>ProfileDialog</name>
    <message>
        <source>Change Profile</source>
        <translation>Change Profile</translation>
    </message>
    <message>
        <source>Select profile or edit profile name</source>
        <translation>Select profile or edit profile name</translation>
    </message>
    <message>
        <source>New profile</source>
        <translation>New profile</translation>
    </message>
    <message>
        <source>Remove profile</source>
        <translation>Remove profile</translation>
    </message>
    <message>
        <source>A profile needs a name.</source>
        <translation>A profile needs a name.</translation>
    </message>
    <message>
        <source>A profile name can&apos;t start with a dot and can&apos;t contain &quot;/&quot;.</source>
        <translation>A profile name can&apos;t start with a dot and can&apos;t contain &quot;/&quot;.</translation>
    </message>
    <message>
        <source>This profile name is too long.</source>
        <translation>This profile name is too long.</translation>
    </message>
    <message>
        <source>There is already a profile named &quot;%1&quot;.</source>
        <translation>There is already a profile named &quot;%1&quot;.</translation>
    </message>
    <message>
        <source>Profile name</source>
        <translation>Profile name</translation>
    </message>
    <message>
        <source>Can&apos;t write file: </source>
        <translation>Can&apos;t write file: </translation>
    </message>
    <message>
        <source>Used config profile is not removable.</source>
        <translation>Used config profile is not removable.</translation>
    </message>
    <message>
        <source>Remove the profile &quot;%1&quot; and its users?</source>
        <translation>Remove the profile &quot;%1&quot; and its users?</translation>
    </message>
    <message>
        <source>Duplicate profile</source>
        <translation>Duplicate profile</translation>
    </message>
    <message>
        <source>Rename profile</source>
        <translation>Rename profile</translation>
    </message>
    <message>
        <source>This profile can't be used until its settings are saved.</source>
        <translation>This profile can't be used until its settings are saved.</translation>
    </message>
</context>
<context>
    <name>Reachability</name>
    <message>
        <source>&lt;center&gt;Server accessible only on local network&lt;/center&gt;</source>
        <translation>&lt;center&gt;Server accessible only on local network&lt;/center&gt;</translation>
    </message>
    <message>
        <source>No port check service configured</source>
        <translation>No port check service configured</translation>
    </message>
    <message>
        <source>User and password required for DNS service.</source>
        <translation>User and password required for DNS service.</translation>
    </message>
    <message>
        <source>No DNS service configured</source>
        <translation>No DNS service configured</translation>
    </message>
    <message>
        <source>No internet connection</source>
        <translation>No internet connection</translation>
    </message>
</context>
<context>
    <name>ServerRow</name>
    <message>
        <source>not exists!</source>
        <translation>not exists!</translation>
    </message>
    <message>
        <source>Choose what to share.</source>
        <translation>Choose what to share.</translation>
    </message>
    <message>
        <source>Unable to start the server</source>
        <translation>Unable to start the server</translation>
    </message>
    <message>
        <source>Shared now: %1</source>
        <translation>Shared now: %1</translation>
    </message>
    <message>
        <source>The profile can&apos;t be used until its settings are saved</source>
        <translation>The profile can&apos;t be used until its settings are saved</translation>
    </message>
    <message>
        <source>This is neither a file nor a folder: %1</source>
        <translation>This is neither a file nor a folder: %1</translation>
    </message>
    <message>
        <source>This can&apos;t be read: %1</source>
        <translation>This can&apos;t be read: %1</translation>
    </message>
</context>
<context>
    <name>ServerRows</name>
    <message>
        <source>Invalid port</source>
        <translation>Invalid port</translation>
    </message>
    <message>
        <source>What was shared at which address could not be read; the rows begin anew, and none starts by itself. The file is kept as %1</source>
        <translation>What was shared at which address could not be read; the rows begin anew, and none starts by itself. The file is kept as %1</translation>
    </message>
    <message>
        <source>The network address is gone, the server waits for it: %1</source>
        <translation>The network address is gone, the server waits for it: %1</translation>
    </message>
    <message>
        <source>The certificate was not renewed for this computer&apos;s addresses: %1</source>
        <translation>The certificate was not renewed for this computer&apos;s addresses: %1</translation>
    </message>
    <message>
        <source>Press Start to serve at %1</source>
        <translation>Press Start to serve at %1</translation>
    </message>
    <message>
        <source>Can&apos;t save the settings</source>
        <translation>Can&apos;t save the settings</translation>
    </message>
    <message>
        <source>A port is a number from 1 to 65535.</source>
        <translation>A port is a number from 1 to 65535.</translation>
    </message>
    <message>
        <source>Another row has the port %1 already.</source>
        <translation>Another row has the port %1 already.</translation>
    </message>
    <message>
        <source>There is no address to serve at</source>
        <translation>There is no address to serve at</translation>
    </message>
    <message>
        <source>Connect to a network first.</source>
        <translation>Connect to a network first.</translation>
    </message>
    <message>
        <source>The certificate is valid until %1 only: %2. &quot;Make new key...&quot; in the settings makes one that is renewed by itself.</source>
        <translation>The certificate is valid until %1 only: %2. &quot;Make new key...&quot; in the settings makes one that is renewed by itself.</translation>
    </message>
    <message>
        <source>The network address is there, the server runs: %1</source>
        <translation>The network address is there, the server runs: %1</translation>
    </message>
</context>
<context>
    <name>Connection</name>
    <message>
        <source>Wrong password</source>
        <translation>Wrong password</translation>
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
        <translation>Size</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Time</translation>
    </message>
    <message>
        <source>Select Action</source>
        <translation>Select Action</translation>
    </message>
    <message>
        <source>Add File</source>
        <translation>Add File</translation>
    </message>
    <message>
        <source>Create Folder</source>
        <translation>Create Folder</translation>
    </message>
    <message>
        <source>File Manager in window</source>
        <translation>File Manager in window</translation>
    </message>
    <message>
        <source>File Manager in browser</source>
        <translation>File Manager in browser</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Folder</translation>
    </message>
    <message>
        <source>Empty</source>
        <translation>Empty</translation>
    </message>
</context>
<context>
    <name>Prompts</name>
    <message>
        <source>All (*.*)</source>
        <translation>All (*.*)</translation>
    </message>
</context>
<context>
    <name>StepField</name>
    <message>
        <source>Less</source>
        <translation>Less</translation>
    </message>
    <message>
        <source>More</source>
        <translation>More</translation>
    </message>
</context>
<context>
    <name>UserDialog</name>
    <message>
        <source>Add user</source>
        <translation>Add user</translation>
    </message>
    <message>
        <source>User</source>
        <translation>User</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Password</translation>
    </message>
    <message>
        <source>A user needs a password.</source>
        <translation>A user needs a password.</translation>
    </message>
    <message>
        <source>Keep readable for Digest</source>
        <translation>Keep readable for Digest</translation>
    </message>
    <message>
        <source>There is not enough memory to keep the password.</source>
        <translation>There is not enough memory to keep the password.</translation>
    </message>
</context>
<context>
    <name>WebServer</name>
    <message>
        <source>The password is empty: everyone is admitted.</source>
        <translation>The password is empty: everyone is admitted.</translation>
    </message>
    <message>
        <source>The renewed certificate can&apos;t be used; new connections get the one before.</source>
        <translation>The renewed certificate can&apos;t be used; new connections get the one before.</translation>
    </message>
    <message>
        <source>The certificate can&apos;t be read: %1</source>
        <translation>The certificate can&apos;t be read: %1</translation>
    </message>
    <message>
        <source>This is no certificate: %1</source>
        <translation>This is no certificate: %1</translation>
    </message>
    <message>
        <source>The private key can&apos;t be read: %1</source>
        <translation>The private key can&apos;t be read: %1</translation>
    </message>
    <message>
        <source>The private key can&apos;t be used, its pass phrase may be wrong: %1</source>
        <translation>The private key can&apos;t be used, its pass phrase may be wrong: %1</translation>
    </message>
    <message>
        <source>The certificate %1 is not that of the private key %2</source>
        <translation>The certificate %1 is not that of the private key %2</translation>
    </message>
    <message>
        <source>The TLS library refuses the keys: %1</source>
        <translation>The TLS library refuses the keys: %1</translation>
    </message>
    <message>
        <source>Too many wrong passwords from %1: further ones have to wait.</source>
        <translation>Too many wrong passwords from %1: further ones have to wait.</translation>
    </message>
    <message>
        <source>Too many wrong passwords for one account, from several addresses: new visitors have to wait a little.</source>
        <translation>Too many wrong passwords for one account, from several addresses: new visitors have to wait a little.</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Warning</translation>
    </message>
    <message>
        <source>WebDAV properties</source>
        <translation>WebDAV properties</translation>
    </message>
    <message>
        <source>The file system can&apos;t keep the properties that programs give to files. They are kept until the server ends.</source>
        <translation>The file system can&apos;t keep the properties that programs give to files. They are kept until the server ends.</translation>
    </message>
</context>
<context>
    <name>WebServices</name>
    <message>
        <source>&lt;centcer&gt;Public addresses: %1 , %2&lt;/center&gt;</source>
        <translation>&lt;centcer&gt;Public addresses: %1 , %2&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Public addresses: %1&lt;/center&gt;</source>
        <translation>&lt;center&gt;Public addresses: %1&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Public addresses: %1:%2 , %3:%4&lt;/center&gt;</source>
        <translation>&lt;center&gt;Public addresses: %1:%2 , %3:%4&lt;/center&gt;</translation>
    </message>
    <message>
        <source>&lt;center&gt;Public addresses: %1:%2&lt;/center&gt;</source>
        <translation>&lt;center&gt;Public addresses: %1:%2&lt;/center&gt;</translation>
    </message>
</context>
<context>
    <name>KeyMaker</name>
    <message>
        <source>The program &quot;openssl&quot; is needed to make a key.</source>
        <translation>The program &quot;openssl&quot; is needed to make a key.</translation>
    </message>
    <message>
        <source>Can&apos;t write to the folder: </source>
        <translation>Can&apos;t write to the folder: </translation>
    </message>
    <message>
        <source>Fingerprint (SHA-256): %1</source>
        <translation>Fingerprint (SHA-256): %1</translation>
    </message>
    <message>
        <source>Names: %1</source>
        <translation>Names: %1</translation>
    </message>
    <message>
        <source>Fingerprint of this computer&apos;s authority (SHA-256): %1</source>
        <translation>Fingerprint of this computer&apos;s authority (SHA-256): %1</translation>
    </message>
</context>
<context>
    <name>AddressHero</name>
    <message>
        <source>Copy</source>
        <translation>Copy</translation>
    </message>
    <message>
        <source>QR code</source>
        <translation>QR code</translation>
    </message>
    <message>
        <source>Copy the address</source>
        <translation>Copy the address</translation>
    </message>
    <message>
        <source>Show the address to a phone's camera</source>
        <translation>Show the address to a phone's camera</translation>
    </message>
    <message>
        <source>Further addresses, which others may not reach</source>
        <translation>Further addresses, which others may not reach</translation>
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
        <translation>Mobile network</translation>
    </message>
    <message>
        <source>VPN</source>
        <translation>VPN</translation>
    </message>
    <message>
        <source>Containers</source>
        <translation>Containers</translation>
    </message>
    <message>
        <source>Shared: %1</source>
        <translation>Shared: %1</translation>
    </message>
    <message>
        <source>Once on each device: open this page, and install the certificate that it offers if the device shows the same fingerprint of it. Browsers don&apos;t warn from then on.</source>
        <translation>Once on each device: open this page, and install the certificate that it offers if the device shows the same fingerprint of it. Browsers don&apos;t warn from then on.</translation>
    </message>
</context>
<context>
    <name>AddressDialog</name>
    <message>
        <source>Address</source>
        <translation>Address</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Close</translation>
    </message>
    <message>
        <source>Trust this computer</source>
        <translation>Trust this computer</translation>
    </message>
</context>
<context>
    <name>QrCode</name>
    <message>
        <source>QR code: %1</source>
        <translation>QR code: %1</translation>
    </message>
</context>
<context>
    <name>PermissionButton</name>
    <message>
        <source>Visitors may look</source>
        <translation>Visitors may look</translation>
    </message>
    <message>
        <source>Look</source>
        <translation>Look</translation>
    </message>
    <message>
        <source>Visitors may look and add</source>
        <translation>Visitors may look and add</translation>
    </message>
    <message>
        <source>Look and add</source>
        <translation>Look and add</translation>
    </message>
    <message>
        <source>File managers may replace, too</source>
        <translation>File managers may replace, too</translation>
    </message>
    <message>
        <source>Visitors may change everything</source>
        <translation>Visitors may change everything</translation>
    </message>
    <message>
        <source>Change everything</source>
        <translation>Change everything</translation>
    </message>
    <message>
        <source>Visitors may add only</source>
        <translation>Visitors may add only</translation>
    </message>
    <message>
        <source>Add only</source>
        <translation>Add only</translation>
    </message>
    <message>
        <source>Visitors may do as set</source>
        <translation>Visitors may do as set</translation>
    </message>
    <message>
        <source>Reached by everyone</source>
        <translation>Reached by everyone</translation>
    </message>
    <message>
        <source>With a password</source>
        <translation>With a password</translation>
    </message>
    <message>
        <source>With a name and password</source>
        <translation>With a name and password</translation>
    </message>
    <message>
        <source>Other addresses differ</source>
        <translation>Other addresses differ</translation>
    </message>
    <message>
        <source>Only the standard answers take files and show none. Answer all programs by the standards?</source>
        <translation>Only the standard answers take files and show none. Answer all programs by the standards?</translation>
    </message>
    <message>
        <source>Can't write file: </source>
        <translation>Can't write file: </translation>
    </message>
</context>
</TS>

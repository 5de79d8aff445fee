<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>Wayfold</name>
    <message>
        <source>List</source>
        <translation>Liste</translation>
    </message>
    <message>
        <source>Open Drawer</source>
        <translation>Schublade öffnen</translation>
    </message>
    <message>
        <source>Close Drawer</source>
        <translation>Schublade schließen</translation>
    </message>
    <message>
        <source>Show Scratchpad View</source>
        <translation>Scratchpad zeigen</translation>
    </message>
    <message>
        <source>Close Scratchpad View</source>
        <translation>Scratchpad schließen</translation>
    </message>
    <message>
        <source>Show Bookmark View</source>
        <translation>Bookmarks zeigen</translation>
    </message>
    <message>
        <source>Close Bookmark View</source>
        <translation>Bookmarks schließen</translation>
    </message>
    <message>
        <source>Show History View</source>
        <translation>History zeigen</translation>
    </message>
    <message>
        <source>Close History View</source>
        <translation>History schließen</translation>
    </message>
    <message>
        <source>Focus on Current Site</source>
        <translation>Aktuelle Website zeigen</translation>
    </message>
    <message>
        <source>Focus on %@</source>
        <translation>%@ zeigen</translation>
    </message>
    <message>
        <source>Show Previous Site List</source>
        <translation>Vorherige Liste zeigen</translation>
    </message>
    <message>
        <source>Save Current Page</source>
        <translation>Aktuelle Seite sichern</translation>
    </message>
    <message>
        <source>New Subfolder...</source>
        <translation>Neuer Unterordner...</translation>
    </message>
    <message>
        <source>New Note...</source>
        <translation>Neue Notiz...</translation>
    </message>
    <message>
        <source>New Email Link...</source>
        <translation>Neuer E-Mail-Link...</translation>
    </message>
    <message>
        <source>Check for New Release...</source>
        <translation>Nach neuer Version suchen...</translation>
    </message>
    <message>
        <source>Preferences...</source>
        <translation>Einstellungen...</translation>
    </message>
    <message>
        <source>About Wayfold</source>
        <translation>Über Wayfold</translation>
    </message>
    <message>
        <source>Open Item</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Open Items</source>
        <translation>Alle öffnen</translation>
    </message>
    <message>
        <source>Open Item in New Tab</source>
        <translation>In neuem Tab öffnen</translation>
    </message>
    <message>
        <source>Open Items in New Tabs</source>
        <translation>Alle in neuen Tabs öffnen</translation>
    </message>
    <message>
        <source>Open Item in Address Book</source>
        <translation>Im Adressbuch öffnen</translation>
    </message>
    <message>
        <source>Send Email...</source>
        <translation>E-Mail senden...</translation>
    </message>
    <message>
        <source>Edit Item...</source>
        <translation>Bearbeiten...</translation>
    </message>
    <message>
        <source>Edit Item in Address Book</source>
        <translation>Im Adressbuch bearbeiten</translation>
    </message>
    <message>
        <source>Delete Item</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Delete Item%@%@</source>
        <translation>Löschen%2$@</translation>
    </message>
    <message>
        <source>A drawer beside every browser window that follows the site.</source>
        <translation>Eine Schublade neben jedem Browserfenster, die der Website folgt.</translation>
    </message>
    <message>
        <source>Version %@</source>
        <translation>Version %@</translation>
    </message>
    <message>
        <source>Wayfold</source>
        <translation>Wayfold</translation>
    </message>
    <message>
        <source>What the drawer shows</source>
        <translation>Was die Schublade zeigt</translation>
    </message>
    <message>
        <source>Lists</source>
        <translation>Listen</translation>
    </message>
    <message>
        <source>The site whose list is shown</source>
        <translation>Die Website, deren Liste zu sehen ist</translation>
    </message>
    <message>
        <source>Site</source>
        <translation>Website</translation>
    </message>
    <message>
        <source>Sites</source>
        <translation>Websites</translation>
    </message>
    <message>
        <source>Links, notes and mails of the site</source>
        <translation>Links, Notizen und E-Mails der Website</translation>
    </message>
    <message>
        <source>Scratchpad items</source>
        <translation>Einträge des Scratchpads</translation>
    </message>
    <message>
        <source>New Subfolder</source>
        <translation>Neuer Unterordner</translation>
    </message>
    <message>
        <source>New Note</source>
        <translation>Neue Notiz</translation>
    </message>
    <message>
        <source>New Email Link</source>
        <translation>Neuer E-Mail-Link</translation>
    </message>
    <message>
        <source>Edit Item</source>
        <translation>Bearbeiten</translation>
    </message>
    <message>
        <source>Show only bookmarks that contain this text</source>
        <translation>Nur Lesezeichen zeigen, die diesen Text enthalten</translation>
    </message>
    <message>
        <source>Search Bookmarks</source>
        <translation>Lesezeichen durchsuchen</translation>
    </message>
    <message>
        <source>Bookmarks of the browser</source>
        <translation>Lesezeichen des Browsers</translation>
    </message>
    <message>
        <source>Show only pages that contain this text</source>
        <translation>Nur Seiten zeigen, die diesen Text enthalten</translation>
    </message>
    <message>
        <source>Search History</source>
        <translation>Verlauf durchsuchen</translation>
    </message>
    <message>
        <source>Pages that were visited</source>
        <translation>Besuchte Seiten</translation>
    </message>
    <message>
        <source>The items of the site</source>
        <translation>Die Einträge der Website</translation>
    </message>
    <message>
        <source>The bookmarks of the browser</source>
        <translation>Die Lesezeichen des Browsers</translation>
    </message>
    <message>
        <source>The pages that the browser has visited</source>
        <translation>Die Seiten, die der Browser besucht hat</translation>
    </message>
    <message>
        <source>Edit File Link</source>
        <translation>Datei-Link bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Title:</source>
        <translation>&amp;Titel:</translation>
    </message>
    <message>
        <source>The name in the list</source>
        <translation>Der Name in der Liste</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>&amp;Path:</source>
        <translation>&amp;Pfad:</translation>
    </message>
    <message>
        <source>The path of the file or folder</source>
        <translation>Der Pfad der Datei oder des Ordners</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>Pfad</translation>
    </message>
    <message>
        <source>Choose a file or folder</source>
        <translation>Eine Datei oder einen Ordner wählen</translation>
    </message>
    <message>
        <source>&amp;Choose...</source>
        <translation>&amp;Wählen...</translation>
    </message>
    <message>
        <source>Choose File or Folder</source>
        <translation>Datei oder Ordner wählen</translation>
    </message>
    <message>
        <source>Edit Bookmark Folder</source>
        <translation>Ordner bearbeiten</translation>
    </message>
    <message>
        <source>New Bookmark Folder</source>
        <translation>Neuer Ordner</translation>
    </message>
    <message>
        <source>Edit Bookmark</source>
        <translation>Lesezeichen bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Address:</source>
        <translation>&amp;Adresse:</translation>
    </message>
    <message>
        <source>The address of the page</source>
        <translation>Die Adresse der Seite</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>Edit Email Link</source>
        <translation>E-Mail-Link bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Subject:</source>
        <translation>B&amp;etreff:</translation>
    </message>
    <message>
        <source>The subject of the message</source>
        <translation>Der Betreff der Nachricht</translation>
    </message>
    <message>
        <source>Subject</source>
        <translation>Betreff</translation>
    </message>
    <message>
        <source>T&amp;o:</source>
        <translation>A&amp;n:</translation>
    </message>
    <message>
        <source>The recipients, one address a line</source>
        <translation>Die Empfänger, eine Adresse je Zeile</translation>
    </message>
    <message>
        <source>To</source>
        <translation>An</translation>
    </message>
    <message>
        <source>&amp;Cc:</source>
        <translation>&amp;Cc:</translation>
    </message>
    <message>
        <source>Who gets a copy, one address a line</source>
        <translation>Wer eine Kopie erhält, eine Adresse je Zeile</translation>
    </message>
    <message>
        <source>Cc</source>
        <translation>Cc</translation>
    </message>
    <message>
        <source>&amp;Bcc:</source>
        <translation>&amp;Bcc:</translation>
    </message>
    <message>
        <source>Who gets a copy that the others do not see, one address a line</source>
        <translation>Wer eine Kopie erhält, von der die anderen nichts sehen, eine Adresse je Zeile</translation>
    </message>
    <message>
        <source>Bcc</source>
        <translation>Bcc</translation>
    </message>
    <message>
        <source>Edit Note</source>
        <translation>Notiz bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Note:</source>
        <translation>N&amp;otiz:</translation>
    </message>
    <message>
        <source>The text of the note. Control and Return together accept it.</source>
        <translation>Der Text der Notiz. Strg und Eingabe zusammen übernehmen ihn.</translation>
    </message>
    <message>
        <source>Note</source>
        <translation>Notiz</translation>
    </message>
    <message>
        <source>The text of the note</source>
        <translation>Der Text der Notiz</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Keep the changes</source>
        <translation>Die Änderungen übernehmen</translation>
    </message>
    <message>
        <source>Close without changing anything</source>
        <translation>Schließen, ohne etwas zu ändern</translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>Bestätigen</translation>
    </message>
    <message>
        <source>Are you sure you want to delete "%@"?</source>
        <translation>Soll „%@“ wirklich gelöscht werden?</translation>
    </message>
    <message>
        <source>Are you sure you want to delete these %u items ?</source>
        <translation>Sollen diese %u Einträge wirklich gelöscht werden?</translation>
    </message>
    <message>
        <source>Untitled File</source>
        <translation>Datei ohne Titel</translation>
    </message>
    <message>
        <source>Untitled Note</source>
        <translation>Notiz ohne Titel</translation>
    </message>
    <message>
        <source>Untitled Folder</source>
        <translation>Ordner ohne Titel</translation>
    </message>
    <message>
        <source>Untitled URL</source>
        <translation>Link ohne Titel</translation>
    </message>
    <message>
        <source>Untitled Email Link</source>
        <translation>E-Mail-Link ohne Titel</translation>
    </message>
    <message>
        <source>No Bookmarks</source>
        <translation>Keine Lesezeichen</translation>
    </message>
    <message>
        <source>No History</source>
        <translation>Kein Verlauf</translation>
    </message>
    <message>
        <source>No Matches</source>
        <translation>Keine Treffer</translation>
    </message>
    <message>
        <source>Width of the drawer</source>
        <translation>Breite der Schublade</translation>
    </message>
    <message>
        <source>Drag or press the arrow keys to change the width</source>
        <translation>Ziehen oder Pfeiltasten drücken, um die Breite zu ändern</translation>
    </message>
    <message>
        <source>Related Bookmarks</source>
        <translation>Verwandte Lesezeichen</translation>
    </message>
    <message>
        <source>Related History</source>
        <translation>Verwandte Seiten im Verlauf</translation>
    </message>
    <message>
        <source>Keyboard Shortcut</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Press the new shortcut for this command:</source>
        <translation>Drücken Sie das neue Tastenkürzel für diesen Befehl:</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Keep this shortcut</source>
        <translation>Dieses Tastenkürzel übernehmen</translation>
    </message>
    <message>
        <source>Leave the command without a shortcut</source>
        <translation>Dem Befehl kein Tastenkürzel geben</translation>
    </message>
    <message>
        <source>Press the key together with Ctrl, Alt or Shift.</source>
        <translation>Drücken Sie die Taste zusammen mit Strg, Alt oder Umschalt.</translation>
    </message>
    <message>
        <source>The browser has this shortcut already.</source>
        <translation>Dieses Tastenkürzel hat schon der Browser.</translation>
    </message>
</context>
</TS>

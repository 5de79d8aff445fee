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
        <source>There are no bookmarks.

Those that you add in the browser appear here.</source>
        <translation>Es gibt keine Lesezeichen.

Hier erscheinen die, die Sie im Browser anlegen.</translation>
    </message>
    <message>
        <source>The history is empty.

The pages that you visit appear here.</source>
        <translation>Der Verlauf ist leer.

Hier erscheinen die Seiten, die Sie besuchen.</translation>
    </message>
    <message>
        <source>Contact</source>
        <translation>Kontakt</translation>
    </message>
    <message>
        <source>%@ and %u more</source>
        <translation>%@ und %u weitere</translation>
    </message>
    <message>
        <source>Add to Contacts?</source>
        <translation>Zu den Kontakten hinzufügen?</translation>
    </message>
    <message>
        <source>&quot;%@&quot; is not in your contacts. Do you want to add the card?</source>
        <translation>„%@“ ist nicht in Ihren Kontakten. Möchten Sie die Karte hinzufügen?</translation>
    </message>
    <message>
        <source>%u people are not in your contacts. Do you want to add their cards?</source>
        <translation>%u Personen sind nicht in Ihren Kontakten. Möchten Sie ihre Karten hinzufügen?</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Don&apos;t Add</source>
        <translation>Nicht hinzufügen</translation>
    </message>
    <message>
        <source>Email Links</source>
        <translation>E-Mail-Links</translation>
    </message>
    <message>
        <source>Not Added</source>
        <translation>Nicht hinzugefügt</translation>
    </message>
    <message>
        <source>The card of &quot;%@&quot; could not be added to your contacts. It stays in the list as it is.</source>
        <translation>Die Karte von „%@“ konnte nicht zu Ihren Kontakten hinzugefügt werden. Sie bleibt in der Liste, wie sie ist.</translation>
    </message>
    <message>
        <source>%u cards could not be added to your contacts. They stay in the list as they are.</source>
        <translation>%u Karten konnten nicht zu Ihren Kontakten hinzugefügt werden. Sie bleiben in der Liste, wie sie sind.</translation>
    </message>
    <message>
        <source>Not Shown</source>
        <translation>Nicht gezeigt</translation>
    </message>
    <message>
        <source>No program could be started to show &quot;%@&quot;. The card may have been deleted, or there is no program for contacts.</source>
        <translation>Es konnte kein Programm gestartet werden, das „%@“ zeigt. Vielleicht wurde die Karte gelöscht, oder es gibt kein Programm für Kontakte.</translation>
    </message>
    <message>
        <source>This card is not in your contacts. It may have been deleted, or lie in contacts that are not there at the moment.</source>
        <translation>Diese Karte ist nicht in Ihren Kontakten. Vielleicht wurde sie gelöscht, oder sie liegt in Kontakten, die gerade nicht da sind.</translation>
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
    <message>
        <source>Wayfold Preferences</source>
        <translation>Wayfold-Einstellungen</translation>
    </message>
    <message>
        <source>Pages of the preferences</source>
        <translation>Seiten der Einstellungen</translation>
    </message>
    <message>
        <source>&amp;Drawer</source>
        <translation>&amp;Schublade</translation>
    </message>
    <message>
        <source>&amp;Lists</source>
        <translation>&amp;Listen</translation>
    </message>
    <message>
        <source>Shor&amp;tcuts</source>
        <translation>&amp;Tastenkürzel</translation>
    </message>
    <message>
        <source>Open the drawer:</source>
        <translation>Schublade öffnen:</translation>
    </message>
    <message>
        <source>&amp;Only when you ask for it</source>
        <translation>&amp;Nur auf Wunsch</translation>
    </message>
    <message>
        <source>In every new &amp;window</source>
        <translation>In jedem neuen &amp;Fenster</translation>
    </message>
    <message>
        <source>On sites that you &amp;keep items for</source>
        <translation>Auf Websites mit &amp;Einträgen</translation>
    </message>
    <message>
        <source>&amp;Close it on other sites</source>
        <translation>Auf &amp;anderen Websites schließen</translation>
    </message>
    <message>
        <source>Show first:</source>
        <translation>Zuerst zeigen:</translation>
    </message>
    <message>
        <source>&amp;Scratchpad</source>
        <translation>Scratch&amp;pad</translation>
    </message>
    <message>
        <source>&amp;Bookmarks</source>
        <translation>&amp;Bookmarks</translation>
    </message>
    <message>
        <source>&amp;History</source>
        <translation>&amp;History</translation>
    </message>
    <message>
        <source>In the Scratchpad:</source>
        <translation>Im Scratchpad:</translation>
    </message>
    <message>
        <source>&amp;Follow the site in front of you</source>
        <translation>&amp;Der Website im Fenster folgen</translation>
    </message>
    <message>
        <source>Have s&amp;mart folders in the top folders</source>
        <translation>&amp;Intelligente Ordner in den obersten Ordnern</translation>
    </message>
    <message>
        <source>&amp;Ask before items are deleted</source>
        <translation>Vor dem Löschen f&amp;ragen</translation>
    </message>
    <message>
        <source>Icons:</source>
        <translation>Symbole:</translation>
    </message>
    <message>
        <source>Show &amp;icons</source>
        <translation>Symbole &amp;zeigen</translation>
    </message>
    <message>
        <source>Show the &amp;sites' own icons</source>
        <translation>Eigene Symbole der Webs&amp;ites</translation>
    </message>
    <message>
        <source>Font:</source>
        <translation>Schrift:</translation>
    </message>
    <message>
        <source>Choose the font of the lists</source>
        <translation>Die Schrift der Listen wählen</translation>
    </message>
    <message>
        <source>Group the history:</source>
        <translation>Verlauf gruppieren:</translation>
    </message>
    <message>
        <source>&amp;Not at all</source>
        <translation>&amp;Gar nicht</translation>
    </message>
    <message>
        <source>B&amp;y day</source>
        <translation>Nach T&amp;ag</translation>
    </message>
    <message>
        <source>By day and sit&amp;e</source>
        <translation>Nach Tag u&amp;nd Website</translation>
    </message>
    <message>
        <source>&amp;By site</source>
        <translation>Nach W&amp;ebsite</translation>
    </message>
    <message>
        <source>By site &amp;and day</source>
        <translation>Nach Website &amp;und Tag</translation>
    </message>
    <message>
        <source>Commands of the Wayfold &amp;menu:</source>
        <translation>Befehle im Wayfold-&amp;Menü:</translation>
    </message>
    <message>
        <source>Keyboard shortcuts of the Wayfold menu</source>
        <translation>Tastenkürzel des Wayfold-Menüs</translation>
    </message>
    <message>
        <source>Double-click a command, or press Return on it, to change its shortcut.</source>
        <translation>Doppelklick oder Eingabetaste ändert das Tastenkürzel eines Befehls.</translation>
    </message>
    <message>
        <source>Command</source>
        <translation>Befehl</translation>
    </message>
    <message>
        <source>Shortcut</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Determines when Wayfold should automatically open the drawer.</source>
        <translation>Bestimmt, wann Wayfold die Schublade von selbst öffnet.</translation>
    </message>
    <message>
        <source>If checked, Wayfold will automatically close the drawer if the Scratchpad is showing and you navigate to a site that has no bookmarks in the Scratchpad.</source>
        <translation>Wenn eingeschaltet, schließt Wayfold die Schublade von selbst, sobald das Scratchpad zu sehen ist und Sie eine Website besuchen, zu der es im Scratchpad keine Einträge gibt.</translation>
    </message>
    <message>
        <source>If checked, Wayfold will automatically focus the Scratchpad tab to the current site.</source>
        <translation>Wenn eingeschaltet, zeigt das Scratchpad von selbst die Liste der aktuellen Website.</translation>
    </message>
    <message>
        <source>If checked, icons for items in the drawer are displayed.</source>
        <translation>Wenn eingeschaltet, haben die Einträge in der Schublade Symbole.</translation>
    </message>
    <message>
        <source>Determines how items in the History tab are grouped.</source>
        <translation>Bestimmt, wie die Einträge unter History gruppiert werden.</translation>
    </message>
    <message>
        <source>If unchecked, Wayfold will not ask you to confirm deleting items.  They'll just disappear.</source>
        <translation>Wenn ausgeschaltet, fragt Wayfold nicht nach, bevor Einträge gelöscht werden. Sie verschwinden einfach.</translation>
    </message>
    <message>
        <source>Allows you to choose the font to be used in all bookmark lists within Wayfold.</source>
        <translation>Hier wählen Sie die Schrift für alle Listen in Wayfold.</translation>
    </message>
    <message>
        <source>Allows you to change the keyboard shortcuts for Wayfold menu items.

To change a shortcut, double-click on the menu item's row.</source>
        <translation>Hier ändern Sie die Tastenkürzel der Befehle im Wayfold-Menü.

Doppelklicken Sie dazu auf die Zeile des Befehls.</translation>
    </message>
    <message>
        <source>If checked, Wayfold will create Smart Folders within top-level subfolders.</source>
        <translation>Wenn eingeschaltet, legt Wayfold in den Ordnern der obersten Ebene intelligente Ordner an.</translation>
    </message>
    <message>
        <source>If checked, the site's custom icon is displayed.  Available only if the Show Bookmark Icons option is checked.</source>
        <translation>Wenn eingeschaltet, haben Links das Symbol ihrer Website. Nur möglich, wenn Symbole gezeigt werden.</translation>
    </message>
    <message>
        <source>Determines which of the three Wayfold views is displayed when you simply open the drawer.</source>
        <translation>Bestimmt, welche der drei Ansichten zu sehen ist, wenn Sie die Schublade einfach öffnen.</translation>
    </message>
    <message>
        <source>Font of the Lists</source>
        <translation>Schrift der Listen</translation>
    </message>
    <message>
        <source>&amp;Font</source>
        <translation>&amp;Schriftart</translation>
    </message>
    <message>
        <source>Font st&amp;yle</source>
        <translation>S&amp;chnitt</translation>
    </message>
    <message>
        <source>&amp;Size</source>
        <translation>&amp;Größe</translation>
    </message>
    <message>
        <source>Sample</source>
        <translation>Beispiel</translation>
    </message>
    <message>
        <source>Wr&amp;iting System</source>
        <translation>Schr&amp;iftsystem</translation>
    </message>
    <message>
        <source>Any</source>
        <translation>Alle</translation>
    </message>
    <message>
        <source>Latin</source>
        <translation>Lateinisch</translation>
    </message>
    <message>
        <source>Greek</source>
        <translation>Griechisch</translation>
    </message>
    <message>
        <source>Cyrillic</source>
        <translation>Kyrillisch</translation>
    </message>
    <message>
        <source>Armenian</source>
        <translation>Armenisch</translation>
    </message>
    <message>
        <source>Hebrew</source>
        <translation>Hebräisch</translation>
    </message>
    <message>
        <source>Arabic</source>
        <translation>Arabisch</translation>
    </message>
    <message>
        <source>Syriac</source>
        <translation>Syrisch</translation>
    </message>
    <message>
        <source>Thaana</source>
        <translation>Thaana</translation>
    </message>
    <message>
        <source>Devanagari</source>
        <translation>Devanagari</translation>
    </message>
    <message>
        <source>Bengali</source>
        <translation>Bengalisch</translation>
    </message>
    <message>
        <source>Gurmukhi</source>
        <translation>Gurmukhi</translation>
    </message>
    <message>
        <source>Gujarati</source>
        <translation>Gujarati</translation>
    </message>
    <message>
        <source>Oriya</source>
        <translation>Oriya</translation>
    </message>
    <message>
        <source>Tamil</source>
        <translation>Tamil</translation>
    </message>
    <message>
        <source>Telugu</source>
        <translation>Telugu</translation>
    </message>
    <message>
        <source>Kannada</source>
        <translation>Kannada</translation>
    </message>
    <message>
        <source>Malayalam</source>
        <translation>Malayalam</translation>
    </message>
    <message>
        <source>Sinhala</source>
        <translation>Singhalesisch</translation>
    </message>
    <message>
        <source>Thai</source>
        <translation>Thailändisch</translation>
    </message>
    <message>
        <source>Lao</source>
        <translation>Laotisch</translation>
    </message>
    <message>
        <source>Tibetan</source>
        <translation>Tibetisch</translation>
    </message>
    <message>
        <source>Myanmar</source>
        <translation>Birmanisch</translation>
    </message>
    <message>
        <source>Georgian</source>
        <translation>Georgisch</translation>
    </message>
    <message>
        <source>Khmer</source>
        <translation>Khmer</translation>
    </message>
    <message>
        <source>Simplified Chinese</source>
        <translation>Vereinfachtes Chinesisch</translation>
    </message>
    <message>
        <source>Traditional Chinese</source>
        <translation>Traditionelles Chinesisch</translation>
    </message>
    <message>
        <source>Japanese</source>
        <translation>Japanisch</translation>
    </message>
    <message>
        <source>Korean</source>
        <translation>Koreanisch</translation>
    </message>
    <message>
        <source>Vietnamese</source>
        <translation>Vietnamesisch</translation>
    </message>
    <message>
        <source>Symbol</source>
        <translation>Symbole</translation>
    </message>
    <message>
        <source>Ogham</source>
        <translation>Ogham</translation>
    </message>
    <message>
        <source>Runic</source>
        <translation>Runen</translation>
    </message>
    <message>
        <source>N'Ko</source>
        <translation>N’Ko</translation>
    </message>
    <message>
        <source>When the drawer opens, and what it shows</source>
        <translation>Wann sich die Schublade öffnet und was sie zeigt</translation>
    </message>
    <message>
        <source>What the lists look like</source>
        <translation>Wie die Listen aussehen</translation>
    </message>
    <message>
        <source>The keyboard shortcuts of the commands</source>
        <translation>Die Tastenkürzel der Befehle</translation>
    </message>
    <message>
        <source>Wa&amp;yfold</source>
        <translation>Wa&amp;yfold</translation>
    </message>
    <message>
        <source>"%@" has this shortcut already.</source>
        <translation>„%@“ hat dieses Tastenkürzel schon.</translation>
    </message>
    <message>
        <source>Nothing is kept yet.

Links, notes and files stand here, each site's in a folder of its own.

To begin, visit a site and go to its list with %@.</source>
        <translation>Noch ist nichts gesichert.

Hier stehen Links, Notizen und Dateien, für jede Website ein Ordner.

Besuchen Sie eine Website und gehen Sie mit %@ zu ihrer Liste.</translation>
    </message>
    <message>
        <source>Nothing is kept for this site yet.

Keep the page with %@, write a note with the button below, or drop links, texts and files here.</source>
        <translation>Zu dieser Website ist noch nichts gesichert.

Sichern Sie die Seite mit %@, schreiben Sie mit dem Knopf unten eine Notiz, oder ziehen Sie Links, Texte und Dateien hierher.</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Smart Folder</source>
        <translation>Intelligenter Ordner</translation>
    </message>
    <message>
        <source>Link</source>
        <translation>Link</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Email Link</source>
        <translation>E-Mail-Link</translation>
    </message>
    <message>
        <source>Visited Page</source>
        <translation>Besuchte Seite</translation>
    </message>
    <message>
        <source>Person</source>
        <translation>Person</translation>
    </message>
    <message>
        <source>Organization</source>
        <translation>Organisation</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>Gruppe</translation>
    </message>
    <message>
        <source>Invalid</source>
        <translation>Ungültig</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>Unnamed Person</source>
        <translation>Unbenannte Person</translation>
    </message>
    <message>
        <source>Unnamed Organization</source>
        <translation>Unbenannte Organisation</translation>
    </message>
    <message>
        <source>Unnamed Group</source>
        <translation>Unbenannte Gruppe</translation>
    </message>
    <message>
        <source>home</source>
        <translation>privat</translation>
    </message>
    <message>
        <source>work</source>
        <translation>geschäftlich</translation>
    </message>
    <message>
        <source>mobile</source>
        <translation>mobil</translation>
    </message>
    <message>
        <source>main</source>
        <translation>Zentrale</translation>
    </message>
    <message>
        <source>fax</source>
        <translation>Fax</translation>
    </message>
    <message>
        <source>home fax</source>
        <translation>Fax privat</translation>
    </message>
    <message>
        <source>work fax</source>
        <translation>Fax geschäftlich</translation>
    </message>
    <message>
        <source>pager</source>
        <translation>Pager</translation>
    </message>
    <message>
        <source>car</source>
        <translation>Auto</translation>
    </message>
    <message>
        <source>video</source>
        <translation>Video</translation>
    </message>
    <message>
        <source>text</source>
        <translation>SMS</translation>
    </message>
    <message>
        <source>other</source>
        <translation>andere</translation>
    </message>
    <message>
        <source>phone</source>
        <translation>Telefon</translation>
    </message>
    <message>
        <source>email</source>
        <translation>E-Mail</translation>
    </message>
    <message>
        <source>New Person Link...</source>
        <translation>Neuer Personen-Link...</translation>
    </message>
    <message>
        <source>New Person Link</source>
        <translation>Neuer Personen-Link</translation>
    </message>
    <message>
        <source>Search People</source>
        <translation>Kontakte durchsuchen</translation>
    </message>
    <message>
        <source>Show only people whose names, organization or addresses contain these words</source>
        <translation>Nur Kontakte zeigen, deren Namen, Firma oder Adressen diese Wörter enthalten</translation>
    </message>
    <message>
        <source>Your contacts. Ctrl and Shift select several of them.</source>
        <translation>Ihre Kontakte. Mit Strg und Umschalt wählen Sie mehrere aus.</translation>
    </message>
    <message>
        <source>People</source>
        <translation>Kontakte</translation>
    </message>
    <message>
        <source>Choose where people come from</source>
        <translation>Wählen, woher die Kontakte kommen</translation>
    </message>
    <message>
        <source>Add the selected people to the list</source>
        <translation>Die ausgewählten Kontakte in die Liste aufnehmen</translation>
    </message>
    <message>
        <source>Your contacts are being read...</source>
        <translation>Die Kontakte werden gelesen...</translation>
    </message>
    <message>
        <source>Nobody is found.</source>
        <translation>Niemand gefunden.</translation>
    </message>
    <message>
        <source>There is nobody in your contacts yet.</source>
        <translation>In Ihren Kontakten steht noch niemand.</translation>
    </message>
    <message>
        <source>Contacts are switched off.

The preferences say where people come from.</source>
        <translation>Die Kontakte sind ausgeschaltet.

In den Einstellungen legen Sie fest, woher sie kommen.</translation>
    </message>
    <message>
        <source>No contacts were found on this machine.

People come from the desktop's contacts or from a folder of cards. The preferences say from which.</source>
        <translation>Auf diesem Rechner wurden keine Kontakte gefunden.

Sie kommen aus den Kontakten des Desktops oder aus einem Ordner mit Karten. In den Einstellungen legen Sie fest, woher.</translation>
    </message>
    <message>
        <source>Co&amp;ntacts:</source>
        <translation>&amp;Kontakte:</translation>
    </message>
    <message>
        <source>Contacts</source>
        <translation>Kontakte</translation>
    </message>
    <message>
        <source>Determines where the people and groups come from that can be kept in the Scratchpad.</source>
        <translation>Legt fest, woher die Personen und Gruppen kommen, die sich im Scratchpad ablegen lassen.</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>Automatisch</translation>
    </message>
    <message>
        <source>The desktop's contacts</source>
        <translation>Die des Desktops</translation>
    </message>
    <message>
        <source>A folder of cards</source>
        <translation>Ein Ordner mit Karten</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>The folder in which the cards lie, one or more in each file (.vcf). The usual one is ~/.contacts.</source>
        <translation>Der Ordner, in dem die Karten liegen, eine oder mehrere je Datei (.vcf). Üblich ist ~/.contacts.</translation>
    </message>
    <message>
        <source>Folder of cards</source>
        <translation>Ordner mit Karten</translation>
    </message>
    <message>
        <source>Allows you to choose the folder in which the cards lie.</source>
        <translation>Hier wählen Sie den Ordner, in dem die Karten liegen.</translation>
    </message>
    <message>
        <source>Choose the folder of cards</source>
        <translation>Den Ordner mit Karten wählen</translation>
    </message>
    <message>
        <source>Choos&amp;e...</source>
        <translation>&amp;Wählen...</translation>
    </message>
    <message>
        <source>Choose Folder</source>
        <translation>Ordner wählen</translation>
    </message>
    <message>
        <source>Nobody in the desktop's contacts yet.</source>
        <translation>Noch niemand in den Kontakten des Desktops.</translation>
    </message>
    <message>
        <source>1 person from the desktop's contacts</source>
        <translation>1 Person aus den Kontakten des Desktops</translation>
    </message>
    <message>
        <source>%@ people from the desktop's contacts</source>
        <translation>%@ Personen aus den Kontakten des Desktops</translation>
    </message>
    <message>
        <source>Nobody in %@ yet.</source>
        <translation>Noch niemand in %@.</translation>
    </message>
    <message>
        <source>1 person from %@</source>
        <translation>1 Person aus %@</translation>
    </message>
    <message>
        <source>%@ people from %@</source>
        <translation>%@ Personen aus %@</translation>
    </message>
    <message>
        <source>The desktop has no contacts.</source>
        <translation>Der Desktop hat keine Kontakte.</translation>
    </message>
    <message>
        <source>There is no folder %@.</source>
        <translation>Es gibt keinen Ordner %@.</translation>
    </message>
    <message>
        <source>No contacts on this machine.</source>
        <translation>Keine Kontakte auf diesem Rechner.</translation>
    </message>
    <message>
        <source>No contacts are shown.</source>
        <translation>Es werden keine Kontakte gezeigt.</translation>
    </message>
    <message>
        <source>Looking for contacts...</source>
        <translation>Die Kontakte werden gesucht...</translation>
    </message>
    <message>
        <source>Close this message</source>
        <translation>Diese Meldung schließen</translation>
    </message>
    <message>
        <source>Close Message</source>
        <translation>Meldung schließen</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>Hinweis</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Your last changes could not be saved; Wayfold keeps them and goes on trying.</source>
        <translation>Ihre letzten Änderungen konnten nicht gespeichert werden; Wayfold behält sie und versucht es weiter.</translation>
    </message>
    <message>
        <source>Another program does not let go of your file; Wayfold keeps your last changes and goes on trying.</source>
        <translation>Ein anderes Programm gibt Ihre Datei nicht frei; Wayfold behält Ihre letzten Änderungen und versucht es weiter.</translation>
    </message>
    <message>
        <source>Your settings could not be read whole, so a copy of their file was kept.</source>
        <translation>Ihre Einstellungen konnten nicht ganz gelesen werden; eine Kopie der Datei wurde aufgehoben.</translation>
    </message>
    <message>
        <source>Try Again</source>
        <translation>Erneut versuchen</translation>
    </message>
    <message>
        <source>Save your changes now</source>
        <translation>Ihre Änderungen jetzt speichern</translation>
    </message>
    <message>
        <source>Show File</source>
        <translation>Datei zeigen</translation>
    </message>
    <message>
        <source>Show where the file lies</source>
        <translation>Zeigen, wo die Datei liegt</translation>
    </message>
    <message>
        <source>Your changes are saved now.</source>
        <translation>Ihre Änderungen sind jetzt gespeichert.</translation>
    </message>
    <message>
        <source>Your file held something that the lists do not have, so a copy of it was kept.</source>
        <translation>Ihre Datei enthielt etwas, das in den Listen fehlt; deshalb wurde eine Kopie von ihr behalten.</translation>
    </message>
    <message>
        <source>Restore...</source>
        <translation>Wiederherstellen...</translation>
    </message>
    <message>
        <source>Look at what earlier files hold</source>
        <translation>Ansehen, was frühere Dateien enthalten</translation>
    </message>
    <message>
        <source>Another program has changed your items: %@.</source>
        <translation>Ein anderes Programm hat Ihre Einträge geändert: %@.</translation>
    </message>
    <message>
        <source>%u added</source>
        <translation>%u hinzugefügt</translation>
    </message>
    <message>
        <source>%u changed</source>
        <translation>%u geändert</translation>
    </message>
    <message>
        <source>%u deleted</source>
        <translation>%u gelöscht</translation>
    </message>
    <message>
        <source>%u moved</source>
        <translation>%u verschoben</translation>
    </message>
    <message>
        <source>%u kept in both versions</source>
        <translation>%u in beiden Fassungen behalten</translation>
    </message>
    <message>
        <source>Today's backup could not be made; your items themselves are not concerned.</source>
        <translation>Die heutige Sicherung war nicht möglich; Ihre Einträge selbst sind davon nicht betroffen.</translation>
    </message>
    <message>
        <source>%1 (from %2, %3)</source>
        <translation>%1 (von %2, %3)</translation>
    </message>
    <message>
        <source>Restore from Backup...</source>
        <translation>Aus Sicherung wiederherstellen...</translation>
    </message>
    <message>
        <source>Restore from Backup</source>
        <translation>Aus Sicherung wiederherstellen</translation>
    </message>
    <message>
        <source>Backups, and copies of the file that were kept, the newest first</source>
        <translation>Sicherungen und behaltene Kopien der Datei, die neueste zuerst</translation>
    </message>
    <message>
        <source>Backups</source>
        <translation>Sicherungen</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>Items</source>
        <translation>Einträge</translation>
    </message>
    <message>
        <source>What the selected backup holds</source>
        <translation>Was die gewählte Sicherung enthält</translation>
    </message>
    <message>
        <source>Contents of the backup</source>
        <translation>Inhalt der Sicherung</translation>
    </message>
    <message>
        <source>Add brings back what is missing now, beside what you have. Replace makes all of your items as they were then. Either can be undone.</source>
        <translation>„Hinzufügen“ holt zurück, was jetzt fehlt, und lässt Ihnen, was Sie haben. „Ersetzen“ macht alle Einträge so, wie sie damals waren. Beides lässt sich widerrufen.</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>Ersetzen</translation>
    </message>
    <message>
        <source>Make all of your items as they were in this backup</source>
        <translation>Alle Einträge so machen, wie sie in dieser Sicherung waren</translation>
    </message>
    <message>
        <source>Bring back from this backup what is missing now</source>
        <translation>Aus dieser Sicherung zurückholen, was jetzt fehlt</translation>
    </message>
    <message>
        <source>%@ (kept copy)</source>
        <translation>%@ (behaltene Kopie)</translation>
    </message>
    <message>
        <source>There is no backup yet.

One is made each day, before something is changed.</source>
        <translation>Es gibt noch keine Sicherung.

Jeden Tag wird eine angelegt, bevor etwas geändert wird.</translation>
    </message>
    <message>
        <source>This backup holds nothing.</source>
        <translation>Diese Sicherung ist leer.</translation>
    </message>
    <message>
        <source>This file cannot be read.</source>
        <translation>Diese Datei ist nicht lesbar.</translation>
    </message>
</context>
</TS>

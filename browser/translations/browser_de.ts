<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>AddBookmarkDialog</name>
    <message>
        <source>Bookmarks Bar</source>
        <translation>Lesezeichenleiste</translation>
    </message>
    <message>
        <source>Bookmarks Menu</source>
        <translation>Lesezeichenmenü</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Ohne Titel</translation>
    </message>
    <message>
        <source>Add Bookmark</source>
        <translation>Lesezeichen hinzufügen</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>What the bookmark is called</source>
        <translation>Wie das Lesezeichen heißt</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Where the bookmark is kept</source>
        <translation>Wo das Lesezeichen liegt</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>&amp;Title:</source>
        <translation>&amp;Titel:</translation>
    </message>
    <message>
        <source>&amp;Folder:</source>
        <translation>&amp;Ordner:</translation>
    </message>
</context>
<context>
    <name>AddressField</name>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>The address of this page (Ctrl+L)</source>
        <translation>Die Adresse dieser Seite (Strg+L)</translation>
    </message>
    <message>
        <source>Enter an address</source>
        <translation>Adresse eingeben</translation>
    </message>
    <message>
        <source>Drag this page to keep it somewhere</source>
        <translation>Ziehen Sie diese Seite dorthin, wo Sie sie behalten wollen</translation>
    </message>
    <message>
        <source>This page</source>
        <translation>Diese Seite</translation>
    </message>
    <message>
        <source>Loading, %1 per cent</source>
        <translation>Wird geladen, %1 Prozent</translation>
    </message>
</context>
<context>
    <name>Browser</name>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Downloads are still under way. Quit and stop them?</source>
        <translation>Es wird noch heruntergeladen. Beenden und das Herunterladen abbrechen?</translation>
    </message>
</context>
<context>
    <name>BrowserMenus</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;New Window</source>
        <translation>&amp;Neues Fenster</translation>
    </message>
    <message>
        <source>Ctrl+N</source>
        <translation>Ctrl+N</translation>
    </message>
    <message>
        <source>New &amp;Tab</source>
        <translation>Neuer &amp;Tab</translation>
    </message>
    <message>
        <source>Ctrl+T</source>
        <translation>Ctrl+T</translation>
    </message>
    <message>
        <source>Open &amp;Address…</source>
        <translation>&amp;Adresse öffnen…</translation>
    </message>
    <message>
        <source>Ctrl+L</source>
        <translation>Ctrl+L</translation>
    </message>
    <message>
        <source>&amp;Open File…</source>
        <translation>Datei ö&amp;ffnen…</translation>
    </message>
    <message>
        <source>Ctrl+O</source>
        <translation>Ctrl+O</translation>
    </message>
    <message>
        <source>&amp;Close Tab</source>
        <translation>Tab &amp;schließen</translation>
    </message>
    <message>
        <source>Ctrl+W</source>
        <translation>Ctrl+W</translation>
    </message>
    <message>
        <source>Close &amp;Window</source>
        <translation>F&amp;enster schließen</translation>
    </message>
    <message>
        <source>Ctrl+Shift+W</source>
        <translation>Ctrl+Shift+W</translation>
    </message>
    <message>
        <source>&amp;Save Page</source>
        <translation>Seite s&amp;ichern</translation>
    </message>
    <message>
        <source>Ctrl+S</source>
        <translation>Ctrl+S</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>Ctrl+Q</source>
        <translation>Ctrl+Q</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Undo	Ctrl+Z</source>
        <translation>&amp;Rückgängig	Strg+Z</translation>
    </message>
    <message>
        <source>&amp;Redo	Ctrl+Shift+Z</source>
        <translation>&amp;Wiederholen	Strg+Umschalt+Z</translation>
    </message>
    <message>
        <source>Cu&amp;t	Ctrl+X</source>
        <translation>&amp;Ausschneiden	Strg+X</translation>
    </message>
    <message>
        <source>&amp;Copy	Ctrl+C</source>
        <translation>&amp;Kopieren	Strg+C</translation>
    </message>
    <message>
        <source>&amp;Paste	Ctrl+V</source>
        <translation>&amp;Einfügen	Strg+V</translation>
    </message>
    <message>
        <source>Select &amp;All	Ctrl+A</source>
        <translation>A&amp;lles auswählen	Strg+A</translation>
    </message>
    <message>
        <source>&amp;Find…</source>
        <translation>&amp;Suchen…</translation>
    </message>
    <message>
        <source>Ctrl+F</source>
        <translation>Ctrl+F</translation>
    </message>
    <message>
        <source>Find &amp;Next</source>
        <translation>&amp;Nächste Stelle</translation>
    </message>
    <message>
        <source>Ctrl+G</source>
        <translation>Ctrl+G</translation>
    </message>
    <message>
        <source>Find Pre&amp;vious</source>
        <translation>&amp;Vorherige Stelle</translation>
    </message>
    <message>
        <source>Ctrl+Shift+G</source>
        <translation>Ctrl+Shift+G</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Reload</source>
        <translation>&amp;Neu laden</translation>
    </message>
    <message>
        <source>Ctrl+R</source>
        <translation>Ctrl+R</translation>
    </message>
    <message>
        <source>&amp;Stop	Esc</source>
        <translation>&amp;Anhalten	Esc</translation>
    </message>
    <message>
        <source>Zoom &amp;In</source>
        <translation>Ver&amp;größern</translation>
    </message>
    <message>
        <source>Ctrl+=</source>
        <translation>Ctrl+=</translation>
    </message>
    <message>
        <source>Zoom &amp;Out</source>
        <translation>Ver&amp;kleinern</translation>
    </message>
    <message>
        <source>Ctrl+-</source>
        <translation>Ctrl+-</translation>
    </message>
    <message>
        <source>&amp;Actual Size</source>
        <translation>&amp;Originalgröße</translation>
    </message>
    <message>
        <source>Ctrl+Alt+0</source>
        <translation>Ctrl+Alt+0</translation>
    </message>
    <message>
        <source>View Sour&amp;ce</source>
        <translation>&amp;Quelltext zeigen</translation>
    </message>
    <message>
        <source>Ctrl+U</source>
        <translation>Ctrl+U</translation>
    </message>
    <message>
        <source>&amp;Full Screen</source>
        <translation>&amp;Vollbild</translation>
    </message>
    <message>
        <source>Hi&amp;story</source>
        <translation>&amp;Verlauf</translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation>&amp;Zurück</translation>
    </message>
    <message>
        <source>Alt+Left</source>
        <translation>Alt+Left</translation>
    </message>
    <message>
        <source>&amp;Forward</source>
        <translation>&amp;Vor</translation>
    </message>
    <message>
        <source>Alt+Right</source>
        <translation>Alt+Right</translation>
    </message>
    <message>
        <source>&amp;Start Page</source>
        <translation>&amp;Startseite</translation>
    </message>
    <message>
        <source>Alt+Home</source>
        <translation>Alt+Home</translation>
    </message>
    <message>
        <source>&amp;Clear History…</source>
        <translation>Verlauf &amp;löschen…</translation>
    </message>
    <message>
        <source>&amp;Bookmarks</source>
        <translation>&amp;Lesezeichen</translation>
    </message>
    <message>
        <source>&amp;Add Bookmark…</source>
        <translation>&amp;Lesezeichen hinzufügen…</translation>
    </message>
    <message>
        <source>Ctrl+D</source>
        <translation>Ctrl+D</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>&amp;Minimize</source>
        <translation>&amp;Minimieren</translation>
    </message>
    <message>
        <source>Ctrl+M</source>
        <translation>Ctrl+M</translation>
    </message>
    <message>
        <source>&amp;Next Tab</source>
        <translation>&amp;Nächster Tab</translation>
    </message>
    <message>
        <source>Ctrl+Tab</source>
        <translation>Ctrl+Tab</translation>
    </message>
    <message>
        <source>Ctrl+PgDown</source>
        <translation>Ctrl+PgDown</translation>
    </message>
    <message>
        <source>&amp;Previous Tab</source>
        <translation>&amp;Vorheriger Tab</translation>
    </message>
    <message>
        <source>Ctrl+Shift+Tab</source>
        <translation>Ctrl+Shift+Tab</translation>
    </message>
    <message>
        <source>Ctrl+PgUp</source>
        <translation>Ctrl+PgUp</translation>
    </message>
    <message>
        <source>Bookmarks Bar</source>
        <translation>Lesezeichenleiste</translation>
    </message>
    <message>
        <source>Clear History</source>
        <translation>Verlauf löschen</translation>
    </message>
    <message numerus="yes">
        <source>Forget all %n visited page(s)?</source>
        <translation>
            <numerusform>%n besuchte Seite vergessen?</numerusform>
            <numerusform>Alle %n besuchten Seiten vergessen?</numerusform>
        </translation>
    </message>
    <message>
        <source>This cannot be undone.</source>
        <translation>Das lässt sich nicht rückgängig machen.</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Löschen</translation>
    </message>
</context>
<context>
    <name>BrowserWindow</name>
    <message>
        <source>Added a bookmark for this page.</source>
        <translation>Diese Seite hat jetzt ein Lesezeichen.</translation>
    </message>
    <message>
        <source>Add Bookmark</source>
        <translation>Lesezeichen hinzufügen</translation>
    </message>
    <message>
        <source>The bookmark could not be saved.</source>
        <translation>Das Lesezeichen konnte nicht gesichert werden.</translation>
    </message>
    <message>
        <source>Open File</source>
        <translation>Datei öffnen</translation>
    </message>
    <message>
        <source>Navigation</source>
        <translation>Navigation</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Go back to the previous page (Alt+Left)</source>
        <translation>Zurück zur vorherigen Seite (Alt+Links)</translation>
    </message>
    <message>
        <source>Forward</source>
        <translation>Vor</translation>
    </message>
    <message>
        <source>Go forward to the next page (Alt+Right)</source>
        <translation>Vor zur nächsten Seite (Alt+Rechts)</translation>
    </message>
    <message>
        <source>Add bookmark</source>
        <translation>Lesezeichen hinzufügen</translation>
    </message>
    <message>
        <source>Add a bookmark for this page (Ctrl+D)</source>
        <translation>Ein Lesezeichen für diese Seite hinzufügen (Strg+D)</translation>
    </message>
    <message>
        <source>“%1” is not an address.</source>
        <translation>„%1“ ist keine Adresse.</translation>
    </message>
    <message>
        <source>New tab</source>
        <translation>Neuer Tab</translation>
    </message>
    <message>
        <source>Open a new tab (Ctrl+T)</source>
        <translation>Einen neuen Tab öffnen (Strg+T)</translation>
    </message>
    <message>
        <source>Blocked a window that this page wanted to open: %1</source>
        <translation>Ein Fenster, das diese Seite öffnen wollte, wurde nicht zugelassen: %1</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Reload</source>
        <translation>Neu laden</translation>
    </message>
    <message>
        <source>Stop loading this page (Esc)</source>
        <translation>Diese Seite nicht weiter laden (Esc)</translation>
    </message>
    <message>
        <source>Load this page again (Ctrl+R)</source>
        <translation>Diese Seite neu laden (Strg+R)</translation>
    </message>
    <message>
        <source>Press Esc to leave full screen.</source>
        <translation>Mit Esc verlassen Sie das Vollbild.</translation>
    </message>
    <message>
        <source>Zoom: %1 %</source>
        <translation>Zoom: %1 %</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>A small web browser with a drawer.</source>
        <translation>Ein kleiner Browser mit einer Schublade.</translation>
    </message>
    <message>
        <source>Start without the drawer.</source>
        <translation>Ohne die Schublade starten.</translation>
    </message>
    <message>
        <source>Show the windows through this platform plug-in of Qt.</source>
        <translation>Die Fenster durch dieses Plattform-Plug-in von Qt zeigen.</translation>
    </message>
    <message>
        <source>name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Pages to open.</source>
        <translation>Zu öffnende Seiten.</translation>
    </message>
</context>
<context>
    <name>DownloadBar</name>
    <message>
        <source>Downloads</source>
        <translation>Downloads</translation>
    </message>
    <message>
        <source>Open Folder</source>
        <translation>Ordner öffnen</translation>
    </message>
    <message>
        <source>Open the folder that holds the downloads</source>
        <translation>Den Ordner mit den Downloads öffnen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Hide the downloads; those under way go on</source>
        <translation>Die Downloads ausblenden; laufende gehen weiter</translation>
    </message>
</context>
<context>
    <name>DownloadItem</name>
    <message>
        <source>Open %1</source>
        <translation>%1 öffnen</translation>
    </message>
    <message>
        <source>Progress of %1</source>
        <translation>Fortschritt von %1</translation>
    </message>
    <message>
        <source>Finished, %1</source>
        <translation>Fertig, %1</translation>
    </message>
    <message>
        <source>Cancelled</source>
        <translation>Abgebrochen</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>Fehlgeschlagen</translation>
    </message>
    <message>
        <source>Remove %1 from this list</source>
        <translation>%1 aus dieser Liste entfernen</translation>
    </message>
    <message>
        <source>Cancel %1</source>
        <translation>%1 abbrechen</translation>
    </message>
</context>
<context>
    <name>FindBar</name>
    <message>
        <source>Find in page</source>
        <translation>Auf der Seite suchen</translation>
    </message>
    <message>
        <source>Text to find in this page</source>
        <translation>Text, der auf dieser Seite gesucht wird</translation>
    </message>
    <message>
        <source>Matches</source>
        <translation>Treffer</translation>
    </message>
    <message>
        <source>Previous match</source>
        <translation>Vorheriger Treffer</translation>
    </message>
    <message>
        <source>Find the previous match (Ctrl+Shift+G)</source>
        <translation>Den vorherigen Treffer suchen (Strg+Umschalt+G)</translation>
    </message>
    <message>
        <source>Next match</source>
        <translation>Nächster Treffer</translation>
    </message>
    <message>
        <source>Find the next match (Ctrl+G)</source>
        <translation>Den nächsten Treffer suchen (Strg+G)</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Close the find bar</source>
        <translation>Die Suchleiste schließen</translation>
    </message>
    <message>
        <source>Not found</source>
        <translation>Nicht gefunden</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
</context>
<context>
    <name>NoAnswerBox</name>
    <message>
        <source>The browser is already open, but it does not answer.</source>
        <translation>Der Browser ist schon geöffnet, antwortet aber nicht.</translation>
    </message>
    <message>
        <source>Not opened yet:</source>
        <translation>Noch nicht geöffnet:</translation>
    </message>
    <message>
        <source>Try Again</source>
        <translation>Noch einmal versuchen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Perhaps it is only busy: try again in a moment. If that does not help, end it and try again. Nothing has been changed; two browsers at once would write over each other’s files.</source>
        <translation>Vielleicht ist er nur beschäftigt: Versuchen Sie es gleich noch einmal. Wenn das nicht hilft, beenden Sie ihn und versuchen Sie es erneut. Es wurde nichts verändert; zwei Browser zugleich würden sich gegenseitig die Dateien überschreiben.</translation>
    </message>
</context>
<context>
    <name>SignInDialog</name>
    <message>
        <source>%1 asks for a name and a password.</source>
        <translation>%1 verlangt einen Namen und ein Passwort.</translation>
    </message>
    <message>
        <source>%1 asks for a name and a password for “%2”.</source>
        <translation>%1 verlangt einen Namen und ein Passwort für „%2“.</translation>
    </message>
    <message>
        <source>They will travel without encryption.</source>
        <translation>Sie werden unverschlüsselt übertragen.</translation>
    </message>
    <message>
        <source>Sign In</source>
        <translation>Anmelden</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Your name at this site</source>
        <translation>Ihr Name bei dieser Website</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>Your password at this site</source>
        <translation>Ihr Passwort bei dieser Website</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>&amp;Password:</source>
        <translation>&amp;Passwort:</translation>
    </message>
</context>
<context>
    <name>StartPage</name>
    <message>
        <source>In the menu “Wayfold”</source>
        <translation>Im Menü „Wayfold“</translation>
    </message>
    <message>
        <source>en</source>
        <comment>the language of the start page</comment>
        <translation>de</translation>
    </message>
    <message>
        <source>Welcome to Wayfold</source>
        <translation>Willkommen bei Wayfold</translation>
    </message>
    <message>
        <source>Start Page</source>
        <translation>Startseite</translation>
    </message>
    <message>
        <source>Every window has a drawer on its side. It follows the site that you are on, and keeps the links and notes that belong to it.</source>
        <translation>Jedes Fenster hat an der Seite eine Schublade. Sie folgt der Website, auf der Sie sind, und bewahrt die Links und Notizen auf, die zu ihr gehören.</translation>
    </message>
    <message>
        <source>Enter an address above, or choose a bookmark.</source>
        <translation>Geben Sie oben eine Adresse ein, oder wählen Sie ein Lesezeichen.</translation>
    </message>
    <message>
        <source>Your Sites</source>
        <translation>Ihre Websites</translation>
    </message>
    <message>
        <source>Bookmarks</source>
        <translation>Lesezeichen</translation>
    </message>
    <message>
        <source>Open the drawer</source>
        <translation>Schublade öffnen</translation>
    </message>
    <message>
        <source>On any page. It slides out beside the window, and stays with it.</source>
        <translation>Auf jeder Seite. Sie gleitet neben dem Fenster heraus und bleibt bei ihm.</translation>
    </message>
    <message>
        <source>Show the site’s list</source>
        <translation>Liste zeigen</translation>
    </message>
    <message>
        <source>Each site has a list of its own. You need not make it.</source>
        <translation>Jede Website hat eine eigene Liste. Sie müssen sie nicht anlegen.</translation>
    </message>
    <message>
        <source>Keep something</source>
        <translation>Etwas behalten</translation>
    </message>
    <message>
        <source>Write a note, or drag a link from the page into the list. It is there when you come back.</source>
        <translation>Schreiben Sie eine Notiz, oder ziehen Sie einen Link aus der Seite in die Liste. Beides ist da, wenn Sie wiederkommen.</translation>
    </message>
</context>
<context>
    <name>TabBar</name>
    <message>
        <source>Tabs</source>
        <translation>Tabs</translation>
    </message>
    <message>
        <source>&amp;New Tab</source>
        <translation>&amp;Neuer Tab</translation>
    </message>
    <message>
        <source>&amp;Duplicate Tab</source>
        <translation>Tab &amp;duplizieren</translation>
    </message>
    <message>
        <source>&amp;Reload Tab</source>
        <translation>Tab neu &amp;laden</translation>
    </message>
    <message>
        <source>&amp;Close Tab</source>
        <translation>Tab &amp;schließen</translation>
    </message>
    <message>
        <source>Close &amp;Other Tabs</source>
        <translation>&amp;Andere Tabs schließen</translation>
    </message>
    <message>
        <source>Close tab</source>
        <translation>Tab schließen</translation>
    </message>
    <message>
        <source>Close this tab</source>
        <translation>Diesen Tab schließen</translation>
    </message>
</context>
<context>
    <name>WebView</name>
    <message>
        <source>New Tab</source>
        <translation>Neuer Tab</translation>
    </message>
    <message>
        <source>This page has stopped working. Reload it to go on.</source>
        <translation>Diese Seite funktioniert nicht mehr. Laden Sie sie neu, um weiterzumachen.</translation>
    </message>
</context>
</TS>

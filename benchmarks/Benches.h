#pragma once

class Figures;
class GeneratedFiles;

// Each measures one matter and adds its figures; false when it could not be measured, with the reason on stderr.
bool measurePageLoad(Figures &figures);
bool measureItemFile(Figures &figures);
bool measureItemChanges(Figures &figures);
bool measureMerge(Figures &figures);
bool measureMail(Figures &figures);
bool measureContacts(Figures &figures);
bool measureDesktopContacts(Figures &figures);

// Those of the browser's files; `peers`: also what others take for the same.
bool measureReading(Figures &figures, GeneratedFiles &files, bool peers);
bool measureGrouping(Figures &figures, GeneratedFiles &files, bool peers);
bool measureFiltering(Figures &figures, GeneratedFiles &files, bool peers);
bool measureSelection(Figures &figures, GeneratedFiles &files, bool peers);
bool measureHistoryTab(Figures &figures, GeneratedFiles &files, bool peers);
bool measureBookmarkTab(Figures &figures, GeneratedFiles &files, bool peers);
bool measureMemory(Figures &figures, GeneratedFiles &files, bool peers);
bool measureStart(Figures &figures, GeneratedFiles &files, bool peers);

#pragma once

class Figures;

// Each measures one matter and adds its figures; false when it could not be measured, with the reason on stderr.
bool measurePageLoad(Figures &figures);
bool measureItemFile(Figures &figures);

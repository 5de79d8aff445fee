#pragma once

#include <QTranslator>

// The browser's texts, and those of Qt's own, in the user's language while this lives. Texts stand in the code in
// English; a language without a catalogue has them as they are. Needs an application object.
class Language
{
public:
    Language();

private:
    QTranslator _own;
    QTranslator _toolkit;
};

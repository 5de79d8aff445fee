#pragma once

#include <QByteArray>
#include <QString>

// A text that many items are searched for, made ready once.
class TextSearch
{
public:
    explicit TextSearch(const QString &text);

    const QString &text() const { return _text; }
    bool isFoundIn(const QString &text) const;
    // For a text that is kept in the form that `StringRules::searchForm` gives.
    bool isFoundInSearchForm(QByteArrayView form) const;

private:
    QString _text;
    QByteArray _form;
};

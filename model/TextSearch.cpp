#include "model/TextSearch.h"

#include "platform/base/StringRules.h"

TextSearch::TextSearch(const QString &text) : _text(text), _form(StringRules::searchForm(text)) {}

bool TextSearch::isFoundIn(const QString &text) const
{
    return StringRules::containsIgnoringCase(text, _text);
}

bool TextSearch::isFoundInSearchForm(QByteArrayView form) const
{
    return StringRules::searchFormContains(form, _form);
}

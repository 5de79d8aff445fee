#include "platform/contacts/CardProperty.h"

#include <memory>

#undef signals
#include <libebook-contacts/libebook-contacts.h>

namespace
{
struct Unref
{
    void operator()(EVCard *card) const { g_object_unref(card); }
};

// No sign in it but those that are seen.
QString textOf(QByteArrayView bytes)
{
    QString text = CardLine::decoded(bytes).simplified();
    text.removeIf([](QChar sign) { return sign.category() == QChar::Other_Control; });
    return text.isEmpty() ? QString() : text;
}

CardProperty propertyOf(EVCardAttribute *attribute)
{
    CardProperty property;
    property.name = QByteArray(e_vcard_attribute_get_name(attribute)).toUpper();
    property.group = QByteArray(e_vcard_attribute_get_group(attribute)).toLower();
    for (GList *at = e_vcard_attribute_get_params(attribute); at; at = at->next) {
        auto *parameter = static_cast<EVCardAttributeParam *>(at->data);
        const QByteArray name = QByteArray(e_vcard_attribute_param_get_name(parameter)).toUpper();
        for (GList *value = e_vcard_attribute_param_get_values(parameter); value; value = value->next)
            property.parameters.push_back({name, textOf(static_cast<const char *>(value->data))});
    }
    for (GList *at = e_vcard_attribute_get_values_decoded(attribute); at; at = at->next) {
        const auto *value = static_cast<const GString *>(at->data);
        property.parts.append(QByteArray(value->str, qsizetype(value->len)));
    }
    return property;
}
} // namespace

std::vector<CardProperty> CardProperty::fromLines(const std::vector<const CardLine *> &lines)
{
    QByteArray text = "BEGIN:VCARD\r\n";
    for (const CardLine *line : lines)
        text += line->strictText() + "\r\n";
    text += "END:VCARD\r\n";
    const std::unique_ptr<EVCard, Unref> card(e_vcard_new_from_string(text.constData()));
    std::vector<CardProperty> properties;
    for (GList *at = e_vcard_get_attributes(card.get()); at; at = at->next)
        properties.push_back(propertyOf(static_cast<EVCardAttribute *>(at->data)));
    return properties;
}

QString CardProperty::text() const
{
    return textOf(value());
}

QString CardProperty::part(qsizetype index) const
{
    return textOf(parts.value(index));
}

QString CardProperty::parameter(QByteArrayView parameterName) const
{
    for (const Parameter &one : parameters) {
        if (one.name == parameterName)
            return one.value;
    }
    return {};
}

QStringList CardProperty::types() const
{
    QStringList types;
    for (const Parameter &one : parameters) {
        if (one.name != "TYPE")
            continue;
        // Some programs put several between quotes, or escape the comma.
        for (QString type : one.value.split(u','))
            types.append(type.remove(u'\\').trimmed());
    }
    return types;
}

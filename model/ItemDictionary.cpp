#include "model/ItemDictionary.h"

QString ItemDictionary::string(const QVariantMap &dictionary, const QString &key)
{
    const QVariant value = dictionary.value(key);
    return value.typeId() == QMetaType::QString ? textOrEmpty(value.toString()) : QString();
}

QVariantMap ItemDictionary::dictionary(const QVariantMap &dictionary, const QString &key)
{
    const QVariant value = dictionary.value(key);
    return value.typeId() == QMetaType::QVariantMap ? value.toMap() : QVariantMap();
}

QVariantList ItemDictionary::list(const QVariantMap &dictionary, const QString &key)
{
    const QVariant value = dictionary.value(key);
    return value.typeId() == QMetaType::QVariantList ? value.toList() : QVariantList();
}

QString ItemDictionary::textOrEmpty(const QString &text)
{
    return text.isNull() ? QStringLiteral("") : text;
}

QString ItemDictionary::nonEmpty(const QString &text)
{
    return text.isEmpty() ? QString() : text;
}

bool ItemDictionary::isSameText(const QString &a, const QString &b)
{
    return a.isNull() == b.isNull() && a == b;
}

#pragma once

#include <QVariant>
#include <QVariantList>
#include <QVariantMap>
#include <QXmlStreamReader>
#include <vector>

class QIODevice;

// Reads the XML form of a property list. It works without recursion, so that no nesting can exhaust the stack, and
// refuses whatever is not exactly a property list rather than guess; only values of unknown kinds are left out.
class XmlPropertyListReader
{
public:
    // `device` is open, stays the caller's and is read piece by piece.
    explicit XmlPropertyListReader(QIODevice *device);

    // An invalid variant when it is refused; the reason is in `errorString` then.
    QVariant read();
    QString errorString() const;
    // False when a value was left out, for another one that stands under the same key or because it is none of ours, or
    // when bytes that are not UTF-8, or characters that XML cannot hold, were read as U+FFFD.
    bool isWhole() const { return _isWhole; }

private:
    explicit XmlPropertyListReader(const QString &text);

    struct Container
    {
        bool isDictionary = false;
        bool hasKey = false; // whether a value has to follow `key`
        QString key;
        QVariantMap dictionary;
        QVariantList array;
    };

    QVariant readDocument();
    bool isInUtf8() const;
    void startElement();
    void endElement();
    void openContainer(bool isDictionary);
    void readKey();
    void addValue(const QVariant &value);
    QString readText();
    void addOrLeaveOut(const QVariant &value, const QString &reason);
    void refused(const QString &reason);

    QXmlStreamReader _xml;
    QIODevice *_device = nullptr;
    qint64 _beginning = 0;
    std::vector<Container> _open;
    bool _isInside = false; // between <plist> and </plist>
    bool _isWhole = true;
    QVariant _root;
};

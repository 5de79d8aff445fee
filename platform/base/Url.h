#pragma once

#include <QByteArrayView>
#include <QDebug>
#include <QSharedDataPointer>
#include <QString>
#include <QStringView>

// An address that keeps its text exactly as it was given: no case folding, no repair. Text that is not an address
// by RFC 3986 gives none (`isNull()`); see `URLWithString`. A value class, shared on copy: copying allocates nothing.
class Url
{
public:
    Url(); // none
    Url(const Url &other);
    Url(Url &&other) noexcept;
    Url &operator=(const Url &other);
    Url &operator=(Url &&other) noexcept;
    ~Url();

    // None when the text is empty or holds a character that may not stand in an address (blanks, control
    // characters, anything beyond ASCII, `<>"{}|\^` and the backquote, a "%" without two hexadecimal digits).
    // Square brackets are let through everywhere, since pages use them in queries. Relative references are
    // addresses without a scheme.
    static Url URLWithString(const QString &text);
    // A "file:///..." address for an absolute or relative path; what may not stand in an address is percent-escaped
    // as UTF-8. None for a null or empty path.
    static Url fileURLWithPath(const QString &path);

    // Whether the text is an address of the plainest form, as most web pages have: a scheme, "//", a host of letters,
    // digits, dots and hyphens, perhaps a port, and behind that nothing unusual. Answers where the host stands. A false
    // answer says nothing. It costs a fraction of what `URLWithString` does, which accepts all such texts.
    struct Host
    {
        qsizetype start = 0;
        qsizetype length = 0;
    };
    static bool isPlainAddress(QByteArrayView text, Host *host);

    bool isNull() const; // none

    // The text as given; null for none.
    QString absoluteString() const;
    // The part before the first ":", letter case kept; null when there is none.
    QString scheme() const;
    // Host without user, port and brackets, letter case kept; null when there is none or it is empty.
    QString host() const;
    // The same without making a string; points into this address and lives as long as it or any copy of it does.
    QStringView hostView() const;
    // The path with percent escapes decoded as UTF-8; null when there is none (as in "mailto:ann").
    QString path() const;
    // Whether the scheme is "file", in lower case exactly.
    bool isFileURL() const;

    // Two addresses are equal when their texts are; two nones are equal.
    friend bool operator==(const Url &a, const Url &b) { return a.isEqualTo(b); }

private:
    bool isEqualTo(const Url &other) const;

    class Data;
    QSharedDataPointer<Data> _data;
};

QDebug operator<<(QDebug debug, const Url &url);

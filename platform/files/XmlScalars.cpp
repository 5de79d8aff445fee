#include "platform/files/XmlScalars.h"

#include <QByteArray>
#include <QDateTime>
#include <limits>

namespace
{
constexpr char datePattern[] = "0000-00-00T00:00:00Z"; // digits, and what stands between them

bool isDatePattern(QStringView text)
{
    if (text.size() != qsizetype(sizeof(datePattern)) - 1)
        return false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isDigit = text[i] >= u'0' && text[i] <= u'9';
        if (datePattern[i] == '0' ? !isDigit : text[i] != QLatin1Char(datePattern[i]))
            return false;
    }
    return true;
}
} // namespace

QVariant XmlScalars::integer(QString text)
{
    text = text.trimmed();
    const bool isNegative = text.startsWith(u'-');
    if (isNegative || text.startsWith(u'+'))
        text.remove(0, 1);
    const bool isHexadecimal = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    bool isNumber = false;
    const quint64 magnitude = text.toULongLong(&isNumber, isHexadecimal ? 16 : 10);
    constexpr quint64 most = std::numeric_limits<qlonglong>::max();
    if (!isNumber || text.startsWith(u'-') || text.startsWith(u'+') || (isNegative && magnitude > most + 1))
        return {};
    if (isNegative)
        return static_cast<qlonglong>(0 - magnitude);
    return magnitude > most ? QVariant(magnitude) : QVariant(static_cast<qlonglong>(magnitude));
}

QVariant XmlScalars::real(QString text)
{
    text = text.trimmed();
    text.replace(QLatin1String("infinity"), QLatin1String("inf"), Qt::CaseInsensitive);
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    return isNumber ? QVariant(value) : QVariant();
}

// By hand: the general parser takes many times as long, and takes the date for one in the user's own time zone.
QVariant XmlScalars::date(const QString &text)
{
    QString digits = text.trimmed();
    const bool isBeforeChrist = digits.startsWith(u'-');
    if (isBeforeChrist)
        digits.remove(0, 1);
    if (!isDatePattern(digits))
        return {};
    const auto number = [&](int start, int length) { return QStringView(digits).mid(start, length).toInt(); };
    const QDate day(isBeforeChrist ? -number(0, 4) : number(0, 4), number(5, 2), number(8, 2));
    const QTime time(number(11, 2), number(14, 2), number(17, 2));
    return day.isValid() && time.isValid() ? QVariant(QDateTime(day, time, Qt::UTC)) : QVariant();
}

QVariant XmlScalars::data(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    bytes.removeIf([](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
    auto decoded = QByteArray::fromBase64Encoding(std::move(bytes), QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? QVariant(decoded.decoded) : QVariant();
}

#pragma once

#include "platform/files/PropertyList.h"
#include "tests/support/TemporaryHome.h"

#include <QDir>
#include <QFileInfo>
#include <QVariantMap>

// The browser's own two files, as a browser writes them into a user's home.
//
//     BrowserFiles files(home);
//     files.writeBookmarks({BrowserFiles::folder("News", "N", {BrowserFiles::link("A", "http://a.org/", "L")})});
//     files.writeHistory({BrowserFiles::visit("A", "http://www.a.org/", BrowserFiles::noonOf(3))});
class BrowserFiles
{
public:
    explicit BrowserFiles(const TemporaryHome &home) : _home(home) {}

    static QVariant folder(const QString &title, const QString &uuid, const QVariantList &children)
    {
        return QVariantMap{{QStringLiteral("WebBookmarkType"), QStringLiteral("WebBookmarkTypeList")},
                           {QStringLiteral("WebBookmarkUUID"), uuid},
                           {QStringLiteral("Title"), title},
                           {QStringLiteral("Children"), children}};
    }
    static QVariant link(const QString &title, const QString &address, const QString &uuid)
    {
        return QVariantMap{
            {QStringLiteral("WebBookmarkType"), QStringLiteral("WebBookmarkTypeLeaf")},
            {QStringLiteral("WebBookmarkUUID"), uuid},
            {QStringLiteral("URLString"), address},
            {QStringLiteral("URIDictionary"),
             QVariantMap{{QString::fromLatin1(""), address}, {QStringLiteral("title"), title}}},
        };
    }
    // Null `when`: without a date.
    static QVariant visit(const QString &title, const QString &address, const QString &when)
    {
        QVariantMap entry{{QString::fromLatin1(""), address}, {QStringLiteral("title"), title}};
        if (!when.isNull())
            entry.insert(QStringLiteral("lastVisitedDate"), when);
        return entry;
    }
    // Of a day in January 2001, in seconds since its beginning.
    static QString noonOf(int day) { return QString::number((day - 1) * 86400 + 43200); }

    void writeBookmarks(const QVariantList &children) const
    {
        QVariantMap root = folder(QString::fromLatin1(""), QStringLiteral("ROOT"), children).toMap();
        root.insert(QStringLiteral("WebBookmarkFileVersion"), 1);
        write(root, QStringLiteral("Library/Safari/Bookmarks.plist"));
    }
    void writeHistory(const QVariantList &visits) const
    {
        write({{QStringLiteral("WebHistoryFileVersion"), 1}, {QStringLiteral("WebHistoryDates"), visits}},
              QStringLiteral("Library/Safari/History.plist"));
    }

private:
    void write(const QVariantMap &contents, const QString &file) const
    {
        const QString path = _home.path(file);
        QDir().mkpath(QFileInfo(path).path());
        if (!PropertyList::writeFile(contents, path))
            qFatal("The browser's file cannot be written.");
    }

    const TemporaryHome &_home;
};

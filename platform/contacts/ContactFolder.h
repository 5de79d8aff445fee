#pragma once

#include "platform/contacts/CardFolderWalk.h"
#include "platform/contacts/CardText.h"
#include "platform/contacts/ContactStore.h"

#include <QFileSystemWatcher>
#include <QTimer>
#include <set>

// Contacts that lie in a folder of vCards, one card a file (`*.vcf`), as khard and vdirsyncer keep them; files with
// several cards are read too, and two levels of folders in the folder.
//
// The folder is read in slices while the event loop runs. What changes in it is seen at once where the system tells it,
// and otherwise within some seconds, by the files' stamps. A file that is there but cannot be read, or that holds no
// card at the moment, keeps the cards that it had; so does a folder that has vanished, until it is there again. Of one
// that has not been there yet the cards are answered as they were last known.
//
// A card without identifier gets one from its file: "friends/ada.vcf", and "friends/ada.vcf#2" for the second one. Of
// cards that have the same identifier, one is shown. The user's own card is the one in the file `me.vcf` of the folder.
class ContactFolder : public ContactStore
{
public:
    // A tilde is expanded.
    explicit ContactFolder(const QString &folder);

    // The first of `~/.contacts` and `$XDG_DATA_HOME/contacts` that holds a card; null when none does. In a folder of
    // very many other files a card may be overlooked.
    static QString defaultFolder();

    QString folder() const { return _folder; }

    // Absent: the folder is not there, and was not before.
    State state() const override;
    ContactRecordPtr me() const override;
    QByteArray imageData(const ContactRecord &record) const override;
    QByteArray vCardRepresentation(const ContactRecord &record) const override;
    // The card's file, for whatever purpose.
    Opening opening(const ContactRecord &record, Purpose purpose) const override;
    // Not before it is known which cards there are.
    bool canAdd() const override;
    // Writes a file of its own for the first card in the text: into the folder, or, when that holds cards in folders of
    // their own alone, into the first of these. A card whose identifier is there already is left as it is.
    void add(const QByteArray &vCard, const std::function<void(const QString &uniqueId)> &done) override;

    static constexpr qint64 largestFile = qint64(16) * 1024 * 1024; // bytes; a larger one is not read

protected:
    bool isReading() const override { return _walk != nullptr; }
    bool mayLackCards() const override { return !_isRead; }

private:
    struct Card
    {
        QString uniqueId;
        qsizetype start = 0; // of its text in the file's
    };
    struct File
    {
        FileStamp stamp;
        std::vector<Card> cards;
        quint64 walk = 0; // the last one that came upon it
    };
    struct Reading
    {
        CardFolderWalk::File file;
        CardText text;
        std::vector<Card> cards;
        QSet<QString> identifiers; // of these
        int unnamed = 0;
    };
    // One that cards are being handed out from.
    struct OpenFile
    {
        QString path;
        FileStamp stamp;
        CardText text;
        QHash<QString, qsizetype> starts; // by identifier
    };

    void check();
    void checkSoon() const;
    void work();
    bool workABit();
    void foundFile(const CardFolderWalk::File &file);
    void startReading(const CardFolderWalk::File &file);
    void readNextCard();
    void finishReading();
    void finishWalk();
    void finishCheck();
    void enter(const QString &path, const ContactRecordPtr &record);
    void leave(const QString &path, const QString &uniqueId);
    bool isGone(const QString &path) const;
    void leaveFile(const QString &path);
    void tellWhatWasRead();
    void chooseFolderForNewCards();
    void watchFolders();

    QString absolute(const QString &path) const { return _folder + QLatin1Char('/') + path; }
    bool hasFolder() const;
    QString pathForNewCard(const QString &uniqueId) const;
    OpenFile &opened(const QString &path) const;
    QByteArray textOf(const ContactRecord &record) const;

    const QString _folder;
    bool _wasThere = false;
    bool _isRead = false;                           // the first walk is over
    QHash<QString, File> _files;                    // by path in the folder
    QHash<QString, QString> _paths;                 // of the file whose card is shown, by identifier
    std::set<std::pair<QString, QString>> _doubles; // identifiers and paths of files whose cards are not

    std::unique_ptr<CardFolderWalk> _walk;           // none: nothing is being read
    CardFolderWalk::Folders _folders;                // as the last walk found them
    std::vector<CardFolderWalk::File> _changedFiles; // still to be read, the next one last
    std::unique_ptr<Reading> _reading;
    mutable std::unique_ptr<OpenFile> _opened; // the last one, until the event loop runs
    std::vector<ContactRecordPtr> _entered;    // still to be put
    QStringList _left;                         // identifiers, still to be removed
    QStringList _goneFiles;                    // whose cards are still to be left
    quint64 _walks = 0;
    qint64 _walkingTime = 0;  // milliseconds, of the last walk
    bool _hasChanged = false; // since the walk began
    bool _mustCheckAgain = false;
    QString _folderForNewCards; // in the folder: empty, or with a slash at its end

    std::unique_ptr<QFileSystemWatcher> _watcher; // none: the system tells nothing
    QHash<QString, quint64> _watched;             // inodes by paths
    QTimer _slice;
    mutable QTimer _soon;
    mutable QTimer _closing;
    QTimer _later;
};

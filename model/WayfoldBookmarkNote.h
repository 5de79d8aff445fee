#pragma once

#include "model/KDRBookmark.h"

class WayfoldBookmarkNote;
using WayfoldBookmarkNotePtr = std::shared_ptr<WayfoldBookmarkNote>;

// A piece of text. Its value is the text, a QString of at most 32768 characters; what is longer is cut, whichever way
// it comes in.
class WayfoldBookmarkNote : public KDRBookmark
{
public:
    using KDRBookmark::KDRBookmark;

    static WayfoldBookmarkNotePtr bookmarkWithTitle(const QString &title);
    static WayfoldBookmarkNotePtr bookmarkWithTitleAndNote(const QString &title, const QString &note);
    static WayfoldBookmarkNotePtr bookmarkFromDictionary(const QVariantMap &dictionary);
    // Asks the user for a new note; none when that was cancelled.
    static WayfoldBookmarkNotePtr newViaDialog();

    void init() override;
    void initWithTitleAndNote(const QString &title, const QString &note);
    void initFromDictionary(const QVariantMap &dictionary);

    Type type() const override { return NoteType; }
    QString typeDescription() const override { return QStringLiteral("Note"); }
    QVariant value() const override { return _noteText; }
    QString valueAsString() const override { return _noteText; }
    void setValue(const QVariant &value) override;
    // The beginning of the text.
    QString tooltipText() const override;
    void loadFromDictionary(const QVariantMap &dictionary) override;
    void writeToDictionaryForSaving(QVariantMap &dictionary, bool forSaving) const override;
    bool isEqual(const KDRBookmark &other) const override;
    using KDRBookmark::isEqual;
    std::shared_ptr<Image> imageForCellSize(const QSizeF &size) override;
    bool editViaDialog() override;

    QString classNameForCoder() const override { return QStringLiteral("WayfoldBookmarkNote"); }
    void encodeWithCoder(KeyedArchiver &coder) const override;
    void initWithCoder(const KeyedUnarchiver &coder) override;

protected:
    KDRBookmarkPtr makeNew() const override;
    bool isSameKindAs(const KDRBookmark &other) const override;
    void copyTo(KDRBookmark &copy) const override;

private:
    void setNoteText(const QString &text);

    QString _noteText;
};

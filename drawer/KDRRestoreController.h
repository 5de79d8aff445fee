#pragma once

#include "core/ItemCount.h"
#include "core/RestorableFiles.h"
#include "drawer/BackupPreview.h"
#include "platform/widgets/InterfaceFile.h"

#include <QAbstractButton>
#include <QDialog>
#include <QLabel>
#include <QPointer>
#include <QStackedWidget>
#include <QTimer>
#include <QTreeWidget>
#include <memory>
#include <optional>
#include <vector>

class OutlineView;

// The panel in which an earlier state of the item file is looked at and brought back. Only the file that is selected is
// read, in a pass of the event loop of its own; what the others hold is counted in slices.
class KDRRestoreController : public QObject
{
    Q_OBJECT

public:
    KDRRestoreController();
    ~KDRRestoreController() override;

    // Runs the panel, if its interface file is there, and restores what the user chose. There is one at a time.
    static void displayPanel();
    void run();

    // Null when the interface file is missing.
    QDialog *restoreWindow() const { return _restoreWindow; }

private:
    enum Choice { None = QDialog::Rejected, Add, Replace };

    bool loadInterface();
    void connectPanel();
    void listFiles();
    void layOutColumns();
    QTreeWidgetItem *makeRow(const RestorableFiles::File &file) const;
    void readNext();
    void readSelected();
    void countNext();
    void selectFile();
    void showState();
    QString textWhenEmpty() const;
    int selectedRow() const;

    std::unique_ptr<InterfaceFile> _interface;
    BackupPreview _preview;
    std::vector<RestorableFiles::File> _files;
    int _counted = 0;                // that many of them are
    std::optional<ItemCount> _count; // of the next
    QPointer<QDialog> _restoreWindow;
    QPointer<QTreeWidget> _filesView;
    QPointer<QStackedWidget> _pages;
    QPointer<OutlineView> _previewView;
    QPointer<QLabel> _emptyField;
    QPointer<QAbstractButton> _showFileButton;
    QPointer<QAbstractButton> _replaceButton;
    QPointer<QAbstractButton> _addButton;
    QTimer _readTimer;
    int _shownRow = -1; // whose tree is in the preview, or could not be read
};

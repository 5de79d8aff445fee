#include "browser/DownloadBar.h"

#include "browser/DownloadItem.h"
#include "browser/Downloads.h"
#include "browser/SymbolIcon.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScrollArea>
#include <QToolButton>
#include <QUrl>

DownloadBar::DownloadBar(QWidget *parent) : QWidget(parent), _items(new QHBoxLayout)
{
    setObjectName(QStringLiteral("downloadBar"));
    setAccessibleName(tr("Downloads"));
    auto *folder = new QPushButton(tr("Open Folder"));
    folder->setObjectName(QStringLiteral("openDownloadFolderButton"));
    folder->setToolTip(tr("Open the folder that holds the downloads"));
    connect(folder, &QPushButton::clicked, this, &DownloadBar::openFolder);
    auto *dismiss = new QToolButton;
    dismiss->setObjectName(QStringLiteral("closeDownloadsButton"));
    dismiss->setIcon(SymbolIcon::named(QStringLiteral("close")));
    dismiss->setAccessibleName(tr("Close"));
    dismiss->setToolTip(tr("Hide the downloads; those under way go on"));
    dismiss->setAutoRaise(true);
    dismiss->setFocusPolicy(Qt::TabFocus);
    connect(dismiss, &QToolButton::clicked, this, &QWidget::hide);

    auto *row = new QWidget;
    _items->setContentsMargins(0, 0, 0, 0);
    _items->addStretch(1);
    row->setLayout(_items);
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidget(row);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 3, 6, 3);
    layout->addWidget(area, 1);
    layout->addWidget(folder);
    layout->addWidget(dismiss);
    setFixedHeight(folder->sizeHint().height() + 14);
    hide();
}

void DownloadBar::add(QWebEngineDownloadRequest *download)
{
    auto *item = new DownloadItem(download);
    connect(item, &DownloadItem::dismissed, this, [this, item] {
        _items->removeWidget(item);
        item->deleteLater();
        hideWhenEmpty();
    });
    _items->insertWidget(0, item);
    show();
}

void DownloadBar::openFolder()
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(Downloads::folder()));
}

void DownloadBar::hideWhenEmpty()
{
    const bool isEmpty = _items->count() <= 1; // the stretch
    if (isEmpty)
        hide();
}

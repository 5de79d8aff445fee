#pragma once

#include "lists/Stranger.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <utility>

class WayfoldOutlineView;

// Asks the user whether people whose cards were dropped are to be added to the contacts: once for all, and not before
// the drop is over. What is added takes the place of what stands for it in the list. Until then, and when it is not
// added, that stays; so nothing is lost, whatever happens meanwhile.
class StrangersQuestion : public QObject
{
    Q_OBJECT

public:
    StrangersQuestion();
    ~StrangersQuestion() override;

    // `view` is the list that they were dropped on.
    void askAbout(const std::vector<Stranger> &strangers, WayfoldOutlineView *view);

private:
    using Replacements = std::vector<std::pair<KDRBookmarkPtr, KDRBookmarkPtr>>; // old, new
    struct Adding;

    void later();
    void proceed();
    void ask(const std::vector<Stranger> &strangers);
    void putBack(const std::vector<Stranger> &strangers);
    void add(const std::vector<Stranger> &strangers);
    void refuse(const QStringList &names);
    static void replace(const Replacements &replacements, WayfoldOutlineView *view);
    void tellRefused();

    QPointer<WayfoldOutlineView> _view;
    std::vector<Stranger> _strangers; // still to be asked about
    QStringList _refused;             // names, still to be told of
};

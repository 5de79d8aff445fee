#include "model/TreeTelling.h"

#include <algorithm>
#include <deque>
#include <utility>

struct TreeTelling::Turn
{
    struct Later
    {
        std::shared_ptr<Listener> listener;
        std::shared_ptr<const Change> change;
        Half half;
    };

    TreeObserver *observer;
    std::deque<Later> later;
};

namespace
{
bool isAnnounced(const TreeTelling::Change &change)
{
    using Kind = TreeTelling::Kind;
    return change.kind == Kind::Add || change.kind == Kind::Remove ||
           (change.kind == Kind::Field && change.field != TreeObserver::Field::Appearance);
}
} // namespace

void TreeTelling::settle()
{
    if (_current)
        finish(*_current);
}

void TreeTelling::make(Change change, std::function<void()> apply)
{
    settle();
    Progress progress = {std::make_shared<const Change>(std::move(change)), std::move(apply)};
    if (!isAnnounced(*progress.change))
        progress.announced = progress.change->listeners.size();
    Progress *const outer = std::exchange(_current, &progress);
    finish(progress);
    _current = outer;
}

// Goes on where it is, when somebody changes something while he is told.
void TreeTelling::finish(Progress &progress)
{
    const std::shared_ptr<const Change> change = progress.change;
    while (progress.announced < change->listeners.size())
        tell(change->listeners[progress.announced++], change, Half::Announcement);
    if (const std::function<void()> apply = std::exchange(progress.apply, nullptr))
        apply();
    while (progress.reported < change->listeners.size())
        tell(change->listeners[progress.reported++], change, Half::Report);
}

void TreeTelling::tell(const std::shared_ptr<Listener> &listener, const std::shared_ptr<const Change> &change,
                       Half half)
{
    TreeObserver *const observer = listener->observer;
    if (!observer)
        return;
    const auto isTheirs = [observer](const Turn *turn) { return turn->observer == observer; };
    const auto busy = std::find_if(_turns.begin(), _turns.end(), isTheirs);
    if (busy != _turns.end()) {
        (*busy)->later.push_back({listener, change, half});
        return;
    }
    Turn turn = {observer, {{listener, change, half}}};
    _turns.push_back(&turn);
    while (!turn.later.empty()) {
        const Turn::Later next = std::move(turn.later.front());
        turn.later.pop_front();
        if (next.listener->observer)
            call(*next.listener->observer, *next.change, next.half);
    }
    _turns.pop_back();
}

void TreeTelling::call(TreeObserver &observer, const Change &change, Half half)
{
    const bool isBefore = half == Half::Announcement;
    switch (change.kind) {
    case Kind::Add:
    case Kind::Remove: {
        const TreeObserver::Children children = {*change.folder, change.first, change.items};
        if (change.kind == Kind::Add)
            isBefore ? observer.willAdd(children) : observer.added(children);
        else
            isBefore ? observer.willRemove(children) : observer.removed(children);
        break;
    }
    case Kind::Move:
        observer.moved(*change.folder, change.from);
        break;
    case Kind::Replace:
        observer.replaced(*change.folder);
        break;
    case Kind::Field:
        isBefore ? observer.willChange(*change.items.front(), change.field)
                 : observer.changed(*change.items.front(), change.field);
        break;
    }
}

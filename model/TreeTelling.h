#pragma once

#include "model/TreeObserver.h"

#include <functional>
#include <memory>
#include <vector>

// Who is told of a change, and in which order. Folders and items call it; observers know WayfoldBookmarkFolder alone.
//
// One change is told and made after the other. When an observer changes something while it is being told, the others
// first hear to the end what that one has heard, and what was only announced is done. So whoever changes nothing finds
// the tree at any time as he was told. Who does is told of it when he has returned.
class TreeTelling
{
public:
    // An observer, and the folder that holds this. Null: it has ceased to observe.
    struct Listener
    {
        TreeObserver *observer;
    };
    using Listeners = std::vector<std::shared_ptr<Listener>>;

    enum class Kind { Add, Remove, Move, Replace, Field };
    // It holds whatever it speaks of until everybody was told.
    struct Change
    {
        Kind kind = Kind::Replace;
        std::shared_ptr<WayfoldBookmarkFolder> folder;   // whose children change; none for a field
        int first = 0;                                   // of the children that are added or removed
        std::vector<std::shared_ptr<KDRBookmark>> items; // these, or the one whose field changes
        std::vector<int> from;
        TreeObserver::Field field = TreeObserver::Field::Title;
        Listeners listeners;
    };

    static bool isAnybodyListening() { return _listenerCount > 0; }
    static void countListeners(int difference) { _listenerCount += difference; }

    // To be called before a folder looks where it is going to change: ends the change that is being told.
    static void settle();
    // Makes the change, and tells of it: before and after, where there are two halves.
    static void make(Change change, std::function<void()> apply);

private:
    enum class Half { Announcement, Report };
    struct Progress
    {
        std::shared_ptr<const Change> change;
        std::function<void()> apply; // none: it was made
        std::size_t announced = 0;   // to how many of the listeners
        std::size_t reported = 0;
    };
    // An observer that is being told, and what it is to be told when it has returned.
    struct Turn;

    static void finish(Progress &progress);
    static void tell(const std::shared_ptr<Listener> &listener, const std::shared_ptr<const Change> &change, Half half);
    static void call(TreeObserver &observer, const Change &change, Half half);

    static inline int _listenerCount = 0;
    static inline Progress *_current = nullptr;
    static inline std::vector<Turn *> _turns;
};

#include "platform/base/NotificationCenter.h"

#include <algorithm>

struct NotificationCenter::Registration
{
    const void *observer = nullptr;
    Handler handler;
    QString name;
    const void *object = nullptr;
    bool isRemoved = false;

    bool takes(const Notification &notification) const
    {
        return !isRemoved && name == notification.name && (!object || object == notification.object);
    }
};

NotificationCenter &NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

void NotificationCenter::addObserver(const void *observer, Handler handler, const QString &name, const void *object)
{
    auto registration = std::make_shared<Registration>();
    registration->observer = observer;
    registration->handler = std::move(handler);
    registration->name = name;
    registration->object = object;
    _registrations.push_back(std::move(registration));
}

void NotificationCenter::removeObserver(const void *observer)
{
    // A post that is under way holds registrations of its own, so they are marked as well as forgotten.
    const auto isObservers = [observer](const std::shared_ptr<Registration> &registration) {
        if (registration->observer != observer)
            return false;
        registration->isRemoved = true;
        return true;
    };
    _registrations.erase(std::remove_if(_registrations.begin(), _registrations.end(), isObservers),
                         _registrations.end());
}

void NotificationCenter::postNotification(const Notification &notification)
{
    // Copied, since the notification and the registrations may go while observers are told.
    const Notification posted = notification; // NOLINT(performance-unnecessary-copy-initialization)
    std::vector<std::shared_ptr<Registration>> takers;
    for (const auto &registration : _registrations) {
        if (registration->takes(posted))
            takers.push_back(registration);
    }
    for (const auto &taker : takers) {
        if (!taker->isRemoved)
            taker->handler(posted);
    }
}

void NotificationCenter::postNotificationName(const QString &name, const void *object)
{
    postNotification({name, object});
}

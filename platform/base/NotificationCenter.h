#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <vector>

// A message that something has happened: a name, and the object that it is about (compared by identity, may be none).
struct Notification
{
    QString name;
    const void *object = nullptr;
};

// Hands notifications to whoever observes them, at once and in the order of registration:
//
//     center.addObserver(this, [this](const Notification &n) { safariFileUpdated(n); }, "SomeNotification", nullptr);
//     center.removeObserver(this);    // before `this` goes
//
// An observer may add and remove observers, itself included, while it is being told: whoever was removed is not told
// any more, whoever was added is told from the next post on.
class NotificationCenter
{
public:
    using Handler = std::function<void(const Notification &)>;

    static NotificationCenter &defaultCenter();

    // `observer` names the registration for removal and is never looked into. `object` limits it to posts about that
    // object; null takes posts about anything.
    void addObserver(const void *observer, Handler handler, const QString &name, const void *object = nullptr);
    // Takes back everything that `observer` registered.
    void removeObserver(const void *observer);
    void postNotification(const Notification &notification);
    void postNotificationName(const QString &name, const void *object);

private:
    struct Registration;
    std::vector<std::shared_ptr<Registration>> _registrations;
};

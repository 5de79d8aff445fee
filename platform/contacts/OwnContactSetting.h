#pragma once

#include <QString>
#include <functional>
#include <memory>

// Which card the user has named as his own, in the settings of the desktop.
class OwnContactSetting
{
public:
    // `changed` is called when it is another one.
    explicit OwnContactSetting(std::function<void()> changed);
    ~OwnContactSetting();
    OwnContactSetting(const OwnContactSetting &) = delete;
    OwnContactSetting &operator=(const OwnContactSetting &) = delete;

    // Null: none.
    QString uniqueId() const;

private:
    struct Settings;
    std::unique_ptr<Settings> _settings; // none: the desktop has no such settings
};

#pragma once

#include <functional>

// Has everything follow what other processes change in the settings, as it does when the user changes them in the
// preferences here. What is asked for when it is needed follows by itself.
class SettingsFollower
{
public:
    struct Reactions
    {
        std::function<void()> reloadLists;
        std::function<void()> regroupHistory;
        std::function<void()> addSmartFolders;
        std::function<void()> removeSmartFolders;
        std::function<void()> showShortcuts; // those of the menu
    };

    explicit SettingsFollower(Reactions reactions);
    ~SettingsFollower();
    SettingsFollower(const SettingsFollower &) = delete;
    SettingsFollower &operator=(const SettingsFollower &) = delete;

private:
    void follow() const;

    Reactions _reactions;
};

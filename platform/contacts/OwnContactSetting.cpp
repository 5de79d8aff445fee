#include "platform/contacts/OwnContactSetting.h"

#include "platform/contacts/GObjectOwner.h"

namespace
{
constexpr auto schemaName = "org.gnome.evolution-data-server.addressbook";
constexpr auto key = "self-contact-uid";

// GLib ends a program that asks for a schema that is not installed.
bool isInstalled()
{
    GSettingsSchemaSource *source = g_settings_schema_source_get_default();
    GSettingsSchema *schema = source ? g_settings_schema_source_lookup(source, schemaName, TRUE) : nullptr;
    const bool hasKey = schema && g_settings_schema_has_key(schema, key);
    g_clear_pointer(&schema, g_settings_schema_unref);
    return hasKey;
}
} // namespace

struct OwnContactSetting::Settings
{
    explicit Settings(std::function<void()> told) : changed(std::move(told))
    {
        g_signal_connect_swapped(settings.get(), (std::string("changed::") + key).c_str(), G_CALLBACK(tell), this);
    }
    Settings(const Settings &) = delete;
    Settings &operator=(const Settings &) = delete;
    ~Settings() { g_signal_handlers_disconnect_by_data(settings.get(), this); }

    static void tell(Settings *self) { self->changed(); }

    std::function<void()> changed;
    GObjectOwner<GSettings> settings{g_settings_new(schemaName)};
};

OwnContactSetting::OwnContactSetting(std::function<void()> changed)
    : _settings(isInstalled() ? std::make_unique<Settings>(std::move(changed)) : nullptr)
{}

OwnContactSetting::~OwnContactSetting() = default;

QString OwnContactSetting::uniqueId() const
{
    if (!_settings)
        return {};
    const GTextOwner value(g_settings_get_string(_settings->settings.get(), key));
    const QString id = QString::fromUtf8(value.get());
    return id.isEmpty() ? QString() : id;
}

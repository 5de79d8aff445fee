#pragma once

#include <functional>
#include <gio/gio.h>
#include <glib-object.h>
#include <memory>

// What GLib's objects need here. For the sources of this room alone: no header that others include knows GLib.
struct GObjectRelease
{
    void operator()(void *object) const { g_object_unref(object); }
};
// One reference, given back when this goes.
template <class Type>
using GObjectOwner = std::unique_ptr<Type, GObjectRelease>;

struct GMemoryRelease
{
    void operator()(void *memory) const { g_free(memory); }
};
using GTextOwner = std::unique_ptr<gchar, GMemoryRelease>;

// A call of GIO's that ends later, as its callback and that one's data:
//
//     g_something(object, cancellable, GLater::call, GLater::with([](GObject *source, GAsyncResult *result) { ... }));
//
// The function is called once, on the main thread, also when the call is cancelled. Whoever may be gone by then is held
// by a QPointer in it.
namespace GLater
{
using Function = std::function<void(GObject *source, GAsyncResult *result)>;

inline gpointer with(Function function)
{
    return new Function(std::move(function));
}

inline void call(GObject *source, GAsyncResult *result, gpointer data)
{
    const std::unique_ptr<Function> function(static_cast<Function *>(data));
    (*function)(source, result);
}
} // namespace GLater

// An error that a call may leave.
class GErrorOwner
{
public:
    GErrorOwner() = default;
    GErrorOwner(const GErrorOwner &) = delete;
    GErrorOwner &operator=(const GErrorOwner &) = delete;
    ~GErrorOwner() { g_clear_error(&_error); }

    GError **out() { return &_error; }
    explicit operator bool() const { return _error; }
    const char *message() const { return _error ? _error->message : ""; }

private:
    GError *_error = nullptr;
};

#pragma once

#include "platform/host/HostClass.h"
#include "platform/host/HostLocationChangeHandler.h"
#include "platform/host/HostWebViewDrawing.h"

#include <QHash>
#include <QString>
#include <variant>

// The classes that a host offers for replacement, by name. A host offers "LocationChangeHandler" and "WebView"; one
// that lacks a class leaves its name out, and nobody hooks into it.
class HostClasses
{
public:
    using LocationChangeHandlerClass = HostClass<HostLocationChangeHandler>;
    using WebViewClass = HostClass<HostWebViewDrawing>;

    template <class Instance>
    void add(const QString &name, HostClass<Instance> *hostClass)
    {
        _classes.insert(name, hostClass);
    }
    bool contains(const QString &name) const { return _classes.contains(name); }
    // The class of that name, null when the host has none of that name or it is of another kind.
    template <class Instance>
    HostClass<Instance> *classNamed(const QString &name) const
    {
        const auto found = _classes.constFind(name);
        if (found == _classes.constEnd())
            return nullptr;
        auto *const *hostClass = std::get_if<HostClass<Instance> *>(&*found);
        return hostClass ? *hostClass : nullptr;
    }

private:
    QHash<QString, std::variant<LocationChangeHandlerClass *, WebViewClass *>> _classes;
};

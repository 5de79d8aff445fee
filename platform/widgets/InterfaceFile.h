#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <functional>

// An interface file: a Qt Designer form "<name>.ui" of the bundle's resources, loaded at run time for an owner. Widgets
// of the project's own classes are made by the makers registered under their class names.
//
// The form's objects are connected to the owner by name: for each outlet that the owner asks for, the object of that
// name; for each button, action or pop-up button whose dynamic property "action" names an operation (as in
// "saveEdit:"), that operation with the sender.
class InterfaceFile
{
public:
    using WidgetMaker = std::function<QWidget *(QWidget *parent)>;
    static void registerClass(const QString &className, const WidgetMaker &maker);

    // Loads the form, its texts in the user's language. A missing or damaged file gives an interface without objects,
    // which is logged.
    explicit InterfaceFile(const QString &name, QWidget *parent = nullptr);

    // The form's top widget; the caller owns it. Null when there is none.
    QWidget *topLevelWidget() const;

    // The object of that name, null when there is none or it is of another class.
    template <class T>
    T *outlet(const QString &name) const
    {
        return qobject_cast<T *>(objectNamed(name));
    }
    // Calls `handler` with the sender whenever an object is triggered whose property "action" is `name`; it stays
    // connected as long as the sender lives.
    void connectAction(const QString &name, const std::function<void(QObject *sender)> &handler) const;

private:
    QObject *objectNamed(const QString &name) const;

    QPointer<QWidget> _topLevelWidget;
};

#include "platform/widgets/InterfaceFile.h"

#include "platform/base/Log.h"
#include "platform/files/Bundle.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QTabWidget>
#include <QTreeWidget>
#include <QUiLoader>

namespace
{
QHash<QString, InterfaceFile::WidgetMaker> &makers()
{
    static QHash<QString, InterfaceFile::WidgetMaker> makers;
    return makers;
}

class FormLoader : public QUiLoader
{
public:
    using QUiLoader::QUiLoader;

    QWidget *createWidget(const QString &className, QWidget *parent, const QString &name) override
    {
        const auto maker = makers().constFind(className);
        if (maker == makers().constEnd())
            return QUiLoader::createWidget(className, parent, name);
        QWidget *widget = (*maker)(parent);
        widget->setObjectName(name);
        return widget;
    }
};

// The form loader looks for Designer's plug-ins as it is made, and would load whatever they pull in (a web engine, for
// one) into the host. The forms need none of them, so it is made with nowhere to look.
FormLoader &formLoader()
{
    static QPointer<FormLoader> loader;
    if (!loader) {
        const QStringList paths = QCoreApplication::libraryPaths();
        QCoreApplication::setLibraryPaths({});
        loader = new FormLoader(QCoreApplication::instance());
        QCoreApplication::setLibraryPaths(paths);
        // The texts are looked up by themselves, not under each form's name.
        loader->setTranslationEnabled(false);
    }
    return *loader;
}

QWidget *load(const QString &name, QWidget *parent)
{
    const QString path = Bundle::pathForResource(name + QLatin1String(".ui"));
    QFile file(path);
    if (path.isNull() || !file.open(QIODevice::ReadOnly)) {
        qCWarning(logWayfold, "The interface file \"%ls\" is missing.", qUtf16Printable(name));
        return nullptr;
    }
    FormLoader &loader = formLoader();
    loader.setWorkingDirectory(QFileInfo(path).dir());
    QWidget *widget = loader.load(&file, parent);
    if (!widget)
        qCWarning(logWayfold, "The interface file \"%ls\" cannot be read: %ls", qUtf16Printable(path),
                  qUtf16Printable(loader.errorString()));
    return widget;
}

QString translated(const QString &text)
{
    return text.isEmpty() ? text : Bundle::localizedString(text);
}

void translateProperty(QObject &object, const char *property)
{
    const QVariant value = object.property(property);
    if (value.userType() == QMetaType::QString && !value.toString().isEmpty())
        object.setProperty(property, translated(value.toString()));
}

void translateObject(QObject &object)
{
    for (const char *property : {"windowTitle", "toolTip", "statusTip", "whatsThis", "accessibleName",
                                 "accessibleDescription", "placeholderText", "title"})
        translateProperty(object, property);
    // Elsewhere "text" is what the user edits.
    if (qobject_cast<QLabel *>(&object) || qobject_cast<QAbstractButton *>(&object) || qobject_cast<QAction *>(&object))
        translateProperty(object, "text");
    if (auto *tabs = qobject_cast<QTabWidget *>(&object)) {
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setTabText(i, translated(tabs->tabText(i)));
            tabs->setTabToolTip(i, translated(tabs->tabToolTip(i)));
        }
    } else if (auto *box = qobject_cast<QComboBox *>(&object)) {
        for (int i = 0; i < box->count(); ++i)
            box->setItemText(i, translated(box->itemText(i)));
    } else if (auto *tree = qobject_cast<QTreeWidget *>(&object)) {
        for (int i = 0; i < tree->columnCount(); ++i)
            tree->headerItem()->setText(i, translated(tree->headerItem()->text(i)));
    }
}

QObjectList objectsOf(QWidget *topLevelWidget)
{
    QObjectList objects;
    if (topLevelWidget) {
        objects.append(topLevelWidget);
        objects.append(topLevelWidget->findChildren<QObject *>());
    }
    return objects;
}
} // namespace

void InterfaceFile::registerClass(const QString &className, const WidgetMaker &maker)
{
    makers().insert(className, maker);
}

InterfaceFile::InterfaceFile(const QString &name, QWidget *parent) : _topLevelWidget(load(name, parent))
{
    for (QObject *object : objectsOf(_topLevelWidget))
        translateObject(*object);
}

QWidget *InterfaceFile::topLevelWidget() const
{
    return _topLevelWidget;
}

QObject *InterfaceFile::objectNamed(const QString &name) const
{
    if (!_topLevelWidget)
        return nullptr;
    return _topLevelWidget->objectName() == name ? _topLevelWidget : _topLevelWidget->findChild<QObject *>(name);
}

void InterfaceFile::connectAction(const QString &name, const std::function<void(QObject *sender)> &handler) const
{
    for (QObject *object : objectsOf(_topLevelWidget)) {
        if (object->property("action").toString() != name)
            continue;
        const auto act = [object, handler] { handler(object); };
        if (auto *button = qobject_cast<QAbstractButton *>(object))
            QObject::connect(button, &QAbstractButton::clicked, object, act);
        else if (auto *action = qobject_cast<QAction *>(object))
            QObject::connect(action, &QAction::triggered, object, act);
        else if (auto *box = qobject_cast<QComboBox *>(object))
            QObject::connect(box, &QComboBox::activated, object, act);
    }
}

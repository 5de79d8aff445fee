#pragma once

#include "platform/widgets/OutlineModel.h"

#include <QAbstractItemModelTester>
#include <QChildEvent>
#include <QCoreApplication>

// Whoever includes this has Qt's own checks run over the model of every outline view, from the moment that it is made,
// at every change. They look at all rows of the top level, so tests that say what is not asked for do without:
//
//     const ModelChecks::Pause unchecked; // for views that are made from here on
class ModelChecks : public QObject
{
public:
    class Pause
    {
    public:
        Pause() { ++pauses(); }
        ~Pause() { --pauses(); }
        Q_DISABLE_COPY_MOVE(Pause)
    };

    static void install() { QCoreApplication::instance()->installEventFilter(new ModelChecks); }
    // How many models have been checked so far.
    static int &models()
    {
        static int models = 0;
        return models;
    }

    // A view is the parent of its model.
    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        if (event->type() != QEvent::ChildAdded || pauses() > 0)
            return false;
        if (auto *model = qobject_cast<OutlineModel *>(static_cast<QChildEvent *>(event)->child())) {
            new QAbstractItemModelTester(model, QAbstractItemModelTester::FailureReportingMode::QtTest, model);
            ++models();
        }
        return false;
    }

private:
    ModelChecks() : QObject(QCoreApplication::instance()) {}

    static int &pauses()
    {
        static int pauses = 0;
        return pauses;
    }
};

inline void installModelChecks()
{
    ModelChecks::install();
}
Q_COREAPP_STARTUP_FUNCTION(installModelChecks)

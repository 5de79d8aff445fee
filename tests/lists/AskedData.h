#pragma once

#include <QMimeData>

// Data of another application, which counts how often it is asked for it.
class AskedData : public QMimeData
{
public:
    mutable int asked = 0;

protected:
    QVariant retrieveData(const QString &mimeType, QMetaType type) const override
    {
        ++asked;
        return QMimeData::retrieveData(mimeType, type);
    }
};

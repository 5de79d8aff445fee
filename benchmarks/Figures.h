#pragma once

#include <QString>
#include <functional>
#include <vector>

// What was measured, in the order of measuring; printed as a table, and written as JSON.
class Figures
{
public:
    // `peer` names the figure that this one is to be compared with; null: none.
    void add(const QString &name, double value, const QString &unit, const QString &peer = QString());
    void print() const;
    // {"name": value, ...}; false when the file cannot be written.
    bool writeJson(const QString &path) const;

    // The median time of `runs` runs in milliseconds, after one that does not count. `before` runs before each,
    // unmeasured.
    static double medianMilliseconds(const std::function<void()> &work, int runs = 7,
                                     const std::function<void()> &before = nullptr);

    static double milliseconds(const std::function<void()> &work);
    // Of at least one value.
    static double median(std::vector<double> values);

private:
    struct Figure
    {
        QString name;
        double value;
        QString unit;
        QString peer;
    };
    std::vector<Figure> _figures;
};

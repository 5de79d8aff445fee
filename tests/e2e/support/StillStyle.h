#pragma once

#include <QProxyStyle>

// A desktop on which nothing slides or fades: what happens shows at once, so that a test can tell that nothing happens.
class StillStyle : public QProxyStyle
{
public:
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returnData) const override
    {
        if (hint == SH_Widget_Animate || hint == SH_Widget_Animation_Duration)
            return 0;
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
};

#include "desktop/widgets/BrokenWords.h"

#include <QStringList>

int widthOf(const QString &text, const QFontMetrics &metrics)
{
    return metrics.size(Qt::TextShowMnemonic, text).width();
}

QString brokenToFit(const QString &text, const QFontMetrics &metrics, int room)
{
    QStringList lines;
    const QStringList given = text.split(QLatin1Char('\n'));
    for (const QString &line : given) {
        QStringList fitting;
        const QStringList all = line.split(QLatin1Char(' '));
        for (const QString &word : all) {
            const QString longer = (fitting + QStringList(word)).join(QLatin1Char(' '));
            if (!fitting.isEmpty() && widthOf(longer, metrics) > room) {
                lines += fitting.join(QLatin1Char(' '));
                fitting.clear();
            }
            fitting += word;
        }
        lines += fitting.join(QLatin1Char(' '));
    }
    return lines.join(QLatin1Char('\n'));
}

#include "config/Utf8Names.h"

#include <QtGlobal>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)

#include <QTextCodec>

namespace {

constexpr int utf8Number = 106; ///< in the register of character sets

/// The toolkit's own one would load a library of all encodings that there are. It can do without
/// the state of a text in pieces: names are converted whole.
class Utf8Codec final : public QTextCodec
{
public:
    QByteArray name() const override { return "UTF-8"; }
    int mibEnum() const override { return utf8Number; }

private:
    QString convertToUnicode(const char *bytes, int size, ConverterState *) const override
    {
        return QString::fromUtf8(bytes, size);
    }
    QByteArray convertFromUnicode(const QChar *text, int size, ConverterState *) const override
    {
        return QString::fromRawData(text, size).toUtf8();
    }
};

} // namespace

void useUtf8Names()
{
    QTextCodec::setCodecForLocale(new Utf8Codec); // the toolkit's register owns it
}

#else

void useUtf8Names() { } // the toolkit knows no other encoding any more

#endif

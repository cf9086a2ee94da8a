#include "standard/http/Html.h"

namespace standard {

QByteArray escaped(QByteArray text)
{
    return text.replace('&', "&amp;")
        .replace('<', "&lt;")
        .replace('>', "&gt;")
        .replace('"', "&quot;");
}

QByteArray pageBegin(const QByteArray &title, const QByteArray &elements)
{
    return "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
           "<meta name=\"viewport\" content=\"width=device-width\">"
           "<meta name=\"color-scheme\" content=\"light dark\"><title>"
        + escaped(title) + "</title>" + elements + "</head>\n";
}

} // namespace standard

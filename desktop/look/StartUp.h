#pragma once

class QCoreApplication;
class QString;

/// Installs the texts in the folder of the user's language; missing ones leave the source texts.
/// The translators belong to `app`.
void installTranslators(QCoreApplication *app, const QString &languageFolder);

#pragma once

#include <QMessageBox>
#include <QString>
#include <QStringList>

class QPushButton;
class QWidget;

/// A box of plain text with an OK button, to be shown; it deletes itself once it is closed.
QMessageBox *newBox(QWidget *parent, QMessageBox::Icon icon, const QString &text);

/// Shows one and returns at once.
QMessageBox *showBox(QWidget *parent, QMessageBox::Icon icon, const QString &text);

/// A further button of a box that is not shown yet; it closes the box too.
QPushButton *addBoxButton(QMessageBox *box, const QString &text);

/// Shows a warning of plain text with an OK button and waits until it is closed.
void warn(QWidget *parent, const QString &text);

/// Asks a question that Yes or No answers, Yes being the default, and waits for the answer.
bool askYesNo(QWidget *parent, const QString &question);

/// Asks a question that one of `answers` answers, the first being the default, and waits. The index
/// of the answer, -1 for none of them.
int askOneOf(QWidget *parent, const QString &question, const QStringList &answers);

enum class PathKind { File, Folder };

/// Lets the user choose a file or folder that exists, beginning in the folder `start`. Files may
/// be narrowed by a `filter`, "Name (*.a *.b)". Empty when nothing is chosen.
QString choosePath(QWidget *parent, PathKind kind, const QString &title, const QString &start,
                   const QString &filter = {});

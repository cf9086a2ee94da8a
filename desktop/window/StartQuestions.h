#pragma once

#include "desktop/window/StartQuestion.h"

class QWidget;
class RowPanel;
class ServerRows;

/// The boxes that ask before a row starts. A part of the main window.
class StartQuestions
{
public:
    /// From now on `rows` ask here. What is chosen instead goes through `shares`, and the boxes
    /// stand over `window`; all are borrowed.
    StartQuestions(ServerRows *rows, RowPanel *shares, QWidget *window);

private:
    StartAnswer ask(ServerRow *row, StartDoubt doubt);
    StartAnswer askAboutHome(ServerRow *row);

    RowPanel *panel;
    QWidget *parent;
};

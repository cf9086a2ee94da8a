#pragma once

#include <QWidget>

class QListWidget;
class QStackedWidget;

/// A list of icons and the page of the chosen one beside it. Pages scroll when they are larger
/// than their room. A child of a settings dialog.
class PageView : public QWidget
{
    Q_OBJECT

public:
    explicit PageView(QWidget *parent);

    /// Appends a page, which becomes a child of this. `icon` names a file, "" for none.
    void addPage(const QString &label, const QString &icon, QWidget *page);

    /// Shows the page of `row`, the first one when there is no such row.
    void setCurrentRow(int row);
    int currentRow() const;

Q_SIGNALS:
    /// The page of `row` is now the one shown.
    void pageTurned(int row);

protected:
    void changeEvent(QEvent *event) override;

private:
    void sizeItems();
    void sizeList();

    QListWidget *list;
    QStackedWidget *pages;
};

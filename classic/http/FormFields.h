#pragma once

#include <QByteArray>
#include <QString>

/// Goes through the items of a query or form one by one, so that a large form costs no more than
/// what is asked of it.
class FormFields
{
public:
    /// `encoded` is what stands behind a question mark, "+" already made "%20".
    explicit FormFields(QByteArray encoded);

    /// Goes to the next item; false when there is none.
    bool next();

    /// Whether the current item has this name.
    bool is(const char *name) const;

    /// Of the current item, decoded.
    QString name() const;
    QString value() const;

private:
    const QByteArray query;
    int start = 0; ///< of the current item
    int end = -1;
};

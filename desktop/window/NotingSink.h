#pragma once

#include "server/StatusSink.h"

#include <QScopedValueRollback>

#include <functional>

/// Passes on what servers report. While they do what nobody has asked for, their warnings become
/// notes: a box would stand before somebody who types elsewhere, or before nobody. A part of the
/// rows' keeper.
class NotingSink final : public StatusSink
{
public:
    using Note = std::function<void(const QString &text)>;

    /// `next` is borrowed and outlives it; `note` is called with plain text, translated.
    NotingSink(StatusSink *next, Note note);

    /// Warnings become notes for as long as the result lives.
    [[nodiscard]] QScopedValueRollback<bool> unasked()
    {
        return QScopedValueRollback<bool>(isNoting, true);
    }

    void newConnection(const QString &peer) override;
    void msg(const QString &title, const QString &text) override;
    bool knowsKeyProblems() const override;
    bool listens() const override;
    void told(const Deed &deed) override;

private:
    StatusSink *sink;
    const Note tell;
    bool isNoting = false;
};

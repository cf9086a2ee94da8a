#pragma once

#include "classic/dav/DocumentReply.h"
#include "server/Places.h"

#include <memory>
#include <vector>

class TreeCopy;

/// COPY: one file, or the files of a folder tree one by one; the answer follows the last of them.
/// Only a few work at the same time.
class Copy final : public DocumentReply, private PassTaker
{
    Q_OBJECT
public:
    explicit Copy(Exchange &current);
    ~Copy() override;

    void reply() override;
    void replyEnded() override;

private:
    const char *reasonToRefuse() const;
    QByteArray destinationPath() const;
    void take(Pass given) override;
    void copyFile(const QByteArray &destination);
    void copyTree(const QByteArray &destination);
    void copyOn();
    void takeOutcomes();
    void sendOutcomes();
    void appendBatch(QByteArray &text, const QByteArray &batch) const;
    const char *statusOf(char outcome) const;
    void stop();

    Pass pass; ///< while a tree is copied, and its outcomes are kept
    bool overwrite = true;
    QByteArray sharedPath; ///< absolute, without a "/" at its end
    std::shared_ptr<TreeCopy> tree; ///< under way
    std::vector<QByteArray> batches; ///< packed outcomes of its files so far
};

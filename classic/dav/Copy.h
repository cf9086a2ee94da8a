#pragma once

#include "classic/dav/DocumentReply.h"

#include <memory>
#include <vector>

class TreeCopy;

/// COPY: one file, or the files of a folder tree one by one; the answer follows the last of them.
class Copy : public DocumentReply
{
    Q_OBJECT
public:
    explicit Copy(Exchange &current);
    ~Copy() override;

    void reply() override;
    void replyEnded() override;

private:
    void copyFile(const QByteArray &destination);
    void copyTree(const QByteArray &destination);
    void copyOn();
    void takeOutcomes();
    void sendOutcomes();
    void appendBatch(QByteArray &text, const QByteArray &batch) const;
    const char *statusOf(char outcome) const;

    bool overwrite = true;
    QByteArray sharedPath; ///< absolute, without a "/" at its end
    std::shared_ptr<TreeCopy> tree; ///< under way
    std::vector<QByteArray> batches; ///< packed outcomes of its files so far
};

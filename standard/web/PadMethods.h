#pragma once

#include "standard/http/FolderPage.h"
#include "standard/http/Resource.h"

namespace standard {

constexpr qint64 maxPad = qint64(64) * 1024; ///< bytes

/// The base of the methods for it.
class PadMethod : public ResourceHandler
{
public:
    using ResourceHandler::ResourceHandler;

protected:
    /// Whether there is one for the visitor, who has the right; else the request is refused.
    bool isOpenTo(Rights needed);

    bool meetsPadConditions();
    Fields padFields() const;
};

/// GET and HEAD: the text.
class PadReading final : public PadMethod
{
public:
    using PadMethod::PadMethod;

    void start() override;
};

/// PUT: another text. If-Match keeps what somebody else has written meanwhile.
class PadWriting final : public PadMethod
{
public:
    using PadMethod::PadMethod;

    void start() override;
    void bodyReady(const QByteArray &body) override;
};

} // namespace standard

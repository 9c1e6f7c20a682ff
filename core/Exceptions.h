// The library's exception classes, named as application code of this family expects them.
// Every error the library raises derives from mattoni::Exception and carries its message as text.
#pragma once

#include "mattoni_core_export.h"

#include <QByteArray>
#include <QString>
#include <exception>

namespace mattoni {

class MATTONI_CORE_EXPORT Exception : public std::exception
{
public:
    explicit Exception(const QString &message = QString());
    ~Exception() override;

    const QString &Message() const noexcept { return m_message; }
    const char *what() const noexcept override;

private:
    QString m_message;
    QByteArray m_utf8;
};

#define MATTONI_DECLARE_EXCEPTION(Name, Base)                                                      \
    class MATTONI_CORE_EXPORT Name : public Base                                                   \
    {                                                                                              \
    public:                                                                                        \
        using Base::Base;                                                                          \
        ~Name() override;                                                                          \
    };

// A silent abort: callers unwind without showing anything to the user.
MATTONI_DECLARE_EXCEPTION(EAbort, Exception)
MATTONI_DECLARE_EXCEPTION(EConvertError, Exception)
MATTONI_DECLARE_EXCEPTION(EVariantError, Exception)
MATTONI_DECLARE_EXCEPTION(EIntError, Exception)
MATTONI_DECLARE_EXCEPTION(ERangeError, EIntError)
MATTONI_DECLARE_EXCEPTION(EDatabaseError, Exception)
MATTONI_DECLARE_EXCEPTION(EInOutError, Exception)
MATTONI_DECLARE_EXCEPTION(EStreamError, Exception)
MATTONI_DECLARE_EXCEPTION(EFileStreamError, EStreamError)
MATTONI_DECLARE_EXCEPTION(EFOpenError, EFileStreamError)
MATTONI_DECLARE_EXCEPTION(EFCreateError, EFileStreamError)
MATTONI_DECLARE_EXCEPTION(EListError, Exception)
MATTONI_DECLARE_EXCEPTION(EInvalidOperation, Exception)
MATTONI_DECLARE_EXCEPTION(EInvalidArgument, Exception)
MATTONI_DECLARE_EXCEPTION(EOSError, Exception)
MATTONI_DECLARE_EXCEPTION(EPackageError, Exception)

} // namespace mattoni

// The library's exception classes.
#include "Exceptions.h"

namespace mattoni {

Exception::Exception(const QString &message)
    : m_message(message)
    , m_utf8(message.toUtf8())
{
}

Exception::~Exception() = default;

const char *Exception::what() const noexcept
{
    return m_utf8.constData();
}

// Out-of-line destructors anchor each class's type information in the library, so that
// a catch in application code matches exceptions thrown inside it.
EAbort::~EAbort() = default;
EConvertError::~EConvertError() = default;
EVariantError::~EVariantError() = default;
EIntError::~EIntError() = default;
ERangeError::~ERangeError() = default;
EDatabaseError::~EDatabaseError() = default;
EInOutError::~EInOutError() = default;
EStreamError::~EStreamError() = default;
EFileStreamError::~EFileStreamError() = default;
EFOpenError::~EFOpenError() = default;
EFCreateError::~EFCreateError() = default;
EListError::~EListError() = default;
EInvalidOperation::~EInvalidOperation() = default;
EInvalidArgument::~EInvalidArgument() = default;
EOSError::~EOSError() = default;
EPackageError::~EPackageError() = default;

} // namespace mattoni

// Compression of files and streams as plain zlib streams (default level, no header of our own).
// Streams are read from their current position to their end and written at their current position.
#pragma once

#include "Exceptions.h"
#include "mattoni_core_export.h"

#include <QString>

class QIODevice;

namespace mattoni {

MATTONI_DECLARE_EXCEPTION(EZCompressionError, Exception)
MATTONI_DECLARE_EXCEPTION(EZDecompressionError, Exception)

// A file that cannot be opened raises EFOpenError "Cannot open file "%s". %s", one that cannot be
// created EFCreateError "Cannot create file "%s". %s"; data that is not a zlib stream raises
// EZDecompressionError.
MATTONI_CORE_EXPORT void CompressFileToFile(const QString &source, const QString &dest);
MATTONI_CORE_EXPORT void CompressFileToStream(const QString &source, QIODevice &dest);
MATTONI_CORE_EXPORT void CompressStreamToFile(QIODevice &source, const QString &dest);
MATTONI_CORE_EXPORT void CompressStreamToStream(QIODevice &source, QIODevice &dest);
MATTONI_CORE_EXPORT void DeCompressStreamToStream(QIODevice &source, QIODevice &dest);
MATTONI_CORE_EXPORT void DeCompressFileToStream(const QString &source, QIODevice &dest);
MATTONI_CORE_EXPORT void DeCompressStreamToFile(QIODevice &source, const QString &dest);

} // namespace mattoni

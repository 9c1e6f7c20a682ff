// Shared libraries through dlopen.
#include "Dllload.h"

#include <QFile>

#include <dlfcn.h>

namespace mattoni {

TDLLLoaderException::~TDLLLoaderException() = default;

namespace {

void *loadLibrary(const QString &fileName)
{
    return dlopen(QFile::encodeName(fileName).constData(), RTLD_NOW | RTLD_LOCAL);
}

void freeLibrary(void *handle)
{
    dlclose(handle);
}

} // namespace

TDLLLoader::TDLLLoader(QObject *owner)
    : TModuleLoader(owner, &loadLibrary, &freeLibrary, QLatin1String(".DLL"))
{
}

} // namespace mattoni

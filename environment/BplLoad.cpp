// Run-time packages through dlopen.
#include "BplLoad.h"

#include <QFile>

#include <dlfcn.h>

namespace mattoni {

TBPLLoaderException::~TBPLLoaderException() = default;

namespace {

// A package's symbols are global, so that packages loaded later can use the ones it registered.
void *loadPackage(const QString &fileName)
{
    void *handle = dlopen(QFile::encodeName(fileName).constData(), RTLD_NOW | RTLD_GLOBAL);
    if (!handle)
        throw EPackageError(QStringLiteral("Can't load package %1.\n%2").arg(fileName, QString::fromLocal8Bit(dlerror())));
    return handle;
}

void unloadPackage(void *handle)
{
    dlclose(handle);
}

} // namespace

TBPLLoader::TBPLLoader(QObject *owner)
    : TModuleLoader(owner, &loadPackage, &unloadPackage, QLatin1String(".BPL"))
{
}

} // namespace mattoni
